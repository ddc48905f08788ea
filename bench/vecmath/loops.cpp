// See loops.h. Whole vectors, then the rest by a masked load and store, as our own kernels do it.
#include "vecmath/loops.h"

#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using bench::Loops;
using bench::PlainLoop;
using bench::stride;
using bench::Task;

template <class T>
constexpr int length = QKR_SIMD_BYTES / sizeof(T);

// step(vector at(pointer), put(pointer, vector)) for each vector of the arrays.
template <class T, class Step>
QKR_INLINE void each_vector(int32_t n, Step step) {
  using V = Native<T>;
  int32_t i = 0;
  for (; i + length<T> <= n; i += length<T>)
    step(
        [&](const T *p) {
          V v;
          load(p + i, v);
          return v;
        },
        [&](T *p, V v) { store(p + i, v); });
  if (i < n)
    step(
        [&](const T *p) {
          V v;
          load_part(p + i, n - i, T(1), v);
          return v;
        },
        [&](T *p, V v) { store_part(p + i, n - i, v); });
}

template <class T>
void unary(const Task<T> &task) {
  const Task<T> t = task;  // a copy that the called functions cannot change, so that it stays in registers
  const auto f = (Native<T>(*)(Native<T>))t.f;
  each_vector<T>(t.n, [&](auto at, auto put) { put(t.r, f(at(t.a))); });
}

template <class T>
void binary(const Task<T> &task) {
  const Task<T> t = task;
  const auto f = (Native<T>(*)(Native<T>, Native<T>))t.f;
  each_vector<T>(t.n, [&](auto at, auto put) { put(t.r, f(at(t.a), at(t.b))); });
}

template <class T>
void two_results(const Task<T> &task) {
  struct Both {
    Native<T> first, second;
  };
  const Task<T> t = task;
  const auto f = (Both(*)(Native<T>))t.f;
  each_vector<T>(t.n, [&](auto at, auto put) {
    const Both both = f(at(t.a));
    put(t.r, both.first);
    put(t.q, both.second);
  });
}

template <class T>
void f_then_g(const Task<T> &task) {
  const Task<T> t = task;
  const auto f = (Native<T>(*)(Native<T>))t.f, g = (Native<T>(*)(Native<T>))t.g;
  each_vector<T>(t.n, [&](auto at, auto put) {
    const Native<T> x = at(t.a);
    put(t.r, f(x));
    put(t.q, g(x));
  });
}

// r[i] = f(a[i], b[i]), in the hands of the vectoriser.
template <class T, auto f>
void plain(const Task<T> &t) {
  const T *__restrict a = t.a, *__restrict b = t.b;
  T *__restrict r = t.r;
  for (int32_t i = 0; i < t.n; ++i) r[i] = f(a[i], b[i]);
}
template <class T, auto f, auto g>
void plain(const Task<T> &t) {
  const T *__restrict a = t.a;
  T *__restrict r = t.r, *__restrict q = t.q;
  for (int32_t i = 0; i < t.n; ++i) r[i] = f(a[i]), q[i] = g(a[i]);
}

template <class T>
void pack_stride(const Task<T> &t) {
  for (int32_t i = 0; i < t.n; ++i) t.r[i] = t.a[(ptrdiff_t)i * stride];
}
template <class T>
void unpack_stride(const Task<T> &t) {
  for (int32_t i = 0; i < t.n; ++i) t.r[(ptrdiff_t)i * stride] = t.a[i];
}
template <class T>
void pack_mask(const Task<T> &t) {
  for (int32_t i = 0, j = 0; i < t.n; ++i)
    if (t.integers[i]) t.r[j++] = t.a[i];
}
template <class T>
void unpack_mask(const Task<T> &t) {
  for (int32_t i = 0, j = 0; i < t.n; ++i)
    if (t.integers[i]) t.r[i] = t.a[j++];
}
template <class T>
void pack_index(const Task<T> &t) {
  for (int32_t i = 0; i < t.n; ++i) t.r[i] = t.a[t.integers[i]];
}
template <class T>
void unpack_index(const Task<T> &t) {
  for (int32_t i = 0; i < t.n; ++i) t.r[t.integers[i]] = t.a[i];
}

// The float form of a C function for a float: the standard header's overloads are inline functions, whose
// AVX-512 copies the linker could keep for everybody.
#define QKR_C_FUNCTION(name)                                    \
  [](auto x, auto...) {                                         \
    if constexpr (sizeof x == 4) return __builtin_##name##f(x); \
    else return __builtin_##name(x);                            \
  }

template <class T>
constexpr auto root = QKR_C_FUNCTION(sqrt);
template <class T>
constexpr auto truncated = QKR_C_FUNCTION(trunc);
template <class T>
constexpr auto fraction = [](T x) { return __builtin_copysign(x - truncated<T>(x), x); };

template <class T>
constexpr PlainLoop<T> plain_loops[] = {
    {"sqrt", plain<T, root<T>>},
    {"invsqrt", plain<T, [](T x, T) { return 1 / root<T>(x); }>},
    {"quotient", plain<T, [](T x, T y) { return x / y; }>},
    {"reciprocal", plain<T, [](T x, T) { return 1 / x; }>},
    {"ceil", plain<T, QKR_C_FUNCTION(ceil)>},
    {"floor", plain<T, QKR_C_FUNCTION(floor)>},
    {"round", plain<T, QKR_C_FUNCTION(round)>},
    {"trunc", plain<T, truncated<T>>},
    {"rint", plain<T, QKR_C_FUNCTION(rint)>},
    {"nearbyint", plain<T, QKR_C_FUNCTION(nearbyint)>},
    {"modf", plain<T, truncated<T>, fraction<T>>},
    {"PackI", pack_stride<T>},
    {"PackM", pack_mask<T>},
    {"PackV", pack_index<T>},
    {"UnpackI", unpack_stride<T>},
    {"UnpackM", unpack_mask<T>},
    {"UnpackV", unpack_index<T>},
    {nullptr, nullptr},
};

template <class T>
constexpr Loops<T> loops = {length<T>, unary<T>, binary<T>, two_results<T>, f_then_g<T>, plain_loops<T>};

}  // namespace

extern constexpr Loops<double> loops_d = loops<double>;
extern constexpr Loops<float> loops_s = loops<float>;

}  // namespace qkr::QKR_SIMD_LEVEL
