// Blocks of a quasi-random sequence. There are four ways to the same words: points of few dimensions side by
// side in vectors; of up to 40 dimensions one or several after the other, held in registers; of more
// dimensions the same from memory; and a few points without any preparation.
//
// 2^k points whose first index is a multiple of 2^k are a group. From it to the next one all its points
// change alike, so it is itself a point of a digital sequence, in 2^k times as many dimensions: they fill
// vectors where one point would not.
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
  if (dim == 1) {
    uint32_t x = *s.x, seq = s.position->seq;
    for (; points > 0; --points) {
      output.put_one(out++, x);
      x ^= s.rows[next_direction(seq++)];
    }
    *s.x = x, s.position->seq = seq;
  }
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

// The current group of the first `dim` dimensions, of up to `most` words, and what leads from one to the
// next. Where vectors are stored, the last one reaches beyond by less than its size.
template <int most>
struct Groups {
  typedef uint32_t Four __attribute__((vector_size(16)));

  const Sequence &s;
  const int dim, points_log;  // k
  const int points, width;    // of a group
  uint32_t first;             // index of the group's first point
  alignas(u32) uint32_t words[most + lanes];
  alignas(u32) uint32_t changes[direction_numbers][most + lanes];  // below k: direction numbers of a point

  // For the next `count` points.
  QKR_INLINE Groups(const Sequence &sequence, int dimensions, int log, uint32_t count)
      : s(sequence), dim(dimensions), points_log(log), points(1 << log), width(dim << log) {
    const uint32_t seq = s.position->seq, p = seq & (uint32_t)(points - 1);
    for (int c = 0; c < direction_numbers; c += 4) {
      if (c <= points_log || seq >> c != (seq + count) >> c) copy_four(c);
    }
    first = seq - p;
    for_each_vector([&](int j) {
      u32 x;
      load(s.x + j, x);
      for (uint32_t left = gray_code(p); left; left &= left - 1) x = changed(x, __builtin_ctz(left), j);
      for (int i = 0; i < points; x = changed(x, __builtin_ctz(++i), j)) store(words + i * dim + j, x);
    });
  }
  QKR_INLINE u32 changed(u32 x, int c, int j) const {
    u32 change;
    load(changes[c] + j, change);
    return x ^ change;
  }
  // The last one first, as it reaches into the next point.
  template <class Function>
  QKR_INLINE void for_each_vector(Function function) const {
    for (int j = (dim - 1) / lanes * lanes; j >= 0; j -= lanes) function(j);
  }

  // What leads on from the group that begins with point `begin`.
  QKR_INLINE const uint32_t *change_from(uint32_t begin) const {
    return changes[next_direction(begin + (uint32_t)(points - 1))];
  }
  // From the rows, direction numbers c to c + 3.
  QKR_NOINLINE void copy_four(int c) {
    for (int j = 0; j < dim; j += 4) {
      const auto row = [&](int i) {  // the last one again where there are no four any more
        Four numbers;
        memcpy(&numbers, s.row(j + i < dim ? j + i : dim - 1) + c, sizeof numbers);
        return numbers;
      };
      const Four p = row(0), q = row(1), r = row(2), t = row(3);
      const Four pq = __builtin_shufflevector(p, q, 0, 4, 1, 5),
                 PQ = __builtin_shufflevector(p, q, 2, 6, 3, 7);
      const Four rt = __builtin_shufflevector(r, t, 0, 4, 1, 5),
                 RT = __builtin_shufflevector(r, t, 2, 6, 3, 7);
      const auto put_four = [&](int i, Four numbers) {
        memcpy(changes[c + i] + j, &numbers, sizeof numbers);
      };
      put_four(0, __builtin_shufflevector(pq, rt, 0, 1, 4, 5));
      put_four(1, __builtin_shufflevector(pq, rt, 2, 3, 6, 7));
      put_four(2, __builtin_shufflevector(PQ, RT, 0, 1, 4, 5));
      put_four(3, __builtin_shufflevector(PQ, RT, 2, 3, 6, 7));
    }
    if (points_log == 0) return;
    for (int i = c < points_log ? points_log : c; i < c + 4; ++i) copy_to_all_points(changes[i]);
  }
  // With direction number k - 1, which changes from every group to the next.
  QKR_INLINE void copy_to_all_points(uint32_t *change) const {
    for_each_vector([&](int j) {
      u32 own;
      load(change + j, own);
      own = changed(own, points_log - 1, j);
      for (int i = 0; i < points; ++i) store(change + i * dim + j, own);
    });
  }

  QKR_INLINE void pass_over_one() {
    const uint32_t *change = change_from(first);
    first += points;
    for (int j = 0; j < width; j += lanes) {
      u32 x, difference;
      load(words + j, x);
      load(change + j, difference);
      store(words + j, x ^ difference);
    }
  }
  // Leaves point p of the group in the stream.
  QKR_INLINE void keep_point(int p) const {
    memcpy(s.x, words + p * dim, sizeof *words * (size_t)dim);
    s.position->seq = first + (uint32_t)p;
  }
};

constexpr int most_vectors = QKR_BASELINE ? 10 : 8;  // in registers

