// Plans of powers of two and of any length: sizes, memory of their own and of the caller, the order of
// checks, failing allocations.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

#include "engines.h"
#include "tests/support/allocations.h"

namespace qkr::tests {
namespace {

template <class T>
class Plans : public testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(Plans, Precisions);

struct SizeRow {
  Set set;
  Kind kind;
  int order, spec, init, work;
};
template <class T>
const SizeRow size_rows[] = {
    {w6, interleaved, 4, 464, 64, 272},       {w6, real, 4, 448, 64, 144},
    {w6, real, 17, 2228416, 262176, 65552},   {w6, interleaved, 24, 286326976, 33554464, 262160},
    {plain, interleaved, 4, 464, 64, 0},      {plain, real, 4, 448, 64, 0},
    {plain, real, 17, 2173136, 270512, 8208}, {plain, interleaved, 24, 285751520, 33596096, 32784},
};
template <>
const SizeRow size_rows<float>[] = {
    {w6, interleaved, 4, 320, 48, 144},       {w6, real, 4, 304, 48, 80},
    {w6, real, 17, 1114288, 131104, 524304},  {w6, interleaved, 24, 151519408, 16777248, 524304},
    {plain, interleaved, 4, 320, 48, 0},      {plain, real, 4, 304, 48, 0},
    {plain, real, 17, 1118400, 139568, 8208}, {plain, interleaved, 24, 151525584, 16794176, 8208},
};

TYPED_TEST(Plans, HaveTheirSizes) {
  using T = TypeParam;
  for (const SizeRow &row : size_rows<T>) {
    const auto &f = functions<T>[row.set];
    SCOPED_TRACE(testing::Message() << f.name << ' ' << kind_names[row.kind] << ", order " << row.order);
    int32_t spec = -1, init = -1, work = -1;
    ASSERT_EQ(f.plan[row.kind].get_size(row.order, 8, 0, &spec, &init, &work), zprStsNoErr);
    EXPECT_EQ(spec, row.spec);
    EXPECT_EQ(init, row.init);
    EXPECT_EQ(work, row.work);
    if (row.order <= 20) {
      EXPECT_EQ(Plan<T>(f, row.kind, size_t{1} << row.order).work_bytes(), row.work);
    }
  }
}

// The plain set, up to 2048 complex numbers, 4096 in single precision, and twice as many real ones.
TYPED_TEST(Plans, OfThePlainSetNeedLittleWorkMemory) {
  for (const Kind kind : {interleaved, split, real}) {
    const int largest = (sizeof(TypeParam) == 8 ? 11 : 12) + (kind == real);
    for (int order = 0; order <= largest + 1; ++order) {
      const Plan<TypeParam> plan(
          functions<TypeParam>[plain], kind, size_t { 1 } << order);
      EXPECT_EQ(plan.work_bytes() == 0, order <= largest) << kind_names[kind] << ", order " << order;
    }
  }
}

// The builders write no more than GetSize tells, wherever the memory starts, and the plan does what one of
// InitAlloc does.
TYPED_TEST(Plans, FitIntoTheCallersMemory) {
  using T = TypeParam;
  for (const auto &f : sets_for_powers_of_two<T>())
    for (const Kind kind : {interleaved, split, real})
      for (const int order : {0, 3, 4, 5, 9, 10, 11, 13, 15, 17, 19})
        for (const size_t offset : {15, 0, 1}) {
          if (offset != 15 && order > 13) continue;
          SCOPED_TRACE(testing::Message() << f.name << ' ' << kind_names[kind] << ", order " << order);
          constexpr uint8_t mark = 0xA5;
          const auto &functions = f.plan[kind];
          int32_t spec = 0, init = 0, work = 0;
          functions.get_size(order, 1, 0, &spec, &init, &work);
          std::vector<uint8_t> memory(offset + spec + 16, mark), scratch(offset + init + 16, mark);
          uint8_t *const start = memory.data() + offset, *const scratch_start = scratch.data() + offset;
          void *plan = nullptr;
          ASSERT_EQ(functions.init(&plan, order, 1, 0, start, init ? scratch_start : nullptr), zprStsNoErr);
          EXPECT_TRUE(plan >= start && plan < start + spec);
          for (int i = 0; i < 16; ++i)
            ASSERT_TRUE(start[spec + i] == mark && scratch_start[init + i] == mark);
          std::fill(scratch.begin(), scratch.end(), mark);  // is not needed any more

          const size_t n = size_t{1} << order;
          const Plan<T> own(f, kind, n, 1);
          auto a = signal<T>(2 * n), b = a;
          EXPECT_EQ(own.work_bytes(), work);
          std::vector<uint8_t> buffer(offset + work + 16, mark);
          for (const bool forward : {true, false}) {
            const Parts<T> x = {a.data(), a.data() + n}, y = {b.data(), b.data() + n};
            run(f, {kind}, forward, x, x, plan, work ? buffer.data() + offset : nullptr);
            run(f, {kind}, forward, y, y, own);
          }
          EXPECT_TRUE(a == b);
          EXPECT_EQ(std::count(buffer.end() - 16, buffer.end(), mark), 16);
          EXPECT_EQ(functions.release(plan), zprStsNoErr);
          EXPECT_EQ(functions.release(plan), zprStsContextMatchErr);
        }
}

TYPED_TEST(Plans, CheckInOrder) {
  using T = TypeParam;
  for (const auto &f : sets_for_powers_of_two<T>())
    for (const Kind kind : {interleaved, split, real}) {
      const PlanFunctions &p = f.plan[kind];
      SCOPED_TRACE(testing::Message() << f.name << ' ' << kind_names[kind]);
      int32_t size = 77;
      EXPECT_EQ(p.get_size(31, 3, 0, nullptr, &size, &size), zprStsFftOrderErr);
      EXPECT_EQ(p.get_size(-1, 8, 0, &size, &size, &size), zprStsFftOrderErr);
      EXPECT_EQ(p.get_size(4, 3, 0, &size, &size, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(p.get_size(4, 3, 0, &size, &size, &size), zprStsFftFlagErr);
      EXPECT_EQ(p.get_size(30, 8, 0, &size, &size, &size), zprStsSizeErr);
      EXPECT_EQ(size, 77);

      void *plan = &size;
      uint8_t memory[1024];
      EXPECT_EQ(p.init_alloc(nullptr, 31, 3, 0), zprStsNullPtrErr);
      EXPECT_EQ(p.init_alloc(&plan, 31, 3, 0), zprStsFftOrderErr);
      EXPECT_EQ(p.init(nullptr, 31, 3, 0, nullptr, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(p.init(&plan, 31, 3, 0, nullptr, nullptr), zprStsFftOrderErr);
      EXPECT_EQ(p.init(&plan, 4, 3, 0, nullptr, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(p.init(&plan, 4, 3, 0, memory, nullptr), zprStsFftFlagErr);
      EXPECT_EQ(p.init(&plan, 4, 8, 0, memory, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(plan, (void *)&size);
    }
  for (const PlanFunctions &p : functions<T>[any_length].plan) {
    void *const untouched = (void *)&p, *plan = untouched;
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
  }
}

TYPED_TEST(Plans, AreKnownByTheirFunctionsOnly) {
  using T = TypeParam;
  for (const auto &f : functions<T>)
    for (const Form form : f.forms()) {
      const Kind kind = form.kind;
      SCOPED_TRACE(testing::Message() << f.name << ' ' << kind_names[kind]);
      const PlanFunctions &p = f.plan[kind];
      int32_t size = 77;
      EXPECT_EQ(p.get_buffer_size(nullptr, &size), zprStsNullPtrErr);
      EXPECT_EQ(p.release(nullptr), zprStsNullPtrErr);
      const Plan<T> of_kind(f, kind == real ? interleaved : real, 32);
      const Plan<T> of_set(functions<T>[&f == functions<T>], kind == out_of_order ? real : kind, 32);
      for (const void *other : {(const void *)of_kind, (const void *)of_set}) {
        EXPECT_EQ(p.get_buffer_size(other, nullptr), zprStsNullPtrErr);
        EXPECT_EQ(p.get_buffer_size(other, &size), zprStsContextMatchErr);
        EXPECT_EQ(p.release((void *)other), zprStsContextMatchErr);
      }
      EXPECT_EQ(size, 77);
    }
}

// Of a plan and of a transform without a work buffer; one that fails changes nothing.
template <class T>
void report_failing_allocations(const Functions<T> &f, Form form, size_t n, int least) {
  SCOPED_TRACE(testing::Message() << f.name << ' ' << kind_names[form.kind] << ' ' << n);
  const PlanFunctions &p = f.plan[form.kind];
  const long in_use = allocations.live;
  void *plan = nullptr;
  const int made = fail_each_allocation(
      [&] { return p.init_alloc(&plan, f.takes_any_length() ? (int)n : __builtin_ctzl(n), 8, 0); },
      [&](zprStatus status, bool failed) {
        EXPECT_EQ(status, failed ? zprStsMemAllocErr : zprStsNoErr);
        EXPECT_EQ(plan == nullptr, failed);
        EXPECT_EQ(allocations.live == in_use, failed);
      });
  EXPECT_GE(made, least);
  EXPECT_EQ(p.init_alloc(&plan, 5, 3, 0), zprStsFftFlagErr);
  int32_t work = -1;
  p.get_buffer_size(plan, &work);
  const std::vector<T> before(2 * n + 2, T(1));
  std::vector<T> data = before;
  const Parts<T> x = {data.data(), data.data() + n};
  allocations.until_failure = 1;
  const zprStatus status = run(f, form, false, x, x, plan);
  allocations.until_failure = 0;
  EXPECT_EQ(status, work ? zprStsMemAllocErr : zprStsNoErr);
  EXPECT_EQ(data == before, work != 0);
  EXPECT_EQ(p.release(plan), zprStsNoErr);
  EXPECT_EQ(allocations.live, in_use);
}

TYPED_TEST(Plans, ReportFailingAllocations) {
  for (const auto &f : functions<TypeParam>)
    for (const Form form : f.forms())
      if (f.takes_any_length())
        for (const size_t n : {3, 7, 64, 105, 157, 302, 330, 1009, 5005, 6000})
          report_failing_allocations(f, form, n, n == 3 ? 1 : 3);
      else
        for (const int order : {2, 6, 13, 18})
          report_failing_allocations(f, form, size_t{1} << order, order < 4 ? 1 : 2);
}

// The route of a length shows in the size of its work buffer: so many complex numbers, and so many bytes.
TYPED_TEST(Plans, TakeTheRouteOfTheirLength) {
  const struct {
    Kind kind;
    size_t length;
    double numbers;
    int32_t bytes;
  } rows[] = {{interleaved, 8, 0, 0},
              {interleaved, 149, 149, 16},
              {interleaved, 14, 28, 16},
              {interleaved, 21, 28, 16},
              {interleaved, 22500, 22500, 16},
              {interleaved, 151, 1024, 32},
              {split, 302, 2048, 32},
              {real, 30, 15, 16},
              {real, 35, 42, 16},
              {real, 179, 89.5, 16},
              {real, 181, 1024, 32},
              {out_of_order, 5005, 13, 16},
              {out_of_order, 5003, 32768, 32},
              {out_of_order, 6000, 0, 0}};
  for (const auto &row : rows)
    EXPECT_EQ(Plan<TypeParam>(functions<TypeParam>[any_length], row.kind, row.length).work_bytes(),
              (int32_t)(row.numbers * 2 * sizeof(TypeParam)) + row.bytes)
        << kind_names[row.kind] << ' ' << row.length;
}

TEST(Memory, IsAlignedAndGoesBackThroughEitherSet) {
  const long in_use = allocations.live;
  EXPECT_EQ(zprsMalloc_8u(0), nullptr);
  EXPECT_EQ(w6_zprsMalloc_64fc(-1), nullptr);
  for (int32_t length = 1; length < 200; length += 7) {
    uint8_t *const bytes = zprsMalloc_8u(length);
    zpr64fc *const numbers = w6_zprsMalloc_64fc(length);
    ASSERT_TRUE(bytes && numbers);
    EXPECT_EQ((size_t)bytes % 64 + (size_t)numbers % 64, 0u);
    std::memset(bytes, 1, length);
    std::memset(numbers, 1, length * sizeof *numbers);
    w6_zprsFree(bytes);
    zprsFree(numbers);
  }
  zprsFree(nullptr);
  EXPECT_EQ(allocations.live, in_use);
}

}  // namespace
}  // namespace qkr::tests
