// What descriptors answer, and what single settings mean.
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "tests/dft/combinations.h"

namespace qkr::tests {
namespace {

constexpr auto create = qkr_dft_def_create_descriptor_highd;
constexpr auto commit = qkr_dft_def_commit_descriptor_external;
constexpr auto release = qkr_dft_def_free_descriptor_external;
int32_t set(DftDescriptor **handle, int32_t parameter, int32_t value) {
  return qkr_dft_def_set_value_intval(handle, &parameter, &value);
}
int32_t set_scale(DftDescriptor **handle, int32_t parameter, double value) {
  return qkr_dft_def_set_value_dblval(handle, &parameter, &value);
}

// With a descriptor of one kind after another.
class Codes : public testing::Test {
 protected:
  DftDescriptor *descriptor = nullptr;
  void make(int32_t domain, int32_t length, int32_t precision = DFTX_DOUBLE) {
    const int32_t dimension = 1;
    TearDown();
    ASSERT_EQ(create(&descriptor, &precision, &domain, &dimension, &length), DFTX_NO_ERROR);
  }
  void TearDown() override {
    const int32_t code = descriptor ? release(&descriptor) : DFTX_NO_ERROR;
    EXPECT_EQ(code, DFTX_NO_ERROR);
    EXPECT_EQ(descriptor, nullptr);
  }
};

// Bad dimensions leave the handle alone, any other failure makes it null.
TEST_F(Codes, OfCreation) {
  const struct {
    int32_t dimension, length, domain, precision, code;
    bool is_left = false;
  } rows[] = {{-1, 5, DFTX_COMPLEX, DFTX_DOUBLE, DFTX_INVALID_ARGUMENT, true},
              {0, 5, DFTX_COMPLEX, DFTX_DOUBLE, DFTX_INVALID_ARGUMENT, true},
              {8, 5, DFTX_COMPLEX, DFTX_DOUBLE, DFTX_INVALID_ARGUMENT, true},
              {2, 0, DFTX_COMPLEX, DFTX_DOUBLE, DFTX_INVALID_ARGUMENT, true},
              {7, -1, 0, 0, DFTX_INVALID_ARGUMENT, true},
              {2, 65537, 0, 0, DFTX_MEMORY_ERROR},
              {3, INT32_MAX, DFTX_REAL, DFTX_SINGLE, DFTX_MEMORY_ERROR},
              {4, INT32_MAX, DFTX_REAL - 2, DFTX_SINGLE, DFTX_INVALID_ARGUMENT},
              {1, 5, DFTX_REAL + 2, DFTX_SINGLE, DFTX_INVALID_ARGUMENT},
              {4, 5, DFTX_REAL, 0, DFTX_UNIMPLEMENTED},
              {7, INT32_MAX, DFTX_COMPLEX, DFTX_SINGLE, DFTX_UNIMPLEMENTED},
              {3, 5, DFTX_COMPLEX, 34, DFTX_INVALID_ARGUMENT},
              {1, 5, DFTX_REAL, 37, DFTX_INVALID_ARGUMENT},
              {3, 5, DFTX_REAL, DFTX_SINGLE, DFTX_NO_ERROR},
              {1, INT32_MAX, DFTX_COMPLEX, DFTX_DOUBLE, DFTX_NO_ERROR}};
  for (const auto &row : rows)
    for (const auto entry : {create, qkr_dft_def_create_descriptor_1d}) {
      std::vector<int32_t> lengths(7, row.length);
      DftDescriptor *const before = reinterpret_cast<DftDescriptor *>(lengths.data());
      descriptor = before;
      EXPECT_EQ(entry(&descriptor, &row.precision, &row.domain, &row.dimension, lengths.data()), row.code);
      EXPECT_EQ(descriptor == before, row.is_left);
      EXPECT_EQ(descriptor == nullptr, !row.is_left && row.code != DFTX_NO_ERROR);
      if (row.is_left) descriptor = nullptr;
      TearDown();
    }
}

TEST_F(Codes, OfSettings) {
  const std::vector<int32_t> of_any_number = {DFTX_NUMBER_OF_TRANSFORMS, DFTX_INPUT_DISTANCE,
                                              DFTX_OUTPUT_DISTANCE, DFTX_THREAD_LIMIT},
                             fixed = {0, 1, 2, 3, 19};
  const struct {
    int32_t parameter;
    std::vector<int32_t> good, unimplemented;
  } rows[] = {
      {DFTX_COMPLEX_STORAGE, {DFTX_COMPLEX_COMPLEX}, {DFTX_COMPLEX_REAL, DFTX_REAL_REAL}},
      {DFTX_REAL_STORAGE, {DFTX_REAL_REAL}, {DFTX_COMPLEX_COMPLEX, DFTX_COMPLEX_REAL}},
      {DFTX_CONJUGATE_EVEN_STORAGE, {DFTX_COMPLEX_COMPLEX, DFTX_COMPLEX_REAL}, {DFTX_REAL_REAL}},
      {DFTX_PLACEMENT, {DFTX_INPLACE, DFTX_NOT_INPLACE}, {}},
      {DFTX_ORDERING, {DFTX_ORDERED, DFTX_SCRAMBLED}, {}},
      {DFTX_PACKED_FORMAT, {DFTX_CCS_FORMAT, DFTX_PACK_FORMAT, DFTX_PERM_FORMAT, DFTX_CCE_FORMAT}, {}}};
  const auto has = [](const std::vector<int32_t> &all, int32_t one) {
    return std::ranges::count(all, one) > 0;
  };
  const auto code = [](bool good, bool known) {
    return good ? DFTX_NO_ERROR : known ? DFTX_UNIMPLEMENTED : DFTX_INVALID_ARGUMENT;
  };
  std::vector<int32_t> values = {INT32_MIN, -7, 0, INT32_MAX};
  for (int32_t value = 30; value < 60; ++value) values.push_back(value);
  for (const int32_t domain : {DFTX_COMPLEX, DFTX_REAL})
    for (int32_t parameter = -1; parameter < 30; ++parameter) {
      make(domain, 4);
      for (const int32_t value : values) {
        int32_t expected = code(has(of_any_number, parameter), has(fixed, parameter));
        for (const auto &row : rows)
          if (row.parameter == parameter)
            expected = code(has(row.good, value), has(row.unimplemented, value));
        if (domain == DFTX_REAL && value == DFTX_SCRAMBLED && !expected)
          expected = code(parameter != DFTX_ORDERING, false);
        EXPECT_EQ(set(&descriptor, parameter, value), expected) << parameter << ' ' << value;
      }
      const bool is_scale = parameter == DFTX_FORWARD_SCALE || parameter == DFTX_BACKWARD_SCALE;
      EXPECT_EQ(set_scale(&descriptor, parameter, 2), code(is_scale, false)) << parameter;
    }
}

// Complex data have one array, whose strides may stand for both.
TEST_F(Codes, OfStrides) {
  const int32_t good[] = {3}, bad[] = {0};
  for (const int32_t domain : {DFTX_COMPLEX, DFTX_REAL}) {
    make(domain, 4);
    const auto strides = [&](const int32_t *input, const int32_t *output) {
      return qkr_dft_set_strides(&descriptor, input, output);
    };
    EXPECT_EQ(strides(good, good), DFTX_NO_ERROR);
    EXPECT_EQ(strides(good, nullptr), domain == DFTX_COMPLEX ? DFTX_NO_ERROR : DFTX_INVALID_ARGUMENT);
    for (const int32_t code :
         {strides(nullptr, good), strides(bad, good), strides(good, bad), strides(bad, nullptr)})
      EXPECT_EQ(code, DFTX_INVALID_ARGUMENT);
  }
}

// Of calls with a null handle, and with a block that is no descriptor.
TEST_F(Codes, OfWhatIsNoDescriptor) {
  double data[16] = {}, other[16] = {};
  char text[4096] = "no descriptor";
  const int32_t strides[] = {1};
  for (DftDescriptor *wrong :
       {static_cast<DftDescriptor *>(nullptr), reinterpret_cast<DftDescriptor *>(text)})
    for (const int32_t code :
         {set(&wrong, DFTX_PLACEMENT, DFTX_INPLACE), set_scale(&wrong, DFTX_FORWARD_SCALE, 1),
          qkr_dft_set_strides(&wrong, strides, strides), commit(&wrong), release(&wrong),
          qkr_dft_def_compute_forward_z(&wrong, data),
          qkr_dft_def_compute_backward_zd_out(&wrong, data, other)})
      EXPECT_EQ(code, wrong ? DFTX_BAD_DESCRIPTOR : DFTX_INVALID_ARGUMENT);
  EXPECT_STREQ(text, "no descriptor");
}

TEST_F(Codes, OfComputations) {
  double x[16] = {}, y[16];
  // Of all functions, of which those for the descriptor's kind answer `code`.
  const auto expect = [&](int32_t code, int32_t domain, int32_t precision) {
    for (Case c : cases({.lengths = {{4}}, .kinds = {complex_kind, packed_ccs}})) {
      const bool fits = code == DFTX_NOT_COMMITTED || (c.domain == domain && c.precision == precision);
      EXPECT_EQ(call(c, descriptor, x, y), fits ? code : DFTX_INVALID_ARGUMENT) << name(c);
    }
  };
  const auto change = [&](int attempt) {
    return attempt == 0   ? set(&descriptor, DFTX_PLACEMENT, -1)
           : attempt == 1 ? set_scale(&descriptor, -1, 1)
                          : qkr_dft_set_strides(&descriptor, nullptr, nullptr);
  };
  for (const int32_t domain : {DFTX_COMPLEX, DFTX_REAL})
    for (const int32_t precision : {DFTX_SINGLE, DFTX_DOUBLE}) {
      make(domain, 4, precision);
      expect(DFTX_NOT_COMMITTED, domain, precision);
      for (const int attempt : {0, 1, 2}) {  // even one that is refused makes another commit necessary
        EXPECT_EQ(commit(&descriptor), DFTX_NO_ERROR);
        expect(DFTX_NO_ERROR, domain, precision);
        EXPECT_EQ(change(attempt), DFTX_INVALID_ARGUMENT);
        expect(DFTX_NOT_COMMITTED, domain, precision);
      }
    }
}

// A commit that is refused leaves nothing that computes; the next may succeed.
TEST_F(Codes, OfARefusedCommit) {
  double x[8] = {}, y[8];
  make(DFTX_REAL, 4);
  EXPECT_EQ(commit(&descriptor), DFTX_NO_ERROR);
  set(&descriptor, DFTX_PACKED_FORMAT, DFTX_CCE_FORMAT);
  EXPECT_EQ(commit(&descriptor), DFTX_UNIMPLEMENTED);
  EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, y), DFTX_NOT_COMMITTED);
  set(&descriptor, DFTX_CONJUGATE_EVEN_STORAGE, DFTX_COMPLEX_COMPLEX);
  EXPECT_EQ(commit(&descriptor), DFTX_NO_ERROR);
  EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, y), DFTX_NO_ERROR);
}

