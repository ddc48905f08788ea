#include "tests/distributions/recorded_stream.h"

#include <qkr/streams.h>
#include <qkr/vecmath_control.h>
#include <random>

namespace qkr::tests {

Recording recording;

namespace {

// `n` numbers, each made(x) of the next recorded one.
template <class T, class Made>
int32_t play(int32_t n, T *out, Made made) {
  if (recording.until_failure > 0 && --recording.until_failure == 0) return recorded_failure;
  for (int32_t i = 0; i < n; ++i)
    out[i] = made(recording.numbers.at(recording.next++ % recording.numbers.size()));
  return VXS_STATUS_OK;
}
template <class T>
int32_t draw(StreamState *, int32_t n, T *out, T a, T b) {
  return play(n, out, [=](double x) { return T(x) * (b - a) + a; });
}
int32_t draw_words(StreamState *, int32_t n, uint32_t *out) {
  return play(n, out, [](double x) { return static_cast<uint32_t>(x * 0x1p31); });
}

int32_t init(int32_t, StreamState *, int32_t, const void *) { return VXS_STATUS_OK; }

uint32_t registered() {
  const BrngRecord record = {24, 1, 1, 4, 32, init, draw<float>, draw<double>, draw_words};
  const int32_t id = __vxsRegisterBrng(&record);
  EXPECT_GT(id, 0);
  const double special[] = {0.0, 0x1p-59, 0x1p-32, 0.5, 0.5 + 0x1p-53, 0x1p-1, 1 - 0x1p-53, 1.0};
  std::mt19937_64 random(20261121);
  for (int i = 0; i < 60000; ++i) {
    const uint64_t word = random();
    recording.numbers.push_back(word % 32 ? static_cast<double>(word >> 11) * 0x1p-53 : special[word >> 61]);
  }
  return static_cast<uint32_t>(id);
}

}  // namespace

Stream recorded_stream() {
  static const uint32_t id = registered();
  recording.next = 0;
  recording.until_failure = 0;
  return new_stream(id, {1});
}

void make_cells_of_thread() {
  _vxmGetMode();
  _vxmGetErrStatus();
  _vxmGetErrorCallBack();
  _vxmSetInterfInputVectorPointer(nullptr);
}

}  // namespace qkr::tests
