// Transforms of one length by ours and by the peers, behind one kind of object: its call is one forward
// transform.
#pragma once

#include <fftw3.h>
#include <functional>
#include <memory>
#include <qkr/sigfft.h>

#ifdef QKR_BENCH_KISSFFT
#include <kissfft/kiss_fftr.h>
#endif

namespace qkr::bench {

enum class Data { complex_numbers, parts, real_numbers };
struct Form {
  const char *name;
  Data data;
  bool in_place;
};

using Transform = std::function<void()>;

template <class T>
struct Arrays {
  T *src, *dst;  // the same for transforms in place
};

template <class T>
std::shared_ptr<uint8_t> shared_work(int32_t bytes) {
  return {w6_zprsMalloc_8u(bytes + 64), w6_zprsFree};
}

// Unnormalised, with a work buffer of its own; real ones to CCS format, which is FFTW's.
#define QKR_OURS(T, p)                                                                                       \
  inline Transform ours(const Form &form, int order, Arrays<T> a) {                                          \
    const size_t n = size_t{1} << order;                                                                     \
    const auto make = [&](auto init, auto buffer_size, auto release, auto *plan, auto run) -> Transform {    \
      if (init(&plan, order, 8, 0) != zprStsNoErr) return nullptr;                                           \
      int32_t size = 0;                                                                                      \
      buffer_size(plan, &size);                                                                              \
      const std::shared_ptr<std::remove_pointer_t<decltype(plan)>> kept(plan, release);                      \
      const auto work = shared_work<T>(size);                                                                \
      return [=] { run(kept.get(), work.get()); };                                                           \
    };                                                                                                       \
    switch (form.data) {                                                                                     \
      case Data::complex_numbers:                                                                            \
        return make(w6_zprsFFTInitAlloc_C_##p##fc, w6_zprsFFTGetBufSize_C_##p##fc, w6_zprsFFTFree_C_##p##fc, \
                    (zprsFFTSpec_C_##p##fc *)nullptr, [=](auto plan, uint8_t *work) {                        \
                      w6_zprsFFTFwd_CToC_##p##fc((zpr##p##fc *)a.src, (zpr##p##fc *)a.dst, plan, work);      \
                    });                                                                                      \
      case Data::parts:                                                                                      \
        return make(w6_zprsFFTInitAlloc_C_##p##f, w6_zprsFFTGetBufSize_C_##p##f, w6_zprsFFTFree_C_##p##f,    \
                    (zprsFFTSpec_C_##p##f *)nullptr, [=](auto plan, uint8_t *work) {                         \
                      w6_zprsFFTFwd_CToC_##p##f(a.src, a.src + n, a.dst, a.dst + n, plan, work);             \
                    });                                                                                      \
      default:                                                                                               \
        return make(w6_zprsFFTInitAlloc_R_##p##f, w6_zprsFFTGetBufSize_R_##p##f, w6_zprsFFTFree_R_##p##f,    \
                    (zprsFFTSpec_R_##p##f *)nullptr, [=](auto plan, uint8_t *work) {                         \
                      w6_zprsFFTFwd_RToCCS_##p##f(a.src, a.dst, plan, work);                                 \
                    });                                                                                      \
    }                                                                                                        \
  }
QKR_OURS(double, 64)
QKR_OURS(float, 32)
#undef QKR_OURS

#define QKR_FFTW(T, prefix)                                                                              \
  inline Transform fftw(const Form &form, int order, Arrays<T> a, unsigned effort) {                     \
    const int n = 1 << order;                                                                            \
    const auto src = (prefix##_complex *)a.src, dst = (prefix##_complex *)a.dst;                         \
    prefix##_plan plan;                                                                                  \
    if (form.data == Data::complex_numbers) {                                                            \
      plan = prefix##_plan_dft_1d(n, src, dst, FFTW_FORWARD, effort);                                    \
    } else if (form.data == Data::parts) {                                                               \
      const fftw_iodim dimension = {n, 1, 1};                                                            \
      plan = prefix##_plan_guru_split_dft(1, &dimension, 0, nullptr, a.src, a.src + n, a.dst, a.dst + n, \
                                          effort);                                                       \
    } else {                                                                                             \
      plan = prefix##_plan_dft_r2c_1d(n, a.src, dst, effort);                                            \
    }                                                                                                    \
    const std::shared_ptr<std::remove_pointer_t<prefix##_plan>> kept(plan, prefix##_destroy_plan);       \
    return [kept] { prefix##_execute(kept.get()); };                                                     \
  }
QKR_FFTW(double, fftw)
QKR_FFTW(float, fftwf)
#undef QKR_FFTW

// Debian's KissFFT: single precision; in place it would allocate in each call.
inline Transform kissfft(const Form &, int, Arrays<double>) { return nullptr; }
inline Transform kissfft([[maybe_unused]] const Form &form, [[maybe_unused]] int order,
                         [[maybe_unused]] Arrays<float> a) {
#ifdef QKR_BENCH_KISSFFT
  if (form.in_place || form.data == Data::parts) return nullptr;
  const auto make = [&](auto plan, auto run) -> Transform {
    const std::shared_ptr<void> kept(plan, free);
    return [=] { run((decltype(plan))kept.get()); };
  };
  if (form.data == Data::complex_numbers)
    return make(kiss_fft_alloc(1 << order, 0, nullptr, nullptr),
                [=](kiss_fft_cfg plan) { kiss_fft(plan, (kiss_fft_cpx *)a.src, (kiss_fft_cpx *)a.dst); });
  return make(kiss_fftr_alloc(1 << order, 0, nullptr, nullptr),
              [=](kiss_fftr_cfg plan) { kiss_fftr(plan, a.src, (kiss_fft_cpx *)a.dst); });
#else
  return nullptr;
#endif
}

}  // namespace qkr::bench
