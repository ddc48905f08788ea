/** @file
 * C++: aligned arrays; copies, conversions and moves of elements. Included by qkr/qkr.hpp.
 *
 * All spans of a call have the same size, but where something else is said; otherwise the answer is
 * zprStsSizeErr, of pack and unpack VXM_STATUS_BADSIZE, with nothing written. */
#ifndef QKR_CPP_ARRAYS_HPP
#define QKR_CPP_ARRAYS_HPP

#include <qkr/cpp/base.hpp>

namespace qkr {
inline namespace cpp {

/** An array of numbers at an address that is a multiple of 64, where transforms are fastest; not
 * initialised; move only. Memory of w6_zprsMalloc_8u(), given back by w6_zprsFree() (zprsMalloc_8u() and
 * zprsFree() are the same); C++ needs no function for each type of elements. */
template <class T>
requires std::is_trivially_copyable_v<T>
class aligned_array {
 public:
  aligned_array() noexcept = default;
  /** Room for so many elements, at most 2 GiB. */
  explicit aligned_array(std::size_t size) { check(try_reset(size)); }
  aligned_array(aligned_array &&other) noexcept
      : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}
  aligned_array &operator=(aligned_array &&other) noexcept {
    aligned_array taken(std::move(other));
    std::swap(data_, taken.data_);
    std::swap(size_, taken.size_);
    return *this;
  }
  ~aligned_array() { w6_zprsFree(data_); }

  /** Replaces the array, unless it fails. At most 2 GiB. */
  status try_reset(std::size_t size) noexcept {
    if (size > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()) / sizeof(T))
      return {room::sigfft, zprStsSizeErr};
    std::uint8_t *const block =
        size ? w6_zprsMalloc_8u(static_cast<std::int32_t>(size * sizeof(T))) : nullptr;
    if (size && !block) return {room::sigfft, zprStsMemAllocErr};
    w6_zprsFree(data_);
    data_ = reinterpret_cast<T *>(block);
    size_ = size;
    return {room::sigfft, zprStsNoErr};
  }

  /** @name As containers have it
   * Indices are not checked. */
  /**@{*/
  T *data() noexcept { return data_; }
  const T *data() const noexcept { return data_; }
  std::size_t size() const noexcept { return size_; }
  T *begin() noexcept { return data_; }
  T *end() noexcept { return data_ + size_; }
  const T *begin() const noexcept { return data_; }
  const T *end() const noexcept { return data_ + size_; }
  T &operator[](std::size_t i) noexcept { return data_[i]; }
  const T &operator[](std::size_t i) const noexcept { return data_[i]; }
  /**@}*/

 private:
  T *data_ = nullptr;
  std::size_t size_ = 0;
};

/** What a conversion to integers or to half precision does with the rest: QKR_TRUNCATE, QKR_ROUND_NEAREST. */
enum class rounding : std::uint32_t { truncate = QKR_TRUNCATE, nearest = QKR_ROUND_NEAREST };

