// What descriptors answer to what model_test.cpp does not try, and what single settings mean.
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

// What the sequences of model_test.cpp do not come to: sizes beyond memory, numbers beyond all arrays.
TEST_F(Codes, OfLargeNumbers) {
  for (const std::vector<int32_t> &lengths : {std::vector{65536, 65536}, {INT32_MAX, INT32_MAX, INT32_MAX}})
    EXPECT_EQ(create(&descriptor, DFTX_SINGLE, DFTX_COMPLEX, static_cast<int32_t>(lengths.size()), lengths),
              DFTX_MEMORY_ERROR);
  EXPECT_EQ(descriptor, nullptr);
  make(DFTX_REAL, {8});
  for (const int32_t parameter :
       {DFTX_NUMBER_OF_TRANSFORMS, DFTX_INPUT_DISTANCE, DFTX_OUTPUT_DISTANCE, DFTX_THREAD_LIMIT})
    for (const int32_t value : {-7, 0, INT32_MIN, INT32_MAX})
      EXPECT_EQ(set(&descriptor, parameter, value), DFTX_NO_ERROR) << parameter << ' ' << value;
}

TEST_F(Codes, OfABlockThatIsNoDescriptor) {
  double data[16] = {}, other[16] = {};
  char text[4096] = "no descriptor";
  DftDescriptor *wrong = reinterpret_cast<DftDescriptor *>(text);
  const int32_t strides[] = {1};
  for (const int32_t answer :
       {set(&wrong, DFTX_PLACEMENT, DFTX_INPLACE), set_scale(&wrong, DFTX_FORWARD_SCALE, 1),
        qkr_dft_set_strides(&wrong, strides, strides), qkr_dft_def_commit_descriptor_external(&wrong),
        qkr_dft_def_free_descriptor_external(&wrong), qkr_dft_def_compute_forward_z(&wrong, data),
        qkr_dft_def_compute_backward_zd_out(&wrong, data, other)})
    EXPECT_EQ(answer, DFTX_BAD_DESCRIPTOR);
  EXPECT_STREQ(text, "no descriptor");
}

TEST_F(Codes, OfErrorClasses) {
  for (int32_t status = -2; status < 10; ++status)
    for (int32_t error_class = -2; error_class < 10; ++error_class)
      EXPECT_EQ(qkr_dft_def_error_class_external(&status, &error_class), status == error_class);
}

TEST_F(Codes, OfMissingArrays) {
  double x[10] = {1}, y[10];
  make(DFTX_REAL, {8});
  for (const int32_t code : {DFTX_NOT_COMMITTED, DFTX_NO_ERROR}) {
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, nullptr, y), DFTX_INVALID_ARGUMENT);
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, nullptr), DFTX_INVALID_ARGUMENT);
    EXPECT_EQ(qkr_dft_def_compute_forward_dz_out(&descriptor, x, y), code);
    EXPECT_EQ(commit(), DFTX_NO_ERROR);
  }
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
