#include "allocations.h"

#include <stdlib.h>

thread_local int qkr::tests::requests_until_failure = -1, qkr::tests::blocks_in_use = 0;

extern "C" {
void *__real_malloc(size_t size);
void __real_free(void *block);
void *__wrap_malloc(size_t size) {
  using namespace qkr::tests;
  if (requests_until_failure >= 0 && requests_until_failure-- == 0) return nullptr;
  ++blocks_in_use;
  return __real_malloc(size);
}
void __wrap_free(void *block) {
  if (block) --qkr::tests::blocks_in_use;
  __real_free(block);
}
}
