// Execution: the 48 functions as rows, and which of them a task's fields choose.
#include "convcorr/problem.h"

namespace qkr::convcorr {
namespace {

// The parameters of execution functions, and the names that they go on by.
#define QKR_LINE_PARAMETERS(T)                                                                     \
  const T *x, int32_t xstride, const T *y, int32_t ystride, T *z, int32_t zstride, int32_t xshape, \
      int32_t yshape, int32_t start, int32_t zshape
#define QKR_LINE_ARGUMENTS x, xstride, y, ystride, z, zstride, xshape, yshape, start, zshape
#define QKR_GRID_PARAMETERS(T)                                                                            \
  int32_t dims, const T *x, const int32_t *xshape, const int32_t *xstride, const T *y,                    \
      const int32_t *yshape, const int32_t *ystride, T *z, const int32_t *zshape, const int32_t *zstride, \
      const int32_t *start
#define QKR_GRID_ARGUMENTS dims, x, xshape, xstride, y, yshape, ystride, z, zshape, zstride, start

template <Kind kind, class Form, Method method>
int32_t execute_line(QKR_LINE_PARAMETERS(typename Form::Data), int32_t decimation) {
  const Problem problem = {
      kind, 1, {{{xshape, xstride}, {yshape, ystride}, {zshape, zstride}, start, decimation}}};
  if (const int32_t status = check_line(problem, x, y, z)) return status;
  const Operands<Form> operands = {x, y, z};
  return method == Method::direct ? direct_line(problem, operands) : transform_line(problem, operands);
}

// Strides of an operand: those given, or dense ones.
class Strides {
  const int32_t *given_;
  int64_t dense_ = 1;

 public:
  explicit Strides(const int32_t *given) : given_(given) {}
  Extent next(const int32_t *shape, int d) {
    const Extent extent = {shape[d], given_ ? given_[d] : dense_};
    dense_ = times(dense_, shape[d]);
    return extent;
  }
};

template <Kind kind, class Form, Method method>
int32_t execute_grid(QKR_GRID_PARAMETERS(typename Form::Data), const int32_t *decimation) {
  constexpr int32_t smallest_dims = method == Method::direct ? 2 : 1;
  if (dims < smallest_dims || dims > largest_dims) return VXS_CC_ERROR_DIMS;
  Problem problem = {kind, dims, {}};
  Strides along_x(xstride), along_y(ystride), along_z(zstride);
  for (int d = 0; d < dims; ++d)
    problem.axis[d] = {along_x.next(xshape, d), along_y.next(yshape, d), along_z.next(zshape, d), start[d],
                       decimation[d]};
  if (const int32_t status = check_grid(problem, x, y, z)) return status;
  const Operands<Form> operands = {x, y, z};
  return method == Method::direct ? direct_grid(problem, operands) : transform_grid(problem, operands);
}

template <Kind kind, class Form, Method method>
int32_t execute_line_without_decimation(QKR_LINE_PARAMETERS(typename Form::Data)) {
  if constexpr (sizeof(typename Form::Real) == 4 && method == Method::direct)
    return execute_line<kind, Form, method>(QKR_LINE_ARGUMENTS, 1);
  else return VXS_CC_ERROR_NOT_IMPLEMENTED;
}
template <class... Ignored>
int32_t not_implemented(Ignored...) {
  return VXS_CC_ERROR_NOT_IMPLEMENTED;
}

// What executes a task of a form, by kind and method.
template <class Form>
struct Table {
  using T = typename Form::Data;
  static constexpr int32_t (*line[2][2])(QKR_LINE_PARAMETERS(T), int32_t decimation) = {
      {execute_line<Kind::convolution, Form, Method::direct>,
       execute_line<Kind::convolution, Form, Method::transform>},
      {execute_line<Kind::correlation, Form, Method::direct>,
       execute_line<Kind::correlation, Form, Method::transform>}};
  static constexpr int32_t (*grid[2][2])(QKR_GRID_PARAMETERS(T), const int32_t *decimation) = {
      {execute_grid<Kind::convolution, Form, Method::direct>,
       execute_grid<Kind::convolution, Form, Method::transform>},
      {execute_grid<Kind::correlation, Form, Method::direct>,
       execute_grid<Kind::correlation, Form, Method::transform>}};
};

constexpr int32_t zeros[largest_dims] = {}, units[largest_dims] = {1, 1, 1, 1, 1, 1, 1};

// A shape that is missing is one of zeros, which no execution function takes.
const int32_t *shape_or_zeros(const int32_t *shape) { return shape ? shape : zeros; }

template <class Form>
int32_t execute(const ConvCorrTask *task, const void *x_data, const int32_t *xstride, const void *y_data,
                const int32_t *ystride, void *z_data, const int32_t *zstride) {
  using T = typename Form::Data;
  const auto x = static_cast<const T *>(x_data), y = static_cast<const T *>(y_data);
  const auto z = static_cast<T *>(z_data);
  const int32_t dims = task->dims;
  const int32_t *const xshape = shape_or_zeros(task->xshape), *const yshape = shape_or_zeros(task->yshape),
                       *const zshape = shape_or_zeros(task->zshape);
  const int32_t *const decimation = task->decimation ? task->decimation : units;
  int32_t first[largest_dims] = {};
  if (task->kind == VXS_CC_CORRELATION)
    for (int d = 0; d < largest_dims && d < dims; ++d)
      first[d] = static_cast<int32_t>(1 - int64_t{xshape[d]});
  const int32_t *const start = task->start ? task->start : first;

  const int kind = task->kind != VXS_CC_CONVOLUTION, method = task->mode != VXS_CC_DIRECT;
  if (dims != 1) return Table<Form>::grid[kind][method](QKR_GRID_ARGUMENTS, decimation);
  const auto one = [](const int32_t *strides) { return strides ? strides[0] : 1; };
  return Table<Form>::line[kind][method](x, one(xstride), y, one(ystride), z, one(zstride), xshape[0],
                                         yshape[0], start[0], zshape[0], decimation[0]);
}

auto choose(const ConvCorrTask *task) -> decltype(&execute<DD>) {
  const bool single_data = task->data_precision == VXS_CC_SINGLE;
  const bool single_arithmetic = task->internal_precision == VXS_CC_SINGLE;
  if (single_data) return single_arithmetic ? execute<SS> : execute<SD>;
  return single_arithmetic && task->dims == 1 ? nullptr : execute<DD>;
}

}  // namespace
}  // namespace qkr::convcorr

