// Complex lines. Contiguous ones are transformed where they stand, several at a time where the length is
// short enough. Neighbouring columns are transformed lane by lane where it is, or gathered in strips into
// rows of a scratch. Any others are copied one by one.
#include "dft/drivers/lines.h"
#include "dft/drivers/row_copy.h"
#include "dft/drivers/scratch.h"
#include "dft/drivers/strips.h"

namespace qkr::dft {
namespace {

template <class T>
struct ComplexLines {
  const DftDescriptor *record;
  Direction direction;
  LineTransform transform;
  Place<const T> source;
  Place<T> target;
  uint8_t *work;

  int order() const { return __builtin_ctz(static_cast<unsigned>(record->length)); }

  int32_t where_they_stand(int64_t first, int64_t last) const {
    const RowTransform rows = record->rows[direction];
    const ptrdiff_t numbers = 2 * ptrdiff_t{record->length};
    if (rows && source.are_apart(numbers) && target.are_apart(numbers))
      first += rows(order(), source.line(first), source.distance, target.line(first), target.distance,
                    last - first, record->scale[direction]);
    for (int64_t i = first; i < last; ++i)
      if (const int32_t code = transform(source.line(i), target.line(i), record, work)) return code;
    return DFTX_NO_ERROR;
  }

  // The code of a strip is that of its last line.
  int32_t by_strips(int64_t first, int64_t last) const {
    const int64_t length = record->length;
    const Strip strip = strip_of<T>(last - first, source.stride, 2 * length);
    const Scratch<T> scratch(strip.width * strip.pitch);
    T *rows = scratch.numbers;
    if (!rows) return DFTX_MEMORY_ERROR;
    return for_each_strip(first, last, strip.width, [&](int64_t i, int width) {
      gather<2, T>(width, {source.line(i), source.stride}, length, {rows, strip.pitch});
      int32_t code = DFTX_NO_ERROR;
      for (int r = 0; r < width; ++r)
        code = transform(rows + r * strip.pitch, rows + r * strip.pitch, record, work);
      if (!code) scatter<2, T>(width, {rows, strip.pitch}, length, {target.line(i), target.stride});
      return code;
    });
  }

  int32_t one_by_one(int64_t first, int64_t last) const {
    const int64_t numbers = 2 * int64_t{record->length};
    const Scratch<T> scratch(numbers);
    T *row = scratch.numbers;
    if (!row) return DFTX_MEMORY_ERROR;
    for (int64_t i = first; i < last; ++i) {
      take_pairs(numbers, source, i, row);
      if (const int32_t code = transform(row, row, record, work)) return code;
      put_pairs<T>(numbers, row, target, i);
    }
    return DFTX_NO_ERROR;
  }
};

}  // namespace

template <class T>
int32_t transform_complex_lines(const DftDescriptor *record, Direction direction, Place<const T> source,
                                Place<T> target, int64_t first, int64_t last, uint8_t *work) {
  if (first >= last) return DFTX_NO_ERROR;
  const ComplexLines<T> lines = {record, direction, record->complex_line[direction], source, target, work};
  if (source.is_contiguous(2) && target.is_contiguous(2)) return lines.where_they_stand(first, last);
  if (!source.is_interleaved(2) || !target.is_interleaved(2)) return lines.one_by_one(first, last);
  const ColumnTransform columns = record->columns[direction];
  if (!columns) return lines.by_strips(first, last);
  columns(lines.order(), source.line(first), source.stride, target.line(first), target.stride, last - first,
          record->scale[direction]);
  return DFTX_NO_ERROR;
}

#define QKR_INSTANTIATE(T)                                                                             \
  template int32_t transform_complex_lines(const DftDescriptor *, Direction, Place<const T>, Place<T>, \
                                           int64_t, int64_t, uint8_t *);
QKR_INSTANTIATE(float)
QKR_INSTANTIATE(double)

}  // namespace qkr::dft
