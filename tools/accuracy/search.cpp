// The search for worst inputs: cells of inputs are sampled, those with the largest errors are split, and so
// on until they are small. Errors of kernels change smoothly but for rounding, so that the worst inputs lie
// in neighbourhoods of bad ones; plain sampling hardly ever meets them.
#include "tools/accuracy/search.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <qkr/vecmath_control.h>
#include <thread>

#include "tests/support/oracle.h"
#include "tests/support/samples.h"

namespace qkr::tests {
namespace {

// A range of inputs by rank, of one or of both arguments, and the worst that was found in it, of which
// result.
template <class T>
struct Cell {
  int64_t low[2], high[2];
  Worst<T> worst;
  int result;
};

constexpr int samples = 64;

// Samples the cell. Results below the normal range do not count, nor infinities that are right.
template <class T>
void sample_cell(const VectorFunction<T> &f, Oracle<T> &oracle, Cell<T> &cell, Random &random) {
  T a[samples], b[samples], r[2][samples];
  const auto number = [&](int which) {
    const uint64_t count =
        static_cast<uint64_t>(cell.high[which]) - static_cast<uint64_t>(cell.low[which]) + 1;
    return of_rank<T>(cell.low[which] + static_cast<int64_t>(count ? random.below(count) : random()));
  };
  for (int i = 0; i < samples; ++i) a[i] = number(0), b[i] = f.entry.inputs() == 2 ? number(1) : T(0);
  f.entry(samples, a, b, r[0], r[1]);
  for (int result = 0; result < f.entry.results(); ++result)
    for (int i = 0; i < samples; ++i) {
      const T computed = r[result][i];
      if (std::fabs(computed) < std::numeric_limits<T>::min()) continue;
      const Quick<T> &quick = f.quick[result];
      const double error =
          quick ? quick_error(quick, a[i], b[i], computed) : oracle.error(f, result, a[i], b[i], computed);
      if (error > cell.worst.error) cell.worst = {error, a[i], b[i]}, cell.result = result;
    }
}

// The quick reference leads the search; what counts is the error by MPFR.
template <class T>
double exact_error(const VectorFunction<T> &f, const Cell<T> &cell) {
  T r[2];
  f.entry(1, &cell.worst.a, &cell.worst.b, &r[0], &r[1]);
  return Oracle<T>().error(f, cell.result, cell.worst.a, cell.worst.b, r[cell.result]);
}

// Samples all cells, on all processors; each has random numbers of its own, so threads do not matter.
template <class T>
void sample_cells(const VectorFunction<T> &f, std::vector<Cell<T>> &cells, uint64_t seed) {
  std::atomic<size_t> next = 0;
  const auto work = [&] {
    _vxmSetMode(VXM_MODE_IGNORE);
    Oracle<T> oracle;
    for (size_t i; (i = next++) < cells.size();) {
      Random random{seed + (i << 20)};
      random.state = random();
      sample_cell(f, oracle, cells[i], random);
    }
  };
  std::vector<std::jthread> threads;
  for (unsigned i = 0; i < std::max(1u, std::thread::hardware_concurrency()); ++i) threads.emplace_back(work);
}

// The cell cut in `parts` in each argument.
template <class T>
void append_parts(std::vector<Cell<T>> &cells, const Cell<T> &cell, int parts, int inputs) {
  const auto cut = [&](int which, int i) {
    const auto width = static_cast<__int128>(cell.high[which]) - cell.low[which] + 1;
    return static_cast<int64_t>(cell.low[which] + width * i / parts);
  };
  for (int i = 0; i < parts; ++i)
    for (int j = 0; j < (inputs == 2 ? parts : 1); ++j) {
      Cell<T> part = {{cut(0, i), 0}, {cut(0, i + 1) - 1, 0}, {}, 0};
      if (inputs == 2) part.low[1] = cut(1, j), part.high[1] = cut(1, j + 1) - 1;
      if (part.low[0] <= part.high[0] && part.low[1] <= part.high[1]) cells.push_back(part);
    }
}

}  // namespace

template <class T>
Worst<T> search(const VectorFunction<T> &f, int runs) {
  const int inputs = f.entry.inputs(), first_parts = inputs == 2 ? 192 : 1 << 14;
  const size_t kept = 768;
  Worst<T> worst;
  for (int run = 0; run < runs; ++run) {
    const Cell<T> all = {{rank(f.a.low), rank(f.b.low)}, {rank(f.a.high), rank(f.b.high)}, {}, 0};
    std::vector<Cell<T>> cells, parts;
    append_parts(cells, all, first_parts, inputs);
    for (uint64_t round = 0; round < 64 && !cells.empty(); ++round) {
      sample_cells(f, cells, (static_cast<uint64_t>(run) << 56) + (round << 48));
      const auto worse = [](const Cell<T> &x, const Cell<T> &y) { return x.worst.error > y.worst.error; };
      const size_t count = std::min(kept, cells.size());
      std::partial_sort(cells.begin(), cells.begin() + static_cast<ptrdiff_t>(count), cells.end(), worse);
      cells.resize(count);
      for (const Cell<T> &cell : cells) {
        if (cell.worst.error < worst.error - reference_tolerance<T>) break;
        if (const double error = exact_error(f, cell); error > worst.error)
          worst = {error, cell.worst.a, cell.worst.b};
      }
      parts.clear();
      for (const Cell<T> &cell : cells)
        if (cell.high[0] - cell.low[0] > samples / 4 || round < 4) append_parts(parts, cell, 2, inputs);
      cells.swap(parts);
    }
  }
  return worst;
}
template Worst<double> search(const VectorFunction<double> &, int);
template Worst<float> search(const VectorFunction<float> &, int);

}  // namespace qkr::tests
