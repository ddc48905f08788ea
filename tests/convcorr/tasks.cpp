#include "tasks.h"

#include <tuple>

namespace qkr::tests {
namespace {

using Index = int64_t[7];

// body(index) for all indices from `first` on, `count` of each dimension, dimension 0 innermost.
template <class Body>
void for_each_index(int dims, const Index &first, const Index &count, Body body) {
  Index index = {};
  for (int d = 0; d < dims; ++d) {
    if (count[d] < 1) return;
    index[d] = first[d];
  }
  for (;;) {
    body(index);
    int d = 0;
    for (; d < dims; ++d) {
      if (++index[d] < first[d] + count[d]) break;
      index[d] = first[d];
    }
    if (d == dims) return;
  }
}

// Where the logical element of an index stands.
int64_t place(const Words &shape, const Words &stride, const int64_t *index) {
  int64_t offset = 0;
  for (size_t d = 0; d < shape.size(); ++d)
    offset += stride[d] < 0 ? (shape[d] - 1 - index[d]) * -stride[d] : index[d] * stride[d];
  return offset;
}

}  // namespace

const std::vector<Words> shapes = {{1, 1},
                                   {1, 3},
                                   {2, 1},
                                   {3, 2},
                                   {7, 7},
                                   {8, 64},
                                   {64, 9},
                                   {128, 127},
                                   {31, 333},
                                   {1000, 65},
                                   {1, 300},
                                   {257, 256},
                                   {1, 1, 1, 1},
                                   {3, 3, 40, 17},
                                   {40, 17, 3, 3},
                                   {2, 33, 70, 2},
                                   {70, 2, 2, 33},
                                   {16, 15, 16, 15},
                                   {5, 1, 300, 3},
                                   {1, 150, 1, 9},
                                   {130, 40, 9, 12},
                                   {5, 4, 3, 3, 5, 9},
                                   {20, 3, 2, 2, 2, 16},
                                   {4, 3, 2, 3, 9, 2, 3, 2},
                                   {3, 2, 1, 3, 2, 2, 3, 3, 2, 4},
                                   {2, 3, 2, 1, 2, 2, 9, 2, 1, 3, 2, 2},
                                   {2, 1, 3, 2, 2, 1, 2, 3, 2, 2, 1, 2, 3, 2}};

std::vector<Operation> operations_of(const std::vector<int32_t> &kinds, const std::vector<Words> &lengths) {
  std::vector<Operation> all;
  for (const Words &both : lengths)
    for (const int32_t kind : kinds) {
      const auto middle = both.begin() + static_cast<ptrdiff_t>(both.size() / 2);
      all.push_back(Operation{kind, {both.begin(), middle}, {middle, both.end()}}.whole());
    }
  return all;
}

std::string Operation::name() const {
  return testing::PrintToString(
      std::make_tuple(kind, xshape, yshape, zshape, start, decimation, xstride, ystride, zstride));
}
Operation Operation::whole() const {
  Operation all = *this;
  all.zshape.clear();
  for (int d = 0; d < dims(); ++d) all.zshape.push_back((highest(d) - first(d)) / step(d) + 1);
  return all;
}

Words dense(const Words &shape) {
  Words stride;
  int32_t next = 1;
  for (const int32_t n : shape) {
    stride.push_back(next);
    next *= n;
  }
  return stride;
}

int64_t extent(const Words &shape, const Words &given) {
  const Words stride = given.empty() ? dense(shape) : given;
  int64_t last = 0;
  for (size_t d = 0; d < shape.size(); ++d) last += (shape[d] - 1) * std::abs(int64_t{stride[d]});
  return last + 1;
}

template <class Real, class Form>
std::vector<Real> plain_sums(const Operation &given, const Arrays<Form> &arrays) {
  Operation o = given;
  if (o.xstride.empty()) o.xstride = dense(o.xshape);
  if (o.ystride.empty()) o.ystride = dense(o.yshape);
  if (o.zstride.empty()) o.zstride = dense(o.zshape);
  const int dims = o.dims();
  std::vector<Real> z(arrays.z.size(), Real(77));
  Index zero = {}, count = {};
  for (int d = 0; d < dims; ++d) count[d] = o.zshape[d];
  for_each_index(dims, zero, count, [&](const Index &k) {
    // By the index of x, or of x reversed.
    Index shift = {}, first = {}, terms = {};
    for (int d = 0; d < dims; ++d) {
      const int64_t nx = o.xshape[d], ny = o.yshape[d];
      shift[d] = o.first(d) + k[d] * o.step(d) - (o.convolves() ? nx - 1 : 0);
      first[d] = std::max(-shift[d], int64_t{0});
      terms[d] = std::min(nx, ny - shift[d]) - first[d];
    }
    Real sum = 0;
    for_each_index(dims, first, terms, [&](const Index &i) {
      Index at_x = {}, at_y = {};
      for (int d = 0; d < dims; ++d) {
        at_x[d] = o.convolves() ? o.xshape[d] - 1 - i[d] : i[d];
        at_y[d] = i[d] + shift[d];
      }
      sum += static_cast<Real>(arrays.x[static_cast<size_t>(place(o.xshape, o.xstride, at_x))]) *
             static_cast<Real>(arrays.y[static_cast<size_t>(place(o.yshape, o.ystride, at_y))]);
    });
    z[static_cast<size_t>(place(o.zshape, o.zstride, k))] = sum;
  });
  return z;
}

#define QKR_INSTANTIATE(Real, Form) \
  template std::vector<Real> plain_sums(const Operation &, const Arrays<Form> &);
QKR_INSTANTIATE(double, DD)
QKR_INSTANTIATE(double, SD)
QKR_INSTANTIATE(float, SS)
QKR_INSTANTIATE(long double, DD)
QKR_INSTANTIATE(long double, SD)
QKR_INSTANTIATE(long double, SS)

}  // namespace qkr::tests
