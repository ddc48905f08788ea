// What happens without memory: the first, second, ... allocation of an operation fails, each is answered,
// nothing is left behind, and the descriptor is good for another try.
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

#include "tests/dft/combinations.h"
#include "tests/support/allocations.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

// A descriptor whose commit failed commits the next time.
TEST(Memory, EachAllocationOfAnOperation) {
  const WithoutCache without_cache;
  int in_all = 0;
  for (const Case &c : cases({.lengths = {{64}, {512}, {60}, {1009}, {16, 32}, {12, 512}, {4, 8, 15}},
                       .precisions = {DFTX_DOUBLE},
                       .kinds = {complex_kind, half_spectrum},
                       .thread_limits = {1, 3},
                       .one_array = {false, true}})) {
    SCOPED_TRACE(name(c));
    const auto make = [&] {
      DftDescriptor *descriptor = nullptr;
      const int32_t code = prepare(c, &descriptor);
      if (descriptor) {
        EXPECT_EQ(qkr_dft_def_free_descriptor_external(&descriptor), DFTX_NO_ERROR);
      }
      return code;
    };
    EXPECT_GE(allocations_survived(make, DFTX_MEMORY_ERROR), 1);

    DftDescriptor *descriptor = nullptr;
    ASSERT_EQ(prepare(c, &descriptor), DFTX_NO_ERROR);
    const Outcome good = compute(c, descriptor);
    const int made = allocations_survived([&] { return compute(c, descriptor).code; }, DFTX_MEMORY_ERROR);
    ASSERT_GE(made, 0);
    in_all += made;
    fail_each_allocation([&] { return qkr_dft_def_commit_descriptor_external(&descriptor); },
                         [&](int32_t code, bool failed) {
                           EXPECT_EQ(code, failed ? DFTX_MEMORY_ERROR : DFTX_NO_ERROR);
                           const Outcome after = compute(c, descriptor);
                           EXPECT_EQ(after.code, failed ? DFTX_NOT_COMMITTED : DFTX_NO_ERROR);
                           if (!failed) {
                             EXPECT_EQ(after.bytes, good.bytes);
                           }
                         });
    qkr_dft_def_free_descriptor_external(&descriptor);
  }
  EXPECT_GT(in_all, 0);
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
TEST(Memory, BetweenGuardedPages) {
  const WithoutCache without_cache;
  i_malloc = allocate_guarded;
  i_free = free_guarded;
  for (const Case &c : cases({.lengths = {{7}, {512}, {181}, {16, 32}, {5, 7}, {6, 512}, {8, 1}, {4, 8, 15}},
                       .transforms = {1, 2, 19},
                       .one_array = {false, true},
                       .edges = {Edge::end, Edge::start}})) {
    if (c.lengths.size() > 1 && c.transforms > 2) continue;
    for_each_level([&](const char *level) {
      const Outcome outcome = run(c);
      ASSERT_EQ(outcome.code, DFTX_NO_ERROR) << name(c) << ' ' << level;
      ASSERT_FALSE(outcome.strayed) << name(c) << ' ' << level;
    });
  }
  i_malloc = malloc;
  i_free = free;
  EXPECT_TRUE(guarded_blocks.empty());
}

// A descriptor need not end on the thread that made it, and the caches of both threads stay sound: every
// block is freed once, and none is left.
std::mutex blocks_lock;
std::set<void *> blocks;
int wrongly_freed;

TEST(Memory, MadeHereFreedThere) {
  qkr_serv_freebuffers();
  i_malloc = [](size_t size) {
    const std::lock_guard lock(blocks_lock);
    return *blocks.insert(malloc(size)).first;
  };
  i_free = [](void *block) {
    const std::lock_guard lock(blocks_lock);
    if (blocks.erase(block)) free(block);
    else ++wrongly_freed;
  };
  Case c;
  c.lengths = {60, 32};
  for (c.thread_limit = 1; c.thread_limit < 3; ++c.thread_limit) {
    DftDescriptor *descriptor = nullptr;
    ASSERT_EQ(prepare(c, &descriptor), DFTX_NO_ERROR);
    std::thread([&] {
      EXPECT_EQ(compute(c, descriptor).code, DFTX_NO_ERROR);
      EXPECT_EQ(qkr_dft_def_commit_descriptor_external(&descriptor), DFTX_NO_ERROR);
    }).join();
    EXPECT_EQ(compute(c, descriptor).code, DFTX_NO_ERROR);
    qkr_serv_freebuffers();  // leaves a descriptor alone
    EXPECT_EQ(compute(c, descriptor).code, DFTX_NO_ERROR);
    std::thread([&] { qkr_dft_def_free_descriptor_external(&descriptor); }).join();
    qkr_serv_freebuffers();
  }
  i_malloc = malloc;
  i_free = free;
  EXPECT_EQ(wrongly_freed, 0);
  EXPECT_TRUE(blocks.empty());
}

// A limit of threads that no machine has memory for.
TEST(Memory, TooManyThreads) {
  const WithoutCache without_cache;
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
