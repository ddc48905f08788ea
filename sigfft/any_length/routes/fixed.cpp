// Transforms of 1 to 4 points: those of 3, beside the fixed code of powers of two.
#include "sigfft/routes/fixed.h"

#include "sigfft/any_length/passes/points.h"
#include "sigfft/any_length/routes.h"

namespace qkr::sigfft {
namespace {

using namespace qkr::sse2;

// `scale` multiplies the sums of the first layer.
template <bool forward, class View, class Target, class Scale>
void three_points(View x, Target y, Scale scale) {
  using T = typename Target::Element;
  const auto x0 = x.at(0), x1 = x.at(1), x2 = x.at(2);
  const auto first = scale(x0), sum = scale(x1 + x2), difference = scale(x1 - x2) * sin_1_3<T>;
  y.set(0, first + sum);
  put_pair<forward>(3, 1, first + sum * cos_1_3<T>, difference, [&](int k, auto value) { y.set(k, value); });
}

template <class T, class Scale>
void three_reals(const T *x, T *perm, Scale scale) {
  const T first = scale(x[0]), sum = scale(x[1] + x[2]), difference = scale(x[1] - x[2]);
  perm[0] = first + sum, perm[1] = first + sum * cos_1_3<T>, perm[2] = difference * sin_1_3<T>;
}
template <class T, class Scale>
void three_reals_back(const T *perm, T *x, Scale scale) {
  const T first = scale(perm[0]), re = scale(perm[1] + perm[1]), im = scale(perm[2] + perm[2]) * sin_1_3<T>;
  x[0] = first + re;
  const T u = first + re * cos_1_3<T>;
  x[1] = u + im, x[2] = u - im;
}

template <bool forward, class T, class Run>
void scaled_or_not(const AnyLengthPlan<T> *plan, Run run) {
  if (is_scaled(plan, forward)) run([=](auto x) { return x * plan->norm_factor; });
  else run([](auto x) { return x; });
}

template <class T>
int fixed_order(const AnyLengthPlan<T> *plan) {
  return plan->length == 4 ? 2 : plan->length - 1;
}

}  // namespace

template <bool forward, class T>
void fixed_transform(const AnyLengthPlan<T> *plan, const T *src, T *dst) {
  if (plan->length == 3)
    return scaled_or_not<forward>(plan, [=](auto scale) {
      three_points<forward>(Interleaved<const T>{src}, Interleaved<T>{dst}, scale);
    });
  fixed_complex<forward>(fixed_order(plan), is_scaled(plan, forward), src, dst, plan->norm_factor);
}
template <bool forward, class T>
void fixed_transform(const AnyLengthPlan<T> *plan, const T *src_re, const T *src_im, T *dst_re, T *dst_im) {
  if (plan->length == 3)
    return scaled_or_not<forward>(plan, [=](auto scale) {
      three_points<forward>(Split<const T>{src_re, src_im}, Split<T>{dst_re, dst_im}, scale);
    });
  const int order = fixed_order(plan);
  const bool scaled = is_scaled(plan, forward);
  if (forward) fixed_split(order, scaled, src_re, src_im, dst_re, dst_im, plan->norm_factor);
  else fixed_split(order, scaled, src_im, src_re, dst_im, dst_re, plan->norm_factor);
}
template <bool forward, class T>
void fixed_real_transform(const AnyLengthPlan<T> *plan, const T *src, T *dst) {
  if (plan->length == 3)
    return scaled_or_not<forward>(plan, [=](auto scale) {
      forward ? three_reals(src, dst, scale) : three_reals_back(src, dst, scale);
    });
  fixed_real<forward>(fixed_order(plan), is_scaled(plan, forward), src, dst, plan->norm_factor);
}

#define QKR_INSTANTIATE(forward, T)                                                                 \
  template void fixed_transform<forward>(const AnyLengthPlan<T> *, const T *, T *);                 \
  template void fixed_transform<forward>(const AnyLengthPlan<T> *, const T *, const T *, T *, T *); \
  template void fixed_real_transform<forward>(const AnyLengthPlan<T> *, const T *, T *);
QKR_INSTANTIATE(true, double)
QKR_INSTANTIATE(false, double)
QKR_INSTANTIATE(true, float)
QKR_INSTANTIATE(false, float)

}  // namespace qkr::sigfft
