// Runs something at each vector width that this processor supports.
#pragma once

#include "simd/level.h"

namespace qkr::tests {

constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};

// body(name of the level)
template <class Body>
void for_each_level(Body body) {
  const Level widest = supported_level(), before = level();
  for (int i = 0; i <= static_cast<int>(widest); ++i) {
    force_level(static_cast<Level>(i));
    body(level_names[i]);
  }
  force_level(before);
}

}  // namespace qkr::tests
