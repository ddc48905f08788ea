// R250: a generalised feedback shift register, s[i] = s[i - 250] ^ s[i - 147]. S. Kirkpatrick and E. P.
// Stoll, A very fast shift-register sequence random number generator, Journal of Computational Physics 40
// (1981) 517.
#include "streams/generators/generator.h"
#include "streams/generators/soundness.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int words = 250;

struct R250 {
  uint32_t ring[words];
  int32_t oldest;   // of the word to be replaced
  int32_t partner;  // of the word 103 places on
};

// Replaces, in place, `count` words at `oldest`: neither index wraps within them.
template <class Output>
QKR_INLINE void run(R250 &state, int count, typename Output::Element *out, const Output &output) {
  uint32_t *replaced = state.ring + state.oldest;
  const uint32_t *added = state.ring + state.partner;
  int i = 0;
  // Vectors must not read what they are about to replace. A state that was not made here may hold any
  // indices.
  if (state.partner > state.oldest || state.oldest - state.partner >= lanes) {
    for (; i + lanes <= count; i += lanes) {
      u32 a, b;
      load(replaced + i, a);
      load(added + i, b);
      store(replaced + i, a ^ b);
      put(output, out + i, a ^ b);
    }
  }
  for (; i < count; ++i) output.put_one(out + i, replaced[i] ^= added[i]);
  const auto moved = [count](int32_t index) { return index + count < words ? index + count : 0; };
  state.oldest = moved(state.oldest);
  state.partner = moved(state.partner);
}

// Long draws work on a line of words, which has no end to wrap at; before the new ones stand those of the
// ring, oldest first. All is written on borders of vectors, but for the first outputs: beyond the first
// cache, stores across borders cost twice. Vectors of 16 bytes gain too little.
constexpr int shorter_lag = 147, line_words = 2048;
constexpr int long_draw = QKR_BASELINE ? INT32_MAX : 2 * line_words;

struct Line {
  static constexpr int start = 256;
  alignas(64) uint32_t word[start + line_words];

  QKR_INLINE void extend(int count) {
    for (int i = start; i < start + count; i += lanes) {
      u32 a, b;
      load(word + i - words, a);
      load(word + i - shorter_lag, b);
      store(word + i, a ^ b);
    }
  }
};
static_assert(line_words % lanes == 0 && Line::start % lanes == 0 && shorter_lag >= lanes);

template <class Element>
QKR_INLINE int numbers_to_border(const Element *out) {
  return static_cast<int>(-reinterpret_cast<uintptr_t>(out) % 64 / sizeof *out);
}

template <class Output>
QKR_INLINE void run_long(R250 &state, int32_t n, typename Output::Element *out, const Output &output) {
  Line line;
  uint32_t *history = line.word + Line::start - words;
  const int older = words - state.oldest;
  memcpy(history, state.ring + state.oldest, sizeof(uint32_t) * static_cast<size_t>(older));
  memcpy(history + older, state.ring, sizeof(uint32_t) * static_cast<size_t>(state.oldest));
  int oldest = state.oldest;
  for (int count = numbers_to_border(out); n > 0; count = n < line_words ? n : line_words) {
    line.extend(count);
    emit(line.word + Line::start, count, out, output);
    memmove(history, history + count, sizeof state.ring);
    oldest = (oldest + count) % words;
    out += count;
    n -= count;
  }
  memcpy(state.ring + oldest, history, sizeof(uint32_t) * static_cast<size_t>(words - oldest));
  memcpy(state.ring, history + words - oldest, sizeof(uint32_t) * static_cast<size_t>(oldest));
  state.oldest = oldest;
  state.partner = (oldest + words - shorter_lag) % words;
}

template <class Output>
QKR_INLINE void fill(StreamState *stream, int32_t n, typename Output::Element *out, Output output) {
  R250 &state = payload_of<R250>(stream);
  if (n >= long_draw && state.partner == (state.oldest + words - shorter_lag) % words) {
    run_long(state, n, out, output);
    return;
  }
  while (n > 0) {
    const int left = words - (state.oldest > state.partner ? state.oldest : state.partner),
              count = n < left ? n : left;
    run(state, count, out, output);
    out += count;
    n -= count;
  }
}

#if QKR_BASELINE
// By a multiplicative generator; then a triangle of 32 linearly independent words is planted.
void fill_register(StreamState *stream, uint32_t seed) {
  uint32_t(&ring)[words] = payload_of<R250>(stream).ring;
  uint32_t x = seed ? seed : 1;
  for (uint32_t &word : ring) word = x *= 69069;
  for (int k = 0; k < 32; ++k) {
    uint32_t &word = ring[3 + 7 * k];
    word = (word & 0xffffffff >> k) | 0x80000000 >> k;
  }
}

struct Methods : NotPartitioned {
  static int32_t seed(StreamState *stream, int32_t n, const uint32_t *seeds) {
    R250 &state = payload_of<R250>(stream);
    if (n >= words) {
      memcpy(state.ring, seeds, sizeof state.ring);
    } else {
      fill_register(stream, n > 0 ? seeds[0] : 1);
    }
    state.oldest = 0;
    state.partner = 103;
    return VXS_STATUS_OK;
  }
};
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
bool qkr::is_sound_r250(const StreamState *stream) {
  const auto &state = payload_of<sse2::R250>(stream);
  const auto is_index = [](int32_t i) { return i >= 0 && i < sse2::words; };
  return is_index(state.oldest) && is_index(state.partner);
}
#endif

QKR_INIT_STREAM(__vxsBRngR250InitStream, Methods)
QKR_WORD_ENTRY(__vxsiBRngR250, fill(stream, n, out, Words{}))
QKR_SCALED_ENTRY(__vxsdBRngR250, double, (b - a) * 0x1p-32)
QKR_SCALED_ENTRY(__vxssBRngR250, float, ((double)b - a) * 0x1p-32)
