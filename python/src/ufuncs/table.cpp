// The ufuncs and their library functions. Names are NumPy's where it has the function, SciPy's for error
// functions, and the library's otherwise.
#include "ufuncs/table.h"

namespace qkr::ufuncs {
namespace {

template <class T>
constexpr char letter = std::is_same_v<T, float>     ? 'f'
                        : std::is_same_v<T, double>  ? 'd'
                        : std::is_same_v<T, vxm32fc> ? 'F'
                                                     : 'D';

// Complex functions raise floating-point flags by themselves and set no status.
template <class T>
constexpr unsigned statuses = std::is_floating_point_v<T> ? all_statuses : 0;

template <class T, int inputs_, int outputs_>
struct Shape {
  static constexpr int inputs = inputs_, outputs = outputs_;
  template <class F>
  static Variant variant(F function) {
    return {.loop = loop<T, inputs, outputs>,
            .type = letter<T>,
            .function = reinterpret_cast<void (*)()>(function),
            .of_number = nullptr,
            .dense = dense<T, inputs, outputs>,
            .collected = statuses<T>,
            .reported = statuses<T>,
            .by_flags = !std::is_floating_point_v<T>};
  }
};

template <class F>
struct ShapeOf;
template <class T>
struct ShapeOf<void (*)(int32_t, const T *, T *)> : Shape<T, 1, 1> {};
template <class T>
struct ShapeOf<void (*)(int32_t, const T *, const T *, T *)> : Shape<T, 2, 1> {};
template <class T>
struct ShapeOf<void (*)(int32_t, const T *, T *, T *)> : Shape<T, 1, 2> {};

template <class F, class... More>
Row row(const char *name, const char *docstring, F first, More... more) {
  using S = ShapeOf<F>;
  return {name,
          docstring,
          S::inputs,
          S::outputs,
          PyUFunc_None,
          1 + sizeof...(more),
          {S::variant(first), ShapeOf<More>::variant(more)...}};
}

// Powers with one exponent for all elements.
template <class... F>
Row with_number(Row row, F... functions) {
  Variant *variant = row.variants;
  ((variant++->of_number = reinterpret_cast<void (*)()>(functions)), ...);
  return row;
}

// What the processor's own flags tell better than a status (0 / 0 is invalid, 1 / 0 a division by zero):
// statuses are collected, so that they go nowhere else, and not reported.
Row by_flags(Row row) {
  for (Variant &variant : row.variants) {
    variant.reported = 0;
    variant.by_flags = true;
  }
  return row;
}

Row without_errors(Row row) {
  for (Variant &variant : row.variants) variant.collected = 0;
  return row;
}

Row reducible(Row row, int identity) {
  row.identity = identity;
  return row;
}

// NumPy's order of results: fraction first.
void modf_fraction_first(int32_t n, const float *a, float *r1, float *r2) { _vxmsModf(n, a, r2, r1); }
void modf_fraction_first(int32_t n, const double *a, double *r1, double *r2) { _vxmdModf(n, a, r2, r1); }

// A row: name, summary, the library's functions by element type. The docstring names them.
#define QKR_UFUNC(name, summary, ...) \
  row(#name, summary "\n\nNotes\n-----\nThe C functions: " #__VA_ARGS__ ".\n", __VA_ARGS__)

Row rows[] = {
    // exponentials and logarithms
    QKR_UFUNC(exp, "The exponential function, e**x.", _vxmsExp_HA, _vxmdExp_HA, _vxmcExp_HA, _vxmzExp_HA),
    QKR_UFUNC(log, "The natural logarithm.", _vxmsLn_HA, _vxmdLn_HA, _vxmcLn_HA, _vxmzLn_HA),
    QKR_UFUNC(log10, "The logarithm to base 10.", _vxmsLog10_HA, _vxmdLog10_HA, _vxmcLog10_HA, _vxmzLog10_HA),

    // powers and roots
    QKR_UFUNC(sqrt, "The square root, not negative.", _vxmsSqrt_HA, _vxmdSqrt_HA, _vxmcSqrt_HA, _vxmzSqrt_HA),
    QKR_UFUNC(invsqrt, "The reciprocal square root, 1 / sqrt(x).", _vxmsInvSqrt_HA, _vxmdInvSqrt_HA),
    QKR_UFUNC(cbrt, "The cube root.", _vxmsCbrt_HA, _vxmdCbrt_HA),
    QKR_UFUNC(invcbrt, "The reciprocal cube root, 1 / cbrt(x).", _vxmsInvCbrt_HA, _vxmdInvCbrt_HA),
    with_number(
        QKR_UFUNC(
            power,
            "Powers, x1**x2. One exponent for all elements is served by Powx.\n\nUnlike NumPy's, powers "
            "of integers are floating-point numbers.",
            _vxmsPow_HA, _vxmdPow_HA, _vxmcPow_HA, _vxmzPow_HA),
        _vxmsPowx_HA, _vxmdPowx_HA, _vxmcPowx_HA, _vxmzPowx_HA),
    reducible(
        QKR_UFUNC(hypot, "The hypotenuse, sqrt(x1**2 + x2**2), without overflow or underflow on the way.",
                  _vxmsHypot_HA, _vxmdHypot_HA),
        PyUFunc_Zero),

    // division
    by_flags(QKR_UFUNC(divide, "Division, x1 / x2, correctly rounded.", _vxmsDiv_HA, _vxmdDiv_HA)),
    by_flags(QKR_UFUNC(reciprocal, "The reciprocal, 1 / x, correctly rounded.", _vxmsInv_HA, _vxmdInv_HA)),

    // circular functions, in radians
    QKR_UFUNC(sin, "The sine.", _vxmsSin_HA, _vxmdSin_HA, _vxmcSin_HA, _vxmzSin_HA),
    QKR_UFUNC(cos, "The cosine.", _vxmsCos_HA, _vxmdCos_HA, _vxmcCos_HA, _vxmzCos_HA),
    QKR_UFUNC(sincos, "Sine and cosine, as a pair of arrays.", _vxmsSinCos_HA, _vxmdSinCos_HA),
    QKR_UFUNC(tan, "The tangent.", _vxmsTan_HA, _vxmdTan_HA, _vxmcTan_HA, _vxmzTan_HA),
    QKR_UFUNC(arcsin, "The inverse sine, from -pi/2 to pi/2.", _vxmsAsin_HA, _vxmdAsin_HA, _vxmcAsin_HA,
              _vxmzAsin_HA),
    QKR_UFUNC(arccos, "The inverse cosine, from 0 to pi.", _vxmsAcos_HA, _vxmdAcos_HA, _vxmcAcos_HA,
              _vxmzAcos_HA),
    QKR_UFUNC(arctan, "The inverse tangent, from -pi/2 to pi/2.", _vxmsAtan_HA, _vxmdAtan_HA, _vxmcAtan_HA,
              _vxmzAtan_HA),
    QKR_UFUNC(arctan2, "The angle of the point with ordinate x1 and abscissa x2, from -pi to pi.",
              _vxmsAtan2_HA, _vxmdAtan2_HA),

    // hyperbolic functions
    QKR_UFUNC(sinh, "The hyperbolic sine.", _vxmsSinh_HA, _vxmdSinh_HA, _vxmcSinh_HA, _vxmzSinh_HA),
    QKR_UFUNC(cosh, "The hyperbolic cosine.", _vxmsCosh_HA, _vxmdCosh_HA, _vxmcCosh_HA, _vxmzCosh_HA),
    QKR_UFUNC(tanh, "The hyperbolic tangent.", _vxmsTanh_HA, _vxmdTanh_HA, _vxmcTanh_HA, _vxmzTanh_HA),
    QKR_UFUNC(arcsinh, "The inverse hyperbolic sine.", _vxmsAsinh_HA, _vxmdAsinh_HA, _vxmcAsinh_HA,
              _vxmzAsinh_HA),
    QKR_UFUNC(arccosh, "The inverse hyperbolic cosine, not negative.", _vxmsAcosh_HA, _vxmdAcosh_HA,
              _vxmcAcosh_HA, _vxmzAcosh_HA),
    QKR_UFUNC(arctanh, "The inverse hyperbolic tangent.", _vxmsAtanh_HA, _vxmdAtanh_HA, _vxmcAtanh_HA,
              _vxmzAtanh_HA),

    // error functions
    QKR_UFUNC(erf, "The error function.", _vxmsErf_HA, _vxmdErf_HA),
    QKR_UFUNC(erfc, "The complementary error function, 1 - erf(x), accurate also where it is small.",
              _vxmsErfc_HA, _vxmdErfc_HA),
    QKR_UFUNC(erfinv, "The inverse of the error function.", _vxmsErfInv_HA, _vxmdErfInv_HA),

    // integer parts
    without_errors(QKR_UFUNC(ceil, "The smallest integer not below x.", _vxmsCeil, _vxmdCeil)),
    without_errors(QKR_UFUNC(floor, "The largest integer not above x.", _vxmsFloor, _vxmdFloor)),
    without_errors(QKR_UFUNC(trunc, "The integer part, rounded toward zero.", _vxmsTrunc, _vxmdTrunc)),
    without_errors(QKR_UFUNC(rint, "The nearest integer; of two, the even one.", _vxmsRint, _vxmdRint)),
    without_errors(QKR_UFUNC(nearbyint,
                             "The nearest integer; of two, the even one. Never raises the inexact flag.",
                             _vxmsNearbyInt, _vxmdNearbyInt)),
    without_errors(QKR_UFUNC(round_half_away,
                             "The nearest integer; of two, the one farther from zero, as C's round.",
                             _vxmsRound, _vxmdRound)),
    without_errors(row(
        "modf",
        "Fraction and integer part, as a pair of arrays; both have the sign of x.\n\nNotes\n-----\nThe C functions: "
        "_vxmsModf, _vxmdModf, which store the integer part first.\n",
        static_cast<ToTwo<float>>(modf_fraction_first), static_cast<ToTwo<double>>(modf_fraction_first))),
};

}  // namespace

std::span<Row> table() { return rows; }

}  // namespace qkr::ufuncs
