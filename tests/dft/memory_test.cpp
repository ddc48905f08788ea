// What happens without memory: the first, second, ... allocation of an operation fails, each is answered,
// nothing is left behind, and the descriptor is good for another try.
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <qkr/service.h>

#include "service/internal.h"
#include "tests/dft/combinations.h"
#include "tests/dft/team.h"

namespace {
thread_local long live = 0;           // blocks of the library and the test not yet freed
thread_local long until_failure = 0;  // the allocation that fails: 1 is the next, 0 none
}  // namespace

// The linker sends malloc and free here (--wrap); the C and C++ libraries keep their own.
extern "C" {
void *__real_malloc(size_t size);
void __real_free(void *block);
void *__wrap_malloc(size_t size) {
  if (until_failure > 0 && --until_failure == 0) return nullptr;
  void *block = __real_malloc(size);
  live += block != nullptr;
  return block;
}
void __wrap_free(void *block) {
  live -= block != nullptr;
  __real_free(block);
}
}

namespace qkr::tests {
namespace {

// Without the cache, whose blocks outlive their use.
class Memory : public testing::Test {
  int32_t disabled_ = cache_disabled;

 protected:
  void SetUp() override {
    QKR_read_env();
    cache_disabled = 1;
  }
  void TearDown() override { cache_disabled = disabled_; }
};

// Runs `operation` until it gets through: how many allocations it makes, or -1.
template <class Operation>
int fail_each(Operation operation) {
  for (int n = 1;; ++n) {
    const long before = live;
    until_failure = n;
    const int32_t code = operation();
    const bool failed = until_failure == 0;
    until_failure = 0;
    if (code != (failed ? DFTX_MEMORY_ERROR : DFTX_NO_ERROR) || live != before) return -1;
    if (!failed) return n - 1;
  }
}

std::vector<Case> cases() {
  std::vector<Case> all;
  for (const std::vector<int32_t> &lengths :
       std::vector<std::vector<int32_t>>{{64}, {512}, {60}, {1009}, {16, 32}, {12, 512}, {4, 8, 15}})
    for (const int32_t domain : {DFTX_COMPLEX, DFTX_REAL})
      for (const bool forward : {true, false})
        for (const Layout layout : {Layout::contiguous, Layout::interleaved, Layout::spread})
          for (const int32_t limit : {1, 3})
            for (const bool in_place : {false, true}) {
              Case c;
              c.lengths = lengths;
              c.domain = domain;
              c.storage = DFTX_COMPLEX_COMPLEX;
              c.format = DFTX_CCE_FORMAT;
              c.forward = forward;
              c.layout = layout;
              c.thread_limit = limit;
              c.in_place = in_place;
              c.transforms = 1;
              if (in_place && (domain == DFTX_COMPLEX || layout == Layout::interleaved)) continue;
              all.push_back(c);
            }
  return all;
}

TEST_F(Memory, EachAllocationOfCreateAndCommit) {
  for (const Case &c : cases()) {
    SCOPED_TRACE(name(c));
    const int allocations = fail_each([&] {
      DftDescriptor *descriptor = nullptr;
      const int32_t code = prepare(c, &descriptor);
      if (descriptor) {
        EXPECT_EQ(qkr_dft_def_free_descriptor_external(&descriptor), DFTX_NO_ERROR);
      }
      return code;
    });
    EXPECT_GE(allocations, 1);
  }
}

TEST_F(Memory, EachAllocationOfCompute) {
  int in_all = 0;
  for (const Case &c : cases()) {
    SCOPED_TRACE(name(c));
    DftDescriptor *descriptor = nullptr;
    ASSERT_EQ(prepare(c, &descriptor), DFTX_NO_ERROR);
    const Outcome good = compute(c, descriptor);
    const int allocations = fail_each([&] { return compute(c, descriptor).code; });
    ASSERT_GE(allocations, 0);
    in_all += allocations;
    EXPECT_EQ(compute(c, descriptor).bytes, good.bytes);
    qkr_dft_def_free_descriptor_external(&descriptor);
  }
  EXPECT_GT(in_all, 0);
}

// After a failed commit the same descriptor commits.
TEST_F(Memory, CommitAgain) {
  for (const Case &c : cases()) {
    SCOPED_TRACE(name(c));
    DftDescriptor *descriptor = nullptr;
    ASSERT_EQ(prepare(c, &descriptor), DFTX_NO_ERROR);
    until_failure = 1;
    const int32_t code = qkr_dft_def_commit_descriptor_external(&descriptor);
    const bool failed = until_failure == 0;
    until_failure = 0;
    EXPECT_EQ(code, failed ? DFTX_MEMORY_ERROR : DFTX_NO_ERROR);
    if (failed) {
      EXPECT_EQ(compute(c, descriptor).code, DFTX_NOT_COMMITTED);
    }
    EXPECT_EQ(qkr_dft_def_commit_descriptor_external(&descriptor), DFTX_NO_ERROR);
    EXPECT_EQ(compute(c, descriptor).code, DFTX_NO_ERROR);
    qkr_dft_def_free_descriptor_external(&descriptor);
  }
}

// A limit of threads that no machine has memory for.
TEST_F(Memory, TooManyThreads) {
  i_malloc = [](size_t size) { return size < size_t{1} << 30 ? malloc(size) : nullptr; };
  for (const int32_t length : {8, 1 << 16}) {
    Case c;
    c.lengths = {length};
    c.thread_limit = length == 8 ? INT32_MAX : 1 << 20;
    DftDescriptor *descriptor = nullptr;
    EXPECT_EQ(prepare(c, &descriptor), DFTX_MEMORY_ERROR);
    EXPECT_EQ(qkr_dft_def_free_descriptor_external(&descriptor), DFTX_NO_ERROR);
  }
  i_malloc = malloc;
}

}  // namespace
}  // namespace qkr::tests
