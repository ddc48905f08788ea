// Several lines of a short power of two at a time, one a lane: neighbouring columns, and contiguous lines.
#include "dft/codelets/columns.h"
#include "dft/codelets/rows.h"
#include "dft/commit/back_end.h"

namespace qkr::dft {
namespace {

// Lengths as short as that have one order, also where the order may be the engine's own.
bool applies(const Wish &wish) {
  const int32_t length = wish.record->length;
  return (length & (length - 1)) == 0 && length <= 1 << largest_column_order;
}

int32_t make(const Wish &wish) {
  DftDescriptor *record = wish.record;
  const bool ahead = wish.direction == forward,
             has_rows = record->length > 1 && record->length <= 1 << largest_row_order;
  record->columns[wish.direction] =
      ahead ? of_precision(wish, dft_columns_forward_32fc, dft_columns_forward_64fc)
            : of_precision(wish, dft_columns_backward_32fc, dft_columns_backward_64fc);
  record->rows[wish.direction] = !has_rows ? nullptr
                                 : ahead   ? of_precision(wish, dft_rows_forward_32fc, dft_rows_forward_64fc)
                                         : of_precision(wish, dft_rows_backward_32fc, dft_rows_backward_64fc);
  return DFTX_NO_ERROR;
}

bool always(const Wish &) { return true; }
int32_t leave_out(const Wish &wish) {
  wish.record->columns[wish.direction] = nullptr;
  wish.record->rows[wish.direction] = nullptr;
  return DFTX_NO_ERROR;
}

}  // namespace

const BackEnd lanes = {applies, make};
const BackEnd line_by_line = {always, leave_out};

}  // namespace qkr::dft
