// Bit reversal of elements of 4, 8 and 16 bytes: in place by the pairs of the table, and from one array to
// another.
#include "sigfft/passes/bit_reversal.h"

#include "sigfft/routes/kernels.h"

namespace {
template <int words>
struct __attribute__((may_alias)) Words {
  uint32_t word[words];
};
}  // namespace

#define QKR_BIT_REVERSAL(prefix, size)                                                        \
  void prefix##zprs_BitRev1_##size(void *data, int32_t n, const uint32_t *table) {            \
    qkr::sigfft::reverse_in_place((Words<size / 4> *)data, (size_t)n, table);                 \
  }                                                                                           \
  void prefix##zprs_BitRev2_##size(const void *src, void *dst, int32_t n, const uint32_t *) { \
    qkr::sigfft::reverse_into((const Words<size / 4> *)src, (Words<size / 4> *)dst,           \
                              __builtin_ctz((unsigned)n));                                    \
  }
QKR_BIT_REVERSAL(, 4)
QKR_BIT_REVERSAL(, 8)
QKR_BIT_REVERSAL(, 16)
QKR_BIT_REVERSAL(w6_, 4)
QKR_BIT_REVERSAL(w6_, 8)
