// Plans of any length: the route that a length takes, its tables, release.
#include <math.h>
#include <string.h>

#include "sigfft/any_length/plan/engine.h"
#include "sigfft/any_length/plan/factors.h"
#include "sigfft/any_length/plan/tables.h"

namespace qkr::sigfft {
namespace {

constexpr int32_t largest_fixed_length = 4;
// Lengths without factors take the direct sum up to here, odd real ones a little longer.
constexpr int32_t largest_direct = 150, largest_direct_real = 180;

constexpr bool valid_flag(int32_t flag) { return flag == 1 || flag == 2 || flag == 4 || flag == 8; }
constexpr bool is_power_of_two(int32_t n) { return (n & (n - 1)) == 0; }
constexpr bool is_out_of_order(int32_t id) {
  return id == id_out_of_order_C_32fc || id == id_out_of_order_C_64fc;
}

template <class T>
zprStatus set_work_bytes(AnyLengthPlan<T> *plan, int64_t bytes) {
  if (bytes > INT32_MAX) return zprStsSizeErr;
  plan->work_bytes = (int32_t)bytes;
  return zprStsNoErr;
}
template <class T>
constexpr int64_t complex_bytes(int64_t count) {
  return count * (int64_t)(2 * sizeof(T));
}

// The base circle of a plan while it is built. That of a real signal of even length is also the double circle
// of its complex transform.
template <class T>
struct Circle {
  const T *points;
  size_t length;
};

template <class T>
bool make_stage_circles(AnyLengthPlan<T> *plan, Circle<T> circle) {
  for (int i = 0; i <= plan->stages; ++i) {
    Stage<T> &stage = plan->stage[i];
    if (stage.factor <= 5) continue;
    const bool shared = i && plan->stage[i - 1].factor == stage.factor;
    stage.circle =
        shared ? plan->stage[i - 1].circle : make_small_circle(stage.factor, circle.points, circle.length);
    if (!stage.circle) return false;
  }
  return true;
}

template <class T>
bool make_stage_twiddles(AnyLengthPlan<T> *plan, Circle<T> circle) {
  const bool real_stages = is_real(plan->id) && plan->length % 2;
  for (int i = 0; i < plan->stages; ++i) {
    Stage<T> &stage = plan->stage[i];
    stage.twiddles = real_stages ? make_twiddles(stage, 1, (stage.rest - 1) / 2, circle.points, circle.length)
                                 : make_twiddles(stage, 0, stage.rest, circle.points, circle.length);
    if (!stage.twiddles) return false;
  }
  return true;
}

// Blocks of a stage stand for columns in the order that the stages before it leave.
template <class T>
bool make_twiddles_by_block(AnyLengthPlan<T> *plan, Circle<T> circle) {
  const auto order = (uint32_t *)allocate_block(2 * (size_t)plan->complex_length * sizeof(uint32_t));
  if (!order) return false;
  uint32_t *columns = order, *expanded = order + plan->complex_length;
  const int32_t first = plan->last_factor();
  for (int32_t i = 0; i < first; ++i) columns[i] = (uint32_t)i;
  bool made = true;
  for (int i = plan->stages - 1; i >= 0 && made; --i) {
    Stage<T> &stage = plan->stage[i];
    stage.twiddles = make_block_twiddles(stage, columns, circle.points, circle.length);
    made = stage.twiddles;
    for (int32_t block = 0; block < stage.rest; ++block)
      for (int32_t q = 0; q < stage.factor; ++q)
        expanded[block * stage.factor + q] = columns[block] + (uint32_t)(q * stage.rest);
    uint32_t *const swapped = columns;
    columns = expanded, expanded = swapped;
  }
  release_block(order);
  return made;
}

template <class T>
void set_stages(AnyLengthPlan<T> *plan, const Factors &factors) {
  plan->stages = factors.stages;
  int32_t stride = 1, rest = plan->complex_length, count = 1;
  for (int i = 0; i <= factors.stages; ++i) {
    const int32_t factor = factors.of[i];
    rest /= factor;
    plan->stage[i] = {factor, rest, stride, count, nullptr, nullptr};
    stride *= factor;
    count = (int64_t)factor * rest >= long_stage ? 1 : count * factor;
  }
}

template <class T>
zprStatus plan_factors(AnyLengthPlan<T> *plan, Factors factors, Circle<T> circle) {
  plan->route = Route::factors;
  if (!plan->out_of_order) move_even_factor(&factors);
  set_stages(plan, factors);
  bool made = make_stage_circles(plan, circle);
  if (plan->out_of_order) {
    made = made && make_twiddles_by_block(plan, circle);
  } else {
    made = made && make_stage_twiddles(plan, circle);
    if (made) plan->places = make_places(*plan);
    made = made && plan->places;
  }
  return made ? zprStsNoErr : zprStsMemAllocErr;
}

template <class T>
zprStatus factors_work_bytes(AnyLengthPlan<T> *plan, const Factors &given) {
  Factors factors = given;
  if (!plan->out_of_order) move_even_factor(&factors);
  const int32_t butterfly = butterfly_numbers(plan->complex_length, factors);
  const zprStatus status =
      set_work_bytes(plan, complex_bytes<T>((int64_t)plan->complex_length + butterfly) + 16);
  // Out of order nothing is staged.
  if (plan->out_of_order) plan->work_bytes = butterfly ? (int32_t)complex_bytes<T>(butterfly) + 16 : 0;
  return status;
}

// The spectrum of the chirp's conjugate, mirrored to the end of the array, over the length of that array.
template <class T>
zprStatus make_chirp_spectrum(AnyLengthPlan<T> *plan) {
  const auto n = (size_t)plan->complex_length, m = (size_t)plan->chirp_length;
  T *const spectrum = plan->chirp_spectrum = (T *)allocate_block(m * 2 * sizeof(T));
  if (!spectrum) return zprStsMemAllocErr;
  memset(spectrum, 0, m * 2 * sizeof(T));
  const T scale = 1 / (T)m;  // a power of two: no rounding
  const auto put = [=](size_t place, const T *point) {
    spectrum[2 * place] = point[0] * scale, spectrum[2 * place + 1] = -point[1] * scale;
  };
  put(0, plan->chirp);
  for (size_t k = 1; k < n; ++k) put(k, plan->chirp + 2 * k), put(m - k, plan->chirp + 2 * k);
  return Engine<T>::template transform<true>(plan->engine, spectrum, spectrum, nullptr);
}

template <class T>
zprStatus plan_chirp(AnyLengthPlan<T> *plan, Circle<T> circle) {
  const auto n = (size_t)plan->complex_length;
  T *const own = circle.length == n ? make_circle<T>(2 * n) : nullptr;
  const T *const double_circle = circle.length == n ? own : circle.points;
  plan->chirp = double_circle ? make_chirp(n, double_circle) : nullptr;
  release_block(own);
  if (!plan->chirp) return zprStsMemAllocErr;
  const zprStatus status =
      Engine<T>::build(0, &plan->engine, __builtin_ctz((unsigned)plan->chirp_length), 8, 0);
  return status != zprStsNoErr ? status : make_chirp_spectrum(plan);
}

template <class T>
zprStatus chirp_work_bytes(AnyLengthPlan<T> *plan) {
  plan->route = Route::chirp;
  int order = 0;
  while ((int64_t{1} << order) < 2 * (int64_t)plan->complex_length - 1) ++order;
  if (order > largest_order) return zprStsSizeErr;
  plan->chirp_length = 1 << order;
  int32_t of_engine;
  const zprStatus status = Engine<T>::work_bytes(order, &of_engine);
  if (status != zprStsNoErr) return status;
  return set_work_bytes(plan, of_engine + complex_bytes<T>(plan->chirp_length) + 16);
}

template <class T>
zprStatus plan_direct(AnyLengthPlan<T> *plan, Circle<T> circle) {
  plan->circle = make_small_circle(plan->complex_length, circle.points, circle.length);
  return plan->circle ? zprStsNoErr : zprStsMemAllocErr;
}

template <class T>
zprStatus plan_power_of_two(AnyLengthPlan<T> *plan, int32_t flag) {
  plan->route = Route::power_of_two;
  const zprStatus status =
      Engine<T>::build(plan->id, &plan->engine, __builtin_ctz((unsigned)plan->length), flag, plan->hint);
  if (status != zprStsNoErr) return status;
  const int32_t bytes = plan->engine->work_bytes;
  plan->work_bytes = bytes < 1 ? 0 : bytes + 16;
  return zprStsNoErr;
}

// Sizes come before memory, so that a length whose buffer is out of range costs nothing.
template <class T>
zprStatus plan_by_circle(AnyLengthPlan<T> *plan) {
  const bool real = is_real(plan->id), halved = real && plan->length % 2 == 0;
  const int32_t n = plan->complex_length = halved ? plan->length / 2 : plan->length;
  Factors factors;
  const bool has_factors = find_factors(n, &factors);
  if (!has_factors || n < first_out_of_order) plan->out_of_order = 0;

  zprStatus status;
  if (has_factors) {
    status = factors_work_bytes(plan, factors);
  } else if (n > (real && !halved ? largest_direct_real : largest_direct)) {
    status = chirp_work_bytes(plan);
  } else {
    plan->route = Route::direct;
    status = set_work_bytes(plan, (real && !halved ? (int64_t)sizeof(T) : complex_bytes<T>(1)) * n + 16);
  }
  if (status != zprStsNoErr) return status;

  T *const points = make_circle<T>((size_t)plan->length);
  if (!points) return zprStsMemAllocErr;
  const Circle<T> circle = {points, (size_t)plan->length};
  if (halved) {
    plan->forward_real = make_forward_real(circle.length, points);
    plan->inverse_real = plan->forward_real ? make_inverse_real(circle.length, points) : nullptr;
    if (!plan->inverse_real) status = zprStsMemAllocErr;
  }
  if (status == zprStsNoErr)
    status = has_factors                   ? plan_factors(plan, factors, circle)
             : plan->route == Route::chirp ? plan_chirp(plan, circle)
                                           : plan_direct(plan, circle);
  release_block(points);
  return status;
}

template <class T>
void release(AnyLengthPlan<T> *plan) {
  plan->id = 0;
  if (plan->engine) Engine<T>::release(plan->engine);
  release_block(plan->circle);
  release_block(plan->forward_real);
  release_block(plan->inverse_real);
  release_block(plan->chirp);
  release_block(plan->chirp_spectrum);
  release_block(plan->places);
  for (int i = 0; i <= plan->stages; ++i) {
    release_block(plan->stage[i].twiddles);
    if (!i || plan->stage[i].circle != plan->stage[i - 1].circle) release_block(plan->stage[i].circle);
  }
  release_block(plan);
}

template <class T>
void set_normalisation(AnyLengthPlan<T> *plan, int32_t flag) {
  plan->forward_norm = flag == 1 || flag == 4;
  plan->inverse_norm = flag == 2 || flag == 4;
  if (flag != 8) plan->norm_factor = flag == 4 ? (T)(1 / sqrt((double)plan->length)) : 1 / (T)plan->length;
}

template <class T>
zprStatus init_alloc(int32_t id, AnyLengthPlan<T> **out, int32_t length, int32_t flag, int32_t hint) {
  if (!out) return zprStsNullPtrErr;
  if (length < 1) return zprStsSizeErr;
  const auto plan = (AnyLengthPlan<T> *)allocate_block(sizeof(AnyLengthPlan<T>));
  if (!plan) return zprStsMemAllocErr;
  memset(plan, 0, sizeof *plan);
  plan->id = id;
  plan->length = length;
  plan->hint = hint;
  plan->out_of_order = is_out_of_order(id);
  zprStatus status = zprStsNoErr;
  if (!valid_flag(flag)) {
    status = zprStsFftFlagErr;
  } else {
    set_normalisation(plan, flag);
    if (length <= largest_fixed_length) plan->out_of_order = 0;
    else if (is_power_of_two(length)) plan->out_of_order = 0, status = plan_power_of_two(plan, flag);
    else status = plan_by_circle(plan);
  }
  if (status != zprStsNoErr) return release(plan), status;
  *out = plan;
  return zprStsNoErr;
}

template <class T>
zprStatus get_buffer_size(int32_t id, const AnyLengthPlan<T> *plan, int32_t *size) {
  if (!plan || !size) return zprStsNullPtrErr;
  if (plan->id != id) return zprStsContextMatchErr;
  *size = plan->work_bytes;
  return zprStsNoErr;
}

template <class T>
zprStatus free_plan(int32_t id, AnyLengthPlan<T> *plan) {
  if (!plan) return zprStsNullPtrErr;
  if (plan->id != id) return zprStsContextMatchErr;
  release(plan);
  return zprStsNoErr;
}

}  // namespace
}  // namespace qkr::sigfft

