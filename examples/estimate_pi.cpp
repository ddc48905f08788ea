// Pi from the share of random points of the unit square that lie within a quarter circle: with one stream of
// pseudo-random numbers, with the same work split over threads that each have a generator of their own, and
// with the points of a low-discrepancy sequence. Then a run that is saved half-way, and goes on after loading
// as if nothing had happened.
//
// estimate_pi OUT_DIR
// Writes OUT_DIR/pi_error.csv and OUT_DIR/half_way.stream.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <numbers>
#include <qkr/qkr.h>
#include <string>
#include <thread>
#include <vector>

constexpr int first_power = 6, last_power = 22;  // numbers of points that are compared: powers of 2
constexpr int runs = 16;                         // of each pseudo-random method; their errors are averaged
constexpr int workers = 4;
constexpr uint32_t mt19937 = 0x800000, mt2203 = 0x900000, sobol = 0x600000;

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "estimate_pi: %s\n", message.c_str());
  std::exit(1);
}

static void check(int32_t status, const char *what) {
  if (status != VXS_STATUS_OK) fail(std::string(what) + ": status " + std::to_string(status));
}

struct DeleteStream {
  void operator()(StreamState *stream) const { __vxsDeleteStream(&stream); }
};
using Stream = std::unique_ptr<StreamState, DeleteStream>;

// Of Sobol's generator, the seed is the number of dimensions. One seed word serves one stream; seeds for many
// that run side by side come from __vxsSeedWords().
static Stream new_stream(uint32_t generator, uint32_t seed) {
  StreamState *stream = nullptr;
  const int32_t status = __vxsNewStreamEx(&stream, generator, 1, &seed);
  Stream owned(stream);
  check(status, "new stream");
  return owned;
}

// Draws points (x, y) from a stream, and counts those within the quarter circle.
class Counter {
 public:
  explicit Counter(Stream stream) : stream_(std::move(stream)) {
    check(__vxsGetBrngProperties(static_cast<int32_t>(__vxsGetStreamStateBrng(stream_.get())), &generator_),
          "generator");
  }

  StreamState *stream() const { return stream_.get(); }

  // The count after `points` points in all.
  long upto(long points) {
    while (points_ < points) {
      const long block = std::min<long>(points - points_, block_size);
      check(generator_.dBrng(stream_.get(), static_cast<int32_t>(2 * block), numbers_.data(), 0, 1), "draw");
      for (long i = 0; i < block; ++i) {
        const double x = numbers_[2 * i], y = numbers_[2 * i + 1];
        inside_ += x * x + y * y < 1;
      }
      points_ += block;
    }
    return inside_;
  }

 private:
  static constexpr long block_size = 1024;
  Stream stream_;
  BrngRecord generator_;
  std::vector<double> numbers_ = std::vector<double>(2 * block_size);
  long points_ = 0, inside_ = 0;
};

static double pi_of(long inside, long points) {
  return 4 * static_cast<double>(inside) / static_cast<double>(points);
}

// Errors after 2^first_power, ..., 2^last_power points.
using Errors = std::vector<double>;

static std::vector<long> counts(Counter counter, long share) {
  std::vector<long> inside;
  for (int power = first_power; power <= last_power; ++power)
    inside.push_back(counter.upto((1L << power) / share));
  return inside;
}

static Errors errors_of(const std::vector<long> &inside) {
  Errors errors;
  for (size_t i = 0; i < inside.size(); ++i)
    errors.push_back(pi_of(inside[i], 1L << (first_power + i)) - std::numbers::pi);
  return errors;
}

// Each worker draws its share from a member of the family of its own.
static Errors parallel_run(uint32_t run) {
  std::vector<std::vector<long>> shares(workers);
  std::vector<std::thread> threads;
  for (uint32_t w = 0; w < workers; ++w)
    threads.emplace_back(
        [&shares, w, run] { shares[w] = counts(Counter(new_stream(mt2203 + w, run)), workers); });
  for (std::thread &thread : threads) thread.join();
  std::vector<long> inside(shares[0].size());
  for (const auto &share : shares)
    for (size_t i = 0; i < inside.size(); ++i) inside[i] += share[i];
  return errors_of(inside);
}

// Root of the mean square over several runs.
template <class Run>
static Errors typical_errors(Run run) {
  Errors squares(last_power - first_power + 1);
  for (uint32_t seed = 1; seed <= runs; ++seed) {
    const Errors errors = run(seed);
    for (size_t i = 0; i < squares.size(); ++i) squares[i] += errors[i] * errors[i] / runs;
  }
  for (double &error : squares) error = std::sqrt(error);
  return squares;
}

static void save_and_go_on(const std::string &file) {
  constexpr long half = 500'000;
  const long uninterrupted = Counter(new_stream(mt19937, 2026)).upto(2 * half);

  Counter first(new_stream(mt19937, 2026));
  const long before = first.upto(half);
  check(__vxsSaveStreamF(first.stream(), file.c_str(), -1), "save");
  StreamState *loaded = nullptr;
  check(__vxsLoadStreamF(&loaded, file.c_str()), "load");
  const long after = Counter(Stream(loaded)).upto(half);

  std::printf("%ld points in one go:                %.6f\n", 2 * half, pi_of(uninterrupted, 2 * half));
  std::printf("%ld points, saved and loaded half-way: %.6f, %s\n", 2 * half, pi_of(before + after, 2 * half),
              before + after == uninterrupted ? "the same to the last point" : "NOT THE SAME");
}

int main(int argc, char **argv) {
  if (argc != 2) fail("usage: estimate_pi OUT_DIR");
  const std::string out_dir = argv[1];

  const Errors plain =
      typical_errors([](uint32_t seed) { return errors_of(counts(Counter(new_stream(mt19937, seed)), 1)); });
  const Errors parallel = typical_errors(parallel_run);
  Errors quasi = errors_of(counts(Counter(new_stream(sobol, 2)), 1));
  for (double &error : quasi) error = std::fabs(error);

  std::ofstream csv(out_dir + "/pi_error.csv");
  csv << "points,plain,parallel,sobol\n";
  for (size_t i = 0; i < plain.size(); ++i)
    csv << (1L << (first_power + i)) << ',' << plain[i] << ',' << parallel[i] << ',' << quasi[i] << '\n';
  if (!csv.flush()) fail("cannot write " + out_dir + "/pi_error.csv");

  std::printf("error of pi with %ld points\n", 1L << last_power);
  std::printf("  MT19937, one stream        %.2e  (typical of %d runs)\n", plain.back(), runs);
  std::printf("  MT2203, %d threads          %.2e  (typical of %d runs)\n", workers, parallel.back(), runs);
  std::printf("  Sobol points               %.2e\n\n", quasi.back());
  save_and_go_on(out_dir + "/half_way.stream");
}
