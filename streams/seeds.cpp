// Seed words for many streams, by SplitMix64: G. L. Steele, D. Lea and C. H. Flood, Fast splittable
// pseudorandom number generators, OOPSLA (2014) 453.
#include <qkr/streams.h>

namespace {

constexpr uint64_t step = 0x9e3779b97f4a7c15;  // odd, near 2^64 over the golden ratio

// One to one.
uint64_t mixed(uint64_t z) {
  z = (z ^ z >> 30) * 0xbf58476d1ce4e5b9;
  z = (z ^ z >> 27) * 0x94d049bb133111eb;
  return z ^ z >> 31;
}

}  // namespace

// The starting points of two indices of one seed, or of two seeds at one index, differ, as all steps to them
// are one to one.
extern "C" void __vxsSeedWords(uint64_t seed, uint64_t index, int32_t n, uint32_t *words) {
  uint64_t state = mixed(mixed(seed + step) + (index + 1) * step), z = 0;
  for (int32_t i = 0; i < n; ++i) {
    if (i % 2 == 0) z = mixed(state += step);
    words[i] = (uint32_t)(i % 2 == 0 ? z : z >> 32);
  }
}
