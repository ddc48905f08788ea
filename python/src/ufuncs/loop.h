// The loop of a ufunc: what NumPy calls with pointers, strides and a count, and what hands that to a vector
// function of the library.
//
// Dense operands go to the library as they are. Others pass through blocks that stay in the first-level
// cache: gather a block, call, scatter.
#pragma once

#include <algorithm>
#include <qkr/qkr.h>

#include "numpy_api.h"
#include "ufuncs/errors.h"

namespace qkr::ufuncs {

template <class T>
using Unary = void (*)(int32_t, const T *, T *);
template <class T>
using Binary = void (*)(int32_t, const T *, const T *, T *);
template <class T>
using OfNumber = void (*)(int32_t, const T *, T, T *);
template <class T>
using ToTwo = void (*)(int32_t, const T *, T *, T *);

// A library function for one element type: the `data` that NumPy passes to the loop.
struct Variant {
  PyUFuncGenericFunction loop;
  char type;  // NumPy's letter of the element
  void (*function)();
  void (*of_number)();  // the form with one second operand for all elements, or null
  // The function on dense arrays of at least one element. @return whether no element had an error
  bool (*dense)(const Variant &variant, npy_intp n, char *const *data);
  unsigned collected;  // statuses, bit by bit; 0 for a function that has none
  unsigned reported;   // those that become NumPy's errors
  bool by_flags;       // the function raises floating-point flags by itself
};

// Bytes of a block. Three of them, and as much again of what they are gathered from, lie in 32 KiB.
inline constexpr npy_intp block_bytes = 4096;
// The longest piece of a dense vector: the library counts in 32 bits.
inline constexpr npy_intp longest_piece = npy_intp{1} << 30;

template <class T>
struct Operand {
  char *at;
  npy_intp stride;
  bool is_dense;
  T *block;

  void gather(npy_intp n) const {
    for (npy_intp i = 0; i < n; ++i) block[i] = *reinterpret_cast<const T *>(at + i * stride);
  }
  void scatter(npy_intp n) const {
    for (npy_intp i = 0; i < n; ++i) *reinterpret_cast<T *>(at + i * stride) = block[i];
  }
  T *data() const { return is_dense ? reinterpret_cast<T *>(at) : block; }
};

// Whether two operands of n elements of one size touch the same memory other than element by element.
template <class T>
bool overlap(const Operand<T> &a, const Operand<T> &b, npy_intp n) {
  if (a.at == b.at && a.stride == b.stride && a.stride != 0) return false;
  const auto ends = [n](const Operand<T> &operand) {
    char *last = operand.at + (n - 1) * operand.stride;
    return std::pair{std::min(operand.at, last), std::max(operand.at, last) + sizeof(T)};
  };
  const auto [a_begin, a_end] = ends(a);
  const auto [b_begin, b_end] = ends(b);
  return a_begin < b_end && b_begin < a_end;
}

// Whether an element of `in` is the result of an earlier step, as in reduce and accumulate.
template <class T>
bool depends(const Operand<T> &in, const Operand<T> &out, npy_intp n) {
  if (out.stride == 0) return in.at == out.at;
  if (in.stride != out.stride) return false;
  const npy_intp steps = (out.at - in.at) / out.stride;
  return steps > 0 && steps < n;
}

template <class T, int inputs, int outputs>
void call(const Variant &variant, npy_intp count, T *const *p, bool second_is_number) {
  const auto n = static_cast<int32_t>(count);
  if constexpr (outputs == 2) {
    reinterpret_cast<ToTwo<T>>(variant.function)(n, p[0], p[1], p[2]);
  } else if constexpr (inputs == 1) {
    reinterpret_cast<Unary<T>>(variant.function)(n, p[0], p[1]);
  } else if (second_is_number) {
    reinterpret_cast<OfNumber<T>>(variant.of_number)(n, p[0], *p[1], p[2]);
  } else {
    reinterpret_cast<Binary<T>>(variant.function)(n, p[0], p[1], p[2]);
  }
}

template <class T, int inputs, int outputs>
bool dense(const Variant &variant, npy_intp n, char *const *data) {
  T *p[inputs + outputs];
  for (int k = 0; k < inputs + outputs; ++k) p[k] = reinterpret_cast<T *>(data[k]);
  if (variant.by_flags) std::feclearexcept(FE_ALL_EXCEPT);
  Collecting collecting(variant.collected);
  call<T, inputs, outputs>(variant, n, p, false);
  const bool no_status = (collecting.finish() & variant.reported) == 0;
  return no_status && (!variant.by_flags || !std::fetestexcept(FE_ALL_EXCEPT & ~FE_INEXACT));
}

template <class T, int inputs, int outputs>
void loop(char **arrays, const npy_intp *dimensions, const npy_intp *strides, void *data) {
  constexpr int operands = inputs + outputs;
  constexpr npy_intp block_length = block_bytes / sizeof(T);
  const auto &variant = *static_cast<const Variant *>(data);
  const npy_intp n = dimensions[0];
  if (n <= 0) return;

  alignas(64) char memory[operands][block_bytes];  // T may have a constructor: raw bytes
  Operand<T> operand[operands];
  bool all_dense = true, in_steps = false;
  for (int k = 0; k < operands; ++k) {
    operand[k] = {arrays[k], strides[k], strides[k] == sizeof(T) || n == 1, reinterpret_cast<T *>(memory[k])};
  }
  for (int in = 0; in < inputs; ++in) {
    for (int out = inputs; out < operands; ++out) {
      if (!overlap(operand[in], operand[out], n)) continue;
      operand[in].is_dense = false;
      in_steps |= depends(operand[in], operand[out], n);
    }
  }

  // An operand of stride 0 is one number: it fills its block once, or goes to a function that takes a
  // number.
  bool is_number[operands] = {};
  bool second_is_number = false;
  for (int k = 0; k < inputs && n > 1 && !in_steps; ++k) {
    is_number[k] = strides[k] == 0;
    if (!is_number[k]) continue;
    second_is_number |= k == 1 && variant.of_number;
    operand[k].gather(second_is_number ? 1 : std::min(n, block_length));
  }
  for (int k = 0; k < operands; ++k) all_dense &= operand[k].is_dense || (k == 1 && second_is_number);

  const npy_intp piece = in_steps ? 1 : all_dense ? longest_piece : block_length;
  Collecting collecting(variant.collected);
  for (npy_intp done = 0; done < n; done += piece) {
    const npy_intp count = std::min(piece, n - done);
    T *p[operands];
    for (int k = 0; k < operands; ++k) {
      if (k < inputs && !operand[k].is_dense && !is_number[k]) operand[k].gather(count);
      p[k] = operand[k].data();
    }
    call<T, inputs, outputs>(variant, count, p, second_is_number);
    for (int k = 0; k < operands; ++k) {
      if (k >= inputs && !operand[k].is_dense) operand[k].scatter(count);
      operand[k].at += count * operand[k].stride;
    }
  }
  const unsigned statuses = collecting.finish() & variant.reported;
  if (statuses) raise(statuses);
}

}  // namespace qkr::ufuncs
