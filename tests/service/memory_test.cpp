// The work-buffer cache. Records belong to threads, so every test looks at them from fresh ones.
#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <semaphore>
#include <thread>
#include <vector>

#include "service/internal.h"

using namespace qkr;

namespace {

using Blocks = std::vector<void *>;

// Behind the hooks: remembers what was asked for and what came back. Blocks live as long as the test, so that
// double releases show without harm.
Blocks handed_out, given_back;
bool out_of_memory;

void *recording_malloc(size_t size) {
  if (out_of_memory) return nullptr;
  handed_out.push_back(malloc(size));
  return handed_out.back();
}
void recording_free(void *block) { given_back.push_back(block); }

class Cache : public testing::Test {
 protected:
  void SetUp() override {
    i_malloc = recording_malloc;
    i_free = recording_free;
    cache_disabled = 0;
    environment_read = 1;
    registered_count = 0;
  }
  void TearDown() override {
    i_malloc = malloc;
    i_free = free;
    for (void *block : handed_out) free(block);
    handed_out.clear();
    given_back.clear();
    registered_count = 0;
  }
};

template <typename Function>
void in_fresh_thread(Function function) {
  std::thread(function).join();
}

// Out of line, because of the null checks of the undefined-behaviour sanitizer: g++ takes their outcome from
// the flags of the addition that makes the address, and the linker turns that into an instruction that sets
// none.
[[gnu::noinline]] ThreadCache *own_cache() { return &thread_cache; }

constexpr int untracked = -1;
int slot_of(const void *block) {
  const ThreadCache &cache = *own_cache();
  const auto found = std::find(cache.buffer, cache.buffer + cache.count, block) - cache.buffer;
  return found < static_cast<long>(cache.count) ? static_cast<int>(found) : untracked;
}

}  // namespace

// Requests in turn, each with the slot that must serve it, and `put` with the number of the request that is
// given back.
TEST_F(Cache, SlotPreference) {
  enum : int64_t { put = -1 };
  using Steps = std::vector<std::pair<int64_t, int>>;
  const struct {
    const char *what;
    Steps steps;
    std::vector<uint64_t> sizes;  // of the slots, at the end
  } rows[] = {
      {"an exact fit comes before a larger block in a lower slot",
       {{300, 0}, {100, 1}, {200, 2}, {put, 0}, {put, 1}, {put, 2}, {200, 2}},
       {300, 100, 200}},
      {"the first larger block, not the best, which keeps its size",
       {{1000, 0}, {20, 1}, {put, 0}, {put, 1}, {10, 0}, {put, 2}, {1000, 0}},
       {1000, 20}},
      {"a fresh slot comes before replacing, then the lowest smaller one that is free goes",
       {{10, 0},
        {20, 1},
        {put, 1},
        {30, 2},
        {put, 2},
        {40, 3},
        {put, 3},
        {50, 4},
        {put, 4},
        {60, 1},
        {60, 2}},
       {10, 60, 60, 40, 50}},
      {"all five lent: the sixth is untracked, and so is its release",
       {{1, 0}, {2, 1}, {3, 2}, {4, 3}, {5, 4}, {1, untracked}, {put, 5}, {put, 2}, {6, 2}},
       {1, 2, 6, 4, 5}},
      {"no bytes are a size like any other",
       {{0, 0}, {0, 1}, {8, 2}, {put, 1}, {0, 1}, {put, 2}, {0, 2}},
       {0, 0, 8}},
      {"the ceiling itself is cached, one byte more is not",
       {{41943041, untracked}, {41943040, 0}, {put, 1}, {41943041, untracked}, {41943040, 0}},
       {41943040}},
  };
  for (const auto &row : rows)
    in_fresh_thread([&] {
      SCOPED_TRACE(row.what);
      const ThreadCache &cache = *own_cache();
      const size_t earlier = handed_out.size() - given_back.size();
      size_t beyond = 0;  // blocks that are lent and untracked
      Blocks blocks;
      for (const auto &[size, number] : row.steps) {
        if (size != put) {
          blocks.push_back(qkr_serv_allocate(static_cast<size_t>(size)));
          EXPECT_EQ(slot_of(blocks.back()), number) << "request " << blocks.size();
        }
        void *const block = size == put ? blocks[number] : blocks.back();
        const int slot = slot_of(block);
        if (size == put) qkr_serv_deallocate(block);
        if (slot == untracked) beyond += size == put ? -1 : 1;
        EXPECT_TRUE(slot == untracked || cache.busy[slot] == (size != put));
        EXPECT_EQ(handed_out.size() - given_back.size(), earlier + cache.count + beyond);
        EXPECT_EQ(cache.total, std::accumulate(cache.size, cache.size + cache.count, uint64_t{0}));
      }
      EXPECT_EQ(std::vector(cache.size, cache.size + cache.count), row.sizes);
    });
}

