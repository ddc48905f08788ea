// What the tests of tasks share: an operation with its arrays, executed by a task, and by the sums that
// define it.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <qkr/convcorr.h>
#include <random>
#include <vector>

namespace qkr::tests {

using Words = std::vector<int32_t>;

// Precision of data and arithmetic.
struct DD {
  using Data = double;
  using Real = double;
  static constexpr int32_t data = VXS_CC_DOUBLE, internal = VXS_CC_DOUBLE;
};
struct SD {
  using Data = float;
  using Real = double;
  static constexpr int32_t data = VXS_CC_SINGLE, internal = VXS_CC_DOUBLE;
};
struct SS {
  using Data = float;
  using Real = float;
  static constexpr int32_t data = VXS_CC_SINGLE, internal = VXS_CC_SINGLE;
};
using Forms = testing::Types<DD, SD, SS>;

struct Operation {
  int32_t kind;
  Words xshape, yshape, zshape = {};
  Words start = {}, decimation = {};               // empty: left to the task
  Words xstride = {}, ystride = {}, zstride = {};  // empty: dense

  int dims() const { return static_cast<int>(xshape.size()); }
  bool convolves() const { return kind == VXS_CC_CONVOLUTION; }
  // Of dimension d: the lowest and the highest start; that of the operation, and its decimation.
  int32_t lowest(int d) const { return convolves() ? 0 : 1 - xshape[d]; }
  int32_t highest(int d) const { return yshape[d] - 1 + (convolves() ? xshape[d] - 1 : 0); }
  int32_t first(int d) const {
    return !start.empty() ? start[d] : kind == VXS_CC_CORRELATION ? 1 - xshape[d] : 0;
  }
  int32_t step(int d) const { return decimation.empty() ? 1 : decimation[d]; }
  // Of as much of the result as there is from the start on.
  Operation whole() const;
  std::string name() const;
};

Words dense(const Words &shape);
// Elements from the lowest that an operand touches to the highest.
int64_t extent(const Words &shape, const Words &stride);

// Operands of one to seven dimensions, the lengths of x and then those of y: 1, 2, 3, odd, powers of two and
// next to them, longer than a group of vectors at every level.
extern const std::vector<Words> shapes;

// An operation of each kind on all of `lengths`, of which all of the result is wanted.
std::vector<Operation> operations_of(const std::vector<int32_t> &kinds, const std::vector<Words> &lengths);
inline std::vector<Operation> whole_operations() {
  return operations_of({VXS_CC_CONVOLUTION, VXS_CC_CORRELATION}, shapes);
}

inline const int32_t *words_or_null(const Words &words) { return words.empty() ? nullptr : words.data(); }

template <class T>
std::vector<T> random_numbers(int64_t count, unsigned seed) {
  std::mt19937 generator(seed);
  std::vector<T> numbers(static_cast<size_t>(count));
  for (T &x : numbers) x = static_cast<T>(std::uniform_real_distribution<double>(-1, 1)(generator));
  return numbers;
}

template <class Form>
struct Arrays {
  using T = typename Form::Data;
  std::vector<T> x, y, z;
  explicit Arrays(const Operation &operation, unsigned seed = 1)
      : x(random_numbers<T>(extent(operation.xshape, operation.xstride), seed)),
        y(random_numbers<T>(extent(operation.yshape, operation.ystride), seed + 1)),
        z(static_cast<size_t>(extent(operation.zshape, operation.zstride)), T(77)) {}
};

template <class Form>
ConvCorrTask *make_task(const Operation &operation, int32_t mode) {
  ConvCorrTask *task = nullptr;
  __vxsNewTask(&task, operation.kind, 0, mode, 0, Form::data, operation.dims(), operation.xshape.data(),
               operation.yshape.data(), operation.zshape.data());
  if (!task) return nullptr;
  if (!operation.start.empty()) __vxsEditTask(task, VXS_CC_PARAM_START, operation.start.data());
  if (!operation.decimation.empty())
    __vxsEditTask(task, VXS_CC_PARAM_DECIMATION, operation.decimation.data());
  const int32_t internal = Form::internal;
  __vxsEditTask(task, VXS_CC_PARAM_INTERNAL_PRECISION, &internal);
  return task;
}
template <class Form>
int32_t execute(ConvCorrTask *task, const Operation &operation, Arrays<Form> &arrays) {
  return __vxsExec(task, arrays.x.data(), words_or_null(operation.xstride), arrays.y.data(),
                   words_or_null(operation.ystride), arrays.z.data(), words_or_null(operation.zstride));
}
template <class Form>
int32_t execute(const Operation &operation, int32_t mode, Arrays<Form> &arrays) {
  ConvCorrTask *task = make_task<Form>(operation, mode);
  const int32_t status = execute(task, operation, arrays);
  EXPECT_EQ(__vxsDeleteTask(&task), VXS_CC_OK);
  return status;
}

// z by the sums, in the arithmetic of Real.
template <class Real, class Form>
std::vector<Real> plain_sums(const Operation &operation, const Arrays<Form> &arrays);

}  // namespace qkr::tests
