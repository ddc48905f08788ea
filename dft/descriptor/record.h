// The descriptor: one record a dimension, all in one block. The first record, the head, also holds the
// configuration and what the dimensions share.
#pragma once

#include <qkr/dft.h>

namespace qkr::dft {

enum Direction { backward, forward };

// Transforms one line of neighbouring numbers, `input` and `output` being the same or apart. `work` is one
// thread's slice of the work memory.
using LineTransform = int32_t (*)(const void *input, void *output, const DftDescriptor *record,
                                  uint8_t *work);

// Lines of 2^order complex numbers that stand side by side, `count` of them: see dft/codelets/columns.h.
using ColumnTransform = void (*)(int order, const void *source, ptrdiff_t source_stride, void *target,
                                 ptrdiff_t target_stride, int64_t count, double scale);
// The same of contiguous ones, as many of them as it answers: see dft/codelets/rows.h.
using RowTransform = int64_t (*)(int order, const void *source, ptrdiff_t source_distance, void *target,
                                 ptrdiff_t target_distance, int64_t count, double scale);
// Real ones: see dft/codelets/real_rows.h.
using RealRowTransform = int64_t (*)(int order, const void *source, ptrdiff_t source_distance, void *target,
                                     ptrdiff_t target_distance, int64_t count, bool has_last, double scale);

constexpr int32_t not_committed = 31, committed = 30;
constexpr int32_t largest_dimension = 3, largest_named_dimension = 7;

// Set by the caller, kept in the head.
struct Configuration {
  int32_t number_of_transforms = 1;
  int32_t conjugate_even_storage = DFTX_COMPLEX_REAL;
  int32_t placement = DFTX_INPLACE;
  int32_t packed_format = DFTX_CCS_FORMAT;
  int32_t ordering = DFTX_ORDERED;
  int32_t input_distance = 0, output_distance = 0;
  int32_t thread_limit = 1;
  bool strides_set = false;
};

}  // namespace qkr::dft

struct DftDescriptor {
  char magic[3];
  int32_t forward_domain, precision, dimension;
  int32_t dimension_index, length;
  int32_t input_stride, output_stride;
  double scale[2];  // by direction

  // What commit chose for lines of this dimension, by direction.
  qkr::dft::LineTransform complex_line[2];
  qkr::dft::LineTransform real_line[2];          // in the packed format of the descriptor
  qkr::dft::LineTransform real_line_of_perm;     // backward, from DFTX_PERM_FORMAT
  qkr::dft::ColumnTransform columns[2];          // null: there is none for this length
  qkr::dft::RowTransform rows[2];                // the same
  qkr::dft::RealRowTransform real_rows[2];       // the same
  void *spec_complex, *spec_real, *outord_spec;  // plans of the engine, owned
  int32_t work_size;                             // bytes that one line needs
  bool leaves_zero;  // backward in place, real lines leave a zero behind their last number

  // From here on the head alone.
  qkr::dft::Configuration configuration;
  int32_t total_size;  // product of the lengths
  int32_t commit_state;
  int32_t threads;        // that a compute call may use
  bool direct_call;       // one line with unit stride: compute calls its transform and nothing else
  ptrdiff_t slice;        // bytes of work memory of each thread
  uint8_t *work_buffer;   // owned
  int32_t *thread_slots;  // thread_limit words, 1 while one of the caller's threads computes; owned
};

namespace qkr::dft {

inline bool is_descriptor(const DftDescriptor *head) {
  return head->magic[0] == 'D' && head->magic[1] == 'F' && head->magic[2] == 'T';
}

inline bool is_complex(const DftDescriptor *head) { return head->forward_domain == DFTX_COMPLEX; }
inline bool has_unit_strides(const DftDescriptor *head) {
  return head->input_stride == 1 && head->output_stride == 1;
}

// The format in which lines of real numbers are transformed: the complex half spectrum is that of CCS.
inline int32_t line_format(const DftDescriptor *head) {
  const Configuration &set = head->configuration;
  return set.conjugate_even_storage == DFTX_COMPLEX_COMPLEX ? DFTX_CCS_FORMAT : set.packed_format;
}

// Real numbers of a spectrum of `length` points.
inline int64_t spectrum_numbers(int32_t format, int64_t length) {
  return format == DFTX_CCS_FORMAT ? length / 2 * 2 + 2 : length;
}

// Releases plans, tables and work memory.
void release_committed(DftDescriptor *head);

}  // namespace qkr::dft
