// Arrays of complex numbers as the passes see them. Places are counted in complex numbers.
//   pairs<bytes>(k)        the numbers from place k on, as Paired
//   grouped<bytes>(k)      the columns from place k on, as Grouped
//   put(k, grouped)        back
//   natural(k, grouped)    the same, into the order in which callers expect numbers
//   set_pairs(k, paired)   back
//   parts<bytes>(k)        the numbers from place k on, as PartVectors of `bytes` each
//   set_parts(k, parts)    back
//   at(k), set(k, x)       one number, as Parts
//   + k                    the array from place k on
#pragma once

#include "sigfft/passes/registers.h"
#include "sigfft/plan/decomposition.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class T>
struct NonConst {
  using type = T;
};
template <class T>
struct NonConst<const T> {
  using type = T;
};
template <class T>
using Number = typename NonConst<T>::type;

using sigfft::group;

// Real and imaginary parts of as many numbers as `bytes` hold of each.
template <class T, int bytes>
using PartVectors = Parts<T, Vector<T, bytes>>;

// Interleaved re, im; between passes the same memory holds groups.
template <class T>
struct Interleaved {
  using Element = Number<T>;
  T *p;

  QKR_INLINE Interleaved operator+(size_t k) const { return {p + 2 * k}; }
  QKR_INLINE Parts<Element, Element> at(size_t k) const { return {p[2 * k], p[2 * k + 1]}; }
  QKR_INLINE void set(size_t k, Parts<Element, Element> x) const { p[2 * k] = x.re, p[2 * k + 1] = x.im; }
  template <int bytes>
  QKR_INLINE Paired<Element, bytes> pairs(size_t k) const {
    return {load_vector<Vector<Element, bytes>>(p + 2 * k)};
  }
  template <int bytes>
  QKR_INLINE void set_pairs(size_t k, Paired<Element, bytes> x) const {
    store_vector(p + 2 * k, x.v);
  }
  template <int bytes>
  QKR_INLINE Grouped<Element, bytes> grouped(size_t k) const {
    const T *q = p + 2 * k;
#if QKR_BASELINE
    return {load_vector<Vector<Element, 16>>(q), load_vector<Vector<Element, 16>>(q + group<Element>)};
#else
    return {load_vector<Vector<Element, bytes>>(q)};
#endif
  }
  QKR_INLINE void put(size_t k, TwoRegisters<Element> x) const {
    store_vector(p + 2 * k, x.re);
    store_vector(p + 2 * k + group<Element>, x.im);
  }
  template <int bytes, int run>
  QKR_INLINE void put(size_t k, OneRegister<Element, bytes, run> x) const {
    store_vector(p + 2 * k, x.v);
  }
  template <class C>
  QKR_INLINE void natural(size_t k, C x) const {
    put(k, interleaved(x));
  }
  template <int bytes>
  QKR_INLINE PartVectors<Element, bytes> parts(size_t k) const;
  template <class V>
  QKR_INLINE void set_parts(size_t k, Parts<Element, V> x) const;
};

// Lanes 0, 2, 4, ... of a and b, and the others.
template <class T, class V, int... i>
QKR_INLINE Parts<T, V> deinterleaved(V a, V b, std::integer_sequence<int, i...>) {
  return {shuffle<2 * i...>(a, b), shuffle<(2 * i + 1)...>(a, b)};
}
template <class T>
template <int bytes>
QKR_INLINE PartVectors<Number<T>, bytes> Interleaved<T>::parts(size_t k) const {
  constexpr int lanes = bytes / sizeof(Element);
  const auto a = load_vector<Vector<Element, bytes>>(p + 2 * k);
  const auto b = load_vector<Vector<Element, bytes>>(p + 2 * k + lanes);
  return deinterleaved<Element>(a, b, std::make_integer_sequence<int, lanes>());
}
template <class T>
template <class V>
QKR_INLINE void Interleaved<T>::set_parts(size_t k, Parts<Number<T>, V> x) const {
  constexpr int lanes = sizeof(V) / sizeof(Element);
  const auto half = [&]<int... i>(std::integer_sequence<int, i...>, auto first) QKR_LAMBDA {
    return shuffle<(first() + i / 2 + i % 2 * lanes)...>(x.re, x.im);
  };
  using Lanes = std::make_integer_sequence<int, lanes>;
  store_vector(p + 2 * k, half(Lanes(), std::integral_constant<int, 0>()));
  store_vector(p + 2 * k + lanes, half(Lanes(), std::integral_constant<int, lanes / 2>()));
}

