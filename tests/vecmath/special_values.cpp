// The tables as text, which both precisions read.
#include "tests/vecmath/special_values.h"

#include <iterator>
#include <map>

namespace qkr::tests {
namespace {

// "Functions: input = result; input = result status; ..." The functions of two inputs or results have both. An
// accurate result is "~", and "a|b" is a for doubles and b for floats; the rest is told at value_of. dExp and
// sExp are the functions of one precision.
constexpr char table[] = R"(
Exp: quiet = ones|quiet; -quiet = ones|-quiet; signalling = ones|quiet; inf = inf; -inf = 0; 0 = 1; -0 = 1;
    smallest = 1; -normal = 1; largest = inf 3; -largest = 0 4
Sqrt: quiet = quiet; -quiet = -quiet; signalling = quiet; inf = inf; 0 = 0; -0 = -0; -inf = nan 1;
    -1 = nan 1; -smallest = nan 1; -largest = nan 1; smallest = ~; subnormal = ~; normal = ~; largest = ~
Erf: quiet = quiet; signalling = quiet; inf = 1; -inf = -1; -largest = -1; 0 = 0; -0 = -0; smallest = ~;
    -subnormal = ~
Erfc: -quiet = -quiet; signalling = quiet; inf = 0; -inf = 2; -largest = 2; largest = 0 4; -smallest = 1;
    26.543|9.1945 = ~; 26.544|9.195 = ~ 4; 27.226|10.05 = smallest 4; 27.25|10.1 = 0 4
ErfInv: quiet = quiet; signalling = quiet; 1 = inf 2; -1 = -inf 2; 1+ = nan 1; -inf = nan 1; 1- = ~;
    -0 = -0; smallest = ~; -subnormal = ~
Div: 1 0 = inf 2; 1 -0 = -inf 2; -smallest 0 = -inf 2; 0 0 = nan 2; inf 0 = inf 0|2; -inf 0 = -inf 0|2;
    quiet 0 = quiet 0|2; signalling 1 = quiet; 1 -quiet = -quiet; inf inf = nan; -0 7 = -0; 7 -inf = -0;
    1 smallest = inf; largest 0.5 = inf; smallest 4 = 0; normal 3 = ~
InvSqrt: 0 = inf 2; -0 = -inf 2; -1 = nan 1; -inf = nan 1; inf = 0; smallest = ~
Cbrt: -inf = -inf; -0 = -0; smallest = ~
InvCbrt: -0 = -inf 2; -inf = -0; -smallest = ~
Hypot: inf quiet = inf; quiet 1 = quiet; largest largest = inf 3; smallest 0 = smallest; -0 -0 = 0
Cosh: quiet = quiet; -inf = inf; -0 = 1; smallest = 1; -cosh_overflow = inf 3; largest = inf 3;
    cosh_overflow- = ~
Sinh: -quiet = -quiet; -inf = -inf; -0 = -0; -smallest = -smallest; normal = normal;
    -cosh_overflow = -inf 3; largest = inf 3; -cosh_overflow+ = ~
Tanh: signalling = quiet; -inf = -1; -0 = -0; -smallest = -smallest; subnormal = subnormal; normal = normal;
    -largest = -1
Pow: quiet 0 = 1; 1 quiet = 1; -0 -3 = -inf 2; -0 -2 = inf 2; 0 -inf = inf; -0 3 = -0; -1 inf = 1;
    -2 0.5 = nan 1; -2 3 = -8; -inf -3 = -0; 0.5 -inf = inf; 10 400 = inf 3; -10 401 = -inf 3;
    10 -400 = 0 4; 2 -1060|-140 = 0x1p-1060|0x1p-140 4
Inv: 0 = inf 2; -0 = -inf 2; inf = 0; -inf = -0; quiet = quiet; signalling = quiet; smallest = inf;
    -subnormal = ~; largest = ~
Sin Tan Cos: inf = nan 1; -inf = nan 1; quiet = nan|quiet; -quiet = nan|-quiet; signalling = nan|quiet 1|0;
    smallest = ~; -normal = ~; -largest = ~; 1e22 = ~
SinCos: inf = nan nan 1; -inf = nan nan 1; quiet = nan|quiet nan|quiet; -quiet = nan|-quiet nan|-quiet;
    signalling = nan|quiet nan|quiet 1|0; 0 = 0 1; -0 = 0|-0 1; smallest = ~ ~; -normal = ~ ~; -largest = ~ ~;
    1e22 = ~ ~
Sin: 0 = 0; -0 = 0|-0
Cos: 0 = 1; -0 = 1
Tan: 0 = 0; -0 = -0
Atan Asin Acos Acosh Asinh Atanh: quiet = quiet; -quiet = -quiet; signalling = quiet
Atan Asin Asinh Atanh: 0 = 0; -0 = -0; smallest = smallest; -smallest = -smallest; normal = normal;
    subnormal = subnormal
Asin Acos Atanh: 1+ = nan 1; -1- = nan 1; largest = nan 1; inf = nan 1; -inf = nan 1
Atan: inf = ~; largest = ~
Asin: 1 = ~
Acos: 1 = 0; -1 = ~; 0 = ~
Acosh: 1 = 0; 1+ = ~; largest = ~; inf = inf; 1- = nan 1; 0 = nan 1; -0 = nan 1; -smallest = nan 1;
    -1 = nan 1; -largest = nan 1; -inf = nan 1
Asinh: inf = inf; largest = ~
Atanh: 1 = inf 2; -1 = -inf 2; 1- = ~
Atan2: quiet inf = quiet; 0 quiet = quiet; smallest inf = 0; -1 inf = -0; 0 1 = 0; -0 largest = -0; 0 0 = 0;
    -0 0 = -0
Ln: quiet = quiet; -quiet = -quiet; signalling = signalling; inf = inf; 0 = -inf 2; -0 = -inf 2;
    -inf = nan|domain_nan 1; -1 = nan|domain_nan 1; -smallest = nan|domain_nan 1; -largest = nan|domain_nan 1; 1 = 0;
    smallest = ~; subnormal = ~; normal = ~; largest = ~
Log10: quiet = quiet; -quiet = -quiet; signalling = signalling; inf = inf; 0 = -inf 2; -0 = -inf 2;
    -inf = nan 1; -1 = nan 1; -smallest = nan 1; -largest = nan 1; 1 = 0; smallest = ~; subnormal = ~;
    normal = ~; largest = ~
dExp: 708.39599609375- = ~; 708.39599609375 = ~; -708.39599609375+ = ~; -708.39599609375 = ~;
    0x1.62e37e7d8ba71p+9 = ~; 0x1.62e37e7d8ba72p+9 = ~; 709.78 = ~; 0x1.62e42fefa39efp+9 = ~;
    0x1.62e42fefa39f0p+9 = inf 3; 710 = inf 3; -0x1.6232bdd7abcd0p+9 = ~; -0x1.6232bdd7abcd1p+9 = ~ 4;
    -708.4 = ~ 4; -0x1.74910d52d3051p+9 = smallest 4; -0x1.74910d52d3052p+9 = 0 4; -746 = 0 4
sExp: 87.3365478515625- = ~; 87.3365478515625 = ~; 88.5 = ~; 88.72283935546875- = ~;
    88.72283935546875 = inf 3; 89 = inf 3; -87.3365478515625+ = ~; -87.3365478515625 = ~ 4; -100 = ~ 4;
    -103.27893829345703+ = smallest 4; -103.27893829345703 = 0 4; -104 = 0 4
)";

template <class T>
T next(T x, int step) {
  return of_rank<T>(rank(x) + step);
}

template <class T>
T nan(Pattern<T> low_bits, bool signalling) {
  constexpr int quiet_bit = std::numeric_limits<T>::digits - 2;
  const Pattern<T> pattern = pattern_of(std::numeric_limits<T>::infinity()) | low_bits;
  return from_pattern<T>(signalling ? pattern : pattern | Pattern<T>(1) << quiet_bit);
}

template <class T>
T negative(T x) {
  return from_pattern<T>(pattern_of(x) ^ ~(~Pattern<T>() >> 1));  // of a NaN too
}

template <class T>
Expected<T> expected(const std::string &word) {
  return word == "~" ? Expected<T>(accurate) : Expected<T>(value_of<T>(word));
}

}  // namespace

