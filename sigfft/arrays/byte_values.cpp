#include "sigfft/arrays/byte_values.h"

namespace {

constexpr int first = -128, count = 384;

struct Values {
  float number[count];
  constexpr Values() : number() {
    for (int i = 0; i < count; ++i) number[i] = (float)(first + i);
  }
};
constexpr Values values;

}  // namespace

constinit const float *const byte_values = values.number - first;
