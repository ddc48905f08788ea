// What is checked before either method begins.
#include "convcorr/problem.h"

namespace qkr::convcorr {
namespace {

int32_t check_result(Kind kind, const Axis &axis) {
  if (axis.z.count < 1) return VXS_CC_ERROR_ZSHAPE;
  if (axis.z.stride == 0) return VXS_CC_ERROR_ZSTRIDE;
  const bool convolves = kind == Kind::convolution;
  const int64_t first = convolves ? 0 : 1 - axis.x.count;
  const int64_t last = convolves ? axis.x.count + axis.y.count - 2 : axis.y.count - 1;
  if (axis.start < first || axis.start > last) return VXS_CC_ERROR_START;
  if (axis.decimation < 1) return VXS_CC_ERROR_DECIMATION;
  return axis.start + (axis.z.count - 1) * axis.decimation > last ? VXS_CC_ERROR_DECIMATION : VXS_CC_OK;
}

}  // namespace

int32_t check_line(const Problem &problem, const void *x, const void *y, const void *z) {
  const Axis &axis = problem.axis[0];
  if (!x) return VXS_CC_ERROR_X;
  if (axis.x.count < 1) return VXS_CC_ERROR_XSHAPE;
  if (!y) return VXS_CC_ERROR_Y;
  if (axis.y.count < 1) return VXS_CC_ERROR_YSHAPE;
  if (!z) return VXS_CC_ERROR_Z;
  return check_result(problem.kind, axis);
}

int32_t check_grid(const Problem &problem, const void *x, const void *y, const void *z) {
  if (!x) return VXS_CC_ERROR_X;
  if (!y) return VXS_CC_ERROR_Y;
  if (!z) return VXS_CC_ERROR_Z;
  for (int d = 0; d < problem.dims; ++d) {
    const Axis &axis = problem.axis[d];
    if (axis.x.count < 1) return VXS_CC_ERROR_XSHAPE;
    if (axis.y.count < 1) return VXS_CC_ERROR_YSHAPE;
    if (const int32_t status = check_result(problem.kind, axis)) return status;
  }
  return VXS_CC_OK;
}

}  // namespace qkr::convcorr
