// Stream files: what is in them, what comes back, and every way in which saving and loading fail. Copies.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <qkr/streams_abstract.h>

#include "streams/internal.h"
#include "tests/streams/generators.h"
#include "tests/support/allocations.h"

namespace {

using namespace qkr::tests;

// A file of its own for each test.
class StreamFiles : public testing::Test {
 protected:
  const std::filesystem::path directory =
      std::filesystem::temp_directory_path() / ("qkr_streams_" + std::to_string(getpid()));
  const std::string file = (directory / "stream").string(), none = (directory / "none" / "stream").string();
  void SetUp() override { std::filesystem::create_directories(directory); }
  void TearDown() override { std::filesystem::remove_all(directory); }

  std::string contents() const {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  std::string saved(const Stream &stream) const {
    save(stream, file);
    return contents();
  }
  // What loading these bytes answers; a stream that comes of them is drawn from.
  int32_t status_of_bytes(const std::string &bytes) const {
    std::ofstream(file, std::ios::binary) << bytes;
    StreamState *loaded = nullptr;
    const int32_t status = __vxsLoadStreamF(&loaded, file.c_str());
    const Stream stream(loaded);
    EXPECT_EQ(loaded != nullptr, status == VXS_STATUS_OK);
    if (loaded && !qkr::is_abstract(loaded)) draw_words(stream, 3000);
    return status;
  }
};

std::string bytes_of(uint32_t word) { return std::string(reinterpret_cast<char *>(&word), 4); }

std::string with(std::string bytes, size_t position, const std::string &replacement) {
  return bytes.replace(position, replacement.size(), replacement);
}

void add_chunk(const Stream &stream, uint32_t id, const std::string &text) {
  void *data = memcpy(malloc(text.size()), text.data(), text.size());
  ASSERT_EQ(__vxsAddChunk(stream.get(), id, data, static_cast<uint32_t>(text.size())), VXS_STATUS_OK);
}

TEST_F(StreamFiles, EveryGeneratorGoesOnWhereItWasSaved) {
  for (const Generator &generator : all_generators()) {
    SCOPED_TRACE(generator.name);
    const Stream stream = generator.start();
    draw_words(stream, 1234);
    save(stream, file);
    const Stream second = loaded(file);
    EXPECT_EQ(second->brng, generator.id);
    EXPECT_EQ(draw_words(second, 2000), draw_words(stream, 2000));
    EXPECT_EQ(payload(second), payload(stream));
    // Memory that held something else before shows in no file.
    const auto saved_after = [&](int fill) {
      const auto size = static_cast<size_t>(generator_of(stream).StateSize);
      free(memset(malloc(size), fill, size));
      return saved(generator.start());
    };
    EXPECT_EQ(saved_after(0x11), saved_after(0xee));
  }
}

TEST_F(StreamFiles, Layout) {
  const Stream stream = new_stream(0x400000, {0x04030201, 0x00060504});
  add_chunk(stream, 2, "ab");
  add_chunk(stream, 0x01020304, "cde");
  const std::string unterminated = file + "xyz";
  ASSERT_EQ(__vxsSaveStreamF(stream.get(), unterminated.c_str(), int32_t(file.size())), VXS_STATUS_OK);
  const auto bytes = [](std::initializer_list<int> values) {
    return std::string(values.begin(), values.end());
  };
  const std::string head = bytes({0x52, 0x4e, 0x47, 0, 16, 0, 16, 0, 2, 0, 0, 0, 0, 0, 0x40, 0}),
                    state = bytes({1, 2, 3, 4, 4, 5, 6, 0, -3, -59, 35, -101, 118, 19, 1, 0}),
                    newer = bytes({4, 3, 2, 1, 3, 0, 0, 0}) + "cde",
                    older = bytes({2, 0, 0, 0, 2, 0, 0, 0}) + "ab";
  EXPECT_EQ(contents(), head + state + newer + older);
  EXPECT_EQ(saved(loaded(file)), head + state + older + newer) << "loading reverses the chunks";
}

TEST_F(StreamFiles, FilesThatAreRefused) {
  const Stream stream = new_stream(0x900005, {1});
  add_chunk(stream, 2, "data");
  const std::string good = saved(stream);
  const auto id = [&](uint32_t brng) { return with(good, 12, bytes_of(brng)); };
  const auto size_of_chunk = [&](uint32_t size) { return with(good, 316, bytes_of(size)); };
  const struct {
    const char *what;
    std::string bytes;
    int32_t status;
  } rows[] = {{"third byte", with(good, 2, "H"), VXS_STATUS_FILE_FORMAT},
              {"version", with(good, 3, "\1"), VXS_STATUS_FILE_VERSION},
              {"magic before version", with(good, 2, "H\1"), VXS_STATUS_FILE_FORMAT},
              {"version before generator", with(id(279), 3, "\1"), VXS_STATUS_FILE_VERSION},
              {"longer header", with(good, 4, "\x20"), VXS_STATUS_OK},
              {"shorter header", with(good, 4, "\xf"), VXS_STATUS_FILE_FORMAT},
              {"state size", with(good, 6, "\x27\1"), VXS_STATUS_FILE_FORMAT},
              {"reserved", with(good, 10, "\x55\xaa"), VXS_STATUS_OK},
              {"other member", id(0x9003ff), VXS_STATUS_OK},
              {"member beyond the family", id(0x900400), VXS_STATUS_FILE_FORMAT},
              {"generator of another size", id(0x800000), VXS_STATUS_FILE_FORMAT},
              {"no generator", id(279), VXS_STATUS_FILE_FORMAT},
              {"negative id", id(0xffffffff), VXS_STATUS_FILE_FORMAT},
              {"most negative id", id(0x80000000), VXS_STATUS_FILE_FORMAT},
              {"one chunk too many", with(good, 8, "\2"), VXS_STATUS_FILE_READ},
              {"empty chunk", size_of_chunk(0), VXS_STATUS_FILE_READ},
              {"chunk beyond the end", size_of_chunk(5), VXS_STATUS_FILE_READ},
              {"bytes left over", good + "more", VXS_STATUS_OK}};
  for (const auto &row : rows) EXPECT_EQ(status_of_bytes(row.bytes), row.status) << row.what;
  for (size_t size = 0; size < good.size(); ++size)
    EXPECT_EQ(status_of_bytes(good.substr(0, size)), VXS_STATUS_FILE_READ) << size;
}

// Words of the state that no generator draws from are no stream, and those at the ends of their ranges are.
TEST_F(StreamFiles, DamagedStatesAreRefused) {
  const struct {
    uint32_t id, seed, word;
    Words good, bad;
  } rows[] = {{0x100000, 777, 0, {1, 0x7ffffffe}, {0, 0x7fffffff, ~0u}},
              {0x100000, 777, 1, {1, 0x7ffffffe}, {0, 0x7fffffff}},
              {0x400000, 777, 1, {0, 0x07ffffff}, {0x08000000, ~0u}},
              {0x500000, 777, 3, {0, 0xffffff}, {0x1000000, ~0u}},
              {0x500000, 777, 4, {127}, {~0u}},
              {0x200000, 777, 250, {0, 249}, {250, ~0u, 0x7fffffff}},
              {0x200000, 777, 251, {0, 249}, {250, ~0u, 0x80000000}},
              {0x800000, 777, 624, {0, 624}, {625, ~0u, 0x7fffffff}},
              {0x900000, 777, 69, {0, 69}, {70, ~0u, 0x80000000}},
              {0x600000, 3, 1, {1, 40}, {0, 41, ~0u}},
              {0x600000, 3, 2, {~0u, 0, 2}, {3, ~1u, 0x7fffffff}},
              {0x600000, 3, 3, {0, 2}, {3, ~0u}},
              {0x700000, 318, 1, {1, 318}, {0, 319, 0x80000000}}};
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << std::hex << row.id << ", word " << row.word);
    const std::string bytes = saved(new_stream(row.id, {row.seed}));
    const auto status_with = [&](uint32_t word) {
      return status_of_bytes(with(bytes, 16 + 4 * row.word, bytes_of(word)));
    };
    for (const uint32_t word : row.good) EXPECT_EQ(status_with(word), VXS_STATUS_OK) << word;
    for (const uint32_t word : row.bad) EXPECT_EQ(status_with(word), VXS_STATUS_FILE_FORMAT) << word;
  }
}

