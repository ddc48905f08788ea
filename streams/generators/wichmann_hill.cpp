// WH: four multiplicative generators with prime moduli below 2^24, whose fractions x / m add up to one real
// (B. A. Wichmann and I. D. Hill, Applied Statistics 31 (1982) 188; with four components: N. M. Maclaren,
// Applied Statistics 38 (1989) 351). The residues are doubles here: products stay below 2^48, so they are
// exact.
#include "streams/generators/congruential.h"
#include "streams/generators/skips.h"
#include "streams/generators/soundness.h"
#include "streams/tables/tables.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

constexpr int components = 4;

struct WichmannHill {
  uint32_t x[components], a[components];
};

// a x mod m. The quotient x inverse a is off by less than 2^-27, and the true one lies at least 1 / m > 2^-24
// away from whole numbers, m being prime: so its whole part is right. For x = 0 it is 0.
template <class V, class M>
QKR_INLINE V product(V x, M a, M m, M inverse) {
  const V quotient = whole_part(x * inverse * a);
  return exact_mad(quotient, 0.0 - m, x * a);
}

// Element i of a line of `line_length` times the component: x a^i mod m. Leaves in a its power that leads
// from one line to the next. `stride` is the distance of successive elements.
QKR_INLINE void fill_line(double *line, int line_length, int stride, double x, double &a, double m,
                          double inverse) {
  line[0] = x;
  for (int filled = 1; filled < line_length; filled *= 2) {
    for (int i = 0; i < filled; ++i) line[(filled + i) * stride] = product(line[i * stride], a, m, inverse);
    a = product(a, a, m, inverse);
  }
}

// Reals: the fraction of the sum of x / m over the components.
template <class V>
QKR_INLINE V fraction(const V (&x)[components], const double *inverse) {
  const V sum = x[3] * inverse[3] + x[2] * inverse[2] + x[1] * inverse[1] + x[0] * inverse[0];
  return sum - whole_part(sum);
}

template <class Output>
QKR_INLINE void fill(StreamState *stream, int32_t n, typename Output::Element *out, Output output) {
  WichmannHill &state = payload_of<WichmannHill>(stream);
  const int32_t member = family_member(stream);
  const double *inverse = wichmann_hill::inverse_moduli[member];
  double x[components], a[components], m[components];
  for (int j = 0; j < components; ++j) {
    x[j] = state.x[j];
    a[j] = state.a[j];
    m[j] = wichmann_hill::moduli[member][j];
  }

  ptrdiff_t i = 0;
  if (n >= 2 * lanes) {
    double line[components][lanes], onward[components];
    Two<f64> v[components];
    for (int j = 0; j < components; ++j) {
      onward[j] = a[j];
      fill_line(line[j], lanes, 1, x[j], onward[j], m[j], inverse[j]);
    }
#pragma GCC unroll 4
    for (int j = 0; j < components; ++j) load(line[j], v[j]);
    for (; i + lanes <= n; i += lanes) {
      output.put(out + i, fraction(v, inverse));
#pragma GCC unroll 4
      for (int j = 0; j < components; ++j) v[j] = product(v[j], onward[j], m[j], inverse[j]);
    }
    for (int j = 0; j < components; ++j) x[j] = v[j].a[0];
  }
  for (; i < n; ++i) {
    output.put_one(out + i, fraction(x, inverse));
    for (int j = 0; j < components; ++j) x[j] = product(x[j], a[j], m[j], inverse[j]);
  }
  for (int j = 0; j < components; ++j) state.x[j] = (uint32_t)x[j];
}

