// The frame of a basic generator. Its core makes words in order, whole vectors at a time; an output says what
// becomes of them: words, or reals in double or single precision. So a core is written once for the three
// block entries, and for any vector width.
//
//   template <class Output>
//   void fill(StreamState *stream, int32_t n, typename Output::Element *out, Output output);
//
//   QKR_INIT_STREAM(__vxsBRngGInitStream, Methods)           // seeding, leapfrog, skip-ahead
//   QKR_WORD_ENTRY(__vxsiBRngG, fill(stream, n, out, Words{}))
//   QKR_REAL_ENTRY(__vxsdBRngG, double, fill(stream, n, out, doubles(...)))  // ... of the ends a and b
//   QKR_REAL_ENTRY(__vxssBRngG, float, fill(stream, n, out, singles(...)))
//
// or, where words are scaled by a power of two for [0, 1), which has a faster output,
//
//   QKR_SCALED_ENTRY(__vxsdBRngG, double, (b - a) * 0x1p-32)
//
// mcg31m1.cpp is the shortest example. A generator must give the same words and leave the same state bytes
// however the draws are split into blocks.
#pragma once

#include <qkr/streams_generators.h>

#include "simd/entry.h"
#include "simd/integers.h"
#include "streams/generators/payload.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int lanes = sizeof(u32) / sizeof(uint32_t);  // numbers in the smallest vector that an output takes

// What a stretch of `lanes` numbers may be held in: u32, Two<u64>, Two<f64> for whole numbers, or at the
// baseline four uint64_t. Wider ones are Two of these.
template <class V>
constexpr int numbers_in = 0;
template <>
constexpr int numbers_in<u32> = lanes;
template <>
constexpr int numbers_in<uint64_t> = 1;
template <>
constexpr int numbers_in<Two<u64>> = lanes;
template <>
constexpr int numbers_in<Two<f64>> = lanes;
template <class V>
constexpr int numbers_in<Two<V>> = 2 * numbers_in<V>;

// The words as they are.
struct Words {
  using Element = uint32_t;
  QKR_INLINE void put(Element *out, u32 words) const { store(out, words); }
  QKR_INLINE void put(Element *out, Two<f64> words) const { store(out, words_of(words)); }
  QKR_INLINE void put_one(Element *out, uint32_t word) const { *out = word; }
};
struct LongWords {
  using Element = uint64_t;
  template <class V>
  requires(numbers_in<V> == lanes) QKR_INLINE void put(Element *out, V words) const { store(out, words); }
  QKR_INLINE void put_one(Element *out, uint64_t word) const { *out = word; }
};

QKR_INLINE void store_rounded(double *out, Two<f64> reals) { store(out, reals); }
QKR_INLINE void store_rounded(float *out, Two<f64> reals) { store(out, narrow(reals)); }

// word * scale + shift in double precision, stored in Real.
template <class Real>
struct Reals {
  using Element = Real;
  double scale, shift;

  QKR_INLINE void put(Real *out, Two<f64> words) const { store_rounded(out, words * scale + shift); }
  template <class V>
  requires(numbers_in<V> == lanes) QKR_INLINE void put(Real *out, V words) const {
    put(out, doubles_of(words));
  }
  template <class Word>
  QKR_INLINE void put_one(Real *out, Word word) const {
    *out = (Real)((double)word * scale + shift);
  }
};
QKR_INLINE Reals<double> doubles(double scale, double shift) { return {scale, shift}; }
QKR_INLINE Reals<float> singles(double scale, double shift) { return {scale, shift}; }

// word * scale + shift in single precision, of words below 2^31.
struct RealsInSingle {
  using Element = float;
  float scale, shift;
  QKR_INLINE void put(float *out, u32 words) const {
    store(out, __builtin_convertvector((i32)words, f32) * scale + shift);
  }
  QKR_INLINE void put_one(float *out, uint32_t word) const { *out = (float)(int32_t)word * scale + shift; }
};

// word * unit, a power of two: for the intervals from 0 to such a number, of which [0, 1) is the one that
// everybody draws from. The product is exact, so the results are those of Reals; singles of 32-bit words need
// no doubles.
template <class Real>
struct Multiples {
  using Element = Real;
  Real unit;
  QKR_INLINE void put(Real *out, u32 words) const { store(out, multiples_of(unit, words)); }
  template <class V>
  requires(numbers_in<V> == lanes) QKR_INLINE void put(Real *out, V words) const {
    store_rounded(out, doubles_of(words) * (double)unit);
  }
  template <class Word>
  QKR_INLINE void put_one(Real *out, Word word) const {
    *out = (Real)((double)word * unit);
  }
};
QKR_INLINE bool is_unit(double scale, double shift) {
  const bool power_of_two = (bits(scale) & 0x000FFFFFFFFFFFFF) == 0;
  return power_of_two && bits(shift) == 0 && scale >= 0x1p-64 && scale <= 0x1p64;
}

// draw(output) with the output that makes word * scale + shift, of whole words.
template <class Real, class Draw>
QKR_INLINE auto with_reals(double scale, double shift, Draw draw) {
  return is_unit(scale, shift) ? draw(Multiples<Real>{(Real)scale}) : draw(Reals<Real>{scale, shift});
}