#define QKR_PLAN(init, size, release, Spec, id, T)                          \
  zprStatus init(Spec **plan, int32_t length, int32_t flag, int32_t hint) { \
    using namespace qkr::sigfft;                                            \
    return init_alloc(id, (AnyLengthPlan<T> **)plan, length, flag, hint);   \
  }                                                                         \
  zprStatus size(const Spec *plan, int32_t *bytes) {                        \
    using namespace qkr::sigfft;                                            \
    return get_buffer_size(id, (const AnyLengthPlan<T> *)plan, bytes);      \
  }                                                                         \
  zprStatus release(Spec *plan) {                                           \
    using namespace qkr::sigfft;                                            \
    return free_plan(id, (AnyLengthPlan<T> *)plan);                         \
  }
QKR_PLAN(w6_zprsDFTInitAlloc_C_32fc, w6_zprsDFTGetBufSize_C_32fc, w6_zprsDFTFree_C_32fc, zprsDFTSpec_C_32fc,
         id_any_C_32fc, float)
QKR_PLAN(w6_zprsDFTInitAlloc_C_32f, w6_zprsDFTGetBufSize_C_32f, w6_zprsDFTFree_C_32f, zprsDFTSpec_C_32f,
         id_any_C_32f, float)
QKR_PLAN(w6_zprsDFTInitAlloc_R_32f, w6_zprsDFTGetBufSize_R_32f, w6_zprsDFTFree_R_32f, zprsDFTSpec_R_32f,
         id_any_R_32f, float)
