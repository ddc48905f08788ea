// How a length is taken apart: by 4 first, which makes the cheapest stages, then by odd divisors.
#include "sigfft/any_length/plan/factors.h"

namespace qkr::sigfft {

bool find_factors(int32_t length, Factors *factors) {
  int32_t n = length, count = 0;
  const auto append = [&](int32_t factor) { factors->of[count++] = factor; };
  for (; n % 4 == 0; n /= 4) append(4);
  if (n % 2 == 0) {
    // A lone 2 goes to the front, and the 4 that stood there to the end.
    append(count ? 4 : 2);
    factors->of[0] = 2;
    n /= 2;
  }
  if (n >= 9) {
    int32_t divisor = 3;
    do {
      if (n % divisor == 0) {
        append(divisor);
        n /= divisor;
      } else {
        divisor += 2;
        if (divisor > largest_factor) return false;
      }
    } while (n >= divisor * divisor);
  }
  if (!count || n > largest_factor) return false;
  factors->stages = count;
  append(n);
  return true;
}

void move_even_factor(Factors *factors) {
  int32_t *const f = factors->of;
  const int even = f[0] == 4 ? 0 : f[1] == 4 ? 1 : 0;
  if (f[even] % 2) return;
  const int32_t last = f[factors->stages];
  f[factors->stages] = f[even];
  f[even] = last;
}

int32_t butterfly_numbers(int32_t length, const Factors &factors) {
  int32_t numbers = 0;
  for (int i = 0, rest = length; i <= factors.stages; ++i) {
    const int32_t factor = factors.of[i];
    rest /= factor;
    if (factor <= 5) continue;
    const int32_t needed = rest % 2 == 0 ? 2 * factor : factor;
    if (needed > numbers) numbers = needed;
  }
  return numbers;
}

}  // namespace qkr::sigfft
