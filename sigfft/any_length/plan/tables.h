// The tables of plans of any length. Each function allocates one, and returns null if that fails.
#pragma once

#include "sigfft/any_length/plan/plan.h"

namespace qkr::sigfft {

// The points exp(-2 pi i k / length), from which all tables are drawn.
template <class T>
T *make_circle(size_t length);

// Every (length / points)-th point of a circle, and the places of points by index.
template <class T>
T *make_small_circle(int32_t points, const T *circle, size_t length);

// Where the first transforms of a plan with these stages put their results.
template <class T>
uint32_t *make_places(const AnyLengthPlan<T> &plan);

// exp(-2 pi i m j / (factor rest)) for column j of a stage and m from 1 to factor - 1, for columns 0 to rest
// - 1 of a complex stage, and 1 to (rest - 1) / 2 of a real one. Columns that fill 64 bytes form a group: of
// all of them first those of m = 1, then of m = 2, and so on. The last group is filled up, and a number more
// may be read.
template <class T>
T *make_twiddles(const Stage<T> &stage, int32_t first_column, int32_t columns, const T *circle,
                 size_t length);

// The same for an out-of-order plan: block by block, `order` telling the column that a block stands for.
template <class T>
T *make_block_twiddles(const Stage<T> &stage, const uint32_t *order, const T *circle, size_t length);

// Of the recombination of a real signal of even length.
template <class T>
T *make_forward_real(size_t length, const T *circle);
template <class T>
T *make_inverse_real(size_t length, const T *circle);

// exp(-pi i k^2 / length), from the circle of twice as many points.
template <class T>
T *make_chirp(size_t length, const T *double_circle);

}  // namespace qkr::sigfft
