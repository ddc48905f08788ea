// Memory: each allocation of each operation fails once, is answered, and leaves nothing behind; tasks
// on two threads.
#include <thread>

#include "tasks.h"
#include "tests/support/allocations.h"

namespace qkr::tests {
namespace {

const std::vector<Operation> operations = {
    {1, {30}, {40}, {20}, {3}, {2}, {2}, {-1}, {3}},
    {1, {300}, {200}, {499}},
    {2, {3000}, {100}, {90}, {0}, {}, {0}, {}, {-1}},
    {1, {30, 7}, {9, 5}, {38, 11}},
    {2, {3, 5}, {300, 300}, {200, 200}, {0, 0}, {}, {2, 7}, {1, 301}, {-2, 450}},
    {1, {5, 6, 7}, {3, 3, 3}, {4, 4, 4}, {1, 1, 1}},
};

template <class Form>
void fail_each(const Operation &o, int32_t mode) {
  SCOPED_TRACE(o.name());
  Arrays<Form> good(o), arrays(o);
  ASSERT_EQ(execute(o, mode, good), VXS_CC_OK);
  const auto untouched = arrays.z;
  ConvCorrTask *task = make_task<Form>(o, mode);
  const long in_use = allocations.live;
  const int made = fail_each_allocation(
      [&] {
        __vxsccSetStatus(task, 0);
        arrays.z = untouched;
        return execute(task, o, arrays);
      },
      [&](int32_t status, bool failed) {
        EXPECT_EQ(allocations.live, in_use);
        if (failed && mode == VXS_CC_FFT && status == VXS_CC_ERROR_FFT) return;  // z may be written to
        EXPECT_EQ(status, failed ? VXS_CC_ERROR_ALLOC : VXS_CC_OK);
        EXPECT_EQ(arrays.z, failed ? untouched : good.z);
      });
  EXPECT_GE(made, mode == VXS_CC_FFT ? 1 : 0);
  __vxsDeleteTask(&task);
}

TEST(Memory, EachAllocationOfAnExecution) {
  const WithoutCache without_cache;
  for (const Operation &o : operations)
    for (const int32_t mode : {VXS_CC_DIRECT, VXS_CC_FFT})
      fail_each<DD>(o, mode), fail_each<SD>(o, mode), fail_each<SS>(o, mode);
}

TEST(Memory, OfATaskIsOneAllocation) {
  const Words shape = {3};
  ConvCorrTask *source = make_task<DD>({VXS_CC_CONVOLUTION, shape, shape, shape}, VXS_CC_DIRECT);
  const auto expect_one = [](auto make) {
    ConvCorrTask *made = nullptr;
    EXPECT_EQ(fail_each_allocation([&] { return make(&made); },
                                   [&](int32_t status, bool failed) {
                                     EXPECT_EQ(status, failed ? VXS_CC_ERROR_MEM : VXS_CC_OK);
                                     EXPECT_EQ(made == nullptr, failed);
                                   }),
              1);
    __vxsDeleteTask(&made);
  };
  expect_one([&](auto out) {
    return __vxsNewTask(out, 1, 0, 1, 0, 2, 1, shape.data(), shape.data(), shape.data());
  });
  expect_one([&](auto out) { return __vxsCopyTask(out, source); });
  __vxsDeleteTask(&source);
}

TEST(Threads, WithATaskEach) {
  const auto work = [](const Operation &o, int32_t mode) {
    Arrays<DD> expected(o);
    EXPECT_EQ(execute(o, mode, expected), VXS_CC_OK);
    for (int i = 0; i < 50; ++i) {
      Arrays<DD> arrays(o);
      EXPECT_EQ(execute(o, mode, arrays), VXS_CC_OK);
      EXPECT_EQ(arrays.z, expected.z);
    }
  };
  const Operation large = {1, {90, 70}, {9, 40}, {98, 109}}, small = {1, {7, 5}, {9, 40}, {15, 44}};
  for (const int32_t mode : {VXS_CC_FFT, VXS_CC_DIRECT}) {
    std::thread other(work, large, mode);
    work(small, mode);
    other.join();
  }
}

}  // namespace
}  // namespace qkr::tests
