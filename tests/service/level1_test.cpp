// The level-1 kernels against plain loops, bit for bit: every length around the vectors, all alignments,
// strides of both signs and zero, at each level, and nothing touched beyond the elements.
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <qkr/service_level1.h>
#include <vector>

#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

constexpr int32_t lengths[] = {-3, 0, 1, 2, 3, 4, 5, 7, 8, 15, 16, 17, 31, 33, 64, 100};
constexpr int32_t strides[] = {-3, -2, -1, 0, 1, 2, 3};

// Enough for the longest vector, with margins. A signalling NaN would be quietened by a floating-point move.
template <class T>
std::vector<T> numbers(T first) {
  std::vector<T> x(640);
  for (size_t i = 0; i < x.size(); ++i) x[i] = first + static_cast<T>(i) / 7;
  using Format = std::numeric_limits<T>;
  const T special[] = {Format::infinity(), Format::signaling_NaN(), T(-0.0), Format::denorm_min()};
  for (size_t i = 5; i < x.size(); i += 37) x[i] = special[i % 4];
  return x;
}

// call(found, expected) for each length and pair of strides.
template <class T, class Call>
void for_all_shapes(Call call) {
  for (const int32_t n : lengths)
    for (const int32_t incx : strides)
      for (const int32_t incy : strides)
        for_each_level([&](const char *level) {
          std::vector<T> expected = numbers<T>(1000), found = expected;
          call(n, incx, incy, found, expected);
          EXPECT_EQ(std::memcmp(found.data(), expected.data(), found.size() * sizeof(T)), 0)
              << level << ", n " << n << ", incx " << incx << ", incy " << incy;
        });
}

template <class T, class Vector>
void check_scaling(void (*scale)(const int32_t *, const T *, Vector *, const int32_t *), int parts) {
  for_all_shapes<T>([=](int32_t n, int32_t stride, int32_t start, auto &found, auto &expected) {
    const T alpha = start == 1 ? T(0) : T(1) / 3;
    start += 3;
    for (int32_t i = 0; i < n; ++i)
      for (int p = 0; p < parts; ++p) expected[start + i * parts * std::abs(stride) + p] *= alpha;
    scale(&n, &alpha, found.data() + start, &stride);
  });
}

template <class T, class Vector>
void check_copying(void (*copy)(const int32_t *, const Vector *, const int32_t *, Vector *, const int32_t *),
                   int parts) {
  const std::vector<T> x = numbers<T>(1);
  for_all_shapes<T>([&](int32_t n, int32_t incx, int32_t incy, auto &found, auto &expected) {
    const auto element = [&](int32_t i, int32_t stride) {
      return 1 + (stride < 0 ? (i - n + 1) * stride : i * stride) * parts;
    };
    for (int32_t i = 0; i < n; ++i)
      for (int p = 0; p < parts; ++p) expected[element(i, incy) + p] = x[element(i, incx) + p];
    copy(&n, x.data() + 1, &incx, found.data() + 1, &incy);
  });
}

TEST(Level1, Scaling) {
  check_scaling<float, float>(qkr_blas_def_sscal, 1);
  check_scaling<double, double>(qkr_blas_def_dscal, 1);
  check_scaling<float, void>(qkr_blas_def_csscal, 2);
  check_scaling<double, void>(qkr_blas_def_zdscal, 2);
}

TEST(Level1, Copying) {
  check_copying<float, float>(qkr_blas_def_scopy, 1);
  check_copying<double, double>(qkr_blas_def_dcopy, 1);
  check_copying<float, void>(qkr_blas_def_ccopy, 2);
  check_copying<double, void>(qkr_blas_def_zcopy, 2);
}

}  // namespace
}  // namespace qkr::tests
