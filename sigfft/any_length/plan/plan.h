// Plans of any length: which of five routes a length takes, and the tables of that route.
#pragma once

#include "sigfft/arrays/memory.h"
#include "sigfft/plan/plan.h"

namespace qkr::sigfft {

// Identifiers of plans; those of power-of-two plans precede them.
enum AnyLengthId : int32_t {
  id_any_C_32fc = 13,
  id_any_C_32f,
  id_any_R_32f,
  id_any_C_64fc,
  id_any_C_64f,
  id_any_R_64f,
  id_out_of_order_C_32fc = 0x4C4D535E,
  id_out_of_order_C_64fc,
};

enum class Route : int32_t { fixed, power_of_two, factors, chirp, direct };

// The points exp(-2 pi i k / P) for k below P, then twice in a row the numbers 2k: the place of a point by
// its index, where a sum of two indices below P needs no remainder to be found.
template <class T>
struct SmallCircle {
  const T *points;
  const uint32_t *places;
};

// One stage of the factors route combines `factor` transforms of `rest` points, `count` times in a row where
// stages run one after the other over a short array.
template <class T>
struct Stage {
  int32_t factor, rest, stride, count;
  T *circle;    // small circle of a factor above 5, else null; the stage before may share it
  T *twiddles;  // of the columns, as twiddle_tables.h tells
};

constexpr int most_stages = 20;  // each has a factor of at least 2

// Subtransforms of at least so many points run by themselves, depth first, and those below breadth first.
constexpr int32_t long_stage = 501;
// From this length on an out-of-order plan leaves the spectrum in the order of its stages.
constexpr int32_t first_out_of_order = 5001;

// A finished plan is read-only. `id` tells its kind and is 0 once it is released; tables that a route does
// not use are null. A plan for real signals of even length keeps those of the complex transform of half the
// length.
template <class T>
struct AnyLengthPlan {
  int32_t id, length;
  int32_t forward_norm, inverse_norm;  // 1: that direction multiplies by norm_factor
  T norm_factor;
  int32_t hint;
  int32_t work_bytes;  // of the work buffer, 0 for none
  Route route;
  int32_t complex_length;  // of the transform that the route does
  int32_t out_of_order;    // 1: the spectrum comes in the order of the stages
  int32_t chirp_length;
  T *circle;                       // direct route
  T *forward_real, *inverse_real;  // even real length: of the recombination
  T *chirp, *chirp_spectrum;
  Plan<T> *engine;  // the power-of-two plan of the route of that name, and of the chirp route

  // The factors route: stage `stages` only holds the last factor, that of the transforms before stage
  // stages - 1, and its circle.
  int32_t stages;
  uint32_t *places;  // by column of these transforms, where its points go, in numbers
  Stage<T> stage[most_stages + 1];

  int32_t last_factor() const { return stage[stages].factor; }
};

template <class T>
SmallCircle<T> small_circle(const T *table, int32_t points) {
  return {table, (const uint32_t *)(table + 2 * points)};
}

constexpr bool is_real(int32_t id) {
  return id == id_R_32f || id == id_R_64f || id == id_any_R_32f || id == id_any_R_64f;
}

}  // namespace qkr::sigfft
