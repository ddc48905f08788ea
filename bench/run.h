// What every benchmark program does around its own benchmarks: reads --quick and --filter, runs repetitions
// of all in random order, so that a disturbance of the machine hits all contenders alike, and leaves the
// telling to bench/report.py.
#pragma once

#include <benchmark/benchmark.h>
#include <regex>
#include <string>
#include <vector>

namespace qkr::bench {

// Nothing on the terminal: a line for each repetition would bury the report.
struct Silent : benchmark::BenchmarkReporter {
  bool ReportContext(const Context &) override { return true; }
  void ReportRuns(const std::vector<Run> &) override {}
};

// add(quick, filter) registers the benchmarks whose names match the filter.
template <class Add>
int run(int argc, char **argv, Add add) {
  bool quick = false, to_file = false;
  std::string filter;
  std::vector<std::string> flags;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--quick") quick = true;
    else if (argument == "--filter" && i + 1 < argc) filter = argv[++i];
    else flags.push_back(argument);
    to_file |= argument.starts_with("--benchmark_out=");
  }
  // Flags of the caller come later and win.
  flags.insert(flags.begin(), {argv[0], "--benchmark_enable_random_interleaving=true",
                               quick ? "--benchmark_min_time=0.001" : "--benchmark_min_time=0.002",
                               "--benchmark_repetitions=15"});
  std::vector<char *> pointers;
  for (std::string &flag : flags) pointers.push_back(flag.data());
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 1;
  add(quick, std::regex(filter));
  Silent silent;
  benchmark::RunSpecifiedBenchmarks(to_file ? &silent : nullptr);
  return 0;
}

}  // namespace qkr::bench
