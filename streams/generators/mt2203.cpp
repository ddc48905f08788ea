// MT2203: a family of 1024 Mersenne twisters with a state of 69 words each. Every member has a recurrence of
// its own, with period 2^2203 - 1. M. Matsumoto and T. Nishimura, Dynamic creation of pseudorandom number
// generators, Monte Carlo and Quasi-Monte Carlo Methods 1998 (2000) 56.
#include "streams/generators/soundness.h"
#include "streams/generators/twister.h"
#include "streams/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct Mt2203 {
  static constexpr int words = 69, middle = 34;
  static constexpr uint32_t upper_mask = 0xffffffe0;
  uint32_t mt[words];
  int32_t index;  // of the next word to be used
  uint32_t twist, mask_b, mask_c;
};

constexpr int words = Mt2203::words;
constexpr int most_blocks = 16;  // with 16 blocks of 69 words, no vector is cut

// The sequence as a line, which begins with the 69 words of the state: no indices to wrap. What follows the
// state lies on whole cache lines.
struct Line {
  static constexpr int lead = 11;
  alignas(64) uint32_t storage[lead + words + most_blocks * words + lanes];

  QKR_INLINE uint32_t *start() { return storage + lead; }
  QKR_INLINE void extend(int count, uint32_t twist);
};

#if QKR_SIMD_BYTES == 64
// The last 80 words stay in registers. Words that two stores have just written would have to wait for both:
// a lag of 34 words is only two vectors.
QKR_INLINE void Line::extend(int count, uint32_t twist) {
  const ForOdd matrix(twist);
  u32 w80, w64, w48, w32, w16;  // w80 holds the words from 80 places back on
  load(storage, w80);
  load(storage + 16, w64);
  load(storage + 32, w48);
  load(storage + 48, w32);
  load(storage + 64, w16);
  for (int i = 0; i < count; i += lanes) {
    constexpr int from = 80 - words;
    const u32 word = joined<from>(w80, w64), next = joined<from + 1>(w80, w64);
    const u32 far = joined<from + Mt2203::middle - 32>(w48, w32);
    const u32 made = far ^ twisted(word, next, Mt2203::upper_mask, matrix);
    store(storage + 80 + i, made);
    w80 = w64, w64 = w48, w48 = w32, w32 = w16, w16 = made;
  }
}
#else
QKR_INLINE void Line::extend(int count, uint32_t twist) {
  const ForOdd matrix(twist);
  for (uint32_t *at = start(), *end = at + count; at < end; at += lanes) {
    u32 word, next, far;
    load(at, word);
    load(at + 1, next);
    load(at + Mt2203::middle, far);
    store(at + words, far ^ twisted(word, next, Mt2203::upper_mask, matrix));
  }
}
#endif

template <class Output>
QKR_INLINE void fill(StreamState *stream, int32_t n, typename Output::Element *out, Output output) {
  Mt2203 &state = payload_of<Mt2203>(stream);
  const Tempering<12> tempering = {state.mask_b, state.mask_c};

  const int left = words - state.index, first = n < left ? n : left;
  if (first > 0) {
    emit(state.mt + state.index, first, out, output, tempering);
    state.index += first;
    out += first;
    n -= first;
  }
  if (n <= 0) return;

  Line line;
  memset(line.storage, 0, sizeof(uint32_t) * Line::lead);
  memcpy(line.start(), state.mt, sizeof state.mt);
  while (n > 0) {
    const int needed = n / words + (n % words != 0), blocks = needed < most_blocks ? needed : most_blocks;
    const int made = blocks * words, count = n < made ? n : made;
    line.extend(made, state.twist);
    emit(line.start() + words, count, out, output, tempering);
    memcpy(line.start(), line.start() + made, sizeof state.mt);
    state.index = words - (made - count);
    out += count;
    n -= count;
  }
  memcpy(state.mt, line.start(), sizeof state.mt);
}

#if QKR_BASELINE
struct Methods : NotPartitioned {
  static int32_t seed(StreamState *stream, int32_t n, const uint32_t *seeds) {
    seed_state<Mt2203>(stream, n, seeds);
    Mt2203 &state = payload_of<Mt2203>(stream);
    const uint32_t *row = mt2203::parameters[family_member(stream)];
    state.twist = row[0], state.mask_b = row[1], state.mask_c = row[2];
    return VXS_STATUS_OK;
  }
};
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
bool qkr::is_sound_mt2203(const StreamState *stream) {
  const auto &state = payload_of<sse2::Mt2203>(stream);
  return state.index >= 0 && state.index <= sse2::Mt2203::words;
}
#endif

QKR_INIT_STREAM(__vxsBRngMT2203InitStream, Methods)
QKR_WORD_ENTRY(__vxsiBRngMT2203, fill(stream, n, out, Words{}))
// In single precision the difference of the ends is taken before it is widened.
QKR_SCALED_ENTRY(__vxsdBRngMT2203, double, (b - a) * 0x1p-32)
QKR_SCALED_ENTRY(__vxssBRngMT2203, float, (double)(b - a) * 0x1p-32)
