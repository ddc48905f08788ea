#include "tests/distributions/references.h"

#include <cmath>
#include <limits>

namespace qkr::tests {
namespace {

using Real = long double;

template <class T>
Real ln(Real x) {
  if (x != 0) return std::log(x);
  return sizeof(T) == 8 ? -744.4400719213812L : -103.2789306640625L;
}

template <class T>
using Definition = std::function<Number(Cursor<T> &)>;

Number scaled(Number x, Real factor, Real displacement) {
  return {x.value * factor + displacement, std::abs(x.magnitude * factor) + std::abs(displacement)};
}

// Normal numbers in twos; `waiting` is the second of them.
template <class T>
struct Pairs {
  bool has_waiting = false;
  Real waiting = 0;
  std::pair<Real, Real> pair(T u1, T u2) {
    const Real radius = std::sqrt(-2 * ln<T>(u1)), angle = T(u2 * T(6.283185307179586));
    return {radius * std::sin(angle), radius * std::cos(angle)};
  }
  Real operator()(Cursor<T> &u) {
    has_waiting = !has_waiting;
    if (!has_waiting) return waiting;
    const T u1 = u(), u2 = u();
    const auto [first, second] = pair(u1, u2);
    waiting = second;
    return first;
  }
};

// Candidates in twos, each with an acceptance number behind it.
template <class T>
Definition<T> marsaglia(T alpha) {
  struct {
    bool has_waiting = false;
    Real x = 0;
    T u = 0;
  } waiting;
  return [=](Cursor<T> &u) mutable {
    const Real d = Real(alpha) - 1.0L / 3, c = 1 / std::sqrt(9 * d);
    for (;;) {
      Real x = waiting.x;
      T acceptance = waiting.u;
      waiting.has_waiting = !waiting.has_waiting;
      if (waiting.has_waiting) {
        const T u1 = u();
        acceptance = u();
        const T u2 = u();
        const auto normal = Pairs<T>().pair(u1, u2);
        x = normal.first;
        waiting.x = normal.second;
        waiting.u = u();
      }
      const Real v = 1 + c * x, s = x * x, w = v * v * v, y = d * w;
      const Number number = {y, y * (1 + 3 * (1 + std::abs(c * x)) / v)};
      if (!(v > 0)) continue;
      if (acceptance < 1 - 0.0331L * s * s) return number;
      // Near x = 0 the right side vanishes, and rounding may accept a uniform of 1: then the library is
      // right.
      const Real margin = s / 2 + d * (std::log(w) + 1 - w) - ln<T>(acceptance);
      const Real rounding = 8 * std::numeric_limits<T>::epsilon() * (s + d * (1 + w));
      if (std::abs(margin) > rounding ? margin > 0 : std::abs(u.given - y) < 1e-4L * y) return number;
    }
  };
}

// candidate(u1, u2, x) tells whether x, which it sets, is accepted.
template <class T, class Candidate>
Definition<T> rejection(Candidate candidate) {
  return [=](Cursor<T> &u) {
    for (;;) {
      const T u1 = u(), u2 = u();
      Number x;
      if (candidate(u1, u2, x)) return x;
    }
  };
}

template <class T>
Definition<T> gamma(T alpha) {
  const Real shape = alpha, r = 1 / shape;
  if (alpha > 1) return marsaglia(alpha);
  if (alpha == 1)
    return [](Cursor<T> &u) {
      const Real e = -ln<T>(u());
      return Number{e, e};
    };
  if (alpha >= T(0.6))
    return rejection<T>([=](T u1, T u2, Number &x) {
      const Real a = -ln<T>(u1), w = std::pow(a, r);
      x = {w, w * (1 + r + std::abs(ln<T>(w)))};
      return a - ln<T>(u2) >= (1 - shape) * std::pow(shape, shape / (1 - shape)) + w;
    });
  return rejection<T>([=](T u1, T u2, Number &number) {
    const Real e = -ln<T>(u2), y = u1 > 1 - alpha ? -ln<T>((1 - u1) * r) : 0;
    const Real x = u1 > 1 - alpha ? std::pow(shape * y + 1 - shape, r) : std::pow(Real(u1), r);
    number = {x, x * (1 + r + std::abs(ln<T>(x))) + std::numeric_limits<T>::min()};
    return x <= y + e;
  });
}

// p < 1
template <class T>
Definition<T> atkinson(T p, T q, Real t, bool both_below_one) {
  const Real P = p, Q = q;
  const Real r = Q * t / ((both_below_one ? 1 - t : std::pow(1 - t, Q)) * P + Q * t);
  return rejection<T>([=](T u1, T u2, Number &number) {
    Real x, e;
    if (u1 <= r) {
      x = t * std::pow(u1 / r, 1 / P);
      e = (1 - Q) * std::log(both_below_one ? (1 - x) / (1 - t) : 1 - x);
    } else {
      x = 1 - (1 - t) * std::pow(Real(1 - u1) / (1 - r), 1 / Q);
      e = (1 - P) * std::log(x / t);
    }
    number = {x, 1 + x / P + (1 - x) / Q};
    return ln<T>(u2) + e <= 0;
  });
}

template <class T>
Definition<T> beta(T p, T q) {
  const Real P = p, Q = q, s = P + Q;
  const auto mirrored = [](Definition<T> definition) -> Definition<T> {
    return [=](Cursor<T> &u) {
      const Number x = definition(u);
      return Number{1 - x.value, 1 + x.magnitude};
    };
  };
  const auto power = [](Real shape) -> Definition<T> {
    return [=](Cursor<T> &u) {
      const Real x = std::pow(Real(u()), 1 / shape);
      return Number{x, x};
    };
  };
  if (q == 1 && p != 1) return power(P);
  if (p == 1) return mirrored(power(Q));
  if (p < 1 && q > 1) return atkinson(p, q, (1 - P) / (1 - P + Q), false);
  if (p > 1 && q < 1) return mirrored(atkinson(q, p, (1 - Q) / (1 - Q + P), false));
  if (p < 1 && 0.8522552176537243L * P * P - 0.9562409713408151L + Q > 0)
    return atkinson(p, q, 1 / (1 + std::sqrt(Q * (1 - Q) / (P * (1 - P)))), true);
  if (p < 1)
    return rejection<T>([=](T u1, T u2, Number &x) {
      const Real X = std::exp(ln<T>(u1) / P), Y = std::exp(ln<T>(u2) / Q);
      x = {X / (X + Y), X / (X + Y) * (1 - ln<T>(u1) / P - ln<T>(u2) / Q)};
      return T(X) + T(Y) > 0 && T(X) + T(Y) <= 1;
    });
  const Real b = std::sqrt((s - 2) / (2 * P * Q - s));
  return rejection<T>([=](T u1, T u2, Number &x) {
    if (u1 == 1) return false;
    const Real v = b * ln<T>(u1 / (1 - u1)), w = P * std::exp(v);
    x = {w / (Q + w), w / (Q + w) * (2 + std::abs(v))};
    return s * std::log(s / (Q + w)) - std::log(4.0L) + (P + 1 / b) * v >= ln<T>(u1 * u1 * u2);
  });
}

#define CALL(D, ...) \
  [](StreamState *stream, int32_t n, T *out) { return Entries<T>::D(0, stream, n, out, __VA_ARGS__); }
template <class T>
struct Entries;
#define ENTRIES(letter, T)                                             \
  template <>                                                          \
  struct Entries<T> {                                                  \
    static constexpr auto &Uniform = _vxs##letter##RngUniform;         \
    static constexpr auto &Exponential = _vxs##letter##RngExponential; \
    static constexpr auto &Laplace = _vxs##letter##RngLaplace;         \
    static constexpr auto &Weibull = _vxs##letter##RngWeibull;         \
    static constexpr auto &Cauchy = _vxs##letter##RngCauchy;           \
    static constexpr auto &Rayleigh = _vxs##letter##RngRayleigh;       \
    static constexpr auto &Lognormal = _vxs##letter##RngLognormal;     \
    static constexpr auto &Gumbel = _vxs##letter##RngGumbel;           \
    static constexpr auto &Gaussian = _vxs##letter##RngGaussian;       \
    static constexpr auto &Gamma = _vxs##letter##RngGamma;             \
    static constexpr auto &Beta = _vxs##letter##RngBeta;               \
  };
ENTRIES(d, double)
ENTRIES(s, float)

// Rows whose numbers each come from one uniform number.
template <class T, class Element>
auto elementwise(Element element) {
  return [=] { return Definition<T>([=](Cursor<T> &u) { return element(Real(u())); }); };
}

template <class T>
std::vector<Row<T>> make_rows() {
  std::vector<Row<T>> rows = {
      {"Uniform", CALL(Uniform, -1, 3), [] { return [](Cursor<T> &u) {
                                               return Number{u(-1, 3), 0};
                                             }; }},
      {"Exponential", CALL(Exponential, 3, 2), elementwise<T>([](Real u) {
         return scaled({-ln<T>(u), -ln<T>(u)}, 2, 3);
       })},
      {"Gumbel", CALL(Gumbel, -3, 2), elementwise<T>([](Real u) {
         const Real x = ln<T>(-ln<T>(u));
         return scaled({x, 1 + std::abs(x)}, 2, -3);
       })},
      {"Rayleigh", CALL(Rayleigh, 1, 2), elementwise<T>([](Real u) {
         const Real x = std::sqrt(-ln<T>(u));
         return scaled({x, x}, 2, 1);
       })},
      {"Cauchy", CALL(Cauchy, 1, 2),
       [] {
         return [](Cursor<T> &u) {
           const Real x = std::tan(Real(u(T(-1.5707963267948966), T(1.5707963267948966))));
           return scaled({x, x}, 2, 1);
         };
       }},
      {"Laplace", CALL(Laplace, 1, 2),
       [] {
         return [](Cursor<T> &u) {
           const Real x = ln<T>(u());
           return scaled({x, x}, u() > T(0.5) ? 2 : -2, 1);
         };
       }},
      {"Gaussian0", CALL(Gaussian, 1, 2),
       [] {
         return [](Cursor<T> &u) {
           const T u1 = u(), u2 = u();
           const Real x = Pairs<T>().pair(u1, u2).first;
           return scaled({x, x}, 2, 1);
         };
       }},
      {"Gaussian1",
       [](StreamState *stream, int32_t n, T *out) { return Entries<T>::Gaussian(1, stream, n, out, 1, 2); },
       [] {
         return [pairs = Pairs<T>()](Cursor<T> &u) mutable {
           const Real x = pairs(u);
           return scaled({x, x}, 2, 1);
         };
       }},
      {"Lognormal", CALL(Lognormal, 1, 0.5, 3, 2),
       [] {
         return [pairs = Pairs<T>()](Cursor<T> &u) mutable {
           const Real half = pairs(u) / 2, x = std::exp(half + 1);
           return scaled({x, x * (2 + std::abs(half))}, 2, 3);
         };
       }},
  };
  for (const T alpha : {T(0.75), T(3)})
    rows.push_back({"Weibull " + std::to_string(alpha),
                    [=](StreamState *stream, int32_t n, T *out) {
                      return Entries<T>::Weibull(0, stream, n, out, alpha, T(1), T(2));
                    },
                    elementwise<T>([=](Real u) {
                      const Real x = std::pow(-ln<T>(u), 1 / Real(alpha));
                      return scaled({x, x * 4}, 2, 1);
                    })});
  for (const T alpha :
       {T(0.05), T(0.3), std::nextafter(T(0.6), T(0)), T(0.6), T(0.9), T(1), T(1.01), T(2.5), T(100)})
    rows.push_back({"Gamma " + std::to_string(alpha),
                    [=](StreamState *stream, int32_t n, T *out) {
                      return Entries<T>::Gamma(0, stream, n, out, alpha, T(0), T(1));
                    },
                    [=] { return gamma(alpha); }});
  struct Shapes {
    double p, q;
  };
  const Shapes all_shapes[] = {{0.2, 0.3}, {0.7, 0.5}, {0.7, 0.6}, {0.25, 3}, {3, 0.25}, {2, 3},
                               {1.01, 8},  {3, 1},     {0.5, 1},   {1, 1},    {1, 0.5}};
  for (const Shapes shapes : all_shapes)
    rows.push_back({"Beta " + std::to_string(shapes.p) + " " + std::to_string(shapes.q),
                    [=](StreamState *stream, int32_t n, T *out) {
                      return Entries<T>::Beta(0, stream, n, out, T(shapes.p), T(shapes.q), T(1), T(2));
                    },
                    [=] {
                      return [definition = beta(T(shapes.p), T(shapes.q))](Cursor<T> &u) {
                        return scaled(definition(u), 2, 1);
                      };
                    }});
  return rows;
}

std::vector<Row<int32_t>> make_integer_rows() {
  // A float of the recording, and a whole number that may be off by one where the logarithm rounds.
  const auto geometric = [](Real p) {
    return [=] {
      return [=](Cursor<int32_t> &u) {
        const Real ln_u = ln<float>(float(recording.numbers.at(u.next++)));
        const Real x = ln_u / std::log(1 - p);
        return Number{std::trunc(std::min(x, 2147483647.0L)), 1 + x * 0x1p-23L};
      };
    };
  };
  const auto uniform = [](double a, double b) {
    return [=] {
      return [=](Cursor<int32_t> &u) {
        return Number{std::floor(recording.numbers.at(u.next++) * (b - a) + a), 0};
      };
    };
  };
  const auto bernoulli = [](double p) {
    return [=] {
      return [=](Cursor<int32_t> &u) {
        return Number{float(recording.numbers.at(u.next++)) < p ? 1.0L : 0.0L, 0};
      };
    };
  };
#define INTEGERS(D, ...) \
  [](StreamState *stream, int32_t n, int32_t *out) { return _vxsiRng##D(0, stream, n, out, __VA_ARGS__); }
  return {{"Uniform around 0", INTEGERS(Uniform, -3, 4), uniform(-3, 4)},
          {"Uniform of one", INTEGERS(Uniform, 6, 7), uniform(6, 7)},
          {"Uniform over all", INTEGERS(Uniform, INT32_MIN, INT32_MAX), uniform(INT32_MIN, INT32_MAX)},
          {"Bernoulli", INTEGERS(Bernoulli, 0.3), bernoulli(0.3)},
          {"Bernoulli never", INTEGERS(Bernoulli, 0.0), bernoulli(0.0)},
          {"Geometric", INTEGERS(Geometric, 0.3), geometric(0.3L)},
          {"Geometric rare", INTEGERS(Geometric, 0x1p-30), geometric(0x1p-30L)}};
}

}  // namespace

template <>
const std::vector<Row<double>> &all_rows() {
  static const auto rows = make_rows<double>();
  return rows;
}
template <>
const std::vector<Row<float>> &all_rows() {
  static const auto rows = make_rows<float>();
  return rows;
}
template <>
const std::vector<Row<int32_t>> &all_rows() {
  static const auto rows = make_integer_rows();
  return rows;
}

}  // namespace qkr::tests
