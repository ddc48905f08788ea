// Draws many numbers of every distribution, compares them with the laws of Boost.Math and prints the findings
// as Markdown tables; fails if one is too improbable for a library without fault.
#include <algorithm>
#include <atomic>
#include <boost/math/distributions/chi_squared.hpp>
#include <cmath>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <thread>

#include "tests/support/statistics.h"

namespace {

using namespace qkr::tests;

constexpr const char usage[] =
    "accuracy distributions [--only TYPE] [--samples N | --quick] [--seed N] [--threads N] [--distort E] [--markdown "
    "FILE]\n"
    "  --only TYPE      rows of double, float or whole numbers\n"
    "  --samples N      numbers for each row of the tables; 100 million if not given\n"
    "  --quick          a million\n"
    "  --seed N         of the generators\n"
    "  --threads N      all processors if not given; the numbers do not depend on it\n"
    "  --distort E      compare with wrong laws: probabilities to the power 1 + E, factors of GaussianMV "
    "times\n"
    "                   1 + E, to see that it is noticed\n"
    "  --markdown FILE  also write the tables to FILE\n";

// Of a verdict against a library without fault, had the seed been drawn at random.
constexpr double false_alarm = 1e-3;
constexpr uint32_t mt2203 = 0x900000;

struct Options {
  int64_t samples = 100'000'000;
  uint32_t seed = 20261121;
  unsigned threads = std::max(1u, std::thread::hardware_concurrency());
  double distortion = 0;
  const char *markdown = nullptr;
  std::string only;
};

[[noreturn]] void fail(const std::string &message) {
  fprintf(stderr, "accuracy: %s\n%s", message.c_str(), usage);
  exit(2);
}

Options parse(int count, char **words) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string word = words[i];
    const auto value = [&] {
      if (++i == count) fail(word + " needs a value");
      char *end;
      const double number = strtod(words[i], &end);
      if (end == words[i] || *end) fail(word + " needs a number");
      return number;
    };
    if (word == "--samples") options.samples = static_cast<int64_t>(value());
    else if (word == "--quick") options.samples = 1'000'000;
    else if (word == "--seed") options.seed = static_cast<uint32_t>(value());
    else if (word == "--threads") options.threads = static_cast<unsigned>(value());
    else if (word == "--distort") options.distortion = value();
    else if (word == "--markdown" && i + 1 < count) options.markdown = words[++i];
    else if (word == "--only" && i + 1 < count) options.only = words[++i];
    else if (word == "--help") printf("%s", usage), exit(0);
    else fail("cannot use: " + word);
  }
  if (options.samples < 100'000 || options.samples > 4'000'000'000) fail("samples: 1e5 to 4e9");
  if (options.threads < 1) fail("threads: at least 1");
  return options;
}

struct Row {
  std::string name;
  const char *type;
  std::function<std::vector<Finding>(StreamState *stream, const Options &options)> examine;
  std::vector<Finding> findings = {};
  uint32_t member = 0;  // of the family of generators, the same whatever other rows there are
};

template <class T>
void add_cases(const char *type, std::vector<Row> &rows) {
  for (const Case &a_case : cases<T>())
    if (a_case.has_law)
      rows.push_back({name_of<T>(a_case), type, [a_case](StreamState *stream, const Options &options) {
                        return examine<T>(a_case, stream, options.samples, options.distortion);
                      }});
}

constexpr int32_t block = 8192;

double chi_squared_probability(double statistic, double degrees) {
  return boost::math::cdf(boost::math::complement(boost::math::chi_squared(degrees), statistic));
}

