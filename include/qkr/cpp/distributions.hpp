/** @file
 * C++: what a qkr::stream draws. Included by qkr/cpp/stream.hpp.
 *
 * Each fills a span, of doubles or floats, or of 32-bit integers, with the numbers of the C function named
 * beside it, whose words in qkr/distributions.h hold; how a draw is split changes nothing. Parameters have
 * the defaults of the standard law, in the order of the C functions: shapes, place, scale. Those outside a
 * law's range are answered with VXS_STATUS_BAD_ARGUMENT, with nothing drawn; so is a NaN among those that
 * are checked. */
#ifndef QKR_CPP_DISTRIBUTIONS_HPP
#define QKR_CPP_DISTRIBUTIONS_HPP

#include <qkr/cpp/base.hpp>

namespace qkr {
inline namespace cpp {
namespace detail {

// Of a vector, an array or a span.
template <class Array>
using element_of = typename decltype(std::span(std::declval<Array &>()))::element_type;

}  // namespace detail

/** How the triangular factor of a covariance is stored: QKR_STORAGE_FULL and its companions. */
enum class storage : std::int32_t {
  full = QKR_STORAGE_FULL,
  packed = QKR_STORAGE_PACKED,
  diagonal = QKR_STORAGE_DIAGONAL
};

/** The draws of a stream, which is derived from this. */
template <class Stream>
class draws {
 public:
// A row: name, element, C function, condition of its parameters, parameters, and what the C function gets
// behind the array.
#define QKR_CPP_DRAW(name, T, f, method, condition, parameters, arguments)           \
  status try_##name(std::span<T> out, QKR_CPP_LISTED parameters) noexcept {          \
    return draw(out, condition, [=](StreamState *stream, std::int32_t n, T *first) { \
      return f(method, stream, n, first, QKR_CPP_LISTED arguments);                  \
    });                                                                              \
  }                                                                                  \
  void name(std::span<T> out, QKR_CPP_LISTED parameters) {                           \
    check(draw(out, condition, [=](StreamState *stream, std::int32_t n, T *first) {  \
      return f(method, stream, n, first, QKR_CPP_LISTED arguments);                  \
    }));                                                                             \
  }
#define QKR_CPP_LISTED(...) __VA_ARGS__

  /** @name Real numbers */
  /**@{*/
  /** Uniform over [a, b); rounding may leave it, but not with method VXS_METHOD_ACCURATE: _vxsdRngUniform(),
   * _vxssRngUniform(). */
  QKR_CPP_DRAW(uniform, double, _vxsdRngUniform, method, a < b,
               (double a = 0, double b = 1, std::int32_t method = 0), (a, b))
  QKR_CPP_DRAW(uniform, float, _vxssRngUniform, method, a < b,
               (float a = 0, float b = 1, std::int32_t method = 0), (a, b))
  /** Normal; sd is the deviation, 0 or more, method QKR_GAUSSIAN_PAIRS or QKR_GAUSSIAN_SINE:
   * _vxsdRngGaussian(), _vxssRngGaussian(). */
  QKR_CPP_DRAW(normal, double, _vxsdRngGaussian, method, sd >= 0,
               (double mean = 0, double sd = 1, std::int32_t method = QKR_GAUSSIAN_PAIRS), (mean, sd))
  QKR_CPP_DRAW(normal, float, _vxssRngGaussian, method, sd >= 0,
               (float mean = 0, float sd = 1, std::int32_t method = QKR_GAUSSIAN_PAIRS), (mean, sd))
  /** Lognormal, from `place` on: _vxsdRngLognormal(), _vxssRngLognormal(). */
  QKR_CPP_DRAW(lognormal, double, _vxsdRngLognormal, 0, sd >= 0 && scale > 0,
               (double mean = 0, double sd = 1, double place = 0, double scale = 1), (mean, sd, place, scale))
  QKR_CPP_DRAW(lognormal, float, _vxssRngLognormal, 0, sd >= 0 && scale > 0,
               (float mean = 0, float sd = 1, float place = 0, float scale = 1), (mean, sd, place, scale))
  /** Exponential, from `place` on: _vxsdRngExponential(), _vxssRngExponential(). */
  QKR_CPP_DRAW(exponential, double, _vxsdRngExponential, 0, scale > 0, (double place = 0, double scale = 1),
               (place, scale))
  QKR_CPP_DRAW(exponential, float, _vxssRngExponential, 0, scale > 0, (float place = 0, float scale = 1),
               (place, scale))
  /** Laplace: _vxsdRngLaplace(), _vxssRngLaplace(). */
  QKR_CPP_DRAW(laplace, double, _vxsdRngLaplace, 0, scale > 0, (double mean = 0, double scale = 1),
               (mean, scale))
  QKR_CPP_DRAW(laplace, float, _vxssRngLaplace, 0, scale > 0, (float mean = 0, float scale = 1),
               (mean, scale))
  /** Weibull, from `place` on: _vxsdRngWeibull(), _vxssRngWeibull(). */
  QKR_CPP_DRAW(weibull, double, _vxsdRngWeibull, 0, shape > 0 && scale > 0,
               (double shape, double place = 0, double scale = 1), (shape, place, scale))
  QKR_CPP_DRAW(weibull, float, _vxssRngWeibull, 0, shape > 0 && scale > 0,
               (float shape, float place = 0, float scale = 1), (shape, place, scale))
  /** Cauchy: _vxsdRngCauchy(), _vxssRngCauchy(). */
  QKR_CPP_DRAW(cauchy, double, _vxsdRngCauchy, 0, scale > 0, (double place = 0, double scale = 1),
               (place, scale))
  QKR_CPP_DRAW(cauchy, float, _vxssRngCauchy, 0, scale > 0, (float place = 0, float scale = 1),
               (place, scale))
  /** Rayleigh, from `place` on: _vxsdRngRayleigh(), _vxssRngRayleigh(). */
  QKR_CPP_DRAW(rayleigh, double, _vxsdRngRayleigh, 0, scale > 0, (double place = 0, double scale = 1),
               (place, scale))
  QKR_CPP_DRAW(rayleigh, float, _vxssRngRayleigh, 0, scale > 0, (float place = 0, float scale = 1),
               (place, scale))
  /** Gumbel: _vxsdRngGumbel(), _vxssRngGumbel(). */
  QKR_CPP_DRAW(gumbel, double, _vxsdRngGumbel, 0, scale > 0, (double place = 0, double scale = 1),
               (place, scale))
  QKR_CPP_DRAW(gumbel, float, _vxssRngGumbel, 0, scale > 0, (float place = 0, float scale = 1),
               (place, scale))
  /** Gamma, from `place` on: _vxsdRngGamma(), _vxssRngGamma(). */
  QKR_CPP_DRAW(gamma, double, _vxsdRngGamma, 0, shape > 0 && scale > 0,
               (double shape, double place = 0, double scale = 1), (shape, place, scale))
  QKR_CPP_DRAW(gamma, float, _vxssRngGamma, 0, shape > 0 && scale > 0,
               (float shape, float place = 0, float scale = 1), (shape, place, scale))
  /** Beta of shapes p and q, over [place, place + scale]: _vxsdRngBeta(), _vxssRngBeta(). */
  QKR_CPP_DRAW(beta, double, _vxsdRngBeta, method, p > 0 && q > 0 && scale > 0,
               (double p, double q, double place = 0, double scale = 1, std::int32_t method = 0),
               (p, q, place, scale))
  QKR_CPP_DRAW(beta, float, _vxssRngBeta, method, p > 0 && q > 0 && scale > 0,
               (float p, float q, float place = 0, float scale = 1, std::int32_t method = 0),
               (p, q, place, scale))
  /** Uniform over [a, b) with all 53 bits, from two numbers each: qkr_uniform_53(). */
  status try_uniform_53(std::span<double> out, double a = 0, double b = 1) noexcept {
    return draw(out, a < b, [=](StreamState *stream, std::int32_t n, double *first) {
      return qkr_uniform_53(stream, n, first, a, b);
    });
  }
  void uniform_53(std::span<double> out, double a = 0, double b = 1) { check(try_uniform_53(out, a, b)); }
  /** Normal vectors mean + T z, one behind the other, of as many elements as `mean`: _vxsdRngGaussianMV(),
   * _vxssRngGaussianMV(). VXS_STATUS_BAD_ARGUMENT if `out` is no whole number of vectors, or `t` has
   * another size than its storage asks for. */
  template <class Out, class T = detail::element_of<Out>>
  requires real_number<T> status try_normal_vectors(Out &&out, std::type_identity_t<std::span<const T>> mean,
                                                    std::type_identity_t<std::span<const T>> t,
                                                    storage stored = storage::full,
                                                    std::int32_t method = QKR_GAUSSIAN_PAIRS)
  noexcept {
    const std::span<T> all(out);
    const std::size_t d = mean.size(), triangle = d % 2 ? (d + 1) / 2 * d : d / 2 * (d + 1);
    const std::size_t wanted = stored == storage::full ? d * d : stored == storage::packed ? triangle : d;
    const bool fits = d > 0 && detail::fits_int32(d) && t.size() == wanted && all.size() % d == 0;
    const auto dimension = static_cast<std::int32_t>(d);
    const auto kind = static_cast<std::int32_t>(stored);
    return draw(
        all.first(fits ? all.size() / d : 0), fits, [=](StreamState *stream, std::int32_t n, T *first) {
          T *const vectors = all.data() + static_cast<std::size_t>(first - all.data()) * d;
          if constexpr (sizeof(T) == sizeof(double)) {
            return _vxsdRngGaussianMV(method, stream, n, vectors, dimension, kind, mean.data(), t.data());
          } else {
            return _vxssRngGaussianMV(method, stream, n, vectors, dimension, kind, mean.data(), t.data());
          }
        });
  }
  template <class Out, class... Arguments>
  void normal_vectors(Out &&out, Arguments &&...arguments) {
    check(try_normal_vectors(out, std::forward<Arguments>(arguments)...));
  }
  /**@}*/

  /** @name Whole numbers */
  /**@{*/
  /** Uniform over a to b - 1: _vxsiRngUniform(). */
  QKR_CPP_DRAW(uniform, std::int32_t, _vxsiRngUniform, 0, a < b, (std::int32_t a, std::int32_t b), (a, b))
  /** 1 with probability p, else 0: _vxsiRngBernoulli(). */
  QKR_CPP_DRAW(bernoulli, std::int32_t, _vxsiRngBernoulli, 0, p >= 0 && p <= 1, (double p), (p))
  /** Failures before the first success: _vxsiRngGeometric(). */
  QKR_CPP_DRAW(geometric, std::int32_t, _vxsiRngGeometric, 0, p > 0 && p < 1, (double p), (p))
  /** Successes in n trials: _vxsiRngBinomial(). */
  QKR_CPP_DRAW(binomial, std::int32_t, _vxsiRngBinomial, 0, true, (std::int32_t trials, double p),
               (trials, p))
  /** Marked ones in a sample of a lot: _vxsiRngHypergeometric(). */
  QKR_CPP_DRAW(hypergeometric, std::int32_t, _vxsiRngHypergeometric, 0, true,
               (std::int32_t lot, std::int32_t sample, std::int32_t marked), (lot, sample, marked))
  /** Failures before success number a: _vxsiRngNegbinomial(). */
  QKR_CPP_DRAW(negative_binomial, std::int32_t, _vxsiRngNegbinomial, 0, true, (double a, double p), (a, p))
  /** Events of one mean, method QKR_POISSON_PTPE or QKR_POISSON_NORMAL: _vxsiRngPoisson(). */
  QKR_CPP_DRAW(poisson, std::int32_t, _vxsiRngPoisson, method, true,
               (double mean, std::int32_t method = QKR_POISSON_PTPE), (mean))
  /** Events of a mean for each number: _vxsiRngPoissonV(). */
  status try_poisson(std::span<std::int32_t> out, std::span<const double> means) noexcept {
    std::int32_t *const start = out.data();
    return draw(out, means.size() == out.size(),
                [=](StreamState *stream, std::int32_t n, std::int32_t *first) {
                  return _vxsiRngPoissonV(0, stream, n, first, means.data() + (first - start));
                });
  }
  void poisson(std::span<std::int32_t> out, std::span<const double> means) { check(try_poisson(out, means)); }
  /** The generator's own integers: one word each, but two from MCG59 and four from WH, of which there must
   * be a whole number: _vxsiRngUniformBits(). */
  status try_bits(std::span<std::uint32_t> out) noexcept {
    BrngRecord record{};
    StreamState *const stream = self().handle();
    if (stream) __vxsGetBrngProperties(static_cast<std::int32_t>(stream->brng), &record);
    const auto words = record.WordSize > 4 ? static_cast<std::size_t>(record.WordSize) / 4 : 1;
    std::uint32_t *const start = out.data();
    return draw(out.first(out.size() / words), out.size() % words == 0,
                [=](StreamState *from, std::int32_t n, std::uint32_t *first) {
                  return _vxsiRngUniformBits(0, from, n,
                                             start + static_cast<std::size_t>(first - start) * words);
                });
  }
  void bits(std::span<std::uint32_t> out) { check(try_bits(out)); }
  /**@}*/
#undef QKR_CPP_DRAW
#undef QKR_CPP_LISTED

 private:
  Stream &self() noexcept { return static_cast<Stream &>(*this); }

  // call(stream, n, first element) for all elements, in pieces.
  template <class T, class Call>
  status draw(std::span<T> out, bool in_range, Call call) noexcept {
    StreamState *const stream = self().handle();
    if (!stream) return {room::streams, VXS_STATUS_NULL_POINTER};
    if (!in_range) return {room::streams, VXS_STATUS_BAD_ARGUMENT};
    if (out.empty()) return {room::streams, VXS_STATUS_OK};
    return {room::streams, detail::in_pieces(out.size(), [&](std::int32_t n, std::size_t first) {
              return call(stream, n, out.data() + first);
            })};
  }
};

}  // namespace cpp
}  // namespace qkr

#endif
