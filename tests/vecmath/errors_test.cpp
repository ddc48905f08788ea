// What the dispatchers and the standard handlers do with a bad element.
#include <errno.h>
#include <fcntl.h>
#include <fenv.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tuple>
#include <unistd.h>

#include "tests/vecmath/fresh_thread.h"
#include "vecmath/errors/gate.h"

using namespace qkr;

namespace {

constexpr int events = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW | FE_UNDERFLOW;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

VxmErrorContext seen;  // by the callbacks
int calls;

template <int32_t answer, VxmMode mode = 0>
int32_t replace_and(VxmErrorContext *record) {
  seen = *record;
  ++calls;
  record->iCode = VXM_STATUS_BADMEM;  // does not keep the results from being written
  record->dbR1 = 5;
  record->dbR2 = 6;
  _vxmSetMode(mode);
  return answer;
}
constexpr VxmErrorCallBack replace_and_go_on = replace_and<0>, replace_and_stop = replace_and<1>,
                           ask_for_silence = replace_and<0, 0xE000>;

// The dispatcher of each precision; its gate is the overloaded report_error.
template <typename Real>
using Report = void (*)(int32_t, int32_t, const Real *, const Real *, Real *, Real *, const char *);
template <typename Real>
constexpr Report<Real> dispatcher = {};
template <>
constexpr Report<double> dispatcher<double> = _vxmdError;
template <>
constexpr Report<float> dispatcher<float> = _vxmsError;

template <typename Real>
struct Dispatch : testing::Test {};
using Precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(Dispatch, Precisions, );

TYPED_TEST(Dispatch, CallbackAndModeDecide) {
  const struct {
    VxmMode mode;
    VxmErrorCallBack callback;
    int calls, error;
    double r1, r2;
  } rows[] = {
      {VXM_MODE_DEFAULT, nullptr, 0, EDOM, 3, 4},
      {VXM_MODE_DEFAULT, replace_and_go_on, 1, EACCES, 5, 6},  // handlers see the changed code
      {VXM_MODE_DEFAULT, replace_and_stop, 1, 0, 3, 4},
      {VXM_MODE_DEFAULT, ask_for_silence, 1, 0, 5, 6},
      {VXM_MODE_ERRNO, replace_and_go_on, 0, EDOM, 3, 4},  // installed, but switched off
      {VXM_MODE_IGNORE, replace_and_go_on, 0, 0, 3, 4},
      {VXM_MODE_IGNORE | VXM_MODE_CALLBACK, replace_and_go_on, 1, 0, 5, 6},
      {0x2000, replace_and_go_on, 1, 0, 5, 6},  // the bits without a function count
  };
  for (const auto &row : rows)
    for (const Report<TypeParam> report : {dispatcher<TypeParam>, Report<TypeParam>(report_error)})
      in_fresh_thread([&] {
        const TypeParam a[] = {0, 0, 1}, b[] = {0, 0, 2};
        TypeParam r1[] = {0, 0, 3}, r2[] = {0, 0, 4};
        _vxmSetErrorCallBack(row.callback);
        _vxmSetMode(row.mode);
        calls = errno = 0;
        report(VXM_STATUS_ERRDOM, 2, a, b, r1, r2, "_vxmdAtan2_HA");
        const int error = errno;
        EXPECT_EQ(_vxmGetErrStatus(), VXM_STATUS_ERRDOM);
        EXPECT_EQ((std::tuple{calls, error, r1[2], r2[2]}),
                  (std::tuple{row.calls, row.error, TypeParam(row.r1), TypeParam(row.r2)}))
            << std::hex << row.mode;
        if (!calls) return;
        EXPECT_EQ((std::tuple{seen.iCode, seen.iIndex, seen.dbA1, seen.dbA2, seen.dbR1, seen.dbR2}),
                  (std::tuple{VXM_STATUS_ERRDOM, 2, 1.0, 2.0, 3.0, 4.0}));
        EXPECT_STREQ(seen.cFuncName, "_vxmdAtan2_HA");
        EXPECT_EQ(seen.iFuncNameLen, 13);
      });
}

// Both results go to one vector, where the first one wins.
TYPED_TEST(Dispatch, IndexCountsFromTheWholeVector) {
  TypeParam whole[24] = {};
  whole[13] = 13;
  const struct {
    const void *start;
    int32_t index;
  } rows[] = {{whole, 13}, {nullptr, 3}, {whole + 20, -7}, {reinterpret_cast<char *>(whole + 20) + 1, -8}};
  for (const auto &row : rows)
    in_fresh_thread([&] {
      TypeParam r[4] = {};
      _vxmSetErrorCallBack(replace_and_go_on);
      _vxmSetInterfInputVectorPointer(row.start);
      dispatcher<TypeParam>(VXM_STATUS_SING, 3, whole + 10, whole + 10, r, r, "");
      EXPECT_EQ(seen.iIndex, row.index);
      EXPECT_EQ(seen.dbA1, 13);
      EXPECT_EQ(r[3], 5);
    });
}

TYPED_TEST(Dispatch, BadArgumentsMayComeWithNullVectors) {
  for (int32_t status : {VXM_STATUS_BADMEM, VXM_STATUS_BADSIZE})
    in_fresh_thread([&] {
      _vxmSetErrorCallBack(replace_and_go_on);
      dispatcher<TypeParam>(status, -4, nullptr, nullptr, nullptr, nullptr, "f");
      EXPECT_EQ((std::tuple{seen.iCode, seen.iIndex, _vxmGetErrStatus()}), (std::tuple{status, -4, status}));
    });
}

TYPED_TEST(Dispatch, LongNamesAreCutAt64) {
  for (size_t length : {0, 63, 64, 65, 200})
    in_fresh_thread([&] {
      const std::string name(length, 'n'), kept(std::min<size_t>(length, 64), 'n');
      const TypeParam a[] = {7};
      TypeParam r[] = {8};
      _vxmSetErrorCallBack([](VxmErrorContext *record) { return seen = *record, 0; });
      _vxmSetMode(VXM_MODE_STDERR | VXM_MODE_CALLBACK);
      testing::internal::CaptureStderr();
      dispatcher<TypeParam>(VXM_STATUS_SING, 0, a, a, r, r, name.c_str());
      EXPECT_EQ(testing::internal::GetCapturedStderr(),
                "Error (VXM_STATUS_SING) in " + kept + ": argument caused singularity\na(0)=7\nr(0)=8\n");
      EXPECT_EQ(std::string(seen.cFuncName, static_cast<size_t>(seen.iFuncNameLen)), kept);
    });
}

// With a callback and without, the two ways that a report takes.
TEST(Handlers, StatusAndModeDecideErrnoEventAndMessage) {
  constexpr VxmMode all = VXM_MODE_ERRNO | VXM_MODE_STDERR | VXM_MODE_EXCEPT;
  constexpr int untouched = 99;
  const std::string in = ") in _vxmdExp_HA: ", values = "a(1)=3\nr(1)=0\n",
                    singular = "Error (VXM_STATUS_SING" + in + "argument caused singularity\n" + values;
  const struct {
    int32_t status;
    VxmMode mode;
    int error, raised;
    std::string message;
  } rows[] = {
      {-2, all, 13, 0, "Error (VXM_STATUS_BADMEM" + in + "NULL pointer is passed\n"},
      {-1, all, 22, 0, "Error (VXM_STATUS_BADSIZE" + in + "array size 1 is not positive\n"},
      {0, all, 0, 0, ""},
      {1, all, 33, FE_INVALID, "Error (VXM_STATUS_ERRDOM" + in + "argument is out of domain\n" + values},
      {2, all, 34, FE_DIVBYZERO, singular},
      {2, VXM_MODE_ERRNO, 34, 0, ""},
      {2, VXM_MODE_STDERR, untouched, 0, singular},
      {2, VXM_MODE_EXCEPT, untouched, FE_DIVBYZERO, ""},
      {3, all, 34, 0, "Error (VXM_STATUS_OVERFLOW" + in + "argument caused overflow\n" + values},
      {4, all, 34, FE_UNDERFLOW, "Error (VXM_STATUS_UNDERFLOW" + in + "argument caused underflow\n" + values},
      {5, all, 14, 0, "Unknown error in _vxmdExp_HA" + values},
      {-3, all, 14, 0, "Unknown error in _vxmdExp_HA" + values}};
  for (const auto &row : rows)
    for (const VxmErrorCallBack callback : {VxmErrorCallBack(), VxmErrorCallBack([](auto *) { return 0; })})
      in_fresh_thread([&] {
        SCOPED_TRACE(testing::Message() << row.status << " in mode " << row.mode);
        const double a[] = {1, 3};
        double r[] = {1, 0};
        _vxmSetMode(row.mode);
        _vxmSetErrorCallBack(callback);
        feclearexcept(FE_ALL_EXCEPT);
        testing::internal::CaptureStderr();
        errno = untouched;
        _vxmdError(row.status, 1, a, a, r, r, "_vxmdExp_HA");
        const int error = errno, raised = fetestexcept(events);
        EXPECT_EQ((std::tuple{testing::internal::GetCapturedStderr(), error, raised}),
                  (std::tuple{row.message, row.error, row.raised}));
      });
}

TEST(Handlers, SecondValuesArePrintedWhereTheyDiffer) {
  const struct {
    double a, b, y, z;
    const char *values;
  } rows[] = {
      {1, 2, 3, 4, "a(9)=1\nb(9)=2\ny(9)=3\nz(9)=4\n"},
      {1, 2, 3, 3, "a(9)=1\nb(9)=2\ny(9)=3\n"},
      {1, 1, 3, 4, "a(9)=1\ny(9)=3\nz(9)=4\n"},
      {1, 1, 3, 3, "a(9)=1\nr(9)=3\n"},
      {1, 0, 3, -0.0, "a(9)=1\nr(9)=3\n"},  // a zero counts as absent
      {nan, 2, 3, nan, "a(9)=nan\nr(9)=3\n"},
      {1, nan, nan, 4, "a(9)=1\nr(9)=nan\n"},
      {1, -1e-300, 0.1234567, 0.5, "a(9)=1\nb(9)=-1e-300\ny(9)=0.123457\nz(9)=0.5\n"},
  };
  for (const auto &row : rows) {
    VxmErrorContext record = {VXM_STATUS_ERRDOM, 9, row.a, row.b, row.y, row.z, "f", 1};
    testing::internal::CaptureStderr();
    print_error(&record);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              std::string("Error (VXM_STATUS_ERRDOM) in f: argument is out of domain\n") + row.values);
  }
}