// Of n vectors of GaussianMV: with the inverse of T, which `distortion` makes larger, they are turned back
// into independent standard normal numbers; their means and covariances are two sums of squares.
template <class T>
std::vector<Finding> examine_vectors(const Factor &factor, int32_t storage, int32_t method,
                                     StreamState *stream, int64_t n, double distortion) {
  const int32_t d = factor.size;
  const std::vector<T> mean = factor.means<T>(), t = factor.stored<T>(storage);
  std::vector<double> full = Factor{d, storage == 2}.stored<double>(0), means(d), covariances(d * d), z(d);
  for (double &element : full) element *= 1 + distortion;
  const int32_t vectors = std::max(1, block / d);
  std::vector<T> x(size_t(vectors) * d);
  for (int64_t done = 0; done < n; done += vectors) {
    const int32_t m = static_cast<int32_t>(std::min<int64_t>(vectors, n - done));
    int32_t status;
    if constexpr (sizeof(T) == 8)
      status = _vxsdRngGaussianMV(method, stream, m, x.data(), d, storage, mean.data(), t.data());
    else status = _vxssRngGaussianMV(method, stream, m, x.data(), d, storage, mean.data(), t.data());
    if (status != VXS_STATUS_OK) return {{"status", double(status), 0}};
    for (const T *v = x.data(); v != x.data() + size_t(m) * d; v += d)
      for (int32_t j = 0; j < d; ++j) {
        double rest = v[j] - factor.mean(j);
        for (int32_t i = 0; i < j; ++i) rest -= full[j * d + i] * z[i];
        z[j] = rest / full[j * d + j];
        means[j] += z[j];
        for (int32_t i = 0; i <= j; ++i) covariances[j * d + i] += z[i] * z[j];
      }
  }
  const double count = static_cast<double>(n);
  double from_zero = 0, from_unit = 0;
  for (int32_t j = 0; j < d; ++j) {
    from_zero += means[j] * means[j] / count;
    for (int32_t i = 0; i < j; ++i) from_unit += covariances[j * d + i] * covariances[j * d + i] / count;
    from_unit += std::pow(covariances[j * d + j] - count, 2) / (2 * count);
  }
  return {{"means", from_zero, chi_squared_probability(from_zero, d)},
          {"covariances", from_unit, chi_squared_probability(from_unit, d * (d + 1) / 2.0)}};
}

template <class T>
void add_vectors(const char *type, std::vector<Row> &rows) {
  const char *const storages[] = {"full", "packed", "diagonal"};
  for (const int32_t size : {1, 2, 5, 16, 32})
    for (int32_t storage = 0; storage < 3; ++storage)
      for (int32_t method = 0; method < 2; ++method) {
        if (method == 0 && size != 5) continue;
        const std::string name = "GaussianMV of size " + std::to_string(size) + ", " + storages[storage];
        rows.push_back({name + ", method " + std::to_string(method), type,
                        [=](StreamState *stream, const Options &options) {
                          return examine_vectors<T>({size}, storage, method, stream, options.samples / size,
                                                    options.distortion);
                        }});
      }
}

// Gives each row a generator of its own, and leaves those that are wanted.
void choose_rows(std::vector<Row> &rows, const std::string &only) {
  for (size_t r = 0; r < rows.size(); ++r) rows[r].member = static_cast<uint32_t>(r);
  if (!only.empty()) std::erase_if(rows, [&](const Row &row) { return row.type != only; });
  if (rows.empty()) fail("no rows of type " + only);
}

void examine_all(std::vector<Row> &rows, const Options &options) {
  std::atomic<size_t> next = 0;
  const auto work = [&] {
    for (size_t r; (r = next++) < rows.size();) {
      StreamState *stream = nullptr;
      const uint32_t id = mt2203 + rows[r].member;
      if (__vxsNewStreamEx(&stream, id, 1, &options.seed) != VXS_STATUS_OK) fail("no stream");
      rows[r].findings = rows[r].examine(stream, options);
      __vxsDeleteStream(&stream);
      fprintf(stderr, "\r%zu of %zu ", r + 1, rows.size());
    }
  };
  std::vector<std::thread> threads;
  for (unsigned k = 0; k < options.threads; ++k) threads.emplace_back(work);
  for (std::thread &thread : threads) thread.join();
  fprintf(stderr, "\n");
}

class Report {
 public:
  explicit Report(const char *path) {
    if (path && !(file_ = fopen(path, "w"))) fail(std::string("cannot write ") + path);
  }
  ~Report() {
    if (file_) fclose(file_);
  }
  [[gnu::format(printf, 2, 3)]] void print(const char *format, ...) {
    for (FILE *out : {stdout, file_}) {
      if (!out) continue;
      va_list values;
      va_start(values, format);
      vfprintf(out, format, values);
      va_end(values);
    }
  }

  // Probabilities of the first `probabilities` statistics, deviations of the others.
  void table(const std::vector<Row> &rows, const std::vector<std::string> &statistics, size_t probabilities) {
    print("| distribution | type |");
    for (const std::string &statistic : statistics) print(" %s |", statistic.c_str());
    print("\n|---|---|");
    for (size_t k = 0; k < statistics.size(); ++k) print("---:|");
    print("\n");
    for (const Row &row : rows) {
      print("| %s | %s |", row.name.c_str(), row.type);
      for (size_t k = 0; k < statistics.size(); ++k) {
        const auto found = std::find_if(row.findings.begin(), row.findings.end(),
                                        [&](const Finding &f) { return f.statistic == statistics[k]; });
        if (found == row.findings.end()) print(" |");
        else if (k < probabilities) print(" %.3g |", found->probability);
        else print(" %+.2f |", found->value);
      }
      print("\n");
    }
    print("\n");
  }