// Addresses mean nothing after loading: an abstract stream waits for new ones.
TEST_F(StreamFiles, AbstractStreamsComeBackUnconnected) {
  static double buffer[5];
  static int calls = 0;
  const AbstractUpdateD callback = [](auto...) { return ++calls, 1; };
  const std::string bytes =
      saved(made([&](auto out) { return __vxsdNewAbstractStream(out, 5, buffer, 0, 1, callback); }));
  const Stream again = loaded(file);
  double number;
  EXPECT_EQ(generator_of(again).dBrng(again.get(), 1, &number, 0, 1), VXS_STATUS_NULL_POINTER);
  EXPECT_EQ(calls, 0);

  const int32_t size = 5;
  const double lower = 0, upper = 1, *const numbers = buffer;
  const void *const params[] = {&size, &numbers, &lower, &upper, &callback};
  EXPECT_EQ(generator_of(again).InitStream(VXS_INIT_SEED, again.get(), 10, params), VXS_STATUS_OK);
  draw_doubles(again, 1);
  EXPECT_EQ(calls, 1);

  for (const auto &[word, value] : {std::pair{0, 0}, {0, 2}, {1, 5}, {1, -1}, {2, 6}, {2, -1}})
    EXPECT_EQ(status_of_bytes(with(bytes, 16 + 4 * word, bytes_of(value))), VXS_STATUS_FILE_FORMAT)
        << word << ' ' << value;
}