// Integers: the four residues of each element. A vector holds components of successive elements in turn.
QKR_INLINE void fill_words(StreamState *stream, int32_t n, uint32_t *out) {
  WichmannHill &state = payload_of<WichmannHill>(stream);
  const int32_t member = family_member(stream);
  double x[components], a[components], m[components], inverse[components];
  for (int j = 0; j < components; ++j) {
    x[j] = state.x[j];
    a[j] = state.a[j];
    m[j] = wichmann_hill::moduli[member][j];
    inverse[j] = wichmann_hill::inverse_moduli[member][j];
  }

  constexpr int in_flight = 2 * lanes / components;  // elements
  ptrdiff_t i = 0;
  if (n >= 2 * in_flight) {
    double line[2 * lanes], onward[lanes], moduli[lanes], inverses[lanes];
    for (int j = 0; j < components; ++j) {
      double power = a[j];
      fill_line(line + j, in_flight, components, x[j], power, m[j], inverse[j]);
      for (int k = j; k < lanes; k += components)
        onward[k] = power, moduli[k] = m[j], inverses[k] = inverse[j];
    }
    Two<f64> first, second, by, modulo, inverse_of;
    load(line, first);
    load(line + lanes, second);
    load(onward, by);
    load(moduli, modulo);
    load(inverses, inverse_of);
    for (; i + in_flight <= n; i += in_flight) {
      store(out + components * i, words_of(first));
      store(out + components * i + lanes, words_of(second));
      first = product(first, by, modulo, inverse_of);
      second = product(second, by, modulo, inverse_of);
    }
    store(line, first);
    for (int j = 0; j < components; ++j) x[j] = line[j];
  }
  for (; i < n; ++i) {
    for (int j = 0; j < components; ++j) {
      out[components * i + j] = (uint32_t)x[j];
      x[j] = product(x[j], a[j], m[j], inverse[j]);
    }
  }
  for (int j = 0; j < components; ++j) state.x[j] = (uint32_t)x[j];
}

#if QKR_BASELINE
uint32_t power_modulo(uint32_t base, uint64_t exponent, uint32_t modulus) {
  const auto times = [modulus](uint32_t x, uint32_t y) { return (uint32_t)((uint64_t)x * y % modulus); };
  return power_of(base, exponent, times);
}

struct Methods {
  static int32_t seed(StreamState *stream, int32_t n, const uint32_t *seeds) {
    WichmannHill &state = payload_of<WichmannHill>(stream);
    const int32_t member = family_member(stream);
    for (int j = 0; j < components; ++j) {
      const bool given = (uint32_t)j < (uint32_t)n;  // so a negative count means all four
      const uint32_t x = given ? seeds[j] % wichmann_hill::moduli[member][j] : 1;
      state.x[j] = x ? x : 1;
      state.a[j] = wichmann_hill::multipliers[member][j];
    }
    return VXS_STATUS_OK;
  }
  static int32_t leapfrog(StreamState *stream, int32_t stride, const int32_t *index) {
    skip_ahead(stream, *index);
    WichmannHill &state = payload_of<WichmannHill>(stream);
    const uint32_t *m = wichmann_hill::moduli[family_member(stream)];
    for (int j = 0; j < components; ++j) state.a[j] = power_modulo(state.a[j], (uint32_t)stride, m[j]);
    return VXS_STATUS_OK;
  }
  static int32_t skip_ahead(StreamState *stream, int32_t count) { return skip(stream, (uint32_t)count); }
  static int32_t skip(StreamState *stream, uint64_t count) {
    WichmannHill &state = payload_of<WichmannHill>(stream);
    const uint32_t *m = wichmann_hill::moduli[family_member(stream)];
    for (int j = 0; j < components; ++j) {
      state.x[j] = (uint32_t)((uint64_t)state.x[j] * power_modulo(state.a[j], count, m[j]) % m[j]);
    }
    return VXS_STATUS_OK;
  }
};
#endif

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

#if QKR_BASELINE
bool qkr::is_sound_wichmann_hill(const StreamState *stream) {
  const auto &state = payload_of<sse2::WichmannHill>(stream);
  for (int j = 0; j < sse2::components; ++j) {
    // Members may have been given the state of another one, whose moduli are larger.
    if (state.x[j] >> 24 != 0 || state.a[j] >> 24 != 0) return false;
  }
  return true;
}

int32_t qkr::skip_wichmann_hill(StreamState *stream, uint64_t count) {
  return sse2::Methods::skip(stream, count);
}
#endif

QKR_INIT_STREAM(__vxsBRngWHInitStream, Methods)
QKR_WORD_ENTRY(__vxsiBRngWH, fill_words(stream, n, out))
QKR_REAL_ENTRY(__vxsdBRngWH, double, fill(stream, n, out, doubles(b - a, a)))
QKR_REAL_ENTRY(__vxssBRngWH, float, fill(stream, n, out, singles((double)b - a, a)))

#if QKR_BASELINE
extern "C" uint32_t __vxsiPowMod(uint32_t base, int32_t exponent, uint32_t modulus) {
  return qkr::sse2::power_modulo(base, (uint32_t)exponent, modulus);
}
#endif
