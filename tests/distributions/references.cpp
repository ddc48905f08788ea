#include "tests/distributions/references.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string_view>

#include "distributions/tables/tables.h"

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

using Wholes = Cursor<int32_t>;
using Ratio = std::function<Real(Real k)>;   // mass(k + 1) / mass(k)
using LnMass = std::function<Real(Real k)>;  // but for a constant

// The first k with u < F(k), added up from 0. Next to F(k) the library is right within 1, and also in what it
// makes of 0 and of 1, next to which its sums do not tell masses apart.
Definition<int32_t> by_inversion(Real first_mass, Ratio ratio, bool single = false) {
  return [=](Wholes &u) {
    const double recorded = u.recorded();
    const Real x = single ? Real(float(recorded)) : Real(recorded);
    if (x > 1 - 1e-13L || x < 1e-13L) return Number{u.given, 0};
    Real sum = first_mass, mass = first_mass, k = 0, near = std::abs(x - sum);
    while (x >= sum && k < 1e5) {
      mass *= ratio(k++);
      sum += mass;
      near = std::min(near, std::abs(x - sum));
    }
    return Number{k, near < 1e-12L ? 1.0L : 0.0L};
  };
}

// Whether ln v is at most the logarithm of the mass of y; where rounding may decide, the library is right.
bool below_mass(Real v, Real ln_mass, Real slack, bool is_given) {
  const Real margin = ln_mass - ln<double>(v);
  return std::abs(margin) > slack ? margin > 0 : is_given;
}

struct HatShape {
  double mode, p1, p2 = 0, p3 = 0, p4 = 0, c = 0, left = 0, right = 0, highest = 0;
  double xm() const { return mode + 0.5; }
};

// T is the precision of uniform numbers and heights. mapped(y) is what the library gives out for y.
template <class T, class Mapped>
Definition<int32_t> by_hat(HatShape s, LnMass ln_mass, Real slack, Mapped mapped) {
  return [=](Wholes &cursor) {
    for (;;) {
      const double u = T(double(T(cursor.recorded())) * s.p4);
      double v = T(cursor.recorded()), y;
      const double xl = s.xm() - s.p1, xr = s.xm() + s.p1;
      if (u <= s.p1) return Number{mapped(std::trunc(s.xm() - s.p1 * v + u)), 0};
      if (u <= s.p2) {
        const double x = xl + (u - s.p1) / s.c;
        v = T(v * s.c + 1 - std::abs(s.xm() - x) / s.p1);
        if (v > 1) continue;
        y = std::trunc(x);
      } else {
        const bool on_left = u <= s.p3;
        const double x = on_left ? xl + double(ln<double>(v)) / s.left : xr - double(ln<double>(v)) / s.right;
        if (v == 0 || x < 0 || x >= s.highest + 1) continue;
        y = std::trunc(x);
        v = T(v * (on_left ? (u - s.p2) * s.left : (u - s.p3) * s.right));
      }
      if (below_mass(v, ln_mass(y) - ln_mass(s.mode), slack, mapped(y) == cursor.given))
        return Number{mapped(y), 0};
    }
  };
}

// A plateau of `reach` numbers to either side of the mode, and exponential tails that go through the two
// masses at its ends and next to them.
template <class Mapped>
Definition<int32_t> by_mountain(Real mode, Real reach, Real highest, LnMass ln_mass, Real slack,
                                Mapped mapped) {
  const auto mass = [=](Real y) { return std::exp(ln_mass(y) - ln_mass(mode)); };
  const Real first = std::max(mode - reach, 0.0L), end = mode + reach + 1;
  const Real left = first > 0 ? ln_mass(first) - ln_mass(first - 1) : HUGE_VALL,
             right = ln_mass(end - 1) - ln_mass(end);
  const Real p1 = end - first, p2 = p1 + mass(first) / left, p3 = p2 + mass(end - 1) / right;
  return [=](Wholes &cursor) {
    for (;;) {
      const Real u = cursor.recorded() * p3;
      Real v = cursor.recorded(), x = first + u;
      if (u >= p1) {
        if (v == 0) continue;
        const bool on_left = u <= p2;
        x = on_left ? first + ln<double>(v) / left : end - ln<double>(v) / right;
        v *= on_left ? (u - p1) * left : (u - p2) * right;
      }
      if (x < 0 || x >= highest + 1) continue;
      const Real y = std::trunc(double(x));  // rounding may lead to the border
      // The shares of the pieces come from factorials, whose logarithms lose digits in large lots and for
      // large a.
      const bool large = slack > 1e-4L, near = large && std::abs(mapped(y) - cursor.given) <= 2;
      if (below_mass(v, ln_mass(y) - ln_mass(mode), slack, near || mapped(y) == cursor.given))
        return Number{mapped(y), large ? 2.0L : 0.0L};
    }
  };
}

