/** @file
 * C++: plans of Fourier transforms and their work memory: what the kinds of qkr::fft share. Included by
 * qkr/cpp/fft.hpp. */
#ifndef QKR_CPP_FFT_PLAN_HPP
#define QKR_CPP_FFT_PLAN_HPP

#include <qkr/cpp/base.hpp>

namespace qkr {
inline namespace cpp {

/** Which results are divided: QKR_DIVIDE_FORWARD and its companions. */
enum class divide : std::int32_t {
  forward = QKR_DIVIDE_FORWARD,
  inverse = QKR_DIVIDE_INVERSE,
  both = QKR_DIVIDE_BOTH,
  none = QKR_DIVIDE_NONE
};

/** Layouts of a real signal's spectrum in real numbers, drawn in qkr/sigfft_dft.h; ccs is the half one. */
enum class packing { perm, pack, ccs };

/** A kind of fft: complex numbers in two arrays, of real and of imaginary parts. */
template <real_number T>
struct split;
/** A kind of fft: spectra out of order. */
template <real_number T>
struct unordered;

namespace detail {

// What the C interface has for a kind of transform.
template <class Kind>
struct plan_calls;
#define QKR_CPP_PLAN(Kind, Spec, init, free, size) \
  template <>                                      \
  struct plan_calls<Kind> {                        \
    using plan = Spec;                             \
    static constexpr auto *make = init;            \
    static constexpr auto *release = free;         \
    static constexpr auto *work_size = size;       \
  };
QKR_CPP_PLAN(double, zprsDFTSpec_R_64f, w6_zprsDFTInitAlloc_R_64f, w6_zprsDFTFree_R_64f,
             w6_zprsDFTGetBufSize_R_64f)
QKR_CPP_PLAN(float, zprsDFTSpec_R_32f, w6_zprsDFTInitAlloc_R_32f, w6_zprsDFTFree_R_32f,
             w6_zprsDFTGetBufSize_R_32f)
QKR_CPP_PLAN(std::complex<double>, zprsDFTSpec_C_64fc, w6_zprsDFTInitAlloc_C_64fc, w6_zprsDFTFree_C_64fc,
             w6_zprsDFTGetBufSize_C_64fc)
QKR_CPP_PLAN(std::complex<float>, zprsDFTSpec_C_32fc, w6_zprsDFTInitAlloc_C_32fc, w6_zprsDFTFree_C_32fc,
             w6_zprsDFTGetBufSize_C_32fc)
QKR_CPP_PLAN(split<double>, zprsDFTSpec_C_64f, w6_zprsDFTInitAlloc_C_64f, w6_zprsDFTFree_C_64f,
             w6_zprsDFTGetBufSize_C_64f)
QKR_CPP_PLAN(split<float>, zprsDFTSpec_C_32f, w6_zprsDFTInitAlloc_C_32f, w6_zprsDFTFree_C_32f,
             w6_zprsDFTGetBufSize_C_32f)
QKR_CPP_PLAN(unordered<double>, zprsDFTOutOrdSpec_C_64fc, w6_zprsDFTOutOrdInitAlloc_C_64fc,
             w6_zprsDFTOutOrdFree_C_64fc, w6_zprsDFTOutOrdGetBufSize_C_64fc)
QKR_CPP_PLAN(unordered<float>, zprsDFTOutOrdSpec_C_32fc, w6_zprsDFTOutOrdInitAlloc_C_32fc,
             w6_zprsDFTOutOrdFree_C_32fc, w6_zprsDFTOutOrdGetBufSize_C_32fc)
#undef QKR_CPP_PLAN

}  // namespace detail

/** Work memory of a transform: fft::work_size() bytes. */
using work_memory = std::span<std::uint8_t>;

/** What all kinds of fft share: a plan and work memory; move only. An empty one answers zprStsNullPtrErr. */
template <class Kind>
class fft_plan {
 public:
  /** The C interface's plan and functions of this kind. */
  using calls = detail::plan_calls<Kind>;

  fft_plan() noexcept = default;
  fft_plan(fft_plan &&other) noexcept { swap(other); }
  fft_plan &operator=(fft_plan &&other) noexcept {
    fft_plan taken(std::move(other));
    swap(taken);
    return *this;
  }
  ~fft_plan() {
    if (plan_) calls::release(plan_);
    w6_zprsFree(work_);
  }

  /** Makes the plan for another length: w6_zprsDFTInitAlloc_R_64f() and its kin. Unless it fails, it
   * replaces the one before. */
  status try_reset(std::size_t length, divide which = divide::inverse) noexcept {
    if (!detail::fits_int32(length)) return answer(zprStsSizeErr);
    fft_plan made;
    std::int32_t bytes = 0;
    zprStatus code =
        calls::make(&made.plan_, static_cast<std::int32_t>(length), static_cast<std::int32_t>(which), 0);
    if (code != zprStsNoErr) return answer(code);
    code = calls::work_size(made.plan_, &bytes);
    if (code != zprStsNoErr) return answer(code);
    if (bytes > 0 && !(made.work_ = w6_zprsMalloc_8u(bytes))) return answer(zprStsMemAllocErr);
    made.length_ = length;
    made.work_size_ = static_cast<std::size_t>(bytes);
    swap(made);
    return answer(zprStsNoErr);
  }

  /** The length of the signal. */
  std::size_t size() const noexcept { return length_; }
  /** Bytes of work memory: w6_zprsDFTGetBufSize_R_64f() and its kin. */
  std::size_t work_size() const noexcept { return work_size_; }
  /** The plan, for the C interface's functions; it stays this object's. */
  const typename calls::plan *handle() const noexcept { return plan_; }

 protected:
  static constexpr status answer(zprStatus code) noexcept { return {room::sigfft, code}; }
  work_memory own_work() const noexcept { return {work_, work_size_}; }
  // call(work memory) if all that it takes has its size.
  template <class Call>
  status run(bool sizes_agree, work_memory work, Call call) const noexcept {
    if (!plan_) return answer(zprStsNullPtrErr);
    if (!sizes_agree || work.size() < work_size_) return answer(zprStsSizeErr);
    return answer(call(work_size_ ? work.data() : nullptr));
  }

 private:
  void swap(fft_plan &other) noexcept {
    std::swap(plan_, other.plan_);
    std::swap(work_, other.work_);
    std::swap(length_, other.length_);
    std::swap(work_size_, other.work_size_);
  }

  typename calls::plan *plan_ = nullptr;
  std::uint8_t *work_ = nullptr;
  std::size_t length_ = 0, work_size_ = 0;
};

}  // namespace cpp
}  // namespace qkr

#endif
