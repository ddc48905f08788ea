// Plans of any length: factors, routes by the size of their work buffer, the order of checks, lengths that
// are too large, failing allocations.
#include <gtest/gtest.h>

#include "any_length_engines.h"
#include "sigfft/any_length/plan/factors.h"
#include "tests/support/allocations.h"

namespace qkr::tests {
namespace {

template <class T>
class AnyLengthPlans : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(AnyLengthPlans, Precisions);

// The factors in the order of the stages, before and after the even one has moved; none for other routes.
TEST(Factors, AreThoseOfTheStages) {
  const struct {
    int32_t length;
    std::vector<int32_t> found, moved;
  } rows[] = {
      {5, {}, {}},
      {6, {2, 3}, {3, 2}},
      {9, {3, 3}, {3, 3}},
      {12, {4, 3}, {3, 4}},
      {24, {2, 4, 3}, {2, 3, 4}},
      {40, {2, 4, 5}, {2, 5, 4}},
      {96, {2, 4, 4, 3}, {2, 3, 4, 4}},
      {48, {4, 4, 3}, {3, 4, 4}},
      {98, {2, 7, 7}, {7, 7, 2}},
      {121, {11, 11}, {11, 11}},
      {149, {}, {}},
      {151, {}, {}},
      {300, {4, 3, 5, 5}, {5, 3, 5, 4}},
      {302, {}, {}},
      {5005, {5, 7, 11, 13}, {5, 7, 11, 13}},
      {22201, {149, 149}, {149, 149}},
      {22801, {}, {}},
  };
  for (const auto &row : rows) {
    sigfft::Factors factors;
    ASSERT_EQ(sigfft::find_factors(row.length, &factors), !row.found.empty()) << row.length;
    if (row.found.empty()) continue;
    const auto list = [&] { return std::vector<int32_t>(factors.of, factors.of + factors.stages + 1); };
    EXPECT_EQ(list(), row.found) << row.length;
    move_even_factor(&factors);
    EXPECT_EQ(list(), row.moved) << row.length;
  }
}

// In units that are 16 bytes in double and 8 in single precision, and so many bytes more.
struct SizeRow {
  AnyKind kind;
  int32_t length;
  double units;
  int32_t bytes;
};
constexpr SizeRow size_rows[] = {
    {any_interleaved, 1, 0, 0},
    {any_interleaved, 3, 0, 0},
    {any_interleaved, 4, 0, 0},
    {any_interleaved, 8, 0, 0},
    {any_interleaved, 16, 16, 16},
    {any_interleaved, 5, 5, 16},
    {any_interleaved, 149, 149, 16},
    {any_split, 149, 149, 16},
    {any_interleaved, 6, 6, 16},
    {any_interleaved, 14, 14 + 14, 16},
    {any_interleaved, 21, 21 + 7, 16},
    {any_interleaved, 22500, 22500, 16},
    {any_interleaved, 151, 512 + 512, 32},
    {any_interleaved, 257, 1024 + 1024, 32},
    {any_split, 302, 1024 + 1024, 32},
    {any_real, 15, 15, 16},
    {any_real, 30, 15, 16},
    {any_real, 10, 5, 16},
    {any_real, 179, 89.5, 16},
    {any_real, 181, 512 + 512, 32},
    {any_real, 302, 512 + 512, 32},
    {any_real, 35, 35 + 7, 16},
    {any_out_of_order, 5000, 5000, 16},
    {any_out_of_order, 5005, 13, 16},
    {any_out_of_order, 6000, 0, 0},
    {any_out_of_order, 5004, 139, 16},
    {any_out_of_order, 5003, 16384 + 16384, 32},
};

TYPED_TEST(AnyLengthPlans, TakeTheRouteOfTheirLength) {
  constexpr int unit = 2 * sizeof(TypeParam);
  for (const SizeRow &row : size_rows) {
    const AnyPlan<TypeParam> plan(row.kind, row.length);
    EXPECT_EQ(plan.work_bytes(), (int32_t)(row.units * unit) + row.bytes)
        << any_kind_names[row.kind] << ' ' << row.length;
  }
}

TYPED_TEST(AnyLengthPlans, CheckInOrder) {
  using T = TypeParam;
  for (int kind = 0; kind < any_kinds; ++kind) {
    SCOPED_TRACE(any_kind_names[kind]);
    const auto &f = any_length<T>;
    const auto &p = f.plan[kind];
    const auto untouched = (void *)&p;
    void *plan = untouched;
    EXPECT_EQ(p.init_alloc(nullptr, 0, 3, 0), zprStsNullPtrErr);
    for (const int32_t length : {0, -1, INT32_MIN})
      EXPECT_EQ(p.init_alloc(&plan, length, 3, 0), zprStsSizeErr);
    for (const int32_t flag : {0, 3, 16, -1})
      for (const int32_t length : {1, 16, 15, 1009, INT32_MAX})
        EXPECT_EQ(p.init_alloc(&plan, length, flag, 0), zprStsFftFlagErr) << length;
    // A prime, a product of 2, 3 and 5, and a power of two times a prime.
    for (const int32_t length : {INT32_MAX, 2000000000, 1 << 30 | 1 << 29, 2 * 536870909})
      EXPECT_EQ(p.init_alloc(&plan, length, 8, 0), zprStsSizeErr) << length;
    EXPECT_EQ(plan, untouched);

    const AnyPlan<T> good((AnyKind)kind, 15), other((AnyKind)((kind + 1) % any_kinds), 15);
    int32_t size = -1;
    EXPECT_EQ(p.get_buffer_size(nullptr, &size), zprStsNullPtrErr);
    EXPECT_EQ(p.get_buffer_size(other, nullptr), zprStsNullPtrErr);
    EXPECT_EQ(p.get_buffer_size(other, &size), zprStsContextMatchErr);
    EXPECT_EQ(size, -1);
    EXPECT_EQ(p.release(nullptr), zprStsNullPtrErr);
    EXPECT_EQ(p.release((void *)(const void *)other), zprStsContextMatchErr);

    T x[34] = {}, y[34] = {};
    const auto call = [&](const void *with, const T *src, T *dst) {
      return kind == any_split          ? f.split[1](src, src, dst, dst + 17, with, nullptr)
             : kind == any_real         ? f.real[1][perm](src, dst, with, nullptr)
             : kind == any_out_of_order ? f.out_of_order[1](src, dst, with, nullptr)
                                        : f.complex[1](src, dst, with, nullptr);
    };
    EXPECT_EQ(call(nullptr, nullptr, y), zprStsNullPtrErr);
    EXPECT_EQ(call(other, nullptr, y), zprStsContextMatchErr);
    EXPECT_EQ(call(good, nullptr, y), zprStsNullPtrErr);
    if (kind != any_split) {
      EXPECT_EQ(call(good, x, nullptr), zprStsNullPtrErr);
    }
    EXPECT_EQ(call(good, x, y), zprStsNoErr);
  }
}

TYPED_TEST(AnyLengthPlans, ReportFailingAllocations) {
  using T = TypeParam;
  for (int kind = 0; kind < any_kinds; ++kind)
    for (const int32_t length : {3, 7, 64, 105, 157, 302, 330, 1009, 5005, 6000}) {
      SCOPED_TRACE(testing::Message() << any_kind_names[kind] << ' ' << length);
      const auto &p = any_length<T>.plan[kind];
      const long in_use = allocations.live;
      void *plan = nullptr;
      const int made = fail_each_allocation([&] { return p.init_alloc(&plan, length, 8, 0); },
                                            [&](zprStatus status, bool failed) {
                                              EXPECT_EQ(status, failed ? zprStsMemAllocErr : zprStsNoErr);
                                              EXPECT_EQ(plan == nullptr, failed);
                                              EXPECT_EQ(allocations.live == in_use, failed);
                                            });
      EXPECT_GE(made, length == 3 ? 1 : 3);
      int32_t work = -1;
      p.get_buffer_size(plan, &work);
      const std::vector<T> before(2 * length + 2, T(1));
      std::vector<T> data = before;
      const auto &f = any_length<T>;
      T *const x = data.data();
      allocations.until_failure = 1;
      const zprStatus status = kind == any_split  ? f.split[0](x, x + length, x, x + length, plan, nullptr)
                               : kind == any_real ? f.real[0][ccs](x, x, plan, nullptr)
                               : kind == any_out_of_order ? f.out_of_order[0](x, x, plan, nullptr)
                                                          : f.complex[0](x, x, plan, nullptr);
      allocations.until_failure = 0;
      EXPECT_EQ(status, work ? zprStsMemAllocErr : zprStsNoErr);
      EXPECT_EQ(data == before, work != 0);
      EXPECT_EQ(p.release(plan), zprStsNoErr);
      EXPECT_EQ(allocations.live, in_use);
    }
}

}  // namespace
}  // namespace qkr::tests