template <class T>
T value_of(const std::string &word) {
  using Format = std::numeric_limits<T>;
  static const std::map<std::string, T> names = {
      {"inf", Format::infinity()},
      {"nan", negative(nan<T>(0, false))},  // what the processor makes of 0 / 0
      {"domain_nan", from_pattern<T>(either<T>(0x7FF8000000000000, 0x7FFC0000))},
      {"quiet", nan<T>(0x1234, false)},
      {"signalling", nan<T>(0x1234, true)},
      {"ones", from_pattern<T>(~Pattern<T>())},
      {"smallest", Format::denorm_min()},
      {"subnormal", next(Format::min(), -1)},
      {"normal", Format::min()},
      {"largest", Format::max()},
      {"cosh_overflow", either<T>(0x1.633ce8fb9f87ep+9, 0x1.65a9fap+6f)}};  // the first number to overflow
  if (const size_t bar = word.find('|'); bar != std::string::npos)
    return value_of<T>(sizeof(T) == 8 ? word.substr(0, bar) : word.substr(bar + 1));
  if (const char last = word.back(); last == '+' || last == '-')
    return next(value_of<T>(word.substr(0, word.size() - 1)), last == '+' ? 1 : -1);
  if (word.front() == '-') return negative(value_of<T>(word.substr(1)));
  const auto found = names.find(word);
  return found != names.end() ? found->second : static_cast<T>(std::stod(word));
}
template double value_of(const std::string &);
template float value_of(const std::string &);