TEST_F(Cache, ThreadRegistersWithItsFirstCachedRequest) {
  in_fresh_thread([] {
    qkr_serv_allocate(cache_ceiling + 1);
    EXPECT_TRUE(mm_FIRST == 1 && registered_count == 0);
    void *const cached = qkr_serv_allocate(1);
    EXPECT_TRUE(mm_FIRST == 0 && registered_count == 1 && registered_caches[1] == own_cache());
    EXPECT_EQ(own_cache()->owner, QKR_ThreadID());
    cache_disabled = 1;
    EXPECT_EQ(slot_of(qkr_serv_allocate(1)), untracked);
    in_fresh_thread([=] { qkr_serv_deallocate(cached); });  // another thread leaves the slot behind
    EXPECT_TRUE(given_back == Blocks{cached} && own_cache()->busy[0] == 1);
    cache_disabled = 0;
    ++own_cache()->owner;  // a record of someone else serves nothing
    EXPECT_EQ(slot_of(qkr_serv_allocate(1)), untracked);
  });
}

// Also a block of its slot is null, until the cache is freed: that of every registered thread, once. With its
// thread end the blocks of a cache, but for one that is still lent: that goes when it is given back.
TEST_F(Cache, IsFreedAndEndsWithItsThread) {
  void *lent = nullptr;
  std::binary_semaphore filled{0}, freed{0};
  std::thread other([&] {
    const ThreadCache &cache = *own_cache();
    qkr_serv_allocate(1);
    qkr_serv_deallocate(qkr_serv_allocate(2));
    filled.release();
    freed.acquire();
    for (int slot = 0; slot < cache_slots; ++slot)
      EXPECT_TRUE(!cache.buffer[slot] && !cache.size[slot] && !cache.busy[slot]);
    EXPECT_EQ(cache.count + cache.total, 0u);
    qkr_serv_deallocate(handed_out[0]);  // its slot is gone
    EXPECT_EQ(given_back.back(), handed_out[0]);

    lent = qkr_serv_allocate(3);  // refills, but is not registered again
    qkr_serv_deallocate(qkr_serv_allocate(4));
    qkr_serv_freebuffers();
    EXPECT_TRUE(slot_of(lent) == 0 && registered_count == 0);
    given_back.clear();
  });
  filled.acquire();
  in_fresh_thread([&] {
    const ThreadCache &cache = *own_cache();
    qkr_serv_deallocate(nullptr);
    EXPECT_TRUE(given_back.empty());
    out_of_memory = true;
    EXPECT_EQ(qkr_serv_allocate(100), nullptr);
    out_of_memory = false;
    EXPECT_TRUE(!cache.buffer[0] && cache.busy[0] == 1 && cache.size[0] == 100 && cache.total == 100);
    EXPECT_EQ(slot_of(qkr_serv_allocate(100)), 1);
    EXPECT_EQ(registered_count, 2);
    qkr_serv_freebuffers();
    EXPECT_EQ(given_back, handed_out);  // and no null
    EXPECT_EQ(registered_count, 0);
  });
  freed.release();
  other.join();
  EXPECT_EQ(given_back, Blocks{handed_out.back()});
  qkr_serv_deallocate(lent);
  EXPECT_EQ(given_back, Blocks({handed_out.back(), lent}));
}

TEST_F(Cache, ThreadsThatEndMakeRoomInTheRegistry) {
  std::binary_semaphore filled{0}, ended{0};
  std::thread other([&] {
    qkr_serv_deallocate(qkr_serv_allocate(1));
    filled.release();
    ended.acquire();
  });
  filled.acquire();
  for (int i = 0; i < 2000; ++i) in_fresh_thread([] { qkr_serv_deallocate(qkr_serv_allocate(2)); });
  EXPECT_TRUE(given_back.size() == 2000 && registered_count == 1);
  qkr_serv_freebuffers();
  EXPECT_EQ(given_back.back(), handed_out.front());
  ended.release();
  other.join();
  EXPECT_EQ(given_back.size(), 2001u);
}

TEST_F(Cache, ThreadBeyondTheRegistryIsServedButNotReached) {
  in_fresh_thread([] {
    static ThreadCache others;
    std::fill(registered_caches + 1, registered_caches + registry_size, &others);
    registered_count = registry_size - 1;
    void *block = qkr_serv_allocate(1);
    EXPECT_EQ(registered_count, registry_size - 1);
    EXPECT_EQ(std::count(registered_caches, registered_caches + registry_size, own_cache()), 0);
    qkr_serv_freebuffers();
    EXPECT_TRUE(given_back.empty());
    qkr_serv_deallocate(block);
    EXPECT_EQ(qkr_serv_allocate(1), block);
  });
}
