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

#define QKR_BIT_REVERSAL(size, within, into)                                        \
  void within(void *data, int32_t n, const uint32_t *table) {                       \
    qkr::sigfft::reverse_in_place((Words<size / 4> *)data, (size_t)n, table);       \
  }                                                                                 \
  void into(const void *src, void *dst, int32_t n, const uint32_t *) {              \
    qkr::sigfft::reverse_into((const Words<size / 4> *)src, (Words<size / 4> *)dst, \
                              __builtin_ctz((unsigned)n));                          \
  }
QKR_BIT_REVERSAL(4, w6_zprs_BitRev1_4, w6_zprs_BitRev2_4)
QKR_BIT_REVERSAL(8, w6_zprs_BitRev1_8, w6_zprs_BitRev2_8)
QKR_BIT_REVERSAL(4, zprs_BitRev1_4, zprs_BitRev2_4)
QKR_BIT_REVERSAL(8, zprs_BitRev1_8, zprs_BitRev2_8)
QKR_BIT_REVERSAL(16, zprs_BitRev1_16, zprs_BitRev2_16)
