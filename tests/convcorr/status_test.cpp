// Statuses of execution, in the order of the checks, with nothing written; which function executes a task;
// and the functions without decimation.
#include "tasks.h"

namespace qkr::tests {
namespace {

// The arguments of an execution function of doubles. Faults are put in from the last check to the first, so
// that each status wins over those of all later checks.
struct Call {
  int32_t kind, dims;
  double numbers[256] = {}, result[256];
  const double *x = numbers, *y = numbers;
  double *z = result;
  Words xshape{4, 3, 2, 1, 1, 1, 1}, yshape{3, 5, 2, 1, 1, 1, 1}, zshape{2, 2, 1, 1, 1, 1, 1};
  Words xstride{1, 4, 12, 24, 24, 24, 24}, ystride{1, 3, 15, 30, 30, 30, 30}, zstride{1, 2, 4, 4, 4, 4, 4};
  Words start{0, 0, 0, 0, 0, 0, 0}, decimation{1, 1, 1, 1, 1, 1, 1};

  Call(int32_t a_kind, int32_t a_dims) : kind(a_kind), dims(a_dims) {
    for (double &v : result) v = 77;
  }
  bool wrote() const {
    for (const double v : result)
      if (v != 77) return true;
    return false;
  }
  int32_t by_grid(int32_t mode) const {
    const auto function = kind == VXS_CC_CONVOLUTION
                              ? (mode == VXS_CC_DIRECT ? _vxsConvDDDirectAll_dec : _vxsConvDDFftAll_dec)
                              : (mode == VXS_CC_DIRECT ? _vxsCorrDDDirectAll_dec : _vxsCorrDDFftAll_dec);
    return function(dims, x, xshape.data(), xstride.data(), y, yshape.data(), ystride.data(), z,
                    zshape.data(), zstride.data(), start.data(), decimation.data());
  }
  int32_t by_task(int32_t mode) const {
    ConvCorrTask *task = nullptr;
    __vxsNewTask(&task, kind, 0, mode, 0, VXS_CC_DOUBLE, dims, xshape.data(), yshape.data(), zshape.data());
    __vxsEditTask(task, VXS_CC_PARAM_START, start.data());
    __vxsEditTask(task, VXS_CC_PARAM_DECIMATION, decimation.data());
    const int32_t status = __vxsExec(task, x, xstride.data(), y, ystride.data(), z, zstride.data());
    EXPECT_EQ(__vxsccGetStatus(task), status);
    __vxsDeleteTask(&task);
    return status;
  }
};

struct Fault {
  int32_t status;
  std::function<void(Call &, int d)> put_in;
};
// By one element, and by so many that 32 bits turn them into none.
const Fault one_beyond = {VXS_CC_ERROR_DECIMATION, [](Call &c, int d) {
                            c.zshape[d] = c.yshape[d] + (c.kind == 1 ? c.xshape[d] : 1);
                          }};
const Fault decimation_beyond = {VXS_CC_ERROR_DECIMATION,
                                 [](Call &c, int d) { c.zshape[d] = 5, c.decimation[d] = 1 << 30; }};
const Fault decimation_zero = {VXS_CC_ERROR_DECIMATION, [](Call &c, int d) { c.decimation[d] = 0; }};
const Fault start_high = {VXS_CC_ERROR_START, [](Call &c, int d) {
                            c.start[d] = c.yshape[d] + (c.kind == 1 ? c.xshape[d] - 1 : 0);
                          }};
const Fault start_low = {VXS_CC_ERROR_START,
                         [](Call &c, int d) { c.start[d] = c.kind == 1 ? -1 : -c.xshape[d]; }};
const Fault zstride = {VXS_CC_ERROR_ZSTRIDE, [](Call &c, int d) { c.zstride[d] = 0; }};
const Fault zshape = {VXS_CC_ERROR_ZSHAPE, [](Call &c, int d) { c.zshape[d] = 0; }};
const Fault yshape = {VXS_CC_ERROR_YSHAPE, [](Call &c, int d) { c.yshape[d] = -1; }};
const Fault xshape = {VXS_CC_ERROR_XSHAPE, [](Call &c, int d) { c.xshape[d] = INT32_MIN; }};
const Fault z_null = {VXS_CC_ERROR_Z, [](Call &c, int) { c.z = nullptr; }};
const Fault y_null = {VXS_CC_ERROR_Y, [](Call &c, int) { c.y = nullptr; }};
const Fault x_null = {VXS_CC_ERROR_X, [](Call &c, int) { c.x = nullptr; }};

constexpr int32_t kinds[] = {VXS_CC_CONVOLUTION, VXS_CC_CORRELATION}, modes[] = {VXS_CC_DIRECT, VXS_CC_FFT};

TEST(Statuses, ComeInTheOrderOfTheChecksInOneDimension) {
  for (const int32_t kind : kinds)
    for (const int32_t mode : modes) {
      Call call(kind, 1);
      for (const Fault &fault : {one_beyond, decimation_beyond, decimation_zero, start_high, zstride, zshape,
                                 z_null, yshape, y_null, xshape, x_null}) {
        fault.put_in(call, 0);
        EXPECT_EQ(call.by_task(mode), fault.status);
      }
      EXPECT_FALSE(call.wrote());
      Call low(kind, 1);
      start_low.put_in(low, 0);
      EXPECT_EQ(low.by_task(mode), VXS_CC_ERROR_START);
      EXPECT_EQ(Call(kind, 1).by_task(mode), VXS_CC_OK);
    }
}

TEST(Statuses, ComeInTheOrderOfTheChecksInSeveralDimensions) {
  for (const int32_t kind : kinds)
    for (const int32_t mode : modes)
      for (int32_t dims = mode == VXS_CC_DIRECT ? 2 : 1; dims <= 7; ++dims) {
        Call call(kind, dims);
        for (int d = dims; d-- > 0;) {  // all checks of a dimension come before those of the next
          Call low = call;
          low.x = low.y = low.numbers, low.z = low.result;
          start_low.put_in(low, d);
          EXPECT_EQ(low.by_grid(mode), VXS_CC_ERROR_START);
          for (const Fault &fault : {one_beyond, decimation_beyond, decimation_zero, start_high, zstride,
                                     zshape, yshape, xshape}) {
            fault.put_in(call, d);
            EXPECT_EQ(call.by_grid(mode), fault.status) << dims << ' ' << d;
            if (dims > 1) {
              EXPECT_EQ(call.by_task(mode), fault.status) << dims << ' ' << d;
            }
          }
        }
        for (const Fault &fault : {z_null, y_null, x_null}) {
          fault.put_in(call, 0);
          EXPECT_EQ(call.by_grid(mode), fault.status);
        }
        for (const int32_t bad : {INT32_MIN, -1, 0, mode == VXS_CC_DIRECT ? 1 : 0, 8, INT32_MAX}) {
          call.dims = bad;
          EXPECT_EQ(call.by_grid(mode), VXS_CC_ERROR_DIMS);
        }
        EXPECT_FALSE(call.wrote());
        EXPECT_EQ(Call(kind, dims).by_grid(mode), VXS_CC_OK);
      }
}

TEST(Statuses, OfMissingShapes) {
  double numbers[64] = {};
  const int32_t shape[] = {2, 2};
  const int32_t statuses[] = {VXS_CC_ERROR_XSHAPE, VXS_CC_ERROR_YSHAPE, VXS_CC_ERROR_ZSHAPE};
  for (const int32_t dims : {1, 2})
    for (const int32_t kind : kinds)
      for (const int32_t mode : modes)
        for (int missing = 0; missing < 3; ++missing) {
          ConvCorrTask *task = nullptr;
          const auto given = [&](int which) { return which == missing ? nullptr : shape; };
          __vxsNewTask(&task, kind, 0, mode, 0, VXS_CC_DOUBLE, dims, given(0), given(1), given(2));
          EXPECT_EQ(__vxsExec(task, numbers, nullptr, numbers, nullptr, numbers, nullptr), statuses[missing]);
          __vxsDeleteTask(&task);
        }
}

// By kind, precisions, mode and dimensions: what is computed, from what data.
TEST(Dispatch, FollowsTheFields) {
  const int32_t two[] = {2, 1}, one[] = {1, 1};
  const double d[] = {1, 0x1p-30}, ones_d[] = {1, 1};
  const float f[] = {1, 0x1p-30f}, ones_f[] = {1, 1};
  for (const int32_t dims : {1, 2})
    for (const int32_t kind : {1, 2, 0, 3, -1})
      for (const int32_t mode : {1, 0, 2, -7})
        for (const int32_t data : {1, 2, 0})
          for (const int32_t internal : {1, 2, 0}) {
            const int32_t start[] = {kind == 1 ? 1 : 0, 0};
            double zd = 77;
            float zf = 77;
            ConvCorrTask *task = nullptr;
            __vxsNewTask(&task, kind, 0, mode, 0, data, dims, two, two, one);
            __vxsEditTask(task, VXS_CC_PARAM_INTERNAL_PRECISION, &internal);
            __vxsEditTask(task, VXS_CC_PARAM_START, start);
            const bool refused = data != 1 && internal == 1 && dims == 1;
            EXPECT_EQ(data == 1 ? __vxsExec(task, f, nullptr, ones_f, nullptr, &zf, nullptr)
                                : __vxsExec(task, d, nullptr, ones_d, nullptr, &zd, nullptr),
                      refused ? VXS_CC_ERROR_NOT_IMPLEMENTED : VXS_CC_OK);
            EXPECT_NEAR(zf, data == 1 ? 1 : 77, 1e-6);
            EXPECT_NEAR(zd, data == 1 || refused ? 77 : 1 + 0x1p-30, mode == 1 ? 0 : 1e-15);
            __vxsDeleteTask(&task);
          }
}

template <class T>
using Line = int32_t (*)(const T *, int32_t, const T *, int32_t, T *, int32_t, int32_t, int32_t, int32_t,
                         int32_t);
template <class T>
using Grid = int32_t (*)(int32_t, const T *, const int32_t *, const int32_t *, const T *, const int32_t *,
                         const int32_t *, T *, const int32_t *, const int32_t *, const int32_t *);

template <class T>
int32_t call(Line<T> function, const T *x, const T *y, T *z) {
  return function(x, 1, y, 1, z, 1, 2, 3, 0, 2);
}
template <class T>
int32_t call(Grid<T> function, const T *x, const T *y, T *z) {
  const int32_t shape[] = {2, 2}, start[] = {0, 0};
  return function(2, x, shape, nullptr, y, shape, nullptr, z, shape, nullptr, start);
}
template <class T, template <class> class Function>
void expect_refusals(std::initializer_list<Function<T>> functions) {
  for (const auto function : functions) {
    const T x[4] = {1, 2, 3, 4};
    T z[4] = {77, 77, 77, 77};
    EXPECT_EQ(call<T>(function, x, x, z), VXS_CC_ERROR_NOT_IMPLEMENTED);
    EXPECT_EQ(z[0], 77);
  }
}

TEST(WithoutDecimation, OnlyOneDimensionInSingleArithmeticComputes) {
  const float x[] = {2, 3}, y[] = {5, 7, 11};
  float z[2];
  EXPECT_EQ(call<float>(_vxsConvSSDirect1D_nodec, x, y, z), VXS_CC_OK);
  EXPECT_EQ(z[0], 10);
  EXPECT_EQ(z[1], 29);
  EXPECT_EQ(call<float>(_vxsCorrSSDirect1D_nodec, x, y, z), VXS_CC_OK);
  EXPECT_EQ(z[0], 31);
  EXPECT_EQ(z[1], 47);
  EXPECT_EQ(_vxsCorrSSDirect1D_nodec(x, 1, y, 1, z, 0, 2, 3, 0, 2), VXS_CC_ERROR_ZSTRIDE);
  EXPECT_EQ(_vxsCorrSSDirect1D_nodec(x, 1, y, 1, z, 1, 2, 3, 2, 2), VXS_CC_ERROR_DECIMATION);
  expect_refusals<double, Line>(
      {_vxsConvDDDirect1D_nodec, _vxsCorrDDDirect1D_nodec, _vxsConvDDFft1D_nodec, _vxsCorrDDFft1D_nodec});
  expect_refusals<float, Line>({_vxsConvSDDirect1D_nodec, _vxsCorrSDDirect1D_nodec, _vxsConvSDFft1D_nodec,
                                _vxsCorrSDFft1D_nodec, _vxsConvSSFft1D_nodec, _vxsCorrSSFft1D_nodec});
  expect_refusals<double, Grid>(
      {_vxsConvDDDirectAll_nodec, _vxsCorrDDDirectAll_nodec, _vxsConvDDFftAll_nodec, _vxsCorrDDFftAll_nodec});
  expect_refusals<float, Grid>({_vxsConvSDDirectAll_nodec, _vxsConvSSDirectAll_nodec,
                                _vxsCorrSDDirectAll_nodec, _vxsCorrSSDirectAll_nodec, _vxsConvSDFftAll_nodec,
                                _vxsConvSSFftAll_nodec, _vxsCorrSDFftAll_nodec, _vxsCorrSSFftAll_nodec});
}

}  // namespace
}  // namespace qkr::tests
