// Transforms of some axes of dense arrays.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qkr::fft {

inline constexpr int most_axes = 32;  // NumPy's bound

enum class Kind {
  complex,       // in place, in `output`
  real_forward,  // from real `input` to the half spectrum `output`
  real_backward  // from the half spectrum `input` to real `output`
};

// Two dense C arrays of the same dimensions, which differ in length only along the last of `axes`.
struct Request {
  Kind kind;
  bool forward, is_double;
  double forward_scale, backward_scale;
  int workers;  // 0: this thread, with a team of the library's if the process allows one
  int dimensions;
  const ptrdiff_t *input_shape, *output_shape;  // the same for Kind::complex
  int axis_count;
  const int *axes;  // of those, the last is halved in a half spectrum
  char *input, *output;
};

// @return the library's code. At most three axes at a time: the caller splits.
int32_t transform(const Request &request);

// Completes the spectra of real signals, whose first halves stand in `spectrum`: those of its last axis,
// which is among `axes`.
void complete(bool is_double, int dimensions, const ptrdiff_t *shape, int axis_count, const int *axes,
              char *spectrum);

}  // namespace qkr::fft
