// The direct method in two to seven dimensions: line by line of the result along dimension 0, each from the
// rows of the operands that meet in it.
#include "convcorr/operands.h"

namespace qkr::convcorr {
namespace {

// An operand whose strides are dense from dimension 1 on counts as dense, whatever its stride in dimension
// 0.
void settle_strides(Problem &problem, Extent Axis::*extent) {
  int64_t dense = (problem.axis[0].*extent).count;
  for (int d = 1; d < problem.dims; ++d) {
    if ((problem.axis[d].*extent).stride != dense) return;
    dense = times(dense, (problem.axis[d].*extent).count);
  }
  (problem.axis[0].*extent).stride = 1;
}

// The rows that meet in one line of the result, in ascending order of the taps, dimension 1 innermost.
template <class T>
class Rows {
  const SumLine *line_;
  const int dims_;
  Buffer<TapRow<T>> rows_;

 public:
  Rows(const SumLine *line, int dims) : line_(line), dims_(dims) {}
  bool make() {
    int64_t most = 1;
    for (int d = 1; d < dims_; ++d)
      most = times(most, line_[d].taps < line_[d].signal ? line_[d].taps : line_[d].signal);
    return rows_.allocate(most);
  }
  const TapRow<T> *get() const { return rows_.get(); }

  // Those of the line at index[1], index[2], ... of the result; their number.
  int64_t find(const int64_t *index, const T *taps, const T *signal) const {
    struct {
      int64_t steps, step_of_taps, step_of_signal;
    } along[largest_dims];
    int64_t taps_stride = 1, signal_stride = 1, number[largest_dims] = {};
    for (int d = 0; d < dims_; ++d) {
      const SumLine &line = line_[d];
      if (d > 0) {
        const int64_t place = line.first + index[d] * line.step, to_end = line.signal - 1 - place;
        const int64_t before = line.descending ? to_end : place, behind = line.descending ? place : to_end;
        const int64_t first = before < 0 ? -before : 0;
        const int64_t last = behind < line.taps ? behind : line.taps - 1;
        if (first > last) return 0;
        taps += first * taps_stride;
        signal += (place + (line.descending ? -first : first)) * signal_stride;
        along[d] = {last - first + 1, taps_stride, line.descending ? -signal_stride : signal_stride};
      }
      taps_stride *= line.taps;
      signal_stride *= line.signal;
    }
    for (int64_t count = 0;;) {
      rows_.get()[count++] = {taps, signal};
      int d = 1;
      for (; d < dims_; ++d) {
        taps += along[d].step_of_taps;
        signal += along[d].step_of_signal;
        if (++number[d] < along[d].steps) break;
        taps -= along[d].steps * along[d].step_of_taps;
        signal -= along[d].steps * along[d].step_of_signal;
        number[d] = 0;
      }
      if (d == dims_) return count;
    }
  }
};

}  // namespace

template <class Form>
int32_t direct_grid(const Problem &given, const Operands<Form> &arrays) {
  Problem problem = given;
  settle_strides(problem, &Axis::y);
  settle_strides(problem, &Axis::z);
  if (problem.kind == Kind::correlation) settle_strides(problem, &Axis::x);

  using Real = typename Form::Real;
  DirectOperands<Form> operands(problem, arrays);
  Rows<Real> rows(operands.line, problem.dims);
  if (!rows.make() || !operands.make(problem, arrays)) return VXS_CC_ERROR_ALLOC;

  int64_t index[largest_dims] = {};
  Real *z = operands.result();
  for (int d = 1; d < problem.dims; z += operands.line[0].outputs) {
    const int64_t count = rows.find(index, operands.taps(), operands.signal());
    take_sums(rows.get(), count, operands.line[0], z);
    for (d = 1; d < problem.dims; ++d) {
      if (++index[d] < operands.line[d].outputs) break;
      index[d] = 0;
    }
  }
  operands.give_back();
  return VXS_CC_OK;
}

template int32_t direct_grid<DD>(const Problem &, const Operands<DD> &);
template int32_t direct_grid<SD>(const Problem &, const Operands<SD> &);
template int32_t direct_grid<SS>(const Problem &, const Operands<SS> &);

}  // namespace qkr::convcorr