// A row: the elements, and the call for a piece of `n` from x to y. No elements are no fault.
#define QKR_CPP_LISTED(...) __VA_ARGS__
#define QKR_CPP_CONVERSION(name, From, To, more, more_names, ...)                                   \
  inline status try_##name(std::span<const From> a, std::span<To> r QKR_CPP_LISTED more) noexcept { \
    if (a.size() != r.size()) return {room::sigfft, zprStsSizeErr};                                 \
    if (a.empty()) return {room::sigfft, zprStsNoErr};                                              \
    return {room::sigfft, detail::in_pieces(a.size(), [=](std::int32_t n, std::size_t i) {          \
              const From *const x = a.data() + i;                                                   \
              To *const y = r.data() + i;                                                           \
              return __VA_ARGS__;                                                                   \
            })};                                                                                    \
  }                                                                                                 \
  inline void name(std::span<const From> a, std::span<To> r QKR_CPP_LISTED more) {                  \
    check(try_##name(a, r QKR_CPP_LISTED more_names));                                              \
  }
#define QKR_CPP_SCALED (, rounding to = rounding::nearest, std::int32_t scale = 0)
#define QKR_CPP_SCALED_NAMES (, to, scale)
#define QKR_CPP_MODE static_cast<std::uint32_t>(to)

/** @name Conversions
 * From integers, and to integers of the value times 2^-scale, saturated. Half precision is carried in
 * 16-bit words. zprsConvert_8s32f(), zprsConvert_8u32f(), zprsConvert_16s32f(), zprsConvert_16u32f(),
 * zprsConvert_32s32f(), zprsConvert_32s64f(); zprsConvert_32f8s_Sfs(), zprsConvert_32f8u_Sfs(),
 * zprsConvert_32f16s_Sfs(), zprsConvert_32f16u_Sfs(), zprsConvert_32f32s_Sfs(), zprsConvert_64f32s_Sfs();
 * zprsConvert_16f32f(), zprsConvert_32f16f(), zprsConvert_16s16f(), zprsConvert_16f16s_Sfs(). */
/**@{*/
QKR_CPP_CONVERSION(convert, std::int8_t, float, (), (), zprsConvert_8s32f(x, y, n))
QKR_CPP_CONVERSION(convert, std::uint8_t, float, (), (), zprsConvert_8u32f(x, y, n))
QKR_CPP_CONVERSION(convert, std::int16_t, float, (), (), zprsConvert_16s32f(x, y, n))
QKR_CPP_CONVERSION(convert, std::uint16_t, float, (), (), zprsConvert_16u32f(x, y, n))
QKR_CPP_CONVERSION(convert, std::int32_t, float, (), (), zprsConvert_32s32f(x, y, n))
QKR_CPP_CONVERSION(convert, std::int32_t, double, (), (), zprsConvert_32s64f(x, y, n))
QKR_CPP_CONVERSION(convert, float, std::int8_t, QKR_CPP_SCALED, QKR_CPP_SCALED_NAMES,
                   zprsConvert_32f8s_Sfs(x, y, n, QKR_CPP_MODE, scale))
QKR_CPP_CONVERSION(convert, float, std::uint8_t, QKR_CPP_SCALED, QKR_CPP_SCALED_NAMES,
                   zprsConvert_32f8u_Sfs(x, y, n, QKR_CPP_MODE, scale))
QKR_CPP_CONVERSION(convert, float, std::int16_t, QKR_CPP_SCALED, QKR_CPP_SCALED_NAMES,
                   zprsConvert_32f16s_Sfs(x, y, n, QKR_CPP_MODE, scale))
QKR_CPP_CONVERSION(convert, float, std::uint16_t, QKR_CPP_SCALED, QKR_CPP_SCALED_NAMES,
                   zprsConvert_32f16u_Sfs(x, y, n, QKR_CPP_MODE, scale))
QKR_CPP_CONVERSION(convert, float, std::int32_t, QKR_CPP_SCALED, QKR_CPP_SCALED_NAMES,
                   zprsConvert_32f32s_Sfs(x, y, n, QKR_CPP_MODE, scale))
QKR_CPP_CONVERSION(convert, double, std::int32_t, QKR_CPP_SCALED, QKR_CPP_SCALED_NAMES,
                   zprsConvert_64f32s_Sfs(x, y, n, QKR_CPP_MODE, scale))
QKR_CPP_CONVERSION(from_half, std::uint16_t, float, (), (), zprsConvert_16f32f(x, y, n))
QKR_CPP_CONVERSION(from_half, std::uint16_t, std::int16_t, QKR_CPP_SCALED, QKR_CPP_SCALED_NAMES,
                   zprsConvert_16f16s_Sfs(x, y, n, QKR_CPP_MODE, scale))
QKR_CPP_CONVERSION(to_half, float, std::uint16_t, (, rounding to = rounding::nearest), (, to),
                   zprsConvert_32f16f(x, y, n, QKR_CPP_MODE))
QKR_CPP_CONVERSION(to_half, std::int16_t, std::uint16_t, (, rounding to = rounding::nearest), (, to),
                   zprsConvert_16s16f(x, y, n, QKR_CPP_MODE))
/**@}*/
#undef QKR_CPP_CONVERSION
#undef QKR_CPP_SCALED
#undef QKR_CPP_SCALED_NAMES
#undef QKR_CPP_MODE
#undef QKR_CPP_LISTED

}  // namespace cpp
}  // namespace qkr

#endif
