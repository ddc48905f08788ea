// malloc, calloc and free of the library and of the test itself, counted and made to fail at will. The linker
// sends them here (qkr_fail_allocations in tests/CMakeLists.txt); the C and C++ libraries keep their own.
#pragma once

#include <qkr/service.h>

#include "service/internal.h"

namespace qkr::tests {

// Each thread counts its own.
struct Allocations {
  long live = 0;           // blocks not yet freed
  long until_failure = 0;  // the allocation that fails: 1 is the next, 0 none
};
// constinit: reached directly, not through a wrapper, whose reference g++'s sanitizer finds to be null.
extern constinit thread_local Allocations allocations;

// Without the cache of work buffers, whose blocks outlive their use.
class WithoutCache {
  int32_t disabled_before_;

 public:
  WithoutCache() {
    QKR_read_env();
    qkr_serv_freebuffers();
    disabled_before_ = cache_disabled;
    cache_disabled = 1;
  }
  ~WithoutCache() { cache_disabled = disabled_before_; }
};

// Calls check(operation(), whether an allocation failed) with the first, second, ... one failing, until the
// operation gets through. Returns how many allocations it makes.
template <class Operation, class Check>
int fail_each_allocation(Operation operation, Check check) {
  for (int n = 1;; ++n) {
    allocations.until_failure = n;
    const auto status = operation();
    const bool failed = allocations.until_failure == 0;
    allocations.until_failure = 0;
    check(status, failed);
    if (!failed) return n - 1;
  }
}

// The same for an operation that answers `failure` then, 0 otherwise, and frees what it made: -1 if not.
template <class Operation>
int allocations_survived(Operation operation, int failure) {
  const long before = allocations.live;
  bool good = true;
  const int made = fail_each_allocation(operation, [&](int status, bool failed) {
    good = good && status == (failed ? failure : 0) && allocations.live == before;
  });
  return good ? made : -1;
}

}  // namespace qkr::tests
