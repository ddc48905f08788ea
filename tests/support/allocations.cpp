#include "tests/support/allocations.h"

#include <cstddef>

namespace qkr::tests {
constinit thread_local Allocations allocations;
}

// The block that `allocate` gives, or none where it is to fail.
template <class Allocate>
static void *counted(Allocate allocate) {
  auto &[live, until_failure] = qkr::tests::allocations;
  if (until_failure > 0 && --until_failure == 0) return nullptr;
  void *block = allocate();
  live += block != nullptr;
  return block;
}

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void __real_free(void *block);

void *__wrap_malloc(size_t size) {
  return counted([=] { return __real_malloc(size); });
}
void *__wrap_calloc(size_t count, size_t size) {
  return counted([=] { return __real_calloc(count, size); });
}
void __wrap_free(void *block) {
  qkr::tests::allocations.live -= block != nullptr;
  __real_free(block);
}
}
