// Measures the errors of vector functions against MPFR and prints them as a Markdown table; fails if one
// exceeds what its contract allows.
#include <algorithm>
#include <future>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>

#include "simd/level.h"
#include "tests/support/complex_functions.h"
#include "tests/support/measure.h"
#include "tests/support/samples.h"
#include "tools/accuracy/peers.h"
#include "tools/accuracy/search.h"

namespace {

using namespace qkr::tests;

constexpr const char usage[] =
    "accuracy [FUNCTION...] [--points N] [--exhaustive] [--search RUNS] [--level sse2|avx2|avx512] [--peers] [--markdown "
    "FILE]\n"
    "  FUNCTION         _vxmdExp_HA, or Exp for all precisions; all if none is named\n"
    "  --points N       random inputs for each function, beside the neighbourhoods of notable ones\n"
    "  --exhaustive     every float for functions of one float\n"
    "  --search RUNS    also search the worst input of each function, from RUNS different samples\n"
    "  --level LEVEL    run the kernels of this level\n"
    "  --peers          also measure libm, SLEEF u10 and libmvec, as far as they were found\n"
    "  --markdown FILE  also write the table to FILE\n";

constexpr const char introduction[] =
    "# Accuracy of the vector functions\n\n"
    "Made by `./dev accuracy%s --markdown docs/accuracy.md`: at random inputs and around notable ones%s.\n"
    "Errors are in units in the last place of the exact result, as MPFR gives it; a correctly rounded result "
    "has\n"
    "an error of at most 0.5. The bound is what the function promises for results that are normal numbers, "
    "and\n"
    "was measured at every float for functions of one float; smaller results, which have a column of their "
    "own,\n"
    "stay within one subnormal spacing. Of complex functions the larger error of the two parts counts; those\n"
    "of one extended number are measured in its units.\n\n";

struct Options {
  std::vector<std::string> functions;
  uint64_t points = 30'000'000;
  int search_runs = 0;
  bool exhaustive = false, with_peers = false;
  const char *markdown = nullptr;
};

[[noreturn]] void fail(const std::string &message) {
  fprintf(stderr, "accuracy: %s\n%s", message.c_str(), usage);
  exit(2);
}

void choose_level(const std::string &name) {
  const char *const names[] = {"sse2", "avx2", "avx512"};
  const auto found = std::find(std::begin(names), std::end(names), name);
  if (found == std::end(names)) fail("no such level: " + name);
  const auto level = static_cast<qkr::Level>(found - names);
  if (level > qkr::supported_level()) fail("this processor does not support " + name);
  qkr::force_level(level);
}

Options parse(int count, char **words) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string word = words[i];
    const auto value = [&]() -> const char * {
      if (++i == count) fail(word + " needs a value");
      return words[i];
    };
    if (word == "--points") options.points = strtoull(value(), nullptr, 10);
    else if (word == "--exhaustive") options.exhaustive = true;
    else if (word == "--search") options.search_runs = atoi(value());
    else if (word == "--level") choose_level(value());
    else if (word == "--peers") options.with_peers = true;
    else if (word == "--markdown") options.markdown = value();
    else if (word == "--help") printf("%s", usage), exit(0);
    else if (word[0] == '-') fail("unknown option: " + word);
    else options.functions.push_back(word);
  }
  return options;
}

class Report {
 public:
  explicit Report(const Options &options) : options_(options) {
    if (options.markdown && !(file_ = fopen(options.markdown, "w")))
      fail(std::string("cannot write ") + options.markdown);
    if (file_ && options.exhaustive)
      fprintf(file_, introduction, " --exhaustive", ", functions of one float at every float");
    else if (file_) fprintf(file_, introduction, "", "");
    print("| function | bound | largest error | at | pattern | mean error | below normal range | points |\n");
    print("|---|---:|---:|---|---|---:|---:|---:|\n");
  }
  ~Report() {
    if (file_) fclose(file_);
  }

  template <class T>
  void add(const VectorFunction<T> &f) {
    if (!wanted(f.name)) return;
    ++measured_;
    const double bound = error_bound(f.name);
    const Errors<T> errors = run(f);
    row(f, std::string("`") + f.name + "`", decimals(bound, 3), errors);
    if (!(errors.normal.error <= bound)) complain(f.name, "exceeds its bound");
    if (!(errors.subnormal.error <= subnormal_bound))
      complain(f.name, "is off by more than a subnormal spacing");
    if (errors.reference_gap > reference_tolerance<T>) complain(f.name, "has a poor quick reference");
    if (!options_.with_peers) return;
    for (const auto &peer : qkr::tools::peers<T>()) {
      if (strcmp(peer.function, f.name) != 0) continue;
      VectorFunction<T> theirs = f;
      theirs.entry = peer.entry;
      row(theirs, peer.name, "", run(theirs));
    }
  }

