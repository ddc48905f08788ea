#include "tests/dft/team.h"

#include <algorithm>
#include <barrier>
#include <cstdarg>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

#include "service/internal.h"

namespace qkr::tests {

Team team;

namespace {

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

}  // namespace

const dft::OpenMP standard_threads = {thread_number,  ok_to_fork,  fork_call,   serialized,
                                      end_serialized, static_init, static_fini, barrier,
                                      enter,          leave,       in_parallel, max_threads};

WithTeam::WithTeam(int32_t threads) : serial_before_(serial_decision) {
  serial_decision = 0;
  team = {};
  team.threads = threads;
  dft::force_runtime(&standard_threads);
}
WithTeam::~WithTeam() {
  dft::force_runtime(nullptr);
  serial_decision = serial_before_;
}

}  // namespace qkr::tests
