// Blocks of a quasi-random sequence. There are four ways to the same words: points of few dimensions side by
// side in groups; of up to 40 dimensions one after the other, held in registers; of more dimensions the same
// from memory; and a few points without any preparation.
#include "streams/quasi/digital_sequence_groups.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

// Calls function(word of the point, its change to the next point) for each of the first `dim` dimensions.
template <class Function>
QKR_INLINE void for_each_change(const Sequence &s, int32_t dim, Function function) {
  const int c = next_direction(s.position->seq++);
  for (int32_t j = 0; j < dim; ++j) function(s.x[j], s.row(j)[c]);
}

// One point after the other, without preparation.
template <class Output>
QKR_NOINLINE void single_points(const Sequence &s, int32_t dim, int32_t points, Element<Output> *out,
                                Output output) {
  for (; points > 0; --points) {
    if (dim < 2 * lanes) {
      for_each_change(s, dim, [&](uint32_t &x, uint32_t change) {
        output.put_one(out++, x);
        x ^= change;
      });
    } else {
      emit_words(s.x, dim, out, output);
      for_each_change(s, dim, [](uint32_t &x, uint32_t change) { x ^= change; });
      out += dim;
    }
  }
}

// The direction numbers of some dimensions in the order of use, each one for all dimensions side by side.
// They are copied by fours when the first of these is used.
template <int width>
struct DirectionsInUse {
  typedef uint32_t Four __attribute__((vector_size(16)));

  const Sequence &s;
  const int32_t dim;
  uint32_t present = 0;  // a bit for each four
  alignas(u32) uint32_t words[direction_numbers][width];

  QKR_INLINE DirectionsInUse(const Sequence &sequence, int32_t dimensions) : s(sequence), dim(dimensions) {}

  QKR_INLINE const uint32_t *next(uint32_t seq) {
    const int c = next_direction(seq);
    if (__builtin_expect(!(present >> (c / 4) & 1), 0)) copy_four(c & ~3);
    return words[c];
  }
  QKR_NOINLINE void copy_four(int first) {
    present |= 1u << (first / 4);
    for (int32_t j = 0; j < dim; j += 4) {
      const auto row = [&](int k) {  // the last one again where there are no four any more
        Four numbers;
        memcpy(&numbers, s.row(j + k < dim ? j + k : dim - 1) + first, sizeof numbers);
        return numbers;
      };
      const Four a = row(0), b = row(1), c = row(2), d = row(3);
      const Four ab = __builtin_shufflevector(a, b, 0, 4, 1, 5),
                 AB = __builtin_shufflevector(a, b, 2, 6, 3, 7);
      const Four cd = __builtin_shufflevector(c, d, 0, 4, 1, 5),
                 CD = __builtin_shufflevector(c, d, 2, 6, 3, 7);
      const auto put_four = [&](int k, Four numbers) {
        memcpy(words[first + k] + j, &numbers, sizeof numbers);
      };
      put_four(0, __builtin_shufflevector(ab, cd, 0, 1, 4, 5));
      put_four(1, __builtin_shufflevector(ab, cd, 2, 3, 6, 7));
      put_four(2, __builtin_shufflevector(AB, CD, 0, 1, 4, 5));
      put_four(3, __builtin_shufflevector(AB, CD, 2, 3, 6, 7));
    }
  }
};

// Whole points of more than lanes / 2 dimensions. A point's last vector reaches into the place of the next
// point, but not beyond, and that is written after it.
template <int vectors, class Output>
QKR_NOINLINE void points_in_registers(const Sequence &s, int32_t dim, int32_t points, Element<Output> *out,
                                      Output output) {
  constexpr int whole_width = vectors * lanes;
  DirectionsInUse<whole_width> directions(s, dim);
  alignas(u32) uint32_t line[whole_width];
  uint32_t seq = s.position->seq;
  u32 x[vectors];
  store(line + whole_width - lanes, u32{});
  memcpy(line, s.x, dim * sizeof *line);
  for_constants<vectors>([&](auto t) { load(line + t * lanes, x[t]); });
  const auto to_line = [&] { for_constants<vectors>([&](auto t) { store(line + t * lanes, x[t]); }); };
  const auto next_point = [&] {
    const uint32_t *direction = directions.next(seq++);
    for_constants<vectors>([&](auto t) {
      u32 change;
      load(direction + t * lanes, change);
      x[t] ^= change;
    });
  };
  for (; points > 1; --points, out += dim) {
    for_constants<vectors>([&](auto t) { put(output, out + t * lanes, x[t]); });
    next_point();
  }
  to_line();
  emit_words(line, dim, out, output);
  next_point();
  to_line();
  memcpy(s.x, line, dim * sizeof *line);
  s.position->seq = seq;
}

// `dim` of the dimensions of points that lie `stride` numbers apart.
template <int most_vectors, class Output>
QKR_NOINLINE void strip_of_points(const Sequence &s, int32_t dim, int32_t stride, int32_t points,
                                  Element<Output> *out, Output output) {
  constexpr int most = most_vectors * lanes;
  DirectionsInUse<most> directions(s, dim);
  alignas(u32) uint32_t x[most];
  store(x + (dim - 1) / lanes * lanes, u32{});
  memcpy(x, s.x, dim * sizeof *x);
  uint32_t seq = s.position->seq;
  const auto each_vector_to_next = [&](auto before) {
    const uint32_t *direction = directions.next(seq++);
    for (int32_t j = 0; j < dim; j += lanes) {
      u32 point, change;
      load(x + j, point);
      load(direction + j, change);
      before(j, point);
      store(x + j, point ^ change);
    }
  };
  for (; points > 1; --points, out += stride) {
    each_vector_to_next([&](int32_t j, u32 point) { put(output, out + j, point); });
  }
  emit_words(x, dim, out, output);
  each_vector_to_next([](int32_t, u32) {});
  memcpy(s.x, x, dim * sizeof *x);
}

