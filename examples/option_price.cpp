// What the option to swap one share for another is worth, and what a plain call is worth: by simulation,
// against the closed forms. The two shares move together, by correlated normal numbers made from
// pseudo-random ones; the call takes evenly spread points instead. Then histograms of eight distributions.
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
constexpr double correlation = 0.4, strike = 105;
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
// the logarithm of their ratio: W. Margrabe, Journal of Finance 33 (1978) 177. With a fixed sum for the cost
// it is the call of F. Black and M. Scholes, Journal of Political Economy 81 (1973) 637.
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

// After 2^first_power, ..., 2^last_power points. `draw` fills a block with payoffs.
template <class Draw>
static std::vector<Estimate> simulate(Draw draw) {
  const double discount = std::exp(-rate * years);
  std::vector<Estimate> estimates;
  std::vector<double> payoffs(block);
  double sum = 0, squares = 0;
  for (uint32_t points = block; points <= 1U << last_power; points += block) {
    draw(payoffs);
    for (const double payoff : payoffs) {
      sum += payoff;
      squares += payoff * payoff;
    }
    if (!std::has_single_bit(points)) continue;
    const double mean = sum / points, variance = squares / points - mean * mean;
    estimates.push_back({discount * mean, discount * std::sqrt(variance / (points - 1))});
  }
  return estimates;
}

static std::vector<Estimate> simulate_exchange() {
  const Stream stream(mt19937, 2026);
  const double mean[] = {mean_of(gained), mean_of(given)};
  const double cholesky[2][2] = {
      {deviation_of(gained), 0},
      {correlation * deviation_of(given), std::sqrt(1 - correlation * correlation) * deviation_of(given)}};
  std::vector<double> prices(2 * block);
  return simulate([&](std::vector<double> &payoffs) {
    check(_vxsdRngGaussianMV(1, stream, block, prices.data(), 2, 0, mean, cholesky[0]), "draw");
    _vxmdExp_HA(2 * block, prices.data(), prices.data());
    for (int i = 0; i < block; ++i) payoffs[i] = std::max(prices[2 * i] - prices[2 * i + 1], 0.0);
  });
}

// Normal numbers by inversion, one from each point: methods that take pairs would spoil the even spread.
static std::vector<Estimate> simulate_call() {
  const Stream stream(sobol, 1);
  std::vector<double> prices(block);
  return simulate([&](std::vector<double> &payoffs) {
    check(_vxsdRngUniform(0, stream, block, prices.data(), -1, 1), "draw");
    _vxmdErfInv_HA(block, prices.data(), prices.data());
    for (double &x : prices) x = mean_of(gained) + deviation_of(gained) * std::numbers::sqrt2 * x;
    _vxmdExp_HA(block, prices.data(), prices.data());
    for (int i = 0; i < block; ++i) payoffs[i] = std::max(prices[i] - strike, 0.0);
  });
}

static void compare_prices(const std::string &file) {
  const double ratio_volatility =
      std::sqrt(gained.volatility * gained.volatility + given.volatility * given.volatility -
                2 * correlation * gained.volatility * given.volatility);
  const double exchange = closed_form(gained.price, given.price, ratio_volatility * std::sqrt(years));
  const double call = closed_form(gained.price, strike * std::exp(-rate * years), deviation_of(gained));
  const auto exchanges = simulate_exchange(), calls = simulate_call();

  std::printf("closed form: exchange %.6f, call %.6f\n\n", exchange, call);
  std::printf("          exchange, MT19937                  call, Sobol points\n");
  std::printf(" points   price      error     std. error   price      error\n");
  std::ofstream csv(file);
  csv.precision(12);
  csv << "points,exchange,exchange_error,exchange_standard_error,call,call_error,call_standard_error\n";
  for (size_t i = 0; i < exchanges.size(); ++i) {
    const long points = 1L << (first_power + i);
    const Estimate &random = exchanges[i], &even = calls[i];
    const double random_error = random.price - exchange, even_error = even.price - call;
    std::printf("%7ld  %9.6f  %9.6f  %9.6f   %9.6f  %9.6f\n", points, random.price, random_error,
                random.standard_error, even.price, even_error);
    csv << points << ',' << random.price << ',' << random_error << ',' << random.standard_error << ','
        << even.price << ',' << even_error << ',' << even.standard_error << '\n';
  }
  if (!csv.flush()) fail("cannot write " + file);
}

struct Distribution {
  const char *name;
  double from, to;  // of the histogram
  int32_t (*draw)(StreamState *stream, int32_t n, double *out);
  double (*density)(double x);
};

constexpr Distribution distributions[] = {
    {"Exponential", 0, 6, [](auto *s, auto n, auto *out) { return _vxsdRngExponential(0, s, n, out, 0, 1); },
     [](double x) { return std::exp(-x); }},
    {"Laplace", -6, 6, [](auto *s, auto n, auto *out) { return _vxsdRngLaplace(0, s, n, out, 0, 1); },
     [](double x) { return std::exp(-std::fabs(x)) / 2; }},
    {"Weibull", 0, 2, [](auto *s, auto n, auto *out) { return _vxsdRngWeibull(0, s, n, out, 3, 0, 1); },
     [](double x) { return 3 * x * x * std::exp(-x * x * x); }},
    {"Rayleigh", 0, 3, [](auto *s, auto n, auto *out) { return _vxsdRngRayleigh(0, s, n, out, 0, 1); },
     [](double x) { return 2 * x * std::exp(-x * x); }},
    {"Lognormal", 0, 4,
     [](auto *s, auto n, auto *out) { return _vxsdRngLognormal(0, s, n, out, 0, 0.5, 0, 1); },
     [](double x) {
       return std::exp(-2 * std::log(x) * std::log(x)) * std::sqrt(2 * std::numbers::inv_pi) / x;
     }},
    {"Gumbel", -6, 2, [](auto *s, auto n, auto *out) { return _vxsdRngGumbel(0, s, n, out, 0, 1); },
     [](double x) { return std::exp(x - std::exp(x)); }},
    {"Gamma", 0, 10, [](auto *s, auto n, auto *out) { return _vxsdRngGamma(0, s, n, out, 3, 0, 1); },
     [](double x) { return x * x * std::exp(-x) / 2; }},
    {"Beta", 0, 1, [](auto *s, auto n, auto *out) { return _vxsdRngBeta(0, s, n, out, 2, 3, 0, 1); },
     [](double x) { return 12 * x * (1 - x) * (1 - x); }}};

static void draw_histograms(const std::string &file) {
  constexpr int numbers = 1'000'000, bins = 60;
  const Stream stream(mt19937, 1);
  std::vector<double> drawn(numbers);
  std::ofstream csv(file);
  csv.precision(12);
  csv << "distribution,middle,count,density\n";
  for (const Distribution &distribution : distributions) {
    check(distribution.draw(stream, numbers, drawn.data()), distribution.name);
    const double width = (distribution.to - distribution.from) / bins;
    std::vector<int> counts(bins);
    for (const double x : drawn)
      if (x >= distribution.from && x < distribution.to)
        ++counts[std::min(static_cast<int>((x - distribution.from) / width), bins - 1)];
    for (int bin = 0; bin < bins; ++bin) {
      const double middle = distribution.from + (bin + 0.5) * width;
      csv << distribution.name << ',' << middle << ',' << counts[bin] << ',' << distribution.density(middle)
          << '\n';
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
