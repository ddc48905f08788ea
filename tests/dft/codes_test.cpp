// What create, set, commit, compute and free answer, right and wrong.
#include <cmath>
#include <gtest/gtest.h>
#include <qkr/dft.h>
#include <vector>

namespace qkr::tests {
namespace {

int32_t create(DftDescriptor **handle, int32_t precision, int32_t domain, int32_t dimension,
               const std::vector<int32_t> &lengths) {
  return qkr_dft_def_create_descriptor_highd(handle, &precision, &domain, &dimension, lengths.data());
}
int32_t set(DftDescriptor **handle, int32_t parameter, int32_t value) {
  return qkr_dft_def_set_value_intval(handle, &parameter, &value);
}
int32_t set_scale(DftDescriptor **handle, int32_t parameter, double value) {
  return qkr_dft_def_set_value_dblval(handle, &parameter, &value);
}

class Codes : public testing::Test {
 protected:
  DftDescriptor *descriptor = nullptr;
  void make(int32_t domain, const std::vector<int32_t> &lengths) {
    ASSERT_EQ(create(&descriptor, DFTX_DOUBLE, domain, static_cast<int32_t>(lengths.size()), lengths),
              DFTX_NO_ERROR);
  }
  int32_t commit() { return qkr_dft_def_commit_descriptor_external(&descriptor); }
  void TearDown() override {
    if (descriptor) {
      EXPECT_EQ(qkr_dft_def_free_descriptor_external(&descriptor), DFTX_NO_ERROR);
    }
  }
};

TEST_F(Codes, OfCreate) {
  int32_t somewhere = 0;
  DftDescriptor *const untouched = reinterpret_cast<DftDescriptor *>(&somewhere);
  const struct {
    int32_t precision, domain, dimension;
    std::vector<int32_t> lengths;
    int32_t code;
    bool touches;
  } cases[] = {
      {DFTX_SINGLE, DFTX_REAL, 0, {4}, DFTX_INVALID_ARGUMENT, false},
      {DFTX_SINGLE, DFTX_REAL, -1, {4}, DFTX_INVALID_ARGUMENT, false},
      {DFTX_SINGLE, DFTX_REAL, 8, {1, 1, 1, 1, 1, 1, 1, 1}, DFTX_INVALID_ARGUMENT, false},
      {DFTX_SINGLE, DFTX_REAL, 2, {4, 0}, DFTX_INVALID_ARGUMENT, false},
      {DFTX_SINGLE, DFTX_REAL, 3, {4, 4, -4}, DFTX_INVALID_ARGUMENT, false},
      {0, 0, 5, {4, 4, 4, 4, -4}, DFTX_INVALID_ARGUMENT, false},
      {DFTX_SINGLE, DFTX_COMPLEX, 4, {1, 1, 1, 1}, DFTX_UNIMPLEMENTED, true},
      {0, DFTX_COMPLEX, 7, {1, 1, 1, 1, 1, 1, 1}, DFTX_UNIMPLEMENTED, true},
      {DFTX_SINGLE, 34, 4, {1, 1, 1, 1}, DFTX_INVALID_ARGUMENT, true},
      {DFTX_SINGLE, 31, 1, {8}, DFTX_INVALID_ARGUMENT, true},
      {34, DFTX_REAL, 1, {8}, DFTX_INVALID_ARGUMENT, true},
      {37, DFTX_COMPLEX, 1, {8}, DFTX_INVALID_ARGUMENT, true},
      {DFTX_SINGLE, DFTX_COMPLEX, 2, {65536, 65536}, DFTX_MEMORY_ERROR, true},
      {DFTX_SINGLE, DFTX_COMPLEX, 3, {INT32_MAX, INT32_MAX, INT32_MAX}, DFTX_MEMORY_ERROR, true},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(testing::Message() << c.precision << ' ' << c.domain << ' ' << c.dimension);
    DftDescriptor *handle = untouched;
    EXPECT_EQ(create(&handle, c.precision, c.domain, c.dimension, c.lengths), c.code);
    EXPECT_EQ(handle, c.touches ? nullptr : untouched);
    handle = untouched;
    EXPECT_EQ(
        qkr_dft_def_create_descriptor_1d(&handle, &c.precision, &c.domain, &c.dimension, c.lengths.data()),
        c.code);
  }
}

TEST_F(Codes, OfValues) {
  constexpr int32_t ok = DFTX_NO_ERROR, bad = DFTX_INVALID_ARGUMENT, unserved = DFTX_UNIMPLEMENTED;
  const struct {
    int32_t parameter;
    std::vector<std::pair<int32_t, int32_t>> answers;  // value, code
  } cases[] = {
      {0, {{DFTX_COMPLEX, unserved}}},
      {1, {{1, unserved}}},
      {2, {{8, unserved}}},
      {3, {{DFTX_DOUBLE, unserved}}},
      {19, {{0, unserved}}},
      {DFTX_NUMBER_OF_TRANSFORMS, {{1, ok}, {0, ok}, {-5, ok}, {INT32_MAX, ok}}},
      {DFTX_COMPLEX_STORAGE, {{39, ok}, {40, unserved}, {42, unserved}, {41, bad}, {0, bad}}},
      {DFTX_REAL_STORAGE, {{42, ok}, {39, unserved}, {40, unserved}, {41, bad}, {43, bad}}},
      {DFTX_CONJUGATE_EVEN_STORAGE, {{39, ok}, {40, ok}, {42, unserved}, {41, bad}}},
      {DFTX_PLACEMENT, {{43, ok}, {44, ok}, {42, bad}, {45, bad}}},
      {DFTX_INPUT_DISTANCE, {{0, ok}, {-7, ok}, {INT32_MAX, ok}}},
      {DFTX_OUTPUT_DISTANCE, {{0, ok}, {-7, ok}}},
      {DFTX_ORDERING, {{48, ok}, {49, ok}, {47, bad}, {50, bad}}},
      {DFTX_PACKED_FORMAT, {{54, ok}, {55, ok}, {56, ok}, {57, ok}, {53, bad}, {58, bad}}},
      {DFTX_THREAD_LIMIT, {{1, ok}, {0, ok}, {-1, ok}, {64, ok}}},
  };
  for (const int32_t domain : {DFTX_COMPLEX, DFTX_REAL}) {
    make(domain, {8});
    for (const auto &[parameter, answers] : cases)
      for (const auto &[value, code] : answers) {
        const bool refused = domain == DFTX_REAL && parameter == DFTX_ORDERING && value == DFTX_SCRAMBLED;
        EXPECT_EQ(set(&descriptor, parameter, value), refused ? bad : code) << parameter << ' ' << value;
      }
    for (const int32_t none : {INT32_MIN, -1, 4, 5, 6, 12, 13, 16, 17, 20, 22, 23, 24, 25, 27, INT32_MAX})
      for (const int32_t value : {0, 1}) EXPECT_EQ(set(&descriptor, none, value), bad) << none;
    for (int32_t parameter = -1; parameter < 30; ++parameter)
      EXPECT_EQ(set_scale(&descriptor, parameter, 2),
                parameter == DFTX_FORWARD_SCALE || parameter == DFTX_BACKWARD_SCALE ? ok : bad);
    const int32_t good[] = {1, 8}, zero[] = {0, 1}, negative[] = {-1, 4};
    const int32_t *const strides[][2] = {{zero, good}, {good, negative}, {nullptr, good}};
    for (const auto &[input, output] : strides)
      EXPECT_EQ(qkr_dft_set_strides(&descriptor, input, output), bad);
    EXPECT_EQ(qkr_dft_set_strides(&descriptor, good, good), ok);
    EXPECT_EQ(qkr_dft_set_strides(&descriptor, good, nullptr), domain == DFTX_REAL ? bad : ok);
    ASSERT_EQ(qkr_dft_def_free_descriptor_external(&descriptor), DFTX_NO_ERROR);
    EXPECT_EQ(descriptor, nullptr);
  }
}

// Null, and a block that is no descriptor.
TEST_F(Codes, OfBadHandles) {
  double data[16] = {}, other[16] = {};
  char text[4096] = "no descriptor";
  DftDescriptor *null = nullptr, *wrong = reinterpret_cast<DftDescriptor *>(text);
  const int32_t strides[] = {1};
  const auto check = [&](DftDescriptor **handle, int32_t code) {
    EXPECT_EQ(set(handle, DFTX_PLACEMENT, DFTX_INPLACE), code);
    EXPECT_EQ(set_scale(handle, DFTX_FORWARD_SCALE, 1), code);
    EXPECT_EQ(qkr_dft_set_strides(handle, strides, strides), code);
    EXPECT_EQ(qkr_dft_def_commit_descriptor_external(handle), code);
    EXPECT_EQ(qkr_dft_def_free_descriptor_external(handle), code);
    EXPECT_EQ(qkr_dft_def_compute_forward_z(handle, data), code);
    EXPECT_EQ(qkr_dft_def_compute_backward_c(handle, data), code);
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(handle, data, other), code);
    EXPECT_EQ(qkr_dft_def_compute_backward_cs_out(handle, data, reinterpret_cast<float *>(other)), code);
  };
  check(&null, DFTX_INVALID_ARGUMENT);
  check(&wrong, DFTX_BAD_DESCRIPTOR);
  EXPECT_STREQ(text, "no descriptor");
  for (int32_t status = -2; status < 10; ++status)
    for (int32_t error_class = -2; error_class < 10; ++error_class)
      EXPECT_EQ(qkr_dft_def_error_class_external(&status, &error_class), status == error_class);
}

TEST_F(Codes, OfCompute) {
  double x[32] = {1}, y[32];
  make(DFTX_REAL, {8});
  const auto forward = [&] { return qkr_dft_def_compute_forward_dz_out(&descriptor, x, y); };
  EXPECT_EQ(forward(), DFTX_NOT_COMMITTED);
  EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, nullptr, y), DFTX_INVALID_ARGUMENT);
  EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, nullptr), DFTX_INVALID_ARGUMENT);
  EXPECT_EQ(commit(), DFTX_NO_ERROR);
  EXPECT_EQ(forward(), DFTX_NO_ERROR);
  EXPECT_EQ(commit(), DFTX_NO_ERROR);
  EXPECT_EQ(forward(), DFTX_NO_ERROR);
  // A call of the wrong kind would find another transform, or none.
  EXPECT_EQ(qkr_dft_def_compute_forward_z(&descriptor, x), DFTX_INVALID_ARGUMENT);
  EXPECT_EQ(qkr_dft_def_compute_forward_sc_out(&descriptor, reinterpret_cast<float *>(x), y),
            DFTX_INVALID_ARGUMENT);

  // Every change, also a refused one, asks for another commit.
  const int32_t strides[] = {0};
  const auto uncommits = [&](int32_t code) {
    EXPECT_NE(code, DFTX_BAD_DESCRIPTOR);
    EXPECT_EQ(forward(), DFTX_NOT_COMMITTED);
    EXPECT_EQ(commit(), DFTX_NO_ERROR);
    EXPECT_EQ(forward(), DFTX_NO_ERROR);
  };
  uncommits(set(&descriptor, DFTX_PLACEMENT, DFTX_NOT_INPLACE));
  uncommits(set(&descriptor, DFTX_PLACEMENT, 1000));
  uncommits(set(&descriptor, 1000, 1));
  uncommits(set_scale(&descriptor, DFTX_FORWARD_SCALE, 1));
  uncommits(set_scale(&descriptor, DFTX_PLACEMENT, 1));
  uncommits(qkr_dft_set_strides(&descriptor, strides, strides));

  // A commit that fails leaves the descriptor uncommitted, and fit to be set right.
  EXPECT_EQ(set(&descriptor, DFTX_PACKED_FORMAT, DFTX_CCE_FORMAT), DFTX_NO_ERROR);
  EXPECT_EQ(commit(), DFTX_UNIMPLEMENTED);
  EXPECT_EQ(forward(), DFTX_NOT_COMMITTED);
  EXPECT_EQ(set(&descriptor, DFTX_CONJUGATE_EVEN_STORAGE, DFTX_COMPLEX_COMPLEX), DFTX_NO_ERROR);
  EXPECT_EQ(commit(), DFTX_NO_ERROR);
  EXPECT_EQ(forward(), DFTX_NO_ERROR);
}

