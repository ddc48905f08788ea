// Linear convolution of two sequences: directly, by one transform, or block by block through transforms
// (overlap-save: T. G. Stockham, AFIPS Spring Joint Computer Conference (1966) 229; H. D. Helms, IEEE
// Transactions on Audio and Electroacoustics 15 (1967) 85).
#include <string.h>

#include "sigfft/arrays/memory.h"
#include "sigfft/convolution/kernels.h"

namespace qkr::sigfft {
namespace {

constexpr size_t smaller(size_t a, size_t b) { return a < b ? a : b; }

// The functions of a precision. A plan's inverse transform divides by the length.
template <class T>
struct Engine;
template <>
struct Engine<double> {
  using Plan = zprsFFTSpec_R_64f;
  static constexpr auto make_plan = zprsFFTInitAlloc_R_64f;
  static constexpr auto work_size = zprsFFTGetBufSize_R_64f;
  static constexpr auto release = zprsFFTFree_R_64f;
  static constexpr auto forward = zprsFFTFwd_RToPerm_64f_I;
  static constexpr auto inverse = zprsFFTInv_PermToR_64f_I;
  static constexpr auto multiply = zprsMulPerm_64f_I;
  static constexpr auto direct_sum = zprs_directSum_64f;
};
template <>
struct Engine<float> {
  using Plan = zprsFFTSpec_R_32f;
  static constexpr auto make_plan = zprsFFTInitAlloc_R_32f;
  static constexpr auto work_size = zprsFFTGetBufSize_R_32f;
  static constexpr auto release = zprsFFTFree_R_32f;
  static constexpr auto forward = zprsFFTFwd_RToPerm_32f_I;
  static constexpr auto inverse = zprsFFTInv_PermToR_32f_I;
  static constexpr auto multiply = zprsMulPerm_32f_I;
  static constexpr auto direct_sum = zprs_directSum_32f;
};

// What a type of samples is computed in, and the way there and back.
template <class Sample>
struct Samples {
  using T = Sample;
  static void take(const Sample *src, T *dst, size_t count) { memcpy(dst, src, count * sizeof(T)); }
  static void give(const T *src, Sample *dst, size_t count, int32_t) { memcpy(dst, src, count * sizeof(T)); }
};
template <>
struct Samples<int16_t> {
  using T = float;
  static void take(const int16_t *src, T *dst, size_t count) { zprsConvert_16s32f(src, dst, (int32_t)count); }
  static void give(const T *src, int16_t *dst, size_t count, int32_t scale) {
    constexpr uint32_t nearest = 1;
    zprsConvert_32f16s_Sfs(src, dst, (int32_t)count, nearest, scale);
  }
};

template <class Sample>
struct Sequence {
  const Sample *samples;
  size_t count;
};

// x is the longer sequence, h the shorter. A result that all parts of x have contributed to is final.
template <class Sample>
zprStatus direct(Sequence<Sample> x, Sequence<Sample> h, Sample *dst, int32_t scale) {
  using T = typename Samples<Sample>::T;
  constexpr bool converted = sizeof(Sample) != sizeof(T);
  constexpr size_t longest_part = 4096;  // which stays in the cache while all of h passes over it
  const size_t overlap = h.count - 1;
  const auto for_each_part = [&](auto part) {
    for (size_t start = 0; start < x.count; start += longest_part)
      part(start, smaller(x.count - start, longest_part));
  };
  if constexpr (!converted) {
    for_each_part([&](size_t start, size_t count) {
      Engine<T>::direct_sum(x.samples + start, count, h.samples, h.count, start > 0, dst + start);
    });
  } else {
    const auto sums = (T *)allocate_block((x.count + overlap) * sizeof(T));
    if (!sums) return zprStsMemAllocErr;
    T taps[longest_direct_filter], samples[longest_part];
    Samples<Sample>::take(h.samples, taps, h.count);
    for_each_part([&](size_t start, size_t count) {
      Samples<Sample>::take(x.samples + start, samples, count);
      Engine<T>::direct_sum(samples, count, taps, h.count, start > 0, sums + start);
      Samples<Sample>::give(sums + start, dst + start, count, scale);
    });
    if (overlap) Samples<Sample>::give(sums + x.count, dst + x.count, overlap, scale);
    release_block(sums);
  }
  return zprStsNoErr;
}

// A plan for 2^order numbers, two arrays of as many, and a work buffer: for one call, which shares nothing.
template <class T>
class Workspace {
  typename Engine<T>::Plan *plan_ = nullptr;
  void *block_ = nullptr;
  uint8_t *work_ = nullptr;
  size_t length_ = 0;

 public:
  T *a = nullptr, *b = nullptr;
  zprStatus status;

