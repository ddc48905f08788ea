// Sine and cosine in double, over the formulas of sine_double.h. Arguments from 90112 on take a reduction
// modulo pi/2 first, those from 2^30 on one by one.
#include "vecmath/real/circular/sine_double.h"

#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Below this the count of grid steps times each of the first two parts of a step is exact.
constexpr double fast_limit = 90112.0;  // 0x40F60000

// Sine (quarter 0) and cosine (quarter 1): the cosine is the sine a quarter turn on.
template <int quarter, void (*per_element)(int32_t, const double *, double *)>
struct Circular : UnaryKernel<double, QKR_BASELINE ? 2 : 4> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, fast_limit);
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    return sine_or_cosine<quarter>(x);
  }
  template <class V>
  QKR_INLINE static V wider_core(V x, Flags &special) {
    special = beyond(x, quarter_turns_limit);
    return sine_at(reduce_wider(x, no_reduction, quarter * 16));
  }
  static void treat(ptrdiff_t i, Arrays<double> v) { per_element(i, v.a, v.r); }
};
using SinDouble = Circular<0, _vxmdSin_SC_HA>;
using CosDouble = Circular<1, _vxmdCos_SC_HA>;

struct SinCosDouble : UnaryKernel<double, 2> {
  static constexpr int results = 2;
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, fast_limit);
  }
  template <class V>
  QKR_INLINE static Pair<V> core(V x) {
    return sine_and_cosine(x);
  }
  template <class V>
  QKR_INLINE static Pair<V> wider_core(V x, Flags &special) {
    special = beyond(x, quarter_turns_limit);
    const Pair<V> near = core(x), far = sine_and_cosine_at(reduce_wider(x, no_reduction, 0));
    const auto large = absolute<double>(x) >= fast_limit;
    return {select(large, far.first, near.first), select(large, far.second, near.second)};
  }
  static void treat(ptrdiff_t i, Arrays<double> v) { _vxmdSinCos_SC_HA(i, v.a, v.r, v.q); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
using namespace qkr;

static double sine_of(const sse2::Reduced<double> &s, unsigned rows_on) {
  return sse2::sine_by_row<sse2::OneResult>(sse2::bits(s.t) + rows_on, s);
}

double qkr::sine_of_any(double x) {
  if (__builtin_fabs(x) == infinity<double>) return x * 0.0;
  if (x != x) return x * x;
  return sse2::tiny(x) ? sse2::itself_if_tiny(x) : sine_of(sse2::reduce_any(x, sse2::no_reduction), 0);
}

double qkr::cosine_of_any(double x) {
  if (__builtin_fabs(x) == infinity<double>) return x * 0.0;
  if (x != x) return x * x;
  return sse2::tiny(x) ? 1.0 - __builtin_fabs(x) : sine_of(sse2::reduce_any(x, sse2::no_reduction), 16);
}

void qkr::sine_and_cosine_of_any(double x, double *sine, double *cosine) {
  if (!__builtin_isless(__builtin_fabs(x), infinity<double>) || sse2::tiny(x)) {
    const double c = cosine_of_any(x);
    *sine = sine_of_any(x), *cosine = c;
    return;
  }
  const sse2::Reduced<double> s = sse2::reduce_any(x, sse2::no_reduction);
  *sine = sine_of(s, 0);
  *cosine = sine_of(s, 16);
}
#endif

QKR_FUNCTION(_vxmdSin_HA, _vxmdSin_50, double, 0.54, 0x1.814fc69a6da8ep+16, SinDouble)
QKR_FUNCTION(_vxmdCos_HA, _vxmdCos_50, double, 0.545, -0x1.d75b0d80639e6p+16, CosDouble)
QKR_FUNCTION_TO_TWO(_vxmdSinCos_HA, _vxmdSinCos_50, double, 0.56, 0x1.20eda84dbbc25p+6, SinCosDouble)
