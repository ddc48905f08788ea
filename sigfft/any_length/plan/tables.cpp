// The tables of plans of any length, all drawn from one circle.
#include "sigfft/any_length/plan/tables.h"

#include "sigfft/plan/circle.h"
#include "sigfft/plan/decomposition.h"

namespace qkr::sigfft {
namespace {

template <class T>
T *allocate_numbers(size_t count) {
  return (T *)allocate_block(2 * count * sizeof(T));
}

// Values of two kinds in groups, from k = 1 on: so many of the first kind, then of the second.
template <class T, class First, class Second>
T *make_real_table(size_t length, First first, Second second) {
  const size_t groups = (length / 4 + group<T> - 1) / group<T>;
  T *const table = (T *)allocate_block((2 * groups * group<T> + 1) * sizeof(T));
  if (!table) return nullptr;
  for (size_t k = 0; k < groups * group<T>; ++k) {
    T *const place = table + k / group<T> * 2 * group<T> + k % group<T>;
    place[0] = first(k + 1);
    place[group<T>] = second(k + 1);
  }
  return table;
}

}  // namespace

template <class T>
T *make_circle(size_t length) {
  T *const circle = allocate_numbers<T>(length);
  if (circle) fill_circle(length, circle);
  return circle;
}

template <class T>
T *make_small_circle(int32_t points, const T *circle, size_t length) {
  T *const table = (T *)allocate_block(2 * points * (sizeof(T) + sizeof(uint32_t)));
  if (!table) return nullptr;
  const auto places = (uint32_t *)(table + 2 * points);
  const size_t step = length / points;
  for (int32_t k = 0; k < points; ++k) {
    table[2 * k] = circle[2 * k * step];
    table[2 * k + 1] = circle[2 * k * step + 1];
    places[k] = places[k + points] = 2 * k;
  }
  return table;
}

template <class T>
uint32_t *make_places(const AnyLengthPlan<T> &plan) {
  const size_t columns = (size_t)(plan.complex_length / plan.last_factor());
  const auto places = (uint32_t *)allocate_block(columns * sizeof(uint32_t));
  if (!places) return nullptr;
  places[0] = 0;
  for (int i = 0; i < plan.stages; ++i) {
    const Stage<T> &stage = plan.stage[i];
    for (int32_t digit = 1; digit < stage.factor; ++digit)
      for (int32_t j = 0; j < stage.stride; ++j)
        places[digit * stage.stride + j] = places[j] + (uint32_t)(digit * stage.rest);
  }
  return places;
}

template <class T>
T *make_twiddles(const Stage<T> &stage, int32_t first_column, int32_t columns, const T *circle,
                 size_t length) {
  constexpr int32_t together = 64 / (2 * sizeof(T));
  const int32_t filled = (columns + together - 1) / together * together;
  T *const table = allocate_numbers<T>((size_t)(stage.factor - 1) * filled + 1);
  if (!table) return nullptr;
  const size_t step = length / ((size_t)stage.factor * stage.rest);
  T *t = table;
  for (int32_t start = 0; start < columns; start += together)
    for (size_t m = 1; m < (size_t)stage.factor; ++m)
      for (int32_t j = start; j < start + together; ++j, t += 2) {
        const T *const point = circle + (j < columns ? 2 * (m * (j + first_column) * step) : 0);
        t[0] = point[0], t[1] = point[1];
      }
  t[0] = t[1] = 0;
  return table;
}

template <class T>
T *make_block_twiddles(const Stage<T> &stage, const uint32_t *order, const T *circle, size_t length) {
  T *const table = allocate_numbers<T>((size_t)(stage.factor - 1) * stage.rest);
  if (!table) return nullptr;
  const size_t step = length / ((size_t)stage.factor * stage.rest);
  T *t = table;
  for (int32_t block = 0; block < stage.rest; ++block)
    for (size_t m = 1; m < (size_t)stage.factor; ++m, t += 2) {
      const T *const point = circle + 2 * (m * order[block] * step);
      t[0] = point[0], t[1] = point[1];
    }
  return table;
}

template <class T>
T *make_forward_real(size_t length, const T *circle) {
  return make_real_table<T>(
      length, [=](size_t k) { return T(0.5) * circle[2 * k]; },
      [=](size_t k) { return T(0.5) + T(0.5) * circle[2 * k + 1]; });
}

template <class T>
T *make_inverse_real(size_t length, const T *circle) {
  return make_real_table<T>(
      length, [=](size_t k) { return circle[2 * k]; }, [=](size_t k) { return circle[2 * k + 1]; });
}

template <class T>
T *make_chirp(size_t length, const T *double_circle) {
  T *const chirp = allocate_numbers<T>(length);
  if (!chirp) return nullptr;
  // Squares grow by odd numbers, which never exceed 2 length.
  for (size_t k = 0, square = 0; k < length; ++k) {
    chirp[2 * k] = double_circle[2 * square];
    chirp[2 * k + 1] = double_circle[2 * square + 1];
    square += 2 * k + 1;
    if (square >= 2 * length) square -= 2 * length;
  }
  return chirp;
}

#define QKR_INSTANTIATE(T)                                                                \
  template T *make_circle(size_t);                                                        \
  template T *make_small_circle(int32_t, const T *, size_t);                              \
  template uint32_t *make_places(const AnyLengthPlan<T> &);                               \
  template T *make_twiddles(const Stage<T> &, int32_t, int32_t, const T *, size_t);       \
  template T *make_block_twiddles(const Stage<T> &, const uint32_t *, const T *, size_t); \
  template T *make_forward_real(size_t, const T *);                                       \
  template T *make_inverse_real(size_t, const T *);                                       \
  template T *make_chirp(size_t, const T *);
QKR_INSTANTIATE(double)
QKR_INSTANTIATE(float)

}  // namespace qkr::sigfft
