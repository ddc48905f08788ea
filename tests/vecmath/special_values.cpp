// Rows: function, inputs, result, status.
#include "tests/vecmath/special_values.h"

#define NAME(function) either<T>("_vxmd" #function "_HA", "_vxms" #function "_HA")

namespace qkr::tests {
namespace {

template <class T>
T nan(Pattern<T> low_bits, bool signalling = false, bool negative = false) {
  constexpr int quiet_bit = std::numeric_limits<T>::digits - 2;
  Pattern<T> pattern = pattern_of(std::numeric_limits<T>::infinity()) | low_bits;
  if (!signalling) pattern |= Pattern<T>(1) << quiet_bit;
  if (negative) pattern |= ~(~Pattern<T>() >> 1);
  return from_pattern<T>(pattern);
}

template <class T>
T next_up(T x) {
  return of_rank<T>(rank(x) + 1);
}
template <class T>
T next_down(T x) {
  return of_rank<T>(rank(x) - 1);
}

// Where Exp changes its ways: the last input before each threshold and the first behind it.
std::vector<Special<double>> exp_thresholds(double) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  constexpr double smallest = std::numeric_limits<double>::denorm_min();
  constexpr auto name = "_vxmdExp_HA";
  return {
      {name, next_down(708.39599609375), 0, accurate, 0},
      {name, 708.39599609375, 0, accurate, 0},
      {name, next_up(-708.39599609375), 0, accurate, 0},
      {name, -708.39599609375, 0, accurate, 0},
      {name, from_pattern<double>(0x40862E37E7D8BA71), 0, accurate, 0},
      {name, from_pattern<double>(0x40862E37E7D8BA72), 0, accurate, 0},
      {name, 709.78, 0, accurate, 0},
      {name, from_pattern<double>(0x40862E42FEFA39EF), 0, accurate, 0},
      {name, from_pattern<double>(0x40862E42FEFA39F0), 0, inf, 3},
      {name, 710, 0, inf, 3},
      {name, from_pattern<double>(0xC086232BDD7ABCD0), 0, accurate, 0},
      {name, from_pattern<double>(0xC086232BDD7ABCD1), 0, accurate, 4},
      {name, -708.4, 0, accurate, 4},
      {name, from_pattern<double>(0xC0874910D52D3051), 0, smallest, 4},
      {name, from_pattern<double>(0xC0874910D52D3052), 0, 0.0, 4},
      {name, -746, 0, 0.0, 4},
  };
}

std::vector<Special<float>> exp_thresholds(float) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  constexpr float smallest = std::numeric_limits<float>::denorm_min();
  constexpr auto name = "_vxmsExp_HA";
  return {
      {name, next_down(87.3365478515625f), 0, accurate, 0},
      {name, 87.3365478515625f, 0, accurate, 0},
      {name, 88.5f, 0, accurate, 0},
      {name, next_down(88.72283935546875f), 0, accurate, 0},
      {name, 88.72283935546875f, 0, inf, 3},
      {name, 89, 0, inf, 3},
      {name, next_up(-87.3365478515625f), 0, accurate, 0},
      {name, -87.3365478515625f, 0, accurate, 4},
      {name, -100, 0, accurate, 4},
      {name, next_up(-103.27893829345703f), 0, smallest, 4},
      {name, -103.27893829345703f, 0, 0.0f, 4},
      {name, -104, 0, 0.0f, 4},
  };
}

