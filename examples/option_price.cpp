// What the option to swap one share for another is worth: by simulation, against the closed form. The two
// shares move together, by correlated normal numbers, which are made once from pseudo-random numbers and once
// from evenly spread points. Then histograms of nine distributions.
//
// option_price OUT_DIR
// Writes OUT_DIR/option_error.csv and OUT_DIR/distributions.csv.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <qkr/qkr.h>
#include <string>
#include <vector>

constexpr int first_power = 10, last_power = 20;  // numbers of points that are compared: powers of 2
constexpr int block = 1 << first_power;           // points that are drawn at a time
constexpr uint32_t mt19937 = 0x800000, sobol = 0x600000;

struct Share {
  double price, volatility;  // volatility: deviation of the logarithm after a year
};
constexpr Share gained{100, 0.3}, given{95, 0.2};
constexpr double correlation = 0.4;
constexpr double rate = 0.03, years = 2;  // rate: of interest, continuously compounded

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "option_price: %s\n", message.c_str());
  std::exit(1);
}

static void check(int32_t status, const char *what) {
  if (status != VXS_STATUS_OK) fail(std::string(what) + ": status " + std::to_string(status));
}

class Stream {
 public:
  // Of Sobol's generator, the seed is the number of dimensions.
  Stream(uint32_t generator, uint32_t seed) {
    check(__vxsNewStreamEx(&state_, generator, 1, &seed), "new stream");
  }
  ~Stream() { __vxsDeleteStream(&state_); }
  Stream(const Stream &) = delete;
  Stream &operator=(const Stream &) = delete;
  operator StreamState *() const { return state_; }

 private:
  StreamState *state_ = nullptr;
};

// Of the right to get what is worth `gain` today for what is worth `cost` today, when `deviation` is that of
// the logarithm of their ratio: W. Margrabe, Journal of Finance 33 (1978) 177.
static double closed_form(double gain, double cost, double deviation) {
  const double d = std::log(gain / cost) / deviation;
  const auto normal = [](double x) { return std::erfc(-x / std::numbers::sqrt2) / 2; };
  return gain * normal(d + deviation / 2) - cost * normal(d - deviation / 2);
}

// Of the logarithm of a share's price at the end: geometric Brownian motion that grows at the rate of
// interest.
static double mean_of(const Share &share) {
  return std::log(share.price) + (rate - share.volatility * share.volatility / 2) * years;
}
static double deviation_of(const Share &share) { return share.volatility * std::sqrt(years); }

struct Estimate {
  double price, standard_error;  // standard_error: as of independent points
};

// After 2^first_power, ..., 2^last_power points. `draw` fills a block with pairs of logarithms of prices.
template <class Draw>
static std::vector<Estimate> simulate(Draw draw) {
  const double discount = std::exp(-rate * years);
  std::vector<Estimate> estimates;
  std::vector<double> prices(2 * block);
  double sum = 0, squares = 0;
  for (uint32_t points = block; points <= 1U << last_power; points += block) {
    draw(prices.data());
    _vxmdExp_HA(2 * block, prices.data(), prices.data());
    for (int i = 0; i < block; ++i) {
      const double payoff = std::max(prices[2 * i] - prices[2 * i + 1], 0.0);
      sum += payoff;
      squares += payoff * payoff;
    }
    if (!std::has_single_bit(points)) continue;
    const double mean = sum / points, variance = squares / points - mean * mean;
    estimates.push_back({discount * mean, discount * std::sqrt(variance / (points - 1))});
  }
  return estimates;
}

const double mean[2] = {mean_of(gained), mean_of(given)};
const double cholesky[2][2] = {
    {deviation_of(gained), 0},
    {correlation * deviation_of(given), std::sqrt(1 - correlation * correlation) * deviation_of(given)}};

static std::vector<Estimate> simulate_by_random_points() {
  const Stream stream(mt19937, 2026);
  return simulate([&](double *logarithms) {
    check(_vxsdRngGaussianMV(1, stream, block, logarithms, 2, 0, mean, cholesky[0]), "draw");
  });
}

// Normal numbers by inversion, one from each coordinate: methods that take pairs would spoil the even spread.
static std::vector<Estimate> simulate_by_even_points() {
  const Stream stream(sobol, 2);
  return simulate([&](double *logarithms) {
    check(_vxsdRngUniform(0, stream, 2 * block, logarithms, -1, 1), "draw");
    _vxmdErfInv_HA(2 * block, logarithms, logarithms);
    for (double *pair = logarithms; pair < logarithms + 2 * block; pair += 2) {
      const double first = std::numbers::sqrt2 * pair[0], second = std::numbers::sqrt2 * pair[1];
      pair[0] = mean[0] + cholesky[0][0] * first;
      pair[1] = mean[1] + cholesky[1][0] * first + cholesky[1][1] * second;
    }
  });
}

