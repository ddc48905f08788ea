// The compute entries: checks, the shortest way for one line, and who works.

#include <qkr/service.h>

#include "dft/drivers/transforms.h"
#include "dft/threads/callers_threads.h"
#include "dft/threads/runtime.h"

namespace qkr::dft {
namespace {

template <class T>
int32_t check(const DftDescriptor *head, int32_t domain, const void *input, const void *output) {
  if (!head || !input || !output) return DFTX_INVALID_ARGUMENT;
  if (head->magic[0] != 'D') return DFTX_BAD_DESCRIPTOR;
  if (head->commit_state != committed) return DFTX_NOT_COMMITTED;
  const int32_t precision = sizeof(T) == 8 ? DFTX_DOUBLE : DFTX_SINGLE;
  return head->forward_domain == domain && head->precision == precision ? DFTX_NO_ERROR
                                                                        : DFTX_INVALID_ARGUMENT;
}

// Sizes below which a fork costs more than it brings.
constexpr int32_t smallest_shared_grid = 32000, smallest_shared_plane = 2048;

// Whether a transform of a descriptor that may use a team is shared out: batches and planes are, small grids
// and single lines are not.
template <class T>
bool is_shared_complex(const DftDescriptor *head, Direction direction) {
  if (head->configuration.number_of_transforms != 1) return true;
  if (head->dimension == 1) return false;
  if (head->dimension == 2) {
    if (head->total_size < smallest_shared_plane) return false;
    // Of the four forms this one alone treats a plane as it does a grid.
    constexpr bool in_double = sizeof(T) == 8;
    return !in_double || direction == forward || head->total_size >= smallest_shared_grid;
  }
  return head->total_size >= smallest_shared_grid;
}
bool is_shared_real(const DftDescriptor *head, Direction direction) {
  const int64_t count = head->configuration.number_of_transforms;
  if (count != 1) return head->length * count >= int64_t{2} << (head->threads < 32 ? head->threads : 32);
  if (head->dimension == 1) return false;
  if (head->dimension == 2 && direction == backward && head[1].length == 1) return false;
  return head->total_size >= (head->dimension == 2 ? smallest_shared_plane : smallest_shared_grid);
}

// A team, unless the process or the region around this call is not to have one.
Workers workers_of(const DftDescriptor *head, bool shared) {
  if (head->threads < 2 || !shared || qkr_serv_in_serial() == 1) return Workers::alone(head->work_buffer);
  const OpenMP *openmp = openmp_runtime();
  if (!openmp || openmp->omp_in_parallel_()) return Workers::alone(head->work_buffer);
  return {head->threads, head->work_buffer, head->slice};
}

// transform(workers), on the team's memory or on that of one of the caller's threads.
template <class Transform>
int32_t run(DftDescriptor *head, bool shared, const Transform &transform) {
  if (head->configuration.thread_limit <= 1) return transform(workers_of(head, shared));
  const CallersThread thread(head);
  return thread.has_slot() ? transform(Workers::alone(thread.work())) : int32_t{DFTX_NO_FREE_SLOT};
}

template <class T, Direction direction>
int32_t compute_complex(DftDescriptor *head, void *data) {
  if (const int32_t code = check<T>(head, DFTX_COMPLEX, data, data)) return code;
  if (head->direct_call) return head->complex_line[direction](data, data, head, head->work_buffer);
  return run(head, head->threads > 1 && is_shared_complex<T>(head, direction), [&](const Workers &workers) {
    return complex_transforms(head, direction, static_cast<T *>(data),
                              head->configuration.number_of_transforms, workers);
  });
}

template <class T, Direction direction>
int32_t compute_real(DftDescriptor *head, const void *input, void *output) {
  if (const int32_t code = check<T>(head, DFTX_REAL, input, output)) return code;
  if (head->direct_call) return head->real_line[direction](input, output, head, head->work_buffer);
  return run(head, head->threads > 1 && is_shared_real(head, direction), [&](const Workers &workers) {
    return real_transforms(head, direction, static_cast<const T *>(input), static_cast<T *>(output),
                           head->configuration.number_of_transforms, workers);
  });
}

}  // namespace
}  // namespace qkr::dft

using namespace qkr::dft;

#define QKR_COMPLEX(name, T, direction) \
  int32_t name(DftDescriptor **handle, void *data) { return compute_complex<T, direction>(*handle, data); }
QKR_COMPLEX(qkr_dft_def_compute_forward_c, float, forward)
QKR_COMPLEX(qkr_dft_def_compute_backward_c, float, backward)
QKR_COMPLEX(qkr_dft_def_compute_forward_z, double, forward)
QKR_COMPLEX(qkr_dft_def_compute_backward_z, double, backward)

#define QKR_REAL(name, T, direction, Input, Output)                          \
  int32_t name(DftDescriptor **handle, const Input *input, Output *output) { \
    return compute_real<T, direction>(*handle, input, output);               \
  }
QKR_REAL(qkr_dft_def_compute_forward_sc_out, float, forward, float, void)
QKR_REAL(qkr_dft_def_compute_backward_cs_out, float, backward, void, float)
QKR_REAL(qkr_dft_def_compute_forward_dz_out, double, forward, double, void)
QKR_REAL(qkr_dft_def_compute_backward_zd_out, double, backward, void, double)
