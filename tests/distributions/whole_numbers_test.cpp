// What Binomial, Hypergeometric, Negbinomial and Poisson keep on a stream, and what they make of parameters
// outside their ranges.
#include <cmath>
#include <cstring>
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

const StreamChunk *chunk_of(const Stream &stream, uint32_t id) {
  const StreamChunk *chunk = stream->chunks;
  while (chunk && chunk->id != id) chunk = chunk->next;
  return chunk;
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
    const Stream stream = new_stream(0x800000, {3});
    drawn(row, stream);
    const StreamChunk *chunk = chunk_of(stream, row.chunk);
    ASSERT_NE(chunk, nullptr);
    EXPECT_EQ(chunk->size, row.size);
    ASSERT_EQ(__vxsSaveStreamF(stream.get(), file.c_str(), -1), VXS_STATUS_OK);
    StreamState *loaded = nullptr;
    ASSERT_EQ(__vxsLoadStreamF(&loaded, file.c_str()), VXS_STATUS_OK);
    const Stream second(loaded);
    const Wholes expected = drawn(row, stream);
    EXPECT_EQ(drawn(row, second), expected) << row.a_case.family;
    // It is used: what is done to it shows.
    double *const setup = static_cast<double *>(chunk_of(second, row.chunk)->data);
    for (size_t i = row.first; i <= row.last; ++i) setup[i] *= 0.875;
    EXPECT_NE(drawn(row, second), drawn(row, stream)) << row.a_case.family;
    // Other parameters set up anew.
    Kept other = row;
    other.a_case.parameters.back() *= 0.75;
    const Stream third = new_stream(0x800000, {4}), fresh = new_stream(0x800000, {4});
    EXPECT_EQ(drawn(other, third, 1), drawn(other, fresh, 1));
    drawn(row, third, 0);  // set up for others in between
    EXPECT_EQ(drawn(other, third), drawn(other, fresh)) << row.a_case.family;
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
      double *const setup = static_cast<double *>(chunk_of(stream, row.chunk)->data);
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
  const Case refused[] = {{"Binomial", {-1, 0.5}},
                          {"Binomial", {5, -0.1}},
                          {"Binomial", {5, 1.1}},
                          {"Binomial", {5, nan}},
                          {"Hypergeometric", {-1, 0, 0}},
                          {"Hypergeometric", {5, 6, 1}},
                          {"Hypergeometric", {5, 1, 6}},
                          {"Hypergeometric", {5, -1, 1}},
                          {"Hypergeometric", {5, 1, -1}},
                          {"Negbinomial", {-1, 0.5}},
                          {"Negbinomial", {nan, 0.5}},
                          {"Negbinomial", {3, 0}},
                          {"Negbinomial", {3, nan}},
                          {"Negbinomial", {3, 1.5}},
                          {"Negbinomial", {HUGE_VAL, 0.5}},
                          {"Poisson", {-1}},
                          {"Poisson", {nan}},
                          {"Poisson", {-1}, 1},
                          {"Poisson", {nan}, 1}};
  for (const Case &a_case : refused) {
    const Stream stream = recorded_stream();
    int32_t x = 7;
    EXPECT_EQ(draw(a_case, stream.get(), 1, &x), VXS_STATUS_BAD_ARGUMENT) << name_of<int32_t>(a_case);
    EXPECT_EQ(recording.next, 0u);
    EXPECT_EQ(x, 7);
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
                             {"Negbinomial", {1e10, 0.5}}}) {
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
