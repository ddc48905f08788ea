// Philox 4x32-10: four words are ten rounds of multiplications over a counter and a key. J. K. Salmon, M. A.
// Moraes, R. O. Dror and D. E. Shaw, Parallel random numbers: as easy as 1, 2, 3, SC11 (2011).
//
// It joins the registry when it is first asked for, by __vxsRegisterBrng() as a generator of an application
// does, and so is the example of one: a payload, the four functions of a BrngRecord, the call at the end.
#include <pthread.h>

#include "streams/generators/generator.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct Philox {
  uint32_t counter[4];  // of the block that the next number belongs to, the lowest word first
  uint32_t key[2];
  uint32_t used;  // numbers of that block that have gone out, 0 to 3
};

constexpr uint32_t rounds = 10, block = 4;
constexpr uint32_t multipliers[2] = {0xd2511f53, 0xcd9e8d57};
constexpr uint32_t weyl[2] = {0x9e3779b9, 0xbb67ae85};  // what the key grows by from round to round

QKR_INLINE uint64_t product_of_low_halves(uint64_t a, uint64_t b) { return (uint64_t)(uint32_t)a * b; }
QKR_INLINE Two<u64> product_of_low_halves(Two<u64> a, uint64_t b) {
  return {product_of_low_halves(a.a, b - u64{}), product_of_low_halves(a.b, b - u64{})};
}

// The words of the blocks whose counters stand in x. All are in the lower halves of 64-bit lanes; what the
// upper halves hold does not matter. V is Two<u64>, or one uint64_t.
template <class V>
QKR_INLINE void mix(V (&x)[block], const uint32_t (&key)[2]) {
#pragma GCC unroll 10
  for (uint32_t round = 0; round < rounds; ++round) {
    const V p = product_of_low_halves(x[0], multipliers[0]), q = product_of_low_halves(x[2], multipliers[1]);
    x[0] = (q >> 32) ^ x[1] ^ (uint64_t)(key[0] + round * weyl[0]);
    x[1] = q;
    x[2] = (p >> 32) ^ x[3] ^ (uint64_t)(key[1] + round * weyl[1]);
    x[3] = p;
  }
}

QKR_INLINE uint64_t low_half(const Philox &state) {
  return state.counter[0] | (uint64_t)state.counter[1] << 32;
}

QKR_INLINE void advance(Philox &state, uint64_t numbers) {
  const uint64_t used = state.used % block + numbers % block;  // a file may bring any `used`
  const uint64_t low = low_half(state) + (numbers / block + used / block), before = low_half(state);
  uint64_t high = state.counter[2] | (uint64_t)state.counter[3] << 32;
  high += low < before;
  state = {{(uint32_t)low, (uint32_t)(low >> 32), (uint32_t)high, (uint32_t)(high >> 32)},
           {state.key[0], state.key[1]},
           (uint32_t)(used % block)};
}

// A group is two vectors of blocks. Their words come out by lanes of 128 bits, the first block of each and
// then the second, and so the counters are dealt out.
constexpr int across = sizeof(u64) / sizeof(uint64_t), group = 2 * block * across;
struct Places {
  alignas(64) uint64_t of_lane[across];
};
constexpr Places places = [] {
  Places p = {};
  for (int l = 0; l < across; ++l) p.of_lane[l] = (uint64_t)(l % 2 * (across / 2) + l / 2);
  return p;
}();

template <class Output>
QKR_INLINE void put_blocks(const Output &output, typename Output::Element *out, u64 x0, u64 x1, u64 x2,
                           u64 x3) {
  const auto x01 = (u64)even_words(x0, x1), x23 = (u64)even_words(x2, x3);
  put(output, out, even_words(x01, x23));
  put(output, out + lanes, odd_words(x01, x23));
}