void for_each_row(const char *text, const std::function<void(const std::string &, std::istream &)> &body) {
  std::istringstream lines(text);
  std::vector<std::string> functions;
  for (std::string line; std::getline(lines, line);) {
    if (const size_t colon = line.find(':'); colon != std::string::npos) {
      std::istringstream names(line.substr(0, colon));
      functions.assign(std::istream_iterator<std::string>(names), {});
      line.erase(0, colon + 1);
    }
    std::istringstream rows(line);
    for (std::string row; std::getline(rows, row, ';');)
      for (const std::string &function : functions) {
        std::istringstream words(row);
        body(function, words);
      }
  }
}

template <class T>
std::vector<Special<T>> special_values() {
  constexpr char letter = sizeof(T) == 8 ? 'd' : 's', other = sizeof(T) == 8 ? 's' : 'd';
  std::vector<Special<T>> rows;
  for_each_row(table, [&](const std::string &function, std::istream &text) {
    if (function.front() == other) return;
    const std::string name =
        std::string("_vxm") + letter + function.substr(function.front() == letter) + "_HA";
    const Entry<T> &entry = find_function<T>(name)->entry;
    const auto next_word = [&] {
      std::string word;
      return text >> word, word;
    };
    Special<T> row = {name, value_of<T>(next_word())};
    if (entry.inputs() == 2) row.b = value_of<T>(next_word());
    if (next_word() != "=") throw std::invalid_argument(name);
    row.result = expected<T>(next_word());
    if (entry.results() == 2) row.second_result = expected<T>(next_word());
    if (const std::string status = next_word(); !status.empty())
      row.status = static_cast<int32_t>(value_of<T>(status));
    rows.push_back(row);
  });
  // Axes, diagonals and corners, where the angle is a multiple of pi/4.
  for (const char *x : {"-0", "-smallest", "1", "-largest", "inf", "-inf"})
    for (const char *y : {"0", "smallest", "largest", "inf", "-0", "-smallest", "-largest", "-inf"})
      if (value_of<T>(x) < 0 || value_of<T>(y) != 0)
        rows.push_back({either<T>("_vxmdAtan2_HA", "_vxmsAtan2_HA"), value_of<T>(y), value_of<T>(x)});
  return rows;
}
template std::vector<Special<double>> special_values();
template std::vector<Special<float>> special_values();

}  // namespace qkr::tests
