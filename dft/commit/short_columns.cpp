// Neighbouring columns of a short power of two, one a lane.
#include "dft/codelets/columns.h"
#include "dft/commit/back_end.h"

namespace qkr::dft {
namespace {

// Lengths as short as that have one order, also where the order may be the engine's own.
bool applies(const Wish &wish) {
  const int32_t length = wish.record->length;
  return (length & (length - 1)) == 0 && length <= 1 << largest_column_order;
}

int32_t make(const Wish &wish) {
  wish.record->columns[wish.direction] =
      wish.direction == forward ? of_precision(wish, dft_columns_forward_32fc, dft_columns_forward_64fc)
                                : of_precision(wish, dft_columns_backward_32fc, dft_columns_backward_64fc);
  return DFTX_NO_ERROR;
}

bool always(const Wish &) { return true; }
int32_t leave_out(const Wish &wish) {
  wish.record->columns[wish.direction] = nullptr;
  return DFTX_NO_ERROR;
}

}  // namespace

const BackEnd short_columns = {applies, make};
const BackEnd columns_by_lines = {always, leave_out};

}  // namespace qkr::dft
