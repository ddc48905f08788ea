// Abstract streams: a circular buffer of the user's, refilled by the user's callback.
#include <qkr/streams_abstract.h>
#include <qkr/streams_generators.h>

#include "streams/internal.h"

using namespace qkr;

namespace {

template <class T>
struct Bounds {
  T lower, upper;
};
template <>
struct Bounds<uint32_t> {};

template <class T>
struct AbstractState {
  using Update = int32_t (*)(StreamState *stream, int32_t *size, T *buffer, int32_t *count, int32_t *free,
                             int32_t *position);
  int32_t size;
  int32_t first;  // the next number to be read
  int32_t free;   // numbers already read, which the callback may replace
  [[no_unique_address]] Bounds<T> bounds;
  T *buffer;
  Update callback;
};
static_assert(sizeof(AbstractState<uint32_t>) == 48 - 16 && sizeof(AbstractState<double>) == 64 - 16 &&
              sizeof(AbstractState<float>) == 56 - 16);

// Moves `count` unread numbers to `out`, each by map().
template <class T, class Map>
void take(AbstractState<T> &state, int32_t count, T *out, Map map) {
  for (int32_t i = 0; i < count; ++i) {
    out[i] = map(state.buffer[state.first]);
    state.first = state.first + 1 == state.size ? 0 : state.first + 1;
  }
  state.free += count;
}

template <class T, class Map>
int32_t read(StreamState *stream, int32_t n, T *out, Map map) {
  AbstractState<T> &state = payload_of<AbstractState<T>>(stream);
  if (!state.buffer || !state.callback) return VXS_STATUS_NULL_POINTER;
  while (n > 0) {
    if (state.free == state.size) {  // nothing is unread
      int32_t size = state.size, free = state.free, position = state.first, count = n < free ? n : free;
      const int32_t stored = state.callback(stream, &size, state.buffer, &count, &free, &position);
      if (stored < 0 || stored > state.free) return VXS_STATUS_BAD_UPDATE;
      if (stored == 0) return VXS_STATUS_NO_NUMBERS;
      state.free -= stored;
    }
    const int32_t unread = state.size - state.free, count = n < unread ? n : unread;
    take(state, count, out, map);
    out += count;
    n -= count;
  }
  return VXS_STATUS_OK;
}

template <class T>
int32_t read_reals(StreamState *stream, int32_t n, T *out, T a, T b) {
  const Bounds<T> bounds = payload_of<AbstractState<T>>(stream).bounds;
  const T factor = (b - a) / (bounds.upper - bounds.lower);
  return read(stream, n, out, [=](T x) { return (x - bounds.lower) * factor + a; });
}

// params: addresses of size, buffer, for reals lower and upper, and callback.
template <class T>
int32_t init_stream(int32_t method, StreamState *stream, const void *params) {
  if (method == VXS_INIT_LEAPFROG) return VXS_STATUS_NO_LEAPFROG;
  if (method == VXS_INIT_SKIP_AHEAD) return VXS_STATUS_NO_SKIP_AHEAD;
  if (method != VXS_INIT_SEED) return VXS_STATUS_BAD_METHOD;
  AbstractState<T> &state = payload_of<AbstractState<T>>(stream);
  const void *const *values = static_cast<const void *const *>(params);
  state.size = state.free = *static_cast<const int32_t *>(*values++);
  state.first = 0;
  state.buffer = *static_cast<T *const *>(*values++);
  if constexpr (sizeof(Bounds<T>) == 2 * sizeof(T)) {
    state.bounds.lower = *static_cast<const T *>(*values++);
    state.bounds.upper = *static_cast<const T *>(*values++);
  }
  state.callback = *static_cast<const typename AbstractState<T>::Update *>(*values);
  return VXS_STATUS_OK;
}

template <class T>
bool disconnect(StreamState *stream) {
  AbstractState<T> &state = payload_of<AbstractState<T>>(stream);
  state.buffer = nullptr;
  state.callback = nullptr;
  return state.size > 0 && state.first >= 0 && state.first < state.size && state.free >= 0 &&
         state.free <= state.size;
}

// `words` counts the parameters in words: an address is two.
int32_t new_stream(StreamState **out, uint32_t id, bool valid, int32_t words, const void *const *params) {
  if (!valid) return VXS_STATUS_BAD_ARGUMENT;
  int32_t row, member;
  const BrngRecord *table = __vxsGetBrngBaseOffset(static_cast<int32_t>(id), &row, &member);
  const int32_t status = __vxsAllocateStream(out, table, id, row, member);
  return status == VXS_STATUS_OK ? table[row].InitStream(VXS_INIT_SEED, *out, words, params) : status;
}

template <class T, class Update>
int32_t new_real_stream(StreamState **out, uint32_t id, int32_t size, T *buffer, T lower, T upper,
                        Update callback) {
  const void *const params[] = {&size, &buffer, &lower, &upper, &callback};
  return new_stream(out, id, size > 0 && buffer && callback && lower < upper, 10, params);
}

}  // namespace

