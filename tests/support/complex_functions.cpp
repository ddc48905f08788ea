#include "tests/support/complex_functions.h"

#include <cfloat>
#include <cmath>

namespace qkr::tests {

namespace {

const Big one(1.0);
Big half(const Big &a) { return a * Big(0.5); }

// Formulas without cancellation, so that the working precision suffices everywhere.

Big logarithm_of_modulus(const Big &x, const Big &y) {
  const Big a = abs(x) < abs(y) ? abs(y) : abs(x), b = abs(x) < abs(y) ? abs(x) : abs(y);
  const Big s = square(a) + square(b);
  const bool near_circle = Big(0.25) < s && s < Big(4.0);
  return half(near_circle ? apply<mpfr_log1p>((square(a) - one) + square(b)) : apply<mpfr_log>(s));
}
BigComplex logarithm(const Big &x, const Big &y) {
  return {logarithm_of_modulus(x, y), apply<mpfr_atan2>(y, x)};
}
BigComplex exponential(const Big &x, const Big &y) {
  const Big e = apply<mpfr_exp>(x);
  return {e * apply<mpfr_cos>(y), e * apply<mpfr_sin>(y)};
}
BigComplex square_root(const Big &x, const Big &y) {
  const Big t = sqrt(half(abs(x) + apply<mpfr_hypot>(x, y)));
  const Big other = t.zero() ? t : half(abs(y)) / t;
  return x.negative() ? BigComplex{other, with_sign_of(y, t)} : BigComplex{t, with_sign_of(y, other)};
}
BigComplex cosh(const Big &x, const Big &y) {
  return {apply<mpfr_cosh>(x) * apply<mpfr_cos>(y), apply<mpfr_sinh>(x) * apply<mpfr_sin>(y)};
}
BigComplex sinh(const Big &x, const Big &y) {
  return {apply<mpfr_sinh>(x) * apply<mpfr_cos>(y), apply<mpfr_cosh>(x) * apply<mpfr_sin>(y)};
}
BigComplex tanh(const Big &x, const Big &y) {
  if (Big(1e6) < abs(x)) return {with_sign_of(x, one), with_sign_of(y, Big(0.0))};
  const Big S = apply<mpfr_sinh>(x), C = apply<mpfr_cosh>(x), s = apply<mpfr_sin>(y), c = apply<mpfr_cos>(y);
  const Big D = square(S) + square(c);
  return {S * C / D, s * c / D};
}
// T. E. Hull, T. F. Fairgrieve and P. T. P. Tang, ACM TOMS 23 (1997) 299; x, y >= 0.
struct Triangle {
  Big adjacent, logarithm;
};
Triangle triangle(const Big &x, const Big &y) {
  const Big R = apply<mpfr_hypot>(x + one, y), S = apply<mpfr_hypot>(x - one, y), A = half(R + S);
  const Big right = square(y) / (R + (x + one)), beside = S + abs(x - one);
  const Big left = beside.zero() ? beside : square(y) / beside;
  const Big above_one = half(right + (x < one ? left : beside)),
            above_x = half(right + (one < x ? left : beside));
  return {sqrt((A + x) * above_x), apply<mpfr_log1p>(above_one + sqrt(above_one * (A + one)))};
}
BigComplex inverse_cosine(const Big &x, const Big &y) {
  const Triangle t = triangle(abs(x), abs(y));
  return {apply<mpfr_atan2>(t.adjacent, x), -with_sign_of(y, t.logarithm)};
}
BigComplex inverse_hyperbolic_sine(const Big &x, const Big &y) {
  const Triangle t = triangle(abs(y), abs(x));
  return {with_sign_of(x, t.logarithm), apply<mpfr_atan2>(y, t.adjacent)};
}
BigComplex inverse_hyperbolic_tangent(const Big &x, const Big &y) {
  const Big a = abs(x), distance = square(one - a) + square(y);
  const Big re = apply<mpfr_log1p>(Big(4.0) * a / distance) * Big(0.25);
  return {with_sign_of(x, re), half(apply<mpfr_atan2>(y + y, (one - a) * (one + a) - square(y)))};
}

template <BigComplex (*f)(const Big &, const Big &)>
BigComplex of(const Operands &z) {
  return f(Big(z.x), Big(z.y));
}
template <BigComplex (*f)(const Big &, const Big &)>
BigComplex of_rotated(const Operands &z) {  // f(i z)
  return f(Big(-z.y), Big(z.x));
}
template <BigComplex (*f)(const Big &, const Big &)>
BigComplex rotated(const Operands &z) {  // -i f(i z)
  const BigComplex w = of_rotated<f>(z);
  return {w.im, -w.re};
}
BigComplex exact_log10(const Operands &z) {
  const BigComplex w = of<logarithm>(z);
  const Big ln10 = apply<mpfr_log>(Big(10.0));
  return {w.re / ln10, w.im / ln10};
}
BigComplex exact_acosh(const Operands &z) {
  const BigComplex w = of<inverse_cosine>(z);
  return {abs(w.im), with_sign_of(Big(z.y), w.re)};
}
BigComplex exact_power(const Operands &z) {
  const BigComplex log = of<logarithm>(z);
  const Big u(z.u), v(z.v);
  return exponential(u * log.re - v * log.im, u * log.im + v * log.re);
}

template <vxm64fc (*f)(double, double)>
vxm64fc scalar(const Operands &z) {
  return f(z.x, z.y);
}
vxm64fc scalar_power(const Operands &z) { return _vxmcpow_scalar(z.x, z.y, z.u, z.v); }

double between(double low, double high, Random &random) { return low + (high - low) * random.unit(); }
double of_magnitude(double low, double high, Random &random) {  // 2^low to 2^high, of both signs
  const double exponent = between(low, high, random);
  const double x = std::ldexp(1 + random.unit(), static_cast<int>(std::floor(exponent)));
  return random.below(2) ? x : -x;
}
double multiple_of_half_pi(Random &random) {
  return 1.5707963267948966 * static_cast<double>(random.below(1000));
}

template <int a, int b>
Operands box(Random &random) {
  return {between(-a, a, random), between(-b, b, random)};
}
template <int low, int high>
Operands wide(Random &random) {
  return {of_magnitude(low, high, random), of_magnitude(low, high, random)};
}
// Of modulus r; t is the tangent of half the angle. Inputs must not depend on the C library's functions.
Operands on_circle(double r, double t) {
  return {r * ((1 - t * t) / (1 + t * t)), r * (2 * t / (1 + t * t))};
}
Operands circle(Random &random) {
  const double t = between(-1, 1, random), r = 1 + of_magnitude(-52, -3, random);
  const Operands z = on_circle(r, t);
  return random.below(2) ? z : Operands{-z.y, z.x};
}
Operands diagonal(Random &random) {  // of the circle: both squares are about a half
  return on_circle(1 + of_magnitude(-40, -8, random), 0.41421356237309503 + of_magnitude(-50, -20, random));
}
Operands near_one(Random &random) {
  return {(random.below(2) ? 1 : -1) * (1 + of_magnitude(-52, -2, random)), of_magnitude(-60, -1, random)};
}
Operands beside_axis(Random &random) { return {between(-4, 4, random), of_magnitude(-100, -10, random)}; }
Operands real_axis(Random &random) {
  const Operands z = random.below(2) ? near_one(random) : box<4, 4>(random);
  return {z.x, std::copysign(0.0, z.y)};
}
Operands quadrant_border(Random &random) { return {between(-3, 3, random), multiple_of_half_pi(random)}; }
Operands pole(Random &random) {
  return {of_magnitude(-50, -3, random), 1.5707963267948966 * static_cast<double>(2 * random.below(50) + 1)};
}
Operands large_angle(Random &random) { return {between(-5, 5, random), of_magnitude(10, 1000, random)}; }
Operands overflow(Random &random) {
  return {between(690, 745, random) * (random.below(2) ? 1 : -1), between(-9, 9, random)};
}
template <Operands (*draw)(Random &)>
Operands turned(Random &random) {
  const Operands z = draw(random);
  return {z.y, z.x};
}
template <Operands (*base)(Random &), int u, int v>
Operands to_power(Random &random) {
  Operands z = base(random);
  z.u = between(-u, u, random), z.v = between(-v, v, random);
  return z;
}

#define REGION(...) \
  { #__VA_ARGS__, __VA_ARGS__ }
const std::vector<Region> of_y = {
    REGION(box<600, 100>),   REGION(box<3, 3>),        REGION(wide<-40, 8>), REGION(wide<-140, 3>),
    REGION(quadrant_border), REGION(large_angle),      REGION(overflow),     REGION(pole),
    REGION(real_axis),       REGION(turned<real_axis>)};
const std::vector<Region> of_x = [] {
  std::vector<Region> regions = of_y;
  for (Region &region : regions) region.turned = true;
  return regions;
}();
const std::vector<Region> of_plane = {
    REGION(box<3, 3>),   REGION(wide<-40, 8>),     REGION(wide<-1000, 1000>),
    REGION(circle),      REGION(diagonal),         REGION(near_one),
    REGION(beside_axis), REGION(turned<near_one>), REGION(turned<beside_axis>),
    REGION(real_axis),   REGION(turned<real_axis>)};
const std::vector<Region> of_powers = {
    REGION(to_power<box<3, 3>, 3, 3>),         REGION(to_power<wide<-20, 20>, 20, 20>),
    REGION(to_power<near_one, 100, 100>),      REGION(to_power<circle, 3000, 100>),
    REGION(to_power<wide<-1000, 1000>, 1, 4>), REGION(to_power<beside_axis, 20, 20>)};
#undef REGION

template <class E>
std::vector<ComplexFunction<E>> make_table() {
#define ROW(function, scalar, exact, regions)                                                 \
  {                                                                                           \
    either<PartOf<E>>("_vxmz" #function "_HA", "_vxmc" #function "_HA"),                      \
        either<PartOf<E>>(_vxmz##function##_HA, _vxmc##function##_HA),                        \
        either<PartOf<E>>(_vxmz##function##_50, _vxmc##function##_21), scalar, exact, regions \
  }
  return {
      ROW(Exp, scalar<_vxmcexp_scalar>, of<exponential>, of_y),
      ROW(Ln, scalar<_vxmclog_scalar>, of<logarithm>, of_plane),
      ROW(Log10, scalar<_vxmclog10_scalar>, exact_log10, of_plane),
      ROW(Sqrt, scalar<_vxmcsqrt_scalar>, of<square_root>, of_plane),
      ROW(Cosh, scalar<_vxmccosh_scalar>, of<cosh>, of_y),
      ROW(Sinh, scalar<_vxmcsinh_scalar>, of<sinh>, of_y),
      ROW(Tanh, scalar<_vxmctanh_scalar>, of<tanh>, of_y),
      ROW(Cos, scalar<_vxmccos_scalar>, of_rotated<cosh>, of_x),
      ROW(Sin, scalar<_vxmcsin_scalar>, rotated<sinh>, of_x),
      ROW(Tan, scalar<_vxmctan_scalar>, rotated<tanh>, of_x),
      ROW(Acos, scalar<_vxmcacos_scalar>, of<inverse_cosine>, of_plane),
      ROW(Acosh, scalar<_vxmcacosh_scalar>, exact_acosh, of_plane),
      ROW(Asin, scalar<_vxmcasin_scalar>, rotated<inverse_hyperbolic_sine>, of_plane),
      ROW(Asinh, scalar<_vxmcasinh_scalar>, of<inverse_hyperbolic_sine>, of_plane),
      ROW(Atan, scalar<_vxmcatan_scalar>, rotated<inverse_hyperbolic_tangent>, of_plane),
      ROW(Atanh, scalar<_vxmcatanh_scalar>, of<inverse_hyperbolic_tangent>, of_plane),
      ROW(Pow, scalar_power, exact_power, of_powers),
      ROW(Powx, scalar_power, exact_power, of_powers),
  };
#undef ROW
}

}  // namespace

template <class E>
const std::vector<ComplexFunction<E>> &complex_functions() {
  static const std::vector<ComplexFunction<E>> table = make_table<E>();
  return table;
}
template const std::vector<ComplexFunction<vxm64fc>> &complex_functions();
template const std::vector<ComplexFunction<vxm32fc>> &complex_functions();

const std::vector<double> &notable_numbers() {
  static const std::vector<double> numbers = [] {
    std::vector<double> all;
    const double half_pi = 1.5707963267948966;
    for (double x :
         {0.0, 0x1p-1074, 0x1.8p-1030, 0x1p-500, 0x1p-60, 0.5, 1.0, std::nextafter(1, 2), half_pi,
          std::nextafter(half_pi, 2), 3.0, 100.0, 600.0, 1000.0, 3000.0, 1e22, 0x1p500, DBL_MAX, HUGE_VAL})
      all.insert(all.end(), {x, -x});
    all.push_back(std::nan(""));
    return all;
  }();
  return numbers;
}

Operands any_operands(Random &random) {
  constexpr Operands (*draws[])(Random &) = {box<3, 3>,   wide<-40, 8>, wide<-1000, 1000>, circle,
                                             near_one,    beside_axis,  quadrant_border,   pole,
                                             large_angle, box<600, 100>};
  const auto number = [&] { return notable_numbers()[random.below(notable_numbers().size())]; };
  Operands z = draws[random.below(std::size(draws))](random);
  if (random.below(2)) std::swap(z.x, z.y);
  z.u = between(-20, 20, random), z.v = between(-20, 20, random);
  if (random.below(8) == 0) z.x = number();
  if (random.below(8) == 0) z.y = number();
  if (random.below(16) == 0) z.u = number();
  if (random.below(16) == 0) z.v = number();
  return z;
}

template <class E>
ComplexErrors measure(const ComplexFunction<E> &f, const Region &region, int points, bool by_scalar) {
  using T = PartOf<E>;
  Random random{1};
  ComplexErrors errors;
  for (int i = 0; i < points; ++i) {
    Operands z = region.draw(random);
    const E a = rounded_element<E>(z.x, z.y), b = rounded_element<E>(z.u, z.v);
    z = {a.re, a.im, b.re, b.im};
    if (std::isinf(a.re) || std::isinf(a.im) || (a.re == 0 && a.im == 0)) continue;
    E r;
    f.entry(1, &a, &b, &r);
    if (by_scalar) {
      const vxm64fc w = f.scalar(z);
      r = {static_cast<T>(w.re), static_cast<T>(w.im)};
    }
    const BigComplex exact = f.exact(z);
    const auto note = [&](T computed, const Big &part) {
      const double error = error_in_ulp(computed, part);
      ComplexWorst &worst =
          std::fabs(computed) < std::numeric_limits<T>::min() ? errors.subnormal : errors.normal;
      if (!(error <= worst.error)) worst = {error, z};
      errors.sum += error, ++errors.parts;
      errors.wrongly_rounded += error > 0.5;
    };
    note(r.re, exact.re);
    note(r.im, exact.im);
  }
  return errors;
}
template ComplexErrors measure(const ComplexFunction<vxm64fc> &, const Region &, int, bool);
template ComplexErrors measure(const ComplexFunction<vxm32fc> &, const Region &, int, bool);

}  // namespace qkr::tests
