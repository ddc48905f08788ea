// Mode word, callback, status and their cells.
#include <gtest/gtest.h>
#include <malloc.h>
#include <qkr/vecmath.h>
#include <tuple>

#include "tests/vecmath/fresh_thread.h"
#include "vecmath/errors/gate.h"

using namespace qkr;

namespace {

int32_t callback_a(VxmErrorContext *) { return 0; }
int32_t callback_b(VxmErrorContext *) { return 1; }

using State = std::tuple<VxmMode, VxmErrorCallBack, int32_t>;
const State of_a_new_thread = {VXM_MODE_DEFAULT, nullptr, VXM_STATUS_OK};
State state() { return {_vxmGetMode(), _vxmGetErrorCallBack(), _vxmGetErrStatus()}; }

TEST(Mode, FieldsAreReplacedWholeAndNeverByZero) {
  const struct {
    VxmMode before, argument, after;
  } rows[] = {
      {VXM_MODE_DEFAULT, 0, 0x01A02},
      {VXM_MODE_DEFAULT, VXM_MODE_IGNORE, 0x00102},
      {VXM_MODE_DEFAULT, VXM_MODE_IGNORE | VXM_MODE_CALLBACK, 0x01102},
      {VXM_MODE_DEFAULT, 0x00003, 0x01A03},
      {VXM_MODE_DEFAULT, 0x0E000, 0x0E002},
      {VXM_MODE_DEFAULT, 0x10000, 0x11A02},
      {0x11A02, 0x20000, 0x21A02},
      {0x31F0F, 0x10401, 0x10401},
      {VXM_MODE_DEFAULT, 0xFFFC00F0, 0x01A02},
      {VXM_MODE_DEFAULT, 0xFFFFFFFF, 0x3FF0F},
  };
  for (const auto &row : rows)
    in_fresh_thread([&] {
      EXPECT_EQ(_vxmGetMode(), VxmMode{VXM_MODE_DEFAULT});
      _vxmSetMode(row.before);
      EXPECT_EQ(_vxmSetMode(row.argument), row.before) << std::hex << row.argument;
      EXPECT_EQ(_vxmGetMode(), row.after) << std::hex << row.argument;
    });
}

TEST(Mode, CallbackSwitchesItsBitUnlessItIsAlone) {
  const struct {
    VxmMode before;
    VxmErrorCallBack callback;
    VxmMode after;
  } rows[] = {
      {0x0A02, callback_a, 0x1A02}, {0x1A02, callback_a, 0x1A02}, {0x1A02, nullptr, 0x0A02},
      {0x0A02, nullptr, 0x0A02},    {0x1002, nullptr, 0x1002},  // the field would become zero
      {0x0102, callback_a, 0x1102},                             // no longer the ignore mode
  };
  for (const auto &row : rows)
    in_fresh_thread([&] {
      _vxmSetErrorCallBack(callback_b);
      _vxmSetMode(row.before);
      EXPECT_EQ(_vxmSetErrorCallBack(row.callback), callback_b);
      EXPECT_EQ(_vxmGetErrorCallBack(), row.callback);
      EXPECT_EQ(_vxmGetMode(), row.after) << std::hex << row.before;
      EXPECT_EQ(_vxmClearErrorCallBack(), row.callback);
      EXPECT_EQ(_vxmGetErrorCallBack(), nullptr);
    });
}

TEST(Mode, SettersReturnWhatWasThere) {
  in_fresh_thread([] {
    EXPECT_EQ(_vxmGetErrStatus(), VXM_STATUS_OK);
    EXPECT_EQ(_vxmSetErrStatus(-7), VXM_STATUS_OK);
    EXPECT_EQ(_vxmSetErrStatus(VXM_STATUS_SING), -7);
    EXPECT_EQ(_vxmClearErrStatus(), VXM_STATUS_SING);
    EXPECT_EQ(_vxmGetErrStatus(), VXM_STATUS_OK);
    const double whole = 0;
    EXPECT_EQ(_vxmSetInterfInputVectorPointer(&whole), &whole);
    EXPECT_EQ(*thread_input_vector(), &whole);
    EXPECT_EQ(_vxmSetInterfInputVectorPointer(nullptr), nullptr);
  });
}

TEST(Mode, PolicyIsExchangedWhole) {
  in_fresh_thread([] {
    VxmErrorPolicy policy = {0x1000 | 0xF0u, -7, callback_a, nullptr};
    qkr_vxm_exchange_policy(&policy);
    EXPECT_EQ(state(), State(0x1000, callback_a, -7));  // no accuracy, and no bit that has no field
    _vxmSetErrStatus(VXM_STATUS_SING);
    qkr_vxm_exchange_policy(&policy);
    EXPECT_EQ(State(policy.mode, policy.callback, policy.status), State(0x1000, callback_a, VXM_STATUS_SING));
    EXPECT_EQ(state(), of_a_new_thread);
  });
}

TEST(Mode, PolicyCollectsAllStatuses) {
  in_fresh_thread([] {
    uint32_t statuses = 1u << 31;
    VxmErrorPolicy policy = {VXM_MODE_IGNORE, VXM_STATUS_OK, nullptr, &statuses};
    qkr_vxm_exchange_policy(&policy);
    double x[5] = {1, 1000, -1000, 1, -1}, r[5];
    _vxmdExp_HA(5, x, r);
    EXPECT_EQ(statuses, 1u << 31 | 1u << VXM_STATUS_OVERFLOW | 1u << VXM_STATUS_UNDERFLOW);
    qkr_vxm_exchange_policy(&policy);
    EXPECT_EQ(policy.status, VXM_STATUS_UNDERFLOW);
    EXPECT_EQ(policy.statuses, &statuses);
    _vxmdLn_HA(5, x, r);  // collected by nobody
    EXPECT_EQ(statuses >> VXM_STATUS_ERRDOM & 1, 0u);
  });
}

// A destructor that runs after those of the cells gets cells of its own, with the values of a new thread.
TEST(Mode, CellsAreMadeAgainForLateDestructors) {
  static pthread_key_t late;
  static int rounds;
  rounds = 0;
  const auto at_end = [](void *again) {
    if (++rounds == 1) {
      pthread_setspecific(late, again);  // the next round comes after the cells have gone
    } else {
      EXPECT_EQ(_vxmGetMode(), VxmMode{VXM_MODE_DEFAULT});
    }
  };
  ASSERT_EQ(pthread_key_create(&late, at_end), 0);
  in_fresh_thread([] {
    _vxmSetMode(VXM_MODE_IGNORE);
    pthread_setspecific(late, &rounds);
  });
  EXPECT_EQ(rounds, 2);
  pthread_key_delete(late);
}

TEST(Mode, ThreadsDoNotSeeEachOther) {
  in_fresh_thread([] {
    _vxmSetMode(0x401);
    _vxmSetErrorCallBack(callback_a);
    _vxmSetErrStatus(VXM_STATUS_SING);
    in_fresh_thread([] {
      EXPECT_EQ(state(), of_a_new_thread);
      _vxmSetErrorCallBack(callback_b);
      _vxmSetErrStatus(VXM_STATUS_ERRDOM);
    });
    EXPECT_EQ(state(), State(0x1401, callback_a, VXM_STATUS_SING));
  });
}

// The address sanitizer's allocator reports no sizes; its leak check takes over there.
TEST(Mode, CellsAreFreedWhenTheirThreadEnds) {
  const auto use_cells = [] {
    *thread_mode() = *thread_status() = !*thread_callback() && !*thread_input_vector();
  };
  const auto in_use_after = [&](int threads) {
    for (int i = 0; i < threads; ++i) in_fresh_thread(use_cells);
    return mallinfo2().uordblks;
  };
  const size_t before = in_use_after(10);
  EXPECT_LT(in_use_after(500), before + 500 * 16);
}

}  // namespace
