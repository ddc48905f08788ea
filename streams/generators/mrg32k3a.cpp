// MRG32K3A: two recurrences of order three, combined. P. L'Ecuyer, Good parameters and implementations for
// combined multiple recursive random number generators, Operations Research 47 (1999) 159.
//
// Each component also obeys a recurrence with lags of 24 to 56 and coefficients below 2^19, which lattice
// reduction finds (tools/tables/mrg32k3a.py). So whole vectors of successive numbers follow from earlier
// ones, and with residues held between -m/2 and m/2 every sum is a whole number below 2^51: exact in double
// precision, in any order, with fused operations or without.
#include "streams/generators/generator.h"
#include "streams/generators/skips.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int lag_count = 5;
constexpr int lags[lag_count] = {24, 32, 40, 48, 56};

struct Component {
  int64_t modulus;
  int64_t by1, by2, by3;  // z[n] = by1 z[n-1] + by2 z[n-2] + by3 z[n-3]
  int32_t lagged[lag_count];

  constexpr int64_t next(const int64_t *last3) const {
    const int64_t z = (by1 * last3[2] + by2 * last3[1] + by3 * last3[0]) % modulus;
    return z < 0 ? z + modulus : z;
  }
  constexpr int64_t centred(int64_t z) const { return z > modulus / 2 ? z - modulus : z; }
};
constexpr Component first = {4294967087, 0, 1403580, -810728, {12152, -224795, -39170, 264322, 58953}};
constexpr Component second = {4294944443, 527612, 0, -1370589, {-106136, -246841, 143814, -167372, -191241}};

struct Mrg32k3a {
  uint32_t x[3], y[3];  // the last three residues of each component, oldest first
};

// The first numbers come from the state itself, as sums over its three words, each cut into halves of 16
// bits: the sums stay below 6 * 2^31 * 2^16. Row 2 j + 1 is row 2 j times 2^16.
constexpr int started = 64;  // more than the longest lag
struct StartTable {
  double row[6][started];
};
constexpr StartTable make_start_table(const Component &component) {
  StartTable table = {};
  for (int j = 0; j < 3; ++j) {
    int64_t z[3 + started] = {j == 0, j == 1, j == 2};
    for (int i = 0; i < started; ++i) {
      z[3 + i] = component.next(z + i);
      table.row[2 * j][i] = (double)component.centred(z[3 + i]);
      table.row[2 * j + 1][i] = (double)component.centred((z[3 + i] << 16) % component.modulus);
    }
  }
  return table;
}
alignas(64) constexpr StartTable start_of_first = make_start_table(first);
alignas(64) constexpr StartTable start_of_second = make_start_table(second);

// The difference of both sides of the lagged recurrence obeys the recurrence of order three; so it is zero
// everywhere if it is zero in three successive places, for each of three independent sequences.
constexpr bool lagged_recurrence_holds(const Component &component, const StartTable &table) {
  constexpr int longest = lags[lag_count - 1];
  for (int j = 0; j < 3; ++j) {
    for (int n = longest; n < longest + 3; ++n) {
      int64_t sum = 0;
      for (int i = 0; i < lag_count; ++i) {
        sum += component.lagged[i] * (int64_t)table.row[2 * j][n - lags[i]];
      }
      if ((sum - (int64_t)table.row[2 * j][n]) % component.modulus != 0) return false;
    }
  }
  return true;
}
static_assert(lagged_recurrence_holds(first, start_of_first));
static_assert(lagged_recurrence_holds(second, start_of_second));

// The residue of t that lies within half a modulus of 0, or a hair beyond: either serves.
template <class V>
QKR_INLINE V reduced(V t, const Component &component) {
  constexpr double to_whole = 0x1.8p52;
  const double modulus = (double)component.modulus;
  const V quotient = (t * (1.0 / modulus) + to_whole) - to_whole;
  return exact_mad(quotient, -modulus, t);
}

// One component as a line of residues; the first `started` of them are followed by what they lead to.
constexpr int stretch = 512;
struct Line {
  alignas(64) double z[started + stretch];

  template <class V>
  QKR_INLINE V start(int i, const double *halves, const Component &component, const StartTable &table) {
    V sum, factor;
    load(table.row[0] + i, sum);
    sum = sum * halves[0];
#pragma GCC unroll 8
    for (int j = 1; j < 6; ++j) {
      load(table.row[j] + i, factor);
      sum = exact_mad(factor, halves[j], sum);
    }
    return keep(i, reduced(sum, component));
  }

  template <class V>
  QKR_INLINE V extend(int i, const Component &component) {
    V sum, term;
    load(z + i - lags[lag_count - 1], sum);
    sum = sum * (double)component.lagged[lag_count - 1];
#pragma GCC unroll 8
    for (int k = lag_count - 2; k >= 0; --k) {
      load(z + i - lags[k], term);
      sum = exact_mad(term, (double)component.lagged[k], sum);
    }
    return keep(i, reduced(sum, component));
  }

  template <class V>
  QKR_INLINE V keep(int i, V residues) {
    store(z + i, residues);
    return residues;
  }

  QKR_INLINE void back_to_start() { memcpy(z, z + stretch, started * sizeof *z); }

  // The three residues before place `end`.
  QKR_INLINE void leave(int end, uint32_t *last3, const Component &component) const {
    for (int j = 0; j < 3; ++j) {
      const int64_t residue = (int64_t)z[end - 3 + j];
      last3[j] = (uint32_t)(residue < 0 ? residue + component.modulus : residue);
    }
  }
};

