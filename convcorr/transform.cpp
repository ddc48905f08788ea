// The transform method. One dimension is the convolution of the signal engine. Several go block by block
// through grids of real numbers, each row with room for its half spectrum, which descriptors of one
// dimension transform dimension by dimension. Rows of zeros are not transformed, nor are those that hold no
// result; and strips of columns along the last dimension go forward, through the product and back while they
// are in the cache.
#include <qkr/dft.h>
#include <qkr/sigfft_convolution.h>

#include "convcorr/blocks.h"
#include "convcorr/packing.h"
#include "sigfft/convolution/kernels.h"

namespace qkr::convcorr {
namespace {

template <class Real>
struct Engine;
#define QKR_ENGINE(Real, precision_, bits, r2c, c2r, c)                            \
  template <>                                                                      \
  struct Engine<Real> {                                                            \
    static constexpr int32_t precision = precision_;                               \
    static constexpr auto convolve = zprsConv_##bits##f;                           \
    static constexpr auto multiply = zprs_pairProducts_##bits##f;                  \
    static constexpr auto row_forward = qkr_dft_def_compute_forward_##r2c##_out;   \
    static constexpr auto row_backward = qkr_dft_def_compute_backward_##c2r##_out; \
    static constexpr auto columns_forward = qkr_dft_def_compute_forward_##c;       \
    static constexpr auto columns_backward = qkr_dft_def_compute_backward_##c;     \
  };
QKR_ENGINE(double, DFTX_DOUBLE, 64, dz, zd, z)
QKR_ENGINE(float, DFTX_SINGLE, 32, sc, cs, c)
#undef QKR_ENGINE

// A status, and whether an operation that gave one succeeded.
struct Outcome {
  int32_t status = VXS_CC_OK;
  bool take(int32_t code) {
    if (!qkr_dft_def_error_class_external(&code, &no_error)) status = VXS_CC_ERROR_FFT;
    return status == VXS_CC_OK;
  }
  static constexpr int32_t no_error = DFTX_NO_ERROR;
};

class Descriptor {
  DftDescriptor *descriptor_ = nullptr;

 public:
  Descriptor() = default;
  Descriptor(const Descriptor &) = delete;
  ~Descriptor() {
    if (descriptor_) qkr_dft_def_free_descriptor_external(&descriptor_);
  }
  DftDescriptor **handle() { return &descriptor_; }

  int32_t create(int32_t precision, int32_t domain, int64_t length) {
    const int32_t dimension = 1, points = static_cast<int32_t>(length);
    return qkr_dft_def_create_descriptor_1d(&descriptor_, &precision, &domain, &dimension, &points);
  }
  // Rows of real numbers to half spectra in their place, and back.
  int32_t make_rows(int32_t precision, int64_t length, double scale) {
    const int32_t backward_scale = DFTX_BACKWARD_SCALE;
    int32_t code = create(precision, DFTX_REAL, length);
    if (!code) code = qkr_dft_def_set_value_dblval(&descriptor_, &backward_scale, &scale);
    return code ? code : qkr_dft_def_commit_descriptor_external(&descriptor_);
  }
  // Columns of complex numbers, `count` of them side by side.
  int32_t make_columns(int32_t precision, int64_t length, int64_t stride, int64_t count) {
    const int32_t distance = 1, strides = static_cast<int32_t>(stride), columns = static_cast<int32_t>(count);
    const int32_t number_of_transforms = DFTX_NUMBER_OF_TRANSFORMS, input_distance = DFTX_INPUT_DISTANCE;
    int32_t code = create(precision, DFTX_COMPLEX, length);
    if (!code) code = qkr_dft_set_strides(&descriptor_, &strides, &strides);
    if (!code) code = qkr_dft_def_set_value_intval(&descriptor_, &number_of_transforms, &columns);
    if (!code) code = qkr_dft_def_set_value_intval(&descriptor_, &input_distance, &distance);
    return code ? code : qkr_dft_def_commit_descriptor_external(&descriptor_);
  }
};

// Real numbers whose rows lie `pitch` apart, that is their half spectrum and what fills the line of the
// cache.
template <class Real>
struct GridShape {
  static constexpr int64_t line = 64 / sizeof(Real);
  int dims;
  int64_t length[largest_dims];
  int64_t slab[largest_dims + 1];  // numbers of a row, a plane, ...
  int64_t points = 1;

  GridShape(const AxisBlocks *axes, int count) : dims(count) {
    slab[0] = 0;
    for (int d = 0; d < dims; ++d) {
      length[d] = axes[d].length;
      points = times(points, length[d]);
      slab[d + 1] = d ? times(slab[d], length[d]) : (length[0] / 2 * 2 + 2 + line - 1) / line * line;
    }
  }
  int64_t numbers() const { return slab[dims]; }
  // Columns along the last dimension that stay in the cache together, in both grids.
  int64_t strip() const {
    constexpr int64_t cache = 1 << 18;
    const int last = dims - 1;
    const int64_t lines = slab[last] / line;
    int64_t together = cache / (length[last] * line * static_cast<int64_t>(sizeof(Real)));
    if (together > lines) together = lines;
    while (together > 1 && lines % together) --together;
    return together < 1 ? line : together * line;
  }
};

template <class Form>
class Blocks {
  using Data = typename Form::Data;
  using Real = typename Form::Real;
  using E = Engine<Real>;