// The complex storage brings its format along; going back to the real one does not.
TEST_F(Codes, StorageAndFormat) {
  make(DFTX_REAL, {4});
  const double x[] = {1, 2, 3, 5};
  double y[6];
  const auto forward = [&] {
    EXPECT_EQ(commit(), DFTX_NO_ERROR);
    for (double &number : y) number = -1;
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, y), DFTX_NO_ERROR);
    return std::vector<double>(y, y + 6);
  };
  const std::vector<double> ccs = {11, 0, -2, 3, -3, 0}, pack = {11, -2, 3, -3, -1, -1},
                            perm = {11, -3, -2, 3, -1, -1};
  EXPECT_EQ(forward(), ccs);
  set(&descriptor, DFTX_PACKED_FORMAT, DFTX_PERM_FORMAT);
  EXPECT_EQ(forward(), perm);
  set(&descriptor, DFTX_CONJUGATE_EVEN_STORAGE, DFTX_COMPLEX_COMPLEX);
  EXPECT_EQ(forward(), ccs);
  set(&descriptor, DFTX_PACKED_FORMAT, DFTX_PACK_FORMAT);
  EXPECT_EQ(forward(), ccs);
  set(&descriptor, DFTX_CONJUGATE_EVEN_STORAGE, DFTX_COMPLEX_REAL);
  EXPECT_EQ(forward(), pack);
}

