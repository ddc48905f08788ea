// Square root from the processor's approximate reciprocal square root y of x: with e = x y^2 - 1,
// sqrt(x) = x y (1 + e)^(-1/2), by its Taylor series. x is split so that its head times y is exact.
#include "vecmath/frame/contract.h"
#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"

namespace qkr::sse2 {
void sqrt_scalar(ptrdiff_t i, Arrays<double> v);
void sqrt_scalar(ptrdiff_t i, Arrays<float> v);
}  // namespace qkr::sse2

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct SqrtDouble : UnaryKernel<double, QKR_BASELINE ? 2 : 4> {
  static constexpr double C1 = -0.5, C2 = 0.375, C3 = -0.3125, C4 = 0.2734375, C5 = -0.24609375;
  static constexpr uint64_t head = 0xFFFFFFFF00000000;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return not_positive_normal(x);
  }

  // 1 / sqrt(x) to 12 bits, with 21 significant bits. The single-precision instruction sees the fraction and
  // the parity of the exponent as a number in [1, 4); half the exponent is put in afterwards.
  template <class B>
  QKR_INLINE static auto reciprocal_root(B pattern) {
    const B single = (((pattern >> 29) & 0x00FFFFFFu) ^ 0x00800000u) + 0x3F800000u;
    const B root = approximate_rsqrt(single) << 29;
    const B half_exponent = ((pattern - 0x0010000000000000u) & 0xFFE0000000000000u) >> 1;
    return real(((root + 0x57F0000000000000u) - half_exponent) & head);
  }

  // x y (1 + p), where e and so p were found from the scaled x.
  template <class V>
  QKR_INLINE static V root(V x, V scaled) {
    const V y = reciprocal_root(bits(scaled)), y2 = y * y;
    const V s_hi = real(bits(scaled) & head), s_lo = scaled - s_hi;
    const V e = (s_hi * y2 - 1.0) + s_lo * y2;
    const V p = e * (C1 + e * (C2 + e * (C3 + e * (C4 + e * C5))));
    const V x_hi = real(bits(x) & head), x_lo = x - x_hi;
    return exact_mad(x_hi, y, exact_mad(x_lo, y, p * y * x));
  }

  template <class V>
  QKR_INLINE static V core(V x) {
    return root(x, x);
  }

  QKR_INLINE static void scalar(ptrdiff_t i, Arrays<double> v) { sse2::sqrt_scalar(i, v); }
};

struct SqrtSingle : UnaryKernel<float, QKR_BASELINE ? 2 : 4> {
  static constexpr float C1 = -0.5f, C2 = 0.375f, C3 = -0.3125f;
  static constexpr uint32_t head = 0xFFFF8000;

  template <class V>
  QKR_INLINE static Flags special(V x) {
    return not_positive_normal(x);
  }

  template <class V>
  QKR_INLINE static V core(V x) {
    const V y = real(bits(approximate_rsqrt(x)) & head), y2 = y * y;
    const V x_hi = real(bits(x) & head), x_lo = x - x_hi;
    const V e = (x_hi * y2 - 1.0f) + x_lo * y2;
    const V p = e * (C1 + e * (C2 + e * C3));
    return exact_mad(x_hi, y, exact_mad(x_lo, y, p * y * x));
  }

  QKR_INLINE static void scalar(ptrdiff_t i, Arrays<float> v) { sse2::sqrt_scalar(i, v); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
namespace qkr::sse2 {

void sqrt_scalar(ptrdiff_t i, Arrays<double> v) {
  constexpr double scale = 0x1p54, root_of_scale = 0x1p27;
  constexpr uint64_t indefinite_pattern = 0xFFF8000000000000;
  const double x = v.a[i];
  const uint64_t pattern = bits(x);
  double &r = v.r[i];
  if (magnitude(pattern) > infinity_pattern_double) {
    r = x * at_run_time(1.0);
  } else if (pattern == infinity_pattern_double || magnitude(pattern) == 0) {
    r = x;
  } else if (pattern >> 63) {
    r = real(indefinite_pattern);
    report(1, i, v, "_vxmdSqrt_HA");
  } else if (pattern < 0x0010000000000000u) {
    r = SqrtDouble::root(x, x * scale) * root_of_scale;
  } else {
    r = SqrtDouble::core(x);
  }
}

void sqrt_scalar(ptrdiff_t i, Arrays<float> v) {
  constexpr float scale = 0x1p24f, root_of_scale = 0x1p-12f;
  const float x = v.a[i];
  const uint32_t pattern = bits(x);
  float &r = v.r[i];
  if (magnitude(pattern) == 0 || pattern == infinity_pattern_single) {
    r = x;
  } else if (magnitude(pattern) > infinity_pattern_single) {
    r = x * at_run_time(1.0f);
  } else if (pattern >> 31) {
    r = real(0xFFC00000u);
    report(1, i, v, "_vxmsSqrt_HA");
  } else if (pattern < 0x00800000u) {
    r = SqrtSingle::core(x * scale) * root_of_scale;
  } else {
    r = SqrtSingle::core(x);
  }
}

}  // namespace qkr::sse2
#endif

QKR_CONTRACT(_vxmdSqrt_HA, 0.501, 0x1.303d9e1c7e2dbp+11);
QKR_CONTRACT(_vxmsSqrt_HA, 0.761, 0x1.d36a5ep-125);

QKR_UNARY(_vxmdSqrt_HA, double, SqrtDouble)
QKR_UNARY(_vxmsSqrt_HA, float, SqrtSingle)
QKR_UNARY_FORWARD(_vxmdSqrt_HA, _vxmdSqrt_50, double)
QKR_UNARY_FORWARD(_vxmsSqrt_HA, _vxmsSqrt_21, float)
