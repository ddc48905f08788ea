// Streams and distributions of qkr.hpp: the numbers of the C functions, what is refused, life, and use as a
// standard generator.
#include <functional>
#include <gtest/gtest.h>
#include <numeric>
#include <string>

#include "tests/cxx/numbers.h"
#include "tests/support/allocations.h"

namespace {

using qkr::stream;
constexpr auto bad = qkr::status(qkr::room::streams, VXS_STATUS_BAD_ARGUMENT);
constexpr int32_t n = 502;

// What `cxx` makes of a new stream, beside what `c` does with one.
template <class T>
struct Row {
  const char *name;
  std::function<void(stream &, std::vector<T> &)> cxx;
  std::function<int32_t(StreamState *, T *)> c;
};
template <class T>
void expect_same(const std::vector<Row<T>> &rows, qkr::generator of = qkr::mt19937) {
  for (const Row<T> &row : rows) {
    stream ours{of, 777}, other = ours.clone();
    std::vector<T> numbers(n), expected(n);
    row.cxx(ours, numbers);
    ASSERT_EQ(row.c(other.handle(), expected.data()), VXS_STATUS_OK) << row.name;
    EXPECT_TRUE(qkr::tests::same(numbers, expected)) << row.name;
    EXPECT_EQ(ours(), other()) << row.name;
  }
}
#define CALLS(T, name, f, method, numbers, ...)                                              \
  {                                                                                          \
#name, [](stream &s, std::vector<T> &out) { s.name(out __VA_OPT__(, ) __VA_ARGS__); },     \
   [](StreamState *s, T *out) { return f(method, s, numbers, out __VA_OPT__(, ) __VA_ARGS__); } \
  }
#define ROW(T, name, f, method, ...) CALLS(T, name, f, method, n __VA_OPT__(, ) __VA_ARGS__)
#define REAL_ROWS(T, l)                                                                                     \
  ROW(T, uniform, _vxs##l##RngUniform, VXS_METHOD_ACCURATE, -1, 3),                                         \
      ROW(T, normal, _vxs##l##RngGaussian, QKR_GAUSSIAN_PAIRS, 5, 2),                                       \
      ROW(T, lognormal, _vxs##l##RngLognormal, 0, 1, 2, 3, 4),                                              \
      ROW(T, exponential, _vxs##l##RngExponential, 0, 1, 2), ROW(T, laplace, _vxs##l##RngLaplace, 0, 1, 2), \
      ROW(T, weibull, _vxs##l##RngWeibull, 0, 3, 1, 2), ROW(T, cauchy, _vxs##l##RngCauchy, 0, 1, 2),        \
      ROW(T, rayleigh, _vxs##l##RngRayleigh, 0, 1, 2), ROW(T, gumbel, _vxs##l##RngGumbel, 0, 1, 2),         \
      ROW(T, gamma, _vxs##l##RngGamma, 0, 3, 1, 2), ROW(T, beta, _vxs##l##RngBeta, 0, 2, 3, 1, 2)
template <class T, class C>
Row<T> vectors_by(C c) {
  static const std::vector<T> mean = {1, 2}, factor = {1, T(0.8), T(0.6)};
  return {"vectors", [](stream &s, auto &out) { s.normal_vectors(out, mean, factor, qkr::storage::packed); },
          [c](StreamState *s, T *out) {
            return c(1, s, n / 2, out, 2, QKR_STORAGE_PACKED, mean.data(), factor.data());
          }};
}

TEST(CxxDistributions, NumbersOfTheCFunctions) {
  expect_same<double>({REAL_ROWS(double, d),
                       vectors_by<double>(_vxsdRngGaussianMV),
                       {"uniform_53", [](stream &s, auto &out) { s.uniform_53(out, -1, 2); },
                        [](StreamState *s, double *out) { return qkr_uniform_53(s, n, out, -1, 2); }}});
  expect_same<float>(
      {REAL_ROWS(float, s),
       vectors_by<float>(_vxssRngGaussianMV),
       {"standard normal", [](stream &s, auto &out) { s.normal(out); },
        [](StreamState *s, float *out) { return _vxssRngGaussian(QKR_GAUSSIAN_PAIRS, s, n, out, 0, 1); }}});
  std::vector<double> means(n);
  std::iota(means.begin(), means.end(), 0.5);
  expect_same<int32_t>(
      {ROW(int32_t, uniform, _vxsiRngUniform, 0, -2, 9),
       ROW(int32_t, bernoulli, _vxsiRngBernoulli, 0, 0.25),
       ROW(int32_t, geometric, _vxsiRngGeometric, 0, 0.25),
       ROW(int32_t, binomial, _vxsiRngBinomial, 0, 20, 0.25),
       ROW(int32_t, hypergeometric, _vxsiRngHypergeometric, 0, 50, 20, 10),
       ROW(int32_t, negative_binomial, _vxsiRngNegbinomial, 0, 2.5, 0.25),
       ROW(int32_t, poisson, _vxsiRngPoisson, 0, 4.5),
       {"poisson of means", [&](stream &s, auto &out) { s.poisson(out, means); },
        [&](StreamState *s, int32_t *out) { return _vxsiRngPoissonV(0, s, n, out, means.data()); }}});
  expect_same<uint32_t>({ROW(uint32_t, bits, _vxsiRngUniformBits, 0)});
  expect_same<uint32_t>({CALLS(uint32_t, bits, _vxsiRngUniformBits, 0, n / 2)},
                        qkr::mcg59);  // two words each
}

TEST(CxxDistributions, RefuseWhatIsOutOfRange) {
  stream s{qkr::mt19937, 1}, large{qkr::wh(3), 1};
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<double> mean = {1, 2}, factor = {1, 0.8, 0.6}, none;
  std::vector<double> x(4, 7), three(3, 7);
  std::vector<int32_t> k(4, 7);
  std::vector<uint32_t> words(5);
  const auto expect_refused = [](auto... answers) {
    int row = 0;
    for (const qkr::status answer : {answers...}) EXPECT_EQ(answer, bad) << row++;
  };
  expect_refused(
      s.try_normal(x, 0, -1), s.try_normal(x, 0, nan), s.try_uniform(x, 1, 1), s.try_uniform(x, 0, nan),
      s.try_exponential(x, 0, 0), s.try_laplace(x, 0, -2), s.try_weibull(x, 0), s.try_weibull(x, 1, 0, 0),
      s.try_cauchy(x, 0, -1), s.try_rayleigh(x, 0, 0), s.try_lognormal(x, 0, -1), s.try_gumbel(x, 0, 0),
      s.try_gamma(x, -1), s.try_beta(x, 1, 0), s.try_uniform_53(x, 2, 1), s.try_uniform(k, 3, 3),
      s.try_bernoulli(k, 1.5), s.try_geometric(k, 0), s.try_geometric(k, 1), s.try_binomial(k, -1, 0.5),
      s.try_poisson(k, -1.0), s.try_poisson(k, three), s.try_hypergeometric(k, 5, 6, 1),
      s.try_negative_binomial(k, -1, 0.5), s.try_normal_vectors(x, mean, factor, qkr::storage::full),
      s.try_normal_vectors(x, mean, factor, qkr::storage::diagonal),
      s.try_normal_vectors(three, mean, factor, qkr::storage::packed), s.try_normal_vectors(x, none, factor),
      large.try_bits(words));
  EXPECT_EQ(s.try_normal(x, 0, 1, 9).code(), VXS_STATUS_BAD_METHOD);
  EXPECT_THROW(s.normal(x, 0, -1), qkr::error);
  EXPECT_EQ(x, std::vector<double>(4, 7));
  EXPECT_EQ(k, std::vector<int32_t>(4, 7));
  EXPECT_EQ(s(), stream(qkr::mt19937, 1)());  // nothing was drawn
  EXPECT_TRUE(s.try_normal(std::span<double>()).ok());
}

std::vector<uint32_t> words_of(StreamState *state) {
  std::vector<uint32_t> words(16);  // of MCG59 two for a number
  EXPECT_EQ(_vxsiRngUniformBits(0, state, 8, words.data()), VXS_STATUS_OK);
  return words;
}

TEST(CxxStream, SeedsOfEveryKind) {
  const std::vector<uint32_t> six = {1, 2, 3, 4, 5, 6};
  std::vector<uint32_t> spread(250);
  __vxsSeedWords(777, 9, 250, spread.data());
  const struct {
    stream ours;
    uint32_t id;
    std::vector<uint32_t> seeds;
  } rows[] = {{{qkr::mt2203(7), 777}, QKR_MT2203(7), {777}},
              {{qkr::mt19937, 0x900000006}, QKR_MT19937, {6, 9}},
              {{qkr::mcg31m1, -1}, QKR_MCG31M1, {0xffffffff}},
              {{qkr::sobol, 3}, QKR_SOBOL, {3}},
              {{qkr::mrg32k3a, six}, QKR_MRG32K3A, six},
              {{qkr::philox(), six}, uint32_t(qkr_philox()), six},
              {{qkr::r250, qkr::spread_seed{777, 9}}, QKR_R250, spread},
              {{qkr::mcg59, qkr::spread_seed{777, 9}}, QKR_MCG59, {spread[0], spread[1]}}};
  for (const auto &[ours, id, seeds] : rows) {
    StreamState *state = nullptr;
    ASSERT_EQ(__vxsNewStreamEx(&state, id, int32_t(seeds.size()), seeds.data()), VXS_STATUS_OK);
    EXPECT_EQ(words_of(ours.handle()), words_of(state)) << ours.id();
    __vxsDeleteStream(&state);
  }
  // A seeding that is refused leaves what was there, and nothing behind.
  stream s{qkr::mt19937, 5};
  const long live = qkr::tests::allocations.live;
  for (const qkr::generator none : {qkr::mt2203(1024), qkr::wh(273), qkr::generator{0xffffffff, 1}})
    EXPECT_EQ(s.try_reset(none, 1).code(), VXS_STATUS_BAD_GENERATOR);
  EXPECT_EQ(s.try_reset(qkr::niederreiter, qkr::spread_seed{1, 2}), bad);
  EXPECT_EQ(s.try_reset(qkr::sobol, std::vector<uint32_t>{99, 1, 4}), bad);
  EXPECT_EQ(qkr::tests::allocations.live, live);
  EXPECT_EQ(words_of(s.handle()), words_of(stream(qkr::mt19937, 5).handle()));
}

// With the numbers that the standard generator has drawn ahead.
TEST(CxxStream, MovesClonesAndEmptiness) {
  stream first{qkr::mt19937, 1}, second = std::move(first);
  EXPECT_TRUE(!first && second);
  second();
  stream copy = second.clone();
  first = std::move(second);
  stream moved = std::move(first);
  for (int i = 0; i < 200; ++i) ASSERT_EQ(moved(), copy());
  EXPECT_TRUE(moved.try_reset(qkr::mt19937, 9).ok());
  EXPECT_EQ(moved(), stream(qkr::mt19937, 9)());
  std::vector<double> x(5);
  for (const qkr::status answer :
       {second.try_normal(x), second.try_skip(1), second.try_leapfrog(0, 2), second.try_clone(first),
        second.try_save("/dev/null"), second.try_take_state_of(moved)})
    EXPECT_EQ(answer.code(), VXS_STATUS_NULL_POINTER);
  EXPECT_THROW(second(), qkr::error);
  StreamState *released = moved.release();
  __vxsDeleteStream(&released);
  // The state of another member.
  stream from{qkr::mt2203(1), 5}, to{qkr::mt2203(2), 6};
  to.take_state_of(from);
  EXPECT_EQ(copy.try_take_state_of(from).code(), VXS_STATUS_OTHER_GENERATOR);
}

TEST(CxxStream, SkipsAndLeapfrogs) {
  std::vector<double> all(30), some(10);
  const auto expect_taken = [&](stream s, auto cut, size_t first, size_t step, auto... arguments) {
    stream whole = s.clone();
    whole.uniform(all);
    (s.*cut)(arguments...);
    s.uniform(some);
    for (size_t i = 0; i < 10; ++i) EXPECT_EQ(some[i], all[first + i * step]);
  };
  expect_taken({qkr::mcg59, 7}, &stream::skip, 20, 1, 20);
  expect_taken({qkr::mcg59, 7}, &stream::leapfrog, 2, 3, 2, 3);
  expect_taken({qkr::sobol, 3}, &stream::keep_dimension, 1, 3, 1);
  stream s{qkr::mt19937, 7};
  for (const auto &[k, of] : {std::pair<size_t, size_t>{3, 3}, {0, 0}, {0, size_t{1} << 31}, {0, 0x7fffffff}})
    EXPECT_EQ(s.try_leapfrog(k, of), bad);
  EXPECT_EQ(s.try_skip(5).code(), VXS_STATUS_NO_SKIP_AHEAD);
  EXPECT_EQ(s.try_keep_dimension(0).code(), VXS_STATUS_NO_LEAPFROG);
}

TEST(CxxStream, FilesAbstractStreamsAndGenerators) {
  const std::string path = testing::TempDir() + "/qkr_cxx_stream";
  stream s{qkr::mt19937, 7};
  s.save(path.c_str());
  stream loaded(path.c_str());
  EXPECT_EQ(words_of(loaded.handle()), words_of(s.handle()));
  std::remove(path.c_str());
  EXPECT_EQ(loaded.try_load("/no/such/file").code(), VXS_STATUS_FILE_OPEN);
  EXPECT_TRUE(loaded);  // still there

  static double buffer[4];
  static int left = 20;  // calls that bring numbers
  const auto update = [](StreamState *, int32_t *, double *out, int32_t *, int32_t *free, int32_t *position) {
    for (int32_t i = 0; i < *free; ++i) out[(*position + i) % 4] = 0.25 * i;
    return left-- > 0 ? *free : 0;
  };
  stream ours = stream::abstract_of(std::span(buffer), 0.0, 1.0, AbstractUpdateD(update));
  std::vector<double> x(4), more(1000);
  ours.uniform(x);
  EXPECT_EQ(x, (std::vector<double>{0, 0.25, 0.5, 0.75}));
  EXPECT_EQ(ours.try_uniform(more).code(), VXS_STATUS_NO_NUMBERS);  // of the piece that fails
  EXPECT_EQ(ours.try_reset_abstract(std::span<double>(), 0, 1, update), bad);
  const BrngRecord record = qkr::properties(qkr::mt2203(5));
  const qkr::generator mine = qkr::register_generator(record);
  EXPECT_EQ(mine.id, uint32_t(__vxsGetNumRegBrngs()) << 20);
  EXPECT_EQ(mine.seed_words, record.SeedWords);
  EXPECT_THROW(qkr::register_generator({}), qkr::error);
}

// The leading 32 bits of uniform numbers, or 16 of two.
TEST(CxxStream, IsAStandardGenerator) {
  static_assert(std::uniform_random_bit_generator<stream>);
  for (const qkr::generator &of : {qkr::mt19937, qkr::mcg59, qkr::mcg31m1, qkr::philox()}) {
    stream bits{of, 5}, plain = bits.clone();
    std::vector<double> u(2 * 300);
    plain.uniform(u);
    const bool by_two = of == qkr::mcg31m1;
    for (size_t i = 0; i < 300; ++i) {
      const auto expected = by_two ? uint32_t(u[2 * i] * 0x1p16) << 16 | uint32_t(u[2 * i + 1] * 0x1p16)
                                   : uint32_t(u[i] * 0x1p32);
      ASSERT_EQ(bits(), expected) << std::hex << of.id;
    }
  }
}

}  // namespace
