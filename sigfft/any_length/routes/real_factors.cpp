// The factors route of real signals of odd length, after G. D. Bergland, Communications of the ACM 11 (1968)
// 703: each subtransform is half a spectrum, since the other half mirrors it. The inverse runs the stages
// backward.
#include "sigfft/any_length/passes/stages.h"
#include "sigfft/any_length/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The half spectrum of n real numbers, number 0 left out: frequency k + 1 at place k.
template <class T>
QKR_INLINE Interleaved<T> frequencies(T *perm) {
  return {perm + 1};
}

// Frequencies j + q r of a block, for the columns j = k + 1 on. Beyond half the block's length they are the
// conjugates of those that mirror them.
template <int bytes, class T>
struct MirroredColumns {
  Interleaved<T> block;
  size_t rest, points, k;
  static constexpr size_t together = columns_together<Number<T>, bytes>;

  QKR_INLINE size_t mirror(size_t q) const { return (points - q) * rest - k - together - 1; }
  QKR_INLINE auto operator[](size_t q) const {
    if (2 * q < points) return columns<bytes>(block, k + q * rest);
    return mirrored<together>(columns<bytes>(block, mirror(q)));
  }
  template <class C>
  QKR_INLINE void set(size_t q, C x) const {
    if (2 * q < points) set_columns<bytes>(block, k + q * rest, x);
    else set_columns<bytes>(block, mirror(q), mirrored<together>(x));
  }
};

// Column 0: real numbers on the side of the blocks, the multiples of r on the side of the spectrum.
template <bool forward, class F, class T>
QKR_INLINE void combine_column0(F factor, const T *in, T *out, size_t rest, SmallCircle<T> circle) {
  constexpr int one = 2 * sizeof(T);
  const size_t points = (size_t)factor.value;
  using C = Columns<T, one>;
  if constexpr (forward) {
    transform_points<true>(
        factor, [&](int m) QKR_LAMBDA { return C{typename C::V{in[m * rest]}}; },
        [&](int q, C x) QKR_LAMBDA {
          if (!q) out[0] = x.v[0];
          else if (2 * (size_t)q < points) set_columns<one>(frequencies(out), q * rest - 1, x);
        },
        circle);
  } else {
    transform_points<false>(
        factor,
        [&](int q) QKR_LAMBDA {
          if (!q) return C{typename C::V{in[0]}};
          if (2 * (size_t)q < points) return columns<one>(frequencies(in), q * rest - 1);
          return conjugate(columns<one>(frequencies(in), (points - q) * rest - 1));
        },
        [&](int m, C x) QKR_LAMBDA { out[m * rest] = x.v[0]; }, circle);
  }
}

template <bool forward, class F, class T>
QKR_NOINLINE void combine_real(F factor, const T *in, T *out, const Stage<T> &stage, size_t blocks) {
  const size_t rest = (size_t)stage.rest, points = (size_t)factor.value, pairs = (rest - 1) / 2;
  const auto circle = small_circle<T>(stage.circle, factor.value);
  const T *const table = stage.twiddles;
  for (size_t b = 0; b < blocks; ++b, in += points * rest, out += points * rest) {
    combine_column0<forward>(factor, in, out, rest, circle);
    each_column<T>(0, pairs, [=](auto width, size_t k) QKR_LAMBDA {
      constexpr int bytes = decltype(width)::value;
      const ColumnTwiddles<T> twiddles(table, points, k);
      const auto turned = [&](int m, auto x) QKR_LAMBDA {
        return m ? times<forward>(x, twiddles.template turns_of<bytes>(m)) : x;
      };
      if constexpr (forward) {
        const MirroredColumns<bytes, T> spectrum = {frequencies(out), rest, points, k};
        transform_points<true>(
            factor,
            [&](int m) QKR_LAMBDA { return turned(m, columns<bytes>(frequencies(in + m * rest), k)); },
            [&](int q, auto x) QKR_LAMBDA { spectrum.set(q, x); }, circle);
      } else {
        const MirroredColumns<bytes, const T> spectrum = {frequencies(in), rest, points, k};
        transform_points<false>(
            factor, [&](int q) QKR_LAMBDA { return spectrum[q]; },
            [&](int m, auto x)
                QKR_LAMBDA { set_columns<bytes>(frequencies(out + m * rest), k, turned(m, x)); },
            circle);
      }
    });
  }
}

// Real numbers of neighbouring columns. The pair of outputs that a sum of them makes is one complex number.
template <class T, class V>
struct Reals {
  using Element = T;
  V v;
};
template <class T, class V>
QKR_INLINE Reals<T, V> operator+(Reals<T, V> a, Reals<T, V> b) {
  return {a.v + b.v};
}
template <class T, class V>
QKR_INLINE Reals<T, V> operator-(Reals<T, V> a, Reals<T, V> b) {
  return {a.v - b.v};
}
template <class T, class V>
QKR_INLINE Reals<T, V> operator*(Reals<T, V> a, T factor) {
  return {a.v * factor};
}
template <bool forward, class T, class V>
QKR_INLINE Parts<T, V> minus_turned(Reals<T, V> a, Reals<T, V> b) {
  return {a.v, b.v};
}
template <bool forward, class T, class V>
QKR_INLINE Parts<T, V> plus_turned(Reals<T, V> a, Reals<T, V> b) {
  return {a.v, b.v};  // the counterpart, which nobody stores
}

