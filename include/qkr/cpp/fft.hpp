/** @file
 * C++: Fourier transforms of one dimension and any length. Included by qkr/qkr.hpp; batches, strides and more
 * dimensions are those of qkr/cpp/dft.hpp.
 *
 *     qkr::fft<double> f{1000};
 *     f.forward(x, X);  // 1000 real numbers, 501 complex ones
 *     f.inverse(X, x);
 *
 * The argument of the template is the type of a signal's elements:
 *
 * | class                        | signal                       | spectrum                             |
 * |------------------------------|------------------------------|--------------------------------------|
 * | `fft<double>`                | N real numbers               | N / 2 + 1 complex numbers, or packed |
 * | `fft<std::complex<double>>`  | N complex numbers            | N complex numbers                    |
 * | `fft<split<double>>`         | N real and N imaginary parts | the same                             |
 * | `fft<unordered<double>>`     | N complex numbers            | N, in an order of the library's own  |
 *
 * An object holds a plan, which transforms do not change, and work memory of its own: so one object serves
 * one thread at a time, and any number of threads by the overloads that take the work memory, which are
 * const. Spans of other sizes are answered with zprStsSizeErr, with nothing written. Results may lie where
 * the input was; other overlap is not supported. Methods, accuracy and which lengths are fast:
 * qkr/sigfft_dft.h. (Of power-of-two lengths these are the transforms of qkr/sigfft_transforms.h,
 * w6_zprsFFTFwd_CToC_64fc() and its kin.) */
#ifndef QKR_CPP_FFT_HPP
#define QKR_CPP_FFT_HPP

#include <qkr/cpp/fft_plan.hpp>

