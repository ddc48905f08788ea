#include "tests/support/complex_functions.h"

#include <cfloat>
#include <cmath>

namespace qkr::tests {

namespace {

constexpr double half_pi = 1.5707963267948966;

double between(double low, double high, Random &random) { return low + (high - low) * random.unit(); }
double of_magnitude(double low, double high, Random &random) {  // 2^low to 2^high, of both signs
  const double exponent = between(low, high, random);
  const double x = std::ldexp(1 + random.unit(), static_cast<int>(std::floor(exponent)));
  return random.below(2) ? x : -x;
}
Region box(double a, double b) {
  return [=](Random &random) { return Operands{between(-a, a, random), between(-b, b, random)}; };
}
Region wide(double low, double high) {
  return [=](Random &random) {
    return Operands{of_magnitude(low, high, random), of_magnitude(low, high, random)};
  };
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
  const Operands z = random.below(2) ? near_one(random) : box(4, 4)(random);
  return {z.x, std::copysign(0.0, z.y)};
}
Operands quadrant_border(Random &random) {
  return {between(-3, 3, random), half_pi * double(random.below(1000))};
}
Operands pole(Random &random) {
  return {of_magnitude(-50, -3, random), half_pi * double(2 * random.below(50) + 1)};
}
Operands large_angle(Random &random) { return {between(-5, 5, random), of_magnitude(10, 1000, random)}; }
Operands overflow(Random &random) {
  return {between(690, 745, random) * (random.below(2) ? 1 : -1), between(-9, 9, random)};
}
Region turned(const Region &region) {  // the parts of z in each other's place
  return [=](Random &random) {
    const Operands z = region(random);
    return Operands{z.y, z.x, z.u, z.v};
  };
}
Region to_power(const Region &base, double u, double v) {
  return [=](Random &random) {
    const Operands z = base(random);
    return Operands{z.x, z.y, between(-u, u, random), between(-v, v, random)};
  };
}

template <auto f>
vxm64fc scalar(vxm64fc z, vxm64fc w) {
  if constexpr (std::is_invocable_v<decltype(f), double, double>) return f(z.re, z.im);
  else return f(z.re, z.im, w.re, w.im);
}

template <class E>
std::vector<ComplexFunction<E>> make_table() {
  const std::vector<Region> of_y = {box(600, 100), box(3, 3), wide(-40, 8), wide(-140, 3), quadrant_border,
                                    large_angle,   overflow,  pole,         real_axis,     turned(real_axis)};
  std::vector<Region> of_x;
  for (const Region &region : of_y) of_x.push_back(turned(region));
  const std::vector<Region> of_plane = {
      box(3, 3),   wide(-40, 8),     wide(-1000, 1000),   circle,    diagonal,         near_one,
      beside_axis, turned(near_one), turned(beside_axis), real_axis, turned(real_axis)};
  const std::vector<Region> of_powers = {to_power(box(3, 3), 3, 3),         to_power(wide(-20, 20), 20, 20),
                                         to_power(near_one, 100, 100),      to_power(circle, 3000, 100),
                                         to_power(wide(-1000, 1000), 1, 4), to_power(beside_axis, 20, 20)};
#define ROW(function, of_one, exact, regions)                                                         \
  {                                                                                                   \
    either<PartOf<E>>("_vxmz" #function "_HA", "_vxmc" #function "_HA"),                              \
        either<PartOf<E>>(_vxmz##function##_HA, _vxmc##function##_HA),                                \
        either<PartOf<E>>(_vxmz##function##_50, _vxmc##function##_21), scalar<of_one>, exact, regions \
  }
  return {
      ROW(Exp, _vxmcexp_scalar, mpc_exp, of_y),           ROW(Ln, _vxmclog_scalar, mpc_log, of_plane),
      ROW(Log10, _vxmclog10_scalar, mpc_log10, of_plane), ROW(Sqrt, _vxmcsqrt_scalar, mpc_sqrt, of_plane),
      ROW(Cosh, _vxmccosh_scalar, mpc_cosh, of_y),        ROW(Sinh, _vxmcsinh_scalar, mpc_sinh, of_y),
      ROW(Tanh, _vxmctanh_scalar, mpc_tanh, of_y),        ROW(Cos, _vxmccos_scalar, mpc_cos, of_x),
      ROW(Sin, _vxmcsin_scalar, mpc_sin, of_x),           ROW(Tan, _vxmctan_scalar, mpc_tan, of_x),
      ROW(Acos, _vxmcacos_scalar, mpc_acos, of_plane),    ROW(Acosh, _vxmcacosh_scalar, mpc_acosh, of_plane),
      ROW(Asin, _vxmcasin_scalar, mpc_asin, of_plane),    ROW(Asinh, _vxmcasinh_scalar, mpc_asinh, of_plane),
      ROW(Atan, _vxmcatan_scalar, mpc_atan, of_plane),    ROW(Atanh, _vxmcatanh_scalar, mpc_atanh, of_plane),
      ROW(Pow, _vxmcpow_scalar, mpc_pow, of_powers),      ROW(Powx, _vxmcpow_scalar, mpc_pow, of_powers),
  };
#undef ROW
}

}  // namespace

template <class E>
const std::vector<ComplexFunction<E>> &complex_functions() {
  static const std::vector<ComplexFunction<E>> table = make_table<E>();
  return table;
}

const std::vector<double> &notable_numbers() {
  static const std::vector<double> numbers = [] {
    std::vector<double> all;
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
  static const Region regions[] = {box(3, 3),   wide(-40, 8), wide(-1000, 1000), circle,
                                   near_one,    beside_axis,  quadrant_border,   pole,
                                   large_angle, box(600, 100)};
  const auto number = [&] { return notable_numbers()[random.below(notable_numbers().size())]; };
  Operands z = regions[random.below(std::size(regions))](random);
  if (random.below(2)) std::swap(z.x, z.y);
  z.u = between(-20, 20, random), z.v = between(-20, 20, random);
  if (random.below(8) == 0) z.x = number();
  if (random.below(8) == 0) z.y = number();
  if (random.below(16) == 0) z.u = number();
  if (random.below(16) == 0) z.v = number();
  return z;
}

template <class E>
void note_errors(const ComplexFunction<E> &f, E z, E w, E computed, Errors<E> &errors) {
  BigComplex a(z.re, z.im), b(w.re, w.im), exact;
  f.exact(raw(exact), raw(a), raw(b), MPC_RNDNN);
  for (const auto &[part, of_exact] :
       {std::pair(computed.re, real(exact)), std::pair(computed.im, imag(exact))})
    errors.note(part, {error_in_ulp(part, of_exact), z, w});
  errors.points += 2;
}

template <class E>
Errors<E> measure(const ComplexFunction<E> &f, const Region &region, int points) {
  Random random{1};
  Errors<E> errors;
  for (int i = 0; i < points; ++i) {
    const Operands at = region(random);
    const E z = rounded_element<E>(at.x, at.y), w = rounded_element<E>(at.u, at.v);
    if (std::isinf(z.re) || std::isinf(z.im) || (z.re == 0 && z.im == 0)) continue;
    E computed;
    f.entry(1, &z, &w, &computed);
    note_errors(f, z, w, computed, errors);
  }
  return errors;
}

#define INSTANTIATE(E)                                                         \
  template const std::vector<ComplexFunction<E>> &complex_functions();         \
  template void note_errors(const ComplexFunction<E> &, E, E, E, Errors<E> &); \
  template Errors<E> measure(const ComplexFunction<E> &, const Region &, int);
INSTANTIATE(vxm64fc)
INSTANTIATE(vxm32fc)

}  // namespace qkr::tests
