// Growth of carbon dioxide in the air. A quantity that grows by the same share every year has a logarithm
// that grows along a straight line; the slope of that line tells the growth, and Exp turns the line back into
// parts per million.
//
// co2_growth CSV_FILE OUT_DIR
// CSV_FILE has rows "yyyymmdd,ppm", the number left out where it was not measured.
// Writes OUT_DIR/co2_fit.csv and OUT_DIR/co2_rates.csv.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <limits>
#include <qkr/qkr.h>
#include <string>
#include <vector>

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "co2_growth: %s\n", message.c_str());
  std::exit(1);
}

struct Measurements {
  std::vector<double> year;  // 1958.5 is the middle of 1958
  std::vector<double> ppm;   // NaN where missing
};

static double decimal_year(std::chrono::year_month_day date) {
  using namespace std::chrono;
  const sys_days start = date.year() / January / 1, end = (date.year() + years{1}) / January / 1;
  const double days = (sys_days{date} - start).count(), days_of_year = (end - start).count();
  return static_cast<int>(date.year()) + days / days_of_year;
}

static Measurements read(const std::string &path) {
  std::ifstream file(path);
  if (!file) fail("cannot read " + path);
  Measurements data;
  int line_number = 0;
  for (std::string line; std::getline(file, line);) {
    ++line_number;
    if (line.empty() || line[0] == '#' || line == "date,ppm") continue;
    char *rest, *end;
    const long digits = std::strtol(line.c_str(), &rest, 10);
    const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(digits / 10000)),
                                           std::chrono::month(digits / 100 % 100),
                                           std::chrono::day(digits % 100)};
    const bool missing = std::string(rest) == ",";
    const double ppm = *rest == ',' ? std::strtod(rest + 1, &end) : 0;
    if (*rest != ',' || !date.ok() || (!missing && (end == rest + 1 || *end != '\0')))
      fail(path + ", line " + std::to_string(line_number) + ": not a row \"yyyymmdd,ppm\": " + line);
    data.year.push_back(decimal_year(date));
    data.ppm.push_back(missing ? std::numeric_limits<double>::quiet_NaN() : ppm);
  }
  if (file.bad() || data.year.size() < 2) fail("too little data in " + path);
  return data;
}

struct Line {
  double middle, height, slope;  // height + slope * (t - middle)
};

// The least-squares line through the points (t, y) with from <= t < to; those whose y is NaN are left out.
static Line fit_line(const std::vector<double> &t, const std::vector<double> &y, double from, double to) {
  const auto sum = [&](auto term) {
    double total = 0;
    for (size_t i = 0; i < t.size(); ++i)
      if (t[i] >= from && t[i] < to && !std::isnan(y[i])) total += term(t[i], y[i]);
    return total;
  };
  const double count = sum([](double, double) { return 1; });
  if (count < 2)
    fail("fewer than two measurements from " + std::to_string(from) + " to " + std::to_string(to));
  const double middle = sum([](double ti, double) { return ti; }) / count;
  const double height = sum([](double, double yi) { return yi; }) / count;
  const double slope = sum([&](double ti, double yi) { return (ti - middle) * (yi - height); }) /
                       sum([&](double ti, double) { return (ti - middle) * (ti - middle); });
  return {middle, height, slope};
}

int main(int argc, char **argv) {
  if (argc != 3) fail("usage: co2_growth CSV_FILE OUT_DIR");
  const auto [year, ppm] = read(argv[1]);
  const int32_t n = static_cast<int32_t>(year.size());

  // A NaN is no error: a missing week passes through the logarithm. A measurement of zero or below is one.
  std::vector<double> ln_ppm(n);
  _vxmClearErrStatus();
  _vxmdLn_HA(n, ppm.data(), ln_ppm.data());
  if (_vxmGetErrStatus() != VXM_STATUS_OK) fail("a measurement is not positive");

  // The whole record, then its decades: whole years, or the season of their ends would tilt so short a line.
  struct Period {
    double from, to;  // years
  };
  const std::vector<Period> periods = {
      {year.front(), year.back() + 1}, {1960, 1970}, {1970, 1980}, {1980, 1990}, {1990, 2000}};
  std::vector<double> slope, growth(periods.size());
  for (auto [from, to] : periods) slope.push_back(fit_line(year, ln_ppm, from, to).slope);
  _vxmdExp_HA(static_cast<int32_t>(slope.size()), slope.data(), growth.data());
  for (double &rate : growth) rate = 100 * (rate - 1);  // a factor a year becomes per cent a year

  const Line line = fit_line(year, ln_ppm, periods[0].from, periods[0].to);
  std::vector<double> fit(n);
  for (int32_t i = 0; i < n; ++i) fit[i] = line.height + line.slope * (year[i] - line.middle);
  _vxmdExp_HA(n, fit.data(), fit.data());  // in place: logarithms become ppm

  int measured = 0;
  double squares = 0;
  for (int32_t i = 0; i < n; ++i) {
    if (std::isnan(ppm[i])) continue;
    ++measured;
    squares += (ppm[i] - fit[i]) * (ppm[i] - fit[i]);
  }

  std::printf("%d weeks from %.1f to %.1f, %d of them not measured\n", n, year.front(), year.back(),
              n - measured);
  std::printf("growth of the whole record: %.3f %% a year, doubling in %.0f years\n", growth[0],
              std::log(2.0) / slope[0]);
  for (size_t i = 1; i < periods.size(); ++i)
    std::printf("  %.0f to %.0f:             %.3f %% a year\n", periods[i].from, periods[i].to, growth[i]);
  std::printf("exponential fit: %.1f ppm at the start, %.1f ppm at the end; rms deviation %.2f ppm\n",
              fit.front(), fit.back(), std::sqrt(squares / measured));

  const std::string out_dir = argv[2];
  std::ofstream fit_file(out_dir + "/co2_fit.csv"), rates_file(out_dir + "/co2_rates.csv");
  fit_file << std::setprecision(9) << "year,ppm,fit_ppm\n";
  for (int32_t i = 0; i < n; ++i) fit_file << year[i] << ',' << ppm[i] << ',' << fit[i] << '\n';
  rates_file << std::setprecision(9) << "from_year,to_year,percent_per_year\n";
  for (size_t i = 0; i < periods.size(); ++i)
    rates_file << periods[i].from << ',' << periods[i].to << ',' << growth[i] << '\n';
  fit_file.close(), rates_file.close();
  if (!fit_file || !rates_file) fail("cannot write to " + out_dir);
}
