// Memory: each allocation of each operation fails once, is answered, and leaves nothing behind; tasks
// on two threads.
#include <cstdlib>
#include <thread>

#include "service/internal.h"
#include "tasks.h"
#include "tests/support/allocations.h"

namespace qkr::tests {
namespace {

// The work-buffer cache keeps blocks that would count as lost.
class Memory : public testing::Test {
  int32_t disabled_ = cache_disabled;

 protected:
  void SetUp() override {
    QKR_read_env();
    qkr_serv_freebuffers();
    cache_disabled = 1;
  }
  void TearDown() override { cache_disabled = disabled_; }
};

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
  Arrays<Form> good(o);
  ASSERT_EQ(execute(o, mode, good), VXS_CC_OK);
  Arrays<Form> arrays(o);
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
        EXPECT_EQ(allocations.live, in_use) << o.name();
        EXPECT_TRUE(failed
                        ? status == VXS_CC_ERROR_ALLOC || (mode == VXS_CC_FFT && status == VXS_CC_ERROR_FFT)
                        : status == VXS_CC_OK)
            << status << ' ' << o.name();
        if (status != VXS_CC_ERROR_FFT) {
          EXPECT_EQ(arrays.z, failed ? untouched : good.z) << o.name();
        }
      });
  if (mode == VXS_CC_FFT) {
    EXPECT_GE(made, 1) << o.name();
  }
  __vxsDeleteTask(&task);
}

TEST_F(Memory, EachAllocationOfAnExecution) {
  for (const Operation &o : operations)
    for (const int32_t mode : {VXS_CC_DIRECT, VXS_CC_FFT}) {
      fail_each<DD>(o, mode);
      fail_each<SD>(o, mode);
      fail_each<SS>(o, mode);
    }
}

TEST_F(Memory, EachAllocationOfATask) {
  const int32_t shape = 3;
  ConvCorrTask *task = nullptr, *copy = nullptr;
  const auto expect_one = [](ConvCorrTask *&made, auto make) {
    EXPECT_EQ(fail_each_allocation([&] { return make(&made); },
                                   [&](int32_t status, bool failed) {
                                     EXPECT_EQ(status, failed ? VXS_CC_ERROR_MEM : VXS_CC_OK);
                                     EXPECT_EQ(made == nullptr, failed);
                                   }),
              1);
  };
  expect_one(task, [&](auto out) { return __vxsNewTask(out, 1, 0, 1, 0, 2, 1, &shape, &shape, &shape); });
  expect_one(copy, [&](auto out) { return __vxsCopyTask(out, task); });
  __vxsDeleteTask(&task);
  __vxsDeleteTask(&copy);
}

TEST(Threads, WithATaskEach) {
  Operation large = {1, {90, 70}, {9, 40}, {98, 109}}, small = large;
  small.xshape = {7, 5}, small.zshape = {15, 44};
  for (const int32_t mode : {VXS_CC_FFT, VXS_CC_DIRECT}) {
    const auto work = [&](const Operation &o, int &different) {
      Arrays<DD> expected(o);
      EXPECT_EQ(execute(o, mode, expected), VXS_CC_OK);
      for (int i = 0; i < 50; ++i) {
        Arrays<DD> arrays(o);
        if (execute(o, mode, arrays) != VXS_CC_OK || arrays.z != expected.z) ++different;
      }
    };
    int different[2] = {};
    std::thread a([&] { work(large, different[0]); }), b([&] { work(small, different[1]); });
    a.join(), b.join();
    EXPECT_EQ(different[0] + different[1], 0);
  }
}

}  // namespace
}  // namespace qkr::tests
