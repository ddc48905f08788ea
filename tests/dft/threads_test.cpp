// Teams of the library and threads of the caller: the same bits at any number, and who is let in.
#include <algorithm>
#include <atomic>
#include <barrier>
#include <cstdarg>
#include <cstdlib>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

#include "dft/descriptor/record.h"
#include "dft/threads/runtime.h"
#include "service/internal.h"
#include "tests/dft/combinations.h"
#include "tests/support/child.h"
#include "tests/support/levels.h"

namespace qkr::tests {
namespace {

// A runtime of the kind of OpenMP made of standard threads, which the thread sanitizer understands, with as
// many members as a test asks for.
struct Team {
  int32_t threads = 1;       // what omp_get_max_threads_ answers, and the members of a team
  bool may_fork = true;      // what __kmpc_ok_to_fork answers
  bool in_parallel = false;  // what omp_in_parallel_ answers
  int forks = 0, serialized = 0;
} team;

using dft::CriticalName;
using dft::Location;

thread_local int32_t member = 0;
std::mutex critical;
std::barrier<> *meeting = nullptr;

int32_t thread_number(Location *) { return member; }
int32_t ok_to_fork(Location *) { return team.may_fork; }
void fork_call(Location *, int32_t, dft::Region region, ...) {
  ++team.forks;
  va_list arguments;
  va_start(arguments, region);
  void *shared = va_arg(arguments, void *);
  va_end(arguments);
  std::barrier<> here(team.threads);
  meeting = &here;
  std::vector<std::thread> others;
  const auto run = [&](int32_t number) {
    member = number;
    int32_t thread = number, own = number;
    reinterpret_cast<void (*)(int32_t *, int32_t *, void *)>(region)(&thread, &own, shared);
  };
  for (int32_t i = 1; i < team.threads; ++i) others.emplace_back(run, i);
  run(0);
  for (std::thread &thread : others) thread.join();
  meeting = nullptr;
}
void serialized(Location *, int32_t) { ++team.serialized; }
void end_serialized(Location *, int32_t) {}
// Schedule 34: one run of iterations a member.
void static_init(Location *, int32_t, int32_t schedule, int32_t *last, int32_t *lower, int32_t *upper,
                 int32_t *, int32_t, int32_t) {
  if (schedule != 34) abort();
  if (!meeting) return;  // a serialized region has one member
  const int32_t count = *upper - *lower + 1, chunk = (count + team.threads - 1) / team.threads;
  const int32_t first = *lower + member * chunk, end = *upper;
  *lower = first;
  *upper = std::min(first + chunk - 1, end);
  *last = *upper == end;
}
void static_fini(Location *, int32_t) {}
void barrier(Location *, int32_t) {
  if (meeting) meeting->arrive_and_wait();
}
void enter(Location *, int32_t, CriticalName *) { critical.lock(); }
void leave(Location *, int32_t, CriticalName *) { critical.unlock(); }
int32_t in_parallel() { return team.in_parallel; }
int32_t max_threads() { return team.threads; }

const dft::OpenMP standard_threads = {thread_number,  ok_to_fork,  fork_call,   serialized,
                                      end_serialized, static_init, static_fini, barrier,
                                      enter,          leave,       in_parallel, max_threads};

// The library decides to run parallel, on `team`; until the object goes.
struct WithTeam {
  const int32_t serial_before = serial_decision;
  explicit WithTeam(int32_t threads) {
    serial_decision = 0;
    team = {.threads = threads};
    dft::force_runtime(&standard_threads);
  }
  ~WithTeam() {
    dft::force_runtime(nullptr);
    serial_decision = serial_before;
  }
};

// Shapes with every way of sharing out: batches, planes and grids, small and large, with fewer items than
// threads.
std::vector<Case> cases_to_share() {
  const struct {
    std::vector<int32_t> lengths;
    int32_t transforms;
  } shapes[] = {{{64}, 1},      {{8}, 3},          {{16}, 33},      {{256}, 5},
                {{32, 64}, 1},  {{128, 64}, 1},    {{4, 8}, 7},     {{1024, 2}, 1},
                {{2048, 1}, 1}, {{32, 32, 32}, 1}, {{16, 4, 8}, 1}, {{64, 1, 512}, 1},
                {{60}, 9},      {{151}, 4},        {{45, 75}, 1},   {{15, 33, 70}, 1}};
  std::vector<Case> all;
  for (const auto &[lengths, transforms] : shapes)
    for (const Case &c : cases({.lengths = {lengths},
                         .kinds = {complex_kind, half_spectrum, packed_perm},
                         .transforms = {transforms},
                         .layouts = {Layout::contiguous, Layout::interleaved},
                         .scales = {0.7},
                         .one_array = {false, true}}))
      all.push_back(c);
  return all;
}

TEST(Threads, SameBitsOnAnyTeamAndAtEveryLevel) {
  int forks = 0;
  for (const Case &c : cases_to_share()) {
    SCOPED_TRACE(name(c));
    const Outcome alone = run(c);
    ASSERT_EQ(alone.code, DFTX_NO_ERROR);
    for (const int32_t threads : {2, 3, 8}) {
      const WithTeam with(threads);
      ASSERT_EQ(run(c).bytes, alone.bytes) << threads << " threads";
      forks += team.forks;
    }
    for_each_level([&](const char *level) { EXPECT_EQ(run(c).bytes, alone.bytes) << level; });
  }
  EXPECT_GT(forks, 0);
}

// Which calls fork, and how often: the thresholds, and the one form that treats a plane as it does a grid.
TEST(Threads, OnlyLargeWorkIsSharedOut) {
  const struct {
    int32_t precision;
    char kind;  // complex, or real with half spectrum
    std::vector<int32_t> lengths;
    int32_t transforms;
    int forks_forward, forks_backward;
  } rows[] = {
      {DFTX_DOUBLE, 'c', {1024}, 1, 0, 0},       {DFTX_DOUBLE, 'c', {2}, 2, 1, 1},
      {DFTX_DOUBLE, 'c', {2}, 0, 0, 0},          {DFTX_DOUBLE, 'c', {32, 63}, 1, 0, 0},
      {DFTX_DOUBLE, 'c', {32, 64}, 1, 2, 0},     {DFTX_SINGLE, 'c', {32, 64}, 1, 2, 2},
      {DFTX_DOUBLE, 'c', {250, 128}, 1, 2, 2},   {DFTX_DOUBLE, 'c', {2048, 1}, 1, 1, 0},
      {DFTX_DOUBLE, 'c', {32, 32, 31}, 1, 0, 0}, {DFTX_DOUBLE, 'c', {32, 32, 32}, 1, 2, 2},
      {DFTX_DOUBLE, 'r', {1024}, 1, 0, 0},       {DFTX_DOUBLE, 'r', {31}, 1, 0, 0},
      {DFTX_DOUBLE, 'r', {8}, 3, 0, 0},          {DFTX_DOUBLE, 'r', {8}, 4, 1, 1},
      {DFTX_DOUBLE, 'r', {32, 63}, 1, 0, 0},     {DFTX_SINGLE, 'r', {32, 64}, 1, 2, 2},
      {DFTX_DOUBLE, 'r', {2048, 1}, 1, 1, 0},    {DFTX_DOUBLE, 'r', {32, 32, 32}, 1, 2, 2},
  };
  for (const auto &[precision, kind, lengths, transforms, forks_forward, forks_backward] : rows)
    for (const bool forward : {true, false}) {
      Case c;
      c.precision = precision;
      c.lengths = lengths;
      c.transforms = transforms;
      c.forward = forward;
      if (kind == 'r') c.domain = DFTX_REAL, c.storage = DFTX_COMPLEX_COMPLEX, c.format = DFTX_CCE_FORMAT;
      SCOPED_TRACE(name(c));
      const WithTeam with(4);
      EXPECT_EQ(run(c).code, DFTX_NO_ERROR);
      EXPECT_EQ(team.forks, forward ? forks_forward : forks_backward);
    }
}

Case plane() {
  Case c;
  c.lengths = {128, 64};
  return c;
}

// A runtime that does not want to fork, a call from within a region of the caller, a process that is to run
// serial, and a program without a runtime.
TEST(Threads, RunAloneWhereTheyAreNotWanted) {
  const Case c = plane();
  const Outcome alone = run(c);
  {
    const WithTeam with(4);
    team.may_fork = false;
    EXPECT_EQ(run(c).bytes, alone.bytes);
    EXPECT_EQ(team.forks, 0);
    EXPECT_EQ(team.serialized, 2);
  }
  for (const bool at_commit : {true, false}) {
    const WithTeam with(4);
    DftDescriptor *descriptor = nullptr;
    team.in_parallel = at_commit;
    ASSERT_EQ(prepare(c, &descriptor), DFTX_NO_ERROR);
    team.in_parallel = !at_commit;
    EXPECT_EQ(compute(c, descriptor).bytes, alone.bytes);
    EXPECT_EQ(team.forks, 0);
    team.in_parallel = false;
    EXPECT_EQ(compute(c, descriptor).bytes, alone.bytes);
    EXPECT_EQ(team.forks, at_commit ? 0 : 2);
    serial_decision = 1;
    EXPECT_EQ(compute(c, descriptor).bytes, alone.bytes);
    EXPECT_EQ(team.forks, at_commit ? 0 : 2);
    qkr_dft_def_free_descriptor_external(&descriptor);
  }
  const WithTeam with(4);
  dft::force_runtime(nullptr);
  EXPECT_EQ(run(c).bytes, alone.bytes);
}

// In the middle of a first commit, which loads the runtime. Whoever waits for ever is ended by the alarm.
TEST(Threads, ForkedWhileTheRuntimeIsLoaded) {
#if defined __SANITIZE_THREAD__ || defined __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizers' own locks are held in the children of forks";
#endif
  const auto commit = [] {
    DftDescriptor *descriptor = nullptr;
    alarm(5);
    return prepare(plane(), &descriptor);
  };
  const Environment one_thread = {{"OMP_NUM_THREADS", "1"}};
  for (int delay = 0; delay < 20; ++delay) {
    const auto fork_meanwhile = [&] {
      serial_decision = 0;
      std::thread(commit).detach();
      usleep(150 * delay);
      return in_child(one_thread, commit);
    };
    EXPECT_EQ(in_child(one_thread, fork_meanwhile), DFTX_NO_ERROR) << delay;
  }
}

// A failure in one chunk is the answer; the others run on.
TEST(Threads, FailureOfAChunkIsTheAnswer) {
  const WithTeam with(4);
  DftDescriptor *descriptor = nullptr;
  const Case c = plane();
  ASSERT_EQ(prepare(c, &descriptor), DFTX_NO_ERROR);
  static std::atomic<int> calls;
  calls = 0;
  descriptor->rows[dft::forward] = nullptr;  // line by line
  descriptor->complex_line[dft::forward] = [](const void *, void *, const DftDescriptor *, uint8_t *) {
    return calls++ == 5 ? int32_t{DFTX_ENGINE_ERROR} : int32_t{DFTX_NO_ERROR};
  };
  EXPECT_EQ(compute(c, descriptor).code, DFTX_ENGINE_ERROR);
  EXPECT_EQ(team.forks, 1);
  EXPECT_GE(calls, 48);
  qkr_dft_def_free_descriptor_external(&descriptor);
}

class CallersThreads : public testing::TestWithParam<int> {};

TEST_P(CallersThreads, ComputeAtATime) {
  for (Case c : cases({.lengths = {{128, 64}, {64}},
                .precisions = {DFTX_DOUBLE},
                .kinds = {complex_kind, packed_ccs},
                .forward = {true},
                .layouts = {Layout::contiguous}})) {
    SCOPED_TRACE(name(c));
    const Outcome alone = run(c);
    c.thread_limit = GetParam();
    DftDescriptor *descriptor = nullptr;
    ASSERT_EQ(prepare(c, &descriptor), DFTX_NO_ERROR);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < GetParam(); ++i)
      threads.emplace_back([&] {
        for (int round = 0; round < 20; ++round) {
          const Outcome outcome = compute(c, descriptor);
          wrong += outcome.code != DFTX_NO_ERROR || outcome.bytes != alone.bytes;
        }
      });
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    for (int i = 0; i < GetParam(); ++i) EXPECT_EQ(descriptor->thread_slots[i], 0);
    // One more than that is turned away, without harm to the next.
    for (int i = 0; i < GetParam(); ++i) descriptor->thread_slots[i] = 1;
    EXPECT_EQ(compute(c, descriptor).code, DFTX_NO_FREE_SLOT);
    EXPECT_EQ(compute(c, descriptor).code, DFTX_NO_FREE_SLOT);
    descriptor->thread_slots[GetParam() - 1] = 0;
    EXPECT_EQ(compute(c, descriptor).bytes, alone.bytes);
    qkr_dft_def_free_descriptor_external(&descriptor);
  }
}
INSTANTIATE_TEST_SUITE_P(Of, CallersThreads, testing::Values(2, 3, 8));

}  // namespace
}  // namespace qkr::tests
