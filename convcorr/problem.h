// What a task asks for, in 64-bit words, and what the files of both methods share.
#pragma once

#include <qkr/convcorr.h>
#include <stdlib.h>

namespace qkr::convcorr {

constexpr int largest_dims = 7;

enum class Kind { convolution, correlation };
enum class Method { direct, transform };

// How data are typed: what the caller's arrays hold, and what is computed in.
struct DD {
  using Data = double;
  using Real = double;
};
struct SD {
  using Data = float;
  using Real = double;
};
struct SS {
  using Data = float;
  using Real = float;
};

// One operand along one dimension.
struct Extent {
  int64_t count, stride;
};

struct Axis {
  Extent x, y, z;
  int64_t start, decimation;
};

struct Problem {
  Kind kind;
  int dims;
  Axis axis[largest_dims];
};

template <class Form>
struct Operands {
  const typename Form::Data *x, *y;
  typename Form::Data *z;
};

// The status of the first check that fails, in the order of one dimension and in that of several, whose
// number is checked already.
int32_t check_line(const Problem &problem, const void *x, const void *y, const void *z);
int32_t check_grid(const Problem &problem, const void *x, const void *y, const void *z);

// The two methods, for a problem that has passed its checks.
template <class Form>
int32_t direct_line(const Problem &problem, const Operands<Form> &operands);
template <class Form>
int32_t direct_grid(const Problem &problem, const Operands<Form> &operands);
template <class Form>
int32_t transform_line(const Problem &problem, const Operands<Form> &operands);
template <class Form>
int32_t transform_grid(const Problem &problem, const Operands<Form> &operands);

// A product that stays at the largest number once it is beyond: no allocation serves it.
inline int64_t times(int64_t a, int64_t b) {
  int64_t product;
  return __builtin_mul_overflow(a, b, &product) ? INT64_MAX : product;
}

// Memory for one call.
template <class T>
class Buffer {
  T *numbers_ = nullptr;

 public:
  Buffer() = default;
  Buffer(const Buffer &) = delete;
  ~Buffer() { free(numbers_); }
  bool allocate(int64_t count) {
    const int64_t bytes = times(count, sizeof(T));
    numbers_ = bytes < INT64_MAX ? static_cast<T *>(malloc(static_cast<size_t>(bytes))) : nullptr;
    return numbers_;
  }
  T *get() const { return numbers_; }
};

}  // namespace qkr::convcorr