using namespace qkr::convcorr;

int32_t __vxsExec(ConvCorrTask *task, const void *x, const int32_t *xstride, const void *y,
                  const int32_t *ystride, void *z, const int32_t *zstride) {
  if (!task) return VXS_CC_ERROR_NULL;
  if (task->status) return task->status;
  if (!task->committed) __vxsCommitTask(task);
  const auto function = choose(task);
  task->status = function ? function(task, x, xstride, y, ystride, z, zstride) : VXS_CC_ERROR_NOT_IMPLEMENTED;
  return task->status;
}

int32_t __vxsExecX(ConvCorrTask *task, const void *y, const int32_t *ystride, void *z,
                   const int32_t *zstride) {
  if (!task) return VXS_CC_ERROR_NULL;
  return __vxsExec(task, task->x, task->xstride, y, ystride, z, zstride);
}

#define QKR_EXECUTIONS(kind, Form, method, line, line_nodec, grid, grid_nodec)                    \
  int32_t line(QKR_LINE_PARAMETERS(Form::Data), int32_t decimation) {                             \
    return execute_line<Kind::kind, Form, Method::method>(QKR_LINE_ARGUMENTS, decimation);        \
  }                                                                                               \
  int32_t line_nodec(QKR_LINE_PARAMETERS(Form::Data)) {                                           \
    return execute_line_without_decimation<Kind::kind, Form, Method::method>(QKR_LINE_ARGUMENTS); \
  }                                                                                               \
  int32_t grid(QKR_GRID_PARAMETERS(Form::Data), const int32_t *decimation) {                      \
    return execute_grid<Kind::kind, Form, Method::method>(QKR_GRID_ARGUMENTS, decimation);        \
  }                                                                                               \
  int32_t grid_nodec(QKR_GRID_PARAMETERS(Form::Data)) { return not_implemented(QKR_GRID_ARGUMENTS); }

QKR_EXECUTIONS(convolution, DD, direct, _vxsConvDDDirect1D_dec, _vxsConvDDDirect1D_nodec,
               _vxsConvDDDirectAll_dec, _vxsConvDDDirectAll_nodec)
QKR_EXECUTIONS(convolution, SD, direct, _vxsConvSDDirect1D_dec, _vxsConvSDDirect1D_nodec,
               _vxsConvSDDirectAll_dec, _vxsConvSDDirectAll_nodec)
QKR_EXECUTIONS(convolution, SS, direct, _vxsConvSSDirect1D_dec, _vxsConvSSDirect1D_nodec,
               _vxsConvSSDirectAll_dec, _vxsConvSSDirectAll_nodec)
QKR_EXECUTIONS(correlation, DD, direct, _vxsCorrDDDirect1D_dec, _vxsCorrDDDirect1D_nodec,
               _vxsCorrDDDirectAll_dec, _vxsCorrDDDirectAll_nodec)
QKR_EXECUTIONS(correlation, SD, direct, _vxsCorrSDDirect1D_dec, _vxsCorrSDDirect1D_nodec,
               _vxsCorrSDDirectAll_dec, _vxsCorrSDDirectAll_nodec)
QKR_EXECUTIONS(correlation, SS, direct, _vxsCorrSSDirect1D_dec, _vxsCorrSSDirect1D_nodec,
               _vxsCorrSSDirectAll_dec, _vxsCorrSSDirectAll_nodec)
QKR_EXECUTIONS(convolution, DD, transform, _vxsConvDDFft1D_dec, _vxsConvDDFft1D_nodec, _vxsConvDDFftAll_dec,
               _vxsConvDDFftAll_nodec)
QKR_EXECUTIONS(convolution, SD, transform, _vxsConvSDFft1D_dec, _vxsConvSDFft1D_nodec, _vxsConvSDFftAll_dec,
               _vxsConvSDFftAll_nodec)
QKR_EXECUTIONS(convolution, SS, transform, _vxsConvSSFft1D_dec, _vxsConvSSFft1D_nodec, _vxsConvSSFftAll_dec,
               _vxsConvSSFftAll_nodec)
QKR_EXECUTIONS(correlation, DD, transform, _vxsCorrDDFft1D_dec, _vxsCorrDDFft1D_nodec, _vxsCorrDDFftAll_dec,
               _vxsCorrDDFftAll_nodec)
QKR_EXECUTIONS(correlation, SD, transform, _vxsCorrSDFft1D_dec, _vxsCorrSDFft1D_nodec, _vxsCorrSDFftAll_dec,
               _vxsCorrSDFftAll_nodec)
QKR_EXECUTIONS(correlation, SS, transform, _vxsCorrSSFft1D_dec, _vxsCorrSSFft1D_nodec, _vxsCorrSSFftAll_dec,
               _vxsCorrSSFftAll_nodec)
