// What the distributions share: the functions of either precision under one name, the bracket that keeps
// logarithms finite, and the road from a request to blocks of uniform numbers.
#pragma once

#include <qkr/distributions.h>
#include <qkr/vecmath.h>
#include <type_traits>

#include "simd/entry.h"
#include "streams/internal.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The functions that a distribution calls, for one source in both precisions.
template <class T>
struct Precision;

#define QKR_PRECISION(letter, T)                                       \
  template <>                                                          \
  struct Precision<T> {                                                \
    static constexpr auto &uniform = _vxs##letter##RngUniform;         \
    static constexpr auto &exponential = _vxs##letter##RngExponential; \
    static constexpr auto &gaussian = _vxs##letter##RngGaussian;       \
    static constexpr auto &ln = _vxm##letter##Ln_HA;                   \
    static constexpr auto &exp = _vxm##letter##Exp_HA;                 \
    static constexpr auto &sqrt = _vxm##letter##Sqrt_HA;               \
    static constexpr auto &sin = _vxm##letter##Sin_HA;                 \
    static constexpr auto &sin_cos = _vxm##letter##SinCos_HA;          \
    static constexpr auto &tan = _vxm##letter##Tan_HA;                 \
    static constexpr auto &tanh = _vxm##letter##Tanh_HA;               \
    static constexpr auto &pow = _vxm##letter##Pow_HA;                 \
    static constexpr auto &powx = _vxm##letter##Powx_HA;               \
  };
QKR_PRECISION(d, double)
QKR_PRECISION(s, float)
#undef QKR_PRECISION

// Functions of one number, with the bits of the vector functions.
template <class T>
inline T ln(T x) {
  Precision<T>::ln(1, &x, &x);
  return x;
}
template <class T>
inline T exp(T x) {
  Precision<T>::exp(1, &x, &x);
  return x;
}
template <class T>
inline T sqrt(T x) {
  Precision<T>::sqrt(1, &x, &x);
  return x;
}
template <class T>
inline T power(T x, T exponent) {
  Precision<T>::powx(1, &x, exponent, &x);
  return x;
}

// What stands in for ln 0: the logarithm of the smallest positive number.
template <class T>
constexpr double ln_floor = -744.4400719213812;
template <>
constexpr double ln_floor<float> = -103.2789306640625;

enum class ActsOn { every_error, singularities };

template <class T, ActsOn acts_on>
int32_t put_floor(VxmErrorContext *record) {
  if (acts_on == ActsOn::every_error || record->iCode == VXM_STATUS_SING)
    record->dbR1 = record->dbR2 = ln_floor<T>;
  return 0;
}

// Runs `work`, which returns a status, under an error callback instead of the thread's error policy: the
// logarithms of precision T that it takes are finite.
template <class T, ActsOn acts_on, class Work>
inline int32_t with_finite_logarithms(Work work) {
  const VxmMode mode = _vxmSetMode(VXM_MODE_CALLBACK);
  const VxmErrorCallBack previous = _vxmSetErrorCallBack(put_floor<T, acts_on>);
  const int32_t status = work();
  _vxmSetErrorCallBack(previous);
  _vxmSetMode(mode);
  return status;
}

// `work(m, first)` for the elements first to first + m - 1 in turn, few enough to stay in the first-level
// cache from one vector function to the next.
constexpr int32_t longest_block = 1024;
template <class Work>
inline void in_blocks(ptrdiff_t n, Work work) {
  constexpr ptrdiff_t longest = longest_block;
  for (ptrdiff_t first = 0; first < n; first += longest)
    work(static_cast<int32_t>(n - first < longest ? n - first : longest), first);
}

// Whether the numbers come from a generator or a buffer of a user, which may fail.
inline bool is_users(const StreamState *stream) { return stream->brng >= abstract_integers; }

// The same after `draw(m, first)`, which returns a status and ends all if that is negative. Generators of the
// library do not fail, nor do they mind how draws are split: their numbers are drawn a block at a time and
// worked on while they are in the cache. Those of users are asked for all numbers at once, and nothing is
// worked on if they fail. The first block is shorter by `lead`.
template <class Draw, class Work>
inline int32_t draw_in_blocks(const StreamState *stream, int32_t n, Draw draw, Work work, int32_t lead = 0) {
  const bool at_once = is_users(stream);
  int32_t status;
  ptrdiff_t first = 0;
  do {
    const int32_t longest = longest_block - (first ? 0 : lead);
    const int32_t m = at_once || n - first < longest ? static_cast<int32_t>(n - first) : longest;
    status = draw(m, first);
    if (status < 0) return status;
    in_blocks(m, [=](int32_t count, ptrdiff_t start) { work(count, first + start); });
    first += m;
  } while (first < n);
  return status;
}

