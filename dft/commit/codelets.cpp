// Lines of 2 to 64 numbers by straight-line code, where nothing is to be scaled.
#include "dft/codelets/lines.h"
#include "dft/commit/back_end.h"

namespace qkr::dft {
namespace {

int order_of(const Wish &wish) { return __builtin_ctz(static_cast<unsigned>(wish.record->length)); }
bool in_double(const Wish &wish) { return wish.head->precision == DFTX_DOUBLE; }

// Lengths as short as that have one order, also where the order may be the engine's own.
bool applies(const Wish &wish) {
  const int32_t length = wish.record->length;
  return length > 1 && (length & (length - 1)) == 0 && length <= 1 << largest_codelet_order &&
         wish.record->scale[wish.direction] == 1;
}

int32_t make_complex(const Wish &wish) {
  wish.record->complex_line[wish.direction] =
      dft_complex_codelet(in_double(wish), wish.direction == forward, order_of(wish));
  return DFTX_NO_ERROR;
}

int32_t make_real(const Wish &wish) {
  DftDescriptor *record = wish.record;
  const auto codelet = [&](int32_t format) {
    return dft_real_codelet(in_double(wish), wish.direction == forward, order_of(wish), format);
  };
  record->real_line[wish.direction] = codelet(line_format(wish.head));
  if (wish.direction == backward) record->real_line_of_perm = codelet(DFTX_PERM_FORMAT);
  return DFTX_NO_ERROR;
}

}  // namespace

const BackEnd complex_codelets = {applies, make_complex};
const BackEnd real_codelets = {applies, make_real};

}  // namespace qkr::dft
