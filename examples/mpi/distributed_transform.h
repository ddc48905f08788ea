// Fourier transform in two or three dimensions of an array that is spread over a grid of ranks, in place.
//
// Each axis is transformed by ranks that hold it whole; between two axes the array is redistributed:
//
//   axis 2: first rank coordinate cuts axis 0, second cuts axis 1     x x .
//   axis 1: first rank coordinate cuts axis 0, second cuts axis 2     x . x
//   axis 0: first rank coordinate cuts axis 1, second cuts axis 2     . x x
//
// A grid of P x Q ranks makes pencils of the array, each of which speaks to the Q of its row, then to the P
// of its column. A grid of P x 1 makes slabs: the first exchange falls away, but there can be no more ranks
// than rows. An array of two dimensions is one whose axis 2 has length 1.
//
// The bits of a transform of one axis depend neither on its stride nor on what other transforms are made with
// it, and the order of the axes is always the same: so the bits of the result do not depend on the grid.
#pragma once
#include <complex>
#include <memory>
#include <qkr/qkr.h>
#include <vector>

#include "redistribution.h"

using Complex = std::complex<double>;

// All transforms along one axis of a box.
class AxisTransform {
 public:
  AxisTransform(const Box &box, int axis) {
    const int length = box.size[axis];
    int outer = 1, inner = 1;
    for (int d = 0; d < axis; ++d) outer *= box.size[d];
    for (int d = axis + 1; d < 3; ++d) inner *= box.size[d];
    if (length == 1 || box.elements() == 0) return;

    // One call makes the transforms that start at neighbours; those of the last axis start a row apart.
    const bool rows = inner == 1;
    calls_ = rows ? 1 : outer;
    step_ = static_cast<size_t>(length) * inner;
    const int32_t precision = DFTX_DOUBLE, domain = DFTX_COMPLEX, dimension = 1;
    check(qkr_dft_def_create_descriptor_1d(&descriptor_, &precision, &domain, &dimension, &length), "create");
    set(DFTX_NUMBER_OF_TRANSFORMS, rows ? outer : inner);
    set(DFTX_INPUT_DISTANCE, rows ? length : 1);
    check(qkr_dft_set_strides(&descriptor_, &inner, nullptr), "strides");
    check(qkr_dft_def_commit_descriptor_external(&descriptor_), "commit");
  }
  ~AxisTransform() {
    if (descriptor_) qkr_dft_def_free_descriptor_external(&descriptor_);
  }
  AxisTransform(const AxisTransform &) = delete;

  void forward(Complex *data) { each(qkr_dft_def_compute_forward_z, data); }
  void backward(Complex *data) { each(qkr_dft_def_compute_backward_z, data); }

 private:
  void set(int32_t parameter, int32_t value) {
    check(qkr_dft_def_set_value_intval(&descriptor_, &parameter, &value), "set");
  }
  void each(int32_t (*compute)(DftDescriptor **, void *), Complex *data) {
    for (int call = 0; call < calls_; ++call) check(compute(&descriptor_, data + call * step_), "transform");
  }

  DftDescriptor *descriptor_ = nullptr;
  int calls_ = 0;
  size_t step_ = 0;
};

class DistributedTransform {
 public:
  // Of an array of `lengths`, over rows x columns ranks: all those of MPI_COMM_WORLD.
  DistributedTransform(const std::array<int, 3> &lengths, int rows, int columns) {
    int rank;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    const int row = rank / columns, column = rank % columns;
    MPI_Comm_split(MPI_COMM_WORLD, row, column, &same_row_);
    MPI_Comm_split(MPI_COMM_WORLD, column, row, &same_column_);

    for (int axis = 0; axis < 3; ++axis) {
      Box &box = boxes_[axis] = {{}, lengths};
      const auto cut = [&](int cut_axis, int part, int parts) {
        box.start[cut_axis] = part_start(lengths[cut_axis], part, parts);
        box.size[cut_axis] = part_start(lengths[cut_axis], part + 1, parts) - box.start[cut_axis];
      };
      cut(axis == 0 ? 1 : 0, row, rows);
      cut(axis == 2 ? 1 : 2, column, columns);
      transforms_[axis] = std::make_unique<AxisTransform>(box, axis);
    }
    if (rows > 1) moves_[0] = plan(same_column_, boxes_[1], boxes_[0]);
    if (columns > 1) moves_[1] = plan(same_row_, boxes_[2], boxes_[1]);
  }
  ~DistributedTransform() {
    MPI_Comm_free(&same_row_);
    MPI_Comm_free(&same_column_);
  }
  DistributedTransform(const DistributedTransform &) = delete;

  const Box &before() const { return boxes_[2]; }  // where this rank's part of the array lies
  const Box &after() const { return boxes_[0]; }   // and of the spectrum

  // `data` holds the box before, and then the box after. As much memory again is kept for the exchange.
  void forward(std::vector<Complex> &data) {
    for (const int axis : {2, 1, 0}) {
      if (axis < 2 && moves_[axis]) {
        other_.resize(boxes_[axis].elements());
        moves_[axis]->forward(data.data(), other_.data());
        data.swap(other_);
      }
      transforms_[axis]->forward(data.data());
    }
  }
  // The way back, not divided by the number of elements.
  void backward(std::vector<Complex> &data) {
    for (const int axis : {0, 1, 2}) {
      if (axis > 0 && moves_[axis - 1]) {
        other_.resize(boxes_[axis].elements());
        moves_[axis - 1]->backward(data.data(), other_.data());
        data.swap(other_);
      }
      transforms_[axis]->backward(data.data());
    }
  }

 private:
  static std::unique_ptr<Redistribution> plan(MPI_Comm members, const Box &before, const Box &after) {
    return std::make_unique<Redistribution>(members, before, after, MPI_C_DOUBLE_COMPLEX);
  }

  std::array<Box, 3> boxes_;  // while the axis of that number is transformed
  std::array<std::unique_ptr<AxisTransform>, 3> transforms_;
  std::array<std::unique_ptr<Redistribution>, 2> moves_;  // to the axis of that number; null: nothing moves
  MPI_Comm same_row_, same_column_;
  std::vector<Complex> other_;
};
