#include "tests/distributions/references.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace qkr::tests {
namespace {

using Real = long double;

template <class T>
Real ln(Real x) {
  if (x != 0) return std::log(x);
  return sizeof(T) == 8 ? -744.4400719213812L : -103.2789306640625L;
}

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

// Whether the margin of a test is positive; where the rounding of `magnitude` may decide that, the library is
// right. `spread` is the relative deviation of the law, if that is small.
template <class T>
bool accepted(Real margin, Real magnitude, Real x, const Cursor<T> &u, Real spread = 1) {
  if (std::abs(margin) > 8 * std::numeric_limits<T>::epsilon() * magnitude) return margin > 0;
  return std::abs(u.given - x) < (1e-4L * spread + 4 * std::numeric_limits<T>::epsilon()) * x;
}

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
      // Near x = 0 the right side vanishes, and rounding may accept a uniform of 1.
      const Real margin = s / 2 + d * (std::log(w) + (1 - w)) - ln<T>(acceptance);
      // Rounding of v shifts s by its root times eps / c, and the difference by d |w - 1| eps.
      const Real magnitude = 1 + s + std::abs(x) / c + d * std::abs(w - 1);
      if (accepted(margin, magnitude, y, u, c)) return number;
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
    number = {x, x * (1 + r + std::abs(ln<T>(x)))};
    return x <= y + e;
  });
}

// A shape for which numbers next to 1 are too far apart.
template <class T>
bool is_large(Real shape) {
  return shape * std::numeric_limits<T>::epsilon() > 0x1p-12L;
}

// p < 1
template <class T>
Definition<T> atkinson(T p, T q, Real t, bool both_below_one) {
  const Real P = p, Q = q, ln_complement = std::log1p(-t);
  const bool large = is_large<T>(Q);
  const Real r = Q * t / ((both_below_one ? 1 - t : std::exp(Q * ln_complement)) * P + Q * t);
  return rejection<T>([=](T u1, T u2, Number &number) {
    Real x, e;
    if (u1 <= r) {
      x = t * std::pow(u1 / r, 1 / P);
      e = (1 - Q) * (std::log1p(-Real(T(x))) - (both_below_one ? ln_complement : 0));
    } else {
      const Real rest = Real(1 - u1) / (1 - r);
      x = !large ? 1 - (1 - t) * std::pow(rest, 1 / Q) : -std::expm1(ln_complement + ln<T>(rest) / Q);
      e = (1 - P) * std::log(x / t);
    }
    number = {x, !large ? 1 + x / P + (1 - x) / Q : x * (4 + std::abs(ln<T>(x)) / P)};
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
      return Number{x, x * (1 + std::abs(ln<T>(x)))};
    };
  };
  if (q == 1 && p != 1) return power(P);
  if (p == 1)
    return [=](Cursor<T> &u) {
      const Real x = -std::expm1(ln<T>(u()) / Q);
      return Number{x, Q > 1 ? 4 * x : 1 + std::abs(ln<T>(1 - x))};
    };
  if (p < 1 && q > 1) return atkinson(p, q, (1 - P) / (1 - P + Q), false);
  if (p > 1 && q < 1) return mirrored(atkinson(q, p, (1 - Q) / (1 - Q + P), false));
  if (p < 1 && 0.8522552176537243L * P * P - 0.9562409713408151L + Q > 0)
    return atkinson(p, q, 1 / (1 + std::sqrt(Q * (1 - Q) / (P * (1 - P)))), true);
  if (p < 1)
    return rejection<T>([=](T u1, T u2, Number &x) {
      const Real X = std::exp(ln<T>(u1) / P), Y = std::exp(ln<T>(u2) / Q), sum = X + Y;
      x = {X / sum, X / sum * (1 - ln<T>(u1) / P - ln<T>(u2) / Q) + std::numeric_limits<T>::min() / sum};
      return T(X) + T(Y) > 0 && T(X) + T(Y) <= 1;
    });
  const Real b = std::sqrt((s - 2) / (2 * P * Q - s));
  const Real loss = 1 + s / (s - 2);  // b loses digits in s - 2
  const Real spread = std::sqrt(Q / (P * s));
  const bool large = is_large<T>(std::max(P, Q));
  return [=](Cursor<T> &u) {
    for (;;) {
      const T u1 = u(), u2 = u();
      if (u1 == 1) continue;
      const Real v = b * ln<T>(u1 / (1 - u1)), w = P * std::exp(v), x = w / (Q + w);
      const Real logarithm = -s * std::log1p(P / s * std::expm1(v)), last = ln<T>(u1 * u1 * u2);
      const Real margin = logarithm - std::log(4.0L) + (P + 1 / b) * v - last;
      const Real magnitude =
          (large ? 1 : s) + std::abs(logarithm) + (P + 1 / b) * std::abs(v) * loss + std::abs(last);
      if (accepted(margin, magnitude, x, u, std::min(spread, 1.0L)))
        return Number{x, x * (4 + std::abs(v) * loss)};
    }
  };
}

