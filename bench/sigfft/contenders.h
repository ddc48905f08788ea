// Transforms of one length by ours and by the peers, behind one kind of object: its call is one forward
// transform.
#pragma once

#include <fftw3.h>
#include <functional>
#include <memory>

#include "tests/sigfft/engines.h"

#ifdef QKR_BENCH_KISSFFT
#include <kissfft/kiss_fftr.h>
#endif

namespace qkr::bench {

using tests::functions, tests::Kind;

struct Form {
  const char *name;
  Kind kind;
  bool in_place;
  int set = 0;  // of ours
};

using Transform = std::function<void()>;

template <class T>
struct Arrays {
  T *src, *dst;  // the same for transforms in place
};

// Room for `largest` numbers each, of which `used` are cleared, at multiples of 64 bytes; but not at one
// place of their pages, where a load that follows a store to the other array waits for it.
template <class T, size_t largest>
Arrays<T> two_arrays(size_t used) {
  constexpr size_t line = 64 / sizeof(T), apart = 33 * line;
  static std::vector<T> memory[2] = {std::vector<T>(largest + line), std::vector<T>(largest + line + apart)};
  T *start[2];
  for (int i = 0; i < 2; ++i) {
    start[i] = (T *)(((size_t)memory[i].data() + 63) & ~size_t{63}) + i * apart;
    std::fill_n(start[i], used, T());
  }
  return {start[0], start[1]};
}

// Unnormalised, with a work buffer of its own; real ones to CCS format, which is FFTW's.
template <class T>
Transform ours(const Form &form, int order, Arrays<T> a) {
  const auto &f = functions<T>[form.set];
  const size_t n = size_t{1} << order;
  const auto plan = std::make_shared<tests::Plan<T>>(f, form.kind, n);
  if (!(const void *)*plan) return nullptr;
  const std::shared_ptr<uint8_t> work(w6_zprsMalloc_8u(plan->work_bytes() + 64), w6_zprsFree);
  const auto with = [=](auto call) -> Transform { return [=] { call((const void *)*plan, work.get()); }; };
  switch (form.kind) {
    case tests::interleaved:
      if (form.in_place) return with([=, run = f.complex_in_place[1]](auto p, auto w) { run(a.dst, p, w); });
      return with([=, run = f.complex[1]](auto p, auto w) { run(a.src, a.dst, p, w); });
    case tests::split:
      return with([=, run = f.split[1]](auto p, auto w) { run(a.src, a.src + n, a.dst, a.dst + n, p, w); });
    default:
      if (form.in_place)
        return with([=, run = f.real_in_place[1][tests::ccs]](auto p, auto w) { run(a.dst, p, w); });
      return with([=, run = f.real[1][tests::ccs]](auto p, auto w) { run(a.src, a.dst, p, w); });
  }
}

#define QKR_FFTW(T, prefix)                                                                              \
  inline Transform fftw(const Form &form, int n, Arrays<T> a, unsigned effort) {                         \
    const auto src = (prefix##_complex *)a.src, dst = (prefix##_complex *)a.dst;                         \
    prefix##_plan plan;                                                                                  \
    if (form.kind == tests::interleaved) {                                                               \
      plan = prefix##_plan_dft_1d(n, src, dst, FFTW_FORWARD, effort);                                    \
    } else if (form.kind == tests::split) {                                                              \
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

template <class T>
void forget_plans() {
  if constexpr (sizeof(T) == 8) fftw_forget_wisdom();
  else fftwf_forget_wisdom();
}

// Debian's KissFFT: single precision; in place it would allocate in each call.
inline Transform kissfft(const Form &, int, Arrays<double>) { return nullptr; }
inline Transform kissfft([[maybe_unused]] const Form &form, [[maybe_unused]] int order,
                         [[maybe_unused]] Arrays<float> a) {
#ifdef QKR_BENCH_KISSFFT
  if (form.in_place || form.kind == tests::split) return nullptr;
  const auto make = [&](auto plan, auto run) -> Transform {
    const std::shared_ptr<void> kept(plan, free);
    return [=] { run((decltype(plan))kept.get()); };
  };
  if (form.kind == tests::interleaved)
    return make(kiss_fft_alloc(1 << order, 0, nullptr, nullptr),
                [=](kiss_fft_cfg plan) { kiss_fft(plan, (kiss_fft_cpx *)a.src, (kiss_fft_cpx *)a.dst); });
  return make(kiss_fftr_alloc(1 << order, 0, nullptr, nullptr),
              [=](kiss_fftr_cfg plan) { kiss_fftr(plan, a.src, (kiss_fft_cpx *)a.dst); });
#else
  return nullptr;
#endif
}

}  // namespace qkr::bench
