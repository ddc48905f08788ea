// What happens without memory: the first, second, ... allocation of an operation fails, each is answered,
// nothing is left behind, and the descriptor is good for another try.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <qkr/service.h>

#include "service/internal.h"
#include "tests/dft/combinations.h"
#include "tests/dft/team.h"
#include "tests/support/levels.h"

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

// Work memory that ends at a page which must not be touched; 16 bytes are what an allocator aligns to.
std::map<void *, std::unique_ptr<Guarded<char>>> guarded_blocks;
void *allocate_guarded(size_t bytes) {
  auto block = std::make_unique<Guarded<char>>((bytes + 15) / 16 * 16, Edge::end);
  void *data = block->data();
  guarded_blocks[data] = std::move(block);
  return data;
}
void free_guarded(void *block) { guarded_blocks.erase(block); }

// Every driver: lines where they stand, columns, strips, copies one by one, planes and grids in all formats.
TEST_F(Memory, BetweenGuardedPages) {
  i_malloc = allocate_guarded;
  i_free = free_guarded;
  int computed = 0;
  const auto check = [&](const Case &c) {
    if (testing::Test::HasFatalFailure()) return;
    SCOPED_TRACE(name(c));
    const Outcome outcome = run(c);
    ASSERT_EQ(outcome.code, DFTX_NO_ERROR);
    ASSERT_FALSE(outcome.strayed);
    ++computed;
  };
  for_each_level([&](const char *) {
    for (const std::vector<int32_t> &lengths : std::vector<std::vector<int32_t>>{
             {8}, {7}, {60}, {512}, {181}, {16, 32}, {5, 7}, {6, 512}, {8, 1}, {4, 8, 15}})
      for (const int32_t precision : {DFTX_SINGLE, DFTX_DOUBLE})
        for (const bool forward : {true, false})
          for (const int32_t transforms : {1, lengths.size() == 1 ? 19 : 2})
            for (const Layout layout : {Layout::contiguous, Layout::interleaved, Layout::spread})
              for (const Edge edge : {Edge::end, Edge::start}) {
                Case c;
                c.lengths = lengths;
                c.precision = precision;
                c.forward = forward;
                c.transforms = transforms;
                c.layout = layout;
                c.guarded = edge;
                check(c);
                c.domain = DFTX_REAL;
                for (const int32_t format :
                     {DFTX_CCE_FORMAT, DFTX_CCS_FORMAT, DFTX_PACK_FORMAT, DFTX_PERM_FORMAT}) {
                  c.format = format;
                  c.storage = format == DFTX_CCE_FORMAT ? DFTX_COMPLEX_COMPLEX : DFTX_COMPLEX_REAL;
                  if (c.storage == DFTX_COMPLEX_REAL && lengths.size() == 3) continue;
                  for (const bool in_place : {false, true}) {
                    c.in_place = in_place;
                    if (!in_place || layout == Layout::contiguous || transforms == 1) check(c);
                  }
                }
              }
  });
  i_malloc = malloc;
  i_free = free;
  EXPECT_TRUE(guarded_blocks.empty());
  std::printf("%d transforms between guarded pages\n", computed);
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