// The strip at the end first, since its overhang must be written over.
template <class Output>
QKR_NOINLINE void points_in_strips(const Sequence &s, int32_t dim, int32_t points, Element<Output> *out,
                                   Output output) {
  constexpr int32_t most_vectors = 320 / lanes;
  int32_t end = dim, vectors = (dim + lanes - 1) / lanes;
  for (int32_t strips = (vectors + most_vectors - 1) / most_vectors; strips > 0; --strips) {
    vectors -= (vectors + strips - 1) / strips;
    const int32_t begin = vectors * lanes;
    strip_of_points<most_vectors>(s.from(begin), end - begin, dim, points, out + begin, output);
    end = begin;
  }
  s.position->seq += points;
}

// Points of the first `dim` dimensions.
template <class Output>
QKR_INLINE void draw_points(const Sequence &s, int32_t dim, int32_t points, Element<Output> *out,
                            Output output) {
  constexpr int32_t few_dimensions = lanes / 2, most_vectors = (40 + lanes - 1) / lanes;
  if (points < 8 || points * dim < 32) {  // preparation would cost more than it saves
    single_points(s, dim, points, out, output);
  } else if (dim <= few_dimensions) {
    for_constants<few_dimensions>([&](auto less) {
      if (dim == less + 1) points_side_by_side<less + 1>(s, points, out, output);
    });
  } else if (dim <= most_vectors * lanes) {
    for_constants<most_vectors>([&](auto less) {
      if ((dim + lanes - 1) / lanes == less + 1) points_in_registers<less + 1>(s, dim, points, out, output);
    });
  } else {
    points_in_strips(s, dim, points, out, output);
  }
}

template <class Output>
QKR_NOINLINE int32_t draw(const Sequence &s, int32_t n, Element<Output> *out, Output output) {
  SequencePosition &at = *s.position;
  if (!s.exists()) return VXS_STATUS_BAD_ARGUMENT;
  if (n <= 0) return VXS_STATUS_OK;
  if (at.only_dim >= 0) {
    draw_points(s.from(at.only_dim), 1, n, out, output);
    return VXS_STATUS_OK;
  }
  if (at.pending > 0) {
    const int32_t count = n < at.pending ? n : at.pending;
    emit_words(s.x + at.dim - at.pending, count, out, output);
    out += count;
    n -= count;
    at.pending -= count;
    if (at.pending > 0) return VXS_STATUS_OK;
    for_each_change(s, at.dim, [](uint32_t &x, uint32_t change) { x ^= change; });
  }
  // A division would take longer than a number.
  const int32_t points = n < at.dim ? 0 : at.dim == 1 ? n : n / at.dim, rest = n - points * at.dim;
  draw_points(s, at.dim, points, out, output);
  if (rest > 0) {
    emit_words(s.x, rest, out + (n - rest), output);
    at.pending = at.dim - rest;
  }
  return VXS_STATUS_OK;
}

template <class Real>
QKR_INLINE int32_t draw_reals(const Sequence &s, int32_t n, Real *out, double scale, double shift) {
  return with_reals<Real>(scale, shift, [&](auto output) QKR_LAMBDA { return draw(s, n, out, output); });
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL

// In single precision the difference of the ends is taken before it is widened.
#define QKR_SEQUENCE_ENTRIES(G, words, reals, reals_in_single)                                               \
  QKR_ENTRY_AFTER(QKR_STAY_IF_FEW(words, (stream, n, out)), int32_t, words,                                  \
                  (StreamState * stream, int32_t n, uint32_t * out), (stream, n, out)) {                     \
    return draw(sequence_of<G>(stream), n, out, Words{});                                                    \
  }                                                                                                          \
  QKR_ENTRY_AFTER(QKR_STAY_IF_FEW(reals, (stream, n, out, a, b)), int32_t, reals,                            \
                  (StreamState * stream, int32_t n, double *out, double a, double b),                        \
                  (stream, n, out, a, b)) {                                                                  \
    return draw_reals(sequence_of<G>(stream), n, out, (b - a) * 0x1p-32, a);                                 \
  }                                                                                                          \
  QKR_ENTRY_AFTER(QKR_STAY_IF_FEW(reals_in_single, (stream, n, out, a, b)), int32_t, reals_in_single,        \
                  (StreamState * stream, int32_t n, float *out, float a, float b), (stream, n, out, a, b)) { \
    return draw_reals(sequence_of<G>(stream), n, out, (double)(b - a) * 0x1p-32, a);                         \
  }

QKR_SEQUENCE_ENTRIES(Sobol, __vxsiBRngSobol, __vxsdBRngSobol, __vxssBRngSobol)
QKR_SEQUENCE_ENTRIES(Niederreiter, __vxsiBRngNiederr, __vxsdBRngNiederr, __vxssBRngNiederr)