TEST_F(StreamFiles, WhatCannotBeOpenedWrittenOrClosed) {
  const auto load = [](const std::string &name) {
    return status_of([&](auto out) { return __vxsLoadStreamF(out, name.c_str()); });
  };
  const auto save_to = [](const std::string &name, const StreamState *stream) {
    return __vxsSaveStreamF(stream, name.c_str(), -1);
  };
  EXPECT_EQ(load(none), VXS_STATUS_FILE_OPEN);
  EXPECT_EQ(load(directory), VXS_STATUS_FILE_READ);  // it opens, but no more
  const Stream small = new_stream(0, {1}), large = new_stream(0x700000, {318}), odd = new_stream(0, {1});
  EXPECT_EQ(save_to(none, small.get()), VXS_STATUS_FILE_OPEN);
  EXPECT_EQ(save_to(directory, small.get()), VXS_STATUS_FILE_OPEN);
  // What is written to a full device stays in the buffer until it is closed, if it is little.
  EXPECT_EQ(save_to("/dev/full", small.get()), VXS_STATUS_FILE_CLOSE);
  const int32_t full = save_to("/dev/full", large.get());
  EXPECT_TRUE(full == VXS_STATUS_FILE_WRITE || full == VXS_STATUS_FILE_CLOSE) << full;
  ASSERT_EQ(__vxsAddChunk(odd.get(), 2, malloc(1), 0), VXS_STATUS_OK);
  EXPECT_EQ(save_to(file, odd.get()), VXS_STATUS_FILE_WRITE);
  EXPECT_EQ(contents().size(), 16u + 8 + 8);  // what could be written
  const StreamState unknown = {279, 1, nullptr};
  EXPECT_EQ(save_to(file, &unknown), VXS_STATUS_BAD_GENERATOR);
}

TEST_F(StreamFiles, AllocationsThatFailLeaveNothingBehind) {
  const Stream stream = new_stream(0x800000, {1}), plain = new_stream(0, {1});
  add_chunk(stream, 2, "ab");
  add_chunk(stream, 3, "cde");
  save(stream, file);
  // How many allocations an operation makes that ends with a stream, or without one where it fails.
  const auto making = [](auto operation) {
    const auto whole = [&] {
      return status_of([&](StreamState **out) {
        const int32_t status = operation(out);
        EXPECT_TRUE(!*out || status == VXS_STATUS_OK);
        return status;
      });
    };
    return allocations_survived(whole, VXS_STATUS_NO_MEMORY);
  };
  uint32_t buffer[1];
  const auto no_update = [](auto...) { return 0; };
  const auto length = static_cast<int32_t>(file.size());
  EXPECT_EQ(making([](auto s) { return __vxsNewStreamEx(s, 0x100000, 0, nullptr); }), 1);
  EXPECT_EQ(making([&](auto s) { return __vxsCopyStream(s, stream.get()); }), 5);
  EXPECT_EQ(making([&](auto s) { return __vxsLoadStreamF(s, file.c_str()); }), 5);
  EXPECT_EQ(making([&](auto s) { return __vxsiNewAbstractStream(s, 1, buffer, no_update); }), 1);
  EXPECT_EQ(making([&](auto) { return __vxsSaveStreamF(stream.get(), file.c_str(), length); }), 1);
  const int added = making([&](auto) {
    const int32_t status = __vxsAddChunk(plain.get(), 9, nullptr, 1);
    __vxsDeleteChunks(plain.get());
    return status;
  });
  EXPECT_EQ(added, 1);
}