namespace qkr {
inline namespace cpp {
namespace detail {

inline zpr64fc *numbers(std::complex<double> *p) { return as<zpr64fc>(p); }
inline const zpr64fc *numbers(const std::complex<double> *p) { return as<const zpr64fc>(p); }
inline zpr32fc *numbers(std::complex<float> *p) { return as<zpr32fc>(p); }
inline const zpr32fc *numbers(const std::complex<float> *p) { return as<const zpr32fc>(p); }

template <class Kind>
inline constexpr bool is_unordered = false;
template <class T>
inline constexpr bool is_unordered<unordered<T>> = true;

// The transforms themselves, by kind: of interleaved numbers, and of real ones and separate parts.
template <class Kind>
struct transforms;
#define QKR_CPP_TRANSFORMS(Kind, Number, forward_call, inverse_call) \
  template <>                                                        \
  struct transforms<Kind> {                                          \
    using number = Number;                                           \
    static constexpr auto *forward = forward_call;                   \
    static constexpr auto *inverse = inverse_call;                   \
  };
QKR_CPP_TRANSFORMS(std::complex<double>, std::complex<double>, w6_zprsDFTFwd_CToC_64fc,
                   w6_zprsDFTInv_CToC_64fc)
QKR_CPP_TRANSFORMS(std::complex<float>, std::complex<float>, w6_zprsDFTFwd_CToC_32fc, w6_zprsDFTInv_CToC_32fc)
QKR_CPP_TRANSFORMS(unordered<double>, std::complex<double>, w6_zprsDFTOutOrdFwd_CToC_64fc,
                   w6_zprsDFTOutOrdInv_CToC_64fc)
QKR_CPP_TRANSFORMS(unordered<float>, std::complex<float>, w6_zprsDFTOutOrdFwd_CToC_32fc,
                   w6_zprsDFTOutOrdInv_CToC_32fc)
QKR_CPP_TRANSFORMS(split<double>, double, w6_zprsDFTFwd_CToC_64f, w6_zprsDFTInv_CToC_64f)
QKR_CPP_TRANSFORMS(split<float>, float, w6_zprsDFTFwd_CToC_32f, w6_zprsDFTInv_CToC_32f)
#undef QKR_CPP_TRANSFORMS
#define QKR_CPP_TRANSFORMS(T, ...)                                                       \
  template <>                                                                            \
  struct transforms<T> {                                                                 \
    using call = zprStatus(const T *, T *, const plan_calls<T>::plan *, std::uint8_t *); \
    static constexpr call *by_packing[6] = {__VA_ARGS__};                                \
  };
QKR_CPP_TRANSFORMS(double, w6_zprsDFTFwd_RToPerm_64f, w6_zprsDFTFwd_RToPack_64f, w6_zprsDFTFwd_RToCCS_64f,
                   w6_zprsDFTInv_PermToR_64f, w6_zprsDFTInv_PackToR_64f, w6_zprsDFTInv_CCSToR_64f)
QKR_CPP_TRANSFORMS(float, w6_zprsDFTFwd_RToPerm_32f, w6_zprsDFTFwd_RToPack_32f, w6_zprsDFTFwd_RToCCS_32f,
                   w6_zprsDFTInv_PermToR_32f, w6_zprsDFTInv_PackToR_32f, w6_zprsDFTInv_CCSToR_32f)
#undef QKR_CPP_TRANSFORMS

}  // namespace detail

// The forms of an operation beside try_NAME(arguments, work), which is const.
#define QKR_CPP_LISTED(...) __VA_ARGS__
#define QKR_CPP_FORMS(name, parameters, arguments)                                                        \
  status try_##name(QKR_CPP_LISTED parameters) noexcept {                                                 \
    return try_##name(QKR_CPP_LISTED arguments, this->own_work());                                        \
  }                                                                                                       \
  void name(QKR_CPP_LISTED parameters) { check(try_##name(QKR_CPP_LISTED arguments, this->own_work())); } \
  void name(QKR_CPP_LISTED parameters, work_memory work) const {                                          \
    check(try_##name(QKR_CPP_LISTED arguments, work));                                                    \
  }
#define QKR_CPP_CONSTRUCTORS                                    \
  fft() noexcept = default;                                     \
  /** Plan and work memory for signals of `length` elements. */ \
  explicit fft(std::size_t length, divide which = divide::inverse) { check(this->try_reset(length, which)); }

/** A transform of one dimension; what the kinds are, the table above says. */
template <class Kind>
class fft;

/** Complex signals, and those whose spectra come in an order that all objects of one length share: for
 * products point by point. C is the type of the numbers, std::complex<float> or std::complex<double>. */
template <class Kind>
requires complex_number<Kind> || detail::is_unordered<Kind>
class fft<Kind> : public fft_plan<Kind> {
  using C = typename detail::transforms<Kind>::number;
  using calls = detail::transforms<Kind>;

 public:
  QKR_CPP_CONSTRUCTORS
  /** From signal x to spectrum X: w6_zprsDFTFwd_CToC_64fc(), w6_zprsDFTFwd_CToC_32fc(),
   * w6_zprsDFTOutOrdFwd_CToC_64fc(), w6_zprsDFTOutOrdFwd_CToC_32fc(). */
  status try_forward(std::span<const C> x, std::span<C> X, work_memory work) const noexcept {
    return transform(calls::forward, x, X, work);
  }
  QKR_CPP_FORMS(forward, (std::span<const C> x, std::span<C> X), (x, X))
  /** From spectrum X to signal x: w6_zprsDFTInv_CToC_64fc(), w6_zprsDFTInv_CToC_32fc(),
   * w6_zprsDFTOutOrdInv_CToC_64fc(), w6_zprsDFTOutOrdInv_CToC_32fc(). */
  status try_inverse(std::span<const C> X, std::span<C> x, work_memory work) const noexcept {
    return transform(calls::inverse, X, x, work);
  }
  QKR_CPP_FORMS(inverse, (std::span<const C> X, std::span<C> x), (X, x))

 private:
  template <class Call>
  status transform(Call call, std::span<const C> from, std::span<C> to, work_memory work) const noexcept {
    const bool agree = from.size() == this->size() && to.size() == this->size();
    return this->run(agree, work, [&](std::uint8_t *memory) {
      return call(detail::numbers(from.data()), detail::numbers(to.data()), this->handle(), memory);
    });
  }
};

/** Real signals. The spectrum X[0] to X[N / 2] is complex; the rest are conjugates of those. C is
 * std::complex<T>. */
template <real_number T>
class fft<T> : public fft_plan<T> {
  using C = std::complex<T>;
  using calls = detail::transforms<T>;

 public:
  QKR_CPP_CONSTRUCTORS
  /** Numbers of a half spectrum, N / 2 + 1, and of a packed one: N, in ccs two for each of those. */
  std::size_t spectrum_size() const noexcept { return this->size() / 2 + 1; }
  std::size_t spectrum_size(packing packed) const noexcept {
    return packed == packing::ccs ? 2 * spectrum_size() : this->size();
  }

  /** From signal to half spectrum: w6_zprsDFTFwd_RToCCS_64f(), w6_zprsDFTFwd_RToCCS_32f(). */
  status try_forward(std::span<const T> x, std::span<C> X, work_memory work) const noexcept {
    return transform(calls::by_packing[2], x.data(), reinterpret_cast<T *>(X.data()),
                     x.size() == this->size() && X.size() == spectrum_size(), work);
  }
  QKR_CPP_FORMS(forward, (std::span<const T> x, std::span<C> X), (x, X))
  /** From half spectrum to signal: w6_zprsDFTInv_CCSToR_64f(), w6_zprsDFTInv_CCSToR_32f(). */
  status try_inverse(std::span<const C> X, std::span<T> x, work_memory work) const noexcept {
    return transform(calls::by_packing[5], reinterpret_cast<const T *>(X.data()), x.data(),
                     x.size() == this->size() && X.size() == spectrum_size(), work);
  }
  QKR_CPP_FORMS(inverse, (std::span<const C> X, std::span<T> x), (X, x))

  /** From signal to packed spectrum: w6_zprsDFTFwd_RToPerm_64f(), w6_zprsDFTFwd_RToPerm_32f(),
   * w6_zprsDFTFwd_RToPack_64f(), w6_zprsDFTFwd_RToPack_32f(). */
  status try_forward_packed(std::span<const T> x, std::span<T> X, packing packed,
                            work_memory work) const noexcept {
    return transform(calls::by_packing[static_cast<int>(packed)], x.data(), X.data(),
                     x.size() == this->size() && X.size() == spectrum_size(packed), work);
  }
  QKR_CPP_FORMS(forward_packed, (std::span<const T> x, std::span<T> X, packing packed), (x, X, packed))
  /** From packed spectrum to signal: w6_zprsDFTInv_PermToR_64f(), w6_zprsDFTInv_PermToR_32f(),
   * w6_zprsDFTInv_PackToR_64f(), w6_zprsDFTInv_PackToR_32f(). */
  status try_inverse_packed(std::span<const T> X, std::span<T> x, packing packed,
                            work_memory work) const noexcept {
    return transform(calls::by_packing[3 + static_cast<int>(packed)], X.data(), x.data(),
                     x.size() == this->size() && X.size() == spectrum_size(packed), work);
  }
  QKR_CPP_FORMS(inverse_packed, (std::span<const T> X, std::span<T> x, packing packed), (X, x, packed))

 private:
  template <class Call>
  status transform(Call call, const T *from, T *to, bool agree, work_memory work) const noexcept {
    return this->run(agree, work,
                     [&](std::uint8_t *memory) { return call(from, to, this->handle(), memory); });
  }
};

/** Complex signals as arrays of real and of imaginary parts. In and Out are std::span<const T> and
 * std::span<T>. */
template <real_number T>
class fft<split<T>> : public fft_plan<split<T>> {
  using calls = detail::transforms<split<T>>;
  using In = std::span<const T>;
  using Out = std::span<T>;

 public:
  QKR_CPP_CONSTRUCTORS
  /** From signal to spectrum: w6_zprsDFTFwd_CToC_64f(), w6_zprsDFTFwd_CToC_32f(). */
  status try_forward(In re, In im, Out to_re, Out to_im, work_memory work) const noexcept {
    return transform(calls::forward, re, im, to_re, to_im, work);
  }
  QKR_CPP_FORMS(forward, (In re, In im, Out to_re, Out to_im), (re, im, to_re, to_im))
  /** From spectrum to signal: w6_zprsDFTInv_CToC_64f(), w6_zprsDFTInv_CToC_32f(). */
  status try_inverse(In re, In im, Out to_re, Out to_im, work_memory work) const noexcept {
    return transform(calls::inverse, re, im, to_re, to_im, work);
  }
  QKR_CPP_FORMS(inverse, (In re, In im, Out to_re, Out to_im), (re, im, to_re, to_im))

 private:
  template <class Call>
  status transform(Call call, In re, In im, Out to_re, Out to_im, work_memory work) const noexcept {
    const std::size_t n = this->size();
    const bool agree = re.size() == n && im.size() == n && to_re.size() == n && to_im.size() == n;
    return this->run(agree, work, [&](std::uint8_t *memory) {
      return call(re.data(), im.data(), to_re.data(), to_im.data(), this->handle(), memory);
    });
  }
};
#undef QKR_CPP_FORMS
#undef QKR_CPP_CONSTRUCTORS
#undef QKR_CPP_LISTED

}  // namespace cpp
}  // namespace qkr

#endif