// NaNs that differ in whether they count as an infinity, infinities, zeros, and the smallest numbers.
template <class T>
std::vector<Special<T>> circular_values(T inf, T smallest, T normal, T largest) {
  const T indefinite = nan<T>(0, false, true);
  const T quiet = nan<T>(0x1234), negative_quiet = nan<T>(0x1234, false, true);
  const bool is_double = sizeof(T) == 8;
  const struct {
    const char *name;
    Expected<T> of_zero, of_negative_zero;
  } functions[] = {
      {NAME(Sin), T(0), either<T>(0.0, -0.0f)},
      {NAME(SinCos), T(0), either<T>(0.0, -0.0f)},
      {NAME(Tan), T(0), -T(0)},
      {NAME(Cos), T(1), T(1)},
  };
  std::vector<Special<T>> rows;
  for (const auto &f : functions) {
    const auto add = [&](T a, Expected<T> result, int32_t status, Expected<T> cosine) {
      rows.push_back({f.name, a, 0, result, status, cosine});
    };
    const auto add_nan = [&](T a, T result, int32_t status) { add(a, result, status, result); };
    add_nan(inf, indefinite, 1);
    add_nan(-inf, indefinite, 1);
    add_nan(quiet, is_double ? indefinite : quiet, 0);
    add_nan(negative_quiet, is_double ? indefinite : negative_quiet, 0);
    add_nan(nan<T>(0x1234, true), is_double ? indefinite : quiet, is_double ? 1 : 0);  // high word 0x7FF00000
    add(0, f.of_zero, 0, T(1));
    add(-T(0), f.of_negative_zero, 0, T(1));
    for (T x : {smallest, -normal, -largest, T(1e22)}) add(x, accurate, 0, accurate);
  }
  return rows;
}

// The inverse functions; those of one sign are odd or have rows of their own.
template <class T>
std::vector<Special<T>> inverse_values(T inf, T smallest, T normal, T largest) {
  const T domain_nan = nan<T>(0, false, true), above = next_up(T(1)), below = next_down(T(1));
  const T quiet = nan<T>(0x1234), negative_quiet = nan<T>(0x1234, false, true);
  std::vector<Special<T>> rows = {
      {NAME(Atan), inf, 0, accurate, 0},
      {NAME(Atan), largest, 0, accurate, 0},
      {NAME(Asin), 1, 0, accurate, 0},
      {NAME(Acos), 1, 0, T(0), 0},
      {NAME(Acos), -1, 0, accurate, 0},
      {NAME(Acos), 0, 0, accurate, 0},
      {NAME(Acosh), 1, 0, T(0), 0},
      {NAME(Acosh), above, 0, accurate, 0},
      {NAME(Acosh), largest, 0, accurate, 0},
      {NAME(Acosh), inf, 0, inf, 0},
      {NAME(Asinh), inf, 0, inf, 0},
      {NAME(Asinh), largest, 0, accurate, 0},
      {NAME(Atanh), 1, 0, inf, 2},
      {NAME(Atanh), -1, 0, -inf, 2},
      {NAME(Atanh), below, 0, accurate, 0},
      {NAME(Atan2), quiet, inf, quiet, 0},
      {NAME(Atan2), 0, quiet, quiet, 0},
      {NAME(Atan2), smallest, inf, T(0), 0},
      {NAME(Atan2), -1, inf, -T(0), 0},
      {NAME(Atan2), 0, 1, T(0), 0},
      {NAME(Atan2), -T(0), largest, -T(0), 0},
      {NAME(Atan2), 0, 0, T(0), 0},
      {NAME(Atan2), -T(0), 0, -T(0), 0},
  };
  for (const char *name : {NAME(Asin), NAME(Acos), NAME(Atanh)})
    for (const T x : {above, -above, largest, inf, -inf}) rows.push_back({name, x, 0, domain_nan, 1});
  for (const T x : {below, T(0), -T(0), -smallest, T(-1), -largest, -inf})
    rows.push_back({NAME(Acosh), x, 0, domain_nan, 1});
  for (const char *name : {NAME(Atan), NAME(Asin), NAME(Acos), NAME(Acosh), NAME(Asinh), NAME(Atanh)}) {
    rows.push_back({name, quiet, 0, quiet, 0});
    rows.push_back({name, negative_quiet, 0, negative_quiet, 0});
    rows.push_back({name, nan<T>(0x1234, true), 0, quiet, 0});
  }
  for (const char *name : {NAME(Atan), NAME(Asin), NAME(Asinh), NAME(Atanh)})
    for (const T x : {T(0), -T(0), smallest, -smallest, normal, next_down(normal)})
      rows.push_back({name, x, 0, x, 0});
  // Axes, diagonals and corners, where the angle is a multiple of pi/4.
  for (const T sign : {T(1), T(-1)})
    for (const T x : {-T(0), -smallest, T(1), -largest, inf, -inf})
      for (const T y : {T(0), smallest, largest, inf})
        if (x < 0 || y > 0) rows.push_back({NAME(Atan2), std::copysign(y, sign), x, accurate, 0});
  return rows;
}

}  // namespace

