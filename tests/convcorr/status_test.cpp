// Statuses of execution, in the order of the checks, with nothing written; and which function executes a
// task.
#include "tasks.h"

namespace qkr::tests {
namespace {

// An execution of doubles.
struct Call {
  Operation o;
  int32_t mode;
  bool has_x = true, has_y = true, has_z = true;

  int32_t status() const {
    const double operand[256] = {};
    double result[256];
    std::fill_n(result, 256, 77);
    const Task task = make_task(o, mode, VXS_CC_DOUBLE, VXS_CC_DOUBLE);
    const int32_t status =
        __vxsExec(task.get(), has_x ? operand : nullptr, nullptr, has_y ? operand : nullptr, nullptr,
                  has_z ? result : nullptr, o.z.stride.data());
    EXPECT_EQ(__vxsccGetStatus(task.get()), status);
    EXPECT_TRUE(status == VXS_CC_OK || std::count(result, result + 256, 77) == 256);
    return status;
  }
};

// What may be wrong with dimension d, or with an array, from the last check of one dimension to the first.
const struct Fault {
  int32_t status;
  void (*put_in)(Call &call, int d);
  bool of_array = false;
} faults[] = {
    // The last element beyond the result by one, and by so many that 32 bits turn them into none.
    {VXS_CC_ERROR_DECIMATION, [](Call &c, int d) { c.o.z.shape[d] = c.o.highest(d) - c.o.lowest(d) + 2; }},
    {VXS_CC_ERROR_DECIMATION, [](Call &c, int d) { c.o.z.shape[d] = 5, c.o.decimation[d] = 1 << 30; }},
    {VXS_CC_ERROR_DECIMATION, [](Call &c, int d) { c.o.decimation[d] = 0; }},
    {VXS_CC_ERROR_START, [](Call &c, int d) { c.o.start[d] = c.o.highest(d) + 1; }},
    {VXS_CC_ERROR_START, [](Call &c, int d) { c.o.start[d] = c.o.lowest(d) - 1; }},
    {VXS_CC_ERROR_ZSTRIDE, [](Call &c, int d) { c.o.z.stride[d] = 0; }},
    {VXS_CC_ERROR_ZSHAPE, [](Call &c, int d) { c.o.z.shape[d] = 0; }},
    {VXS_CC_ERROR_Z, [](Call &c, int) { c.has_z = false; }, true},
    {VXS_CC_ERROR_YSHAPE, [](Call &c, int d) { c.o.y.shape[d] = 0; }},
    {VXS_CC_ERROR_Y, [](Call &c, int) { c.has_y = false; }, true},
    {VXS_CC_ERROR_XSHAPE, [](Call &c, int d) { c.o.x.shape[d] = 0; }},
    {VXS_CC_ERROR_XSHAPE, [](Call &c, int d) { c.o.x.shape[d] = INT32_MIN; }},
    {VXS_CC_ERROR_X, [](Call &c, int) { c.has_x = false; }, true}};

// They are put in from the last check to the first, so that each status wins over those of later checks: in
// several dimensions arrays come first, and all checks of a dimension before those of the next.
TEST(Statuses, ComeInTheOrderOfTheChecks) {
  for (const int32_t kind : {VXS_CC_CONVOLUTION, VXS_CC_CORRELATION})
    for (const int32_t mode : {VXS_CC_DIRECT, VXS_CC_FFT})
      for (const int dims : {1, 2, 3, 7}) {
        const Words twos(dims, 2);
        Call call = {{kind, {twos}, {twos}, {twos, dense(twos)}, {}, twos}, mode};
        for (int d = 0; d < dims; ++d) call.o.start.push_back(call.o.lowest(d));
        EXPECT_EQ(call.status(), VXS_CC_OK);
        for (const auto &[operand, status] : {std::pair(&Operation::x, VXS_CC_ERROR_XSHAPE),
                                              {&Operation::y, VXS_CC_ERROR_YSHAPE},
                                              {&Operation::z, VXS_CC_ERROR_ZSHAPE}}) {
          Call without_shape = call;
          (without_shape.o.*operand).shape.clear();
          EXPECT_EQ(without_shape.status(), status);
        }
        std::vector<std::pair<Fault, int>> order;
        for (int d = dims; d-- > 0;)
          for (const Fault &fault : faults)
            if (dims == 1 || !fault.of_array) order.push_back({fault, d});
        for (const Fault &fault : faults)
          if (dims > 1 && fault.of_array) order.push_back({fault, 0});
        for (const auto &[fault, d] : order) {
          fault.put_in(call, d);
          EXPECT_EQ(call.status(), fault.status) << dims << ' ' << d;
        }
      }
  for (const int dims : {0, 8, 100}) {  // what the record has no room for is not copied
    const Words twos(dims, 2);
    EXPECT_EQ(Call({{1, {twos}, {twos}, {twos}, twos, twos}, 1}).status(), VXS_CC_ERROR_DIMS);
  }
}

// The functions of a form, kind and method compute what its tasks do, whatever words the task has for these.
// Without decimation only the direct method in one dimension of single arithmetic computes.
template <class Form, class Line, class LineNodec, class Grid, class GridNodec>
void expect_tasks(int32_t kind, int32_t mode, Line line, LineNodec line_nodec, Grid grid,
                  GridNodec grid_nodec) {
  constexpr bool single_data = sizeof(typename Form::Data) == 4, in_single = sizeof(typename Form::Real) == 4;
  const auto expect = [&](Operation o, bool computes, auto function) {
    Arrays<Form> ours(o), tasks(o);
    EXPECT_EQ(function(ours.x.data(), ours.y.data(), ours.z.data()),
              computes ? VXS_CC_OK : VXS_CC_ERROR_NOT_IMPLEMENTED);
    EXPECT_TRUE(computes || ours.result() == tasks.result());
    for (o.kind = -1; computes && o.kind <= 3; ++o.kind)
      for (int32_t other_mode = -1; other_mode <= 3; ++other_mode)
        for (int32_t data = 0; data <= 2; ++data)
          for (int32_t internal = 0; internal <= 2; ++internal) {
            if ((o.kind == 1) != (kind == 1) || (other_mode == 1) != (mode == 1)) continue;
            if ((data == 1) != single_data || (single_data && (internal == 1) != in_single)) continue;
            const bool refused = !single_data && internal == 1 && o.dims() == 1;
            tasks.clear();
            EXPECT_EQ(execute(make_task(o, other_mode, data, internal), o, tasks),
                      refused ? VXS_CC_ERROR_NOT_IMPLEMENTED : VXS_CC_OK);
            EXPECT_TRUE(refused || tasks.result() == ours.result());
          }
  };
  const int32_t xshape[] = {20, 7}, yshape[] = {90, 30}, zshape[] = {40, 9}, start[] = {3, 1},
                steps[] = {2, 1};
  expect({kind, {{20}}, {{90}}, {{40}}, {3}}, in_single && mode == VXS_CC_DIRECT,
         [&](auto x, auto y, auto z) { return line_nodec(x, 1, y, 1, z, 1, 20, 90, 3, 40); });
  expect({kind, {{20}}, {{90}}, {{40}}, {3}, {2}}, true,
         [&](auto x, auto y, auto z) { return line(x, 1, y, 1, z, 1, 20, 90, 3, 40, 2); });
  const Operation a_grid = {kind, {{20, 7}}, {{90, 30}}, {{40, 9}}, {3, 1}, {2, 1}};
  expect(a_grid, false, [&](auto x, auto y, auto z) {
    return grid_nodec(2, x, xshape, nullptr, y, yshape, nullptr, z, zshape, nullptr, start);
  });
  expect(a_grid, true, [&](auto x, auto y, auto z) {
    for (const int32_t dims : {INT32_MIN, 0, mode == VXS_CC_DIRECT ? 1 : -1, 8, INT32_MAX})
      EXPECT_EQ(grid(dims, x, xshape, nullptr, y, yshape, nullptr, z, zshape, nullptr, start, steps),
                VXS_CC_ERROR_DIMS);
    return grid(2, x, xshape, nullptr, y, yshape, nullptr, z, zshape, nullptr, start, steps);
  });
}
#define QKR_EXPECT_TASKS(Form, kind, mode, name) \
  expect_tasks<Form>(kind, mode, name##1D_dec, name##1D_nodec, name##All_dec, name##All_nodec)

TEST(Functions, ComputeWhatTasksDo) {
  QKR_EXPECT_TASKS(DD, VXS_CC_CONVOLUTION, VXS_CC_DIRECT, _vxsConvDDDirect);
  QKR_EXPECT_TASKS(SD, VXS_CC_CONVOLUTION, VXS_CC_DIRECT, _vxsConvSDDirect);
  QKR_EXPECT_TASKS(SS, VXS_CC_CONVOLUTION, VXS_CC_DIRECT, _vxsConvSSDirect);
  QKR_EXPECT_TASKS(DD, VXS_CC_CORRELATION, VXS_CC_DIRECT, _vxsCorrDDDirect);
  QKR_EXPECT_TASKS(SD, VXS_CC_CORRELATION, VXS_CC_DIRECT, _vxsCorrSDDirect);
  QKR_EXPECT_TASKS(SS, VXS_CC_CORRELATION, VXS_CC_DIRECT, _vxsCorrSSDirect);
  QKR_EXPECT_TASKS(DD, VXS_CC_CONVOLUTION, VXS_CC_FFT, _vxsConvDDFft);
  QKR_EXPECT_TASKS(SD, VXS_CC_CONVOLUTION, VXS_CC_FFT, _vxsConvSDFft);
  QKR_EXPECT_TASKS(SS, VXS_CC_CONVOLUTION, VXS_CC_FFT, _vxsConvSSFft);
  QKR_EXPECT_TASKS(DD, VXS_CC_CORRELATION, VXS_CC_FFT, _vxsCorrDDFft);
  QKR_EXPECT_TASKS(SD, VXS_CC_CORRELATION, VXS_CC_FFT, _vxsCorrSDFft);
  QKR_EXPECT_TASKS(SS, VXS_CC_CORRELATION, VXS_CC_FFT, _vxsCorrSSFft);
}

}  // namespace
}  // namespace qkr::tests
