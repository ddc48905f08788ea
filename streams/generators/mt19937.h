// The state of MT19937, and how its words become outputs.
#pragma once

#include "streams/generators/twister.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

struct Mt19937 {
  static constexpr int words = 624, middle = 397;
  uint32_t mt[words];
  int32_t index;  // of the next word to be used
};

constexpr Tempering<11> tempering = {0x9d2c5680, 0xefc60000};

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