template <class T>
std::vector<Special<T>> special_values() {
  constexpr T inf = std::numeric_limits<T>::infinity();
  constexpr T smallest = std::numeric_limits<T>::denorm_min(), normal = std::numeric_limits<T>::min();
  constexpr T largest = std::numeric_limits<T>::max();
  const T subnormal = next_down(normal), quiet = nan<T>(0x1234), negative_quiet = nan<T>(0x1234, false, true);
  const T signalling = nan<T>(0x1234, true);
  const T default_nan = nan<T>(0, false, true);  // what the processor makes of 0 / 0
  const T domain_nan = default_nan;              // and most kernels of a domain error
  const T ln_domain_nan = either<T>(default_nan, from_pattern<float>(0x7FFC0000));
  const T cosh_overflow = either<T>(0x1.633ce8fb9f87ep+9, 0x1.65a9fap+6f);  // the first number to overflow
  const T all_ones = from_pattern<T>(~Pattern<T>());
  const bool is_double = sizeof(T) == 8;

  std::vector<Special<T>> rows = {
      {NAME(Exp), quiet, 0, is_double ? all_ones : quiet, 0},
      {NAME(Exp), negative_quiet, 0, is_double ? all_ones : negative_quiet, 0},
      {NAME(Exp), signalling, 0, is_double ? all_ones : quiet, 0},
      {NAME(Exp), inf, 0, inf, 0},
      {NAME(Exp), -inf, 0, T(0), 0},
      {NAME(Exp), 0, 0, T(1), 0},
      {NAME(Exp), -T(0), 0, T(1), 0},
      {NAME(Exp), smallest, 0, T(1), 0},
      {NAME(Exp), -normal, 0, T(1), 0},
      {NAME(Exp), largest, 0, inf, 3},
      {NAME(Exp), -largest, 0, T(0), 4},

      {NAME(Sqrt), quiet, 0, quiet, 0},
      {NAME(Sqrt), negative_quiet, 0, negative_quiet, 0},
      {NAME(Sqrt), signalling, 0, quiet, 0},
      {NAME(Sqrt), inf, 0, inf, 0},
      {NAME(Sqrt), 0, 0, T(0), 0},
      {NAME(Sqrt), -T(0), 0, -T(0), 0},
      {NAME(Sqrt), -inf, 0, domain_nan, 1},
      {NAME(Sqrt), -1, 0, domain_nan, 1},
      {NAME(Sqrt), -smallest, 0, domain_nan, 1},
      {NAME(Sqrt), -largest, 0, domain_nan, 1},
      {NAME(Sqrt), smallest, 0, accurate, 0},
      {NAME(Sqrt), subnormal, 0, accurate, 0},
      {NAME(Sqrt), normal, 0, accurate, 0},
      {NAME(Sqrt), largest, 0, accurate, 0},

      {NAME(Erf), quiet, 0, quiet, 0},
      {NAME(Erf), signalling, 0, quiet, 0},
      {NAME(Erf), inf, 0, T(1), 0},
      {NAME(Erf), -inf, 0, T(-1), 0},
      {NAME(Erf), -largest, 0, T(-1), 0},
      {NAME(Erf), 0, 0, T(0), 0},
      {NAME(Erf), -T(0), 0, -T(0), 0},
      {NAME(Erf), smallest, 0, accurate, 0},
      {NAME(Erf), -subnormal, 0, accurate, 0},

      {NAME(Erfc), negative_quiet, 0, negative_quiet, 0},
      {NAME(Erfc), signalling, 0, quiet, 0},
      {NAME(Erfc), inf, 0, T(0), 0},
      {NAME(Erfc), -inf, 0, T(2), 0},
      {NAME(Erfc), -largest, 0, T(2), 0},
      {NAME(Erfc), largest, 0, T(0), 4},
      {NAME(Erfc), -smallest, 0, T(1), 0},
      {NAME(Erfc), either<T>(26.543, 9.1945f), 0, accurate, 0},
      {NAME(Erfc), either<T>(26.544, 9.195f), 0, accurate, 4},
      {NAME(Erfc), either<T>(27.226, 10.05f), 0, smallest, 4},
      {NAME(Erfc), either<T>(27.25, 10.1f), 0, T(0), 4},

      {NAME(ErfInv), quiet, 0, quiet, 0},
      {NAME(ErfInv), signalling, 0, quiet, 0},
      {NAME(ErfInv), 1, 0, inf, 2},
      {NAME(ErfInv), -1, 0, -inf, 2},
      {NAME(ErfInv), next_up(T(1)), 0, default_nan, 1},
      {NAME(ErfInv), -inf, 0, default_nan, 1},
      {NAME(ErfInv), next_down(T(1)), 0, accurate, 0},
      {NAME(ErfInv), -T(0), 0, -T(0), 0},
      {NAME(ErfInv), smallest, 0, accurate, 0},
      {NAME(ErfInv), -subnormal, 0, accurate, 0},

      {NAME(Div), 1, 0, inf, 2},
      {NAME(Div), 1, -T(0), -inf, 2},
      {NAME(Div), -smallest, 0, -inf, 2},
      {NAME(Div), 0, 0, default_nan, 2},
      {NAME(Div), inf, 0, inf, is_double ? 0 : 2},
      {NAME(Div), -inf, 0, -inf, is_double ? 0 : 2},
      {NAME(Div), quiet, 0, quiet, is_double ? 0 : 2},
      {NAME(Div), signalling, 1, quiet, 0},
      {NAME(Div), 1, negative_quiet, negative_quiet, 0},
      {NAME(Div), inf, inf, default_nan, 0},
      {NAME(Div), -0.0, 7, -T(0), 0},
      {NAME(Div), 7, -inf, -T(0), 0},
      {NAME(Div), 1, smallest, inf, 0},
      {NAME(Div), largest, T(0.5), inf, 0},
      {NAME(Div), smallest, 4, T(0), 0},
      {NAME(Div), normal, 3, accurate, 0},

      {NAME(InvSqrt), 0, 0, inf, 2},
      {NAME(InvSqrt), -T(0), 0, -inf, 2},
      {NAME(InvSqrt), -1, 0, nan<T>(0, false, true), 1},
      {NAME(InvSqrt), -inf, 0, nan<T>(0, false, true), 1},
      {NAME(InvSqrt), inf, 0, T(0), 0},
      {NAME(InvSqrt), std::numeric_limits<T>::denorm_min(), 0, accurate, 0},
      {NAME(Cbrt), -inf, 0, -inf, 0},
      {NAME(Cbrt), -T(0), 0, -T(0), 0},
      {NAME(Cbrt), std::numeric_limits<T>::denorm_min(), 0, accurate, 0},
      {NAME(InvCbrt), -T(0), 0, -inf, 2},
      {NAME(InvCbrt), -inf, 0, -T(0), 0},
      {NAME(InvCbrt), -std::numeric_limits<T>::denorm_min(), 0, accurate, 0},
      {NAME(Hypot), inf, nan<T>(1), inf, 0},
      {NAME(Hypot), nan<T>(1), 1, nan<T>(1), 0},
      {NAME(Hypot), std::numeric_limits<T>::max(), std::numeric_limits<T>::max(), inf, 3},
      {NAME(Hypot), std::numeric_limits<T>::denorm_min(), 0, std::numeric_limits<T>::denorm_min(), 0},
      {NAME(Hypot), -T(0), -T(0), T(0), 0},
      {NAME(Cosh), quiet, 0, quiet, 0},
      {NAME(Cosh), -inf, 0, inf, 0},
      {NAME(Cosh), -T(0), 0, T(1), 0},
      {NAME(Cosh), smallest, 0, T(1), 0},
      {NAME(Cosh), -cosh_overflow, 0, inf, 3},
      {NAME(Cosh), largest, 0, inf, 3},
      {NAME(Cosh), std::nextafter(cosh_overflow, T(0)), 0, accurate, 0},
      {NAME(Sinh), negative_quiet, 0, negative_quiet, 0},
      {NAME(Sinh), -inf, 0, -inf, 0},
      {NAME(Sinh), -T(0), 0, -T(0), 0},
      {NAME(Sinh), -smallest, 0, -smallest, 0},
      {NAME(Sinh), normal, 0, normal, 0},
      {NAME(Sinh), -cosh_overflow, 0, -inf, 3},
      {NAME(Sinh), largest, 0, inf, 3},
      {NAME(Sinh), -std::nextafter(cosh_overflow, T(0)), 0, accurate, 0},
      {NAME(Tanh), signalling, 0, quiet, 0},
      {NAME(Tanh), -inf, 0, -T(1), 0},
      {NAME(Tanh), -T(0), 0, -T(0), 0},
      {NAME(Tanh), -smallest, 0, -smallest, 0},
      {NAME(Tanh), subnormal, 0, subnormal, 0},
      {NAME(Tanh), normal, 0, normal, 0},
      {NAME(Tanh), -largest, 0, -T(1), 0},
      {NAME(Pow), nan<T>(1), 0, T(1), 0},
      {NAME(Pow), 1, nan<T>(1), T(1), 0},
      {NAME(Pow), -T(0), -3, -inf, 2},
      {NAME(Pow), -T(0), -2, inf, 2},
      {NAME(Pow), 0, -inf, inf, 0},
      {NAME(Pow), -T(0), 3, -T(0), 0},
      {NAME(Pow), -1, inf, T(1), 0},
      {NAME(Pow), -2, T(0.5), nan<T>(0, false, true), 1},
      {NAME(Pow), -2, 3, T(-8), 0},
      {NAME(Pow), -inf, -3, -T(0), 0},
      {NAME(Pow), T(0.5), -inf, inf, 0},
      {NAME(Pow), 10, 400, inf, 3},
      {NAME(Pow), -10, 401, -inf, 3},
      {NAME(Pow), 10, -400, T(0), 4},
      {NAME(Pow), 2, either<T>(T(-1060), T(-140)), either<T>(T(0x1p-1060), T(0x1p-140f)), 4},
      {NAME(Inv), 0, 0, inf, 2},
      {NAME(Inv), -T(0), 0, -inf, 2},
      {NAME(Inv), inf, 0, T(0), 0},
      {NAME(Inv), -inf, 0, -T(0), 0},
      {NAME(Inv), quiet, 0, quiet, 0},
      {NAME(Inv), signalling, 0, quiet, 0},
      {NAME(Inv), smallest, 0, inf, 0},
      {NAME(Inv), -subnormal, 0, accurate, 0},
      {NAME(Inv), largest, 0, accurate, 0},
  };

  const struct {
    const char *name;
    T domain_nan;
  } logarithms[] = {{NAME(Ln), ln_domain_nan}, {NAME(Log10), domain_nan}};
  for (const auto &log : logarithms)
    for (const Special<T> &row : {
             Special<T>{log.name, quiet, 0, quiet, 0},  // a NaN stays as it stands
             {log.name, negative_quiet, 0, negative_quiet, 0},
             {log.name, signalling, 0, signalling, 0},
             {log.name, inf, 0, inf, 0},
             {log.name, 0, 0, -inf, 2},
             {log.name, -T(0), 0, -inf, 2},
             {log.name, -inf, 0, log.domain_nan, 1},
             {log.name, -1, 0, log.domain_nan, 1},
             {log.name, -smallest, 0, log.domain_nan, 1},
             {log.name, -largest, 0, log.domain_nan, 1},
             {log.name, 1, 0, T(0), 0},
             {log.name, smallest, 0, accurate, 0},
             {log.name, subnormal, 0, accurate, 0},
             {log.name, normal, 0, accurate, 0},
             {log.name, largest, 0, accurate, 0},
         })
      rows.push_back(row);
  for (const Special<T> &row : exp_thresholds(T())) rows.push_back(row);
  for (const Special<T> &row : circular_values<T>(inf, smallest, normal, largest)) rows.push_back(row);
  for (const Special<T> &row : inverse_values<T>(inf, smallest, normal, largest)) rows.push_back(row);
  return rows;
}
template std::vector<Special<double>> special_values();
template std::vector<Special<float>> special_values();

}  // namespace qkr::tests