// body(Width, count, c) for the columns c to c + count - 1.
template <class T, int bytes = QKR_SIMD_BYTES, class Body>
QKR_INLINE void each_real_column(size_t first, size_t end, Body body) {
  constexpr size_t together = bytes / sizeof(T);
  for (; first + together <= end; first += together)
    body(Width<bytes>(), std::integral_constant<size_t, together>(), first);
  if constexpr (bytes > 16) return each_real_column<T, bytes / 2>(first, end, body);
  for (; first < end; ++first) body(Width<16>(), std::integral_constant<size_t, 1>(), first);
}

// The transforms before all stages, of columns of real numbers. Each makes half a spectrum.
template <class F, class T>
QKR_NOINLINE void first_real(F factor, const T *src, T *area, size_t count, const uint32_t *places,
                             SmallCircle<T> circle) {
  each_real_column<T>(0, count, [=](auto width, auto together, size_t c) QKR_LAMBDA {
    using V = Vector<T, decltype(width)::value>;
    const auto scatter = [&](size_t place, V v) QKR_LAMBDA {
      for (size_t i = 0; i < together; ++i) area[places[c + i] + place] = v[i];
    };
    const auto put = [&](int k, auto x) QKR_LAMBDA {
      if constexpr (sizeof x == sizeof(V)) scatter(0, x.v);
      else if (2 * k < factor.value) scatter(2 * k - 1, x.re), scatter(2 * k, x.im);
    };
    const auto get = [&](int m) QKR_LAMBDA {
      V v = {};
      __builtin_memcpy(&v, src + c + m * count, together * sizeof(T));
      return Reals<T, V>{v};
    };
    transform_points<true>(factor, get, put, circle);
  });
}
// And back: the parts that real results do not need are never computed.
template <class F, class T>
QKR_NOINLINE void last_real(F factor, const T *area, T *dst, size_t count, const uint32_t *places,
                            SmallCircle<T> circle) {
  each_real_column<T>(0, count, [=](auto width, auto together, size_t c) QKR_LAMBDA {
    using V = Vector<T, decltype(width)::value>;
    const auto gathered = [&](size_t place) QKR_LAMBDA {
      V v = {};
      for (size_t i = 0; i < together; ++i) v[i] = area[places[c + i] + place];
      return v;
    };
    const auto get = [&](int k) QKR_LAMBDA {
      if (!k) return Parts<T, V>{gathered(0), V{}};
      if (2 * k < factor.value) return Parts<T, V>{gathered(2 * k - 1), gathered(2 * k)};
      const int mirror = factor.value - k;
      return Parts<T, V>{gathered(2 * mirror - 1), -gathered(2 * mirror)};
    };
    transform_points<false>(
        factor, get,
        [&](int m, Parts<T, V> x)
            QKR_LAMBDA { __builtin_memcpy(dst + c + m * count, &x.re, together * sizeof(T)); },
        circle);
  });
}

// The stages from `level` on, between `spectrum` and the transforms of points, which lie in `outer` after an
// even number of stages and in `inner` after an odd one: each stage goes from one area to the other.
template <bool forward, class Spectrum, class T>
void stages_from(const AnyLengthPlan<T> *plan, int level, Spectrum *spectrum, T *outer, T *inner) {
  const int last = plan->stages - 1;
  const auto run = [&](int i) {
    const Stage<T> &stage = plan->stage[i];
    const auto combine = [&](const T *from, T *to, size_t blocks) {
      with_odd_factor(stage.factor, [&](auto factor) QKR_LAMBDA {
        combine_real<forward>(factor, from, to, stage, blocks);
      });
    };
    T *const near = (i - level) % 2 ? inner : outer, *const far = (i - level) % 2 ? outer : inner;
    if (i > level) combine(forward ? far : near, forward ? near : far, (size_t)stage.count);
    else if constexpr (forward) combine(far, spectrum, 1);
    else combine(spectrum, far, 1);
  };
  const Stage<T> &stage = plan->stage[level];
  if (level == last || (int64_t)stage.factor * stage.rest < long_stage) {
    for (int i = level; i <= last; ++i) run(forward ? last + level - i : i);
    return;
  }
  if (!forward) run(level);
  for (int i = 0; i < stage.factor; ++i) {
    T *const part = inner + (size_t)i * stage.rest;
    stages_from<forward>(plan, level + 1, part, part, outer + (size_t)i * stage.rest);
  }
  if (forward) run(level);
}

template <bool forward, class T>
void transform(const AnyLengthPlan<T> *plan, const T *src, T *dst, T *work) {
  const auto n = (size_t)plan->length;
  T *const outer = work, *const inner = work + n;
  T *const points = plan->stages % 2 ? inner : outer;
  const Stage<T> &last = plan->stage[plan->stages];
  const size_t count = n / (size_t)last.factor;
  if constexpr (!forward) stages_from<forward>(plan, 0, src, outer, inner);
  with_odd_factor(last.factor, [&](auto factor) QKR_LAMBDA {
    const auto circle = small_circle<T>(last.circle, factor.value);
    if constexpr (forward) first_real(factor, src, points, count, plan->places, circle);
    else last_real(factor, points, dst, count, plan->places, circle);
  });
  if constexpr (forward) stages_from<forward>(plan, 0, dst, outer, inner);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_REAL_FACTORS(direction, forward, T, suffix)                                 \
  QKR_ENTRY(zprs_realFactors##direction##_##suffix,                                     \
            (const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src, T *dst, T *work), \
            (plan, src, dst, work)) {                                                   \
    transform<forward>(plan, src, dst, work);                                           \
  }
QKR_REAL_FACTORS(Fwd, true, double, 64f)
QKR_REAL_FACTORS(Inv, false, double, 64f)
QKR_REAL_FACTORS(Fwd, true, float, 32f)
QKR_REAL_FACTORS(Inv, false, float, 32f)
