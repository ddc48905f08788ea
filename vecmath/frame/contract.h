// The accuracy that a vector function promises, stated once, beside its kernel:
//
//   QKR_CONTRACT(_vxmdExp_HA, 0.53, 0x1.8p+3);   // largest error in ulp, and where it was found
//
// The linker gathers these records into one section, from which the accuracy tool and the tests read them.
#pragma once

#include "simd/vectors.h"

namespace qkr {

struct Contract {
  const char *function;
  double bound;  // in units in the last place of the exact result
  double worst;  // the worst input that has been measured; of a complex one the real part
  double worst_imaginary = 0;
};

}  // namespace qkr

#if QKR_BASELINE
#define QKR_CONTRACT(name, bound, ...)                                                                       \
  __attribute__((section("qkr_contracts"), used, aligned(8))) static const qkr::Contract name##_contract = { \
      #name, bound, __VA_ARGS__}
#else
#define QKR_CONTRACT(name, bound, ...) static_assert(true)
#endif
