// Real lines through the engine: always applies.
#include <qkr/service_level1.h>

#include "dft/commit/engine.h"

namespace qkr::dft {
namespace {

void scale(int32_t count, float factor, float *numbers) {
  constexpr int32_t stride = 1;
  if (factor != 1) qkr_blas_def_sscal(&count, &factor, numbers, &stride);
}
void scale(int32_t count, double factor, double *numbers) {
  constexpr int32_t stride = 1;
  if (factor != 1) qkr_blas_def_dscal(&count, &factor, numbers, &stride);
}

// The last number of a half spectrum of even length is a zero, and is not scaled.
constexpr int32_t scaled_numbers(int32_t format, Direction direction, int32_t length) {
  return direction == forward && format == DFTX_CCS_FORMAT ? length + 1 : length;
}

template <class T, Direction direction, int32_t format>
int32_t line(const void *input, void *output, const DftDescriptor *record, uint8_t *work) {
  using E = Engine<T>;
  T *target = static_cast<T *>(output);
  const zprStatus status = E::real_line[format - DFTX_CCS_FORMAT][direction](
      static_cast<const T *>(input), target, static_cast<const typename E::RealPlan *>(record->spec_real),
      work);
  scale(scaled_numbers(format, direction, record->length), scale_of<T>(record, direction), target);
  if (direction == backward && format == DFTX_CCS_FORMAT && record->leaves_zero && input == output)
    target[record->length] = 0;
  return code_of_status(status);
}

template <int32_t format>
LineTransform choose(const Wish &wish) {
  return wish.direction == forward
             ? of_precision(wish, line<float, forward, format>, line<double, forward, format>)
             : of_precision(wish, line<float, backward, format>, line<double, backward, format>);
}

bool always(const Wish &) { return true; }

int32_t make(const Wish &wish) {
  DftDescriptor *record = wish.record;
  LineTransform &chosen = record->real_line[wish.direction];
  switch (line_format(wish.head)) {
    case DFTX_PACK_FORMAT:
      chosen = choose<DFTX_PACK_FORMAT>(wish);
      break;
    case DFTX_PERM_FORMAT:
      chosen = choose<DFTX_PERM_FORMAT>(wish);
      break;
    default:
      chosen = choose<DFTX_CCS_FORMAT>(wish);
  }
  if (wish.direction == backward) record->real_line_of_perm = choose<DFTX_PERM_FORMAT>(wish);
  return make_plan(real_plan(wish.head), record->spec_real, record);
}

}  // namespace

const BackEnd real_engine = {always, make};

}  // namespace qkr::dft