QKR_PLAN(w6_zprsDFTInitAlloc_C_64fc, w6_zprsDFTGetBufSize_C_64fc, w6_zprsDFTFree_C_64fc, zprsDFTSpec_C_64fc,
         id_any_C_64fc, double)
QKR_PLAN(w6_zprsDFTInitAlloc_C_64f, w6_zprsDFTGetBufSize_C_64f, w6_zprsDFTFree_C_64f, zprsDFTSpec_C_64f,
         id_any_C_64f, double)
QKR_PLAN(w6_zprsDFTInitAlloc_R_64f, w6_zprsDFTGetBufSize_R_64f, w6_zprsDFTFree_R_64f, zprsDFTSpec_R_64f,
         id_any_R_64f, double)
QKR_PLAN(w6_zprsDFTOutOrdInitAlloc_C_32fc, w6_zprsDFTOutOrdGetBufSize_C_32fc, w6_zprsDFTOutOrdFree_C_32fc,
         zprsDFTOutOrdSpec_C_32fc, id_out_of_order_C_32fc, float)
QKR_PLAN(w6_zprsDFTOutOrdInitAlloc_C_64fc, w6_zprsDFTOutOrdGetBufSize_C_64fc, w6_zprsDFTOutOrdFree_C_64fc,
         zprsDFTOutOrdSpec_C_64fc, id_out_of_order_C_64fc, double)
