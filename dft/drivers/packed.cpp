// Real transforms of two dimensions in a packed format: a matrix of real numbers whose rows are packed
// spectra. The columns of numbers that are real then are real lines, packed in the same format downward; the
// others stand in pairs and are complex lines.
#include <initializer_list>
#include <type_traits>

#include "dft/drivers/scratch.h"
#include "dft/drivers/transforms.h"

namespace qkr::dft {
namespace {

// Steps from one number to the next along a row and down a column.
struct Matrix {
  ptrdiff_t along, down;
  bool operator==(const Matrix &) const = default;
};

// Where the columns stand in a row of a format.
struct Layout {
  ptrdiff_t nyquist, first_pair;
};
Layout layout_of(int32_t format, int64_t length) {
  switch (format) {
    case DFTX_CCS_FORMAT:
      return {length, 2};
    case DFTX_PACK_FORMAT:
      return {length - 1, 1};
    default:
      return {1, length % 2 == 0 ? 2 : 1};
  }
}

template <class T>
struct Packed {
  const DftDescriptor *head;
  Direction direction;
  const T *input;
  T *output;
  Matrix in, out;
  int32_t input_format, output_format;  // in which rows the columns stand

  int64_t length() const { return head[0].length; }
  int64_t height() const { return head[1].length; }
  int64_t real_columns() const { return length() % 2 == 0 ? 2 : 1; }
  int64_t pairs() const { return (length() - 1) / 2; }

  // Columns, in the output or from the input to it: the real ones are items 0 and 1.
  int32_t columns(const Workers &workers, const T *source, const Matrix &from, int32_t source_format) const {
    if (height() == 1 && source == output) return DFTX_NO_ERROR;
    const Layout layout = layout_of(source_format, length()), target = layout_of(output_format, length());
    // A single row has no second number downward.
    const int64_t numbers = height() == 1 ? 1 : spectrum_numbers(line_format(head), height());
    const RealTransform real = {head + 1, head[1].real_line[direction], direction, line_format(head),
                                numbers};
    return share(workers, real_columns() + pairs(), [&](int64_t first, int64_t last, uint8_t *work) {
      for (; first < last && first < real_columns(); ++first) {
        const T *column = source + first * layout.nyquist * from.along;
        T *result = output + first * target.nyquist * out.along;
        const Place<const T> signal = {column, from.down, 0},
                             spectrum = {column, 2 * from.down, 0, from.down};
        const Place<T> to_signal = {result, out.down, 0}, to_spectrum = {result, 2 * out.down, 0, out.down};
        const bool ahead = direction == forward;
        const int32_t code = transform_real_lines<T>(real, ahead ? signal : spectrum,
                                                     ahead ? to_spectrum : to_signal, 0, 1, work);
        if (code) return code;
      }
      const auto complex = [&](auto *base, const Matrix &steps, const Layout &at) {
        return Place<std::remove_pointer_t<decltype(base)>>{base + at.first_pair * steps.along, steps.down,
                                                            2 * steps.along, steps.along};
      };
      return transform_complex_lines<T>(head + 1, direction, complex(source, from, layout),
                                        complex(output, out, target), first - real_columns(),
                                        last - real_columns(), work);
    });
  }

  int32_t forward_transform(const Workers &workers) const {
    const RealTransform row = {head, head->real_line[forward], forward, output_format,
                               spectrum_numbers(output_format, length())};
    const int32_t code = share(workers, height(), [&](int64_t first, int64_t last, uint8_t *work) {
      return transform_real_lines<T>(row, {input, in.along, in.down},
                                     {output, 2 * out.along, out.down, out.along}, first, last, work);
    });
    return code ? code : columns(workers, output, out, output_format);
  }

  int32_t backward_transform(const Workers &workers) const {
    if (const int32_t code = columns(workers, input, in, input_format)) return code;
    const bool own = output_format == line_format(head);
    const RealTransform row = {head, own ? head->real_line[backward] : head->real_line_of_perm, backward,
                               output_format, spectrum_numbers(output_format, length())};
    return share(workers, height(), [&](int64_t first, int64_t last, uint8_t *work) {
      return transform_real_lines<T>(row, {output, 2 * out.along, out.down, out.along},
                                     {output, out.along, out.down}, first, last, work);
    });
  }
};

// A dense copy of the input, so that the output can take its place.
template <class T>
void copy_input(const DftDescriptor *head, Direction direction, const T *input, const Matrix &in, T *copy,
                ptrdiff_t pitch) {
  const int32_t format = line_format(head);
  const int64_t length = head[0].length, height = head[1].length;
  const int64_t numbers = direction == forward ? length : spectrum_numbers(format, length);
  for (int64_t i = 0; i < height; ++i)
    copy_numbers(numbers, input + i * in.down, in.along, copy + i * pitch, 1);
  if (direction == forward || height == 1) return;
  // Below, the spectrum's real columns alone go on.
  const ptrdiff_t nyquist = length % 2 == 0 ? layout_of(format, length).nyquist : 0;
  for (int64_t i = height; i < spectrum_numbers(format, height); ++i)
    for (const ptrdiff_t column : {ptrdiff_t{0}, nyquist})
      copy[i * pitch + column] = input[i * in.down + column * in.along];
}

}  // namespace

template <class T>
int32_t packed_transform(const DftDescriptor *head, Direction direction, const T *input, T *output,
                         const Workers &workers) {
  const int32_t format = line_format(head);
  const int64_t row_numbers = format == DFTX_CCS_FORMAT ? head[0].length + 2 : head[0].length;
  const bool ahead = direction == forward;
  Matrix in = {head[0].input_stride, head[1].input_stride},
         out = {head[0].output_stride, head[1].output_stride};
  if (!head->configuration.strides_set) (ahead ? out : in) = {1, row_numbers};

  const bool in_place = input == output && in == out && (!ahead || in.along == 1);
  const bool copies = input == output && !in_place;
  const Scratch<T> copy(copies ? row_numbers * spectrum_numbers(format, head[1].length) : 0);
  if (copies) {
    if (!copy.numbers) return DFTX_MEMORY_ERROR;
    copy_input(head, direction, input, in, copy.numbers, row_numbers);
    input = copy.numbers;
    in = {1, row_numbers};
  }
  if (ahead)
    return Packed<T>{head, direction, input, output, in, out, format, format}.forward_transform(workers);
  // Rows with numbers of their own have no room for more than the real ones.
  const int32_t rows_format = in_place ? format : int32_t{DFTX_PERM_FORMAT};
  return Packed<T>{head, direction, input, output, in, out, format, rows_format}.backward_transform(workers);
}

template int32_t packed_transform(const DftDescriptor *, Direction, const float *, float *, const Workers &);
template int32_t packed_transform(const DftDescriptor *, Direction, const double *, double *,
                                  const Workers &);

}  // namespace qkr::dft
