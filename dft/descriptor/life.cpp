// Creating and freeing descriptors.
#include "dft/descriptor/blocks.h"
#include "dft/descriptor/record.h"

using namespace qkr::dft;

namespace {

// The product of the lengths, or 0 when it does not fit the words that hold it.
int32_t product(const int32_t *lengths, int32_t dimension) {
  int64_t size = 1;
  for (int32_t i = 0; i < dimension; ++i) {
    size *= lengths[i];
    if (size > INT32_MAX) return 0;
  }
  return static_cast<int32_t>(size);
}

void fill(DftDescriptor *head, int32_t precision, int32_t domain, int32_t dimension, const int32_t *lengths) {
  int32_t stride = 1;
  for (int32_t i = 0; i < dimension; ++i) {
    DftDescriptor &record = head[i];
    record = {};
    __builtin_memcpy(record.magic, "DFT", sizeof record.magic);
    record.forward_domain = domain;
    record.precision = precision;
    record.dimension = dimension;
    record.dimension_index = i;
    record.length = lengths[i];
    record.input_stride = record.output_stride = stride;
    record.scale[forward] = record.scale[backward] = 1;
    stride *= lengths[i];
  }
  head->total_size = stride;
  head->commit_state = not_committed;
  head->threads = 1;
}

}  // namespace

int32_t qkr_dft_def_create_descriptor_highd(DftDescriptor **handle, const int32_t *precision,
                                            const int32_t *domain, const int32_t *dimension,
                                            const int32_t *lengths) {
  const int32_t count = *dimension;
  if (count < 1 || count > largest_named_dimension) return DFTX_INVALID_ARGUMENT;
  for (int32_t i = 0; i < count; ++i)
    if (lengths[i] < 1) return DFTX_INVALID_ARGUMENT;

  *handle = nullptr;
  const bool fits = count > largest_dimension || product(lengths, count) > 0;
  DftDescriptor *head =
      fits ? static_cast<DftDescriptor *>(allocate_block(count * sizeof(DftDescriptor))) : nullptr;
  if (!head) return DFTX_MEMORY_ERROR;

  const auto refused = [head](int32_t code) {
    free_block(head);
    return code;
  };
  if (*domain != DFTX_COMPLEX && *domain != DFTX_REAL) return refused(DFTX_INVALID_ARGUMENT);
  if (count > largest_dimension) return refused(DFTX_UNIMPLEMENTED);
  if (*precision != DFTX_SINGLE && *precision != DFTX_DOUBLE) return refused(DFTX_INVALID_ARGUMENT);
  fill(head, *precision, *domain, count, lengths);
  *handle = head;
  return DFTX_NO_ERROR;
}

int32_t qkr_dft_def_create_descriptor_1d(DftDescriptor **handle, const int32_t *precision,
                                         const int32_t *domain, const int32_t *dimension,
                                         const int32_t *lengths) {
  return qkr_dft_def_create_descriptor_highd(handle, precision, domain, dimension, lengths);
}

int32_t qkr_dft_def_free_descriptor_external(DftDescriptor **handle) {
  DftDescriptor *head = *handle;
  if (!head) return DFTX_INVALID_ARGUMENT;
  if (!is_descriptor(head)) return DFTX_BAD_DESCRIPTOR;
  release_committed(head);
  head->magic[0] = 0;  // tells a stale handle from a live one while the block is not used again
  free_block(head);
  *handle = nullptr;
  return DFTX_NO_ERROR;
}
