// The operands of the direct method: which of them lends the taps (see sums.h), as dense arrays in the order
// and precision that it computes in.
#pragma once

#include "convcorr/packing.h"
#include "convcorr/sums.h"

namespace qkr::convcorr {

// Element k of the result is number q = start + k decimation of a convolution, if a correlation is taken for
// one with x reversed, which begins nx - 1 elements earlier. In terms of y, in ascending order, that is the
// sum of y[m] s[q - m], where s is x in the order of a convolution; in terms of x, that of t[m] y[q - (nx -
// 1) + m], where t is x in the order of a correlation.
template <class Form>
class DirectOperands {
  using Data = typename Form::Data;
  using Real = typename Form::Real;
  DenseOperand<Real> x_, y_;
  DenseResult<Real> z_;
  Layout<Data> z_layout_;

 public:
  SumLine line[largest_dims];  // each axis as if it were the only one
  const bool y_lends_taps;

  DirectOperands(const Problem &problem, const Operands<Form> &operands)
      : z_layout_(operands.z, problem, &Axis::z),
        y_lends_taps(problem.axis[0].y.count < problem.axis[0].x.count) {
    const bool convolves = problem.kind == Kind::convolution;
    for (int d = 0; d < problem.dims; ++d) {
      const Axis &axis = problem.axis[d];
      const int64_t x = axis.x.count, y = axis.y.count;
      const int64_t number = axis.start + (convolves ? 0 : x - 1);
      if (y_lends_taps) line[d] = {y, x, number, axis.decimation, true, axis.z.count};
      else line[d] = {x, y, number - (x - 1), axis.decimation, false, axis.z.count};
    }
  }

  bool make(const Problem &problem, const Operands<Form> &operands) {
    Layout<const Data> x(operands.x, problem, &Axis::x), y(operands.y, problem, &Axis::y);
    if ((problem.kind == Kind::convolution) != y_lends_taps) x.reverse();
    return x_.make(x) && y_.make(y) && z_.make(z_layout_);
  }
  const Real *taps() const { return y_lends_taps ? y_.numbers() : x_.numbers(); }
  const Real *signal() const { return y_lends_taps ? x_.numbers() : y_.numbers(); }
  Real *result() const { return z_.numbers(); }
  void give_back() const { z_.give_back(z_layout_); }
};

inline void take_sums(const TapRow<float> *rows, int64_t count, const SumLine &line, float *z) {
  convcorr_sums_32f(rows, count, &line, z);
}
inline void take_sums(const TapRow<double> *rows, int64_t count, const SumLine &line, double *z) {
  convcorr_sums_64f(rows, count, &line, z);
}

}  // namespace qkr::convcorr
