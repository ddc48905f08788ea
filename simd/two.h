// Two<V>: two vectors worked on side by side, so that the latency of the one hides behind the other. It
// nests, and a kernel written for V serves Two<V> and Two<Two<V>> as it stands.
#pragma once

namespace qkr::QKR_SIMD_LEVEL {
namespace {

template <class V>
struct Two {
  V a, b;
};

#define QKR_TWO_COMPARISON(op)                                                 \
  template <class V>                                                           \
  QKR_INLINE auto operator op(Two<V> x, Two<V> y)->Two<decltype(x.a op y.a)> { \
    return {x.a op y.a, x.b op y.b};                                           \
  }                                                                            \
  template <class V, class S>                                                  \
  QKR_INLINE auto operator op(Two<V> x, S s)->Two<decltype(x.a op s)> {        \
    return {x.a op s, x.b op s};                                               \
  }
#define QKR_TWO_OPERATOR(op)                     \
  QKR_TWO_COMPARISON(op)                         \
  template <class V, class S>                    \
  QKR_INLINE Two<V> operator op(S s, Two<V> x) { \
    return {s op x.a, s op x.b};                 \
  }
QKR_TWO_OPERATOR(+)
QKR_TWO_OPERATOR(-)
QKR_TWO_OPERATOR(*)
QKR_TWO_OPERATOR(/)
QKR_TWO_OPERATOR(&)
QKR_TWO_OPERATOR(|)
QKR_TWO_OPERATOR(^)
QKR_TWO_OPERATOR(<<)
QKR_TWO_OPERATOR(>>)
QKR_TWO_COMPARISON(<)
QKR_TWO_COMPARISON(>=)
QKR_TWO_COMPARISON(==)
QKR_TWO_COMPARISON(!=)
#undef QKR_TWO_OPERATOR
#undef QKR_TWO_COMPARISON
template <class V>
QKR_INLINE Two<V> operator-(Two<V> x) {
  return {-x.a, -x.b};
}

// Single to double and back: a vector of floats widens to two vectors of doubles.
QKR_INLINE Two<f64> widen(f32 v) { return {low_doubles(v), high_doubles(v)}; }
QKR_INLINE f32 narrow(Two<f64> v) { return join_singles(v.a, v.b); }

// Half i of an argument; one number serves both halves.
template <class V>
QKR_INLINE V half(Two<V> x, int i) {
  return i ? x.b : x.a;
}
template <class X>
QKR_INLINE X half(X x, int) {
  return x;
}

// f of Two is f of each half.
#define QKR_TWO_FUNCTION(f)                                                   \
  template <class V, class... X>                                              \
  QKR_INLINE auto f(Two<V> v, X... x)->Two<decltype(f(v.a, half(x, 0)...))> { \
    return {f(v.a, half(x, 0)...), f(v.b, half(x, 1)...)};                    \
  }
QKR_TWO_FUNCTION(bits)
QKR_TWO_FUNCTION(real)
QKR_TWO_FUNCTION(exponent)
QKR_TWO_FUNCTION(exact_mad)
QKR_TWO_FUNCTION(product_error)
QKR_TWO_FUNCTION(zero_unless)
QKR_TWO_FUNCTION(select)
QKR_TWO_FUNCTION(within)
QKR_TWO_FUNCTION(at_most)
QKR_TWO_FUNCTION(larger)
QKR_TWO_FUNCTION(smaller)
QKR_TWO_FUNCTION(square_root)
QKR_TWO_FUNCTION(widen)
QKR_TWO_FUNCTION(narrow)
#undef QKR_TWO_FUNCTION

// A lane set of Two says only whether any lane of either is in it.
template <class V, class S>
QKR_INLINE Flags beyond(Two<V> x, S limit) {
  return beyond(x.a, limit) | beyond(x.b, limit);
}
template <class V, class S>
QKR_INLINE Flags outside(Two<V> x, S first, S limit) {
  return outside(x.a, first, limit) | outside(x.b, first, limit);
}
template <class V>
QKR_INLINE Flags not_positive_normal(Two<V> x) {
  return not_positive_normal(x.a) | not_positive_normal(x.b);
}
template <class V>
QKR_INLINE Flags negative(Two<V> x) {
  return negative(x.a) | negative(x.b);
}
template <class V>
QKR_INLINE Flags is_zero(Two<V> x) {
  return is_zero(x.a) | is_zero(x.b);
}

template <class T, class V>
QKR_INLINE void load(const T *p, Two<V> &x) {
  load(p, x.a);
  load(p + sizeof(V) / sizeof(T), x.b);
}
template <class T, class V>
QKR_INLINE void broadcast(T number, Two<V> &x) {
  broadcast(number, x.a);
  x.b = x.a;
}
template <class T, class V>
QKR_INLINE void store(T *p, Two<V> x) {
  store(p, x.a);
  store(p + sizeof(V) / sizeof(T), x.b);
}
template <class I, class V>
QKR_INLINE void look_up_16(const double (*rows)[2], Two<I> j, Two<V> &c0, Two<V> &c1) {
  look_up_16(rows, j.a, c0.a, c1.a);
  look_up_16(rows, j.b, c0.b, c1.b);
}
template <class Rows, class I, class... Columns>
QKR_INLINE void look_up(Rows rows, Two<I> j, Columns &...columns) {
  look_up(rows, j.a, columns.a...);
  look_up(rows, j.b, columns.b...);
}

template <int count, class T, class I>
QKR_INLINE auto pick(const T *column, Two<I> j) -> Two<decltype(pick<count>(column, j.a))> {
  return {pick<count>(column, j.a), pick<count>(column, j.b)};
}
#if QKR_SIMD_BYTES == 64
template <int count, class T, size_t stride, class I, class... Columns>
QKR_INLINE void pick(const T (*table)[stride], Two<I> j, Columns &...columns) {
  pick<count>(table, j.a, columns.a...);
  pick<count>(table, j.b, columns.b...);
}
#endif

// V side by side `count` times (a power of two).
template <class V, int count>
struct SideBySide {
  using type = Two<typename SideBySide<V, count / 2>::type>;
};
template <class V>
struct SideBySide<V, 1> {
  using type = V;
};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
