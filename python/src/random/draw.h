// A distribution as a method of Stream: name, parameters, size, dtype, out.
#pragma once

#include "random/stream.h"

namespace qkr::random {

inline constexpr int most_parameters = 4;

// Numbers from which on the GIL is released: a few microseconds.
inline constexpr npy_intp many = 500;

struct Parameter {
  const char *name;
  double value;  // unless given; NaN: it has to be given
};

// What is asked of a parameter list; text of the exception, or null.
using Check = const char *(*)(const double *p);

template <class T>
using Fill = int32_t (*)(StreamState *stream, int32_t n, T *out, const double *p);

struct Distribution {
  const char *name;
  int count;
  Parameter parameters[most_parameters];
  Check check;
  // Of real numbers:
  Fill<double> doubles;
  Fill<float> floats;
  // Of whole numbers:
  Fill<int32_t> integers;
  // Added to each, as NumPy counts some of them from 1.
  int offset;
  // Where numbers are standard ones times `unit` times one parameter plus another: the places of these two.
  double unit = 0;
  int scale_place = 0, loc_place = 0;
};

PyObject *draw(const Distribution &distribution, PyObject *self, PyObject *const *arguments, Py_ssize_t count,
               PyObject *names);

}  // namespace qkr::random
