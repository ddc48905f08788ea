// What Binomial, Hypergeometric, Negbinomial and Poisson keep on a stream, and what they make of parameters
// outside their ranges.
#include <cmath>
#include <limits>

#include "tests/distributions/recorded_stream.h"
#include "tests/support/distribution_cases.h"

namespace {

using namespace qkr::tests;
using Wholes = std::vector<int32_t>;

struct Kept {
  Case a_case;
  uint32_t chunk, size;
  size_t first, last;  // doubles of the set-up behind its key
};
const Kept kept[] = {{{"Binomial", {40, 0.3}}, 5, 680, 2, 67},
                     {{"Binomial", {1000, 0.3}}, 5, 680, 2, 84},
                     {{"Negbinomial", {40, 0.4}}, 4, 1304, 2, 162},
                     {{"Negbinomial", {400, 0.4}}, 4, 1304, 2, 162},
                     {{"Hypergeometric", {1000, 100, 300}}, 6, 648, 3, 80},
                     {{"Hypergeometric", {10000, 1000, 3000}}, 6, 648, 3, 80},
                     {{"Poisson", {5}}, 3, 672, 52, 83},
                     {{"Poisson", {500}}, 3, 672, 1, 50}};

double *setup_of(const Kept &row, const Stream &stream) {
  return static_cast<double *>(__vxsSearchChunk(stream.get(), row.chunk));
}

Wholes drawn(const Kept &row, const Stream &stream, int32_t n = 700) {
  Wholes x(size_t(n) + 1, -7);
  EXPECT_EQ(draw(row.a_case, stream.get(), n, x.data()), VXS_STATUS_OK);
  EXPECT_EQ(x.back(), -7);
  return x;
}

TEST(Setup, StaysOnTheStreamAndInItsFile) {
  const std::string file = testing::TempDir() + "setup.stream";
  for (const Kept &row : kept) {
    SCOPED_TRACE(row.a_case.family);
    const Stream stream = new_stream(0x800000, {3});
    drawn(row, stream);
    ASSERT_NE(setup_of(row, stream), nullptr);
    EXPECT_EQ(stream->chunks->size, row.size);
    save(stream, file);
    const Stream second = loaded(file);
    EXPECT_EQ(drawn(row, second), drawn(row, stream));
    // It is used: what is done to it shows.
    for (size_t i = row.first; i <= row.last; ++i) setup_of(row, second)[i] *= 0.875;
    EXPECT_NE(drawn(row, second), drawn(row, stream));
    // Other parameters set up anew.
    Kept other = row;
    other.a_case.parameters.back() *= 0.75;
    const Stream third = new_stream(0x800000, {4}), fresh = new_stream(0x800000, {4});
    drawn(row, third, 0);
    EXPECT_EQ(drawn(other, third), drawn(other, fresh));
  }
  remove(file.c_str());
}

// Numbers come to an end, and stay in their array, whatever a file says.
TEST(Setup, MayBeNonsense) {
  const double nonsense[] = {0, -1, 1, 0.5, 1e308, -1e308, 1e-308, std::nan(""), HUGE_VAL, 3e9};
  for (const Kept &row : kept) {
    for (const double x : nonsense) {
      const Stream stream = new_stream(0x800000, {3});
      drawn(row, stream, 1);
      double *const setup = setup_of(row, stream);
      for (size_t i = row.first; i <= row.last; ++i) setup[i] = x;
      drawn(row, stream, 300);
      for (size_t i = row.first; i <= row.last; ++i) {  // one number of it
        drawn(row, stream, 1);
        setup[i] = x;
        drawn(row, stream, 30);
      }
    }
    const Stream stream = new_stream(0x800000, {3}), sound = new_stream(0x800000, {3});
    ASSERT_EQ(__vxsAddChunk(stream.get(), row.chunk, malloc(8), 8), VXS_STATUS_OK);
    EXPECT_EQ(drawn(row, stream), drawn(row, sound));
  }
}

TEST(WholeNumbers, RefuseWhatIsNoParameter) {
  const double nan = std::nan("");
  const struct {
    const char *family;
    std::vector<std::vector<double>> parameters;
    int32_t method = 0;
  } refused[] = {{"Binomial", {{-1, 0.5}, {5, -0.1}, {5, 1.1}, {5, nan}}},
                 {"Hypergeometric", {{-1, 0, 0}, {5, 6, 1}, {5, 1, 6}, {5, -1, 1}, {5, 1, -1}}},
                 {"Negbinomial", {{-1, 0.5}, {nan, 0.5}, {HUGE_VAL, 0.5}}},
                 {"Negbinomial", {{3, 0}, {3, nan}, {3, 1.5}}},
                 {"Poisson", {{-1}, {nan}}},
                 {"Poisson", {{-1}, {nan}}, 1}};
  for (const auto &row : refused)
    for (const std::vector<double> &parameters : row.parameters) {
      const Case a_case = {row.family, parameters, row.method};
      const Stream stream = recorded_stream();
      int32_t number = 7;
      EXPECT_EQ(draw(a_case, stream.get(), 1, &number), VXS_STATUS_BAD_ARGUMENT) << name_of<int32_t>(a_case);
      EXPECT_TRUE(recording.next == 0 && number == 7);
    }
  int32_t x = 7;
  for (const int32_t method : {2, -1, 1 << 30})
    EXPECT_EQ(_vxsiRngPoisson(method, recorded_stream().get(), 1, &x, 5), VXS_STATUS_BAD_METHOD);
  EXPECT_EQ(x, 7);
}

TEST(WholeNumbers, AboveTheLargestAreTheLargest) {
  for (const Case &a_case : {Case{"Poisson", {1e300}},
                             {"Poisson", {3e9}, 1},
                             {"Poisson", {HUGE_VAL}},
                             {"PoissonV", {1e12}},
                             {"PoissonV", {HUGE_VAL}},
                             {"Negbinomial", {1e300, 0.5}},
                             {"Negbinomial", {1e10, 0.5}},
                             {"Negbinomial", {38.9, 2e-17}},
                             {"Negbinomial", {1e6, 1e-300}}}) {
    Wholes x(100);
    EXPECT_EQ(draw(a_case, new_stream(0x800000, {3}).get(), 100, x.data()), VXS_STATUS_OK);
    EXPECT_EQ(x, Wholes(100, INT32_MAX)) << name_of<int32_t>(a_case);
  }
}

TEST(PoissonV, TakesAMeanForEach) {
  const double means[] = {std::nan(""), -1, -HUGE_VAL, 0, 5e-324, 1e-3, 1, 1e4, 5, HUGE_VAL};
  int32_t x[10];
  for (uint32_t seed = 1; seed < 100; ++seed) {
    ASSERT_EQ(_vxsiRngPoissonV(0, new_stream(0x800000, {seed}).get(), 10, x, means), VXS_STATUS_OK);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(x[i], 0) << i;
    EXPECT_NEAR(x[7], 1e4, 600);
    EXPECT_TRUE(x[8] >= 0 && x[8] < 25);
    EXPECT_EQ(x[9], INT32_MAX);
  }
}

}  // namespace
