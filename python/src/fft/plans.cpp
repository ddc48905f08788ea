#include "fft/plans.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <pthread.h>
#include <qkr/service.h>

namespace qkr::fft {
namespace {

// The cache: a list, the plan used last at its head. It is short, and a search compares words.
std::mutex mutex;
Plan *head = nullptr;
CacheState state = {.plans = 0, .most_plans = 64, .points = 0, .most_points = size_t{1} << 23};

// A descriptor's tables grow with its lengths, and work memory with their product.
size_t points(const Key &key) {
  size_t product = 1;
  for (int d = 0; d < key.dimensions; ++d) product *= static_cast<size_t>(key.lengths[d]);
  return product;
}

void destroy(Plan *plan) {
  qkr_dft_def_free_descriptor_external(&plan->descriptor);
  free(plan);
}

// Cuts off what exceeds the bounds; the caller destroys it when it has let go of the lock.
Plan *cut_off_excess() {
  size_t plans = 0, total = 0;
  Plan **link = &head;
  for (; *link; link = &(*link)->next) {
    if (++plans > state.most_plans || (total += points((*link)->key)) > state.most_points) break;
  }
  Plan *excess = *link;
  *link = nullptr;
  for (Plan *plan = excess; plan; plan = plan->next) {
    --state.plans;
    state.points -= points(plan->key);
  }
  return excess;
}

void destroy_all(Plan *plan) {
  while (plan) {
    Plan *next = plan->next;
    destroy(plan);
    plan = next;
  }
}

int32_t set(DftDescriptor **descriptor, int32_t parameter, int32_t value) {
  return qkr_dft_def_set_value_intval(descriptor, &parameter, &value);
}
int32_t set(DftDescriptor **descriptor, int32_t parameter, double value) {
  return qkr_dft_def_set_value_dblval(descriptor, &parameter, &value);
}

int32_t configure(DftDescriptor **descriptor, const Key &key) {
  const bool real = key.domain == DFTX_REAL;
  int32_t code = qkr_dft_set_strides(descriptor, key.input_strides, key.output_strides);
  if (!code && real) code = set(descriptor, DFTX_CONJUGATE_EVEN_STORAGE, DFTX_COMPLEX_COMPLEX);
  if (!code && real) code = set(descriptor, DFTX_PLACEMENT, DFTX_NOT_INPLACE);
  if (!code) code = set(descriptor, DFTX_NUMBER_OF_TRANSFORMS, key.count);
  if (!code) code = set(descriptor, DFTX_INPUT_DISTANCE, key.input_distance);
  if (!code) code = set(descriptor, DFTX_OUTPUT_DISTANCE, key.output_distance);
  if (!code) code = set(descriptor, DFTX_FORWARD_SCALE, key.forward_scale);
  if (!code) code = set(descriptor, DFTX_BACKWARD_SCALE, key.backward_scale);
  // With two threads of the caller's at a time, of which one comes, there are none of the library's.
  if (!code && !key.team && !qkr_serv_in_serial()) code = set(descriptor, DFTX_THREAD_LIMIT, 2);
  if (!code) code = qkr_dft_def_commit_descriptor_external(descriptor);
  return code;
}

Plan *make(const Key &key, int32_t *code) {
  auto *plan = static_cast<Plan *>(malloc(sizeof(Plan)));
  *code = DFTX_MEMORY_ERROR;
  if (!plan) return nullptr;
  *plan = {key, nullptr, nullptr};
  *code = qkr_dft_def_create_descriptor_highd(&plan->descriptor, &key.precision, &key.domain, &key.dimensions,
                                              key.lengths);
  if (!*code) *code = configure(&plan->descriptor, key);
  if (!*code) return plan;
  if (plan->descriptor) qkr_dft_def_free_descriptor_external(&plan->descriptor);
  free(plan);
  return nullptr;
}

}  // namespace

bool keep_cache_whole_in_forks() {
  constexpr auto lock = [] { mutex.lock(); };
  constexpr auto unlock = [] { mutex.unlock(); };
  static const bool kept = pthread_atfork(lock, unlock, unlock) == 0;
  return kept;
}

Plan *take(const Key &key, int32_t *code) {
  {
    const std::lock_guard lock(mutex);
    for (Plan **link = &head; *link; link = &(*link)->next) {
      if (memcmp(&(*link)->key, &key, sizeof key)) continue;
      Plan *found = *link;
      *link = found->next;
      --state.plans;
      state.points -= points(key);
      *code = DFTX_NO_ERROR;
      return found;
    }
  }
  return make(key, code);
}

void give_back(Plan *plan) {
  Plan *excess;
  {
    const std::lock_guard lock(mutex);
    plan->next = head;
    head = plan;
    ++state.plans;
    state.points += points(plan->key);
    excess = cut_off_excess();
  }
  destroy_all(excess);
}

CacheState cache_state() {
  const std::lock_guard lock(mutex);
  return state;
}

void limit_cache(size_t most_plans, size_t most_points) {
  Plan *excess;
  {
    const std::lock_guard lock(mutex);
    state.most_plans = most_plans;
    state.most_points = most_points;
    excess = cut_off_excess();
  }
  destroy_all(excess);
}

}  // namespace qkr::fft