static void compare_prices(const std::string &file) {
  const double ratio_volatility =
      std::sqrt(gained.volatility * gained.volatility + given.volatility * given.volatility -
                2 * correlation * gained.volatility * given.volatility);
  const double exact = closed_form(gained.price, given.price, ratio_volatility * std::sqrt(years));
  const auto by_random = simulate_by_random_points(), by_even = simulate_by_even_points();

  std::printf("closed form: %.6f\n\n", exact);
  std::printf("          MT19937                             Sobol points\n");
  std::printf(" points   price      error     std. error     price      error\n");
  std::ofstream csv(file);
  csv.precision(12);
  csv << "points,random,random_error,standard_error,even,even_error\n";
  for (size_t i = 0; i < by_random.size(); ++i) {
    const long points = 1L << (first_power + i);
    const Estimate &random = by_random[i], &even = by_even[i];
    const double random_error = random.price - exact, even_error = even.price - exact;
    std::printf("%7ld  %9.6f  %9.6f  %9.6f     %9.6f  %9.6f\n", points, random.price, random_error,
                random.standard_error, even.price, even_error);
    csv << points << ',' << random.price << ',' << random_error << ',' << random.standard_error << ','
        << even.price << ',' << even_error << '\n';
  }
  if (!csv.flush()) fail("cannot write " + file);
}

struct Distribution {
  const char *name, *parameters;
  double from, to;  // of the histogram
  int32_t (*draw)(StreamState *stream, int32_t n, double *out);
  double (*density)(double x);
};

constexpr Distribution distributions[] = {
    {"Gaussian", "mean 0, deviation 1", -4, 4,
     [](auto *s, auto n, auto *out) { return _vxsdRngGaussian(0, s, n, out, 0, 1); },
     [](double x) { return std::exp(-x * x / 2) / std::sqrt(2 * std::numbers::pi); }},
    {"Lognormal", "logarithm of mean 0, deviation 0.5", 0, 4,
     [](auto *s, auto n, auto *out) { return _vxsdRngLognormal(0, s, n, out, 0, 0.5, 0, 1); },
     [](double x) {
       if (x == 0) return 0.0;
       return std::exp(-2 * std::log(x) * std::log(x)) * std::sqrt(2 * std::numbers::inv_pi) / x;
     }},
    {"Exponential", "mean 1", 0, 6,
     [](auto *s, auto n, auto *out) { return _vxsdRngExponential(0, s, n, out, 0, 1); },
     [](double x) { return std::exp(-x); }},
    {"Laplace", "mean 0, scale 1", -6, 6,
     [](auto *s, auto n, auto *out) { return _vxsdRngLaplace(0, s, n, out, 0, 1); },
     [](double x) { return std::exp(-std::fabs(x)) / 2; }},
    {"Weibull", "shape 3, scale 1", 0, 2,
     [](auto *s, auto n, auto *out) { return _vxsdRngWeibull(0, s, n, out, 3, 0, 1); },
     [](double x) { return 3 * x * x * std::exp(-x * x * x); }},
    {"Rayleigh", "scale 1", 0, 3,
     [](auto *s, auto n, auto *out) { return _vxsdRngRayleigh(0, s, n, out, 0, 1); },
     [](double x) { return 2 * x * std::exp(-x * x); }},
    {"Gumbel", "place 0, scale 1", -6, 2,
     [](auto *s, auto n, auto *out) { return _vxsdRngGumbel(0, s, n, out, 0, 1); },
     [](double x) { return std::exp(x - std::exp(x)); }},
    {"Gamma", "shape 3, scale 1", 0, 10,
     [](auto *s, auto n, auto *out) { return _vxsdRngGamma(0, s, n, out, 3, 0, 1); },
     [](double x) { return x * x * std::exp(-x) / 2; }},
    {"Beta", "shapes 2 and 3", 0, 1,
     [](auto *s, auto n, auto *out) { return _vxsdRngBeta(0, s, n, out, 2, 3, 0, 1); },
     [](double x) { return 12 * x * (1 - x) * (1 - x); }}};

// The density is written at both ends of a bin, too, so that a peak between two bins stands in the file.
static void draw_histograms(const std::string &file) {
  constexpr int numbers = 1'000'000, bins = 80;
  const Stream stream(mt19937, 1);
  std::vector<double> drawn(numbers);
  std::ofstream csv(file);
  csv.precision(12);
  csv << "distribution;parameters;from;to;count;density_from;density_middle;density_to\n";
  for (const Distribution &d : distributions) {
    check(d.draw(stream, numbers, drawn.data()), d.name);
    const double width = (d.to - d.from) / bins;
    std::vector<int> counts(bins);
    for (const double x : drawn)
      if (x >= d.from && x < d.to) ++counts[std::min(static_cast<int>((x - d.from) / width), bins - 1)];
    for (int bin = 0; bin < bins; ++bin) {
      const double from = d.from + bin * width, to = d.from + (bin + 1) * width;
      csv << d.name << ';' << d.parameters << ';' << from << ';' << to << ';' << counts[bin] << ';'
          << d.density(from) << ';' << d.density((from + to) / 2) << ';' << d.density(to) << '\n';
    }
  }
  if (!csv.flush()) fail("cannot write " + file);
  std::printf("\nhistograms of %zu distributions, %d numbers each\n", std::size(distributions), numbers);
}

int main(int argc, char **argv) {
  if (argc != 2) fail("usage: option_price OUT_DIR");
  const std::string out_dir = argv[1];
  compare_prices(out_dir + "/option_error.csv");
  draw_histograms(out_dir + "/distributions.csv");
}
