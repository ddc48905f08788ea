// Special inputs as single elements, and in every lane of ordinary vectors.
#include <errno.h>
#include <fenv.h>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <optional>
#include <qkr/vecmath_control.h>
#include <sstream>
#include <string.h>

#include "tests/support/levels.h"
#include "tests/support/measure.h"
#include "tests/support/oracle.h"
#include "tests/support/samples.h"

namespace {

using namespace qkr::tests;

template <class T>
class SpecialValues : public testing::Test {};
using Elements = testing::Types<double, float>;
TYPED_TEST_SUITE(SpecialValues, Elements);

// "input = result; input = result status; ..." Functions of two inputs or results have both. An accurate result
// is "~", and "a|b" is a for doubles and b for floats; the rest is told at value_of. dExp and sExp are the
// functions of one precision.
constexpr struct {
  const char *functions, *rows;
} table[] = {
    {"Sqrt Erf Erfc ErfInv Inv InvSqrt Cbrt InvCbrt Sinh Tanh Atan Asin Acos Acosh Asinh Atanh",
     "quiet = quiet; -quiet = -quiet; signalling = quiet"},
    {"Ln Log10", "quiet = quiet; -quiet = -quiet; signalling = signalling"},
    {"Exp", "quiet = ones|quiet; -quiet = ones|-quiet; signalling = ones|quiet"},
    {"Sin Cos Tan", "quiet = nan|quiet; -quiet = nan|-quiet; signalling = nan|quiet 1|0"},
    {"SinCos",
     "quiet = nan|quiet nan|quiet; -quiet = nan|-quiet nan|-quiet; signalling = nan|quiet nan|quiet 1|0"},
    {"Div Pow Atan2", "quiet ones = quiet; ones quiet = ones; signalling 7 = quiet; 7 -quiet = -quiet"},
    {"Sin Tan Erf ErfInv Cbrt Sinh Tanh Atan Asin Asinh Atanh", "0 = 0"},
    {"Tan Erf ErfInv Cbrt Sinh Tanh Atan Asin Asinh Atanh Sqrt", "-0 = -0"},
    {"Sinh Tanh Atan Asin Asinh Atanh", "-smallest = -smallest; subnormal = subnormal; normal = normal"},
    {"Exp", "inf = inf; -inf = 0; 0 = 1; -0 = 1; smallest = 1; -normal = 1; largest = inf 3; -largest = 0 4"},
    {"Sqrt", "inf = inf; -inf = nan 1; -1 = nan 1; -smallest = nan 1; -largest = nan 1"},
    {"Erf", "inf = 1; -inf = -1; -largest = -1"},
    {"Erfc",
     "inf = 0; -inf = 2; -largest = 2; largest = 0 4; -smallest = 1; 26.543|9.1945 = ~; 26.544|9.195 = ~ 4; "
     "27.226|10.05 = smallest 4; 27.25|10.1 = 0 4"},
    {"ErfInv", "1 = inf 2; -1 = -inf 2; 1+ = nan 1; -inf = nan 1; 1- = ~"},
    {"Div",
     "1 0 = inf 2; 1 -0 = -inf 2; -smallest 0 = -inf 2; 0 0 = nan 2; inf 0 = inf 0|2; -inf 0 = -inf 0|2; "
     "quiet 0 = quiet 0|2; inf inf = nan; -0 7 = -0; 7 -inf = -0; 1 smallest = inf; largest 0.5 = inf; "
     "smallest 4 = 0"},
    {"Inv", "0 = inf 2; -0 = -inf 2; inf = 0; -inf = -0; smallest = inf"},
    {"InvSqrt", "0 = inf 2; -0 = -inf 2; -1 = nan 1; -inf = nan 1; inf = 0"},
    {"Cbrt", "-inf = -inf"},
    {"InvCbrt", "-0 = -inf 2; -inf = -0"},
    {"Hypot", "inf quiet = inf; quiet 1 = quiet; largest largest = inf 3; smallest 0 = smallest; -0 -0 = 0"},
    {"Cosh",
     "quiet = quiet; -quiet = quiet; signalling = quiet; -inf = inf; -0 = 1; smallest = 1; "
     "-cosh_overflow = inf 3; largest = inf 3; cosh_overflow- = ~"},
    {"Sinh", "-inf = -inf; -cosh_overflow = -inf 3; largest = inf 3; -cosh_overflow+ = ~"},
    {"Tanh", "-inf = -1; -largest = -1"},
    {"Pow",
     "quiet 0 = 1; 1 quiet = 1; -0 -3 = -inf 2; -0 -2 = inf 2; 0 -inf = inf; -0 3 = -0; -1 inf = 1; "
     "-2 0.5 = nan 1; -2 3 = -8; -2 -3 = -0.125; -3 4 = 81; -1 16777215 = -1; -1 16777214 = 1; -inf -3 = -0; "
     "0.5 -inf = inf; 10 400 = inf 3; -10 401 = -inf 3; 10 -400 = 0 4; "
     "2 -1060|-140 = 0x1p-1060|0x1p-140 4"},
    {"Sin Cos Tan", "inf = nan 1; -inf = nan 1; 1e22 = ~"},
    {"SinCos", "inf = nan nan 1; -inf = nan nan 1; 0 = 0 1; -0 = 0|-0 1; 1e22 = ~ ~"},
    {"Sin", "-0 = 0|-0"},
    {"Cos", "0 = 1; -0 = 1"},
    {"Asin Acos Atanh", "1+ = nan 1; -1- = nan 1; largest = nan 1; inf = nan 1; -inf = nan 1"},
    {"Acos Acosh Ln Log10", "1 = 0"},
    {"Acosh", "inf = inf; 1- = nan 1; 0 = nan 1; -0 = nan 1; -largest = nan 1; -inf = nan 1"},
    {"Asinh", "inf = inf"},
    {"Atanh", "1 = inf 2; -1 = -inf 2; 1- = ~"},
    {"Atan2",
     "quiet inf = quiet; smallest inf = 0; -1 inf = -0; 0 1 = 0; -0 largest = -0; 0 0 = 0; -0 0 = -0; "
     "0 -0 = ~; -0 -1 = ~; inf inf = ~; -inf 1 = ~; inf -inf = ~; -inf -inf = ~; largest -smallest = ~"},
    {"Ln Log10", "inf = inf; 0 = -inf 2; -0 = -inf 2"},
    {"Ln", "-inf = nan|domain_nan 1; -smallest = nan|domain_nan 1; -largest = nan|domain_nan 1"},
    {"Log10", "-inf = nan 1; -smallest = nan 1; -largest = nan 1"},
    {"dExp",
     "708.39599609375- = ~; 708.39599609375 = ~; -708.39599609375+ = ~; -708.39599609375 = ~; "
     "0x1.62e37e7d8ba71p+9 = ~; 0x1.62e37e7d8ba72p+9 = ~; 0x1.62e42fefa39efp+9 = ~; "
     "0x1.62e42fefa39f0p+9 = inf 3; -0x1.6232bdd7abcd0p+9 = ~; -0x1.6232bdd7abcd1p+9 = ~ 4; "
     "-0x1.74910d52d3051p+9 = smallest 4; -0x1.74910d52d3052p+9 = 0 4"},
    {"sExp",
     "87.3365478515625- = ~; 87.3365478515625 = ~; 88.72283935546875- = ~; 88.72283935546875 = inf 3; "
     "-87.3365478515625+ = ~; -87.3365478515625 = ~ 4; -103.27893829345703+ = smallest 4; "
     "-103.27893829345703 = 0 4"},
};

template <class T>
struct Special {
  const VectorFunction<T> *f;
  T a, b = 1;
  std::optional<T> results[2] = {};  // none: within the function's bound of the exact one
  int32_t status = 0;
};
template <class T>
std::ostream &operator<<(std::ostream &out, const Special<T> &row) {
  return out << row.f->name << " of " << row.a << ", " << row.b << std::hex << " (pattern "
             << pattern_of(row.a) << ")";
}

template <class T>
T negative(T x) {
  return from_pattern<T>(pattern_of(x) ^ ~(~Pattern<T>() >> 1));  // of a NaN too
}

// A number, a name of one, a minus before it, a plus or minus behind it for its neighbour: "1-", "-largest".
template <class T>
T value_of(const std::string &word) {
  using Format = std::numeric_limits<T>;
  constexpr Pattern<T> quiet_bit = Pattern<T>(1) << (Format::digits - 2);
  const Pattern<T> infinite = pattern_of(Format::infinity());
  static const std::map<std::string, T> names = {
      {"inf", Format::infinity()},
      {"nan", negative(Format::quiet_NaN())},  // what the processor makes of 0 / 0
      {"domain_nan", from_pattern<T>(either<T>(0x7FF8000000000000, 0x7FFC0000))},
      {"quiet", from_pattern<T>(infinite | quiet_bit | 0x1234)},
      {"signalling", from_pattern<T>(infinite | 0x1234)},
      {"ones", from_pattern<T>(~Pattern<T>())},
      {"smallest", Format::denorm_min()},
      {"subnormal", of_rank<T>(rank(Format::min()) - 1)},
      {"normal", Format::min()},
      {"largest", Format::max()},
      {"cosh_overflow", either<T>(0x1.633ce8fb9f87ep+9, 0x1.65a9fap+6f)}};  // the first number to overflow
  if (const size_t bar = word.find('|'); bar != std::string::npos)
    return value_of<T>(sizeof(T) == 8 ? word.substr(0, bar) : word.substr(bar + 1));
  if (const char last = word.back(); last == '+' || last == '-')
    return of_rank<T>(rank(value_of<T>(word.substr(0, word.size() - 1))) + (last == '+' ? 1 : -1));
  if (word.front() == '-') return negative(value_of<T>(word.substr(1)));
  const auto found = names.find(word);
  return found != names.end() ? found->second : static_cast<T>(std::stod(word));
}

template <class T>
std::vector<Special<T>> special_values() {
  std::vector<Special<T>> all;
  for (const auto &[functions, rows] : table) {
    std::istringstream names(functions);
    for (std::string name, row; names >> name;) {
      if (name.front() == either<T>('s', 'd')) continue;
      if (name.front() == either<T>('d', 's')) name.erase(0, 1);
      const auto *f = find_function<T>(either<T>("_vxmd", "_vxms") + name + "_HA");
      std::istringstream text(rows);
      while (std::getline(text, row, ';')) {
        std::istringstream words(row);
        const auto word = [&] { return *std::istream_iterator<std::string>(words); };
        Special<T> special = {f, value_of<T>(word())};
        if (f->entry.inputs() == 2) special.b = value_of<T>(word());
        EXPECT_EQ(word(), "=") << name;
        for (int k = 0; k < f->entry.results(); ++k)
          if (const std::string result = word(); result != "~") special.results[k] = value_of<T>(result);
        if (std::string status; words >> status) special.status = static_cast<int32_t>(value_of<T>(status));
        all.push_back(special);
      }
    }
  }
  return all;
}

// What the callback saw.
thread_local int reports;
thread_local VxmErrorContext last_report;

int32_t note_report(VxmErrorContext *record) {
  ++reports;
  last_report = *record;
  return 0;  // the standard handlers follow
}

struct Callback {
  Callback() { _vxmSetErrorCallBack(note_report); }
  ~Callback() { _vxmClearErrorCallBack(), _vxmSetMode(VXM_MODE_DEFAULT); }
};

// The events that the call raises.
template <class T>
int call(const VectorFunction<T> &f, int n, const T *a, const T *b, T *r, T *q) {
  _vxmClearErrStatus();
  reports = errno = 0;
  feclearexcept(FE_ALL_EXCEPT);
  f.entry(n, a, b, r, q);
  return fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT);
}

