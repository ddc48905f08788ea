// Stream files: what is in them, what comes back, and every way in which saving and loading fail. Copies.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <map>
#include <qkr/distributions.h>
#include <qkr/streams_abstract.h>
#include <random>

#include "tests/streams/generators.h"
#include "tests/support/allocations.h"
#include "tests/support/levels.h"

// A damaged size asks for gigabytes: malloc says no, as it would on a small machine.
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=1000";
}

namespace {

using namespace qkr::tests;

// However a stream came about, it gives the same numbers in one draw as step by step, and does not leave its
// memory.
void use(const Stream &stream, std::mt19937 &engine) {
  for_each_level([&](const char *level) {
    const Stream stepwise = copy_of(stream), at_once = copy_of(stream);
    Words expected;
    for (int32_t i = 0; i < 300; ++i)
      for (const uint32_t word : draw_words(stepwise, 1)) expected.push_back(word);
    EXPECT_EQ(draw_words(at_once, 300), expected) << level;
    EXPECT_EQ(payload(at_once), payload(stepwise)) << level;
  });
  double reals[64];
  __vxsLeapfrogStream(stream, static_cast<int32_t>(engine() % 4), engine() % 2 ? QKR_ONE_DIMENSION : 3);
  __vxsSkipAheadStream(stream, engine());
  _vxsdRngGaussian(1, stream, static_cast<int32_t>(engine() % 65), reals, 0, 1);
}

// A file of its own for each test.
class StreamFiles : public testing::Test {
 protected:
  const std::filesystem::path directory =
      std::filesystem::temp_directory_path() / ("qkr_streams_" + std::to_string(getpid()));
  const std::string file = directory / "stream", none = directory / "none" / "stream";
  std::mt19937 engine;
  StreamFiles() { std::filesystem::create_directories(directory); }
  ~StreamFiles() override { std::filesystem::remove_all(directory); }

