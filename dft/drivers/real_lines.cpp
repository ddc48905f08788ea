// Real lines. Contiguous ones are transformed where they stand, several at a time where the length is short
// enough; neighbouring columns in strips, any others one by one through a scratch.
#include "dft/drivers/lines.h"
#include "dft/drivers/row_copy.h"
#include "dft/drivers/scratch.h"
#include "dft/drivers/strips.h"

namespace qkr::dft {
namespace {

template <class T>
struct RealLines {
  const RealTransform &transform;
  Place<const T> source;
  Place<T> target;
  uint8_t *work;

  int64_t signal_numbers() const { return transform.record->length; }
  // Of a row that holds the signal or the spectrum, and the two numbers by which one of them may be longer.
  int64_t row_numbers() const { return signal_numbers() + 2; }
  int32_t run(const T *from, T *to) const { return transform.line(from, to, transform.record, work); }

  // Several at a time from line `first` on: how many. Of one array, signal and spectrum lie in one place.
  int64_t in_lanes(int64_t first, int64_t last) const {
    const DftDescriptor *record = transform.record;
    const Direction direction = transform.direction;
    const RealRowTransform rows = record->real_rows[direction];
    const bool in_place = source.base == target.base, has_last = transform.format == DFTX_CCS_FORMAT;
    const int64_t signal = signal_numbers(), spectrum = transform.spectrum_numbers;
    if (!rows || transform.format == DFTX_PACK_FORMAT ||
        !source.are_apart(direction == forward ? signal : spectrum) ||
        !target.are_apart(direction == forward ? spectrum : signal) ||
        (in_place && source.distance != target.distance))
      return 0;
    const int order = __builtin_ctz(static_cast<unsigned>(record->length));
    const int64_t done = rows(order, source.line(first), source.distance, target.line(first), target.distance,
                              last - first, has_last, record->scale[direction]);
    if (direction == backward && has_last && record->leaves_zero && in_place)
      for (int64_t i = first; i < first + done; ++i) target.line(i)[record->length] = 0;
    return done;
  }

  int32_t where_they_stand(int64_t first, int64_t last) const {
    first += in_lanes(first, last);
    for (int64_t i = first; i < last; ++i)
      if (const int32_t code = run(source.line(i), target.line(i))) return code;
    return DFTX_NO_ERROR;
  }

  // The pairs of a spectrum, and the number that an odd count leaves over.
  void take_strip(int64_t i, int width, T *rows, ptrdiff_t pitch) const {
    const Columns<const T> columns = {source.line(i), source.stride};
    if (transform.direction == forward) return gather<1, T>(width, columns, signal_numbers(), {rows, pitch});
    const int64_t count = transform.spectrum_numbers;
    gather<2, T>(width, columns, count / 2, {rows, pitch});
    if (count % 2)
      for (int r = 0; r < width; ++r)
        rows[r * pitch + count - 1] = source.line(i + r)[count / 2 * source.stride];
  }
  void put_strip(int64_t i, int width, const T *rows, ptrdiff_t pitch) const {
    const Columns<T> columns = {target.line(i), target.stride};
    if (transform.direction == backward)
      return scatter<1, T>(width, {rows, pitch}, signal_numbers(), columns);
    const int64_t count = transform.spectrum_numbers;
    scatter<2, T>(width, {rows, pitch}, count / 2, columns);
    if (count % 2)
      for (int r = 0; r < width; ++r)
        target.line(i + r)[count / 2 * target.stride] = rows[r * pitch + count - 1];
  }

  int32_t by_strips(int64_t first, int64_t last) const {
    const Strip strip = strip_of<T>(last - first, source.stride, row_numbers());
    const Scratch<T> scratch(strip.width * strip.pitch);
    T *rows = scratch.numbers;
    if (!rows) return DFTX_MEMORY_ERROR;
    return for_each_strip(first, last, strip.width, [&](int64_t i, int width) {
      take_strip(i, width, rows, strip.pitch);
      int32_t code = DFTX_NO_ERROR;
      for (int r = 0; r < width; ++r) code = run(rows + r * strip.pitch, rows + r * strip.pitch);
      if (!code) put_strip(i, width, rows, strip.pitch);
      return code;
    });
  }

  int32_t one_by_one(int64_t first, int64_t last) const {
    const Scratch<T> scratch(row_numbers());
    T *row = scratch.numbers;
    if (!row) return DFTX_MEMORY_ERROR;
    const bool to_spectrum = transform.direction == forward;
    for (int64_t i = first; i < last; ++i) {
      if (to_spectrum) copy_numbers<T>(signal_numbers(), source.line(i), source.stride, row, 1);
      else take_pairs(transform.spectrum_numbers, source, i, row);
      if (const int32_t code = run(row, row)) return code;
      if (to_spectrum) put_pairs<T>(transform.spectrum_numbers, row, target, i);
      else copy_numbers<T>(signal_numbers(), row, 1, target.line(i), target.stride);
    }
    return DFTX_NO_ERROR;
  }
};

}  // namespace

template <class T>
int32_t transform_real_lines(const RealTransform &transform, Place<const T> source, Place<T> target,
                             int64_t first, int64_t last, uint8_t *work) {
  const RealLines<T> lines = {transform, source, target, work};
  const int source_width = transform.direction == forward ? 1 : 2, target_width = 3 - source_width;
  if (source.is_contiguous(source_width) && target.is_contiguous(target_width))
    return lines.where_they_stand(first, last);
  if (source.is_interleaved(source_width) && target.is_interleaved(target_width) && last - first > 1)
    return lines.by_strips(first, last);
  return lines.one_by_one(first, last);
}

#define QKR_INSTANTIATE(T)                                                                                 \
  template int32_t transform_real_lines(const RealTransform &, Place<const T>, Place<T>, int64_t, int64_t, \
                                        uint8_t *);
QKR_INSTANTIATE(float)
QKR_INSTANTIATE(double)

}  // namespace qkr::dft
