#include "tests/streams/allocations.h"

#include <cstdlib>
#include <qkr/streams.h>

namespace qkr::tests {
constinit thread_local Allocations allocations;
}

using qkr::tests::allocations;

static bool fails() { return allocations.until_failure > 0 && --allocations.until_failure == 0; }

static void *counted(void *block) {
  allocations.live += block != nullptr;
  return block;
}

extern "C" {
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void __real_free(void *block);

void *__wrap_malloc(size_t size) {
  if (fails()) return nullptr;
  return counted(__real_malloc(size));
}

void *__wrap_calloc(size_t count, size_t size) {
  if (fails()) return nullptr;
  return counted(__real_calloc(count, size));
}

void __wrap_free(void *block) {
  allocations.live -= block != nullptr;
  __real_free(block);
}
}

int qkr::tests::fail_each_allocation(const std::function<int32_t()> &operation) {
  for (int n = 1;; ++n) {
    const long before = allocations.live;
    allocations.until_failure = n;
    const int32_t status = operation();
    const bool failed = allocations.until_failure == 0;
    allocations.until_failure = 0;
    if (status != (failed ? VXS_STATUS_NO_MEMORY : VXS_STATUS_OK) || allocations.live != before) return -1;
    if (!failed) return n - 1;
  }
}
