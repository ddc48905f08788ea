// Streams and distributions of qkr.hpp: the numbers of the C functions, what is refused, life, and use as a
// standard generator.
#include <algorithm>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <numeric>
#include <qkr/qkr.hpp>
#include <random>
#include <string>
#include <vector>

#include "tests/support/allocations.h"

namespace {

using qkr::stream;
constexpr auto bad = qkr::status(qkr::room::streams, VXS_STATUS_BAD_ARGUMENT);
constexpr int32_t n = 501;

// What `cxx` makes of a new stream, beside what `c` does with one.
template <class T>
struct Row {
  const char *name;
  std::function<qkr::status(stream &, std::vector<T> &)> cxx;
  std::function<int32_t(StreamState *, T *)> c;
};
template <class T>
void expect_same(const std::vector<Row<T>> &rows) {
  for (const Row<T> &row : rows) {
    stream ours{qkr::mt19937, 777}, other = ours.clone();
    std::vector<T> numbers(n), expected(n);
    ASSERT_TRUE(row.cxx(ours, numbers).ok()) << row.name;
    ASSERT_EQ(row.c(other.handle(), expected.data()), VXS_STATUS_OK) << row.name;
    EXPECT_EQ(std::memcmp(numbers.data(), expected.data(), n * sizeof(T)), 0) << row.name;
    EXPECT_EQ(ours(), other()) << row.name;
  }
}
#define ROW(T, name, f, method, ...)                                                                  \
  {                                                                                                   \
#name, [](stream &s, std::vector<T> &out) { return s.try_##name(out __VA_OPT__(, ) __VA_ARGS__); }, \
   [](StreamState *s, T *out) { return f(method, s, n, out __VA_OPT__(, ) __VA_ARGS__); } \
  }
#define REAL_ROWS(T, l)                                                                                     \
  ROW(T, uniform, _vxs##l##RngUniform, VXS_METHOD_ACCURATE, -1, 3),                                         \
      ROW(T, normal, _vxs##l##RngGaussian, 1, 5, 2),                                                        \
      ROW(T, lognormal, _vxs##l##RngLognormal, 0, 1, 2, 3, 4),                                              \
      ROW(T, exponential, _vxs##l##RngExponential, 0, 1, 2), ROW(T, laplace, _vxs##l##RngLaplace, 0, 1, 2), \
      ROW(T, weibull, _vxs##l##RngWeibull, 0, 3, 1, 2), ROW(T, cauchy, _vxs##l##RngCauchy, 0, 1, 2),        \
      ROW(T, rayleigh, _vxs##l##RngRayleigh, 0, 1, 2), ROW(T, gumbel, _vxs##l##RngGumbel, 0, 1, 2),         \
      ROW(T, gamma, _vxs##l##RngGamma, 0, 3, 1, 2), ROW(T, beta, _vxs##l##RngBeta, 0, 2, 3, 1, 2)

TEST(CxxDistributions, NumbersOfTheCFunctions) {
  expect_same<double>({REAL_ROWS(double, d),
                       {"uniform_53", [](stream &s, auto &out) { return s.try_uniform_53(out, -1, 2); },
                        [](StreamState *s, double *out) { return qkr_uniform_53(s, n, out, -1, 2); }}});
  expect_same<float>({REAL_ROWS(float, s)});
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
       {"poisson of means", [&](stream &s, auto &out) { return s.try_poisson(out, means); },
        [&](StreamState *s, int32_t *out) { return _vxsiRngPoissonV(0, s, n, out, means.data()); }}});
  expect_same<uint32_t>({ROW(uint32_t, bits, _vxsiRngUniformBits, 0)});
}

TEST(CxxDistributions, DefaultsAndThrowingForms) {
  stream ours{qkr::mt19937, 777}, other = ours.clone();
  std::vector<float> numbers(n), expected(n);
  ours.normal(numbers);
  _vxssRngGaussian(QKR_GAUSSIAN_PAIRS, other.handle(), n, expected.data(), 0, 1);
  EXPECT_EQ(numbers, expected);
  EXPECT_THROW(ours.normal(numbers, 0, -1), qkr::error);
  ours.uniform(numbers);
  EXPECT_LT(*std::max_element(numbers.begin(), numbers.end()), 1.0f);
  std::vector<uint32_t> words(4 * n + 1), expected_words(4 * n + 1);
  stream large{qkr::wh(3), 5}, other_large = large.clone();
  EXPECT_EQ(large.try_bits(words), bad);  // four words each
  large.bits(std::span(words).first(4 * n));
  _vxsiRngUniformBits(0, other_large.handle(), n, expected_words.data());
  EXPECT_EQ(words, expected_words);
}

TEST(CxxDistributions, VectorsNeedTheirSizes) {
  stream ours{qkr::mt19937, 777}, other = ours.clone();
  const std::vector<double> mean = {1, 2}, packed = {1, 0.8, 0.6};
  std::vector<double> vectors(200), expected(200);
  ours.normal_vectors(vectors, mean, packed, qkr::storage::packed);
  _vxsdRngGaussianMV(1, other.handle(), 100, expected.data(), 2, 1, mean.data(), packed.data());
  EXPECT_EQ(vectors, expected);
  EXPECT_EQ(ours.try_normal_vectors(vectors, mean, packed, qkr::storage::full), bad);
  EXPECT_EQ(ours.try_normal_vectors(vectors, mean, packed, qkr::storage::diagonal), bad);
  EXPECT_EQ(ours.try_normal_vectors(std::span(vectors).first(3), mean, packed, qkr::storage::packed), bad);
  EXPECT_EQ(ours.try_normal_vectors(vectors, std::span<const double>(), packed), bad);
}

TEST(CxxDistributions, RefuseParametersOutOfRange) {
  stream s{qkr::mt19937, 1};
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<double> x(4, 7);
  std::vector<int32_t> k(4, 7);
  const auto expect_refused = [](auto... answers) {
    int row = 0;
    for (const qkr::status answer : {answers...}) EXPECT_EQ(answer, bad) << row++;
  };
  expect_refused(s.try_normal(x, 0, -1), s.try_normal(x, 0, nan), s.try_uniform(x, 1, 1),
                 s.try_uniform(x, 0, nan), s.try_exponential(x, 0, 0), s.try_laplace(x, 0, -2),
                 s.try_weibull(x, 0), s.try_cauchy(x, 0, -1), s.try_rayleigh(x, 0, 0),
                 s.try_lognormal(x, 0, -1), s.try_gumbel(x, 0, 0), s.try_gamma(x, -1), s.try_beta(x, 1, 0),
                 s.try_uniform_53(x, 2, 1));
  expect_refused(s.try_uniform(k, 3, 3), s.try_bernoulli(k, 1.5), s.try_geometric(k, 0),
                 s.try_binomial(k, -1, 0.5), s.try_poisson(k, -1.0), s.try_poisson(k, std::span(x).first(3)),
                 s.try_hypergeometric(k, 5, 6, 1), s.try_negative_binomial(k, -1, 0.5));
  EXPECT_EQ(s.try_normal(x, 0, 1, 9).code(), VXS_STATUS_BAD_METHOD);
  EXPECT_EQ(x, std::vector<double>(4, 7));
  EXPECT_EQ(k, std::vector<int32_t>(4, 7));
  stream untouched{qkr::mt19937, 1};
  EXPECT_EQ(s(), untouched());  // nothing was drawn
  EXPECT_TRUE(s.try_normal(std::span<double>()).ok());
}

std::vector<uint32_t> words_of(StreamState *state) {
  std::vector<uint32_t> words(32);  // of WH four for a number
  EXPECT_EQ(_vxsiRngUniformBits(0, state, 8, words.data()), VXS_STATUS_OK);
  return words;
}
std::vector<uint32_t> words_of(uint32_t id, std::vector<uint32_t> seeds) {
  StreamState *state = nullptr;
  EXPECT_EQ(__vxsNewStreamEx(&state, id, static_cast<int32_t>(seeds.size()), seeds.data()), VXS_STATUS_OK);
  const std::vector<uint32_t> words = words_of(state);
  __vxsDeleteStream(&state);
  return words;
}

TEST(CxxStream, SeedsOfEveryKind) {
  const int negative = -1;
  EXPECT_EQ(words_of(stream(qkr::mt2203(7), 777).handle()), words_of(QKR_MT2203(7), {777}));
  EXPECT_EQ(words_of(stream(qkr::mt19937, 0x500000006).handle()), words_of(QKR_MT19937, {6, 5}));
  EXPECT_EQ(words_of(stream(qkr::mcg31m1, negative).handle()), words_of(QKR_MCG31M1, {0xffffffff}));
  EXPECT_EQ(words_of(stream(qkr::sobol, 3).handle()), words_of(QKR_SOBOL, {3}));
  const std::vector<uint32_t> seeds = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(words_of(stream(qkr::mrg32k3a, seeds).handle()), words_of(QKR_MRG32K3A, seeds));
  EXPECT_EQ(words_of(stream(qkr::philox(), seeds).handle()), words_of(uint32_t(qkr_philox()), seeds));
  std::vector<uint32_t> spread(250);
  for (const auto &of : {qkr::wh(3), qkr::r250, qkr::mcg59, qkr::philox()}) {
    __vxsSeedWords(777, 9, of.seed_words, spread.data());
    EXPECT_EQ(words_of(stream(of, qkr::spread_seed{777, 9}).handle()),
              words_of(of.id, {spread.begin(), spread.begin() + of.seed_words}));
  }
  stream s;
  for (const qkr::generator none : {qkr::mt2203(1024), qkr::wh(273), qkr::generator{0xffffffff, 1}})
    EXPECT_EQ(s.try_reset(none, 1).code(), VXS_STATUS_BAD_GENERATOR);
  EXPECT_EQ(s.try_reset(qkr::niederreiter, qkr::spread_seed{1, 2}), bad);
  EXPECT_THROW(stream(qkr::generator{0x2000000, 1}, 1), qkr::error);
  // A seeding that is refused leaves what was there, and nothing behind.
  s = stream(qkr::mt19937, 5);
  const long live = qkr::tests::allocations.live;
  EXPECT_EQ(s.try_reset(qkr::sobol, std::vector<uint32_t>{99, 1, 4}), bad);
  EXPECT_EQ(qkr::tests::allocations.live, live);
  EXPECT_EQ(words_of(s.handle()), words_of(QKR_MT19937, {5}));
}

// With the numbers that the standard generator has drawn ahead.
TEST(CxxStream, MovesClonesAndEmptiness) {
  stream first{qkr::mt19937, 1}, second = std::move(first);
  EXPECT_TRUE(!first && second);
  EXPECT_EQ(second.id(), uint32_t{QKR_MT19937});
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
  EXPECT_EQ(second.id(), 0u);
  StreamState *released = moved.release();
  EXPECT_FALSE(moved);
  __vxsDeleteStream(&released);
  static_assert(!std::is_copy_constructible_v<stream> && std::is_nothrow_move_constructible_v<stream>);
  // The state of another member.
  stream from{qkr::mt2203(1), 5}, to{qkr::mt2203(2), 6};
  to.take_state_of(from);
  EXPECT_EQ(copy.try_take_state_of(from).code(), VXS_STATUS_OTHER_GENERATOR);
}

TEST(CxxStream, SkipsAndLeapfrogs) {
  std::vector<double> all(30), some(10);
  stream s{qkr::mcg59, 7}, t = s.clone();
  s.uniform(all);
  stream jumped = t.clone();
  jumped.skip(20);
  jumped.uniform(some);
  EXPECT_TRUE(std::equal(some.begin(), some.end(), all.begin() + 20));
  t.leapfrog(2, 3);
  t.uniform(some);
  for (size_t i = 0; i < 10; ++i) EXPECT_EQ(some[i], all[3 * i + 2]);
  const struct { size_t k, of; } refused[] = {{3, 3}, {0, 0}, {0, size_t{1} << 31}, {0, 0x7fffffff}};
  for (const auto &[k, of] : refused) EXPECT_EQ(t.try_leapfrog(k, of), bad);
  EXPECT_THROW(t.leapfrog(3, 3), qkr::error);
  stream twister{qkr::mt19937, 7};
  EXPECT_EQ(twister.try_skip(5).code(), VXS_STATUS_NO_SKIP_AHEAD);
  EXPECT_EQ(twister.try_leapfrog(0, 2).code(), VXS_STATUS_NO_LEAPFROG);
  EXPECT_EQ(twister.try_keep_dimension(0).code(), VXS_STATUS_NO_LEAPFROG);
  stream points{qkr::sobol, 3}, one = points.clone();
  one.keep_dimension(1);
  points.uniform(all);
  one.uniform(some);
  for (size_t i = 0; i < 10; ++i) EXPECT_EQ(some[i], all[3 * i + 1]);
}

TEST(CxxStream, FilesAndAbstractStreams) {
  const std::string path = testing::TempDir() + "/qkr_cxx_stream";
  stream s{qkr::mt19937, 7};
  s.save(path.c_str());
  stream loaded(path.c_str());
  EXPECT_EQ(words_of(loaded.handle()), words_of(s.handle()));
  std::remove(path.c_str());
  EXPECT_EQ(loaded.try_load("/no/such/file").code(), VXS_STATUS_FILE_OPEN);
  EXPECT_TRUE(loaded);  // still there
  EXPECT_THROW(stream("/no/such/file"), qkr::error);

  static double buffer[4];
  static int left = 20;  // calls that bring numbers
  const auto update = [](StreamState *, int32_t *, double *out, int32_t *, int32_t *free, int32_t *position) {
    for (int32_t i = 0; i < *free; ++i) out[(*position + i) % 4] = 0.25 * i;
    return left-- > 0 ? *free : 0;
  };
  stream ours = stream::abstract_of(std::span(buffer), 0.0, 1.0, AbstractUpdateD(update));
  std::vector<double> x(4);
  ours.uniform(x);
  EXPECT_EQ(x, (std::vector<double>{0, 0.25, 0.5, 0.75}));
  x.resize(1000);
  EXPECT_EQ(ours.try_uniform(x).code(), VXS_STATUS_NO_NUMBERS);  // of the piece that fails
  EXPECT_EQ(ours.try_reset_abstract(std::span<double>(), 0, 1, update), bad);
  const BrngRecord record = qkr::properties(qkr::mt2203(5));
  EXPECT_EQ(record.StateSize, 312);
  const qkr::generator mine = qkr::register_generator(record);
  EXPECT_EQ(mine.id, uint32_t(__vxsGetNumRegBrngs()) << 20);
  EXPECT_THROW(qkr::register_generator({}), qkr::error);
}

// The leading 32 bits of uniform numbers, or 16 of two; and laws of the standard library over them.
TEST(CxxStream, IsAStandardGenerator) {
  static_assert(std::uniform_random_bit_generator<stream>);
  for (const qkr::generator &of : {qkr::mt19937, qkr::mcg59, qkr::wh(9), qkr::mcg31m1, qkr::philox()}) {
    stream bits{of, 5}, plain = bits.clone();
    std::vector<double> u(2 * 300);
    plain.uniform(u);
    const bool by_two = qkr::properties(of).Bits < 32;
    for (size_t i = 0; i < 300; ++i) {
      const auto expected = by_two ? uint32_t(u[2 * i] * 0x1p16) << 16 | uint32_t(u[2 * i + 1] * 0x1p16)
                                   : uint32_t(u[i] * 0x1p32);
      ASSERT_EQ(bits(), expected) << std::hex << of.id;
    }
  }
  stream s{qkr::mt2203(3), 777};
  std::vector<int> order(100);
  std::iota(order.begin(), order.end(), 0);
  std::shuffle(order.begin(), order.end(), s);
  EXPECT_FALSE(std::is_sorted(order.begin(), order.end()));
}

}  // namespace
