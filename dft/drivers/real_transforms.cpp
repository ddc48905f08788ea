// Real transforms: lines of one dimension, and the choice of what serves more.
#include "dft/drivers/transforms.h"

namespace qkr::dft {

template <class T>
int32_t real_transforms(const DftDescriptor *head, Direction direction, const T *input, T *output,
                        int64_t count, const Workers &workers) {
  const Configuration &set = head->configuration;
  // A spectrum's elements are pairs of numbers.
  const ptrdiff_t input_width = direction == forward ? 1 : 2, output_width = 3 - input_width;
  const ptrdiff_t input_distance = input_width * set.input_distance;
  const ptrdiff_t output_distance = output_width * set.output_distance;
  if (head->dimension == 1) {
    const int32_t format = line_format(head);
    const RealTransform transform = {head, head->real_line[direction], direction, format,
                                     spectrum_numbers(format, head->length)};
    const Place<const T> source = {input, input_width * head->input_stride, input_distance};
    const Place<T> target = {output, output_width * head->output_stride, output_distance};
    return share(workers, count, [&](int64_t first, int64_t last, uint8_t *work) {
      return transform_real_lines<T>(transform, source, target, first, last, work);
    });
  }
  const auto whole =
      set.conjugate_even_storage == DFTX_COMPLEX_COMPLEX ? half_spectrum_transform<T> : packed_transform<T>;
  return batch(workers, count, [&](int64_t t, const Workers &who) {
    return whole(head, direction, input + t * input_distance, output + t * output_distance, who);
  });
}

template int32_t real_transforms(const DftDescriptor *, Direction, const float *, float *, int64_t,
                                 const Workers &);
template int32_t real_transforms(const DftDescriptor *, Direction, const double *, double *, int64_t,
                                 const Workers &);

}  // namespace qkr::dft