  const int dims_, last_;
  const AxisBlocks *const axes_;
  const GridShape<Real> shape_;
  const int64_t strip_;
  const Layout<const Data> x_, y_;
  const Layout<Data> z_;
  Buffer<Real> memory_;
  Real *kept_ = nullptr, *changing_ = nullptr;  // spectrum of one operand, and of the other times that
  Descriptor along_[largest_dims];
  Outcome outcome_;

  bool columns(int d, Real *base, bool forward) {
    const auto transform = forward ? E::columns_forward : E::columns_backward;
    return outcome_.take(transform(along_[d].handle(), base));
  }

  // An operand's elements of a block to the grid, and all dimensions up to d forward but the last.
  bool forward(int d, const Layout<const Data> &operand, const Range *ranges, const Data *from, Real *to) {
    from += ranges[d].first * operand.step[d];
    if (d == 0) {
      pack_line(from, operand.step[0], ranges[0].count, to);
      memset(to + ranges[0].count, 0, static_cast<size_t>(shape_.slab[1] - ranges[0].count) * sizeof(Real));
      return outcome_.take(E::row_forward(along_[0].handle(), to, to));
    }
    const int64_t slab = shape_.slab[d], filled = ranges[d].count;
    for (int64_t i = 0; i < filled; ++i)
      if (!forward(d - 1, operand, ranges, from + i * operand.step[d], to + i * slab)) return false;
    memset(to + filled * slab, 0, static_cast<size_t>((shape_.length[d] - filled) * slab) * sizeof(Real));
    return d == last_ || columns(d, to, true);
  }

  // Along the last dimension.
  bool finish_kept() {
    if (last_ == 0) return true;
    for (int64_t c = 0; c < shape_.slab[last_]; c += strip_)
      if (!columns(last_, kept_ + c, true)) return false;
    return true;
  }
  bool multiply() {
    if (last_ == 0) {
      E::multiply(kept_, changing_, changing_, static_cast<size_t>(shape_.slab[1] / 2));
      return true;
    }
    const int64_t slab = shape_.slab[last_];
    for (int64_t c = 0; c < slab; c += strip_) {
      if (!columns(last_, changing_ + c, true)) return false;
      for (int64_t i = 0; i < shape_.length[last_]; ++i) {
        Real *const row = changing_ + c + i * slab;
        E::multiply(kept_ + c + i * slab, row, row, static_cast<size_t>(strip_ / 2));
      }
      if (!columns(last_, changing_ + c, false)) return false;
    }
    return true;
  }

  // The results of a block, from dimension d down, to z.
  bool backward(int d, const int64_t *block, Real *from, Data *to) {
    const AxisBlocks &axis = axes_[d];
    const Range outputs = axis.outputs(block[d]);
    const int64_t first = axis.wanted.first + outputs.first * axis.decimation - axis.segment(block[d]).first;
    to += outputs.first * z_.step[d];
    if (d == 0) {
      if (!outcome_.take(E::row_backward(along_[0].handle(), from, from))) return false;
      from += first;
      if (axis.decimation == 1) unpack_line(from, outputs.count, to, z_.step[0]);
      else
        for (int64_t k = 0; k < outputs.count; ++k)
          to[k * z_.step[0]] = static_cast<Data>(from[k * axis.decimation]);
      return true;
    }
    if (d != last_ && !columns(d, from, false)) return false;
    for (int64_t k = 0; k < outputs.count; ++k)
      if (!backward(d - 1, block, from + (first + k * axis.decimation) * shape_.slab[d], to + k * z_.step[d]))
        return false;
    return true;
  }

  bool make_descriptors() {
    if (shape_.slab[last_] / 2 > INT32_MAX) return outcome_.take(DFTX_MEMORY_ERROR);
    if (!outcome_.take(
            along_[0].make_rows(E::precision, shape_.length[0], 1 / static_cast<double>(shape_.points))))
      return false;
    for (int d = 1; d < dims_; ++d) {
      const int64_t stride = shape_.slab[d] / 2, count = d == last_ ? strip_ / 2 : stride;
      if (!outcome_.take(along_[d].make_columns(E::precision, shape_.length[d], stride, count))) return false;
    }
    return true;
  }

  static Layout<const Data> reversed_if(bool reverse, Layout<const Data> layout) {
    if (reverse) layout.reverse();
    return layout;
  }

