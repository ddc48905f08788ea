// Whole numbers by inversion: a table of cumulative probabilities is searched without branches, and what lies
// beyond it is added up mass by mass (L. Devroye, Non-Uniform Random Variate Generation, 1986, chapter 3).
#pragma once

#include "distributions/internal.h"
#include "simd/simd.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int32_t search_block = 512;

// masses[k] becomes the probability of k or less. Sums run from the tail, where the small masses are.
inline void cumulate(int32_t size, double *masses) {
  double behind = 0;
  for (int32_t k = size - 1; k >= 0; --k) {
    const double mass = masses[k];
    masses[k] = behind;
    behind += mass;
  }
  for (int32_t k = 0; k < size; ++k) masses[k] = behind - masses[k];
}

// In rows of eight, filled up with numbers above all uniform ones.
template <int32_t size>
struct Rows {
  static constexpr int32_t count = (size + 7) / 8;
  alignas(64) double row[count][8];

  explicit Rows(const double *ascending) {
    for (int32_t k = 0; k < 8 * count; ++k) row[k / 8][k % 8] = k < size ? ascending[k] : 2.0;
  }

  // For each u, how many elements are not above it; at most 8 count - 1. Whole vectors are read and written.
  void search(int32_t m, const double *u, uint64_t *counts) const {
    constexpr int32_t lanes = sizeof(f64) / sizeof(double);
    for (int32_t i = 0; i < m; i += lanes) {
      f64 x, c0, c1, c2, c3, c4, c5, c6, c7;
      load(u + i, x);
      u64 j = {};
      for (int32_t r = 0; r < count - 1; ++r) j -= (u64)(in_lanes(row[r][7]) <= x);
      look_up(row, j, c0, c1, c2, c3, c4, c5, c6, c7);
      const u64 inside = (u64)(c0 <= x) + (u64)(c1 <= x) + (u64)(c2 <= x) + (u64)(c3 <= x) + (u64)(c4 <= x) +
                         (u64)(c5 <= x) + (u64)(c6 <= x);
      store(counts + i, (j << 3) - inside);
    }
  }
};

// The number for u, which is beyond the table; ratio(k) is the mass of k divided by that of k - 1. The loop
// is bounded for the sake of tables from damaged files, far above what the callers' laws can need. A
// uniform number may be 1 after rounding: then the last number with any mass comes out.
template <class Ratio>
int32_t beyond_table(const double *cumulative, int32_t size, double u, Ratio ratio) {
  constexpr int32_t longest_tail = 1 << 13;
  int32_t k = size - 1;
  double sum = cumulative[k], mass = sum - cumulative[k - 1];
  while (k > 0 && !(cumulative[k - 1] < sum)) --k;
  if (k < size - 1) return k;
  for (; u >= sum && k < size + longest_tail; ++k) {
    mass *= ratio(double(k + 1));
    if (!(sum + mass > sum)) break;
    sum += mass;
  }
  return k;
}

// Fills `out` from blocks of uniform numbers of type Uniform. tail(u) gives the numbers of those beyond the
// table.
template <int32_t size, class Uniform = double, class Tail>
int32_t by_table(StreamState *stream, int32_t n, int32_t *out, const double *cumulative, Tail tail) {
  const Rows<size> rows(cumulative);
  Uniform drawn[search_block];
  double u[search_block];
  uint64_t counts[search_block];
  int32_t status = VXS_STATUS_OK, m;
  for (ptrdiff_t done = 0; done < n && status >= 0; done += m) {
    m = n - done < search_block ? static_cast<int32_t>(n - done) : search_block;
    status = uniforms(stream, m, drawn);
    if (status < 0) break;
    for (int32_t i = 0; i < m; ++i) u[i] = double(drawn[i]);
    for (int32_t i = m; i < search_block && i % 8; ++i) u[i] = 0.0;  // the rest of a vector
    rows.search(m, u, counts);
    int32_t *const block = out + done;
    for (int32_t i = 0; i < m; ++i) block[i] = static_cast<int32_t>(counts[i]);
    int32_t beyond[search_block], count = 0;
    for (int32_t i = 0; i < m; ++i) {
      beyond[count] = i;
      count += u[i] >= cumulative[size - 1];
    }
    for (int32_t j = 0; j < count; ++j) block[beyond[j]] = tail(u[beyond[j]]);
  }
  return status;
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