  std::string saved(const Stream &stream) const {
    save(stream, file);
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  // What loading these bytes answers; a stream that comes of them is what the file says, and is used.
  int32_t status_of_bytes(const std::string &bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
    StreamState *out = nullptr;
    const int32_t status = __vxsLoadStreamF(&out, file.c_str());
    EXPECT_EQ(out != nullptr, status == VXS_STATUS_OK);
    if (const Stream stream(out); out) use(stream, engine);
    return status;
  }
};

std::string bytes_of(uint32_t word) { return std::string(reinterpret_cast<char *>(&word), 4); }

std::string with(std::string bytes, size_t position, const std::string &replacement) {
  return bytes.replace(position, replacement.size(), replacement);
}

void add_chunk(const Stream &stream, uint32_t id, const std::string &text) {
  void *data = memcpy(malloc(text.size()), text.data(), text.size());
  ASSERT_EQ(__vxsAddChunk(stream, id, data, static_cast<uint32_t>(text.size())), VXS_STATUS_OK);
}

TEST_F(StreamFiles, EveryGeneratorGoesOnWhereItWasSaved) {
  for (const Generator &generator : all_generators()) {
    const Stream stream = generator.start();
    draw_words(stream, 1234);
    save(stream, file);
    const Stream second = loaded(file);
    EXPECT_EQ(second->brng, generator.id);
    EXPECT_EQ(draw_words(second, 2000), draw_words(stream, 2000)) << generator.name;
    // Memory that held something else before shows in no file.
    const auto saved_after = [&](int fill) {
      const auto size = static_cast<size_t>(generator_of(stream).StateSize);
      mallopt(M_PERTURB, fill);
      free(memset(malloc(size), fill, size));
      return saved(generator.start());
    };
    const std::string one = saved_after(0x11), other = saved_after(0xee);
    mallopt(M_PERTURB, 0);
    EXPECT_EQ(one, other) << generator.name;
  }
}

TEST_F(StreamFiles, Layout) {
  const Stream stream = new_stream(0x400000, {0x04030201, 0x00060504});
  add_chunk(stream, 2, "ab");
  add_chunk(stream, 0x01020304, "cde");
  using namespace std::string_literals;
  const std::string head = "\x52\x4e\x47\0\x10\0\x10\0\2\0\0\0\0\0\x40\0"s,
                    state = "\1\2\3\4\4\5\6\0\xfd\xc5\x23\x9b\x76\x13\1\0"s, newer = "\4\3\2\1\3\0\0\0cde"s,
                    older = "\2\0\0\0\2\0\0\0ab"s;
  EXPECT_EQ(saved(stream), head + state + newer + older);
  EXPECT_EQ(saved(loaded(file)), head + state + older + newer) << "loading reverses the chunks";
}

TEST_F(StreamFiles, FilesThatAreRefused) {
  const Stream stream = new_stream(0x900005, {1});
  add_chunk(stream, 2, "data");
  const std::string good = saved(stream);
  const struct {
    size_t position;
    std::string bytes;
    int32_t status;
  } rows[] = {{2, "H", VXS_STATUS_FILE_FORMAT},
              {3, "\1", VXS_STATUS_FILE_VERSION},
              {2, "H\1", VXS_STATUS_FILE_FORMAT},
              {4, "\x20", VXS_STATUS_OK},  // a longer header
              {4, "\xf", VXS_STATUS_FILE_FORMAT},
              {6, "\x27\1", VXS_STATUS_FILE_FORMAT},    // size of the state
              {8, "\2", VXS_STATUS_FILE_READ},          // one chunk too many
              {10, "\x55\xaa", VXS_STATUS_OK},          // reserved
              {12, bytes_of(0x9003ff), VXS_STATUS_OK},  // another member
              {12, bytes_of(0x900400), VXS_STATUS_FILE_FORMAT},
              {12, bytes_of(0x800000), VXS_STATUS_FILE_FORMAT},  // of another size
              {12, bytes_of(279), VXS_STATUS_FILE_FORMAT},
              {12, bytes_of(0xffffffff), VXS_STATUS_FILE_FORMAT},
              {316, bytes_of(0), VXS_STATUS_FILE_READ},  // size of the chunk
              {316, bytes_of(5), VXS_STATUS_FILE_READ},
              {good.size(), "more", VXS_STATUS_OK}};
  for (const auto &[position, bytes, status] : rows)
    EXPECT_EQ(status_of_bytes(with(good, position, bytes)), status)
        << position << testing::PrintToString(bytes);
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
              {0x400000, 777, 3, {0, 0x07ffffff}, {0x08000000}},
              {0x500000, 777, 3, {0, 0xffffff}, {0x1000000, ~0u}},
              {0x500000, 777, 4, {127}, {~0u}},
              {0x200000, 777, 250, {0, 104, 107, 113, 249}, {250, ~0u, 0x7fffffff}},  // the other one is 103
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
  // MRG32K3A draws from any words, such as no seeds make.
  EXPECT_EQ(status_of_bytes(with(saved(new_stream(0x300000, {})), 16, std::string(24, '\0'))), VXS_STATUS_OK);
}

// Words in the header, at the start of the state and in the chunks behind it; bytes that are lost or come
// in. The address sanitizer says whether they do more than be refused. By hand, with QKR_FILE_TRIALS=100000:
// as many for each generator.
TEST_F(StreamFiles, RandomFaultsDoNoHarm) {
  const uint32_t words[] = {0, 1, 250, 4294944442, 4294967086, 0x7fffff97, ~0u};
  const char *const asked = getenv("QKR_FILE_TRIALS");
  const int trials = asked ? atoi(asked) : 100;
  std::map<int32_t, int> outcomes;
  for (const Generator &generator : all_generators()) {
    const Stream stream = generator.start();
    add_chunk(stream, 2, std::string(16, '\1'));  // where Gaussian holds numbers over
    const std::string good = saved(stream);
    for (int trial = 0; trial < trials; ++trial) {
      std::string bytes = good;
      for (uint32_t faults = 1 + engine() % 6; faults > 0; --faults) {
        const size_t near = std::min(engine() % 16 * 4, bytes.size() - 4),
                     position = engine() % 2 ? near : bytes.size() - 4 - near;
        if (engine() % 20 == 0) bytes.erase(position, 1 + engine() % 4);
        else if (engine() % 20 == 0) bytes.insert(position, 1 + engine() % 8, '\1');
        else bytes = with(bytes, position, bytes_of(engine() % 2 ? engine() : words[engine() % 7]));
      }
      ++outcomes[status_of_bytes(bytes)];
    }
  }
  EXPECT_TRUE(outcomes[VXS_STATUS_OK] > 100 && outcomes[VXS_STATUS_FILE_FORMAT] > 100);
}

// Addresses mean nothing after loading: an abstract stream waits for new ones.
TEST_F(StreamFiles, AbstractStreamsComeBackUnconnected) {
  static double buffer[5];
  const AbstractUpdateD callback = [](auto...) { return 1; };
  const std::string bytes =
      saved(made([&](auto out) { return __vxsdNewAbstractStream(out, 5, buffer, 0, 1, callback); }));
  const Stream again = loaded(file);
  double number;
  EXPECT_EQ(generator_of(again).dBrng(again, 1, &number, 0, 1), VXS_STATUS_NULL_POINTER);
  const int32_t size = 5;
  const double lower = 0, upper = 1, *const numbers = buffer;
  const void *const params[] = {&size, &numbers, &lower, &upper, &callback};
  EXPECT_EQ(generator_of(again).InitStream(VXS_INIT_SEED, again, 10, params), VXS_STATUS_OK);
  draw_doubles(again, 1);
  for (const auto &[word, value] : {std::pair{0, 0}, {0, 2}, {1, 5}, {1, -1}, {2, 6}, {2, -1}})
    EXPECT_EQ(status_of_bytes(with(bytes, 16 + 4 * word, bytes_of(value))), VXS_STATUS_FILE_FORMAT)
        << word << ' ' << value;
}

TEST_F(StreamFiles, WhatCannotBeOpenedWrittenOrClosed) {
  const auto load = [](const std::string &name) {
    return status_of([&](auto out) { return __vxsLoadStreamF(out, name.c_str()); });
  };
  EXPECT_EQ(load(none), VXS_STATUS_FILE_OPEN);
  EXPECT_EQ(load(directory), VXS_STATUS_FILE_READ);  // it opens, but no more
  const Stream small = new_stream(0, {1}), large = new_stream(0x700000, {318}), odd = new_stream(0, {1});
  ASSERT_EQ(__vxsAddChunk(odd, 2, malloc(1), 0), VXS_STATUS_OK);
  const StreamState unknown = {279, 1, nullptr};
  const struct {
    std::string name;
    const StreamState *stream;
    int32_t status;
  } rows[] = {{none, small, VXS_STATUS_FILE_OPEN},         {directory, small, VXS_STATUS_FILE_OPEN},
              {"/dev/full", small, VXS_STATUS_FILE_CLOSE},  // until then it stays in the buffer
              {"/dev/full", large, VXS_STATUS_FILE_WRITE}, {file, odd, VXS_STATUS_FILE_WRITE},
              {file, &unknown, VXS_STATUS_BAD_GENERATOR}};
  for (const auto &row : rows)
    EXPECT_EQ(__vxsSaveStreamF(row.stream, row.name.c_str(), -1), row.status) << &row - rows;
}

TEST_F(StreamFiles, AllocationsThatFailLeaveNothingBehind) {
  const Stream stream = new_stream(0x800000, {1}), plain = new_stream(0, {1});
  add_chunk(stream, 2, "ab");
  add_chunk(stream, 3, "cde");
  save(stream, file);
  uint32_t buffer[1];
  const Seeds large = user_directions(41);
  const auto no_update = [](auto...) { return 0; };
  const auto copy = [&](StreamState **out) {
    const int32_t status = __vxsCopyStream(out, stream);
    EXPECT_TRUE(!*out || status == VXS_STATUS_OK);
    return status;
  };
  const auto add_and_delete = [&](auto) {
    const int32_t status = __vxsAddChunk(plain, 9, nullptr, 1);
    __vxsDeleteChunks(plain);
    return status;
  };
  const auto length = static_cast<int32_t>(file.size()), count = static_cast<int32_t>(large.size());
  const std::pair<std::function<int32_t(StreamState **)>, int> rows[] = {
      {[](auto s) { return __vxsNewStreamEx(s, 0x100000, 0, nullptr); }, 1},
      {[&](auto s) { return __vxsNewStreamEx(s, 0x600000, count, large.data()); }, 3},
      {copy, 5},
      {[&](auto s) { return __vxsLoadStreamF(s, file.c_str()); }, 5},
      {[&](auto s) { return __vxsiNewAbstractStream(s, 1, buffer, no_update); }, 1},
      {[&](auto) { return __vxsSaveStreamF(stream, file.c_str(), length); }, 1},
      {add_and_delete, 1}};
  for (const auto &row : rows)
    EXPECT_EQ(allocations_survived([&] { return status_of(row.first); }, VXS_STATUS_NO_MEMORY), row.second);
}

TEST(StreamCopies, HaveChunksOfTheirOwn) {
  Stream stream = new_stream(0x300000, {1, 2});
  for (const char *text : {"first", "second", "third"}) add_chunk(stream, text[0], text);
  ASSERT_EQ(__vxsAddChunk(stream, 4, nullptr, 8), VXS_STATUS_OK);
  stream->flags = 5;
  const Stream copy = copy_of(stream);
  stream.reset();
  EXPECT_TRUE(copy->flags == 5 && copy->chunks->id == 4 && !copy->chunks->data && copy->chunks->size == 8);
  copy->chunks->size = 0;
  EXPECT_EQ(state_of(copy).substr(24), "thirdsecondfirst");
  EXPECT_EQ(__vxsSearchChunk(copy, 's'), copy->chunks->next->next->data);
  const StreamState unknown = {0x500111, 1, nullptr};
  EXPECT_EQ(status_of([&](auto out) { return __vxsCopyStream(out, &unknown); }), VXS_STATUS_BAD_GENERATOR);
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
    memset(destination + 1, 0xee, payload(destination).size());
    const std::string before = payload(destination);
    const bool same = generator_of(source).InitStream == generator_of(destination).InitStream;
    EXPECT_EQ(__vxsCopyStreamState(destination, source), same ? 0 : VXS_STATUS_OTHER_GENERATOR);
    EXPECT_EQ(payload(destination), payload(source).substr(0, moved) + before.substr(moved)) << from;
    EXPECT_EQ(destination->brng, to);
  }
  const Stream stream = new_stream(0, {1});
  EXPECT_EQ(__vxsCopyStreamState(stream, stream), VXS_STATUS_OK);
}

// Many dimensions move to as many. What the bytes of one generator would make of another stays out of it; an
// abstract stream keeps its addresses.
TEST(StreamCopies, StatesStayOutWhereTheyDoNotFit) {
  constexpr uint32_t sobol = 0x600000, niederreiter = 0x700000, twister = 0x800000;
  const auto stream_of = [](uint32_t id, uint32_t seed) {
    static uint32_t buffer[4];
    const auto no_update = [](auto...) { return 1; };
    if (id == 0xa00000)
      return made([&](StreamState **s) { return __vxsiNewAbstractStream(s, 4, buffer, no_update); });
    return new_stream(id, seed > 40 ? user_directions(seed) : Seeds{seed});
  };
  const uint32_t rows[][5] = {{sobol, 41, sobol, 41, 1},          {sobol, 60, sobol, 50, 0},
                              {sobol, 60, sobol, 3, 0},           {sobol, 3, sobol, 60, 0},
                              {sobol, 350, niederreiter, 350, 0}, {niederreiter, 319, niederreiter, 319, 1},
                              {twister, 1, sobol, 60, 0},         {twister, 1, 0x100000, 3, 0},
                              {twister, 1, 0x200000, 3, 0},       {twister, 1, sobol, 3, 0},
                              {twister, 1, niederreiter, 3, 0},   {twister, 1, 0x900000, 3, 0},
                              {twister, 1, 0xa00000, 3, 0}};
  for (const auto &[from_id, from_seed, to_id, to_seed, fits] : rows) {
    const Stream from = stream_of(from_id, from_seed), to = stream_of(to_id, to_seed);
    draw_words(from, 1000);
    const std::string expected = state_of(fits ? from : to);
    EXPECT_EQ(__vxsCopyStreamState(to, from), fits ? VXS_STATUS_OK : VXS_STATUS_OTHER_GENERATOR);
    EXPECT_EQ(state_of(to), expected) << from_id << ", " << from_seed << " to " << to_id << ", " << to_seed;
  }
}

}  // namespace