 public:
  Blocks(const Problem &problem, const AxisBlocks *axes, const Operands<Form> &operands)
      : dims_(problem.dims),
        last_(problem.dims - 1),
        axes_(axes),
        shape_(axes, problem.dims),
        strip_(shape_.strip()),
        x_(reversed_if(problem.kind == Kind::correlation, {operands.x, problem, &Axis::x})),
        y_(operands.y, problem, &Axis::y),
        z_(operands.z, problem, &Axis::z) {}

  int32_t run() {
    const int64_t size = shape_.numbers();
    if (!memory_.allocate(times(2, size) < INT64_MAX - shape_.line ? 2 * size + shape_.line : INT64_MAX))
      return VXS_CC_ERROR_ALLOC;
    const size_t address = reinterpret_cast<size_t>(memory_.get());
    kept_ = memory_.get() + (64 - address % 64) % 64 / sizeof(Real);
    changing_ = kept_ + size;
    if (!make_descriptors()) return outcome_.status;

    // The operand that is cut into more blocks changes from one to the next.
    int64_t pieces[2] = {1, 1};
    for (int d = 0; d < dims_; ++d)
      pieces[axes_[d].x_is_longer] = times(pieces[axes_[d].x_is_longer], axes_[d].blocks);
    const bool x_changes = pieces[true] >= pieces[false];
    const Layout<const Data> &kept = x_changes ? y_ : x_, &changing = x_changes ? x_ : y_;

    int64_t block[largest_dims] = {};
    Range ranges[largest_dims];
    for (bool stale = true;;) {
      if (stale) {
        for (int d = 0; d < dims_; ++d) ranges[d] = axes_[d].operand(!x_changes, block[d]);
        if (!forward(last_, kept, ranges, kept.base, kept_) || !finish_kept()) return outcome_.status;
      }
      for (int d = 0; d < dims_; ++d) ranges[d] = axes_[d].operand(x_changes, block[d]);
      if (!forward(last_, changing, ranges, changing.base, changing_) || !multiply() ||
          !backward(last_, block, changing_, z_.base))
        return outcome_.status;
      stale = false;
      int d = 0;
      for (; d < dims_; ++d) {
        stale |= axes_[d].blocks > 1 && axes_[d].x_is_longer != x_changes;
        if (++block[d] < axes_[d].blocks) break;
        block[d] = 0;
      }
      if (d == dims_) return VXS_CC_OK;
    }
  }
};

}  // namespace

template <class Form>
int32_t transform_grid(const Problem &problem, const Operands<Form> &operands) {
  AxisBlocks axes[largest_dims];
  for (int d = 0; d < problem.dims; ++d) axes[d] = AxisBlocks(problem.kind, problem.axis[d], d, problem.dims);
  return Blocks<Form>(problem, axes, operands).run();
}

template <class Form>
int32_t transform_line(const Problem &problem, const Operands<Form> &operands) {
  using Real = typename Form::Real;
  using Data = typename Form::Data;
  const Axis &axis = problem.axis[0];
  const bool correlates = problem.kind == Kind::correlation;
  const int64_t all = axis.x.count + axis.y.count - 1;
  Layout<const Data> x_layout(operands.x, problem, &Axis::x);
  if (correlates) x_layout.reverse();
  const Layout<Data> z(operands.z, problem, &Axis::z);

  DenseOperand<Real> x, y;
  if (!x.make(x_layout) || !y.make(Layout<const Data>(operands.y, problem, &Axis::y)))
    return VXS_CC_ERROR_ALLOC;
  Buffer<Real> buffer;
  Real *result = nullptr;
  if constexpr (sizeof(Data) == sizeof(Real))
    if (z.is_dense() && axis.z.count == all) result = z.base;
  const bool buffered = !result;
  if (buffered) {
    if (!buffer.allocate(all)) return VXS_CC_ERROR_ALLOC;
    result = buffer.get();
  }
  const zprStatus status = Engine<Real>::convolve(x.numbers(), static_cast<int32_t>(axis.x.count),
                                                  y.numbers(), static_cast<int32_t>(axis.y.count), result);
  if (status != zprStsNoErr) return VXS_CC_ERROR_FFT;
  if (buffered) {
    const Real *from = result + axis.start + (correlates ? axis.x.count - 1 : 0);
    if (axis.decimation == 1) unpack_line(from, axis.z.count, z.base, z.step[0]);
    else
      for (int64_t k = 0; k < axis.z.count; ++k)
        z.base[k * z.step[0]] = static_cast<Data>(from[k * axis.decimation]);
  }
  return VXS_CC_OK;
}

#define QKR_INSTANTIATE(Form)                                                     \
  template int32_t transform_line<Form>(const Problem &, const Operands<Form> &); \
  template int32_t transform_grid<Form>(const Problem &, const Operands<Form> &);
QKR_INSTANTIATE(DD)
QKR_INSTANTIATE(SD)
QKR_INSTANTIATE(SS)
#undef QKR_INSTANTIATE

}  // namespace qkr::convcorr
