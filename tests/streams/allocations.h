// malloc and free of the library and of the test itself, counted and made to fail at will. The linker sends
// them here (--wrap); the C and C++ libraries keep their own.
#pragma once

#include <cstdint>
#include <functional>

namespace qkr::tests {

struct Allocations {
  long live = 0;           // blocks not yet freed
  long until_failure = 0;  // the allocation that fails: 1 is the next; 0: none
};
// constinit: reached directly, not through a wrapper, whose reference g++'s sanitizer finds to be null.
extern constinit thread_local Allocations allocations;

// Runs `operation`, which returns a status and frees what it made, with its first, second, ... allocation
// failing, until it gets through. Returns how many allocations it makes, or -1 if a failed one did not lead
// to VXS_STATUS_NO_MEMORY, or blocks were left behind.
int fail_each_allocation(const std::function<int32_t()> &operation);

}  // namespace qkr::tests
