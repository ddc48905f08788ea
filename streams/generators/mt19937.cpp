// MT19937: the Mersenne twister with a state of 624 words.
#include "streams/generators/mt19937.h"

#include "streams/generators/soundness.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// All words anew, in place and a vector at a time: each needs the words from itself to one further on, and
// those 397 further on, or 227 back. Only two vectors read across the end of the state, which is copied for
// them.
QKR_NOINLINE void refill(uint32_t *mt) {
  constexpr int words = Mt19937::words, middle = Mt19937::middle, back = words - middle;
  constexpr int crossing = back / 16 * 16;  // the vector at this word is the first that does
  static_assert(words % 16 == 0 && crossing % lanes == 0 && back % 16 < lanes + 3);
  constexpr int tail = words - 16;
  uint32_t around_end[16 + lanes];
  const auto copy_end = [&] {
    memcpy(around_end, mt + tail, 16 * sizeof *mt);
    memcpy(around_end + 16, mt, sizeof(u32));
  };
  const ForOdd matrix(0x9908b0df);
  const auto make = [&](auto word, int k, const uint32_t *from, const uint32_t *far) QKR_LAMBDA {
    auto next = word, added = word;
    load(from, word);
    load(from + 1, next);
    load(far, added);
    store(mt + k, added ^ twisted(word, next, 0x80000000u, matrix));
  };
  int k = 0;
  const auto make_until = [&](int end, int distance) QKR_LAMBDA {
    using Group = SideBySide<u32, QKR_SIMD_BYTES == 64 ? 2 : 1>::type;
    constexpr int group = numbers_in<Group>;
    for (; k + group <= end; k += group) make(Group(), k, mt + k, mt + k + distance);
    for (; k < end; k += lanes) make(u32(), k, mt + k, mt + k + distance);
  };

  make_until(crossing, middle);
  copy_end();
  make(u32(), k, mt + k, around_end + k + middle - tail);
  k += lanes;
  make_until(words - lanes, -back);
  copy_end();
  make(u32(), k, around_end + k - tail, mt + k - back);
}

template <class Output>
QKR_INLINE void fill(StreamState *stream, int32_t n, typename Output::Element *out, Output output) {
  Mt19937 &state = payload_of<Mt19937>(stream);
  while (n > 0) {
    if (state.index >= Mt19937::words) {
      refill(state.mt);
      state.index = 0;
    }
    const int left = Mt19937::words - state.index, count = n < left ? n : left;
    emit(state.mt + state.index, count, out, output, tempering);
    state.index += count;
    out += count;
    n -= count;
  }
}

#if QKR_BASELINE
struct Methods : NotPartitioned {
  static int32_t seed(StreamState *stream, int32_t n, const uint32_t *seeds) {
    seed_state<Mt19937>(stream, n, seeds);
    return VXS_STATUS_OK;
  }
};
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
bool qkr::is_sound_mt19937(const StreamState *stream) {
  const auto &state = payload_of<sse2::Mt19937>(stream);
  return state.index >= 0 && state.index <= sse2::Mt19937::words;
}
#endif

QKR_INIT_STREAM(__vxsBRngMT19937InitStream, Methods)
QKR_WORD_ENTRY(__vxsiBRngMT19937, fill(stream, n, out, Words{}))
QKR_SCALED_ENTRY(__vxsdBRngMT19937, double, (b - a) * 0x1p-32)
QKR_SCALED_ENTRY(__vxssBRngMT19937, float, ((double)b - a) * 0x1p-32)
