/** @file
 * C++: convolution and correlation. Included by qkr/qkr.hpp.
 *
 *     qkr::convolve(x, h, y);  // y.size() == x.size() + h.size() - 1
 *
 *     qkr::convolution_task<float> blur{{640, 480}, {5, 5}, {640, 480}};
 *     blur.start({2, 2});
 *     blur.run(picture, kernel, result);
 *
 * Spans of other sizes than the lengths ask for are answered with zprStsSizeErr, of tasks
 * VXS_CC_ERROR_XSHAPE and its companions, with nothing written. */
#ifndef QKR_CPP_CONVOLUTION_HPP
#define QKR_CPP_CONVOLUTION_HPP

#include <qkr/cpp/fft_plan.hpp>

namespace qkr {
inline namespace cpp {
namespace detail {

// call() if the sizes are right.
template <class Call>
inline status over_signals(bool sizes_agree, std::size_t longest, Call call) noexcept {
  return {room::sigfft, sizes_agree && fits_int32(longest) ? call() : zprStatus{zprStsSizeErr}};
}
constexpr std::int32_t length(std::size_t n) noexcept { return static_cast<std::int32_t>(n); }

}  // namespace detail

// Rows: an operation with its noexcept twin. `agree` says whether the sizes do, out.size() being the largest.
#define QKR_CPP_LISTED(...) __VA_ARGS__
#define QKR_CPP_SIGNALS(name, parameters, arguments, agree, ...)                 \
  inline status try_##name(QKR_CPP_LISTED parameters) noexcept {                 \
    return detail::over_signals(agree, out.size(), [&] { return __VA_ARGS__; }); \
  }                                                                              \
  inline void name(QKR_CPP_LISTED parameters) { check(try_##name(QKR_CPP_LISTED arguments)); }
#define QKR_CPP_CONVOLUTION (!x.empty() && !h.empty() && out.size() == x.size() + h.size() - 1)

/** @name Linear convolution
 * All x.size() + h.size() - 1 results: zprsConv_64f(), zprsConv_32f(); 16-bit numbers times 2^-scale:
 * zprsConv_16s_Sfs(). */
/**@{*/
QKR_CPP_SIGNALS(convolve, (std::span<const double> x, std::span<const double> h, std::span<double> out),
                (x, h, out), QKR_CPP_CONVOLUTION,
                zprsConv_64f(x.data(), detail::length(x.size()), h.data(), detail::length(h.size()),
                             out.data()))
QKR_CPP_SIGNALS(convolve, (std::span<const float> x, std::span<const float> h, std::span<float> out),
                (x, h, out), QKR_CPP_CONVOLUTION,
                zprsConv_32f(x.data(), detail::length(x.size()), h.data(), detail::length(h.size()),
                             out.data()))
QKR_CPP_SIGNALS(convolve,
                (std::span<const std::int16_t> x, std::span<const std::int16_t> h,
                 std::span<std::int16_t> out, std::int32_t scale),
                (x, h, out, scale), QKR_CPP_CONVOLUTION,
                zprsConv_16s_Sfs(x.data(), detail::length(x.size()), h.data(), detail::length(h.size()),
                                 out.data(), scale))
/**@}*/

/** @name Cyclic convolution
 * Of 8 numbers: zprsConvCyclic8x8_32f(), zprsConvCyclic8x8_16s_Sfs(); of 4, real and complex:
 * zprsConvCyclic4x4_32f32fc(). */
/**@{*/
QKR_CPP_SIGNALS(convolve_cyclic,
                (std::span<const float, 8> x, std::span<const float, 8> h, std::span<float, 8> out),
                (x, h, out), true, zprsConvCyclic8x8_32f(x.data(), h.data(), out.data()))
QKR_CPP_SIGNALS(convolve_cyclic,
                (std::span<const std::int16_t, 8> x, std::span<const std::int16_t, 8> h,
                 std::span<std::int16_t, 8> out, std::int32_t scale),
                (x, h, out, scale), true, zprsConvCyclic8x8_16s_Sfs(x.data(), h.data(), out.data(), scale))
QKR_CPP_SIGNALS(convolve_cyclic,
                (std::span<const float, 4> x, std::span<const std::complex<float>, 4> h,
                 std::span<std::complex<float>, 4> out),
                (x, h, out), true,
                zprsConvCyclic4x4_32f32fc(x.data(), detail::as<const zpr32fc>(h.data()),
                                          detail::as<zpr32fc>(out.data())))
/**@}*/

/** @name Products of packed spectra
 * Of real signals, as qkr::fft makes them, in the layout that the name says: zprsMulPack_64f(),
 * zprsMulPack_32f(), zprsMulPack_16s_Sfs(), zprsMulPerm_64f(), zprsMulPerm_32f(), zprsMulPerm_16s_Sfs();
 * `out` may be an operand (zprsMulPack_64f_I(), zprsMulPack_32f_I(), zprsMulPack_16s_ISfs(),
 * zprsMulPerm_64f_I(), zprsMulPerm_32f_I(), zprsMulPerm_16s_ISfs() are the same). The last one multiplies
 * by the conjugate of what `out` holds: zprsMulPackConj_64f_I(), zprsMulPackConj_32f_I(). */
/**@{*/
#define QKR_CPP_PRODUCT(name, T, f)                                                                  \
  QKR_CPP_SIGNALS(name, (std::span<const T> a, std::span<const T> b, std::span<T> out), (a, b, out), \
                  a.size() == out.size() && b.size() == out.size(),                                  \
                  f(a.data(), b.data(), out.data(), detail::length(out.size())))
#define QKR_CPP_SCALED_PRODUCT(name, T, f)                                                                  \
  QKR_CPP_SIGNALS(name, (std::span<const T> a, std::span<const T> b, std::span<T> out, std::int32_t scale), \
                  (a, b, out, scale), a.size() == out.size() && b.size() == out.size(),                     \
                  f(a.data(), b.data(), out.data(), detail::length(out.size()), scale))
QKR_CPP_PRODUCT(multiply_pack, double, zprsMulPack_64f)
QKR_CPP_PRODUCT(multiply_pack, float, zprsMulPack_32f)
QKR_CPP_SCALED_PRODUCT(multiply_pack, std::int16_t, zprsMulPack_16s_Sfs)
QKR_CPP_PRODUCT(multiply_perm, double, zprsMulPerm_64f)
QKR_CPP_PRODUCT(multiply_perm, float, zprsMulPerm_32f)
QKR_CPP_SCALED_PRODUCT(multiply_perm, std::int16_t, zprsMulPerm_16s_Sfs)
QKR_CPP_SIGNALS(multiply_pack_by_conjugate, (std::span<const double> a, std::span<double> out), (a, out),
                a.size() == out.size(),
                zprsMulPackConj_64f_I(a.data(), out.data(), detail::length(out.size())))
QKR_CPP_SIGNALS(multiply_pack_by_conjugate, (std::span<const float> a, std::span<float> out), (a, out),
                a.size() == out.size(),
                zprsMulPackConj_32f_I(a.data(), out.data(), detail::length(out.size())))
#undef QKR_CPP_PRODUCT
#undef QKR_CPP_SCALED_PRODUCT
/**@}*/
#undef QKR_CPP_SIGNALS
#undef QKR_CPP_CONVOLUTION
#undef QKR_CPP_LISTED

}  // namespace cpp
}  // namespace qkr

#endif