// The scaling of a half spectrum covers one number less than it has: the last is a zero without a sign.
TEST_F(Codes, ScaledNumbers) {
  const double x[256] = {1};
  for (const int32_t length : {4, 128}) {
    make(DFTX_REAL, {length});
    EXPECT_EQ(set_scale(&descriptor, DFTX_FORWARD_SCALE, -2), DFTX_NO_ERROR);
    EXPECT_EQ(commit(), DFTX_NO_ERROR);
    double y[260];
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, y), DFTX_NO_ERROR);
    EXPECT_TRUE(std::signbit(y[1]));
    EXPECT_EQ(y[length], -2);
    EXPECT_FALSE(std::signbit(y[length + 1]));
    ASSERT_EQ(qkr_dft_def_free_descriptor_external(&descriptor), DFTX_NO_ERROR);
  }
}

// Backward in place from DFTX_CCS_FORMAT, and from no other, a zero stands behind the last number; nothing is
// written there in an array of its own. With and without a scale: the codelets, and the engine.
TEST_F(Codes, ZeroBehindTheLastNumber) {
  constexpr double untouched = -5;
  for (const int32_t length : {2, 7, 16, 60, 64, 128})
    for (const int32_t format : {DFTX_CCS_FORMAT, DFTX_PACK_FORMAT, DFTX_PERM_FORMAT, DFTX_CCE_FORMAT})
      for (const double factor : {1.0, 0.5}) {
        SCOPED_TRACE(testing::Message() << length << ' ' << format << ' ' << factor);
        make(DFTX_REAL, {length});
        if (format == DFTX_CCE_FORMAT) set(&descriptor, DFTX_CONJUGATE_EVEN_STORAGE, DFTX_COMPLEX_COMPLEX);
        else set(&descriptor, DFTX_PACKED_FORMAT, format);
        set_scale(&descriptor, DFTX_BACKWARD_SCALE, factor);
        EXPECT_EQ(commit(), DFTX_NO_ERROR);
        std::vector<double> spectrum(length + 2, 3.0), apart(length + 1, untouched);
        EXPECT_EQ(qkr_dft_def_compute_backward_zd_out(&descriptor, spectrum.data(), apart.data()),
                  DFTX_NO_ERROR);
        EXPECT_EQ(apart[length], untouched);
        EXPECT_EQ(qkr_dft_def_compute_backward_zd_out(&descriptor, spectrum.data(), spectrum.data()),
                  DFTX_NO_ERROR);
        EXPECT_EQ(spectrum[length], format == DFTX_CCS_FORMAT ? 0.0 : 3.0);
        ASSERT_EQ(qkr_dft_def_free_descriptor_external(&descriptor), DFTX_NO_ERROR);
      }
}

}  // namespace
}  // namespace qkr::tests
