// MCG59: x' = 13^13 x mod 2^59 (NAG Library Manual, Mark 7, 1979: its basic generator).
#include "streams/generators/congruential.h"
#include "streams/generators/skips.h"
#include "streams/generators/soundness.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Residues are kept 5 bits up, so that the wrap of a 64-bit product is the modulus.
constexpr int margin = 5;
constexpr uint64_t mask = ~0ull >> margin;

struct Power59 {
  using Word = uint64_t;
  static constexpr Word multiplier = 302875106592253;

  // The first two words, the lower half first; the rest are not used.
  static Word residue(int32_t n, const uint32_t *seeds) {
    return (seeds[0] | (n > 1 ? (Word)seeds[1] << 32 : 0)) & mask;
  }
  static Word reduced(Word x) { return x & mask; }

  QKR_INLINE static Word times(Word x, Word a) { return x * a; }

#if QKR_BASELINE  // general registers: the multiplication of two lanes is slower than two multiplications
  using V = Two<uint64_t>;
  using Stretch = Two<Two<uint64_t>>;
  using Factor = uint64_t;
  static constexpr int smallest = 16, many = 0;
  QKR_INLINE static Factor factor(Word a) { return a; }
  QKR_INLINE static V times(V x, Factor a) { return x * a; }
#else
  using V = u64;
  using Stretch = Two<u64>;
#if QKR_SIMD_BYTES == 64
  using Factor = u64;
  static constexpr int smallest = 32, many = 512;
  QKR_INLINE static Factor factor(Word a) { return a - u64{}; }
  QKR_INLINE static V times(V x, Factor a) { return x * a; }
#else
  struct Factor {
    u64 low, high;
  };
  static constexpr int smallest = 64, many = 0;
  QKR_INLINE static Factor factor(Word a) { return {a - u64{}, (a >> 32) - u64{}}; }
  QKR_INLINE static V times(V x, Factor a) {
    const u64 crosswise = product_of_low_halves(x >> 32, a.low) + product_of_low_halves(x, a.high);
    return product_of_low_halves(x, a.low) + (crosswise << 32);
  }
#endif
#endif
};

// An output of the numbers, by their residues.
template <class Output>
struct Numbers : Output {
  using Element = typename Output::Element;
  template <class V>
  requires(numbers_in<V> == lanes) QKR_INLINE void put(Element *out, V residues) const {
    Output::put(out, residues >> margin);
  }
  QKR_INLINE void put_one(Element *out, uint64_t residue) const { Output::put_one(out, residue >> margin); }
};
#if !QKR_BASELINE
// A unit that is so much smaller does the same as the shift.
template <class Real>
struct Numbers<Multiples<Real>> : Multiples<Real> {
  QKR_INLINE void put(Real *out, Two<u64> residues) const {
    constexpr double unit_of_residue = 1.0 / (1 << margin);
    store_rounded(out, multiples_of(this->unit * unit_of_residue, residues));
  }
  QKR_INLINE void put_one(Real *out, uint64_t residue) const {
    Multiples<Real>::put_one(out, residue >> margin);
  }
};
#endif

template <class Output>
QKR_INLINE void fill(StreamState *stream, int32_t n, typename Output::Element *out, Output output) {
  auto &state = payload_of<CongruentialState<uint64_t>>(stream);
  uint64_t x = state.x << margin;
  draw_congruential<Power59>(x, state.a, n, out, Numbers<Output>{output});
  state.x = x >> margin;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
bool qkr::is_sound_mcg59(const StreamState *stream) {
  const auto &state = payload_of<sse2::CongruentialState<uint64_t>>(stream);
  return state.x <= sse2::mask && state.a <= sse2::mask;
}

int32_t qkr::skip_mcg59(StreamState *stream, uint64_t count) {
  return sse2::CongruentialMethods<sse2::Power59>::skip(stream, count);
}
#endif

QKR_INIT_STREAM(__vxsBRngMCG59InitStream, CongruentialMethods<Power59>)
QKR_WORD_ENTRY_OR_FEW(__vxsiBRngMCG59, fill(stream, n, reinterpret_cast<uint64_t *>(out), LongWords{}))
QKR_SCALED_ENTRY_OR_FEW(__vxsdBRngMCG59, double, (b - a) * 0x1p-59)
QKR_SCALED_ENTRY_OR_FEW(__vxssBRngMCG59, float, ((double)b - a) * 0x1p-59)

#if QKR_BASELINE
extern "C" uint64_t __vxsiPowMod2P59(uint64_t base, int32_t exponent) {
  return qkr::sse2::power_of<qkr::sse2::Power59>(base, (uint32_t)exponent);
}
#endif
