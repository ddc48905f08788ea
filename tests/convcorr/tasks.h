// What the tests of tasks share: an operation, its arrays, and its execution by a task.
#pragma once

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

#include "convcorr/problem.h"
#include "tests/support/guarded.h"

namespace qkr::tests {

using convcorr::DD, convcorr::SD, convcorr::SS;

using Words = std::vector<int32_t>;
inline const int32_t *words_or_null(const Words &words) { return words.empty() ? nullptr : words.data(); }

Words dense(const Words &shape);
// Where the elements of an array stand, in the order of their indices, dimension 0 innermost.
std::vector<int64_t> places(const Words &shape, const Words &stride);

struct Operand {
  Words shape, stride = {};  // no strides: dense

  Words strides() const { return stride.empty() ? dense(shape) : stride; }
  std::vector<int64_t> places() const { return tests::places(shape, strides()); }
  size_t extent() const { return static_cast<size_t>(std::ranges::max(places())) + 1; }
};

struct Operation {
  int32_t kind;
  Operand x, y, z;
  Words start = {}, decimation = {};  // empty: left to the task

  int dims() const { return static_cast<int>(std::max(x.shape.size(), y.shape.size())); }
  bool convolves() const { return kind == VXS_CC_CONVOLUTION; }
  // Of dimension d: the lowest and the highest start; that of the operation, and its decimation.
  int32_t lowest(int d) const { return convolves() ? 0 : 1 - x.shape[d]; }
  int32_t highest(int d) const { return y.shape[d] - 1 + (convolves() ? x.shape[d] - 1 : 0); }
  int32_t first(int d) const {
    return !start.empty() ? start[d] : kind == VXS_CC_CORRELATION ? lowest(d) : 0;
  }
  int32_t step(int d) const { return decimation.empty() ? 1 : decimation[d]; }
  std::string name() const;
};

// `count` of each kind in each number of dimensions, with any starts, decimations and strides; the same ones
// everywhere.
std::vector<Operation> operations(int count);

// Numbers from -1 to 1, and a result of 77s, between pages that must not be touched.
template <class Form>
struct Arrays {
  using T = typename Form::Data;
  Guarded<T> x, y, z;

  explicit Arrays(const Operation &o, Edge edge = Edge::end)
      : x(o.x.extent(), edge), y(o.y.extent(), edge), z(o.z.extent(), edge) {
    std::mt19937 random(1);
    for (const auto *operand : {&x, &y})
      for (T &element : *operand) element = static_cast<T>(random() * 0x1p-31 - 1);
    clear();
  }
  void clear() { std::fill(z.begin(), z.end(), T(77)); }
  std::vector<T> result() const { return {z.begin(), z.end()}; }
};

struct DeleteTask {
  void operator()(ConvCorrTask *task) const { EXPECT_EQ(__vxsDeleteTask(&task), VXS_CC_OK); }
};
using Task = std::unique_ptr<ConvCorrTask, DeleteTask>;
Task make_task(const Operation &o, int32_t mode, int32_t data, int32_t internal);

template <class Form>
int32_t execute(const Task &task, const Operation &o, const Arrays<Form> &arrays) {
  return __vxsExec(task.get(), arrays.x.data(), words_or_null(o.x.stride), arrays.y.data(),
                   words_or_null(o.y.stride), arrays.z.data(), words_or_null(o.z.stride));
}
template <class Form>
Task make_task(const Operation &o, int32_t mode) {
  const auto precision = [](auto number) { return sizeof number == 4 ? VXS_CC_SINGLE : VXS_CC_DOUBLE; };
  return make_task(o, mode, precision(typename Form::Data()), precision(typename Form::Real()));
}
template <class Form>
int32_t execute(const Operation &o, int32_t mode, const Arrays<Form> &arrays) {
  return execute(make_task<Form>(o, mode), o, arrays);
}

}  // namespace qkr::tests