// `count` groups of whole blocks; the low half of the counter does not wrap before their end.
template <class Output>
QKR_INLINE void put_groups(const Philox &state, ptrdiff_t count, typename Output::Element *out,
                           const Output &output) {
  u64 offsets;
  load(places.of_lane, offsets);
  Two<u64> low = {offsets + low_half(state), offsets + (low_half(state) + across)};
  const Two<u64> third = {state.counter[2] - u64{}, state.counter[2] - u64{}};
  const Two<u64> fourth = {state.counter[3] - u64{}, state.counter[3] - u64{}};
  for (; count > 0; --count, out += group) {
    Two<u64> x[block] = {low, low >> 32, third, fourth};
    mix(x, state.key);
    put_blocks(output, out, x[0].a, x[1].a, x[2].a, x[3].a);
    put_blocks(output, out + group / 2, x[0].b, x[1].b, x[2].b, x[3].b);
    low = low + (uint64_t)(2 * across);
  }
}

// The numbers that are left of the current block, or as many as are wanted. Returns how many.
template <class Output>
QKR_INLINE ptrdiff_t put_rest(const Philox &state, ptrdiff_t wanted, typename Output::Element *out,
                              const Output &output) {
  uint64_t x[block] = {state.counter[0], state.counter[1], state.counter[2], state.counter[3]};
  mix(x, state.key);
  const ptrdiff_t used = state.used % block, left = block - used, count = wanted < left ? wanted : left;
  for (ptrdiff_t j = 0; j < count; ++j) output.put_one(out + j, (uint32_t)x[used + j]);
  return count;
}

template <class Output>
QKR_INLINE void fill(StreamState *stream, int32_t n, typename Output::Element *out, Output output) {
  Philox &state = payload_of<Philox>(stream);
  for (ptrdiff_t i = 0; i < n;) {
    const uint64_t groups_to_wrap = (~low_half(state) >> 1) / across;  // or one fewer
    const auto groups = (uint64_t)(n - i) / group;
    ptrdiff_t count;
    if (state.used % block != 0 || groups == 0 || groups_to_wrap == 0) {
      count = put_rest(state, n - i, out + i, output);
    } else {
      count = (ptrdiff_t)(groups < groups_to_wrap ? groups : groups_to_wrap);
      put_groups(state, count, out + i, output);
      count *= group;
    }
    advance(state, (uint64_t)count);
    i += count;
  }
}

#if QKR_BASELINE
struct Methods : NotPartitioned {
  static int32_t seed(StreamState *stream, int32_t n, const uint32_t *seeds) {
    const auto word = [=](int32_t i) { return i < n ? seeds[i] : 0; };
    payload_of<Philox>(stream) = {{word(2), word(3), word(4), word(5)}, {word(0), word(1)}, 0};
    return VXS_STATUS_OK;
  }
};
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

QKR_WORD_ENTRY(qkr_philox_words, fill(stream, n, out, Words{}))
QKR_SCALED_ENTRY(qkr_philox_doubles, double, (b - a) * 0x1p-32)
QKR_SCALED_ENTRY(qkr_philox_singles, float, ((double)b - a) * 0x1p-32)

#if QKR_BASELINE
namespace {

using namespace qkr::sse2;

int32_t philox_init_stream(int32_t method, StreamState *stream, int32_t n, const void *params) {
  switch (method) {
    case VXS_INIT_SKIP_AHEAD:
      if (n < 0) return VXS_STATUS_NO_SKIP_AHEAD;
      advance(qkr::payload_of<Philox>(stream), (uint64_t)n);
      return VXS_STATUS_OK;
    case QKR_INIT_SKIP_AHEAD_64:
      advance(qkr::payload_of<Philox>(stream), *(const uint64_t *)params);
      return VXS_STATUS_OK;
    default:
      return init_stream<Methods>(method, stream, n, params);
  }
}

pthread_once_t registered = PTHREAD_ONCE_INIT;
int32_t philox_id;

void register_philox() {
  constexpr int32_t rows = 512;
  constexpr BrngRecord record = {sizeof(StreamState) + sizeof(Philox),
                                 sizeof(Philox) / 4,
                                 1,
                                 4,
                                 32,
                                 philox_init_stream,
                                 qkr_philox_singles,
                                 qkr_philox_doubles,
                                 qkr_philox_words};
  philox_id = __vxsGetNumRegBrngs() < rows ? __vxsRegisterBrng(&record) : VXS_STATUS_NO_MEMORY;
}

}  // namespace

extern "C" int32_t qkr_philox(void) {
  pthread_once(&registered, register_philox);
  return philox_id;
}
#endif
