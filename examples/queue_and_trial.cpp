// Whole random numbers at work. A queue: in each slot of time a Poisson number of customers arrives, each
// with a service of 1 slot and a negative binomial number of further ones; the mean wait is compared with
// its closed form. And a trial of two versions of a page: how often a real difference is noticed, with
// visitors who buy or not (binomial), judged by the share of random divisions of all buyers into the two
// groups (hypergeometric) that look at least as good.
//
// queue_and_trial OUT_DIR
// Writes OUT_DIR/queue.csv and OUT_DIR/trial.csv.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <qkr/qkr.h>
#include <string>
#include <vector>

constexpr uint32_t mt19937 = 0x800000;

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "queue_and_trial: %s\n", message.c_str());
  std::exit(1);
}

static void check(int32_t status, const char *what) {
  if (status != VXS_STATUS_OK) fail(std::string(what) + ": status " + std::to_string(status));
}

struct Service {
  double a, p;  // of the negative binomial number
  double mean() const { return 1 + a * (1 - p) / p; }
  double mean_square() const { return mean() * mean() + a * (1 - p) / (p * p); }
};

// The work that waits at the beginning of a slot, in slots, is what the first customer of the slot has to
// wait. With A the work that arrives in a slot, it follows W' = max(W + A - 1, 0): E W' = E W makes the
// share of busy slots E A, and E W'^2 = E W^2 then gives E W = (E A^2 - E A) / (2 (1 - E A)).
static double expected_wait(double arrivals, const Service &service) {
  const double load = arrivals * service.mean(), square = arrivals * service.mean_square() + load * load;
  return (square - load) / (2 * (1 - load));
}

static double simulated_wait(StreamState *stream, double arrivals, const Service &service, int slots) {
  std::vector<int32_t> customers(slots), services;
  check(_vxsiRngPoisson(0, stream, slots, customers.data(), arrivals), "Poisson");
  size_t all = 0;
  for (const int32_t count : customers) all += static_cast<size_t>(count);
  services.resize(all);
  check(_vxsiRngNegbinomial(0, stream, static_cast<int32_t>(all), services.data(), service.a, service.p),
        "Negbinomial");
  double waiting = 0, sum = 0;
  size_t next = 0;
  for (const int32_t count : customers) {
    sum += waiting;
    for (int32_t i = 0; i < count; ++i) waiting += 1 + services[next++];
    waiting = waiting > 1 ? waiting - 1 : 0;
  }
  return sum / slots;
}

// The share of `trials` in which the second version looks better at the level of 5 %.
static double power(StreamState *stream, int visitors, double rate, double better_rate, int trials) {
  constexpr int divisions = 2000;
  std::vector<int32_t> buyers(trials), others(trials), divided(divisions);
  check(_vxsiRngBinomial(0, stream, trials, buyers.data(), visitors, rate), "Binomial");
  check(_vxsiRngBinomial(0, stream, trials, others.data(), visitors, better_rate), "Binomial");
  int noticed = 0;
  for (int i = 0; i < trials; ++i) {
    check(_vxsiRngHypergeometric(0, stream, divisions, divided.data(), 2 * visitors, visitors,
                                 buyers[i] + others[i]),
          "Hypergeometric");
    int as_good = 0;
    for (const int32_t count : divided) as_good += count >= others[i];
    noticed += as_good < 0.05 * divisions;
  }
  return static_cast<double>(noticed) / trials;
}

static double normal_power(int visitors, double rate, double better_rate) {
  const double deviation = std::sqrt((rate * (1 - rate) + better_rate * (1 - better_rate)) / visitors);
  return 0.5 * std::erfc((1.6449 - (better_rate - rate) / deviation) / std::sqrt(2.0));
}

int main(int argc, char **argv) {
  if (argc != 2) fail("usage: queue_and_trial OUT_DIR");
  const std::string out_dir = argv[1];
  StreamState *stream = nullptr;
  const uint32_t seed = 2026;
  check(__vxsNewStreamEx(&stream, mt19937, 1, &seed), "new stream");

  constexpr int slots = 4'000'000;
  const Service service = {2, 0.5};
  std::ofstream queue(out_dir + "/queue.csv"), trial(out_dir + "/trial.csv");
  queue << "load,simulated,expected\n";
  std::printf("mean wait in a queue, %d slots of time\n  load   simulated   expected\n", slots);
  for (double load = 0.1; load < 0.95; load += 0.1) {
    const double arrivals = load / service.mean();
    const double simulated = simulated_wait(stream, arrivals, service, slots),
                 expected = expected_wait(arrivals, service);
    queue << load << ',' << simulated << ',' << expected << '\n';
    std::printf("  %.1f    %9.3f  %9.3f\n", load, simulated, expected);
  }

  constexpr int visitors = 5000, trials = 2000;
  constexpr double rate = 0.05;
  trial << "gain,simulated,normal\n";
  std::printf(
      "\na difference noticed, %d visitors for each version, of whom 5 %% buy from the first\n"
      "  second   simulated   normal approximation\n",
      visitors);
  for (double gain = 0; gain < 0.0205; gain += 0.0025) {
    const double simulated = power(stream, visitors, rate, rate + gain, trials);
    const double normal = normal_power(visitors, rate, rate + gain);
    trial << 100 * gain << ',' << 100 * simulated << ',' << 100 * normal << '\n';
    std::printf("  %5.2f %%   %7.1f %%   %7.1f %%\n", 100 * (rate + gain), 100 * simulated, 100 * normal);
  }
  __vxsDeleteStream(&stream);
  if (!queue.flush() || !trial.flush()) fail("cannot write to " + out_dir);
}
