// Mode, status, callback and input-vector pointer of a thread, and the calls that control them.
#include <limits.h>
#include <pthread.h>
#include <stdlib.h>

#include "vecmath/errors.h"

namespace {

// Where pthread_key_create fails this remains, no cell can be attached, and it ends as without memory.
constexpr pthread_key_t no_key = PTHREAD_KEYS_MAX;

template <typename T>
T *find_or_make_cell(pthread_key_t key, size_t bytes, T initial) {
  if (void *found = pthread_getspecific(key)) return static_cast<T *>(found);
  T *cell = static_cast<T *>(malloc(bytes));
  if (!cell) return nullptr;
  if (pthread_setspecific(key, cell) != 0) {
    free(cell);
    return nullptr;
  }
  *cell = initial;
  return cell;
}

}  // namespace

#define THREAD_CELL(accessor, Type, Name, bytes, initial)                      \
  pthread_key_t Name##_key = no_key;                                           \
  pthread_once_t Name##_konce = PTHREAD_ONCE_INIT;                             \
  void Name##_destroy(void *cell) { free(cell); }                              \
  void Name##_alloc_key() { pthread_key_create(&Name##_key, Name##_destroy); } \
  Type *accessor() {                                                           \
    pthread_once(&Name##_konce, Name##_alloc_key);                             \
    return find_or_make_cell<Type>(Name##_key, bytes, initial);                \
  }

extern "C" {

THREAD_CELL(_GetMode, VxmMode, Mode, 8, VXM_MODE_DEFAULT)
THREAD_CELL(_GetErrStatus, int32_t, ErrStatus, 8, VXM_STATUS_OK)
THREAD_CELL(_GetCallBack, VxmErrorCallBack, CallBack, 16, nullptr)
THREAD_CELL(_GetInputVectorPointer, const void *, InputVecorPointer, 16, nullptr)

VxmMode _vxmSetMode(VxmMode mode) {
  VxmMode *word = _GetMode();
  const VxmMode previous = *word;
  static constexpr VxmMode fields[] = {VXM_MODE_ACCURACY, VXM_MODE_ERRORS, VXM_MODE_RESERVED};
  for (VxmMode field : fields)
    if (mode & field) *word = (*word & ~field) | (mode & field);
  return previous;
}

VxmMode _vxmGetMode() { return *_GetMode(); }

int32_t _vxmSetErrStatus(int32_t status) {
  int32_t *word = _GetErrStatus();
  const int32_t previous = *word;
  *word = status;
  return previous;
}

int32_t _vxmGetErrStatus() { return *_GetErrStatus(); }

int32_t _vxmClearErrStatus() { return _vxmSetErrStatus(VXM_STATUS_OK); }

VxmErrorCallBack _vxmSetErrorCallBack(VxmErrorCallBack callback) {
  VxmErrorCallBack *cell = _GetCallBack();
  const VxmErrorCallBack previous = *cell;
  const VxmMode others = _vxmGetMode() & ~VXM_MODE_CALLBACK;
  *cell = callback;
  _vxmSetMode(callback ? others | VXM_MODE_CALLBACK : others);
  return previous;
}

VxmErrorCallBack _vxmGetErrorCallBack() { return *_GetCallBack(); }

VxmErrorCallBack _vxmClearErrorCallBack() { return _vxmSetErrorCallBack(nullptr); }

const void *_vxmSetInterfInputVectorPointer(const void *pointer) {
  return *_GetInputVectorPointer() = pointer;
}

}  // extern "C"