constexpr int event_of_status[] = {0, FE_INVALID, FE_DIVBYZERO, FE_OVERFLOW, FE_UNDERFLOW};

TYPED_TEST(SpecialValues, AsSingleElements) {
  using T = TypeParam;
  Oracle<T> oracle;
  const Callback callback;
  for (const Special<T> &row : special_values<T>()) {
    SCOPED_TRACE(testing::Message() << row);
    const VectorFunction<T> &f = *row.f;
    T results[2] = {77, 77};
    const int events = call(f, 1, &row.a, &row.b, &results[0], &results[1]), error = errno;
    for (int k = 0; k < f.entry.results(); ++k) {
      const T r = results[k], expected = row.results[k].value_or(r);
      EXPECT_EQ(pattern_of(r), pattern_of(expected)) << r << ", not " << expected;
      const double bound = row.results[k]     ? INFINITY
                           : std::isnormal(r) ? error_bound(f.name)
                                              : subnormal_bound;
      EXPECT_LE(oracle.error(f, k, row.a, row.b, r), bound);
    }
    EXPECT_EQ(_vxmGetErrStatus(), row.status);
    EXPECT_EQ(error, row.status == 0 ? 0 : row.status == VXM_STATUS_ERRDOM ? EDOM : ERANGE);
    const int due = row.status == VXM_STATUS_OVERFLOW ? 0 : event_of_status[row.status];
    EXPECT_EQ(events & due, due);
    ASSERT_EQ(reports, row.status != 0);
    if (reports == 0) continue;
    EXPECT_EQ(last_report.iCode, row.status);
    EXPECT_EQ(pattern_of(static_cast<T>(last_report.dbA1)), pattern_of(row.a));
    EXPECT_EQ(std::string(last_report.cFuncName), f.reported);
    const T second_input = f.entry.inputs() == 2 ? row.b : row.a;
    EXPECT_EQ(pattern_of(static_cast<T>(last_report.dbA2)), pattern_of(second_input));
  }
}

