// The tangent in double. Arguments from 12800 on take a reduction modulo pi/2 first, those from 2^30 on one
// by one.
#include "vecmath/frame/function.h"
#include "vecmath/frame/numbers.h"
#include "vecmath/real/circular/tangent.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct TanDouble : UnaryKernel<double, 2> {
  template <class V>
  QKR_INLINE static Flags special(V x) {
    return beyond(x, tangent_limit);
  }
  template <class V>
  QKR_INLINE static V core(V x) {
    return tangent(reduce<Grid64>(x, 0));
  }
  template <class V>
  QKR_INLINE static V wider_core(V x, Flags &special) {
    special = beyond(x, quarter_turns_limit);
    return tangent(reduce_wider(x, tangent_limit, 0));
  }
  static void treat(ptrdiff_t i, Arrays<double> v) { _vxmdTan_SC_HA(i, v.a, v.r); }
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
using namespace qkr;

double qkr::tangent_of_any(double x) {
  if (__builtin_fabs(x) == infinity<double>) return x * 0.0;
  if (x != x) return x * x;
  if (sse2::tiny(x)) return sse2::itself_if_tiny(x);
  return sse2::tangent(sse2::reduce_any(x, sse2::tangent_limit));
}
#endif

QKR_FUNCTION(_vxmdTan_HA, _vxmdTan_50, double, 0.70, 0x1.a40aa90acce51p-5, TanDouble)