double tail_rate(double a) { return a * (1 + 0.5 * a); }

Definition<int32_t> binomial(double n, double given) {
  const bool flipped = given >= 0.5;
  const double p = flipped ? 1 - given : given, q = 1 - p, np = n * p;
  const auto mapped = [=](Real y) { return flipped ? n - y : y; };
  if (np < 30) {
    const auto table =
        by_inversion(std::pow(Real(q), Real(n)), [=](Real k) { return (n - k) * p / ((k + 1) * q); });
    return [=](Wholes &u) {
      u.given = mapped(u.given);
      const Number y = table(u);
      return Number{mapped(y.value), y.magnitude};
    };
  }
  const double ffm = np + p, mode = std::trunc(ffm);
  HatShape s = {mode, std::trunc(2.195 * std::sqrt(np * q) - 4.6 * q) + 0.5};
  s.c = 0.134 + 20.5 / (15.3 + mode);
  const double xl = s.xm() - s.p1, xr = s.xm() + s.p1;
  s.left = tail_rate((ffm - xl) / (ffm - xl * p));
  s.right = tail_rate((xr - ffm) / (xr * q));
  s.p2 = s.p1 * (1 + 2 * s.c);
  s.p3 = s.p2 + s.c / s.left;
  s.p4 = s.p3 + s.c / s.right;
  s.highest = n;
  const auto ln_mass = [=](Real y) {
    return y * std::log(Real(p) / q) - std::lgamma(y + 1) - std::lgamma(n - y + 1);
  };
  return by_hat<double>(s, ln_mass, 1e-12L * n + 1e-9L, mapped);
}

Definition<int32_t> hypergeometric(double l, double sample, double marked) {
  const double s = std::min(sample, l - sample), m = std::min(marked, l - marked);
  const bool small = sample <= l - sample, large = marked > l - marked;
  const auto mapped = [=](Real y) {
    return small ? (large ? sample - y : y) : large ? y + sample - m : marked - y;
  };
  if (std::min(s, m) == 0) return [=](Wholes &) { return Number{mapped(0), 0}; };
  const auto ln_mass = [=](Real y) {
    return -std::lgamma(y + 1) - std::lgamma(s - y + 1) - std::lgamma(m - y + 1) -
           std::lgamma(l - s - m + y + 1);
  };
  const double mode = std::trunc((s + 1) * (m + 1) / (l + 2));
  if (mode < 40) {
    const Real all = std::lgamma(l + 1.0L) - std::lgamma(s + 1.0L) - std::lgamma(l - s + 1.0L) -
                     std::lgamma(m + 1.0L) - std::lgamma(l - m + 1.0L);
    const auto table = by_inversion(std::exp(ln_mass(0) - all), [=](Real k) {
      return k < std::min(s, m) ? (s - k) * (m - k) / ((k + 1) * (l - s - m + k + 1)) : 0;
    });
    return [=](Wholes &u) {
      u.given = mapped(u.given) == 0 ? 0
                : small              ? (large ? sample - u.given : u.given)
                : large              ? u.given - sample + m
                                     : marked - u.given;
      const Number y = table(u);
      return Number{mapped(y.value), l > 1e6 ? 1.0L : y.magnitude};
    };
  }
  const double deviation = std::sqrt((l - s) * s * (m / l) * ((l - m) / l) / (l - 1));
  return by_mountain(mode, std::trunc(1.5 * deviation), std::min(s, m), ln_mass, 1e-13L * l + 1e-9L, mapped);
}

Definition<int32_t> negative_binomial(double a, double p) {
  const double mode = (a - 1) * (1 - p) / p;
  const Real q = 1 - Real(p);
  if (mode < 100 && p < 0.01) return nullptr;  // what is beyond the table is drawn in another way
  if (mode < 100)
    return by_inversion(std::pow(Real(p), Real(a)), [=](Real k) { return q * (a + k) / (k + 1); });
  const auto ln_mass = [=](Real y) { return std::lgamma(a + y) - std::lgamma(y + 1) + y * std::log(q); };
  return by_mountain(std::trunc(mode), std::trunc(1.1 * std::sqrt(a * (1 - p)) / p), INT32_MAX, ln_mass,
                     1e-15L * a + 1e-9L, [](Real y) { return y; });
}

// What a normal number g of single precision is turned into: the whole part of quantile(g), which may be
// off by one where the error of g decides.
Definition<int32_t> by_normals(std::function<Real(Real g)> quantile) {
  return [=, pairs = Pairs<float>(), singles = Cursor<float>()](Wholes &u) mutable {
    singles.next = u.next;
    const Real g = pairs(singles), r = quantile(g), error = 4e-7L * (1 + std::abs(g));
    u.next = singles.next;
    const bool doubtful = std::floor(quantile(g - error)) != std::floor(quantile(g + error));
    return Number{std::min(std::floor(std::max(r, 0.0L)), 2147483647.0L),
                  doubtful ? 1 + error * quantile(1) : 0};
  };
}

