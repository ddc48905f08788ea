// From axes of arrays to descriptors: the transformed axes become dimensions of a descriptor, the
// neighbouring axes beside them its batch, and the rest a loop, whose steps are shared among threads.
#include "fft/transform.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <complex>
#include <pthread.h>
#include <qkr/service.h>

#include "fft/plans.h"

namespace qkr::fft {
namespace {

struct Axis {
  ptrdiff_t length, input_stride, output_stride;
};

// The axes of an array that are not transformed, neighbours joined where they are one behind the other in
// memory, and in order of falling strides.
struct Rest {
  int count = 0;
  Axis axes[most_axes];

  void add(const Axis &axis) {
    if (axis.length == 1) return;
    if (count) {
      Axis &last = axes[count - 1];
      if (last.input_stride == axis.length * axis.input_stride &&
          last.output_stride == axis.length * axis.output_stride) {
        last = {last.length * axis.length, axis.input_stride, axis.output_stride};
        return;
      }
    }
    axes[count++] = axis;
  }
};

// A transform call for every step of the loop.
struct Job {
  const Request *request;
  Key key;
  Rest loop;
  ptrdiff_t steps, input_bytes, output_bytes;  // of the loop; of an element
  Axis batch;                                  // which the steps divide into pieces, the last one shorter
  ptrdiff_t pieces, piece;
  std::atomic<ptrdiff_t> next = 0;
  std::atomic<int32_t> code = 0;
};

int32_t compute(const Request &r, Plan *plan, char *input, char *output) {
  DftDescriptor **handle = &plan->descriptor;
  const auto complex = [&](auto forward, auto backward) {
    return (r.forward ? forward : backward)(handle, output);
  };
  switch (r.kind) {
    case Kind::complex:
      return r.is_double ? complex(qkr_dft_def_compute_forward_z, qkr_dft_def_compute_backward_z)
                         : complex(qkr_dft_def_compute_forward_c, qkr_dft_def_compute_backward_c);
    case Kind::real_forward:
      return r.is_double
                 ? qkr_dft_def_compute_forward_dz_out(handle, reinterpret_cast<const double *>(input), output)
                 : qkr_dft_def_compute_forward_sc_out(handle, reinterpret_cast<const float *>(input), output);
    default:
      return r.is_double
                 ? qkr_dft_def_compute_backward_zd_out(handle, input, reinterpret_cast<double *>(output))
                 : qkr_dft_def_compute_backward_cs_out(handle, input, reinterpret_cast<float *>(output));
  }
}

// Takes steps until there are none, with plans for a whole piece and for the last one.
void *work(void *argument) {
  Job &job = *static_cast<Job *>(argument);
  Plan *plans[2] = {};
  const ptrdiff_t all = job.steps * job.pieces;
  int32_t code = 0;
  for (ptrdiff_t step; !code && (step = job.next++) < all;) {
    const ptrdiff_t piece = step % job.pieces;
    const ptrdiff_t count = std::min(job.piece, job.batch.length - piece * job.piece);
    ptrdiff_t input = piece * job.piece * job.batch.input_stride,
              output = piece * job.piece * job.batch.output_stride;
    ptrdiff_t rest = step / job.pieces;
    for (int k = job.loop.count - 1; k >= 0; --k) {
      const Axis &axis = job.loop.axes[k];
      input += rest % axis.length * axis.input_stride;
      output += rest % axis.length * axis.output_stride;
      rest /= axis.length;
    }
    Plan *&plan = plans[count != job.piece];
    if (!plan) {
      Key key = job.key;
      key.count = static_cast<int32_t>(count);
      plan = take(key, &code);
    }
    if (plan) {
      code = compute(*job.request, plan, job.request->input + input * job.input_bytes,
                     job.request->output + output * job.output_bytes);
    }
  }
  for (Plan *plan : plans) {
    if (plan) give_back(plan);
  }
  if (code) {
    job.code = code;
    job.next = all;  // the others need not go on
  }
  return nullptr;
}

void work_together(Job &job, int workers) {
  constexpr int most_threads = 64;
  pthread_t threads[most_threads];
  int started = 0;
  while (started < std::min(workers - 1, most_threads) &&
         !pthread_create(&threads[started], nullptr, work, &job)) {
    ++started;
  }
  work(&job);
  for (int k = 0; k < started; ++k) pthread_join(threads[k], nullptr);
}

bool fits(ptrdiff_t number) { return number <= INT32_MAX; }

}  // namespace

int32_t transform(const Request &r) {
  const bool real = r.kind != Kind::complex;
  const ptrdiff_t real_bytes = r.is_double ? sizeof(double) : sizeof(float);
  Job job = {};
  job.request = &r;
  job.input_bytes = r.kind == Kind::real_forward ? real_bytes : 2 * real_bytes;
  job.output_bytes = r.kind == Kind::real_backward ? real_bytes : 2 * real_bytes;

  Axis axes[most_axes];
  Axis next = {1, 1, 1};
  for (int k = r.dimensions - 1; k >= 0; --k) {
    axes[k] = {r.output_shape[k], next.input_stride, next.output_stride};
    next.input_stride *= r.input_shape[k];
    next.output_stride *= r.output_shape[k];
  }

  Key &key = job.key;
  key.precision = r.is_double ? DFTX_DOUBLE : DFTX_SINGLE;
  key.domain = real ? DFTX_REAL : DFTX_COMPLEX;
  key.dimensions = r.axis_count;
  key.forward_scale = r.forward_scale;
  key.backward_scale = r.backward_scale;
  bool transformed[most_axes] = {};
  for (int d = 0; d < r.axis_count; ++d) {
    const int k = r.axes[r.axis_count - 1 - d];
    // A half spectrum that is given may be longer than half, and a place for one may be whole: the signal
    // counts.
    const ptrdiff_t length = r.kind == Kind::real_forward ? r.input_shape[k] : r.output_shape[k];
    if (!fits(length) || !fits(axes[k].input_stride) || !fits(axes[k].output_stride))
      return DFTX_MEMORY_ERROR;
    key.lengths[d] = static_cast<int32_t>(length);
    key.input_strides[d] = static_cast<int32_t>(axes[k].input_stride);
    key.output_strides[d] = static_cast<int32_t>(axes[k].output_stride);
    transformed[k] = true;
  }

  for (int k = 0; k < r.dimensions; ++k) {
    if (!transformed[k]) job.loop.add(axes[k]);
  }
  // The innermost axis beside the transformed ones makes the batch, the others the loop.
  job.batch = job.loop.count ? job.loop.axes[--job.loop.count] : Axis{1, 1, 1};
  if (!fits(job.batch.input_stride) || !fits(job.batch.output_stride)) return DFTX_MEMORY_ERROR;
  key.input_distance = static_cast<int32_t>(job.batch.input_stride);
  key.output_distance = static_cast<int32_t>(job.batch.output_stride);
  job.steps = 1;
  for (int k = 0; k < job.loop.count; ++k) job.steps *= job.loop.axes[k].length;

  key.team = r.workers == 0 && !qkr_serv_in_serial();
  const ptrdiff_t wanted = job.steps < r.workers ? std::min<ptrdiff_t>(r.workers, job.batch.length) : 1;
  job.piece = std::min<ptrdiff_t>((job.batch.length + wanted - 1) / wanted, INT32_MAX);
  job.pieces = (job.batch.length + job.piece - 1) / job.piece;
  const ptrdiff_t most_workers = std::min<ptrdiff_t>(r.workers, job.steps * job.pieces);
  work_together(job, static_cast<int>(most_workers));
  return job.code;
}

namespace {

template <class T>
void complete_rows(int dimensions, const ptrdiff_t *shape, const bool *mirrored, std::complex<T> *spectrum) {
  const ptrdiff_t n = shape[dimensions - 1];
  ptrdiff_t rows = 1, index[most_axes] = {};
  for (int k = 0; k < dimensions - 1; ++k) rows *= shape[k];
  for (ptrdiff_t row = 0; row < rows; ++row) {
    ptrdiff_t partner = 0;
    for (int k = 0; k < dimensions - 1; ++k) {
      partner = partner * shape[k] + (mirrored[k] && index[k] ? shape[k] - index[k] : index[k]);
    }
    std::complex<T> *to = spectrum + row * n;
    const std::complex<T> *from = spectrum + partner * n;
    for (ptrdiff_t k = n / 2 + 1; k < n; ++k) to[k] = {from[n - k].real(), -from[n - k].imag()};
    for (int k = dimensions - 2; k >= 0 && ++index[k] == shape[k]; --k) index[k] = 0;
  }
}

}  // namespace

void complete(bool is_double, int dimensions, const ptrdiff_t *shape, int axis_count, const int *axes,
              char *spectrum) {
  bool mirrored[most_axes] = {};
  for (int k = 0; k < axis_count; ++k) mirrored[axes[k]] = true;
  if (is_double) {
    complete_rows(dimensions, shape, mirrored, reinterpret_cast<std::complex<double> *>(spectrum));
  } else {
    complete_rows(dimensions, shape, mirrored, reinterpret_cast<std::complex<float> *>(spectrum));
  }
}

}  // namespace qkr::fft
