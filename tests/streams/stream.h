// A stream that deletes itself, and what the tests do with streams of any generator.
#pragma once

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <qkr/streams_files.h>
#include <string>
#include <vector>

namespace qkr::tests {

using Words = std::vector<uint32_t>;
using Seeds = Words;

struct DeleteStream {
  void operator()(StreamState *stream) const { __vxsDeleteStream(&stream); }
};
struct Stream : std::unique_ptr<StreamState, DeleteStream> {
  using unique_ptr::unique_ptr;
  operator StreamState *() const { return get(); }
};

// What make(&stream) makes.
template <class Make>
Stream made(Make make) {
  StreamState *stream = nullptr;
  EXPECT_EQ(make(&stream), VXS_STATUS_OK);
  return Stream(stream);
}
// What it answers.
template <class Make>
int32_t status_of(Make make) {
  StreamState *stream = nullptr;
  const int32_t status = make(&stream);
  if (stream) __vxsDeleteStream(&stream);
  return status;
}

inline Stream new_stream(uint32_t id, const Seeds &seeds) {
  const auto count = static_cast<int32_t>(seeds.size());
  return made([&](auto out) { return __vxsNewStreamEx(out, id, count, seeds.data()); });
}
inline Stream copy_of(const Stream &source) {
  return made([&](auto out) { return __vxsCopyStream(out, source); });
}
inline Stream loaded(const std::string &file) {
  return made([&](auto out) { return __vxsLoadStreamF(out, file.c_str()); });
}
// By a name that does not end where it is to end.
inline void save(const Stream &stream, const std::string &file) {
  const auto length = static_cast<int32_t>(file.size());
  ASSERT_EQ(__vxsSaveStreamF(stream, (file + "more").c_str(), length), VXS_STATUS_OK);
}

inline BrngRecord generator_of(const Stream &stream) {
  BrngRecord record;
  EXPECT_EQ(__vxsGetBrngProperties(static_cast<int32_t>(stream->brng), &record), VXS_STATUS_OK);
  return record;
}

// The bytes behind the head of the record.
inline std::string payload(const Stream &stream) {
  const char *record = reinterpret_cast<const char *>(stream.get());
  return {record + sizeof(StreamState), record + generator_of(stream).StateSize};
}
// With those of the chunks.
inline std::string state_of(const Stream &stream) {
  std::string bytes = payload(stream);
  for (const StreamChunk *chunk = stream->chunks; chunk; chunk = chunk->next)
    bytes.append(static_cast<const char *>(chunk->data), chunk->size);
  return bytes;
}
inline uint32_t *state_words(const Stream &stream) { return reinterpret_cast<uint32_t *>(stream.get() + 1); }

// `size` elements by an entry of the generator, which writes nothing behind them.
template <class T, class Entry, class... Ends>
std::vector<T> drawn_by(Entry entry, const Stream &stream, int32_t n, size_t size, Ends... ends) {
  constexpr T untouched = 77;
  std::vector<T> numbers(size + 1, untouched);
  EXPECT_EQ(entry(stream, n, numbers.data(), ends...), VXS_STATUS_OK);
  EXPECT_EQ(numbers.back(), untouched);
  numbers.pop_back();
  return numbers;
}
inline Words draw_words(const Stream &stream, int32_t n) {
  const BrngRecord generator = generator_of(stream);
  return drawn_by<uint32_t>(generator.iBrng, stream, n, size_t(n) * (generator.WordSize / 4));
}
inline std::vector<double> draw_doubles(const Stream &stream, int32_t n, double a = 0, double b = 1) {
  return drawn_by<double>(generator_of(stream).dBrng, stream, n, n, a, b);
}
inline std::vector<float> draw_singles(const Stream &stream, int32_t n, float a = 0, float b = 1) {
  return drawn_by<float>(generator_of(stream).sBrng, stream, n, n, a, b);
}

}  // namespace qkr::tests