QKR_INLINE TwoRegisters<double> interleaved(TwoRegisters<double> x) {
  return {shuffle<0, 2>(x.re, x.im), shuffle<1, 3>(x.re, x.im)};
}
QKR_INLINE TwoRegisters<float> interleaved(TwoRegisters<float> x) {
  return {shuffle<0, 4, 1, 5>(x.re, x.im), shuffle<2, 6, 3, 7>(x.re, x.im)};
}
QKR_INLINE OneRegister<double, 32, 2> interleaved(OneRegister<double, 32, 2> x) {
  return {shuffle<0, 2, 1, 3>(x.v, x.v)};
}
QKR_INLINE OneRegister<float, 32, 4> interleaved(OneRegister<float, 32, 4> x) {
  return {shuffle<0, 4, 1, 5, 2, 6, 3, 7>(x.v, x.v)};
}
QKR_INLINE OneRegister<double, 64, 2> interleaved(OneRegister<double, 64, 2> x) {
  return {shuffle<0, 2, 1, 3, 4, 6, 5, 7>(x.v, x.v)};
}
QKR_INLINE OneRegister<float, 64, 4> interleaved(OneRegister<float, 64, 4> x) {
  return {shuffle<0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15>(x.v, x.v)};
}

// Two vectors one behind the other, and the halves of a vector.
template <class T, int bytes, int... i>
QKR_INLINE Vector<T, 2 * bytes> join(Vector<T, bytes> a, Vector<T, bytes> b,
                                     std::integer_sequence<int, i...>) {
  return shuffle<i...>(a, b);
}
template <class T, int bytes>
QKR_INLINE Vector<T, 2 * bytes> join(Vector<T, bytes> a, Vector<T, bytes> b) {
  return join<T, bytes>(a, b, std::make_integer_sequence<int, 2 * bytes / (int)sizeof(T)>());
}
template <class T, int bytes, int half, int... i>
QKR_INLINE Vector<T, bytes / 2> half_of(Vector<T, bytes> v, std::integer_sequence<int, i...>) {
  return shuffle<(half * (int)sizeof...(i) + i)...>(v, v);
}
template <class T, int bytes, int half>
QKR_INLINE Vector<T, bytes / 2> half_of(Vector<T, bytes> v) {
  return half_of<T, bytes, half>(v, std::make_integer_sequence<int, bytes / 2 / (int)sizeof(T)>());
}
// 16-byte lanes 0, 2, 1, 3: [re re im im] to [re im re im], and back.
template <class T>
QKR_INLINE Vector<T, 64> exchange_middle(Vector<T, 64> v) {
  const auto d = (Vector<double, 64>)v;
  return (Vector<T, 64>)shuffle<0, 1, 4, 5, 2, 3, 6, 7>(d, d);
}

// The two halves' numbers in turn.
template <class T, int bytes, int... i>
QKR_INLINE Vector<T, bytes> alternate(Vector<T, bytes> v, std::integer_sequence<int, i...>) {
  return shuffle<(i / 2 + i % 2 * ((int)sizeof...(i) / 2))...>(v, v);
}

// And back: the numbers of even lanes, then those of odd lanes.
template <class T, int bytes, int... i>
QKR_INLINE Vector<T, bytes> parts_apart(Vector<T, bytes> v, std::integer_sequence<int, i...>) {
  constexpr int half = sizeof...(i) / 2;
  return shuffle<(i < half ? 2 * i : 2 * (i - half) + 1)...>(v, v);
}