// Printing to a full device fails and sets errno by itself.
TEST(Handlers, PrintingKeepsErrno) {
  in_fresh_thread([] {
    const int console = dup(STDERR_FILENO), full = open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    dup2(full, STDERR_FILENO);
    _vxmSetMode(VXM_MODE_ERRNO | VXM_MODE_STDERR);
    errno = 0;
    double a = 1, r = 2;
    _vxmdError(VXM_STATUS_ERRDOM, 0, &a, &a, &r, &r, "f");
    const int error = errno;
    clearerr(stderr);
    dup2(console, STDERR_FILENO);
    close(console), close(full);
    EXPECT_EQ(error, EDOM);
  });
}

TEST(Names, PartsAreCutAndJoined) {
  char out[81];
  EXPECT_EQ(join_name("prefix__9", "name", "suffix__9", out), 20);
  EXPECT_STREQ(out, "prefix__namesuffix__");
  EXPECT_EQ(join_name("prefix__9", std::string(70, 'n').c_str(), "suffix__9", out), 80);
  EXPECT_EQ(out, "prefix__" + std::string(64, 'n') + "suffix__");
  EXPECT_EQ(qkr_vxm_service_strcat1("one ", "two", out), 7);
  EXPECT_EQ(qkr_vxm_service_strcat1(out, "!", out), 8);
  EXPECT_STREQ(out, "one two!");
  EXPECT_EQ(qkr_vxm_service_strlen1(out), 8u);
}

}  // namespace
