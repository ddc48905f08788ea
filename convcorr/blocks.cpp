#include "convcorr/blocks.h"

namespace qkr::convcorr {
namespace {

int64_t smaller(int64_t a, int64_t b) { return a < b ? a : b; }
int64_t larger(int64_t a, int64_t b) { return a > b ? a : b; }
int64_t ratio_up(int64_t a, int64_t b) { return (a + b - 1) / b; }

// log2, by straight lines between powers of two.
double logarithm(int64_t n) {
  const int whole = 63 - __builtin_clzll(static_cast<unsigned long long>(n));
  return whole + (static_cast<double>(n) / static_cast<double>(int64_t{1} << whole) - 1);
}

// Of a transform of rows (dimension 0) or columns, as measured. Columns longer than 256 do not go lane by
// lane, and in three dimensions and more long ones make planes that leave the cache; lengths that are no
// power of two cost more for each number, and each block costs something, too.
double cost_of_transform(int64_t length, int dimension, int dims) {
  const int64_t longest = dimension == 0 ? length : dims == 2 ? 256 : 64;
  const bool power_of_two = (length & (length - 1)) == 0;
  const double factor = (power_of_two ? 1 : 1.6) * (length <= longest ? 1 : dims == 2 ? 1.5 : 2);
  return static_cast<double>(length) * (logarithm(length) + 3) * factor + (dimension ? 200 : 400);
}

// body(length) for all lengths 2^a 3^b 5^c up to a limit that the first dimension, whose length is even, can
// have.
template <class Body>
void for_each_length(int64_t limit, bool even, Body body) {
  for (int64_t five = 1; five <= 25; five *= 5)
    for (int64_t three = five; three <= 9 * five; three *= 3)
      for (int64_t length = even ? 2 * three : three; length <= limit; length *= 2) body(length);
}

}  // namespace

AxisBlocks::AxisBlocks(Kind kind, const Axis &axis, int dimension, int dims) {
  const int64_t x = axis.x.count, y = axis.y.count;
  x_is_longer = x >= y;
  longer = larger(x, y), shorter = smaller(x, y);
  decimation = axis.decimation;
  wanted.first = axis.start + (kind == Kind::convolution ? 0 : x - 1);
  wanted.count = (axis.z.count - 1) * decimation + 1;

  // In a single block what comes round at the end may fall on results that are not wanted.
  step = wanted.count;
  const Range all = segment(0);
  const int64_t skipped = wanted.first - all.first;
  const int64_t needed = larger(all.count + shorter - 1 - skipped, skipped + wanted.count);

  length = 0;
  double least = 0;
  const auto consider = [&](int64_t candidate) {
    const bool single = candidate >= needed;
    const int64_t block = single ? wanted.count : candidate - shorter + 1;
    if (block < 1) return;
    const int64_t count = ratio_up(wanted.count, block);
    const double cost = static_cast<double>(count) * cost_of_transform(candidate, dimension, dims);
    if (length && cost >= least) return;
    length = candidate, step = block, blocks = count, least = cost;
  };
  for_each_length(2 * needed, dimension == 0, consider);
}

Range AxisBlocks::results(int64_t block) const {
  const int64_t done = block * step;
  return {wanted.first + done, smaller(step, wanted.count - done)};
}

Range AxisBlocks::segment(int64_t block) const {
  const Range range = results(block);
  const int64_t first = larger(0, range.first - (shorter - 1));
  return {first, smaller(longer, range.first + range.count) - first};
}

Range AxisBlocks::outputs(int64_t block) const {
  const Range range = results(block);
  const int64_t first = ratio_up(range.first - wanted.first, decimation);
  const int64_t end = ratio_up(range.first + range.count - wanted.first, decimation);
  return {first, end - first};
}

}  // namespace qkr::convcorr
