// Operands as they lie in the caller's memory, and the way from there into dense arrays and back.
#pragma once

#include <string.h>

#include "convcorr/problem.h"

namespace qkr::convcorr {

// Where the elements of an operand stand: that of the logical indices j at base + sum of j[d] step[d].
// Negative strides and a reversed order are in base and step. T is const for what is only read.
template <class T>
struct Layout {
  T *base;
  int dims;
  int64_t count[largest_dims] = {};
  ptrdiff_t step[largest_dims] = {};

  // Of the operand that `extent` names in each axis: &Axis::x, for instance.
  Layout(T *data, const Problem &problem, Extent Axis::*extent) : base(data), dims(problem.dims) {
    for (int d = 0; d < dims; ++d) {
      const Extent along = problem.axis[d].*extent;
      count[d] = along.count;
      step[d] = along.stride;
      if (along.stride < 0) base -= (along.count - 1) * along.stride;
    }
  }

  void reverse() {
    for (int d = 0; d < dims; ++d) {
      base += (count[d] - 1) * step[d];
      step[d] = -step[d];
    }
  }

  int64_t elements() const {
    int64_t product = 1;
    for (int d = 0; d < dims; ++d) product = times(product, count[d]);
    return product;
  }

  bool is_dense() const {
    int64_t dense = 1;
    for (int d = 0; d < dims; dense = times(dense, count[d++]))
      if (step[d] != dense) return false;
    return true;
  }
};

// Numbers a step apart to neighbours, and back; of another precision they are converted.
template <class From, class To>
void pack_line(const From *from, ptrdiff_t step, int64_t count, To *to) {
  if constexpr (sizeof(From) == sizeof(To)) {
    if (step == 1) {
      memcpy(to, from, static_cast<size_t>(count) * sizeof(To));
      return;
    }
  }
  for (int64_t i = 0; i < count; ++i) to[i] = static_cast<To>(from[i * step]);
}
template <class From, class To>
void unpack_line(const From *from, int64_t count, To *to, ptrdiff_t step) {
  if constexpr (sizeof(From) == sizeof(To)) {
    if (step == 1) {
      memcpy(to, from, static_cast<size_t>(count) * sizeof(To));
      return;
    }
  }
  for (int64_t i = 0; i < count; ++i) to[i * step] = static_cast<To>(from[i]);
}

// body(base of the line in the caller's memory, number of the line) for all lines along dimension 0, in
// order.
template <class T, class Body>
void for_each_line(const Layout<T> &layout, Body body) {
  int64_t index[largest_dims] = {};
  T *line = layout.base;
  for (int64_t number = 0;; ++number) {
    body(line, number);
    int d = 1;
    for (; d < layout.dims; ++d) {
      line += layout.step[d];
      if (++index[d] < layout.count[d]) break;
      line -= layout.count[d] * layout.step[d];
      index[d] = 0;
    }
    if (d >= layout.dims) return;
  }
}

template <class T, class Real>
void pack(const Layout<const T> &from, Real *to) {
  const int64_t count = from.count[0];
  for_each_line(from, [&](const T *line, int64_t number) {
    pack_line(line, from.step[0], count, to + number * count);
  });
}
template <class T, class Real>
void unpack(const Real *from, const Layout<T> &to) {
  const int64_t count = to.count[0];
  for_each_line(
      to, [&](T *line, int64_t number) { unpack_line(from + number * count, count, line, to.step[0]); });
}

// The caller's array where it is as wanted already, else a copy.
template <class T>
class DenseOperand {
  const T *numbers_ = nullptr;
  Buffer<T> copy_;

 public:
  template <class Data>
  bool make(const Layout<const Data> &layout) {
    if constexpr (sizeof(Data) == sizeof(T))
      if (layout.is_dense()) {
        numbers_ = layout.base;
        return true;
      }
    if (!copy_.allocate(layout.elements())) return false;
    pack(layout, copy_.get());
    numbers_ = copy_.get();
    return true;
  }
  const T *numbers() const { return numbers_; }
};

// The same for the result, which give_back() brings to the caller's array.
template <class T>
class DenseResult {
  T *numbers_ = nullptr;
  Buffer<T> copy_;

 public:
  template <class Data>
  bool make(const Layout<Data> &layout) {
    if constexpr (sizeof(Data) == sizeof(T))
      if (layout.is_dense()) {
        numbers_ = layout.base;
        return true;
      }
    if (!copy_.allocate(layout.elements())) return false;
    numbers_ = copy_.get();
    return true;
  }
  T *numbers() const { return numbers_; }
  template <class Data>
  void give_back(const Layout<Data> &layout) const {
    if (copy_.get()) unpack(copy_.get(), layout);
  }
};

}  // namespace qkr::convcorr
