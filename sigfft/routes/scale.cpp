// Normalisation.
#include "sigfft/passes/scale.h"

#include "sigfft/routes/kernels.h"
#include "simd/entry.h"

QKR_ENTRY(zprs_multiply_64f, (double *data, ptrdiff_t count, double factor), (data, count, factor)) {
  multiply(data, count, factor);
}
QKR_ENTRY(zprs_multiply_32f, (float *data, ptrdiff_t count, float factor), (data, count, factor)) {
  multiply(data, count, factor);
}
