// The core of the direct method: sums of products along dimension 0, compiled for each vector width.
//
// One operand lends the taps, the other the signal. Output k of a line is
//
//     sum over rows, sum over m of taps[m] signal[place + m]    (ascending)
//     sum over rows, sum over m of taps[m] signal[place - m]    (descending)
//
// with place = first + k step, the rows in their order, m ascending, terms outside of the signal left out.
// Which operand is which changes neither the products nor their order, so that the shorter one can lend the
// taps: outputs that lie side by side then meet it at the same terms.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qkr::convcorr {

template <class T>
struct TapRow {
  const T *taps, *signal;
};

struct SumLine {
  int64_t taps, signal;  // numbers of each row
  int64_t first, step;
  bool descending;
  int64_t outputs;
};

}  // namespace qkr::convcorr

extern "C" {
void convcorr_sums_32f(const qkr::convcorr::TapRow<float> *rows, int64_t count,
                       const qkr::convcorr::SumLine *line, float *z);
void convcorr_sums_64f(const qkr::convcorr::TapRow<double> *rows, int64_t count,
                       const qkr::convcorr::SumLine *line, double *z);
}
