// Passes that keep real and imaginary parts in registers of their own: neither a turn nor a product needs a
// swap of lanes. They serve arrays of parts, and work areas whose layout is their own affair. Views offer
//   parts<bytes>(k), set_parts(k, x)   the columns from place k on, `bytes` of each part
// and the twiddles of a pass
//   at<bytes>(k, m)    of m times the columns from k on
//   one<bytes>(k, m)   of m times column k, in all lanes
#pragma once

#include "sigfft/passes/butterfly.h"
#include "sigfft/passes/split_registers.h"
#include "sigfft/plan/decomposition.h"
#include "sigfft/plan/reversed_counter.h"

namespace qkr::QKR_SIMD_LEVEL {
namespace {

using namespace sigfft;

constexpr int widest_part = QKR_SIMD_BYTES;
template <int radix>
using Radix = std::integral_constant<int, radix>;

// A work area: as many real parts as the widest register holds, the imaginary parts of the same numbers, and
// so on.
template <class T>
struct Runs {
  using Element = T;
  static constexpr size_t length = widest_part / sizeof(T);
  T *p;

  // Where k is: `bytes` from there on lie within a run.
  template <int bytes>
  QKR_INLINE T *at(size_t k) const {
    return p + k + (bytes == widest_part ? k : k & ~(length - 1));
  }
  QKR_INLINE Runs operator+(size_t k) const { return {at<widest_part>(k)}; }
  template <int bytes>
  QKR_INLINE PartVectors<T, bytes> parts(size_t k) const {
    return {load_vector<Vector<T, bytes>>(at<bytes>(k)),
            load_vector<Vector<T, bytes>>(at<bytes>(k) + length)};
  }
  template <class V>
  QKR_INLINE void set_parts(size_t k, Parts<T, V> x) const {
    store_vector(at<sizeof(V)>(k), x.re);
    store_vector(at<sizeof(V)>(k) + length, x.im);
  }
};

// The columns of several blocks, `distance` apart, side by side in a register: for blocks of fewer columns
// than it has lanes.
template <class Area, int columns>
struct Abreast {
  using Element = typename Area::Element;
  static constexpr int block_bytes = columns * sizeof(Element);
  Area area;
  size_t distance;

  QKR_INLINE Abreast operator+(size_t k) const { return {area + k, distance}; }
  template <int bytes>
  QKR_INLINE PartVectors<Element, bytes> parts(size_t k) const {
    if constexpr (bytes == block_bytes) return area.template parts<bytes>(k);
    else
      return join<Element, bytes / 2>(parts<bytes / 2>(k),
                                      parts<bytes / 2>(k + bytes / 2 / block_bytes * distance));
  }
  template <class V>
  QKR_INLINE void set_parts(size_t k, Parts<Element, V> x) const {
    const Abreast *const to = this;
    take_apart<block_bytes>(
        x, 0, [=](int block, auto part) QKR_LAMBDA { to->area.set_parts(k + block * to->distance, part); });
  }
};

// Their twiddles.
template <class Twiddles, int columns>
struct Repeated {
  using Element = typename Twiddles::Element;
  using T = Element;
  Twiddles twiddles;

