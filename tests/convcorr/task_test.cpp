// The life of a task: edits that are refused, hooks that fail, copies that outlive their source, blocked
// tasks; and memory that cannot be had.
#include <cstring>

#include "tasks.h"
#include "tests/support/allocations.h"

namespace qkr::tests {
namespace {

constexpr int32_t shape[] = {2, 2}, strides[] = {-1, 4};
const double operand[12] = {1, 2, 3, 4, 5, 6};

// Of a grid, with a line of `operand` between those that count.
Task new_task() {
  ConvCorrTask *task = nullptr;
  EXPECT_EQ(__vxsNewTaskX(&task, VXS_CC_CONVOLUTION, 11, VXS_CC_DIRECT, 22, VXS_CC_DOUBLE, 2, shape, shape,
                          shape, operand, strides),
            VXS_CC_OK);
  return Task(task);
}

TEST(Task, IsEditedByParameter) {
  const int32_t value[] = {7, 5};
  for (int32_t parameter = -1; parameter <= 21; ++parameter) {
    const Task task = new_task();
    EXPECT_EQ(__vxsCommitTask(task.get()), VXS_CC_OK);
    EXPECT_EQ(task->committed, 1);
    const bool is_known = parameter >= 1 && parameter <= 19,
               is_editable = (parameter >= 3 && parameter <= 6) || parameter == 9;
    EXPECT_EQ(__vxsEditTask(task.get(), parameter, value), is_editable ? VXS_CC_OK
                                                           : is_known  ? VXS_CC_ERROR_READONLY_PARAM
                                                                       : VXS_CC_ERROR_BAD_PARAM_ID);
    EXPECT_EQ(task->committed, 0);
    EXPECT_EQ(task->mode, parameter == VXS_CC_PARAM_MODE ? 7 : VXS_CC_DIRECT);
    EXPECT_EQ(task->option_word, parameter == VXS_CC_PARAM_OPTION_WORD ? 7 : 0);
    EXPECT_EQ(task->internal_precision, parameter == VXS_CC_PARAM_INTERNAL_PRECISION ? 7 : VXS_CC_DOUBLE);
    EXPECT_EQ(task->start != nullptr, parameter == VXS_CC_PARAM_START);
    EXPECT_EQ(task->decimation != nullptr, parameter == VXS_CC_PARAM_DECIMATION);
  }
}

TEST(Task, IsBlockedByAFailureUntilTheCallerUnblocksIt) {
  const Task task = new_task();
  ConvCorrTask *copy = nullptr;
  double z[4] = {}, expected[4];
  const auto call = [&](double *result) {
    return __vxsExec(task.get(), operand, strides, operand, nullptr, result, nullptr);
  };
  const auto call_x = [&] { return __vxsExecX(task.get(), operand, nullptr, z, nullptr); };
  EXPECT_EQ(call(nullptr), VXS_CC_ERROR_Z);
  EXPECT_EQ(task->committed, 1);
  const int32_t mode = VXS_CC_FFT;
  for (const int32_t status : {call(z), call_x(), __vxsCopyTask(&copy, task.get()),
                               __vxsEditTask(task.get(), VXS_CC_PARAM_MODE, &mode),
                               __vxsEditTask(task.get(), VXS_CC_PARAM_MODE, nullptr),
                               __vxsCommitTask(task.get()), __vxsccGetStatus(task.get())})
    EXPECT_EQ(status, VXS_CC_ERROR_Z);
  EXPECT_TRUE(z[0] == 0 && !copy && task->mode == VXS_CC_DIRECT && !task->committed);
  EXPECT_EQ(__vxsccSetStatus(task.get(), 0), VXS_CC_ERROR_Z);
  EXPECT_EQ(call(expected), VXS_CC_OK);
  EXPECT_EQ(call_x(), VXS_CC_OK);
  EXPECT_EQ(memcmp(z, expected, sizeof z), 0);
  EXPECT_EQ(__vxsEditTask(task.get(), VXS_CC_PARAM_MODE, nullptr), VXS_CC_ERROR_NULL);
}

TEST(Task, AnswersToNullPointers) {
  const Task task = new_task();
  ConvCorrTask *none = nullptr;
  double result[4];
  for (const int32_t status :
       {__vxsNewTask(nullptr, 1, 0, 1, 0, 1, 1, shape, shape, shape),
        __vxsNewTaskX(nullptr, 1, 0, 1, 0, 1, 1, shape, shape, shape, operand, nullptr),
        __vxsEditTask(nullptr, VXS_CC_PARAM_MODE, shape), __vxsCopyTask(&none, nullptr),
        __vxsCopyTask(nullptr, task.get()), __vxsCommitTask(nullptr),
        __vxsExec(nullptr, operand, nullptr, operand, nullptr, result, nullptr),
        __vxsExecX(nullptr, operand, nullptr, result, nullptr), __vxsccGetStatus(nullptr),
        __vxsccSetStatus(nullptr, 0), __vxsDeleteTask(nullptr)})
    EXPECT_EQ(status, VXS_CC_ERROR_NULL);
  EXPECT_EQ(__vxsDeleteTask(&none), VXS_CC_OK);
}

// Hooks that count their calls and answer as told.
struct Hooks {
  static inline int copies, deletions, answer;
  static int32_t copy(ConvCorrTask *copy, void **extension, const void *source) {
    ++copies;
    EXPECT_EQ(extension, &copy->extension);
    if (answer) return answer;
    copy->status = 5;  // which is not the hook's
    *extension = memcpy(malloc(2), source, 2);
    return 0;
  }
  static int32_t release(ConvCorrTask *task, void *extension) {
    ++deletions;
    EXPECT_EQ(task->extension, extension);
    EXPECT_STREQ(static_cast<char *>(extension), "q");
    return answer;
  }
};

TEST(Task, IsCopiedAndDeletedWithItsExtension) {
  const long live = allocations.live;
  for (const int answer : {0, 3})
    for (const bool missing : {false, true}) {
      ConvCorrTask *task = new_task().release(), *copy = nullptr;
      task->extension = memcpy(malloc(2), "q", 2);
      if (!missing) task->extension_copy = Hooks::copy, task->extension_delete = Hooks::release;
      Hooks::copies = Hooks::deletions = 0, Hooks::answer = answer;
      const bool fails = answer || missing;
      EXPECT_EQ(__vxsCopyTask(&copy, task), fails ? VXS_CC_ERROR_COPY_HOOK : VXS_CC_OK);
      EXPECT_EQ(__vxsccGetStatus(copy), fails ? VXS_CC_ERROR_NULL : VXS_CC_OK);
      EXPECT_EQ(__vxsDeleteTask(&copy), VXS_CC_OK);
      EXPECT_EQ(__vxsDeleteTask(&task), fails ? VXS_CC_ERROR_DELETE_HOOK : VXS_CC_OK);
      EXPECT_EQ(task, nullptr);
      EXPECT_EQ(Hooks::copies, missing ? 0 : 1);
      EXPECT_EQ(Hooks::deletions, missing ? 0 : fails ? 1 : 2);
    }
  EXPECT_EQ(allocations.live, live);
}

TEST(Task, AndItsCopyAreAnAllocationEach) {
  const auto make_both = [] {
    ConvCorrTask *task = nullptr, *copy = nullptr;
    int32_t status = __vxsNewTaskX(&task, 1, 11, 1, 22, 2, 2, shape, shape, shape, operand, strides);
    __vxsEditTask(task, VXS_CC_PARAM_START, shape);
    __vxsEditTask(task, VXS_CC_PARAM_DECIMATION, shape);
    if (!status) status = __vxsCopyTask(&copy, task);
    if (copy) {  // all of its own
      EXPECT_TRUE(copy->task_word == 11 && copy->data_word == 22);
      EXPECT_TRUE(copy->xshape == copy->xshape_data && copy->yshape == copy->yshape_data &&
                  copy->zshape == copy->zshape_data);
      EXPECT_TRUE(copy->start == copy->start_data && copy->decimation == copy->decimation_data &&
                  copy->xstride == copy->xstride_data);
    }
    __vxsDeleteTask(&task), __vxsDeleteTask(&copy);
    return status;
  };
  EXPECT_EQ(allocations_survived(make_both, VXS_CC_ERROR_MEM), 2);
}

}  // namespace
}  // namespace qkr::tests
