// A stream that deletes itself, and what the tests do with streams of any generator.
#pragma once

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <qkr/streams_files.h>
#include <string>
#include <vector>

namespace qkr::tests {

using Seeds = std::vector<uint32_t>;

struct DeleteStream {
  void operator()(StreamState *stream) const { __vxsDeleteStream(&stream); }
};
using Stream = std::unique_ptr<StreamState, DeleteStream>;

inline Stream new_stream(uint32_t id, const Seeds &seeds) {
  StreamState *stream = nullptr;
  EXPECT_EQ(__vxsNewStreamEx(&stream, id, static_cast<int32_t>(seeds.size()), seeds.data()), VXS_STATUS_OK);
  return Stream(stream);
}

inline Stream copy_of(const Stream &source) {
  StreamState *stream = nullptr;
  EXPECT_EQ(__vxsCopyStream(&stream, source.get()), VXS_STATUS_OK);
  return Stream(stream);
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

inline std::vector<uint32_t> draw_words(const Stream &stream, int32_t n) {
  const BrngRecord generator = generator_of(stream);
  std::vector<uint32_t> words(static_cast<size_t>(n) * (generator.WordSize / 4));
  EXPECT_EQ(generator.iBrng(stream.get(), n, words.data()), VXS_STATUS_OK);
  return words;
}

inline std::vector<double> draw_doubles(const Stream &stream, int32_t n, double a = 0, double b = 1) {
  std::vector<double> numbers(static_cast<size_t>(n));
  EXPECT_EQ(generator_of(stream).dBrng(stream.get(), n, numbers.data(), a, b), VXS_STATUS_OK);
  return numbers;
}

inline std::vector<float> draw_singles(const Stream &stream, int32_t n, float a = 0, float b = 1) {
  std::vector<float> numbers(static_cast<size_t>(n));
  EXPECT_EQ(generator_of(stream).sBrng(stream.get(), n, numbers.data(), a, b), VXS_STATUS_OK);
  return numbers;
}

}  // namespace qkr::tests
