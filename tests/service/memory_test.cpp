// The work-buffer cache. Records belong to threads, so every test looks at them from fresh ones.
#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
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
  return handed_out.emplace_back(malloc(size > cache_ceiling / 2 ? 1 : size));
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

// Of the free slots an exact fit, a larger one, a fresh slot, a smaller one, in this order, the lowest of
// each.
TEST_F(Cache, SlotPreference) {
  constexpr uint64_t sizes_asked[] = {0, 1, 10, 20, 20, 30, cache_ceiling, cache_ceiling + 1};
  std::mt19937 random(1);
  for (int round = 0; round < 100; ++round)
    in_fresh_thread([&] {
      const ThreadCache &cache = *own_cache();
      const size_t earlier = handed_out.size() - given_back.size();
      Blocks lent;
      size_t beyond = 0;            // blocks that are lent and untracked
      std::vector<uint64_t> sizes;  // of the slots, as they should be
      std::vector<int32_t> busy;
      for (int step = 0; step < 100; ++step) {
        int slot = untracked;
        if (!lent.empty() && random() % 2) {
          std::swap(lent[random() % lent.size()], lent.back());
          slot = slot_of(lent.back());
          qkr_serv_deallocate(lent.back());
          lent.pop_back();
          slot == untracked ? --beyond : busy[slot] = 0;
        } else {
          const uint64_t size = sizes_asked[random() % std::size(sizes_asked)];
          const auto first = [&](auto fits) {
            for (size_t i = 0; i < sizes.size() && slot == untracked; ++i)
              if (!busy[i] && fits(sizes[i])) slot = static_cast<int>(i);
          };
          if (size <= cache_ceiling) {
            first([=](uint64_t own) { return own == size; });
            first([=](uint64_t own) { return own > size; });
            if (slot == untracked && sizes.size() < cache_slots) {
              slot = static_cast<int>(sizes.size());
              sizes.push_back(size);
              busy.push_back(0);
            }
            first([=](uint64_t own) { return own < size; });
          }
          lent.push_back(qkr_serv_allocate(size));
          EXPECT_EQ(slot_of(lent.back()), slot);
          slot == untracked ? ++beyond : busy[slot] = 1;
          if (slot != untracked) sizes[slot] = std::max(sizes[slot], size);
        }
        EXPECT_EQ(handed_out.size() - given_back.size(), earlier + cache.count + beyond);
        EXPECT_EQ(cache.total, std::accumulate(sizes.begin(), sizes.end(), uint64_t{0}));
        ASSERT_EQ(std::vector(cache.size, cache.size + cache.count), sizes);
        ASSERT_EQ(std::vector(cache.busy, cache.busy + cache.count), busy);
      }
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

// That of every registered thread, once; a slot whose block is null is one like others until then. With its
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
    EXPECT_TRUE(std::count(cache.buffer, cache.buffer + cache_slots, nullptr) == cache_slots &&
                std::count(cache.busy, cache.busy + cache_slots, 0) == cache_slots);
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
    out_of_memory = true;
    EXPECT_EQ(qkr_serv_allocate(100), nullptr);
    out_of_memory = false;
    EXPECT_TRUE(!cache.buffer[0] && cache.busy[0] == 1 && cache.total == 100);
    EXPECT_EQ(slot_of(qkr_serv_allocate(100)), 1);
    qkr_serv_freebuffers();
    EXPECT_EQ(given_back, handed_out);  // and no null
  });
  freed.release();
  other.join();
  EXPECT_EQ(given_back, Blocks{handed_out.back()});
  qkr_serv_deallocate(lent);
  EXPECT_EQ(given_back, Blocks({handed_out.back(), lent}));
}

TEST_F(Cache, ThreadsThatEndMakeRoomInTheRegistry) {
  in_fresh_thread([] {
    qkr_serv_deallocate(qkr_serv_allocate(1));
    for (int i = 0; i < 2000; ++i) in_fresh_thread([] { qkr_serv_deallocate(qkr_serv_allocate(2)); });
    EXPECT_TRUE(given_back.size() == 2000 && registered_count == 1 && registered_caches[1] == own_cache());
  });
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