// Of each number by itself, from one uniform number.
template <class T, class Element>
Definition<T> elementwise(Element element) {
  return [=](Cursor<T> &u) { return element(Real(u())); };
}

// Without displacement and scale.
template <class T>
Definition<T> standard(std::string_view family, int32_t method, const std::vector<double> &p) {
  if (family == "Exponential") return elementwise<T>([](Real u) { return Number{-ln<T>(u), -ln<T>(u)}; });
  if (family == "Gumbel")
    return elementwise<T>([](Real u) {
      const Real x = ln<T>(-ln<T>(u));
      return Number{x, 1 + std::abs(x)};
    });
  if (family == "Rayleigh" || family == "Weibull") {
    const Real alpha = family == "Weibull" ? p[0] : 2;
    return elementwise<T>([=](Real u) {
      const Real x = std::pow(-ln<T>(u), 1 / alpha);
      return Number{x, x * 4};
    });
  }
  if (family == "Cauchy")
    return [](Cursor<T> &u) {
      const Real x = std::tan(Real(u(T(-1.5707963267948966), T(1.5707963267948966))));
      return Number{x, x};
    };
  if (family == "Laplace")
    return [](Cursor<T> &u) {
      const Real x = ln<T>(u());
      return Number{u() > T(0.5) ? x : -x, x};
    };
  if (family == "Gaussian" && method == 0)
    return [](Cursor<T> &u) {
      const T u1 = u(), u2 = u();
      const Real x = Pairs<T>().pair(u1, u2).first;
      return Number{x, x};
    };
  if (family == "Gaussian")
    return [pairs = Pairs<T>()](Cursor<T> &u) mutable {
      const Real x = pairs(u);
      return Number{x, x};
    };
  if (family == "Lognormal")
    return [pairs = Pairs<T>(), a = p[0], sigma = p[1]](Cursor<T> &u) mutable {
      const Real normal = pairs(u) * sigma, x = std::exp(normal + a);
      return Number{x, x * (2 + std::abs(normal))};
    };
  if (family == "Gamma") return gamma(T(p[0]));
  if (family == "Beta") return beta(T(p[0]), T(p[1]));
  throw std::logic_error("no definition");
}

}  // namespace

template <class T>
Definition<T> definition_of(const Case &a_case) {
  const std::vector<double> &p = a_case.parameters;
  if (std::string_view(a_case.family) == "Uniform")
    return [=](Cursor<T> &u) { return Number{u(T(p[0]), T(p[1])), 0}; };
  const double displacement = p[p.size() - 2], scale = p.back();
  return [=, definition = standard<T>(a_case.family, a_case.method, p)](Cursor<T> &u) {
    u.given = (u.given - displacement) / scale;
    Number x = definition(u);
    x.magnitude += std::numeric_limits<T>::min();  // below that, numbers are as far apart as at that
    return scaled(x, scale, displacement);
  };
}
template Definition<double> definition_of(const Case &);
template Definition<float> definition_of(const Case &);

}  // namespace qkr::tests