  // The errors of both parts, in all of the function's regions.
  template <class E>
  void add(const ComplexFunction<E> &f) {
    if (!wanted(f.name)) return;
    ++measured_;
    const int points = static_cast<int>(std::max<uint64_t>(200, options_.points / 2000));
    std::vector<std::future<Errors<E>>> regions;
    for (const Region &region : f.regions)
      regions.push_back(std::async(std::launch::async, [&] { return measure(f, region, points); }));
    Errors<E> all;
    for (auto &region : regions) all.join(region.get());
    const E z = all.normal.a, w = all.normal.b;
    const auto inputs = [&](auto text) {
      return text(z.re) + ", " + text(z.im) + (f.entry.unary ? "" : "; " + text(w.re) + ", " + text(w.im));
    };
    const double bound = error_bound(f.name);
    line({std::string("`") + f.name + "`", decimals(bound, 3), decimals(all.normal.error, 5),
          inputs(hexadecimal<PartOf<E>>), inputs(pattern<PartOf<E>>), decimals(all.mean(), 4),
          decimals(all.subnormal.error, 4), std::to_string(all.points)});
    if (!(all.normal.error <= bound)) complain(f.name, "exceeds its bound");
    if (!(all.subnormal.error <= subnormal_bound))
      complain(f.name, "is off by more than a subnormal spacing");
  }

  void add(const ExtendedFunction &f) {
    const auto &functions = options_.functions;
    if (!functions.empty() && std::find(functions.begin(), functions.end(), f.name) == functions.end())
      return;
    ++measured_;
    const int points = static_cast<int>(std::max<uint64_t>(2000, options_.points / 500));
    const Worst<long double> worst = measure(f, points).normal;
    const auto text = [](long double x) { return formatted("%La", x); };
    line({std::string("`") + f.name + "`", decimals(f.bound, 3), decimals(worst.error, 5),
          text(worst.a) + (f.entry.binary ? ", " + text(worst.b) : ""), "", "", "",
          std::to_string(points * f.ranges.size())});
    if (!(worst.error <= f.bound)) complain(f.name, "exceeds its bound");
  }

  int exit_code() const { return failed_ || !measured_; }
  bool found_all() const { return measured_ > 0; }

 private:
  // "Exp" selects _vxmdExp_HA and _vxmsExp_HA.
  bool wanted(const std::string &name) const {
    const std::string family = name.substr(5, name.rfind("_HA") - 5);
    const auto &functions = options_.functions;
    return functions.empty() || std::any_of(functions.begin(), functions.end(),
                                            [&](const std::string &f) { return f == name || f == family; });
  }

  template <class T>
  Errors<T> run(const VectorFunction<T> &f) const {
    if constexpr (sizeof(T) == 4)
      if (options_.exhaustive && f.entry.inputs() == 1) return measure_all(f);
    Errors<T> errors = measure(f, options_.points);
    if (options_.search_runs > 0)
      if (const Worst<T> worst = search(f, options_.search_runs); worst.error > errors.normal.error)
        errors.normal = worst;
    return errors;
  }

  template <class T>
  void row(const VectorFunction<T> &f, const std::string &name, const std::string &bound,
           const Errors<T> &errors) {
    const auto both_inputs = [&](auto text) {
      return text(errors.normal.a) + (f.entry.inputs() == 2 ? ", " + text(errors.normal.b) : "");
    };
    const std::string cells[] = {name,
                                 bound,
                                 decimals(errors.normal.error, 5),
                                 both_inputs(hexadecimal<T>),
                                 both_inputs(pattern<T>),
                                 decimals(errors.mean(), 4),
                                 decimals(errors.subnormal.error, 4),
                                 std::to_string(errors.points)};
    line({std::begin(cells), std::end(cells)});
  }

  void line(const std::vector<std::string> &cells) {
    std::string text;
    for (const std::string &cell : cells) text += "| " + cell + " ";
    print(text + "|\n");
  }

  static std::string decimals(double x, int count) { return formatted("%.*f", count, x); }
  template <class T>
  static std::string hexadecimal(T x) {
    return formatted("%a", static_cast<double>(x));
  }
  template <class T>
  static std::string pattern(T x) {
    return formatted("0x%0*llX", static_cast<int>(2 * sizeof(T)),
                     static_cast<unsigned long long>(pattern_of(x)));
  }
  template <class... Values>
  static std::string formatted(const char *format, Values... values) {
    char text[64];
    snprintf(text, sizeof text, format, values...);
    return text;
  }

  void print(const std::string &line) {
    for (FILE *out : {stdout, file_})
      if (out) fputs(line.c_str(), out), fflush(out);
  }

  void complain(const char *name, const char *what) {
    fprintf(stderr, "accuracy: %s %s\n", name, what);
    failed_ = true;
  }

  const Options &options_;
  FILE *file_ = nullptr;
  int measured_ = 0;
  bool failed_ = false;
};

}  // namespace

int main(int count, char **words) {
  const Options options = parse(count, words);
  Report report(options);
  for (const auto &f : vector_functions<double>()) report.add(f);
  for (const auto &f : vector_functions<float>()) report.add(f);
  for (const auto &f : complex_functions<vxm64fc>()) report.add(f);
  for (const auto &f : complex_functions<vxm32fc>()) report.add(f);
  for (const auto &f : extended_functions()) report.add(f);
  if (!report.found_all()) fail("no such function");
  return report.exit_code();
}
