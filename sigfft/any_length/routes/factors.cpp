// The factors route of complex numbers.
#include <type_traits>

#include "sigfft/any_length/passes/first_stage.h"
#include "sigfft/any_length/routes/kernels.h"
#include "simd/entry.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// The first transforms. Where the blocks of a long array lie a power of two apart, so that a line of each
// falls into the same few places of the cache, all columns of one line of cache are worked on that go to the
// same blocks: the run of numbers that they make is finished while its lines are there.
template <bool forward, class F, class Source, class T>
QKR_INLINE void first_transforms(F factor, const AnyLengthPlan<T> *plan, Source source, Interleaved<T> area) {
  constexpr size_t line = 64 / (2 * sizeof(T)), long_array = 65536;
  const auto n = (size_t)plan->complex_length, count = n / (size_t)factor.value;
  const auto circle = small_circle<T>(plan->stage[plan->stages].circle, factor.value);
  const auto run = [&](size_t first, size_t end) {
    first_stage<forward>(factor, source, area, count, first, end, plan->places, circle);
  };
  if (plan->stages < 3 || plan->stage[0].rest % 256 || n * 2 * sizeof(T) < long_array) return run(0, count);
  const Stage<T> &last = plan->stage[plan->stages - 1], &before = plan->stage[plan->stages - 2];
  const auto near = (size_t)before.stride, far = (size_t)last.stride;
  for (size_t start = 0; start < near; start += line) {
    const size_t together = near - start < line ? near - start : line;
    for (size_t i = 0; i < (size_t)before.factor; ++i)
      for (size_t j = 0; j < (size_t)last.factor; ++j) {
        const size_t first = start + i * near + j * far;
        run(first, first + together);
      }
  }
}

// 11 and 13 points of interleaved numbers have code of their own here, where it pays most for its size.
template <class Source, class Run>
QKR_INLINE void with_first_factor(int factor, Run run) {
  if constexpr (std::is_same_v<Source, Interleaved<const typename Source::Element>>) {
    if (factor == 11) return run(Factor<11>());
    if (factor == 13) return run(Factor<13>());
  }
  with_factor(factor, run);
}

// The stages work in `area`, but for the last, which goes to the target.
template <bool forward, class Source, class Target, class T>
QKR_INLINE void transform(const AnyLengthPlan<T> *plan, Source source, Interleaved<T> area, Target target) {
  with_first_factor<Source>(plan->last_factor(), [&](auto factor) QKR_LAMBDA {
    first_transforms<forward>(factor, plan, source, area);
  });
  const auto run = [](const Stage<T> &stage, Interleaved<T> part, size_t blocks) {
    with_factor(stage.factor, [&](auto factor) QKR_LAMBDA {
      if (blocks == 1) combine_block<forward>(factor, part, part, stage);
      else combine_blocks<forward>(factor, part, stage, blocks);
    });
  };
  const Stage<T> &last = plan->stage[0], &before = plan->stage[1];
  if constexpr (std::is_same_v<Target, Interleaved<T>>)
    if (last.factor == 2 && plan->stages > 1 && before.factor <= 5) {
      stages_above(plan, 0, area, run, 2);
      const auto run_both = [&](auto factor)
                                QKR_LAMBDA { combine_halves<forward>(factor, area, target, before, last); };
      if (before.factor == 3) run_both(Factor<3>());
      else if (before.factor == 4) run_both(Factor<4>());
      else run_both(Factor<5>());
      return;
    }
  stages_above(plan, 0, area, run);
  with_factor(last.factor,
              [&](auto factor) QKR_LAMBDA { combine_block<forward>(factor, area, target, last); });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#define QKR_FACTORS(direction, forward, T, suffix)                                               \
  QKR_ENTRY(zprs_factors##direction##_##suffix##c,                                               \
            (const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src, T *dst, T *work),          \
            (plan, src, dst, work)) {                                                            \
    transform<forward>(plan, Interleaved<const T>{src}, Interleaved<T>{src == dst ? work : dst}, \
                       Interleaved<T>{dst});                                                     \
  }
QKR_FACTORS(Fwd, true, double, 64f)
QKR_FACTORS(Inv, false, double, 64f)
QKR_FACTORS(Fwd, true, float, 32f)
QKR_FACTORS(Inv, false, float, 32f)

#define QKR_SPLIT_FACTORS(T, suffix)                                                                       \
  QKR_ENTRY(zprs_factors_##suffix,                                                                         \
            (const qkr::sigfft::AnyLengthPlan<T> *plan, const T *src_re, const T *src_im, T *dst_re,       \
             T *dst_im, T *work),                                                                          \
            (plan, src_re, src_im, dst_re, dst_im, work)) {                                                \
    transform<true>(plan, Split<const T>{src_re, src_im}, Interleaved<T>{work}, Split<T>{dst_re, dst_im}); \
  }
QKR_SPLIT_FACTORS(double, 64f)
QKR_SPLIT_FACTORS(float, 32f)
