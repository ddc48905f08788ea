// Every generator of ours as its definition reads, one step at a time, without vectors.
#pragma once

#include <cmath>
#include <cstdint>

#include "simd/vectors.h"

namespace qkr::bench::QKR_SIMD_LEVEL {
namespace {

struct Mcg31Step {
  uint32_t x = 777;
  static constexpr double scale = 1 / 2147483647.0;
  uint32_t operator()() {
    const uint32_t word = x;
    x = static_cast<uint32_t>(uint64_t{x} * 1132489760 % 0x7fffffff);
    return word;
  }
};

struct Mcg59Step {
  uint64_t x = 777;
  static constexpr double scale = 0x1p-59;
  uint64_t operator()() {
    const uint64_t word = x;
    x = x * 302875106592253 & 0x7ffffffffffffff;
    return word;
  }
};

struct WichmannHillStep {
  uint32_t x[4] = {1, 2, 3, 4}, a[4] = {125, 117, 127, 126}, m[4] = {16770647, 16770643, 16770623, 16770617};
  double inverse[4] = {1 / 16770647.0, 1 / 16770643.0, 1 / 16770623.0, 1 / 16770617.0};
  static constexpr double scale = 1;
  void step() {
    for (int j = 0; j < 4; ++j) x[j] = static_cast<uint32_t>(uint64_t{a[j]} * x[j] % m[j]);
  }
  void put(uint32_t *out) {
    for (int j = 0; j < 4; ++j) out[j] = x[j];
    step();
  }
  double operator()() {
    const double u = x[3] * inverse[3] + x[2] * inverse[2] + x[1] * inverse[1] + x[0] * inverse[0];
    step();
    return u - std::trunc(u);
  }
};

struct R250Step {
  uint32_t s[250], x = 777;
  int i = 0, j = 103;
  static constexpr double scale = 0x1p-32;
  R250Step() {
    for (uint32_t &word : s) word = x *= 69069;
  }
  uint32_t operator()() {
    const uint32_t word = s[i] ^= s[j];
    i = i >= 249 ? 0 : i + 1;
    j = j >= 249 ? 0 : j + 1;
    return word;
  }
};

struct Mrg32Step {
  int64_t x[3] = {1, 2, 3}, y[3] = {4, 5, 6};
  static constexpr int64_t m1 = 4294967087, m2 = 4294944443;
  static constexpr double scale = 1.0 / m1;
  uint32_t operator()() {
    int64_t p = (1403580 * x[1] - 810728 * x[0]) % m1, q = (527612 * y[2] - 1370589 * y[0]) % m2;
    if (p < 0) p += m1;
    if (q < 0) q += m2;
    x[0] = x[1], x[1] = x[2], x[2] = p;
    y[0] = y[1], y[1] = y[2], y[2] = q;
    return static_cast<uint32_t>(p > q ? p - q : p - q + m1);
  }
};

template <int n, int m, uint32_t upper, uint32_t a, int shift, uint32_t b, uint32_t c>
struct TwisterStep {
  uint32_t mt[n];
  int index = n;
  static constexpr double scale = 0x1p-32;
  TwisterStep() {
    mt[0] = 5489;
    for (int i = 1; i < n; ++i) mt[i] = (mt[i - 1] ^ (mt[i - 1] >> 30)) * 1812433253 + i;
  }
  void refill() {
    const auto twist = [&](int k, int next, int from) {
      const uint32_t y = (mt[k] & upper) | (mt[next] & ~upper);
      mt[k] = mt[from] ^ (y >> 1) ^ (mt[next] & 1 ? a : 0);
    };
    int k = 0;
    for (; k < n - m; ++k) twist(k, k + 1, k + m);
    for (; k < n - 1; ++k) twist(k, k + 1, k + m - n);
    twist(n - 1, 0, m - 1);
    index = 0;
  }
  uint32_t operator()() {
    if (index >= n) refill();
    uint32_t v = mt[index++];
    v ^= v >> shift;
    v ^= (v << 7) & b;
    v ^= (v << 15) & c;
    return v ^ (v >> 18);
  }
};
using Mt19937Step = TwisterStep<624, 397, 0x80000000, 0x9908b0df, 11, 0x9d2c5680, 0xefc60000>;
using Mt2203Step = TwisterStep<69, 34, 0xffffffe0, 0xaf81055f, 12, 0xdd7eef80, 0xefd78000>;

// The values do not matter for the time, so any direction numbers will do.
template <int dimensions>
struct DigitalStep {
  uint32_t x[dimensions], v[dimensions][33], seq = 1;
  int next = 0;
  static constexpr double scale = 0x1p-32;
  DigitalStep() {
    for (int j = 0; j < dimensions; ++j)
      for (int c = 0; c < 33; ++c) x[j] = v[j][c] = 2654435761u * static_cast<uint32_t>(33 * j + c + 1);
  }
  uint32_t operator()() {
    const uint32_t word = x[next];
    if (++next == dimensions) {
      const int c = __builtin_ctz(~seq);
      for (int j = 0; j < dimensions; ++j) x[j] ^= v[j][c];
      ++seq;
      next = 0;
    }
    return word;
  }
};

}  // namespace
}  // namespace qkr::bench::QKR_SIMD_LEVEL
