// Normalisation.
#include "sigfft/scale.h"

#include "sigfft/kernels.h"
#include "simd/entry.h"

QKR_ENTRY(w6_zprs_rbMpy1_64f, (double *data, ptrdiff_t count, double factor), (data, count, factor)) {
  multiply(data, count, factor);
}
QKR_ENTRY(w6_zprs_rbMpy1_32f, (float *data, ptrdiff_t count, float factor), (data, count, factor)) {
  multiply(data, count, factor);
}
