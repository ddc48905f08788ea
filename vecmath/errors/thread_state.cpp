// Mode, status, callback and input-vector pointer of a thread, and the calls that control them.
#include <limits.h>
#include <pthread.h>
#include <stdlib.h>

#include "vecmath/errors/gate.h"

using namespace qkr;

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

// The cell of the calling thread, which the key owns. The bytes are those of a small block.
#define THREAD_CELL(accessor, Type, bytes, initial)                                              \
  QKR_THREAD_LOCAL Type *qkr::accessor##_found = nullptr;                                        \
  namespace {                                                                                    \
  pthread_key_t accessor##_key = no_key;                                                         \
  pthread_once_t accessor##_once = PTHREAD_ONCE_INIT;                                            \
  void accessor##_end(void *cell) {                                                              \
    accessor##_found = nullptr;                                                                  \
    free(cell);                                                                                  \
  }                                                                                              \
  }                                                                                              \
  Type *qkr::accessor##_at_first() {                                                             \
    pthread_once(&accessor##_once, [] { pthread_key_create(&accessor##_key, accessor##_end); }); \
    return accessor##_found = find_or_make_cell<Type>(accessor##_key, bytes, initial);           \
  }

THREAD_CELL(thread_mode, VxmMode, 8, VXM_MODE_DEFAULT)
THREAD_CELL(thread_status, int32_t, 8, VXM_STATUS_OK)
THREAD_CELL(thread_callback, VxmErrorCallBack, 16, nullptr)
THREAD_CELL(thread_input_vector, const void *, 16, nullptr)

QKR_THREAD_LOCAL uint32_t *qkr::collected_statuses = nullptr;

extern "C" {

VxmMode _vxmSetMode(VxmMode mode) {
  VxmMode *word = thread_mode();
  const VxmMode previous = *word;
  static constexpr VxmMode fields[] = {VXM_MODE_ACCURACY, VXM_MODE_ERRORS, VXM_MODE_RESERVED};
  for (VxmMode field : fields)
    if (mode & field) *word = (*word & ~field) | (mode & field);
  return previous;
}

VxmMode _vxmGetMode() { return *thread_mode(); }

int32_t _vxmSetErrStatus(int32_t status) {
  int32_t *word = thread_status();
  const int32_t previous = *word;
  *word = status;
  return previous;
}

int32_t _vxmGetErrStatus() { return *thread_status(); }

int32_t _vxmClearErrStatus() { return _vxmSetErrStatus(VXM_STATUS_OK); }

VxmErrorCallBack _vxmSetErrorCallBack(VxmErrorCallBack callback) {
  VxmErrorCallBack *cell = thread_callback();
  const VxmErrorCallBack previous = *cell;
  const VxmMode others = _vxmGetMode() & ~VXM_MODE_CALLBACK;
  *cell = callback;
  _vxmSetMode(callback ? others | VXM_MODE_CALLBACK : others);
  return previous;
}

VxmErrorCallBack _vxmGetErrorCallBack() { return *thread_callback(); }

VxmErrorCallBack _vxmClearErrorCallBack() { return _vxmSetErrorCallBack(nullptr); }

void qkr_vxm_exchange_policy(VxmErrorPolicy *policy) {
  constexpr VxmMode fields = VXM_MODE_ACCURACY | VXM_MODE_ERRORS | VXM_MODE_RESERVED;
  VxmMode *mode = thread_mode();
  int32_t *status = thread_status();
  VxmErrorCallBack *callback = thread_callback();
  const VxmErrorPolicy previous = {*mode, *status, *callback, collected_statuses};
  *mode = policy->mode & fields;
  *status = policy->status;
  *callback = policy->callback;
  collected_statuses = policy->statuses;
  *policy = previous;
}

const void *_vxmSetInterfInputVectorPointer(const void *pointer) { return *thread_input_vector() = pointer; }

}  // extern "C"