 private:
  FILE *file_ = nullptr;
};

// Holm's correction for the number of comparisons: the k-th smallest of m probabilities is judged as one of
// m - k + 1. Returns whether all passed.
bool verdict(const std::vector<const Row *> &rows, Report &report) {
  struct Comparison {
    const Row *row;
    const Finding *finding;
  };
  std::vector<Comparison> all;
  for (const Row *row : rows)
    for (const Finding &finding : row->findings) all.push_back({row, &finding});
  std::sort(all.begin(), all.end(), [](const Comparison &a, const Comparison &b) {
    return a.finding->probability < b.finding->probability;
  });
  size_t rejected = 0;
  std::vector<const Row *> suspects;
  for (; rejected < all.size(); ++rejected) {
    const auto &[row, finding] = all[rejected];
    if (finding->probability * static_cast<double>(all.size() - rejected) >= false_alarm) break;
    fprintf(stderr, "accuracy: %s, %s: %s %g has probability %.3g\n", row->name.c_str(), row->type,
            finding->statistic.c_str(), finding->value, finding->probability);
    if (std::find(suspects.begin(), suspects.end(), row) == suspects.end()) suspects.push_back(row);
  }
  const auto &[row, finding] = all.front();
  report.print(
      "The smallest of %zu probabilities is %.3g (%s, %s: %s); by chance alone one as small would be found "
      "in\n"
      "%.2g of such runs. Verdict: %s.\n",
      all.size(), finding->probability, row->name.c_str(), row->type, finding->statistic.c_str(),
      -std::expm1(static_cast<double>(all.size()) * std::log1p(-finding->probability)),
      rejected ? "the numbers do not follow their laws" : "the numbers follow their laws");
  if (rejected) report.print("%zu of %zu rows were rejected.\n", suspects.size(), rows.size());
  for (const Row *other : rows)
    if (rejected && std::find(suspects.begin(), suspects.end(), other) == suspects.end())
      fprintf(stderr, "accuracy: not rejected: %s, %s\n", other->name.c_str(), other->type);
  return rejected == 0;
}

}  // namespace

int main(int count, char **words) {
  const Options options = parse(count, words);
  std::vector<Row> rows;
  add_cases<double>("double", rows);
  add_cases<float>("float", rows);
  add_cases<int32_t>("whole", rows);
  const size_t scalars = rows.size();
  add_vectors<double>("double", rows);
  add_vectors<float>("float", rows);
  choose_rows(rows, options.only);
  Report report(options.markdown);
  examine_all(rows, options);

  report.print(
      "# Accuracy of the distributions\n\n"
      "Made by `./dev accuracy distributions%s --markdown FILE`: %lld numbers for "
      "each row, "
      "row k\n"
      "(from 0) drawn from member k of MT2203 with seed %u%s. Distribution functions are those of "
      "Boost.Math.\n\n"
      "The first two columns are probabilities of a larger chi-square over about 280 bins, and of a larger\n"
      "distance after Kolmogorov and Smirnov. The others are in standard deviations of the sum: powers of "
      "what\n"
      "lies between the outermost bins, each of which holds %.2g of all numbers, and the correlation of each "
      "number\n"
      "with the next. A column stays empty where the law leaves too little to judge. A library without fault "
      "would\n"
      "be rejected with probability %g, had the seed been drawn at random; Holm's correction for the number "
      "of\n"
      "comparisons sees to that.\n\n",
      options.only.empty() ? "" : (" --only " + options.only).c_str(),
      static_cast<long long>(options.samples), options.seed,
      options.distortion != 0 ? ", WITH DISTORTED LAWS" : "", outermost_probability(double(options.samples)),
      false_alarm);
  const auto border =
      std::find_if(rows.begin(), rows.end(), [=](const Row &row) { return row.member >= scalars; });
  report.table({rows.begin(), border},
               {"chi-square", "Kolmogorov-Smirnov", "mean", "square", "cube", "fourth power", "correlation"},
               2);
  if (border != rows.end())
    report.print(
        "Vectors are turned back into independent standard normal numbers with the inverse of their factor;\n"
        "the columns are probabilities of larger sums of squares, of the means and of the covariances.\n\n");
  if (border != rows.end()) report.table({border, rows.end()}, {"means", "covariances"}, 2);
  std::vector<const Row *> all;
  for (const Row &row : rows) all.push_back(&row);
  return verdict(all, report) ? 0 : 1;
}
