// Classes of a double by its bit pattern: no event, whatever it is.
#include <qkr/vecmath_complex.h>

#include "simd/vectors.h"
#include "vecmath/frame/numbers.h"

using namespace qkr;
using sse2::bits;

static constexpr uint64_t infinite = pattern_of_infinity(0.0), minus = (uint64_t)1 << 63;

extern "C" {

int32_t _vxm_internal_isinf(double x) { return magnitude(bits(x)) == infinite; }
int32_t _vxm_internal_isnan(double x) { return magnitude(bits(x)) > infinite; }
int32_t _vxm_internal_iszero(double x) { return magnitude(bits(x)) == 0; }
int32_t _vxm_internal_isnegzero(double x) { return bits(x) == minus; }
int32_t _vxm_internal_isninf(double x) { return bits(x) == (infinite | minus); }
int32_t _vxm_internal_ispinf(double x) { return bits(x) == infinite; }
int32_t _vxm_internal_isnzfinite(double x) { return magnitude(bits(x)) - 1 < infinite - 1; }

}  // extern "C"