TEST_F(Codes, OfErrorClasses) {
  for (int32_t status = -2; status < 10; ++status)
    for (int32_t error_class = -2; error_class < 10; ++error_class)
      EXPECT_EQ(qkr_dft_def_error_class_external(&status, &error_class), status == error_class);
}

TEST_F(Codes, OfMissingArrays) {
  double x[10] = {1}, y[10];
  make(DFTX_REAL, 8);
  for (const int32_t code : {DFTX_NOT_COMMITTED, DFTX_NO_ERROR}) {
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, nullptr, y), DFTX_INVALID_ARGUMENT);
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, nullptr), DFTX_INVALID_ARGUMENT);
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, y), code);
    EXPECT_EQ(commit(&descriptor), DFTX_NO_ERROR);
  }
}

// The complex storage brings its format along; going back to the real one does not.
TEST_F(Codes, StorageAndFormat) {
  make(DFTX_REAL, 4);
  const double x[] = {1, 2, 3, 5};
  double y[6];
  const auto forward = [&] {
    EXPECT_EQ(commit(&descriptor), DFTX_NO_ERROR);
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
    make(DFTX_REAL, length);
    EXPECT_EQ(set_scale(&descriptor, DFTX_FORWARD_SCALE, -2), DFTX_NO_ERROR);
    EXPECT_EQ(commit(&descriptor), DFTX_NO_ERROR);
    double y[260];
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, y), DFTX_NO_ERROR);
    EXPECT_TRUE(std::signbit(y[1]));
    EXPECT_EQ(y[length], -2);
    EXPECT_FALSE(std::signbit(y[length + 1]));
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
        make(DFTX_REAL, length);
        if (format == DFTX_CCE_FORMAT) set(&descriptor, DFTX_CONJUGATE_EVEN_STORAGE, DFTX_COMPLEX_COMPLEX);
        else set(&descriptor, DFTX_PACKED_FORMAT, format);
        set_scale(&descriptor, DFTX_BACKWARD_SCALE, factor);
        EXPECT_EQ(commit(&descriptor), DFTX_NO_ERROR);
        std::vector<double> spectrum(length + 2, 3.0), apart(length + 1, untouched);
        EXPECT_EQ(qkr_dft_def_compute_backward_zd_out(&descriptor, spectrum.data(), apart.data()),
                  DFTX_NO_ERROR);
        EXPECT_EQ(apart[length], untouched);
        EXPECT_EQ(qkr_dft_def_compute_backward_zd_out(&descriptor, spectrum.data(), spectrum.data()),
                  DFTX_NO_ERROR);
        EXPECT_EQ(spectrum[length], format == DFTX_CCS_FORMAT ? 0.0 : 3.0);
      }
}

}  // namespace
}  // namespace qkr::tests