TEST(StreamCopies, HaveChunksOfTheirOwn) {
  Stream stream = new_stream(0x300000, {1, 2});
  for (const char *text : {"first", "second", "third"})
    add_chunk(stream, static_cast<uint32_t>(text[0]), text);
  ASSERT_EQ(__vxsAddChunk(stream.get(), 4, nullptr, 8), VXS_STATUS_OK);
  EXPECT_EQ(stream->flags, 1);
  stream->flags = 5;
  const Stream copy = copy_of(stream);
  EXPECT_EQ(copy->flags, 5);
  EXPECT_EQ(draw_words(copy, 99), draw_words(stream, 99));
  stream.reset();
  std::string texts;
  for (const StreamChunk *chunk = copy->chunks; chunk; chunk = chunk->next)
    texts += std::to_string(chunk->id) +
             (chunk->data ? std::string(static_cast<char *>(chunk->data), chunk->size) : "-");
  EXPECT_EQ(texts, "4-116third115second102first");
  const StreamState unknown = {0x500111, 1, nullptr};
  EXPECT_EQ(status_of([&](auto out) { return __vxsCopyStream(out, &unknown); }), VXS_STATUS_BAD_GENERATOR);
}

// What the bytes of one generator would make of another stays out of it; an abstract stream keeps its
// addresses.
TEST(StreamCopies, ForeignStatesDoNoHarm) {
  uint32_t buffer[4];
  const auto no_update = [](auto...) { return 1; };
  const Stream source = new_stream(0x800000, Seeds(5, 0xdeadbeef));
  for (const uint32_t id : {0x100000u, 0x200000u, 0x600000u, 0x700000u, 0x900000u, 0xa00000u}) {
    const Stream destination =
        id == 0xa00000 ? made([&](auto out) { return __vxsiNewAbstractStream(out, 4, buffer, no_update); })
                       : new_stream(id, {3});
    const Stream before = copy_of(destination);
    EXPECT_EQ(__vxsCopyStreamState(destination.get(), source.get()), VXS_STATUS_OTHER_GENERATOR);
    EXPECT_EQ(payload(destination), payload(before)) << id;
  }
}

// How many bytes of the payload move, and what stays.
TEST(StreamCopies, StateMovesWithoutTheParameters) {
  const uint32_t rows[][3] = {
      {0x100000, 0, 4},           {0x200000, 1, 1008},        {0x300000, 2, 24},
      {0x400000, 3, 8},           {0x500000, 0x500110, 32},  // though its row says 64
      {0x500003, 7, 32},          {0x600000, 0x600000, 5296}, {0x700000, 0x700000, 41992},
      {0x800000, 0x800000, 2500}, {0x900000, 0x9003ff, 280},  {0x100000, 0x400000, 4},
      {0x900000, 0x100000, 8},  // all that the destination holds
      {0x100000, 277, 4}};
  for (const auto &[from, to, moved] : rows) {
    const Stream source = new_stream(from, {3}), destination = new_stream(to, {5});
    draw_words(source, 10);
    memset(destination.get() + 1, 0xee, payload(destination).size());
    const std::string before = payload(destination);
    const bool same = generator_of(source).InitStream == generator_of(destination).InitStream;
    EXPECT_EQ(__vxsCopyStreamState(destination.get(), source.get()), same ? 0 : VXS_STATUS_OTHER_GENERATOR);
    EXPECT_EQ(payload(destination), payload(source).substr(0, moved) + before.substr(moved)) << from;
    EXPECT_EQ(destination->brng, to);
  }
  const Stream stream = new_stream(0, {1});
  EXPECT_EQ(__vxsCopyStreamState(stream.get(), stream.get()), VXS_STATUS_OK);
}

}  // namespace
