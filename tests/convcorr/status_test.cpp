// Statuses of execution, in the order of the checks, with nothing written; and which function executes a
// task.
#include "tasks.h"

namespace qkr::tests {
namespace {

constexpr int32_t kinds[] = {VXS_CC_CONVOLUTION, VXS_CC_CORRELATION}, modes[] = {VXS_CC_DIRECT, VXS_CC_FFT};

// The arguments of an execution of doubles, by a task or by the function for several dimensions.
struct Call {
  bool by_task;
  int32_t kind, mode, dims;
  double numbers[256] = {}, result[256] = {};
  const double *x = numbers, *y = numbers;
  double *z = result;
  Words xshape{4, 3, 2, 1, 1, 1, 1}, yshape{3, 5, 2, 1, 1, 1, 1}, zshape{2, 2, 1, 1, 1, 1, 1};
  Words xstride{1, 4, 12, 24, 24, 24, 24}, ystride{1, 3, 15, 30, 30, 30, 30}, zstride{1, 2, 4, 4, 4, 4, 4};
  Words start{0, 0, 0, 0, 0, 0, 0}, decimation{1, 1, 1, 1, 1, 1, 1};

  int32_t lowest(int d) const { return kind == VXS_CC_CONVOLUTION ? 0 : 1 - xshape[d]; }
  int32_t highest(int d) const { return yshape[d] - 1 + (kind == VXS_CC_CONVOLUTION ? xshape[d] - 1 : 0); }
  int32_t run() {
    std::fill_n(result, 256, 77);
    if (!by_task) {
      const auto function = kind == VXS_CC_CONVOLUTION
                                ? (mode == VXS_CC_DIRECT ? _vxsConvDDDirectAll_dec : _vxsConvDDFftAll_dec)
                                : (mode == VXS_CC_DIRECT ? _vxsCorrDDDirectAll_dec : _vxsCorrDDFftAll_dec);
      return function(dims, x, xshape.data(), xstride.data(), y, yshape.data(), ystride.data(), z,
                      zshape.data(), zstride.data(), start.data(), decimation.data());
    }
    ConvCorrTask *task = nullptr;
    __vxsNewTask(&task, kind, 0, mode, 0, VXS_CC_DOUBLE, dims, words_or_null(xshape), words_or_null(yshape),
                 words_or_null(zshape));
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
  void (*put_in)(Call &call, int d);
};
// Of a dimension, from the last check to the first: the last element beyond the result by one, and by so many
// that 32 bits turn them into none.
const Fault of_dimension[] = {
    {VXS_CC_ERROR_DECIMATION, [](Call &c, int d) { c.zshape[d] = c.highest(d) + 2; }},
    {VXS_CC_ERROR_DECIMATION, [](Call &c, int d) { c.zshape[d] = 5, c.decimation[d] = 1 << 30; }},
    {VXS_CC_ERROR_DECIMATION, [](Call &c, int d) { c.decimation[d] = 0; }},
    {VXS_CC_ERROR_START, [](Call &c, int d) { c.start[d] = c.highest(d) + 1; }},
    {VXS_CC_ERROR_START, [](Call &c, int d) { c.start[d] = c.lowest(d) - 1; }},
    {VXS_CC_ERROR_ZSTRIDE, [](Call &c, int d) { c.zstride[d] = 0; }},
    {VXS_CC_ERROR_ZSHAPE, [](Call &c, int d) { c.zshape[d] = 0; }},
    {VXS_CC_ERROR_YSHAPE, [](Call &c, int d) { c.yshape[d] = -1; }},
    {VXS_CC_ERROR_XSHAPE, [](Call &c, int d) { c.xshape[d] = INT32_MIN; }}};
const Fault z_null = {VXS_CC_ERROR_Z, [](Call &c, int) { c.z = nullptr; }};
const Fault y_null = {VXS_CC_ERROR_Y, [](Call &c, int) { c.y = nullptr; }};
const Fault x_null = {VXS_CC_ERROR_X, [](Call &c, int) { c.x = nullptr; }};

// Faults are put in from the last check to the first, so that each status wins over those of later checks.
void expect_order(const Call &good) {
  std::vector<std::pair<Fault, int>> faults;
  for (int d = good.dims; d-- > 0;)  // all checks of a dimension come before those of the next
    for (const Fault &fault : of_dimension) faults.push_back({fault, d});
  const bool line = good.by_task && good.dims == 1;
  const auto position = [&](int from_end) { return line ? faults.end() - from_end : faults.end(); };
  faults.insert(position(2), {z_null, 0});
  faults.insert(position(1), {y_null, 0});
  faults.push_back({x_null, 0});

  Call call = good;
  call.x = call.y = call.numbers, call.z = call.result;
  EXPECT_EQ(call.run(), VXS_CC_OK);
  for (const auto &[fault, d] : faults) {
    fault.put_in(call, d);
    EXPECT_EQ(call.run(), fault.status) << call.dims << ' ' << d;
    EXPECT_EQ(std::count(call.result, call.result + 256, 77), 256);
  }
  if (call.by_task) return;
  for (const int32_t bad : {INT32_MIN, -1, 0, call.mode == VXS_CC_DIRECT ? 1 : 0, 8, INT32_MAX}) {
    call.dims = bad;
    EXPECT_EQ(call.run(), VXS_CC_ERROR_DIMS);
  }
}

TEST(Statuses, ComeInTheOrderOfTheChecks) {
  for (const int32_t kind : kinds)
    for (const int32_t mode : modes) {
      for (int32_t dims = 1; dims <= 7; ++dims) {
        expect_order({true, kind, mode, dims});
        if (dims > 1 || mode == VXS_CC_FFT) expect_order({false, kind, mode, dims});
      }
      for (const int32_t dims : {1, 2})
        for (const auto &[shape, status] : {std::pair(&Call::xshape, VXS_CC_ERROR_XSHAPE),
                                            {&Call::yshape, VXS_CC_ERROR_YSHAPE},
                                            {&Call::zshape, VXS_CC_ERROR_ZSHAPE}}) {
          Call call = {true, kind, mode, dims};
          (call.*shape).clear();
          EXPECT_EQ(call.run(), status);
        }
    }
}

// By kind, precisions, mode and dimensions: what is computed, by which method, from what data.
TEST(Dispatch, FollowsTheFields) {
  // The infinity has no term in the first result, which it reaches through transforms of several dimensions.
  const double xd[] = {1, 0x1p-30, -1}, yd[] = {1, 1, 1, INFINITY};
  const float xf[] = {1, 0x1p-30f, -1}, yf[] = {1, 1, 1, INFINITY};
  for (const int32_t dims : {1, 2})
    for (const int32_t kind : {1, 2, 0, 3, -1})
      for (const int32_t mode : {1, 0, 2, -7})
        for (const int32_t data : {1, 2, 0})
          for (const int32_t internal : {1, 2, 0}) {
            const Words xshape = {3, 1}, yshape = {dims == 1 ? 3 : 4, 1}, zshape = {2, 1};
            const Words start = {kind == 1 ? 2 : 0, 0};
            double zd[] = {77, 77};
            float zf[] = {77, 77};
            ConvCorrTask *task = nullptr;
            __vxsNewTask(&task, kind, 0, mode, 0, data, dims, xshape.data(), yshape.data(), zshape.data());
            __vxsEditTask(task, VXS_CC_PARAM_INTERNAL_PRECISION, &internal);
            __vxsEditTask(task, VXS_CC_PARAM_START, start.data());
            const bool single_data = data == 1, in_single = single_data && internal == 1;
            const bool refused = !single_data && internal == 1 && dims == 1;
            EXPECT_EQ(single_data ? __vxsExec(task, xf, nullptr, yf, nullptr, zf, nullptr)
                                  : __vxsExec(task, xd, nullptr, yd, nullptr, zd, nullptr),
                      refused ? VXS_CC_ERROR_NOT_IMPLEMENTED : VXS_CC_OK);
            __vxsDeleteTask(&task);
            EXPECT_EQ(single_data ? zd[0] : zf[0], 77);
            const double z = single_data ? zf[0] : zd[0], sum = refused ? 77 : in_single ? 0 : 0x1p-30;
            const double tolerance = mode == VXS_CC_DIRECT ? 0 : in_single ? 1e-6 : 1e-15;
            EXPECT_TRUE(dims == 2 && mode != VXS_CC_DIRECT ? std::isnan(z) : std::abs(z - sum) <= tolerance);
          }
}

// The functions do what their names say: as a task does it. Without decimation only one dimension, by the
// direct method in single arithmetic, is computed.
template <class Form, class Line, class LineNodec, class Grid, class GridNodec>
void expect_task(int32_t kind, int32_t mode, Line line, LineNodec line_nodec, Grid grid,
                 GridNodec grid_nodec) {
  const auto expect = [&](const Operation &o, bool computed, auto function, auto... decimation) {
    Arrays<Form> a(o), by_task(o);
    if (computed) execute(o, mode, by_task);
    EXPECT_EQ(function(a, o.zshape.data(), decimation...),
              computed ? VXS_CC_OK : VXS_CC_ERROR_NOT_IMPLEMENTED);
    EXPECT_EQ(a.z, by_task.z);
  };
  const auto line_of = [](auto function) {
    return [=](Arrays<Form> &a, const int32_t *zshape, auto... step) {
      return function(a.x.data(), 1, a.y.data(), 1, a.z.data(), 1, 200, 500, 3, zshape[0], step...);
    };
  };
  const auto grid_of = [](auto function) {
    return [=](Arrays<Form> &a, const int32_t *zshape, auto... step) {
      const int32_t xshape[] = {9, 7}, yshape[] = {20, 30}, start[] = {1, 0};
      return function(2, a.x.data(), xshape, nullptr, a.y.data(), yshape, nullptr, a.z.data(), zshape,
                      nullptr, start, step...);
    };
  };
  const Words steps = {2, 1};
  const Operation dense_line = {kind, {200}, {500}, {100}, {3}},
                  dense_grid = {kind, {9, 7}, {20, 30}, {8, 9}, {1, 0}};
  Operation o = dense_line;
  expect(o, sizeof(typename Form::Real) == 4 && mode == VXS_CC_DIRECT, line_of(line_nodec));
  o.decimation = {2};
  expect(o, true, line_of(line), 2);
  o = dense_grid;
  expect(o, false, grid_of(grid_nodec));
  o.decimation = steps;
  expect(o, true, grid_of(grid), steps.data());
}
#define QKR_EXPECT_TASK(Form, kind, mode, name) \
  expect_task<Form>(kind, mode, name##1D_dec, name##1D_nodec, name##All_dec, name##All_nodec)

TEST(Dispatch, FunctionsComputeWhatTheyAreNamedAfter) {
  QKR_EXPECT_TASK(DD, VXS_CC_CONVOLUTION, VXS_CC_DIRECT, _vxsConvDDDirect);
  QKR_EXPECT_TASK(SD, VXS_CC_CONVOLUTION, VXS_CC_DIRECT, _vxsConvSDDirect);
  QKR_EXPECT_TASK(SS, VXS_CC_CONVOLUTION, VXS_CC_DIRECT, _vxsConvSSDirect);
  QKR_EXPECT_TASK(DD, VXS_CC_CORRELATION, VXS_CC_DIRECT, _vxsCorrDDDirect);
  QKR_EXPECT_TASK(SD, VXS_CC_CORRELATION, VXS_CC_DIRECT, _vxsCorrSDDirect);
  QKR_EXPECT_TASK(SS, VXS_CC_CORRELATION, VXS_CC_DIRECT, _vxsCorrSSDirect);
  QKR_EXPECT_TASK(DD, VXS_CC_CONVOLUTION, VXS_CC_FFT, _vxsConvDDFft);
  QKR_EXPECT_TASK(SD, VXS_CC_CONVOLUTION, VXS_CC_FFT, _vxsConvSDFft);
  QKR_EXPECT_TASK(SS, VXS_CC_CONVOLUTION, VXS_CC_FFT, _vxsConvSSFft);
  QKR_EXPECT_TASK(DD, VXS_CC_CORRELATION, VXS_CC_FFT, _vxsCorrDDFft);
  QKR_EXPECT_TASK(SD, VXS_CC_CORRELATION, VXS_CC_FFT, _vxsCorrSDFft);
  QKR_EXPECT_TASK(SS, VXS_CC_CORRELATION, VXS_CC_FFT, _vxsCorrSSFft);
}

}  // namespace
}  // namespace qkr::tests
