// How a length is taken apart.
#pragma once

#include "sigfft/any_length/plan/plan.h"

namespace qkr::sigfft {

constexpr int32_t largest_factor = 150;

// The factors in the order of the stages, the last one behind them; false if one is too large, or if a length
// is a single factor. Lengths that are powers of two have a route of their own.
struct Factors {
  int32_t of[most_stages + 1];
  int32_t stages;
};
bool find_factors(int32_t length, Factors *factors);

// Makes the last factor of an even length even, so that all subtransforms are of even length.
void move_even_factor(Factors *factors);

// The numbers that the work area of the factors route has for a butterfly of the largest factor above 5.
int32_t butterfly_numbers(int32_t length, const Factors &factors);

}  // namespace qkr::sigfft