// Pairs of all kinds, whatever they give.
template <class T>
std::vector<Special<T>> wild_values(const VectorFunction<T> &f) {
  std::vector<T> values;
  for (const char *word : {"0", "1", "2", "0.5", "smallest", "normal", "largest", "inf", "quiet",
                           "signalling", "1e300|1e30", "1e20|1e12", "100", "800"})
    values.insert(values.end(), {value_of<T>(word), negative(value_of<T>(word))});
  std::vector<Special<T>> all;
  for (const T a : values)
    for (const T b : f.entry.inputs() == 2 ? values : std::vector<T>{1}) all.push_back({&f, a, b});
  return all;
}

template <class T>
bool is_signalling(T x) {
  return std::isnan(x) && !(pattern_of(x) >> (std::numeric_limits<T>::digits - 2) & 1);
}

// What an element may raise: the event of its status, underflow where the numbers are that small, overflow
// where the result is infinite, and invalid for a signalling NaN.
template <class T>
int allowed_events(T a, T b, T r, T q, int32_t status) {
  int allowed = event_of_status[status];
  const T tiny = either<T>(0x1p-480, 0x1p-60f);
  for (const T x : {a, b, r, q})
    if (std::fabs(x) < tiny && (x != 0 || status == VXM_STATUS_UNDERFLOW)) allowed |= FE_UNDERFLOW;
  const T ratio = std::fabs(a / b);  // the small one of two inputs may vanish beside the other
  if (ratio < tiny || ratio > 1 / tiny) allowed |= FE_UNDERFLOW;
  const bool from_finite = std::isfinite(a) && std::isfinite(b);
  if (from_finite && std::isinf(r) && a != 0 && b != 0) allowed |= FE_OVERFLOW;
  if (std::isnan(r) && !std::isnan(a) && !std::isnan(b)) allowed |= FE_INVALID;
  if (is_signalling(a) || is_signalling(b)) allowed |= FE_INVALID;
  return allowed;
}