  explicit Workspace(int order) {
    constexpr int32_t divide_inverse = 2;
    constexpr size_t alignment = 64;  // what the widest registers like best
    status = Engine<T>::make_plan(&plan_, order, divide_inverse, 0);
    if (status < 0) return;
    int32_t work_bytes;
    status = Engine<T>::work_size(plan_, &work_bytes);
    if (status < 0) return;
    length_ = size_t{1} << order;
    block_ = allocate_block(2 * length_ * sizeof(T) + (size_t)work_bytes + alignment);
    if (!block_) {
      status = zprStsMemAllocErr;
      return;
    }
    a = (T *)(((size_t)block_ + alignment - 1) & ~(alignment - 1));
    b = a + length_;
    if (work_bytes > 0) work_ = (uint8_t *)(b + length_);
  }
  Workspace(const Workspace &) = delete;
  ~Workspace() {
    release_block(block_);
    if (plan_) Engine<T>::release(plan_);
  }

  // `count` samples, and zeros up to the length, become a spectrum.
  template <class Sample>
  void transform(const Sample *samples, size_t count, T *area) {
    Samples<Sample>::take(samples, area, count);
    memset(area + count, 0, (length_ - count) * sizeof(T));
    status = Engine<T>::forward(area, plan_, work_);
  }
  // b, a spectrum, becomes the cyclic convolution with a.
  void convolve() {
    if (status >= 0) status = Engine<T>::multiply(a, b, (int32_t)length_);
    if (status >= 0) status = Engine<T>::inverse(b, plan_, work_);
  }
};

// The least order, 2 or more, of a power of two that is not below `length`.
int order_for(size_t length) {
  int order = 2;
  while (size_t{1} << order < length) ++order;
  return order;
}

template <class Sample>
zprStatus by_one_transform(Sequence<Sample> x, Sequence<Sample> h, Sample *dst, int32_t scale) {
  const size_t results = x.count + h.count - 1;
  Workspace<typename Samples<Sample>::T> space(order_for(results));
  if (space.status >= 0) space.transform(x.samples, x.count, space.a);
  if (space.status >= 0) space.transform(h.samples, h.count, space.b);
  space.convolve();
  if (space.status >= 0) Samples<Sample>::give(space.b, dst, results, scale);
  return space.status;
}

// Of each cyclic convolution the first results, as many as h has samples but one, are wrong by what has come
// round: blocks overlap by as much. Before the first block there is nothing.
template <class Sample>
zprStatus overlap_save(Sequence<Sample> x, Sequence<Sample> h, Sample *dst, int32_t scale) {
  const int order = order_for(2 * h.count) + 1;
  const size_t overlap = h.count - 1, results = x.count + overlap;
  Workspace<typename Samples<Sample>::T> space(order);
  if (space.status >= 0) space.transform(h.samples, h.count, space.a);
  const size_t step = (size_t{1} << order) - overlap;
  for (size_t done = 0; done < results && space.status >= 0; done += step) {
    const size_t dropped = done ? overlap : 0, left = x.count + dropped - done;
    space.transform(x.samples + done - dropped, smaller(smaller(step + dropped, left), x.count), space.b);
    space.convolve();
    if (space.status >= 0)
      Samples<Sample>::give(space.b + dropped, dst + done, smaller(step, results - done), scale);
  }
  return space.status;
}

template <class Sample>
zprStatus convolve(const Sample *src1, int32_t len1, const Sample *src2, int32_t len2, Sample *dst,
                   int32_t scale) {
  if (!src1 || !src2 || !dst) return zprStsNullPtrErr;
  if (len1 < 1 || len2 < 1) return zprStsSizeErr;
  Sequence<Sample> x = {src1, (size_t)len1}, h = {src2, (size_t)len2};
  if (x.count < h.count) {
    const auto longer = h;
    h = x, x = longer;
  }
  const size_t results = x.count + h.count - 1;
  if (results > INT32_MAX) return zprStsSizeErr;
  if (results < shortest_transformed_result || h.count < shortest_transformed_filter)
    return direct(x, h, dst, scale);
  return (x.count < 3 * h.count ? by_one_transform<Sample> : overlap_save<Sample>)(x, h, dst, scale);
}

}  // namespace
}  // namespace qkr::sigfft

zprStatus zprsConv_32f(const float *src1, int32_t len1, const float *src2, int32_t len2, float *dst) {
  return qkr::sigfft::convolve(src1, len1, src2, len2, dst, 0);
}
zprStatus zprsConv_64f(const double *src1, int32_t len1, const double *src2, int32_t len2, double *dst) {
  return qkr::sigfft::convolve(src1, len1, src2, len2, dst, 0);
}
zprStatus zprsConv_16s_Sfs(const int16_t *src1, int32_t len1, const int16_t *src2, int32_t len2, int16_t *dst,
                           int32_t scale) {
  return qkr::sigfft::convolve(src1, len1, src2, len2, dst, scale);
}
