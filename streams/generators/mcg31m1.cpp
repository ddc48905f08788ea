// MCG31M1: x' = 1132489760 x mod 2^31 - 1. P. L'Ecuyer, Tables of linear congruential generators of different
// sizes and good lattice structure, Mathematics of Computation 68 (1999) 249.
#include "streams/generators/congruential.h"
#include "streams/generators/skips.h"
#include "streams/generators/soundness.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr uint32_t modulus = 0x7fffffff;

// 2^31 = 1 modulo m: the upper bits of a product are added to the lower ones.
struct Mersenne31 {
  using Word = uint32_t;
  using V = u32;
  using Stretch = u32;
  using Factor = u64;
  static constexpr int smallest = 4 * lanes, many = 0;
  static constexpr Word multiplier = 1132489760;

  static Word residue(int32_t, const uint32_t *seeds) { return seeds[0] % modulus; }

  static Word reduced(Word x) { return x; }

  QKR_INLINE static Word times(Word x, Word a) {
    const uint64_t product = (uint64_t)x * a;
    const uint32_t folded = (uint32_t)(product & modulus) + (uint32_t)(product >> 31);
    return folded >= modulus ? folded - modulus : folded;
  }

  // Twice the multiplier: then a product's upper word is the part above bit 31, the lower twice the rest.
  QKR_INLINE static Factor factor(Word a) { return 2 * (uint64_t)a - u64{}; }
  QKR_INLINE static V times(V x, Factor twice_a) {
    const u64 low = product_of_low_halves((u64)unpack_low(x, x), twice_a);
    const u64 high = product_of_low_halves((u64)unpack_high(x, x), twice_a);
    const u32 folded = odd_words(low, high) + (even_words(low, high) >> 1);
#if QKR_BASELINE
    return (folded & modulus) + (folded >> 31);  // x is not 0 modulo m, so neither is this
#else
    return smaller(folded, folded - modulus);
#endif
  }
};

template <class Output>
QKR_INLINE void fill(StreamState *stream, int32_t n, typename Output::Element *out, Output output) {
  auto &state = payload_of<CongruentialState<uint32_t>>(stream);
  draw_congruential<Mersenne31>(state.x, state.a, n, out, output);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
bool qkr::is_sound_mcg31m1(const StreamState *stream) {
  const auto &state = payload_of<sse2::CongruentialState<uint32_t>>(stream);
  const auto is_residue = [](uint32_t x) { return x > 0 && x < sse2::modulus; };
  return is_residue(state.x) && is_residue(state.a);
}

int32_t qkr::skip_mcg31m1(StreamState *stream, uint64_t count) {
  return sse2::CongruentialMethods<sse2::Mersenne31>::skip(stream, count);
}
#endif

QKR_INIT_STREAM(__vxsBRngMCG31M1InitStream, CongruentialMethods<Mersenne31>)
QKR_WORD_ENTRY_OR_FEW(__vxsiBRngMCG31M1, fill(stream, n, out, Words{}))
QKR_REAL_ENTRY_OR_FEW(__vxsdBRngMCG31M1, double, fill(stream, n, out, doubles((b - a) / 2147483647.0, a)))
QKR_REAL_ENTRY_OR_FEW(__vxssBRngMCG31M1, float,
                      fill(stream, n, out, RealsInSingle{(float)((b - a) / 2147483647.0), a}))

#if QKR_BASELINE
extern "C" uint32_t __vxsiPowMod2P31M1(uint32_t base, int32_t exponent) {
  return qkr::sse2::power_of<qkr::sse2::Mersenne31>(base, (uint32_t)exponent);
}
#endif
