// Committed descriptors, and a cache of them.
//
// Whoever computes takes a descriptor out of the cache, or makes one, and gives it back. So no descriptor
// serves two threads at a time, and nothing is locked while it computes.
#pragma once

#include <cstddef>
#include <qkr/dft.h>

namespace qkr::fft {

inline constexpr int most_dimensions = 3;  // of a descriptor

// All that distinguishes one descriptor from another. Compared as words: nothing but int32_t before the
// scales.
struct Key {
  int32_t precision, domain, dimensions, count;
  int32_t lengths[most_dimensions];
  int32_t input_strides[most_dimensions], output_strides[most_dimensions];
  int32_t input_distance, output_distance;
  int32_t team;  // 1: the library may fork one; 0: its runtime is not even loaded
  double forward_scale, backward_scale;
};

struct Plan {
  Key key;
  DftDescriptor *descriptor;
  Plan *next;  // in the cache: less recently used
};

// To be called once the module is loaded: a fork then waits until no other thread is inside the cache, whose
// lock would stay closed in the child, and its list half changed. False without memory for that.
bool keep_cache_whole_in_forks();

// A plan for the key; null with the library's code in *code.
Plan *take(const Key &key, int32_t *code);
void give_back(Plan *plan);

struct CacheState {
  size_t plans, most_plans, points, most_points;
};
CacheState cache_state();
// Sets the bounds, and drops what exceeds them.
void limit_cache(size_t most_plans, size_t most_points);

}  // namespace qkr::fft