// As many points as use most of their vectors, but several groups of them.
QKR_INLINE int points_log_of_group(int32_t dim, int32_t points) {
  const auto wastes = [](int width) { return 5 * (-width & (lanes - 1)) >= width; };
  int log = 0;
  while (dim < 2 * lanes && wastes(dim << log) && dim << (log + 1) <= most_vectors * lanes &&
         points >> (log + 5) > 0) {
    ++log;
  }
  return log;
}

// Whole points. A group's last vector reaches into the place of later points, which are written after it.
template <int vectors, class Output>
QKR_NOINLINE void groups_in_registers(const Sequence &s, int32_t dim, int points_log, int32_t points,
                                      Element<Output> *out, Output output) {
  Groups<vectors * lanes> group(s, dim, points_log, (uint32_t)points);
  const int32_t size = group.points;
  int32_t p = (int32_t)(s.position->seq - group.first);
  const auto part_of_group = [&] {
    const int32_t left = size - p, count = points < left ? points : left;
    emit_words(group.words + p * dim, count * dim, out, output);
    out += count * dim;
    points -= count;
    p += count;
    if (p == size) group.pass_over_one(), p = 0;
  };
  if (p > 0) part_of_group();
  const int32_t last = size + (vectors * lanes - group.width + dim - 1) / dim;  // so many must be left
  if (points >= last) {
    uint32_t first = group.first;
    u32 x[vectors];
    for_constants<vectors>([&](auto t) QKR_LAMBDA { load(group.words + t * lanes, x[t]); });
    for (const int width = group.width; points >= last; points -= size, first += size, out += width) {
      for_constants<vectors>([&](auto t) QKR_LAMBDA { put(output, out + t * lanes, x[t]); });
      const uint32_t *change = group.change_from(first);
      for_constants<vectors>([&](auto t) QKR_LAMBDA {
        u32 difference;
        load(change + t * lanes, difference);
        x[t] ^= difference;
      });
    }
    for_constants<vectors>([&](auto t) QKR_LAMBDA { store(group.words + t * lanes, x[t]); });
    group.first = first;
  }
  while (points > 0) part_of_group();
  group.keep_point(p);
}

// `count` points, `stride` numbers apart, each vector in a register for as long. The last one overlaps with
// the one before, so that nothing is written beyond a point.
template <int count, class Group, class Output>
QKR_INLINE void points_of_strip(Group &point, ptrdiff_t stride, Element<Output> *out, const Output &output) {
  const uint32_t *change[count];
  for_constants<count>([&](auto i) QKR_LAMBDA { change[i] = point.change_from(point.first++); });
  const auto put_vectors = [&](int32_t j, u32 x) QKR_LAMBDA {
    for_constants<count>([&](auto i) QKR_LAMBDA {
      put(output, out + i * stride + j, x);
      u32 difference;
      load(change[i] + j, difference);
      x ^= difference;
    });
    return x;
  };
  uint32_t *words = point.words;
  const int32_t last = point.width - lanes;
  u32 x, x_last;
  load(words + last, x_last);
  x_last = put_vectors(last, x_last);
  for (int32_t j = 0; j < last; j += lanes) {
    load(words + j, x);
    store(words + j, put_vectors(j, x));
  }
  store(words + last, x_last);
}

// `dim` of the dimensions of points that lie `stride` numbers apart.
template <int most, class Output>
QKR_NOINLINE void strip_of_points(const Sequence &s, int32_t dim, ptrdiff_t stride, int32_t points,
                                  Element<Output> *out, Output output) {
  Groups<most> point(s, dim, 0, (uint32_t)points);
  for (; points >= 4; points -= 4, out += 4 * stride) points_of_strip<4>(point, stride, out, output);
  for (; points > 0; --points, out += stride) points_of_strip<1>(point, stride, out, output);
  point.keep_point(0);
}

template <class Output>
QKR_NOINLINE void points_in_strips(const Sequence &s, int32_t dim, int32_t points, Element<Output> *out,
                                   Output output) {
  constexpr int32_t most = 320;
  const uint32_t seq = s.position->seq;
  for (int32_t strips = (dim + most - 1) / most, begin = 0; strips > 0; --strips) {
    const int32_t count = (dim - begin) / strips;
    s.position->seq = seq;
    strip_of_points<most>(s.from(begin), count, dim, points, out + begin, output);
    begin += count;
  }
}

// Points of the first `dim` dimensions.
template <class Output>
QKR_INLINE void draw_points(const Sequence &s, int32_t dim, int32_t points, Element<Output> *out,
                            Output output) {
  constexpr int32_t few_dimensions = lanes / 2, in_registers = 40;
  const int32_t few_points = dim <= in_registers ? 8 : 4;
  if (points < few_points || points * dim < 32) {  // preparation would cost more than it saves
    single_points(s, dim, points, out, output);
  } else if (dim <= few_dimensions) {
    for_constants<few_dimensions>([&](auto less) {
      if (dim == less + 1) points_side_by_side<less + 1>(s, points, out, output);
    });
  } else if (dim <= in_registers) {
    const int log = points_log_of_group(dim, points);
    for_constants<most_vectors>([&](auto less) {
      if (((dim << log) + lanes - 1) / lanes == less + 1) {
        groups_in_registers<less + 1>(s, dim, log, points, out, output);
      }
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
