// Mutual exclusion, and the ordering that the thread sanitizer sees.
#include <gtest/gtest.h>
#include <semaphore>
#include <thread>
#include <unistd.h>
#include <vector>

#include "service/internal.h"
#include "tests/support/child.h"

using namespace qkr;

TEST(Locks, ExcludeEachOtherOnOneWordOnly) {
  const struct {
    void (*lock)(), (*unlock)();
    uint64_t *word, *other;
  } rows[] = {{qkr_serv_lock, qkr_serv_unlock, &service_lock_word, &dft_lock_word},
              {qkr_serv_dft_lock, qkr_serv_dft_unlock, &dft_lock_word, &service_lock_word}};
  for (const auto &row : rows) {
    long entered = 0;  // neither volatile nor atomic: the lock alone protects it
    const auto hammer = [&] {
      for (int i = 0; i < 200000; ++i) {
        row.lock();
        ++entered;
        row.unlock();
      }
    };
    std::thread first(hammer), second(hammer);
    first.join();
    second.join();
    EXPECT_EQ(entered, 400000);

    row.lock();
    EXPECT_TRUE(*row.word == 1 && *row.other == 0);
    row.unlock();
  }
}

// Threads that meet at the first call of all: reading the environment, registering, deciding.
TEST(Locks, FirstCallsMayRace) {
  environment_read = cache_disabled = serial_decision = -1;
  registered_count = 0;
  constexpr int workers = 4;
  std::vector<int32_t> answers(workers);
  std::vector<std::thread> threads;
  for (int32_t &answer : answers)
    threads.emplace_back([&answer] {
      for (int i = 0; i < 100; ++i) qkr_serv_deallocate(qkr_serv_allocate(64));
      answer = qkr_serv_in_serial();
    });
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(registered_count, 0);
  for (const int32_t answer : answers) EXPECT_EQ(answer, serial_decision);
}

// The thread that holds the locks at a fork is not there to open them in the child, nor are the caches of
// other threads its own. Whoever waits for ever is ended by the alarm.
TEST(Locks, AreOpenInTheChildOfAFork) {
  const auto goes_on = [] {
    alarm(5);
    qkr_serv_lock();
    qkr_serv_unlock();
    qkr_serv_dft_lock();
    qkr_serv_dft_unlock();
    qkr_serv_deallocate(qkr_serv_allocate(64));
    const bool only_own = registered_count == 1 && registered_caches[1] == &thread_cache;
    qkr_serv_freebuffers();
    return only_own ? 0 : 1;
  };
  const auto use_cache = [] { qkr_serv_deallocate(qkr_serv_allocate(64)); };
  std::thread([&] {
    use_cache();
    const void *cached = thread_cache.buffer[0];
    std::binary_semaphore used{0}, forked{0};
    std::thread other([&] {
      use_cache();
      used.release();
      forked.acquire();
    });
    used.acquire();
    EXPECT_EQ(in_child({}, [&] { return thread_cache.buffer[0] == cached ? goes_on() : 2; }), 0);
    std::thread(qkr_serv_lock).join();
    std::thread(qkr_serv_dft_lock).join();
    EXPECT_EQ(in_child({}, goes_on), 0) << "locks held";
    qkr_serv_unlock();
    qkr_serv_dft_unlock();
    forked.release();
    other.join();
  }).join();
}
