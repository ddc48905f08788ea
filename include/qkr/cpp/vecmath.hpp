/** @file
 * C++: vector functions. Included by qkr/qkr.hpp.
 *
 *     std::vector<double> x(1000), y(1000);
 *     qkr::exp(x, y);
 *
 * Inputs come first, then results; all spans have the same size, or the answer is VXM_STATUS_BADSIZE, with
 * nothing done. A result may be an input; other overlap is not supported. What the C functions named beside
 * each say of values, accuracy and bad elements holds. Arrays longer than QKR_LONGEST_PIECE go in pieces,
 * from which error callbacks count.
 *
 * A bad element, say the logarithm of -1, is no failure of the call: the element gets its IEEE result, and
 * goes the way that the thread's mode, status word and callback say (element_policy, element_status). */
#ifndef QKR_CPP_VECMATH_HPP
#define QKR_CPP_VECMATH_HPP

#include <qkr/cpp/base.hpp>

namespace qkr {
inline namespace cpp {
namespace detail {

inline const double *elements(const double *p) { return p; }
inline double *elements(double *p) { return p; }
inline const float *elements(const float *p) { return p; }
inline float *elements(float *p) { return p; }
inline const vxm64fc *elements(const std::complex<double> *p) { return as<const vxm64fc>(p); }
inline vxm64fc *elements(std::complex<double> *p) { return as<vxm64fc>(p); }
inline const vxm32fc *elements(const std::complex<float> *p) { return as<const vxm32fc>(p); }
inline vxm32fc *elements(std::complex<float> *p) { return as<vxm32fc>(p); }
inline vxm64fc element(std::complex<double> z) { return {z.real(), z.imag()}; }
inline vxm32fc element(std::complex<float> z) { return {z.real(), z.imag()}; }
inline double element(double x) { return x; }
inline float element(float x) { return x; }

// f(n, from the arrays at the piece) for all elements, if the sizes agree.
template <class Call>
inline status over_elements(std::size_t n, bool sizes_agree, Call call) noexcept {
  if (!sizes_agree) [[unlikely]]
    return {room::vecmath, VXM_STATUS_BADSIZE};
  return {room::vecmath, in_pieces(n, [&](std::int32_t count, std::size_t first) {
            call(count, first);
            return 0;
          })};
}

}  // namespace detail

// Rows of the tables below: a function of one array, of two, of an array and a number, and one with two
// results.
#define QKR_CPP_OF_ONE(name, T, f)                                                                    \
  inline status try_##name(std::span<const T> a, std::span<T> r) noexcept {                           \
    return detail::over_elements(r.size(), a.size() == r.size(), [=](std::int32_t n, std::size_t i) { \
      f(n, detail::elements(a.data() + i), detail::elements(r.data() + i));                           \
    });                                                                                               \
  }                                                                                                   \
  inline void name(std::span<const T> a, std::span<T> r) { check(try_##name(a, r)); }
#define QKR_CPP_OF_TWO(name, T, f)                                                                          \
  inline status try_##name(std::span<const T> a, std::span<const T> b, std::span<T> r) noexcept {           \
    const bool agree = a.size() == r.size() && b.size() == r.size();                                        \
    return detail::over_elements(r.size(), agree, [=](std::int32_t n, std::size_t i) {                      \
      f(n, detail::elements(a.data() + i), detail::elements(b.data() + i), detail::elements(r.data() + i)); \
    });                                                                                                     \
  }                                                                                                         \
  inline void name(std::span<const T> a, std::span<const T> b, std::span<T> r) { check(try_##name(a, b, r)); }
#define QKR_CPP_OF_NUMBER(name, T, f)                                                                 \
  inline status try_##name(std::span<const T> a, T b, std::span<T> r) noexcept {                      \
    return detail::over_elements(r.size(), a.size() == r.size(), [=](std::int32_t n, std::size_t i) { \
      f(n, detail::elements(a.data() + i), detail::element(b), detail::elements(r.data() + i));       \
    });                                                                                               \
  }                                                                                                   \
  inline void name(std::span<const T> a, T b, std::span<T> r) { check(try_##name(a, b, r)); }
#define QKR_CPP_TO_TWO(name, T, f)                                                            \
  inline status try_##name(std::span<const T> a, std::span<T> r1, std::span<T> r2) noexcept { \
    const bool agree = a.size() == r1.size() && a.size() == r2.size();                        \
    return detail::over_elements(a.size(), agree, [=](std::int32_t n, std::size_t i) {        \
      f(n, a.data() + i, r1.data() + i, r2.data() + i);                                       \
    });                                                                                       \
  }                                                                                           \
  inline void name(std::span<const T> a, std::span<T> r1, std::span<T> r2) { check(try_##name(a, r1, r2)); }

/** @name Functions of real and of complex numbers
 * name(a, r), try_name(a, r); pow(a, b, r) of two arrays, or with one exponent for all. */
/**@{*/
/** e^a: _vxmdExp_HA(), _vxmsExp_HA(), _vxmzExp_HA(), _vxmcExp_HA(). */
QKR_CPP_OF_ONE(exp, double, _vxmdExp_HA)
QKR_CPP_OF_ONE(exp, float, _vxmsExp_HA)
QKR_CPP_OF_ONE(exp, std::complex<double>, _vxmzExp_HA)
QKR_CPP_OF_ONE(exp, std::complex<float>, _vxmcExp_HA)
/** ln a: _vxmdLn_HA(), _vxmsLn_HA(), _vxmzLn_HA(), _vxmcLn_HA(). */
QKR_CPP_OF_ONE(log, double, _vxmdLn_HA)
QKR_CPP_OF_ONE(log, float, _vxmsLn_HA)
QKR_CPP_OF_ONE(log, std::complex<double>, _vxmzLn_HA)
QKR_CPP_OF_ONE(log, std::complex<float>, _vxmcLn_HA)
/** The logarithm to base 10: _vxmdLog10_HA(), _vxmsLog10_HA(), _vxmzLog10_HA(), _vxmcLog10_HA(). */
QKR_CPP_OF_ONE(log10, double, _vxmdLog10_HA)
QKR_CPP_OF_ONE(log10, float, _vxmsLog10_HA)
QKR_CPP_OF_ONE(log10, std::complex<double>, _vxmzLog10_HA)
QKR_CPP_OF_ONE(log10, std::complex<float>, _vxmcLog10_HA)
/** The square root: _vxmdSqrt_HA(), _vxmsSqrt_HA(), _vxmzSqrt_HA(), _vxmcSqrt_HA(). */
QKR_CPP_OF_ONE(sqrt, double, _vxmdSqrt_HA)
QKR_CPP_OF_ONE(sqrt, float, _vxmsSqrt_HA)
QKR_CPP_OF_ONE(sqrt, std::complex<double>, _vxmzSqrt_HA)
QKR_CPP_OF_ONE(sqrt, std::complex<float>, _vxmcSqrt_HA)
/** The sine: _vxmdSin_HA(), _vxmsSin_HA(), _vxmzSin_HA(), _vxmcSin_HA(). */
QKR_CPP_OF_ONE(sin, double, _vxmdSin_HA)
QKR_CPP_OF_ONE(sin, float, _vxmsSin_HA)
QKR_CPP_OF_ONE(sin, std::complex<double>, _vxmzSin_HA)
QKR_CPP_OF_ONE(sin, std::complex<float>, _vxmcSin_HA)
/** The cosine: _vxmdCos_HA(), _vxmsCos_HA(), _vxmzCos_HA(), _vxmcCos_HA(). */
QKR_CPP_OF_ONE(cos, double, _vxmdCos_HA)
QKR_CPP_OF_ONE(cos, float, _vxmsCos_HA)
QKR_CPP_OF_ONE(cos, std::complex<double>, _vxmzCos_HA)
QKR_CPP_OF_ONE(cos, std::complex<float>, _vxmcCos_HA)
/** The tangent: _vxmdTan_HA(), _vxmsTan_HA(), _vxmzTan_HA(), _vxmcTan_HA(). */
QKR_CPP_OF_ONE(tan, double, _vxmdTan_HA)
QKR_CPP_OF_ONE(tan, float, _vxmsTan_HA)
QKR_CPP_OF_ONE(tan, std::complex<double>, _vxmzTan_HA)
QKR_CPP_OF_ONE(tan, std::complex<float>, _vxmcTan_HA)
/** The arc sine: _vxmdAsin_HA(), _vxmsAsin_HA(), _vxmzAsin_HA(), _vxmcAsin_HA(). */
QKR_CPP_OF_ONE(asin, double, _vxmdAsin_HA)
QKR_CPP_OF_ONE(asin, float, _vxmsAsin_HA)
QKR_CPP_OF_ONE(asin, std::complex<double>, _vxmzAsin_HA)
QKR_CPP_OF_ONE(asin, std::complex<float>, _vxmcAsin_HA)
/** The arc cosine: _vxmdAcos_HA(), _vxmsAcos_HA(), _vxmzAcos_HA(), _vxmcAcos_HA(). */
QKR_CPP_OF_ONE(acos, double, _vxmdAcos_HA)
QKR_CPP_OF_ONE(acos, float, _vxmsAcos_HA)
QKR_CPP_OF_ONE(acos, std::complex<double>, _vxmzAcos_HA)
QKR_CPP_OF_ONE(acos, std::complex<float>, _vxmcAcos_HA)
/** The arc tangent: _vxmdAtan_HA(), _vxmsAtan_HA(), _vxmzAtan_HA(), _vxmcAtan_HA(). */
QKR_CPP_OF_ONE(atan, double, _vxmdAtan_HA)
QKR_CPP_OF_ONE(atan, float, _vxmsAtan_HA)
QKR_CPP_OF_ONE(atan, std::complex<double>, _vxmzAtan_HA)
QKR_CPP_OF_ONE(atan, std::complex<float>, _vxmcAtan_HA)
/** The hyperbolic sine: _vxmdSinh_HA(), _vxmsSinh_HA(), _vxmzSinh_HA(), _vxmcSinh_HA(). */
QKR_CPP_OF_ONE(sinh, double, _vxmdSinh_HA)
QKR_CPP_OF_ONE(sinh, float, _vxmsSinh_HA)
QKR_CPP_OF_ONE(sinh, std::complex<double>, _vxmzSinh_HA)
QKR_CPP_OF_ONE(sinh, std::complex<float>, _vxmcSinh_HA)
/** The hyperbolic cosine: _vxmdCosh_HA(), _vxmsCosh_HA(), _vxmzCosh_HA(), _vxmcCosh_HA(). */
QKR_CPP_OF_ONE(cosh, double, _vxmdCosh_HA)
QKR_CPP_OF_ONE(cosh, float, _vxmsCosh_HA)
QKR_CPP_OF_ONE(cosh, std::complex<double>, _vxmzCosh_HA)
QKR_CPP_OF_ONE(cosh, std::complex<float>, _vxmcCosh_HA)
/** The hyperbolic tangent: _vxmdTanh_HA(), _vxmsTanh_HA(), _vxmzTanh_HA(), _vxmcTanh_HA(). */
QKR_CPP_OF_ONE(tanh, double, _vxmdTanh_HA)
QKR_CPP_OF_ONE(tanh, float, _vxmsTanh_HA)
QKR_CPP_OF_ONE(tanh, std::complex<double>, _vxmzTanh_HA)
QKR_CPP_OF_ONE(tanh, std::complex<float>, _vxmcTanh_HA)
/** The inverse hyperbolic sine: _vxmdAsinh_HA(), _vxmsAsinh_HA(), _vxmzAsinh_HA(), _vxmcAsinh_HA(). */
QKR_CPP_OF_ONE(asinh, double, _vxmdAsinh_HA)
QKR_CPP_OF_ONE(asinh, float, _vxmsAsinh_HA)
QKR_CPP_OF_ONE(asinh, std::complex<double>, _vxmzAsinh_HA)
QKR_CPP_OF_ONE(asinh, std::complex<float>, _vxmcAsinh_HA)
/** The inverse hyperbolic cosine: _vxmdAcosh_HA(), _vxmsAcosh_HA(), _vxmzAcosh_HA(), _vxmcAcosh_HA(). */
QKR_CPP_OF_ONE(acosh, double, _vxmdAcosh_HA)
QKR_CPP_OF_ONE(acosh, float, _vxmsAcosh_HA)
QKR_CPP_OF_ONE(acosh, std::complex<double>, _vxmzAcosh_HA)
QKR_CPP_OF_ONE(acosh, std::complex<float>, _vxmcAcosh_HA)
/** The inverse hyperbolic tangent: _vxmdAtanh_HA(), _vxmsAtanh_HA(), _vxmzAtanh_HA(), _vxmcAtanh_HA(). */
QKR_CPP_OF_ONE(atanh, double, _vxmdAtanh_HA)
QKR_CPP_OF_ONE(atanh, float, _vxmsAtanh_HA)
QKR_CPP_OF_ONE(atanh, std::complex<double>, _vxmzAtanh_HA)
QKR_CPP_OF_ONE(atanh, std::complex<float>, _vxmcAtanh_HA)
/** a^b: _vxmdPow_HA(), _vxmsPow_HA(), _vxmzPow_HA(), _vxmcPow_HA(). */
QKR_CPP_OF_TWO(pow, double, _vxmdPow_HA)
QKR_CPP_OF_TWO(pow, float, _vxmsPow_HA)
QKR_CPP_OF_TWO(pow, std::complex<double>, _vxmzPow_HA)
QKR_CPP_OF_TWO(pow, std::complex<float>, _vxmcPow_HA)
/** a^b with one exponent: _vxmdPowx_HA(), _vxmsPowx_HA(), _vxmzPowx_HA(), _vxmcPowx_HA(). */
QKR_CPP_OF_NUMBER(pow, double, _vxmdPowx_HA)
QKR_CPP_OF_NUMBER(pow, float, _vxmsPowx_HA)
QKR_CPP_OF_NUMBER(pow, std::complex<double>, _vxmzPowx_HA)
QKR_CPP_OF_NUMBER(pow, std::complex<float>, _vxmcPowx_HA)
/**@}*/

/** @name Functions of real numbers
 * name(a, r), name(a, b, r) of two arrays, name(a, r1, r2) with two results; and their twins. */
/**@{*/
/** 1 / sqrt(a): _vxmdInvSqrt_HA(), _vxmsInvSqrt_HA(). */
QKR_CPP_OF_ONE(inv_sqrt, double, _vxmdInvSqrt_HA)
QKR_CPP_OF_ONE(inv_sqrt, float, _vxmsInvSqrt_HA)
/** The cube root: _vxmdCbrt_HA(), _vxmsCbrt_HA(). */
QKR_CPP_OF_ONE(cbrt, double, _vxmdCbrt_HA)
QKR_CPP_OF_ONE(cbrt, float, _vxmsCbrt_HA)
/** 1 / cbrt(a): _vxmdInvCbrt_HA(), _vxmsInvCbrt_HA(). */
QKR_CPP_OF_ONE(inv_cbrt, double, _vxmdInvCbrt_HA)
QKR_CPP_OF_ONE(inv_cbrt, float, _vxmsInvCbrt_HA)
/** 1 / a: _vxmdInv_HA(), _vxmsInv_HA(). */
QKR_CPP_OF_ONE(inv, double, _vxmdInv_HA)
QKR_CPP_OF_ONE(inv, float, _vxmsInv_HA)
/** The error function: _vxmdErf_HA(), _vxmsErf_HA(). */
QKR_CPP_OF_ONE(erf, double, _vxmdErf_HA)
QKR_CPP_OF_ONE(erf, float, _vxmsErf_HA)
/** 1 - erf(a): _vxmdErfc_HA(), _vxmsErfc_HA(). */
QKR_CPP_OF_ONE(erfc, double, _vxmdErfc_HA)
QKR_CPP_OF_ONE(erfc, float, _vxmsErfc_HA)
/** The inverse of erf: _vxmdErfInv_HA(), _vxmsErfInv_HA(). */
QKR_CPP_OF_ONE(erf_inv, double, _vxmdErfInv_HA)
QKR_CPP_OF_ONE(erf_inv, float, _vxmsErfInv_HA)
/** a / b: _vxmdDiv_HA(), _vxmsDiv_HA(). */
QKR_CPP_OF_TWO(div, double, _vxmdDiv_HA)
QKR_CPP_OF_TWO(div, float, _vxmsDiv_HA)
/** sqrt(a^2 + b^2): _vxmdHypot_HA(), _vxmsHypot_HA(). */
QKR_CPP_OF_TWO(hypot, double, _vxmdHypot_HA)
QKR_CPP_OF_TWO(hypot, float, _vxmsHypot_HA)
/** The angle of the point with ordinate a and abscissa b: _vxmdAtan2_HA(), _vxmsAtan2_HA(). */
QKR_CPP_OF_TWO(atan2, double, _vxmdAtan2_HA)
QKR_CPP_OF_TWO(atan2, float, _vxmsAtan2_HA)
/** Sine and cosine: _vxmdSinCos_HA(), _vxmsSinCos_HA(). */
QKR_CPP_TO_TWO(sincos, double, _vxmdSinCos_HA)
QKR_CPP_TO_TWO(sincos, float, _vxmsSinCos_HA)
/** Rounded upward: _vxmdCeil(), _vxmsCeil(). */
QKR_CPP_OF_ONE(ceil, double, _vxmdCeil)
QKR_CPP_OF_ONE(ceil, float, _vxmsCeil)
/** Rounded downward: _vxmdFloor(), _vxmsFloor(). */
QKR_CPP_OF_ONE(floor, double, _vxmdFloor)
QKR_CPP_OF_ONE(floor, float, _vxmsFloor)
/** Rounded toward zero: _vxmdTrunc(), _vxmsTrunc(). */
QKR_CPP_OF_ONE(trunc, double, _vxmdTrunc)
QKR_CPP_OF_ONE(trunc, float, _vxmsTrunc)
/** Rounded to nearest, halves away from zero: _vxmdRound(), _vxmsRound(). */
QKR_CPP_OF_ONE(round, double, _vxmdRound)
QKR_CPP_OF_ONE(round, float, _vxmsRound)
/** Rounded in the current direction: _vxmdRint(), _vxmsRint(). */
QKR_CPP_OF_ONE(rint, double, _vxmdRint)
QKR_CPP_OF_ONE(rint, float, _vxmsRint)
/** Rounded in the current direction: _vxmdNearbyInt(), _vxmsNearbyInt(). */
QKR_CPP_OF_ONE(nearbyint, double, _vxmdNearbyInt)
QKR_CPP_OF_ONE(nearbyint, float, _vxmsNearbyInt)
/** Integer part and fraction: _vxmdModf(), _vxmsModf(). */
QKR_CPP_TO_TWO(modf, double, _vxmdModf)
QKR_CPP_TO_TWO(modf, float, _vxmsModf)
/**@}*/

#undef QKR_CPP_OF_ONE
#undef QKR_CPP_OF_TWO
#undef QKR_CPP_OF_NUMBER
#undef QKR_CPP_TO_TWO

/** @name Bad elements
 * All of it is the calling thread's. */
/**@{*/

/** Status of the latest bad element, one of VXM_STATUS_...: _vxmGetErrStatus(). */
inline std::int32_t element_status() noexcept { return _vxmGetErrStatus(); }
/** Sets it, and returns what it was: _vxmSetErrStatus(). */
inline std::int32_t set_element_status(std::int32_t code) noexcept { return _vxmSetErrStatus(code); }
/** Sets it to VXM_STATUS_OK, and returns what it was: _vxmClearErrStatus(). */
inline std::int32_t clear_element_status() noexcept { return _vxmClearErrStatus(); }

/** Runs work(), and returns the status of the last bad element that it met, or VXM_STATUS_OK; the thread's
 * status word is then what it was before. `qkr::check(qkr::elements_of([&] { qkr::log(x, y); }));` throws
 * for bad elements. */
template <class Work>
inline status elements_of(Work &&work) {
  struct Restore {
    std::int32_t before = _vxmClearErrStatus();
    ~Restore() { _vxmSetErrStatus(before); }
  } restore;
  std::forward<Work>(work)();
  return {room::vecmath, _vxmGetErrStatus()};
}

/** Mode and callback of the thread, until the end of the scope, when those before are back: _vxmSetMode() and
 * _vxmSetErrorCallBack() (_vxmGetMode(), _vxmGetErrorCallBack() and _vxmClearErrorCallBack() read and
 * remove them, qkr_vxm_exchange_policy() exchanges all at once). A callback must not throw. */
class element_policy {
 public:
  /** @param mode VXM_MODE_IGNORE, or VXM_MODE_ERRNO and its companions
   * @param callback null for none; one is called, whatever the mode says */
  explicit element_policy(VxmMode mode, VxmErrorCallBack callback = nullptr) noexcept
      : mode_(_vxmGetMode()), callback_(_vxmSetErrorCallBack(callback)) {
    _vxmSetMode(callback ? mode | VXM_MODE_CALLBACK : mode);
  }
  ~element_policy() {
    _vxmSetErrorCallBack(callback_);
    _vxmSetMode(mode_);
  }
  element_policy(const element_policy &) = delete;
  element_policy &operator=(const element_policy &) = delete;

 private:
  VxmMode mode_;
  VxmErrorCallBack callback_;
};
/**@}*/

}  // namespace cpp
}  // namespace qkr

#endif