// One special element at every place of vectors of every length, of the longer ones at every fifth in turn;
// elements, offset and in place take turns too. Its neighbours keep their ordinary bits.
TYPED_TEST(SpecialValues, InEveryLane) {
  using T = TypeParam;
  constexpr int longest = 130;
  const Callback callback;
  alignas(64) static T a[longest + 2], b[longest + 2], r[longest + 2], q[longest + 2];
  for (const auto &f : vector_functions<T>()) {
    std::vector<Special<T>> rows = wild_values(f);
    for (const Special<T> &row : special_values<T>())
      if (row.f == &f) rows.push_back(row);
    std::vector<T> ordinary_a(longest), ordinary_b(longest), ordinary_results[2] = {ordinary_a, ordinary_a};
    Random random{1};
    for (T &x : ordinary_a) x = ordinary(f.a, random);
    for (T &x : ordinary_b) x = ordinary(f.b, random);
    call(f, longest, &ordinary_a[0], &ordinary_b[0], &ordinary_results[0][0], &ordinary_results[1][0]);
    ASSERT_EQ(_vxmGetErrStatus(), 0) << f.name;
    for_each_level([&](const char *level) {
      size_t turn = 0;
      for (int n = 1; n <= longest; ++n)
        for (int step = n <= 40 ? 1 : 5, place = n % step; place < n; place += step) {
          const Special<T> &row = rows[turn++ % rows.size()];
          const int variant = n + place / step, offset = variant & 1;
          const bool in_place = variant & 2;
          T *const x = a + offset, *const y = b + offset,
                   *const results[2] = {in_place ? x : r + offset, q + offset};
          std::vector<T> expected[2] = {ordinary_results[0], ordinary_results[1]};
          call(f, 1, &row.a, &row.b, &expected[0][place], &expected[1][place]);
          const int32_t status = _vxmGetErrStatus();
          std::copy_n(&ordinary_a[0], n, x);
          std::copy_n(&ordinary_b[0], n, y);
          x[place] = row.a, y[place] = row.b;
          results[0][n] = results[1][n] = 77;
          const int events = call(f, n, x, y, results[0], results[1]);

          bool right = true;
          for (int k = 0; k < f.entry.results(); ++k)
            right = right && memcmp(results[k], &expected[k][0], n * sizeof(T)) == 0 && results[k][n] == 77;
          const T second = f.entry.results() == 2 ? q[offset + place] : T(1);
          const int allowed = allowed_events(row.a, row.b, results[0][place], second, status);
          ASSERT_TRUE(right && _vxmGetErrStatus() == status && reports == (status != 0) &&
                      (!reports || last_report.iIndex == place) && (events & ~allowed) == 0 &&
                      !(status && std::isnormal(results[0][place] / 4)))
              << row << " at " << level << ": length " << n << ", place " << place << ", offset " << offset
              << (in_place ? ", in place" : "") << ", result " << right << ", status " << _vxmGetErrStatus()
              << ", events " << events;
        }
    });
  }
}

}  // namespace
