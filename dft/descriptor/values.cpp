// The configuration: a table of parameters, and the strides.
#include "dft/descriptor/record.h"

using namespace qkr::dft;

namespace {

// Code of an attempt to give the parameter a value.
int32_t set_integer(DftDescriptor *head, int32_t parameter, int32_t value) {
  Configuration &set = head->configuration;
  const auto store = [value](int32_t &word) {
    word = value;
    return DFTX_NO_ERROR;
  };
  // A storage that other parameters or other libraries know is refused as unimplemented, anything else as no
  // value.
  const auto refused_storage = [value] {
    const bool known = value == DFTX_COMPLEX_COMPLEX || value == DFTX_COMPLEX_REAL || value == DFTX_REAL_REAL;
    return known ? DFTX_UNIMPLEMENTED : DFTX_INVALID_ARGUMENT;
  };
  switch (parameter) {
    case 0:  // domain
    case 1:  // dimension
    case 2:  // lengths
    case 3:  // precision
    case 19:
      return DFTX_UNIMPLEMENTED;
    case DFTX_NUMBER_OF_TRANSFORMS:
      return store(set.number_of_transforms);
    case DFTX_COMPLEX_STORAGE:
      return value == DFTX_COMPLEX_COMPLEX ? DFTX_NO_ERROR : refused_storage();
    case DFTX_REAL_STORAGE:
      return value == DFTX_REAL_REAL ? DFTX_NO_ERROR : refused_storage();
    case DFTX_CONJUGATE_EVEN_STORAGE:
      if (value != DFTX_COMPLEX_COMPLEX && value != DFTX_COMPLEX_REAL) return refused_storage();
      if (value == DFTX_COMPLEX_COMPLEX) set.packed_format = DFTX_CCE_FORMAT;
      return store(set.conjugate_even_storage);
    case DFTX_PLACEMENT:
      if (value != DFTX_INPLACE && value != DFTX_NOT_INPLACE) return DFTX_INVALID_ARGUMENT;
      return store(set.placement);
    case DFTX_INPUT_DISTANCE:
      return store(set.input_distance);
    case DFTX_OUTPUT_DISTANCE:
      return store(set.output_distance);
    case DFTX_ORDERING:
      if (value != DFTX_ORDERED && (value != DFTX_SCRAMBLED || !is_complex(head)))
        return DFTX_INVALID_ARGUMENT;
      return store(set.ordering);
    case DFTX_PACKED_FORMAT:
      if (value < DFTX_CCS_FORMAT || value > DFTX_CCE_FORMAT) return DFTX_INVALID_ARGUMENT;
      return store(set.packed_format);
    case DFTX_THREAD_LIMIT:
      return store(set.thread_limit);
    default:
      return DFTX_INVALID_ARGUMENT;
  }
}

// DFTX_NO_ERROR once the descriptor is sound and marked for another commit.
int32_t open_for_change(DftDescriptor *head) {
  if (!head) return DFTX_INVALID_ARGUMENT;
  if (!is_descriptor(head)) return DFTX_BAD_DESCRIPTOR;
  head->commit_state = not_committed;
  return DFTX_NO_ERROR;
}

}  // namespace

int32_t qkr_dft_def_set_value_intval(DftDescriptor **handle, const int32_t *parameter, const int32_t *value) {
  const int32_t code = open_for_change(*handle);
  return code ? code : set_integer(*handle, *parameter, *value);
}

// The scale is applied once to a whole transform: by the first dimension that does anything, or else by the
// first.
int32_t qkr_dft_def_set_value_dblval(DftDescriptor **handle, const int32_t *parameter, const double *value) {
  DftDescriptor *head = *handle;
  if (const int32_t code = open_for_change(head)) return code;
  if (*parameter != DFTX_FORWARD_SCALE && *parameter != DFTX_BACKWARD_SCALE) return DFTX_INVALID_ARGUMENT;
  const Direction direction = *parameter == DFTX_FORWARD_SCALE ? forward : backward;
  int32_t owner = 0;
  while (owner + 1 < head->dimension && head[owner].length == 1) ++owner;
  if (head[owner].length == 1) owner = 0;
  head[owner].scale[direction] = *value;
  return DFTX_NO_ERROR;
}

int32_t qkr_dft_set_strides(DftDescriptor **handle, const int32_t *input_strides,
                            const int32_t *output_strides) {
  DftDescriptor *head = *handle;
  if (const int32_t code = open_for_change(head)) return code;
  if (!output_strides && is_complex(head)) output_strides = input_strides;
  if (!input_strides || !output_strides) return DFTX_INVALID_ARGUMENT;
  for (int32_t i = 0; i < head->dimension; ++i)
    if (input_strides[i] < 1 || output_strides[i] < 1) return DFTX_INVALID_ARGUMENT;
  for (int32_t i = 0; i < head->dimension; ++i) {
    head[i].input_stride = input_strides[i];
    head[i].output_stride = output_strides[i];
  }
  head->configuration.strides_set = true;
  return DFTX_NO_ERROR;
}

int32_t qkr_dft_def_error_class_external(const int32_t *status, const int32_t *error_class) {
  return *status == *error_class;
}
