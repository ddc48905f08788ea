#include "tasks.h"

#include <numeric>
#include <tuple>

namespace qkr::tests {

Words dense(const Words &shape) {
  Words stride(shape.size());
  std::exclusive_scan(shape.begin(), shape.end(), stride.begin(), 1, std::multiplies());
  return stride;
}

std::vector<int64_t> places(const Words &shape, const Words &stride) {
  std::vector<int64_t> all = {0};
  for (size_t d = shape.size(); d-- > 0;) {
    const int64_t n = shape[d], step = stride[d];
    std::vector<int64_t> finer;
    for (const int64_t place : all)
      for (int64_t k = 0; k < n; ++k) finer.push_back(place + step * (step < 0 ? k - n + 1 : k));
    all = finer;
  }
  return all;
}

std::vector<Operation> operations(int count) {
  std::mt19937 random(1);
  const auto below = [&](int32_t n) { return static_cast<int32_t>(random() % static_cast<uint32_t>(n)); };
  // None, or elements and rows apart, in either direction; of an operand, some dimensions in one place.
  const auto strides = [&](const Words &shape, bool of_result) {
    Words stride;
    int32_t next = 1 + below(2);
    const int32_t apart = below(2);
    for (const int32_t n : shape) {
      stride.push_back(!of_result && apart && !below(8) ? 0 : below(2) ? next : -next);
      next = next * n + apart;
    }
    if (!of_result && !below(4)) stride[0] *= 2;
    return below(3) ? stride : Words();
  };
  std::vector<Operation> all;
  for (int dims = 1; dims <= 7; ++dims)
    for (int i = 0; i < 3 * count; ++i) {
      Operation o = {i % 3, {Words(dims)}, {Words(dims)}, {}};
      for (Words *shape : {&o.x.shape, &o.y.shape}) {
        for (int32_t &length : *shape) length = 1 + below(48 / (dims * dims) + 1);
        shape->at(below(dims)) = 1 + below((below(8) ? 300 : 1000) / dims);
      }
      const bool starts = below(3), decimates = below(2);
      for (int d = 0; d < dims; ++d) {
        const int32_t low = o.lowest(d), high = o.highest(d);
        if (starts) o.start.push_back(below(3) ? low + below(high - low + 1) : below(2) ? low : high);
        if (decimates) o.decimation.push_back(1 + below(3));
        o.z.shape.push_back((high - o.first(d)) / o.step(d) + 1);
      }
      for (Operand *operand : {&o.x, &o.y, &o.z}) operand->stride = strides(operand->shape, operand == &o.z);
      all.push_back(o);
    }
  return all;
}

std::string Operation::name() const {
  return testing::PrintToString(
      std::make_tuple(kind, x.shape, y.shape, z.shape, start, decimation, x.stride, y.stride, z.stride));
}

Task make_task(const Operation &o, int32_t mode, int32_t data, int32_t internal) {
  ConvCorrTask *task = nullptr;
  __vxsNewTask(&task, o.kind, 0, mode, 0, data, o.dims(), words_or_null(o.x.shape), words_or_null(o.y.shape),
               words_or_null(o.z.shape));
  if (!o.start.empty()) __vxsEditTask(task, VXS_CC_PARAM_START, o.start.data());
  if (!o.decimation.empty()) __vxsEditTask(task, VXS_CC_PARAM_DECIMATION, o.decimation.data());
  __vxsEditTask(task, VXS_CC_PARAM_INTERNAL_PRECISION, &internal);
  return Task(task);
}

}  // namespace qkr::tests
