// Real and complex numbers of many bits, for references, and the error of a result beside them.
#pragma once

#include <boost/multiprecision/mpc.hpp>
#include <boost/multiprecision/mpfr.hpp>

namespace qkr::tests {

template <unsigned digits>
using Decimals = boost::multiprecision::number<boost::multiprecision::mpfr_float_backend<digits>,
                                               boost::multiprecision::et_off>;
using Big = Decimals<38>;
using BigComplex = boost::multiprecision::number<boost::multiprecision::mpc_complex_backend<38>,
                                                 boost::multiprecision::et_off>;

// As the functions of MPFR and MPC take it.
auto raw(auto &&number) { return number.backend().data(); }

// The error of a computed result in units in the last place of the exact one. A result below the normal range
// counts in subnormal spacings. Infinite for anything but a number near it, except an infinity where it
// rounds to one, and a NaN where there is no exact value.
template <class T>
double error_in_ulp(T computed, const Big &exact);

}  // namespace qkr::tests
