// Requests of the library for memory, which the linker sends to plan_test.cpp: the one that
// `requests_until_failure` counts down to fails. Each thread counts its own.
#pragma once

namespace qkr::tests {
extern thread_local int requests_until_failure, blocks_in_use;
}
