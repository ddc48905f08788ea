// 3x3 matrices modulo m, by whose powers a recurrence of order three skips ahead.
#include <qkr/streams_generators.h>
#include <string.h>

#include "streams/generators/skips.h"

namespace {

constexpr int order = 3;

// A sum of two residues is below twice the modulus.
uint64_t inner_product(const uint32_t *a, const uint32_t *b, int stride, uint32_t modulus) {
  uint64_t sum = 0;
  for (int k = 0; k < order; ++k) {
    sum += static_cast<uint64_t>(a[k]) * b[k * stride] % modulus;
    if (sum >= modulus) sum -= modulus;
  }
  return sum;
}

void power(uint32_t *matrix, uint32_t *result, uint32_t modulus, uint64_t exponent) {
  constexpr uint32_t identity[order * order] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  memcpy(result, identity, sizeof identity);
  for (; exponent != 0; exponent >>= 1) {
    if (exponent & 1) __vxsiMatr3x3MulMod(matrix, result, result, modulus);
    __vxsiMatr3x3MulMod(matrix, matrix, matrix, modulus);
  }
}

}  // namespace

void qkr::advance_recurrence(uint32_t *vector, const uint32_t *coefficients, uint32_t modulus,
                             uint64_t steps) {
  uint32_t companion[order * order] = {0, 1, 0, 0, 0, 1, coefficients[2], coefficients[1], coefficients[0]};
  uint32_t advanced[order * order];
  power(companion, advanced, modulus, steps);
  __vxsiMatr3x3VectMulMod(advanced, vector, vector, modulus);
}

extern "C" {

void __vxsiMatr3x3MulMod(const uint32_t *a, const uint32_t *b, uint32_t *result, uint32_t modulus) {
  uint64_t product[order * order];
  for (int i = 0; i < order; ++i) {
    for (int j = 0; j < order; ++j) {
      product[order * i + j] = inner_product(a + order * i, b + j, order, modulus);
    }
  }
  for (int i = 0; i < order * order; ++i) result[i] = static_cast<uint32_t>(product[i]);
}

void __vxsiMatr3x3VectMulMod(const uint32_t *matrix, const uint32_t *vector, uint32_t *result,
                             uint32_t modulus) {
  uint64_t product[order];
  for (int i = 0; i < order; ++i) product[i] = inner_product(matrix + order * i, vector, 1, modulus);
  for (int i = 0; i < order; ++i) result[i] = static_cast<uint32_t>(product[i]);
}

void __vxsiMatr3x3PowMod(uint32_t *matrix, uint32_t *result, uint32_t modulus, uint32_t exponent) {
  power(matrix, result, modulus, exponent);
}

void __vxsiVect3PowMod(uint32_t *vector, const uint32_t *coefficients, uint32_t modulus, uint32_t exponent) {
  qkr::advance_recurrence(vector, coefficients, modulus, exponent);
}

}  // extern "C"
