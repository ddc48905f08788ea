// Loops over arrays, compiled once for each vector width: they carry the vector functions of the peer
// libraries, and say the same in plain C++ where the compiler can vectorise that.
#pragma once

#include <stdint.h>

namespace qkr::bench {

// One implementation at work on one set of arrays.
template <class T>
struct Task {
  int32_t n;
  const T *a, *b;
  T *r, *q;
  const int32_t *integers;  // mask or index of the moves
  const void *f, *g;        // entries of a peer library
};
template <class T>
using Loop = void (*)(const Task<T> &);

enum class Shape { unary, binary, two_results, move };
constexpr int32_t stride = 2;  // of PackI and UnpackI

template <class T>
struct PlainLoop {
  const char *name;
  Loop<T> run;
};

template <class T>
struct Loops {
  int width;                      // elements of a vector
  Loop<T> unary, binary;          // f takes vectors and returns one
  Loop<T> two_results, f_then_g;  // f returns two vectors; f and g return one result each
  const PlainLoop<T> *plain;      // by the C name of the function; ends with a null name
};

}  // namespace qkr::bench

#define QKR_DECLARE_LOOPS(level)             \
  namespace qkr::level {                     \
  extern const bench::Loops<double> loops_d; \
  extern const bench::Loops<float> loops_s;  \
  }
QKR_DECLARE_LOOPS(sse2)
QKR_DECLARE_LOOPS(avx2)
QKR_DECLARE_LOOPS(avx512)
#undef QKR_DECLARE_LOOPS
