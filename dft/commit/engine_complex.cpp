// Complex lines through the engine, in natural order or in the engine's own: these apply always.
#include <qkr/service_level1.h>

#include "dft/commit/engine.h"

namespace qkr::dft {
namespace {

void scale(int32_t length, float factor, void *line) {
  constexpr int32_t stride = 1;
  if (factor != 1) qkr_blas_def_csscal(&length, &factor, line, &stride);
}
void scale(int32_t length, double factor, void *line) {
  constexpr int32_t stride = 1;
  if (factor != 1) qkr_blas_def_zdscal(&length, &factor, line, &stride);
}

template <class T, Direction direction, bool scrambled>
int32_t line(const void *input, void *output, const DftDescriptor *record, uint8_t *work) {
  using E = Engine<T>;
  using Number = typename E::Number;
  const auto source = static_cast<const Number *>(input);
  const auto target = static_cast<Number *>(output);
  zprStatus status;
  if constexpr (scrambled)
    status = E::scrambled_line[direction](
        source, target, static_cast<const typename E::ScrambledPlan *>(record->outord_spec), work);
  else
    status = E::complex_line[direction](
        source, target, static_cast<const typename E::ComplexPlan *>(record->spec_complex), work);
  scale(record->length, scale_of<T>(record, direction), output);
  return code_of_status(status);
}

template <bool scrambled>
LineTransform choose(const Wish &wish) {
  return wish.direction == forward
             ? of_precision(wish, line<float, forward, scrambled>, line<double, forward, scrambled>)
             : of_precision(wish, line<float, backward, scrambled>, line<double, backward, scrambled>);
}

bool is_scrambled(const Wish &wish) {
  return is_complex(wish.head) && wish.head->configuration.ordering != DFTX_ORDERED;
}
int32_t make_scrambled(const Wish &wish) {
  wish.record->complex_line[wish.direction] = choose<true>(wish);
  return make_plan(scrambled_plan(wish.head), wish.record->outord_spec, wish.record);
}

bool always(const Wish &) { return true; }
int32_t make_ordered(const Wish &wish) {
  wish.record->complex_line[wish.direction] = choose<false>(wish);
  return make_plan(complex_plan(wish.head), wish.record->spec_complex, wish.record);
}

}  // namespace

const BackEnd scrambled_engine = {is_scrambled, make_scrambled};
const BackEnd complex_engine = {always, make_ordered};

}  // namespace qkr::dft