template <class Output, class V>
QKR_INLINE void put(const Output &output, typename Output::Element *out, V words) {
  if constexpr (requires { output.put(out, words); }) {
    output.put(out, words);
  } else {
    put(output, out, words.a);
    put(output, out + numbers_in<V> / 2, words.b);
  }
}

struct Unchanged {
  template <class V>
  QKR_INLINE V operator()(V words) const {
    return words;
  }
};

// transform(words[0..n-1]) to the output. `transform` serves a vector V as well as one word, and must give
// the same for both. Two vectors go side by side, as each is a chain of operations. The last one overlaps the
// one before, writing the same values again.
template <class V = u32, class Word, class Output, class Transform = Unchanged>
QKR_INLINE void emit(const Word *words, int n, typename Output::Element *out, const Output &output,
                     Transform transform = {}) {
  constexpr int step = numbers_in<V>;
  const auto put_vector = [&](int i, auto v) QKR_LAMBDA {
    load(words + i, v);
    put(output, out + i, transform(v));
  };
  int i = 0;
  for (; i + 2 * step <= n; i += 2 * step) put_vector(i, Two<V>{});
  for (; i + step <= n; i += step) put_vector(i, V{});
  if (i < n && n >= step) {
    put_vector(n - step, V{});
  } else {
    for (; i < n; ++i) output.put_one(out + i, transform(words[i]));
  }
}

#if QKR_BASELINE
// What InitStream does for a generator that can be neither split nor moved; its Methods add seed(), and hide
// what they can do better.
struct NotPartitioned {
  static int32_t leapfrog(StreamState *, int32_t, const int32_t *) { return VXS_STATUS_NO_LEAPFROG; }
  static int32_t skip_ahead(StreamState *, int32_t) { return VXS_STATUS_NO_SKIP_AHEAD; }
};

template <class Methods>
int32_t init_stream(int32_t method, StreamState *stream, int32_t n, const void *params) {
  switch (method) {
    case VXS_INIT_SEED:
      return Methods::seed(stream, n, static_cast<const uint32_t *>(params));
    case VXS_INIT_LEAPFROG:
      return Methods::leapfrog(stream, n, static_cast<const int32_t *>(params));
    case VXS_INIT_SKIP_AHEAD:
      return Methods::skip_ahead(stream, n);
    default:
      return VXS_STATUS_BAD_METHOD;
  }
}
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

// Methods: seed(stream, n, seeds), leapfrog(stream, stride, index), skip_ahead(stream, count), static; in the
// baseline compilation only.
#if QKR_BASELINE
#define QKR_INIT_STREAM(name, Methods)                                                          \
  extern "C" int32_t name(int32_t method, StreamState *stream, int32_t n, const void *params) { \
    using namespace qkr::QKR_SIMD_LEVEL;                                                        \
    return init_stream<Methods>(method, stream, n, params);                                     \
  }
#else
#define QKR_INIT_STREAM(name, Methods)
#endif

#define QKR_WORD_ENTRY(name, drawing) QKR_WORD_ENTRY_AFTER(, name, drawing)
#define QKR_REAL_ENTRY(name, Real, drawing) QKR_REAL_ENTRY_AFTER(, name, Real, drawing)
#define QKR_SCALED_ENTRY(name, Real, scale) QKR_REAL_ENTRY(name, Real, QKR_SCALED(Real, scale))

// The same for generators that make a few numbers alike at every level: short draws stay with the baseline.
#define QKR_STAY_IF_FEW(name, arguments) QKR_STAY_IF(n <= 32, name, arguments)
#define QKR_WORD_ENTRY_OR_FEW(name, drawing) \
  QKR_WORD_ENTRY_AFTER(QKR_STAY_IF_FEW(name, (stream, n, out)), name, drawing)
#define QKR_REAL_ENTRY_OR_FEW(name, Real, drawing) \
  QKR_REAL_ENTRY_AFTER(QKR_STAY_IF_FEW(name, (stream, n, out, a, b)), name, Real, drawing)
#define QKR_SCALED_ENTRY_OR_FEW(name, Real, scale) QKR_REAL_ENTRY_OR_FEW(name, Real, QKR_SCALED(Real, scale))

// The numbers of fill(), whole words, times scale, plus a.
#define QKR_SCALED(Real, scale) \
  with_reals<Real>(scale, a, [&](auto output) QKR_LAMBDA { fill(stream, n, out, output); })

#define QKR_WORD_ENTRY_AFTER(first, name, drawing)                                         \
  QKR_ENTRY_AFTER(first, int32_t, name, (StreamState * stream, int32_t n, uint32_t * out), \
                  (stream, n, out)) {                                                      \
    drawing;                                                                               \
    return VXS_STATUS_OK;                                                                  \
  }
#define QKR_REAL_ENTRY_AFTER(first, name, Real, drawing)                                          \
  QKR_ENTRY_AFTER(first, int32_t, name,                                                           \
                  (StreamState * stream, int32_t n, Real * out, Real a, [[maybe_unused]] Real b), \
                  (stream, n, out, a, b)) {                                                       \
    drawing;                                                                                      \
    return VXS_STATUS_OK;                                                                         \
  }
