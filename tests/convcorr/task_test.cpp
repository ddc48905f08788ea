// The life of a task: fields after each operation, edits that are refused, hooks that fail, copies that
// outlive their source, blocked tasks.
#include <cstdlib>

#include "tasks.h"
#include "tests/support/allocations.h"

namespace qkr::tests {
namespace {

constexpr int32_t shape_x[] = {3, 4}, shape_y[] = {5, 2}, shape_z[] = {2, 3}, stride_x[] = {1, 3};
double operand[32] = {1, 2, 3};

ConvCorrTask *new_task() {
  ConvCorrTask *task = nullptr;
  EXPECT_EQ(__vxsNewTaskX(&task, VXS_CC_CORRELATION, 11, VXS_CC_FFT, 22, VXS_CC_SINGLE, 2, shape_x, shape_y,
                          shape_z, operand, stride_x),
            VXS_CC_OK);
  return task;
}
int32_t execute_on_operand(ConvCorrTask *task) {
  return __vxsExec(task, operand, nullptr, operand, nullptr, operand, nullptr);
}

bool holds(const int32_t *words, const int32_t *inline_words, const int32_t *expected) {
  return words == inline_words && !memcmp(words, expected, 2 * sizeof(int32_t));
}

TEST(Task, IsMadeOfAnyNumberOfDimensions) {
  const Words words(100, 3);
  for (const int32_t dims : {-5, 0, 8, 100}) {
    ConvCorrTask *task = nullptr, *copy = nullptr;
    ASSERT_EQ(__vxsNewTask(&task, 1, 0, 1, 0, 2, dims, words.data(), words.data(), words.data()), VXS_CC_OK);
    EXPECT_EQ(task->dims, dims);
    for (const int32_t list : {VXS_CC_PARAM_START, VXS_CC_PARAM_DECIMATION})
      EXPECT_EQ(__vxsEditTask(task, list, words.data()), VXS_CC_OK);
    EXPECT_EQ(__vxsCopyTask(&copy, task), VXS_CC_OK);
    EXPECT_EQ(execute_on_operand(copy), VXS_CC_ERROR_DIMS);
    __vxsDeleteTask(&copy);
    __vxsDeleteTask(&task);
  }
}

TEST(Task, IsEditedByParameter) {
  const int32_t word = 7, pair[] = {4, 5};
  for (int32_t parameter = -1; parameter <= 21; ++parameter) {
    ConvCorrTask *task = new_task();
    __vxsCommitTask(task);
    const ConvCorrTask before = *task;
    EXPECT_TRUE(before.task_word == 11 && before.data_word == 22 && before.option_word == 0);
    EXPECT_TRUE(holds(before.xstride, task->xstride_data, stride_x) && before.x == operand);
    const bool is_word = parameter == 3 || parameter == 4 || parameter == 9;
    const bool is_list = parameter == 5 || parameter == 6;
    const int32_t expected = is_word || is_list                  ? VXS_CC_OK
                             : parameter >= 1 && parameter <= 19 ? VXS_CC_ERROR_READONLY_PARAM
                                                                 : VXS_CC_ERROR_BAD_PARAM_ID;
    EXPECT_EQ(__vxsEditTask(task, parameter, is_list ? pair : &word), expected) << parameter;
    EXPECT_EQ(task->status, expected);
    EXPECT_EQ(task->committed, 0);
    EXPECT_EQ(task->mode, parameter == 3 ? 7 : before.mode);
    EXPECT_EQ(task->option_word, parameter == 4 ? 7 : before.option_word);
    EXPECT_EQ(task->internal_precision, parameter == 9 ? 7 : before.internal_precision);
    EXPECT_TRUE(parameter == 5 ? holds(task->start, task->start_data, pair) : !task->start);
    EXPECT_TRUE(parameter == 6 ? holds(task->decimation, task->decimation_data, pair) : !task->decimation);
    __vxsDeleteTask(&task);
  }
}

TEST(Task, IsBlockedByAFailureAndUnblockedByTheCaller) {
  ConvCorrTask *task = new_task(), *copy = nullptr;
  EXPECT_EQ(__vxsCommitTask(task), VXS_CC_OK);
  EXPECT_EQ(task->committed, 1);
  EXPECT_EQ(__vxsEditTask(task, VXS_CC_PARAM_START, nullptr), VXS_CC_ERROR_NULL);
  const int32_t word = 1;
  EXPECT_EQ(__vxsEditTask(task, VXS_CC_PARAM_MODE, &word), VXS_CC_ERROR_NULL);
  EXPECT_EQ(task->mode, VXS_CC_FFT);
  EXPECT_EQ(__vxsCommitTask(task), VXS_CC_ERROR_NULL);
  EXPECT_EQ(task->committed, 0);
  EXPECT_EQ(__vxsCopyTask(&copy, task), VXS_CC_ERROR_NULL);
  EXPECT_EQ(copy, nullptr);
  EXPECT_EQ(execute_on_operand(task), VXS_CC_ERROR_NULL);
  EXPECT_EQ(__vxsExecX(task, operand, nullptr, operand, nullptr), VXS_CC_ERROR_NULL);
  EXPECT_EQ(__vxsccSetStatus(task, 0), VXS_CC_ERROR_NULL);
  EXPECT_EQ(__vxsEditTask(task, VXS_CC_PARAM_MODE, &word), VXS_CC_OK);
  __vxsDeleteTask(&task);

  // A failed execution blocks, and z stays as it is from then on.
  const Operation o = {VXS_CC_CONVOLUTION, {3}, {4}, {6}};
  Arrays<DD> arrays(o);
  task = make_task<DD>(o, VXS_CC_DIRECT);
  EXPECT_EQ(__vxsExec(task, nullptr, nullptr, arrays.y.data(), nullptr, arrays.z.data(), nullptr),
            VXS_CC_ERROR_X);
  EXPECT_EQ(task->committed, 1);
  EXPECT_EQ(execute(task, o, arrays), VXS_CC_ERROR_X);
  EXPECT_EQ(arrays.z[0], 77);
  EXPECT_EQ(__vxsccSetStatus(task, 0), VXS_CC_ERROR_X);
  EXPECT_EQ(execute(task, o, arrays), VXS_CC_OK);
  EXPECT_EQ(arrays.z[0], arrays.x[0] * arrays.y[0]);
  __vxsccSetStatus(task, 5);
  EXPECT_EQ(__vxsDeleteTask(&task), VXS_CC_OK);
}

TEST(Task, AnswersToNullPointers) {
  ConvCorrTask *task = new_task(), *none = nullptr;
  for (const int32_t status :
       {__vxsNewTask(nullptr, 1, 0, 1, 0, 1, 1, shape_x, shape_y, shape_z),
        __vxsNewTaskX(nullptr, 1, 0, 1, 0, 1, 1, shape_x, shape_y, shape_z, operand, nullptr),
        __vxsEditTask(nullptr, VXS_CC_PARAM_MODE, shape_x), __vxsCopyTask(&none, nullptr),
        __vxsCopyTask(nullptr, task), __vxsCommitTask(nullptr), execute_on_operand(nullptr),
        __vxsExecX(nullptr, operand, nullptr, operand, nullptr), __vxsccGetStatus(nullptr),
        __vxsccSetStatus(nullptr, 0), __vxsDeleteTask(nullptr)})
    EXPECT_EQ(status, VXS_CC_ERROR_NULL);
  EXPECT_EQ(__vxsDeleteTask(&none), VXS_CC_OK);
  __vxsDeleteTask(&task);
}

TEST(Task, GivesCopiesThatOutliveIt) {
  const Operation o = {VXS_CC_CONVOLUTION, {3, 4}, {5, 2}, {2, 2}, {2, 1}, {2, 2}};
  Arrays<DD> arrays(o), of_copy(o);
  ConvCorrTask *task = nullptr, *copy = nullptr;
  {
    const Words xshape = o.xshape, stride = {1, 3};
    __vxsNewTaskX(&task, o.kind, 1, VXS_CC_DIRECT, 2, VXS_CC_DOUBLE, 2, xshape.data(), o.yshape.data(),
                  o.zshape.data(), operand, stride.data());
    __vxsEditTask(task, VXS_CC_PARAM_START, o.start.data());
    __vxsEditTask(task, VXS_CC_PARAM_DECIMATION, o.decimation.data());
  }
  ASSERT_EQ(__vxsExecX(task, arrays.y.data(), nullptr, arrays.z.data(), nullptr), VXS_CC_OK);
  ASSERT_EQ(__vxsCopyTask(&copy, task), VXS_CC_OK);
  EXPECT_TRUE(copy->committed == 1 && copy->task_word == 1 && copy->data_word == 2);
  memset(static_cast<void *>(task), 0xEE, sizeof(ConvCorrTask));
  ASSERT_EQ(__vxsExecX(copy, of_copy.y.data(), nullptr, of_copy.z.data(), nullptr), VXS_CC_OK);
  EXPECT_EQ(of_copy.z, arrays.z);
  free(task);
  EXPECT_EQ(__vxsDeleteTask(&copy), VXS_CC_OK);
}

// Hooks that count their calls and answer as told.
struct Hooks {
  static inline int copies, deletions, answer;
  static int32_t copy(ConvCorrTask *task, void **extension, const void *source) {
    ++copies;
    EXPECT_EQ(extension, &task->extension);
    if (answer) return answer;
    *extension = malloc(1);
    *static_cast<char *>(*extension) = *static_cast<const char *>(source);
    return 0;
  }
  static int32_t release(ConvCorrTask *task, void *extension) {
    ++deletions;
    EXPECT_EQ(task->extension, extension);
    EXPECT_EQ(*static_cast<char *>(extension), 'q');
    return answer;
  }
};

TEST(Extension, IsCopiedAndReleasedByItsHooks) {
  const long live = allocations.live;
  for (const int answer : {0, 3})
    for (const bool missing : {false, true}) {
      ConvCorrTask *task = new_task(), *copy = nullptr;
      task->extension = malloc(1);
      *static_cast<char *>(task->extension) = 'q';
      if (!missing) task->extension_copy = Hooks::copy, task->extension_delete = Hooks::release;
      Hooks::copies = Hooks::deletions = 0, Hooks::answer = answer;
      const bool fails = answer || missing;
      EXPECT_EQ(__vxsCopyTask(&copy, task), fails ? VXS_CC_ERROR_COPY_HOOK : VXS_CC_OK);
      EXPECT_EQ(copy == nullptr, fails);
      EXPECT_EQ(task->status, VXS_CC_OK);
      EXPECT_TRUE(fails || copy->extension != task->extension);
      EXPECT_EQ(__vxsDeleteTask(&copy), VXS_CC_OK);
      EXPECT_EQ(__vxsDeleteTask(&task), fails ? VXS_CC_ERROR_DELETE_HOOK : VXS_CC_OK);
      EXPECT_EQ(task, nullptr);
      EXPECT_EQ(Hooks::copies, missing ? 0 : 1);
      EXPECT_EQ(Hooks::deletions, missing ? 0 : fails ? 1 : 2);
    }
  EXPECT_EQ(allocations.live, live);
}

}  // namespace
}  // namespace qkr::tests
