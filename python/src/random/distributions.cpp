// The distributions, one row each. Names, parameters and laws are NumPy's where it has the distribution;
// `loc` and `scale` beyond those are the library's displacement and stretching.
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>
#include <qkr/distributions.h>
#include <utility>

#include "random/draw.h"

namespace qkr::random {
namespace {

constexpr double required = std::numeric_limits<double>::quiet_NaN();
constexpr double absent = std::numeric_limits<double>::infinity();

bool is_count(double x) { return x == std::floor(x) && x >= 0 && x <= 0x7fffffff; }

const char *anything(const double *) { return nullptr; }
template <int k>
const char *not_negative(const double *p) {
  return p[k] >= 0 ? nullptr : "scale is negative or NaN";
}
// A shape above 0, then a scale of at least 0 as parameter k.
template <int k>
const char *shape_and_scale(const double *p) {
  return p[0] > 0 ? not_negative<k>(p) : "shape is not above 0";
}
const char *ordered(const double *p) {
  return std::isfinite(p[1] - p[0]) ? nullptr : "the range is not finite";
}
const char *two_shapes(const double *p) { return p[1] > 0 ? shape_and_scale<3>(p) : "shape is not above 0"; }
const char *sigma_and_scale(const double *p) {
  return p[1] >= 0 ? not_negative<3>(p) : "sigma is negative or NaN";
}
const char *probability(const double *p) { return p[0] >= 0 && p[0] <= 1 ? nullptr : "p is not from 0 to 1"; }
const char *inner_probability(const double *p) {
  return p[0] > 0 && p[0] <= 1 ? nullptr : "p is not above 0 and at most 1";
}
const char *trials(const double *p) {
  return is_count(p[0]) ? probability(p + 1) : "n is no count below 2**31";
}
const char *failures(const double *p) {
  return p[0] >= 0 ? inner_probability(p + 1) : "n is negative or NaN";
}
const char *mean(const double *p) { return p[0] >= 0 ? nullptr : "lam is negative or NaN"; }
const char *urn(const double *p) {
  if (!is_count(p[0]) || !is_count(p[1]) || !is_count(p[2]) || !is_count(p[0] + p[1]))
    return "a parameter is no count below 2**31";
  return p[2] <= p[0] + p[1] ? nullptr : "nsample is larger than the lot";
}

double range_begin(const double *p) { return p[1] == absent ? 0 : p[0]; }
double range_end(const double *p) { return p[1] == absent ? p[0] : p[1]; }
const char *whole_range(const double *p) {
  const double low = range_begin(p), high = range_end(p);
  const bool whole =
      low == std::floor(low) && high == std::floor(high) && low >= -0x1p31 && high <= 0x1p31 - 1;
  return !whole ? "the range is not one of 32-bit integers" : low < high ? nullptr : "the range is empty";
}

// Of the double and the single-precision form of a function, that of T.
template <class T, class D, class S>
constexpr auto of(D in_doubles, S in_floats) {
  if constexpr (std::is_same_v<T, double>) return in_doubles;
  else return in_floats;
}

constexpr Parameter loc = {"loc", 0}, scale = {"scale", 1};

template <class F>
constexpr Distribution real(const char *name, std::initializer_list<Parameter> parameters, Check check,
                            F fill) {
  Distribution row = {name, 0, {}, check, fill, nullptr, nullptr, 0};
  if constexpr (std::is_convertible_v<F, Fill<float>>) row.floats = fill;
  for (const Parameter &parameter : parameters) row.parameters[row.count++] = parameter;
  return row;
}
constexpr Distribution whole(const char *name, std::initializer_list<Parameter> parameters, Check check,
                             Fill<int32_t> fill, int offset = 0) {
  Distribution row = {name, 0, {}, check, nullptr, nullptr, fill, offset};
  for (const Parameter &parameter : parameters) row.parameters[row.count++] = parameter;
  return row;
}

// The same, by what its `scale` and `loc` make of standard numbers.
template <class F>
constexpr Distribution scaled(const char *name, std::initializer_list<Parameter> parameters, Check check,
                              F fill, double unit = 1) {
  Distribution row = real(name, parameters, check, fill);
  row.unit = unit;
  for (int k = 0; k < row.count; ++k) {
    if (row.parameters[k].name == scale.name) row.scale_place = k;
    if (row.parameters[k].name == loc.name) row.loc_place = k;
  }
  return row;
}

#define REAL []<class T>(StreamState * s, int32_t n, T * out, const double *p) -> int32_t
#define WHOLE [](StreamState * s, int32_t n, int32_t * out, const double *p) -> int32_t

const Distribution rows[] = {
    real(
        "random", {}, anything,
        REAL { return (void)p, of<T>(_vxsdRngUniform, _vxssRngUniform)(0, s, n, out, 0, 1); }),
    real("random_53", {}, anything,
         [](StreamState *s, int32_t n, double *out, const double *) {
           return qkr_uniform_53(s, n, out, 0, 1);
         }),
    real(
        "uniform", {{"low", 0}, {"high", 1}}, ordered,
        REAL { return of<T>(_vxsdRngUniform, _vxssRngUniform)(VXS_METHOD_ACCURATE, s, n, out, p[0], p[1]); }),
    real(
        "standard_normal", {}, anything,
        REAL { return (void)p, of<T>(_vxsdRngGaussian, _vxssRngGaussian)(1, s, n, out, 0, 1); }),
    scaled(
        "normal", {loc, scale}, not_negative<1>,
        REAL { return of<T>(_vxsdRngGaussian, _vxssRngGaussian)(1, s, n, out, p[0], p[1]); }),
    scaled(
        "exponential", {scale, loc}, not_negative<0>,
        REAL { return of<T>(_vxsdRngExponential, _vxssRngExponential)(0, s, n, out, p[1], p[0]); }),
    scaled(
        "laplace", {loc, scale}, not_negative<1>,
        REAL { return of<T>(_vxsdRngLaplace, _vxssRngLaplace)(0, s, n, out, p[0], p[1]); }),
    scaled(
        "weibull", {{"a", required}, scale, loc}, shape_and_scale<1>,
        REAL { return of<T>(_vxsdRngWeibull, _vxssRngWeibull)(0, s, n, out, p[0], p[2], p[1]); }),
    scaled(
        "cauchy", {loc, scale}, not_negative<1>,
        REAL { return of<T>(_vxsdRngCauchy, _vxssRngCauchy)(0, s, n, out, p[0], p[1]); }),
    scaled(
        "rayleigh", {scale, loc}, not_negative<0>,  // the library's scale is that of the squared sum
        REAL {
          return of<T>(_vxsdRngRayleigh, _vxssRngRayleigh)(0, s, n, out, p[1], p[0] * std::numbers::sqrt2);
        },
        std::numbers::sqrt2),
    real(
        "lognormal", {{"mean", 0}, {"sigma", 1}, loc, scale}, sigma_and_scale,
        REAL { return of<T>(_vxsdRngLognormal, _vxssRngLognormal)(0, s, n, out, p[0], p[1], p[2], p[3]); }),
    scaled(
        "gumbel", {loc, scale}, not_negative<1>,  // the library's law, mirrored
        REAL { return of<T>(_vxsdRngGumbel, _vxssRngGumbel)(0, s, n, out, p[0], -p[1]); }, -1),
    scaled(
        "gumbel_left", {loc, scale}, not_negative<1>,
        REAL { return of<T>(_vxsdRngGumbel, _vxssRngGumbel)(0, s, n, out, p[0], p[1]); }),
    scaled(
        "gamma", {{"shape", required}, scale, loc}, shape_and_scale<1>,
        REAL { return of<T>(_vxsdRngGamma, _vxssRngGamma)(0, s, n, out, p[0], p[2], p[1]); }),
    real(
        "beta", {{"a", required}, {"b", required}, loc, scale}, two_shapes,
        REAL {
          return of<T>(_vxsdRngBeta, _vxssRngBeta)(VXS_METHOD_ACCURATE, s, n, out, p[0], p[1], p[2], p[3]);
        }),

    whole(
        "integers", {{"low", required}, {"high", absent}}, whole_range,
        WHOLE {
          const auto low = static_cast<int32_t>(range_begin(p)), high = static_cast<int32_t>(range_end(p));
          const int32_t status = _vxsiRngUniform(0, s, n, out, low, high);
          for (int32_t i = 0; i < n; ++i) out[i] = out[i] < high ? out[i] : high - 1;  // a rounded MCG59
          return status;
        }),
    whole(
        "bernoulli", {{"p", required}}, probability, WHOLE { return _vxsiRngBernoulli(0, s, n, out, p[0]); }),
    whole(
        "geometric", {{"p", required}}, inner_probability,
        WHOLE {
          if (p[0] < 1) return _vxsiRngGeometric(0, s, n, out, p[0]);
          for (int32_t i = 0; i < n; ++i) out[i] = 0;
          return VXS_STATUS_OK;
        },
        1),
    whole(
        "binomial", {{"n", required}, {"p", required}}, trials,
        WHOLE { return _vxsiRngBinomial(0, s, n, out, static_cast<int32_t>(p[0]), p[1]); }),
    whole(
        "hypergeometric", {{"ngood", required}, {"nbad", required}, {"nsample", required}}, urn,
        WHOLE {
          const auto good = static_cast<int32_t>(p[0]), bad = static_cast<int32_t>(p[1]);
          return _vxsiRngHypergeometric(0, s, n, out, good + bad, static_cast<int32_t>(p[2]), good);
        }),
    whole(
        "negative_binomial", {{"n", required}, {"p", required}}, failures,
        WHOLE { return _vxsiRngNegbinomial(0, s, n, out, p[0], p[1]); }),
    whole(
        "poisson", {{"lam", 1}}, mean, WHOLE { return _vxsiRngPoisson(0, s, n, out, p[0]); }),
};

#define TAIL "size=None, dtype=None, out=None)\n--\n\n"
#define NOTES "\n\nNotes\n-----\nThe C functions: "

// Docstrings, in the order of the rows.
constexpr const char *docstrings[] = {
    "random($self, " TAIL
    "Uniform over [0, 1), of as many bits as the generator's words; in float32 1.0 can come "
    "out." NOTES "_vxsdRngUniform, _vxssRngUniform.",
    "random_53($self, " TAIL
    "Uniform over [0, 1), of all 53 bits of a float64; each takes two of the generator's "
    "numbers." NOTES "qkr_uniform_53.",
    "uniform($self, low=0.0, high=1.0, " TAIL "Uniform from `low` to `high`." NOTES
    "_vxsdRngUniform, _vxssRngUniform with VXS_METHOD_ACCURATE.",
    "standard_normal($self, " TAIL "Normal of mean 0 and deviation 1." NOTES
    "_vxsdRngGaussian, _vxssRngGaussian with method 1.",
    "normal($self, loc=0.0, scale=1.0, " TAIL "Normal of mean `loc` and deviation `scale`." NOTES
    "_vxsdRngGaussian, _vxssRngGaussian with method 1.",
    "exponential($self, scale=1.0, loc=0.0, " TAIL "Exponential of mean `scale`, from `loc` on." NOTES
    "_vxsdRngExponential, _vxssRngExponential.",
    "laplace($self, loc=0.0, scale=1.0, " TAIL "Laplace of mean `loc`." NOTES
    "_vxsdRngLaplace, _vxssRngLaplace.",
    "weibull($self, a, scale=1.0, loc=0.0, " TAIL "Weibull of shape `a`, from `loc` on." NOTES
    "_vxsdRngWeibull, _vxssRngWeibull.",
    "cauchy($self, loc=0.0, scale=1.0, " TAIL "Cauchy of median `loc`." NOTES
    "_vxsdRngCauchy, _vxssRngCauchy.",
    "rayleigh($self, scale=1.0, loc=0.0, " TAIL
    "Rayleigh: the length of a vector of two normal numbers of deviation "
    "`scale`, from `loc` on." NOTES "_vxsdRngRayleigh, _vxssRngRayleigh, with sqrt(2) scale.",
    "lognormal($self, mean=0.0, sigma=1.0, loc=0.0, scale=1.0, " TAIL
    "loc + scale e**g, where g is normal of the given mean and deviation." NOTES
    "_vxsdRngLognormal, _vxssRngLognormal.",
    "gumbel($self, loc=0.0, scale=1.0, " TAIL "Gumbel of mode `loc`, with the long tail to the right." NOTES
    "_vxsdRngGumbel, _vxssRngGumbel, with -scale.",
    "gumbel_left($self, loc=0.0, scale=1.0, " TAIL
    "Gumbel of mode `loc`, with the long tail to the left." NOTES "_vxsdRngGumbel, _vxssRngGumbel.",
    "gamma($self, shape, scale=1.0, loc=0.0, " TAIL "Gamma of the given shape, from `loc` on." NOTES
    "_vxsdRngGamma, _vxssRngGamma.",
    "beta($self, a, b, loc=0.0, scale=1.0, " TAIL "Beta of shapes `a` and `b`, over [loc, loc + scale]." NOTES
    "_vxsdRngBeta, _vxssRngBeta with VXS_METHOD_ACCURATE.",
    "integers($self, low, high=None, " TAIL
    "Whole numbers from `low` to `high` - 1, or from 0 to `low` - 1; both are "
    "32-bit integers." NOTES "_vxsiRngUniform.",
    "bernoulli($self, p, " TAIL "1 with probability `p`, else 0." NOTES "_vxsiRngBernoulli.",
    "geometric($self, p, " TAIL "The number of trials up to the first success." NOTES
    "_vxsiRngGeometric, which counts the failures.",
    "binomial($self, n, p, " TAIL "The number of successes among `n` trials." NOTES "_vxsiRngBinomial.",
    "hypergeometric($self, ngood, nbad, nsample, " TAIL
    "How many good ones a sample without replacement holds." NOTES "_vxsiRngHypergeometric.",
    "negative_binomial($self, n, p, " TAIL "The number of failures before success number `n`." NOTES
    "_vxsiRngNegbinomial.",
    "poisson($self, lam=1.0, " TAIL "The number of events, of mean `lam`." NOTES
    "_vxsiRngPoisson with method 0.",
};
static_assert(std::size(rows) == std::size(docstrings));

template <size_t row>
PyObject *method(PyObject *self, PyObject *const *arguments, Py_ssize_t count, PyObject *names) {
  return draw(rows[row], self, arguments, count, names);
}

template <size_t... row>
void make_methods(PyMethodDef *methods, std::index_sequence<row...>) {
  ((methods[row] = {rows[row].name, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(method<row>)),
                    METH_FASTCALL | METH_KEYWORDS, docstrings[row]}),
   ...);
}

}  // namespace

PyMethodDef *distribution_methods(int *count) {
  static PyMethodDef methods[std::size(rows) + 1];
  make_methods(methods, std::make_index_sequence<std::size(rows)>());
  *count = std::size(rows);
  return methods;
}

}  // namespace qkr::random