  template <int bytes>
  QKR_INLINE PartVectors<T, bytes> at(size_t k, int m) const {
    if constexpr (bytes == columns * sizeof(T)) {
      return twiddles.template at<bytes>(k, m);
    } else {
      const auto half = at<bytes / 2>(k, m);
      return join<T, bytes / 2>(half, half);
    }
  }
};

// The first pass, and with it the second where `then` is its radix, in tiles of neighbouring columns, whose
// numbers in bit-reversed order come one after the other.
template <int radix, int then, bool forward, int bytes, class Source, class Area, class Twiddles>
QKR_INLINE void split_first_tiles(Source source, Area area, size_t n, Twiddles twiddles) {
  using T = typename Source::Element;
  constexpr size_t columns = bytes / sizeof(T);
  constexpr int points = radix * then, g = group<T>, cells = points / g, lanes = bytes / 16;
  constexpr int together = cells < lanes ? cells : lanes;
  const size_t spacing = n / points, tiles = spacing / columns;
  size_t block[columns];
  ReversedCounter reversed_column(__builtin_ctz(columns));
#pragma GCC unroll 16
  for (size_t c = 0; c < columns; ++c, reversed_column.next())
    block[c] = reversed_column.value() * tiles * points;
  ReversedCounter reversed_tile(__builtin_ctzll(spacing));
  for (size_t j = 0; j < tiles; ++j, reversed_tile.next()) {
    const Source from = source + reversed_tile.value();
    Vector<T, bytes> re[points], im[points];
#pragma GCC unroll 8
    for (int u = 0; u < then; ++u)
      butterfly<radix, forward>(
          [&](int m) QKR_LAMBDA { return from.template parts<bytes>((m * then + u) * spacing); },
          [&](int k, auto y) QKR_LAMBDA { re[u * radix + k] = y.re, im[u * radix + k] = y.im; });
    if constexpr (then > 1) {
#pragma GCC unroll 8
      for (int k = 0; k < radix; ++k)
        butterfly<then, forward>(
            [&](int m) QKR_LAMBDA {
              const PartVectors<T, bytes> x = {re[m * radix + k], im[m * radix + k]};
              if (!m) return x;
              const auto w = twiddles.template one<bytes>(k, m);
              return times<forward>(x, w.re, w.im);
            },
            [&](int q, auto y) QKR_LAMBDA { re[q * radix + k] = y.re, im[q * radix + k] = y.im; });
    }
    outputs_together<points, T, bytes>(re);
    outputs_together<points, T, bytes>(im);
#pragma GCC unroll 8
    for (int first = 0; first < points; first += together * g)
#pragma GCC unroll 4
      for (int h = 0; h < g; ++h) {
        transpose_cells<together, g>(re + first + h);
        transpose_cells<together, g>(im + first + h);
#pragma GCC unroll 4
        for (int i = 0; i < together; ++i)
          take_apart<16 * together>(PartVectors<T, bytes>{re[first + i * g + h], im[first + i * g + h]}, 0,
                                    [&](int square, auto outputs) QKR_LAMBDA {
                                      const size_t place = block[(square * together + i) * g + h];
                                      area.set_parts(place + j * points + first, outputs);
                                    });
      }
  }
}
// The first pass alone, with the widest registers that the columns fill.
template <int radix, bool forward, int bytes = widest_part, class Source, class Area>
QKR_INLINE void split_first_pass(Source source, Area area, size_t n) {
  if constexpr (bytes > 16)
    if (n * sizeof(typename Source::Element) < (size_t)bytes * radix)
      return split_first_pass<radix, forward, bytes / 2>(source, area, n);
  split_first_tiles<radix, 1, forward, bytes>(source, area, n, 0);
}

// A pass over `blocks` blocks of radix times `columns` numbers that lie `step` apart: column by column, so
// that the twiddles are loaded once for all blocks.
template <int radix, bool forward, int bytes, class In, class Out, class Twiddles>
QKR_INLINE void split_butterflies(In in, Out out, size_t columns, size_t blocks, size_t step,
                                  Twiddles twiddles) {
  using T = typename Twiddles::Element;
  for (size_t k = 0; k < columns; k += bytes / sizeof(T)) {
    PartVectors<T, bytes> w[radix];
#pragma GCC unroll 8
    for (int m = 1; m < radix; ++m) w[m] = twiddles.template at<bytes>(k, m);
    // Only whole runs can be stepped over.
    constexpr bool stepping = bytes == widest_part;
    In from = stepping ? in + k : in;
    Out to = stepping ? out + k : out;
    const size_t start = stepping ? 0 : k;
    for (size_t b = 0; b < blocks; ++b, from = from + step, to = to + step)
      butterfly<radix, forward>(
          [&](int m) QKR_LAMBDA {
            const auto x = from.template parts<bytes>(start + reversed_place<radix>(m) * columns);
            return m ? times<forward>(x, w[m].re, w[m].im) : x;
          },
          [&](int q, auto y) QKR_LAMBDA { to.set_parts(start + q * columns, y); });
  }
}

// The last pass, with the widest registers that the columns fill.
template <int radix, bool forward, int bytes = widest_part, class Area, class Target, class Twiddles>
QKR_INLINE void split_last_pass(Area area, Target target, size_t columns, Twiddles twiddles) {
  using T = typename Area::Element;
  if constexpr (bytes > 4 * sizeof(T))
    if (columns * sizeof(T) < bytes)
      return split_last_pass<radix, forward, bytes / 2>(area, target, columns, twiddles);
  split_butterflies<radix, forward, bytes>(area, target, columns, 1, radix * columns, twiddles);
}

// A pass in place. Few columns go side by side, many only as many blocks together as stay in the first cache.
template <int radix, bool forward, int columns, class Area, class Twiddles>
QKR_INLINE void pass_abreast(Area area, size_t blocks, Twiddles twiddles) {
  using T = typename Area::Element;
  constexpr size_t abreast = widest_part / sizeof(T) / columns, distance = radix * columns;
  const Abreast<Area, columns> all = {area, distance};
  split_butterflies<radix, forward, widest_part>(all, all, columns, blocks / abreast, abreast * distance,
                                                 Repeated<Twiddles, columns>{twiddles});
}
template <int radix, bool forward, class Area, class Twiddles>
QKR_INLINE void split_middle_pass(Area area, size_t columns, size_t blocks, Twiddles twiddles) {
  using T = typename Area::Element;
  constexpr size_t lanes = widest_part / sizeof(T), cache = 32768;
  if constexpr (lanes > 4)
    if (columns == 4) return pass_abreast<radix, forward, 4>(area, blocks, twiddles);
  if constexpr (lanes > 8)
    if (columns == 8) return pass_abreast<radix, forward, 8>(area, blocks, twiddles);
  const size_t step = radix * columns;
  size_t together = blocks;
  while (together > 1 && together * step * 2 * sizeof(T) > cache) together /= 2;
  for (size_t b = 0; b < blocks; b += together)
    split_butterflies<radix, forward, widest_part>(area + b * step, area + b * step, columns, together, step,
                                                   twiddles);
}

// Each loop by itself, where there is much to do.
template <int radix, bool forward, class Source, class Area>
QKR_NOINLINE void first_apart(Source source, Area area, size_t n) {
  split_first_pass<radix, forward>(source, area, n);
}
template <int radix, int then, bool forward, class Source, class Area, class Twiddles>
QKR_NOINLINE void first_two_apart(Source source, Area area, size_t n, Twiddles twiddles) {
  split_first_tiles<radix, then, forward, widest_part>(source, area, n, twiddles);
}
template <int radix, bool forward, class Area, class Twiddles>
QKR_NOINLINE void middle_apart(Area area, size_t columns, size_t blocks, Twiddles twiddles) {
  split_middle_pass<radix, forward>(area, columns, blocks, twiddles);
}
template <int radix, bool forward, class Area, class Target, class Twiddles>
QKR_NOINLINE void last_apart(Area area, Target target, size_t columns, Twiddles twiddles) {
  split_last_pass<radix, forward>(area, target, columns, twiddles);
}

// All passes from p on, by which time `columns` are together; in one where the compiler knows the order.
// tables.take<radix>(columns) gives the twiddles of one pass after the other.
template <bool forward, bool in_one, class Area, class Target, class Tables>
QKR_INLINE void later_split_passes(Area area, Target target, const Passes &passes, int p, size_t columns,
                                   size_t n, Tables tables) {
#pragma GCC unroll 4
  for (; p < passes.count; ++p) {
    const size_t blocks = (n >> __builtin_ctzll(columns)) >> passes.bits[p];
    const auto pass = [&](auto radix) QKR_LAMBDA {
      const auto twiddles = tables.template take<radix()>(columns);
      if (blocks == 1) {
        if constexpr (in_one) split_last_pass<radix(), forward>(area, target, columns, twiddles);
        else last_apart<radix(), forward>(area, target, columns, twiddles);
      } else {
        if constexpr (in_one) split_middle_pass<radix(), forward>(area, columns, blocks, twiddles);
        else middle_apart<radix(), forward>(area, columns, blocks, twiddles);
      }
    };
    if (passes.bits[p] == 2) pass(Radix<4>());
    else if constexpr (Tables::largest_radix == 8) pass(Radix<8>());
    columns <<= passes.bits[p];
  }
}

// All passes of a transform.
template <bool forward, bool in_one, class Source, class Area, class Target, class Tables>
QKR_INLINE void run_split_passes(Source source, Area area, Target target, const Passes &passes, int order,
                                 Tables tables) {
  const size_t n = size_t{1} << order;
  using T = typename Area::Element;
  constexpr int lane_bits = __builtin_ctz(widest_part / sizeof(T));
  int p = 1, done = passes.bits[0];
  const auto first = [&](auto radix) QKR_LAMBDA {
    if constexpr (in_one) split_first_pass<radix(), forward>(source, area, n);
    else first_apart<radix(), forward>(source, area, n);
  };
  [[maybe_unused]] const auto first_two = [&](auto radix, auto then) QKR_LAMBDA {
    first_two_apart<radix(), then(), forward>(source, area, n, tables.template take<then()>(radix()));
  };
  // With registers enough, two passes are one where the first leaves too few columns to fill a register.
  constexpr bool fusing = widest_part == 64 && (!is_double<T> || Tables::largest_radix == 4);
  const int second = passes.bits[1];
  if (fusing && done == 2 && passes.count > 2 && order >= done + second + lane_bits) {
    if constexpr (fusing) {
      if (second == 2) first_two(Radix<4>(), Radix<4>());
      else if constexpr (Tables::largest_radix == 8) first_two(Radix<4>(), Radix<8>());
    }
    done += second, ++p;
  } else {
    if (done == 2) first(Radix<4>());
    else first(Radix<8>());
  }
  later_split_passes<forward, in_one>(area, target, passes, p, size_t{1} << done, n, tables);
}

}  // namespace
}  // namespace qkr::QKR_SIMD_LEVEL