template <class V>
QKR_INLINE V combined(V p, V q) {
  const double m1 = (double)first.modulus, m2 = (double)second.modulus;
  const auto reduced = [](V x, double limit, double modulus) { return x + zero_unless(x < limit, modulus); };
  return reduced(reduced(p, 0.0, m1) - reduced(q, 0.0, m2), 1.0, m1);
}

QKR_INLINE uint32_t step(Mrg32k3a &state) {
  const auto advance = [](uint32_t *z, const Component &component) {
    const int64_t last3[3] = {z[0], z[1], z[2]};
    const int64_t next = component.next(last3);
    z[0] = z[1], z[1] = z[2], z[2] = (uint32_t)next;
    return next;
  };
  const int64_t p = advance(state.x, first), q = advance(state.y, second);
  return (uint32_t)(p > q ? p - q : p - q + first.modulus);
}

// Vectors of numbers from make(i), and what is left of the last one.
template <class Output, class Make>
QKR_INLINE void draw(int count, typename Output::Element *out, const Output &output, Make make) {
  int i = 0;
  for (; i + lanes <= count; i += lanes) put(output, out + i, make(i));
  if (i < count) {
    typename Output::Element last[lanes];
    put(output, last, make(i));
    memcpy(out + i, last, (size_t)(count - i) * sizeof *last);
  }
}

template <class Output>
QKR_INLINE void fill(StreamState *stream, int32_t n, typename Output::Element *out, Output output) {
  using V = Two<f64>;
  Mrg32k3a &state = payload_of<Mrg32k3a>(stream);
  if (n < 8) {  // the first vector would cost more than it brings
    Mrg32k3a local = state;
    for (int i = 0; i < n; ++i) output.put_one(out + i, step(local));
    state = local;
    return;
  }

  Line x, y;
  double halves_of_x[6], halves_of_y[6];
  for (int j = 0; j < 3; ++j) {
    halves_of_x[2 * j] = state.x[j] & 0xffff, halves_of_x[2 * j + 1] = state.x[j] >> 16;
    halves_of_y[2 * j] = state.y[j] & 0xffff, halves_of_y[2 * j + 1] = state.y[j] >> 16;
  }
  int end = n < started ? n : started;
  draw(end, out, output, [&](int i) {
    return combined(x.start<V>(i, halves_of_x, first, start_of_first),
                    y.start<V>(i, halves_of_y, second, start_of_second));
  });
  for (int done = end; done < n; done += end - started) {
    if (end > started) x.back_to_start(), y.back_to_start();
    end = started + (n - done < stretch ? n - done : stretch);
    draw(end - started, out + done, output,
         [&](int i) { return combined(x.extend<V>(started + i, first), y.extend<V>(started + i, second)); });
  }
  x.leave(end, state.x, first);
  y.leave(end, state.y, second);
}

#if QKR_BASELINE
// Once only: seeds stand below twice the moduli.
void reduce_seeds(StreamState *stream) {
  const auto validate = [](uint32_t *z, uint32_t modulus) {
    for (int j = 0; j < 3; ++j) z[j] -= z[j] >= modulus ? modulus : 0;
    if ((z[0] | z[1] | z[2]) == 0) z[0] = 1;
  };
  Mrg32k3a &state = payload_of<Mrg32k3a>(stream);
  validate(state.x, first.modulus);
  validate(state.y, second.modulus);
}

struct Methods : NotPartitioned {
  static int32_t seed(StreamState *stream, int32_t n, const uint32_t *seeds) {
    Mrg32k3a &state = payload_of<Mrg32k3a>(stream);
    uint32_t words[6];
    for (int j = 0; j < 6; ++j) words[j] = j < n ? seeds[j] : 1;
    memcpy(&state, words, sizeof state);
    reduce_seeds(stream);
    return VXS_STATUS_OK;
  }
  static int32_t skip_ahead(StreamState *stream, int32_t count) { return skip(stream, (uint32_t)count); }
  static int32_t skip(StreamState *stream, uint64_t count) {
    Mrg32k3a &state = payload_of<Mrg32k3a>(stream);
    const auto advance = [count](uint32_t *z, const Component &component) {
      const int64_t m = component.modulus;
      const auto residue = [m](int64_t c) { return (uint32_t)(c < 0 ? c + m : c); };
      const uint32_t coefficients[3] = {residue(component.by1), residue(component.by2),
                                        residue(component.by3)};
      advance_recurrence(z, coefficients, (uint32_t)m, count);
    };
    advance(state.x, first);
    advance(state.y, second);
    return VXS_STATUS_OK;
  }
};
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
int32_t qkr::skip_mrg32k3a(StreamState *stream, uint64_t count) { return sse2::Methods::skip(stream, count); }
#endif

QKR_INIT_STREAM(__vxsBRngMRG32K3AInitStream, Methods)
QKR_WORD_ENTRY(__vxsiBRngMRG32K3A, fill(stream, n, out, Words{}))
QKR_REAL_ENTRY(__vxsdBRngMRG32K3A, double, fill(stream, n, out, doubles((b - a) / 4294967087.0, a)))
QKR_REAL_ENTRY(__vxssBRngMRG32K3A, float, fill(stream, n, out, singles(((double)b - a) / 4294967087.0, a)))
