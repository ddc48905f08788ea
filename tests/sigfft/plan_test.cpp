// Plans: their sizes, the order of checks, memory of their own and of the caller, failing allocations.
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

enum Set { w6, plain };
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
    int32_t spec = -1, init = -1, work = -1, buffer = -1;
    ASSERT_EQ(f.plan[row.kind].get_size(row.order, 8, 0, &spec, &init, &work), zprStsNoErr);
    EXPECT_EQ(spec, row.spec);
    EXPECT_EQ(init, row.init);
    EXPECT_EQ(work, row.work);
    if (row.order > 20) continue;
    ASSERT_EQ(f.plan[row.kind].get_buffer_size(Plan<T>(f, row.kind, row.order), &buffer), zprStsNoErr);
    EXPECT_EQ(buffer, row.work);
  }
}

// The plain set, up to 2048 complex numbers, 4096 in single precision, and twice as many real ones.
TYPED_TEST(Plans, OfThePlainSetNeedLittleWorkMemory) {
  using T = TypeParam;
  for (const Kind kind : {interleaved, split, real}) {
    const int largest = (sizeof(T) == 8 ? 11 : 12) + (kind == real);
    for (int order = 0; order <= largest + 1; ++order) {
      int32_t size = -1;
      const auto &f = functions<T>[plain];
      ASSERT_EQ(f.plan[kind].get_buffer_size(Plan<T>(f, kind, order), &size), zprStsNoErr);
      EXPECT_EQ(size == 0, order <= largest) << kind_names[kind] << ", order " << order;
    }
  }
}

// The builders write no more than GetSize tells, wherever the memory starts, and the plan does what one of
// InitAlloc does.
TYPED_TEST(Plans, FitIntoTheCallersMemory) {
  using T = TypeParam;
  for (const auto &f : functions<T>)
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
          const Plan<T> own(f, kind, order, 1);
          const auto x = signal<T>(2 * n), y = signal<T>(2 * n, 2);
          auto a = x, b = x, a2 = y, b2 = y;
          std::vector<uint8_t> buffer(work);
          if (kind == interleaved) {
            f.complex_in_place[true](a.data(), plan, buffer.data()),
                f.complex_in_place[true](b.data(), own, nullptr);
          } else if (kind == split) {
            f.split_in_place[true](a.data(), a2.data(), plan, buffer.data());
            f.split_in_place[true](b.data(), b2.data(), own, nullptr);
          } else {
            f.real_in_place[true][perm](a.data(), plan, buffer.data());
            f.real_in_place[false][perm](a.data(), plan, buffer.data());
            f.real_in_place[true][perm](b.data(), own, nullptr);
            f.real_in_place[false][perm](b.data(), own, nullptr);
          }
          EXPECT_TRUE(a == b && a2 == b2);
          EXPECT_EQ(functions.release(plan), zprStsNoErr);
          EXPECT_EQ(functions.release(plan), zprStsContextMatchErr);
        }
}

TYPED_TEST(Plans, ChecksHaveAnOrder) {
  using T = TypeParam;
  for (const auto &f : functions<T>)
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
      EXPECT_EQ(p.init_alloc(nullptr, 31, 3, 0), zprStsNullPtrErr);
      EXPECT_EQ(p.init_alloc(&plan, 31, 3, 0), zprStsFftOrderErr);
      const long in_use = allocations.live;
      EXPECT_EQ(p.init_alloc(&plan, 5, 3, 0), zprStsFftFlagErr);
      EXPECT_EQ(allocations.live, in_use);
      uint8_t memory[1024];
      EXPECT_EQ(p.init(nullptr, 31, 3, 0, nullptr, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(p.init(&plan, 31, 3, 0, nullptr, nullptr), zprStsFftOrderErr);
      EXPECT_EQ(p.init(&plan, 4, 3, 0, nullptr, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(p.init(&plan, 4, 3, 0, memory, nullptr), zprStsFftFlagErr);
      EXPECT_EQ(p.init(&plan, 4, 8, 0, memory, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(plan, (void *)&size);

      const Plan<T> good(f, kind, 5), other(f, kind == real ? interleaved : real, 5);
      EXPECT_EQ(p.get_buffer_size(nullptr, &size), zprStsNullPtrErr);
      EXPECT_EQ(p.get_buffer_size(other, nullptr), zprStsNullPtrErr);
      EXPECT_EQ(p.get_buffer_size(other, &size), zprStsContextMatchErr);
      EXPECT_EQ(p.release(nullptr), zprStsNullPtrErr);
      EXPECT_EQ(p.release((void *)(const void *)other), zprStsContextMatchErr);
      const Plan<T> of_other_set(functions<T>[&f == functions<T>], kind, 5);
      EXPECT_EQ(p.get_buffer_size(of_other_set, &size), zprStsContextMatchErr);
      EXPECT_EQ(p.release((void *)(const void *)of_other_set), zprStsContextMatchErr);
    }
}

TYPED_TEST(Plans, ReportFailingAllocations) {
  using T = TypeParam;
  for (const auto &f : functions<T>)
    for (const Kind kind : {interleaved, real})
      for (const int order : {2, 6, 13, 18}) {
        SCOPED_TRACE(testing::Message() << f.name << ' ' << kind_names[kind] << ", order " << order);
        const long in_use = allocations.live;
        void *plan = nullptr;
        const int made = fail_each_allocation([&] { return f.plan[kind].init_alloc(&plan, order, 8, 0); },
                                              [&](zprStatus status, bool failed) {
                                                EXPECT_EQ(status, failed ? zprStsMemAllocErr : zprStsNoErr);
                                                EXPECT_EQ(plan == nullptr, failed);
                                                EXPECT_EQ(allocations.live == in_use, failed);
                                              });
        EXPECT_EQ(made, order < 4 ? 1 : 2);

        int32_t work = 0;
        f.plan[kind].get_buffer_size(plan, &work);
        const std::vector<T> before(size_t{2} << order, T(1));
        std::vector<T> data = before;
        allocations.until_failure = 1;
        const zprStatus status = kind == real ? f.real_in_place[true][perm](data.data(), plan, nullptr)
                                              : f.complex_in_place[true](data.data(), plan, nullptr);
        allocations.until_failure = 0;
        EXPECT_EQ(status, work ? zprStsMemAllocErr : zprStsNoErr);
        EXPECT_EQ(data == before, work != 0);
        EXPECT_EQ(f.plan[kind].release(plan), zprStsNoErr);
        EXPECT_EQ(allocations.live, in_use);
      }
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