// `work(m, first)` for whole blocks of `size`, then for the rest, even if that is 0. Ends with the first
// negative status, and returns the last one.
template <int32_t size, class Work>
inline int32_t in_whole_blocks(int32_t n, Work work) {
  ptrdiff_t first = 0;
  for (; n - first >= size; first += size) {
    const int32_t status = work(size, first);
    if (status < 0) return status;
  }
  return work(static_cast<int32_t>(n - first), first);
}

template <class T>
inline int32_t uniforms(StreamState *stream, int32_t n, T *out) {
  return Precision<T>::uniform(0, stream, n, out, T(0), T(1));
}

// Uniform numbers to `out`, which work(m, x) replaces by others.
template <class T, class Work>
inline int32_t from_uniforms(StreamState *stream, int32_t n, T *out, Work work) {
  return draw_in_blocks(
      stream, n, [=](int32_t m, ptrdiff_t first) { return uniforms(stream, m, out + first); },
      [=](int32_t m, ptrdiff_t first) { work(m, out + first); });
}

// The first of each of m pairs goes to `firsts`, and the second, times `factor`, to `seconds`.
template <class T>
inline void part_pairs(int32_t m, const T *pairs, T *__restrict firsts, T *__restrict seconds, T factor) {
  for (int32_t i = 0; i < m; ++i) {
    firsts[i] = pairs[2 * i];
    seconds[i] = pairs[2 * i + 1] * factor;
  }
}
template <class T>
inline void part_pairs(int32_t m, const T *pairs, T *__restrict firsts, T *__restrict seconds) {
  for (int32_t i = 0; i < m; ++i) {
    firsts[i] = pairs[2 * i];
    seconds[i] = pairs[2 * i + 1];
  }
}

template <class T>
inline void negate(int32_t n, T *x) {
  for (int32_t i = 0; i < n; ++i) x[i] = -x[i];
}

template <class T>
inline void scale(int32_t n, T *x, T factor, T displacement) {
  for (int32_t i = 0; i < n; ++i) x[i] = x[i] * factor + displacement;
}

// NaN becomes the lower bound.
template <class T>
inline T at_least(T x, T lower) {
  return x >= lower ? x : lower;
}

template <class T>
inline void scale_at_least(int32_t n, T *x, T factor, T lower) {
  for (int32_t i = 0; i < n; ++i) x[i] = at_least(x[i] * factor + lower, lower);
}

template <class T>
inline void bound(int32_t n, T *x, T lower, T upper) {
  for (int32_t i = 0; i < n; ++i) {
    const T t = at_least(x[i], lower);
    x[i] = t > upper ? upper : t;
  }
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

// The entry of a distribution in one form, for all levels; its body follows. For a few numbers all levels do
// the same, and the baseline starts sooner. QKR_DISTRIBUTION_UNLESS: only if the baseline's expression
// `served`, which may serve a short call, is false (see QKR_ENTRY_AFTER).
#define QKR_DISTRIBUTION(name, T, parameters, arguments) \
  QKR_DISTRIBUTION_UNLESS(name, T, parameters, arguments, false)
#define QKR_DISTRIBUTION_UNLESS(name, T, parameters, arguments, served)                                      \
  QKR_DISTRIBUTION_AFTER(using namespace qkr::sse2; if (served) return VXS_STATUS_OK;                        \
                         QKR_STAY_IF(n <= 4, name, (method, stream, n, out, QKR_LISTED arguments)), name, T, \
                         parameters, arguments)
#define QKR_DISTRIBUTION_AFTER(first, name, T, parameters, arguments)                                     \
  QKR_ENTRY_AFTER(                                                                                        \
      first, int32_t, name,                                                                               \
      ([[maybe_unused]] int32_t method, StreamState * stream, int32_t n, T * out, QKR_LISTED parameters), \
      (method, stream, n, out, QKR_LISTED arguments))
#define QKR_LISTED(...) __VA_ARGS__
