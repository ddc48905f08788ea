// Commit: everything is decided and made here, so that computing allocates nothing in the common case.
#include <initializer_list>
#include <qkr/service.h>

#include "dft/commit/engine.h"
#include "dft/descriptor/blocks.h"
#include "dft/threads/runtime.h"

namespace qkr::dft {
namespace {

constexpr const BackEnd *complex_lines[] = {&complex_codelets, &scrambled_engine, &complex_engine};
constexpr const BackEnd *several_lines[] = {&lanes, &line_by_line};
constexpr const BackEnd *real_lines[] = {&real_codelets, &real_engine};

// The last of each list applies always.
template <int count>
int32_t make_first(const BackEnd *const (&back_ends)[count], const DftDescriptor *head,
                   DftDescriptor *record) {
  for (const Direction direction : {forward, backward}) {
    const Wish wish = {head, record, direction};
    const BackEnd *const *chosen = back_ends;
    while (!(*chosen)->applies(wish)) ++chosen;
    if (const int32_t code = (*chosen)->make(wish)) return code;
  }
  return DFTX_NO_ERROR;
}

// A real transform runs along its first dimension as real lines and along the others as complex ones; in a
// packed format, the columns of real numbers make real lines there too.
int32_t make_record(const DftDescriptor *head, DftDescriptor *record) {
  const bool first = record == head;
  int32_t code = DFTX_NO_ERROR;
  record->leaves_zero = head->configuration.packed_format == DFTX_CCS_FORMAT;
  if (is_complex(head) || !first) code = make_first(complex_lines, head, record);
  if (!code && !is_complex(head)) code = make_first(real_lines, head, record);
  if (!code) code = make_first(several_lines, head, record);
  return code;
}

// What a real transform cannot be asked for.
bool is_served(const DftDescriptor *head) {
  const Configuration &set = head->configuration;
  if (is_complex(head) || set.conjugate_even_storage == DFTX_COMPLEX_COMPLEX) return true;
  return head->dimension < 3 && set.packed_format != DFTX_CCE_FORMAT;
}

int32_t threads_of_a_team() {
  if (qkr_serv_in_serial() == 1) return 1;
  const OpenMP *openmp = openmp_runtime();
  if (!openmp || openmp->omp_in_parallel_()) return 1;
  const int32_t threads = openmp->omp_get_max_threads_();
  return threads > 1 ? threads : 1;
}

template <class Word>
Word *allocate(int64_t count, size_t bytes) {
  size_t size;
  if (__builtin_mul_overflow(static_cast<size_t>(count), bytes, &size)) return nullptr;
  return static_cast<Word *>(allocate_block(size));
}

// Words for the caller's threads that compute at a time.
int32_t make_slots(DftDescriptor *head) {
  const int32_t limit = head->configuration.thread_limit;
  head->thread_slots = allocate<int32_t>(limit, sizeof(int32_t));
  if (!head->thread_slots) return DFTX_MEMORY_ERROR;
  for (int32_t i = 0; i < limit; ++i) head->thread_slots[i] = 0;
  return DFTX_NO_ERROR;
}

// Each thread's slice starts on a line of the cache of its own.
int32_t make_work_buffer(DftDescriptor *head) {
  constexpr ptrdiff_t line = 64;
  head->slice = 0;
  for (int32_t i = 0; i < head->dimension; ++i)
    if (head[i].work_size > head->slice) head->slice = head[i].work_size;
  if (head->slice == 0) return DFTX_NO_ERROR;
  head->slice = (head->slice + line - 1) / line * line;
  const int32_t limit = head->configuration.thread_limit;
  head->work_buffer = allocate<uint8_t>(limit > 1 ? limit : head->threads, static_cast<size_t>(head->slice));
  return head->work_buffer ? DFTX_NO_ERROR : DFTX_MEMORY_ERROR;
}

// One line at unit strides, short enough that looking at anything else would be felt.
bool is_direct(const DftDescriptor *head) {
  const Configuration &set = head->configuration;
  if (set.thread_limit > 1 || head->dimension != 1 || set.number_of_transforms != 1 ||
      !has_unit_strides(head))
    return false;
  const bool in_double = head->precision == DFTX_DOUBLE;
  if (is_complex(head)) return head->length < (in_double ? 512 : 1024);
  return set.packed_format != DFTX_CCS_FORMAT || head->length <= (in_double ? 4096 : 8192);
}

int32_t make_all(DftDescriptor *head) {
  const bool callers_threads = head->configuration.thread_limit > 1;
  head->threads = callers_threads ? 1 : threads_of_a_team();
  if (callers_threads)
    if (const int32_t code = make_slots(head)) return code;
  if (!is_served(head)) return DFTX_UNIMPLEMENTED;
  head->direct_call = is_direct(head);
  for (int32_t i = 0; i < head->dimension; ++i)
    if (const int32_t code = make_record(head, head + i)) return code;
  return make_work_buffer(head);
}

}  // namespace

void release_committed(DftDescriptor *head) {
  const auto give_back = [](auto *&block) {
    free_block(block);
    block = nullptr;
  };
  const auto release = [](const PlanKind &kind, void *&plan) {
    if (plan) kind.release(plan);
    plan = nullptr;
  };
  give_back(head->thread_slots);
  give_back(head->work_buffer);
  for (DftDescriptor *record = head + head->dimension; record-- != head;) {
    release(complex_plan(head), record->spec_complex);
    release(scrambled_plan(head), record->outord_spec);
    release(real_plan(head), record->spec_real);
    record->work_size = 0;
  }
}

}  // namespace qkr::dft

using namespace qkr::dft;

int32_t qkr_dft_def_commit_descriptor_external(DftDescriptor **handle) {
  DftDescriptor *head = *handle;
  if (!head) return DFTX_INVALID_ARGUMENT;
  if (!is_descriptor(head)) return DFTX_BAD_DESCRIPTOR;
  release_committed(head);
  head->commit_state = not_committed;
  const int32_t code = make_all(head);
  if (code) release_committed(head);
  else head->commit_state = committed;
  return code;
}
