// How the transform method cuts its work into blocks of results (overlap-save): in each dimension the
// shorter operand is whole in every block, and of the longer one there is what the block's results need.
#pragma once

#include "convcorr/problem.h"

namespace qkr::convcorr {

// Numbers first to first + count - 1.
struct Range {
  int64_t first, count;
};

// One dimension. Result number q of all that there are is the sum of a[i] b[q - i]; wanted are numbers
// wanted.first and so on, every one of them or every n-th.
struct AxisBlocks {
  bool x_is_longer;
  int64_t longer, shorter;
  Range wanted;
  int64_t decimation;
  int64_t length;  // of the transform
  int64_t step;    // results of a block
  int64_t blocks;

  AxisBlocks() = default;
  AxisBlocks(Kind kind, const Axis &axis, int dimension, int dims);

  Range results(int64_t block) const;  // numbers of results
  Range segment(int64_t block) const;  // of the longer operand
  Range outputs(int64_t block) const;  // elements of z
  Range operand(bool is_x, int64_t block) const {
    return is_x == x_is_longer ? segment(block) : Range{0, shorter};
  }
};

}  // namespace qkr::convcorr