// Real and imaginary parts in arrays of their own, at all times.
template <class T>
struct Split {
  using Element = Number<T>;
  T *re, *im;

  QKR_INLINE Split operator+(size_t k) const { return {re + k, im + k}; }
  QKR_INLINE Parts<Element, Element> at(size_t k) const { return {re[k], im[k]}; }
  QKR_INLINE void set(size_t k, Parts<Element, Element> x) const { re[k] = x.re, im[k] = x.im; }
  template <int bytes>
  QKR_INLINE PartVectors<Element, bytes> parts(size_t k) const {
    return {load_vector<Vector<Element, bytes>>(re + k), load_vector<Vector<Element, bytes>>(im + k)};
  }
  template <class V>
  QKR_INLINE void set_parts(size_t k, Parts<Element, V> x) const {
    store_vector(re + k, x.re);
    store_vector(im + k, x.im);
  }
  template <int bytes>
  QKR_INLINE Paired<Element, bytes> pairs(size_t k) const;
  template <int bytes>
  QKR_INLINE void set_pairs(size_t k, Paired<Element, bytes> x) const;
  template <int bytes>
  QKR_INLINE Grouped<Element, bytes> grouped(size_t k) const {
#if QKR_BASELINE
    return {load_vector<Vector<Element, 16>>(re + k), load_vector<Vector<Element, 16>>(im + k)};
#else
    using Half = Vector<Element, bytes / 2>;
    const auto v = join<Element, bytes / 2>(load_vector<Half>(re + k), load_vector<Half>(im + k));
    if constexpr (bytes == 64) return {exchange_middle<Element>(v)};
    else return {v};
#endif
  }
  QKR_INLINE void put(size_t k, TwoRegisters<Element> x) const {
    store_vector(re + k, x.re);
    store_vector(im + k, x.im);
  }
  template <int bytes, int run>
  QKR_INLINE void put(size_t k, OneRegister<Element, bytes, run> x) const {
    auto v = x.v;
    if constexpr (bytes == 64) v = exchange_middle<Element>(v);
    store_vector(re + k, half_of<Element, bytes, 0>(v));
    store_vector(im + k, half_of<Element, bytes, 1>(v));
  }
  template <class C>
  QKR_INLINE void natural(size_t k, C x) const {
    put(k, x);
  }
};

// One complex number may be all that a register holds: then the parts are read one by one.
template <class T>
template <int bytes>
QKR_INLINE Paired<Number<T>, bytes> Split<T>::pairs(size_t k) const {
  using Half = Vector<Element, bytes / 2>;
  if constexpr (sizeof(Element) == bytes / 2) {
    return {Vector<Element, bytes>{re[k], im[k]}};
  } else if constexpr (bytes == 16) {
    return {Vector<Element, bytes>{re[k], im[k], re[k + 1], im[k + 1]}};
  } else {
    const auto v = join<Element, bytes / 2>(load_vector<Half>(re + k), load_vector<Half>(im + k));
    return {alternate<Element, bytes>(v, std::make_integer_sequence<int, bytes / (int)sizeof(Element)>())};
  }
}
template <class T>
template <int bytes>
QKR_INLINE void Split<T>::set_pairs(size_t k, Paired<Number<T>, bytes> x) const {
  if constexpr (bytes == 16) {
    for (size_t i = 0; i < bytes / 2 / sizeof(Element); ++i)
      re[k + i] = x.v[2 * i], im[k + i] = x.v[2 * i + 1];
  } else {
    const auto v =
        parts_apart<Element, bytes>(x.v, std::make_integer_sequence<int, bytes / (int)sizeof(Element)>());
    store_vector(re + k, half_of<Element, bytes, 0>(v));
    store_vector(im + k, half_of<Element, bytes, 1>(v));
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
