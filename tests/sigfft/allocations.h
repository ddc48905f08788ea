// malloc and free of the library, counted and made to fail at will: the linker sends them here (--wrap).
#pragma once

namespace qkr::tests {

// The request that `requests_until_failure` counts down to fails; below 0 none does. Each thread counts its
// own.
extern thread_local int requests_until_failure, blocks_in_use;

// Calls check(operation(), whether a request failed) with the first, second, ... request failing, until all
// are served. Returns how many that was.
template <class Operation, class Check>
int fail_each_request(Operation operation, Check check) {
  for (int failing = 0;; ++failing) {
    requests_until_failure = failing;
    const auto status = operation();
    const bool all_served = requests_until_failure >= 0;
    requests_until_failure = -1;
    check(status, !all_served);
    if (all_served) return failing;
  }
}

}  // namespace qkr::tests
