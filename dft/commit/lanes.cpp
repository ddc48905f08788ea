// Several lines of a short power of two at a time, one a lane: neighbouring columns, and contiguous lines.
#include "dft/codelets/columns.h"
#include "dft/codelets/real_rows.h"
#include "dft/commit/back_end.h"

namespace qkr::dft {
namespace {

// Lengths as short as that have one order, also where the order may be the engine's own.
bool applies(const Wish &wish) {
  const int32_t length = wish.record->length;
  return (length & (length - 1)) == 0 && length <= 1 << largest_column_order;
}

// Transforms of a precision, by direction.
struct Lanes {
  ColumnTransform columns[2];
  RowTransform rows[2];
  RealRowTransform real_rows[2];
};
constexpr Lanes single = {{dft_columns_backward_32fc, dft_columns_forward_32fc},
                          {dft_rows_backward_32fc, dft_rows_forward_32fc},
                          {dft_real_rows_backward_32f, dft_real_rows_forward_32f}};
constexpr Lanes in_double = {{dft_columns_backward_64fc, dft_columns_forward_64fc},
                             {dft_rows_backward_64fc, dft_rows_forward_64fc},
                             {dft_real_rows_backward_64f, dft_real_rows_forward_64f}};

int32_t make(const Wish &wish) {
  const Lanes &chosen = *of_precision(wish, &single, &in_double);
  DftDescriptor *record = wish.record;
  const Direction direction = wish.direction;
  const int32_t length = record->length;
  const bool in_rows = length <= 1 << largest_row_order;
  record->columns[direction] = chosen.columns[direction];
  record->rows[direction] = in_rows && length >= 2 ? chosen.rows[direction] : nullptr;
  record->real_rows[direction] = in_rows && length >= 4 ? chosen.real_rows[direction] : nullptr;
  return DFTX_NO_ERROR;
}

bool always(const Wish &) { return true; }
int32_t leave_out(const Wish &wish) {
  DftDescriptor *record = wish.record;
  record->columns[wish.direction] = nullptr;
  record->rows[wish.direction] = nullptr;
  record->real_rows[wish.direction] = nullptr;
  return DFTX_NO_ERROR;
}

}  // namespace

const BackEnd lanes = {applies, make};
const BackEnd line_by_line = {always, leave_out};

}  // namespace qkr::dft