bool qkr::disconnect_abstract(StreamState *stream) {
  if (stream->brng == abstract_integers) return disconnect<uint32_t>(stream);
  return stream->brng == abstract_doubles ? disconnect<double>(stream) : disconnect<float>(stream);
}

extern "C" {

int32_t __vxsiNewAbstractStream(StreamState **out, int32_t size, uint32_t *buffer, AbstractUpdateI callback) {
  const void *const params[] = {&size, &buffer, &callback};
  return new_stream(out, abstract_integers, size > 0 && buffer && callback, 6, params);
}

int32_t __vxsdNewAbstractStream(StreamState **out, int32_t size, double *buffer, double lower, double upper,
                                AbstractUpdateD callback) {
  return new_real_stream(out, abstract_doubles, size, buffer, lower, upper, callback);
}

int32_t __vxssNewAbstractStream(StreamState **out, int32_t size, float *buffer, float lower, float upper,
                                AbstractUpdateS callback) {
  return new_real_stream(out, abstract_singles, size, buffer, lower, upper, callback);
}

#define INIT_STREAM(name, T)                                                       \
  int32_t name(int32_t method, StreamState *stream, int32_t, const void *params) { \
    return init_stream<T>(method, stream, params);                                 \
  }
INIT_STREAM(__vxsBRngiAbstractInitStream, uint32_t)
INIT_STREAM(__vxsBRngdAbstractInitStream, double)
INIT_STREAM(__vxsBRngsAbstractInitStream, float)

int32_t __vxsiBRngiAbstract(StreamState *stream, int32_t n, uint32_t *out) {
  return read(stream, n, out, [](uint32_t word) { return word; });
}
int32_t __vxsdBRngdAbstract(StreamState *stream, int32_t n, double *out, double a, double b) {
  return read_reals(stream, n, out, a, b);
}
int32_t __vxssBRngsAbstract(StreamState *stream, int32_t n, float *out, float a, float b) {
  return read_reals(stream, n, out, a, b);
}

int32_t __vxsiBRngdAbstract(StreamState *, int32_t, uint32_t *) { return VXS_STATUS_OTHER_TYPE; }
int32_t __vxsiBRngsAbstract(StreamState *, int32_t, uint32_t *) { return VXS_STATUS_OTHER_TYPE; }
int32_t __vxsdBRngiAbstract(StreamState *, int32_t, double *, double, double) {
  return VXS_STATUS_OTHER_TYPE;
}
int32_t __vxsdBRngsAbstract(StreamState *, int32_t, double *, double, double) {
  return VXS_STATUS_OTHER_TYPE;
}
int32_t __vxssBRngiAbstract(StreamState *, int32_t, float *, float, float) { return VXS_STATUS_OTHER_TYPE; }
int32_t __vxssBRngdAbstract(StreamState *, int32_t, float *, float, float) { return VXS_STATUS_OTHER_TYPE; }

}  // extern "C"
