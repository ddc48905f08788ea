// Functions that C has not, by Boost.Math, under C names as those of libm are looked up.
#include <boost/math/special_functions/erf.hpp>

extern "C" {
double erf_inv(double x) { return boost::math::erf_inv(x); }
float erf_invf(float x) { return boost::math::erf_inv(x); }
long double erf_invl(long double x) { return boost::math::erf_inv(x); }
}
