/** @file
 * C++: elements gathered into a dense vector, and spread out of one. Included by qkr/qkr.hpp. */
#ifndef QKR_CPP_PACKING_HPP
#define QKR_CPP_PACKING_HPP

#include <qkr/cpp/base.hpp>

namespace qkr {
inline namespace cpp {
namespace detail {

// call(n, first) in pieces if the vectors are long enough.
template <class Call>
inline status over_packed(std::size_t n, bool fits, Call call) noexcept {
  if (!fits) return {room::vecmath, VXM_STATUS_BADSIZE};
  return {room::vecmath, in_pieces(n, [&](std::int32_t count, std::size_t first) {
            call(count, first);
            return 0;
          })};
}

// Whether `n` elements `step` apart fit into `size`, with a step of at least 0.
constexpr bool spaced(std::size_t size, std::size_t n, std::int32_t step) noexcept {
  return n == 0 ||
         (step >= 0 && size > 0 && (step == 0 || (size - 1) / static_cast<std::size_t>(step) >= n - 1));
}
constexpr std::size_t place(std::size_t i, std::int32_t step) noexcept {
  return i * static_cast<std::size_t>(step);
}

inline std::size_t selected(const std::int32_t *mask, std::size_t n) noexcept {
  std::size_t count = 0;
  for (std::size_t i = 0; i < n; ++i) count += mask[i] != 0;
  return count;
}

}  // namespace detail

/** @name Gathering
 * y[i] = a[i * step], of a step of at least 0: _vxmdPackI(), _vxmsPackI(); y[i] = a[index[i]], whose
 * indices are not checked: _vxmdPackV(), _vxmsPackV(). pack_where: those a[i] in turn for which mask[i] is
 * not 0, for which `dense` has room: _vxmdPackM(), _vxmsPackM(). */
/**@{*/
// The forms of one precision; `fI`, `fM`, `fV` are the C functions.
#define QKR_CPP_PACK(T, fI, fM, fV)                                                                          \
  inline status try_pack(std::span<const T> a, std::int32_t step, std::span<T> y) noexcept {                 \
    return detail::over_packed(y.size(), detail::spaced(a.size(), y.size(), step),                           \
                               [=](std::int32_t n, std::size_t i) {                                          \
                                 fI(n, a.data() + detail::place(i, step), step, y.data() + i);               \
                               });                                                                           \
  }                                                                                                          \
  inline status try_pack(std::span<const T> a, std::span<const std::int32_t> index,                          \
                         std::span<T> y) noexcept {                                                          \
    return detail::over_packed(y.size(), index.size() == y.size(), [=](std::int32_t n, std::size_t i) {      \
      fV(n, a.data(), index.data() + i, y.data() + i);                                                       \
    });                                                                                                      \
  }                                                                                                          \
  inline status try_pack_where(std::span<const T> a, std::span<const std::int32_t> mask,                     \
                               std::span<T> dense) noexcept {                                                \
    const bool fits = mask.size() == a.size() && detail::selected(mask.data(), mask.size()) <= dense.size(); \
    T *out = dense.data();                                                                                   \
    return detail::over_packed(a.size(), fits, [&](std::int32_t n, std::size_t i) {                          \
      fM(n, a.data() + i, mask.data() + i, out);                                                             \
      out += a.size() > detail::longest_piece                                                                \
                 ? detail::selected(mask.data() + i, static_cast<std::size_t>(n))                            \
                 : 0;                                                                                        \
    });                                                                                                      \
  }                                                                                                          \
  inline void pack(std::span<const T> a, std::int32_t step, std::span<T> y) { check(try_pack(a, step, y)); } \
  inline void pack(std::span<const T> a, std::span<const std::int32_t> index, std::span<T> y) {              \
    check(try_pack(a, index, y));                                                                            \
  }                                                                                                          \
  inline void pack_where(std::span<const T> a, std::span<const std::int32_t> mask, std::span<T> dense) {     \
    check(try_pack_where(a, mask, dense));                                                                   \
  }
QKR_CPP_PACK(double, _vxmdPackI, _vxmdPackM, _vxmdPackV)
QKR_CPP_PACK(float, _vxmsPackI, _vxmsPackM, _vxmsPackV)
#undef QKR_CPP_PACK
/**@}*/

/** @name Spreading
 * y[i * step] = a[i]: _vxmdUnpackI(), _vxmsUnpackI(); y[index[i]] = a[i], whose indices are not checked:
 * _vxmdUnpackV(), _vxmsUnpackV(). unpack_where: the next element of `dense` to each y[i] for which mask[i]
 * is not 0: _vxmdUnpackM(), _vxmsUnpackM(). */
/**@{*/
#define QKR_CPP_UNPACK(T, fI, fM, fV)                                                                        \
  inline status try_unpack(std::span<const T> a, std::span<T> y, std::int32_t step) noexcept {               \
    return detail::over_packed(a.size(), detail::spaced(y.size(), a.size(), step),                           \
                               [=](std::int32_t n, std::size_t i) {                                          \
                                 fI(n, a.data() + i, y.data() + detail::place(i, step), step);               \
                               });                                                                           \
  }                                                                                                          \
  inline status try_unpack(std::span<const T> a, std::span<T> y,                                             \
                           std::span<const std::int32_t> index) noexcept {                                   \
    return detail::over_packed(a.size(), index.size() == a.size(), [=](std::int32_t n, std::size_t i) {      \
      fV(n, a.data() + i, y.data(), index.data() + i);                                                       \
    });                                                                                                      \
  }                                                                                                          \
  inline status try_unpack_where(std::span<const T> dense, std::span<T> y,                                   \
                                 std::span<const std::int32_t> mask) noexcept {                              \
    const bool fits = mask.size() == y.size() && detail::selected(mask.data(), mask.size()) <= dense.size(); \
    const T *in = dense.data();                                                                              \
    return detail::over_packed(y.size(), fits, [&](std::int32_t n, std::size_t i) {                          \
      fM(n, in, y.data() + i, mask.data() + i);                                                              \
      in += y.size() > detail::longest_piece                                                                 \
                ? detail::selected(mask.data() + i, static_cast<std::size_t>(n))                             \
                : 0;                                                                                         \
    });                                                                                                      \
  }                                                                                                          \
  inline void unpack(std::span<const T> a, std::span<T> y, std::int32_t step) {                              \
    check(try_unpack(a, y, step));                                                                           \
  }                                                                                                          \
  inline void unpack(std::span<const T> a, std::span<T> y, std::span<const std::int32_t> index) {            \
    check(try_unpack(a, y, index));                                                                          \
  }                                                                                                          \
  inline void unpack_where(std::span<const T> dense, std::span<T> y, std::span<const std::int32_t> mask) {   \
    check(try_unpack_where(dense, y, mask));                                                                 \
  }
QKR_CPP_UNPACK(double, _vxmdUnpackI, _vxmdUnpackM, _vxmdUnpackV)
QKR_CPP_UNPACK(float, _vxmsUnpackI, _vxmsUnpackM, _vxmsUnpackV)
#undef QKR_CPP_UNPACK
/**@}*/

}  // namespace cpp
}  // namespace qkr

#endif