Definition<int32_t> poisson(double mean, int32_t method) {
  if (mean < (method ? 100 : 27))
    return by_inversion(
        std::exp(-Real(mean)), [=](Real k) { return mean / (k + 1); }, method);
  if (method) {
    const Real t = 1 / Real(mean), s = std::sqrt(Real(mean));
    return by_normals([=](Real g) {
      const Real centre =
          mean + 1 + (-0.6666957198L + t * (-0.01941020862L + t * (-0.001288719308L + t * 0.001645153709L)));
      const Real variance =
          mean + (-0.05580667628L + t * (-0.000975814817L + t * (-0.005534854444L + t * 0.00519830812L)));
      return centre + g * std::sqrt(variance) + g * g * (1 / 6.0L + 7 * t / 810) - g * g * g / (72 * s) +
             g * g * g * g * t / 270;
    });
  }
  const double mode = std::trunc(mean);
  HatShape s = {mode, std::trunc(2.195 * std::sqrt(mean) - 2.2) + 0.5};
  s.c = 0.133 + 8.56 / (6.83 + mean);
  const double xl = s.xm() - s.p1, xr = s.xm() + s.p1;
  s.left = tail_rate((mean - xl) / mean);
  s.right = tail_rate((xr - mean) / xr);
  s.p2 = s.p1 * (1 + 2 * s.c);
  s.p3 = s.p2 + (0.109 + 8.25 / (10.86 + mean)) / s.left;
  s.p4 = s.p3 + s.c / s.right;
  s.highest = 0x1p60;
  const auto ln_mass = [=](Real y) { return y * std::log(Real(mean)) - std::lgamma(y + 1); };
  return by_hat<float>(s, ln_mass, 1e-16L * mean + 1e-7L, [](Real y) { return y; });
}

Definition<int32_t> poisson_of_mean(double mean) {
  if (mean < 0.0625) {
    return [=, pairs = Pairs<float>(), singles = Cursor<float>()](Wholes &u) mutable {
      singles.next = u.next;
      const Real share = std::abs(std::erf(pairs(singles) / std::sqrt(2.0L)));
      u.next = singles.next;
      if (share > 1 - 1e-6L) return Number{u.given, 0};  // single precision tells nothing there
      Real k = 0, term = 1, sum = 1, near = 1;
      while (k < 11 && share * std::exp(Real(mean)) > sum) {
        near = std::abs(share * std::exp(Real(mean)) - sum);
        sum += term *= mean / ++k;
      }
      near = std::min(near, std::abs(share * std::exp(Real(mean)) - sum));
      return Number{k, near < 1e-6L ? 1.0L : 0.0L};
    };
  }
  const int exponent = std::ilogb(mean), band = std::min(exponent + 4, 17);
  const double *const t = _vxsdPoissonTab + 5 + 20 * band;
  const Real m = mean / std::ldexp(1.0, exponent) - 1, s = std::sqrt(Real(mean)) + t[2] + t[3] * m;
  return by_normals([=](Real g) {
    Real sum = mean + t[0] + m * t[1] + 1, power = s;
    for (int i = 4; i < 20; i += 4) {
      power *= g;
      sum += power * (t[i] + m * (t[i + 1] + m * (t[i + 2] + m * t[i + 3])));
    }
    return sum;
  });
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

template <>
Definition<int32_t> definition_of(const Case &a_case) {
  const std::string_view family = a_case.family;
  const std::vector<double> p = a_case.parameters;
  if (family == "Uniform")
    return [=](Cursor<int32_t> &u) { return Number{std::floor(u.recorded() * (p[1] - p[0]) + p[0]), 0}; };
  if (family == "UniformBits")
    return [](Cursor<int32_t> &u) { return Number{Real(int32_t(uint32_t(u.recorded() * 0x1p31))), 0}; };
  if (family == "Bernoulli")
    return [=](Cursor<int32_t> &u) {
      return Number{float(u.recorded()) < p[0] || p[0] == 1 ? 1.0L : 0.0L, 0};
    };
  if (family == "Binomial") return binomial(p[0], p[1]);
  if (family == "Hypergeometric") return hypergeometric(p[0], p[1], p[2]);
  if (family == "Negbinomial") return negative_binomial(p[0], p[1]);
  if (family == "Poisson") return poisson(p[0], a_case.method);
  if (family == "PoissonV") return poisson_of_mean(p[0]);
  // A whole number may be off by one where the logarithm rounds.
  return [=](Cursor<int32_t> &u) {
    const Real x = ln<float>(float(u.recorded())) / std::log1p(-Real(p[0]));
    return Number{std::trunc(std::min(x, 2147483647.0L)), 1 + x * 0x1p-23L};
  };
}

}  // namespace qkr::tests
