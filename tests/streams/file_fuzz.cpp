// Loads stream files with random faults, and draws: `file_fuzz COUNT [SEED]`. A fault may be refused or may
// give a stream that goes on; the address sanitizer says whether it does more than that.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <qkr/distributions.h>
#include <qkr/streams_abstract.h>
#include <random>
#include <sys/mman.h>

#include "tests/streams/generators.h"

// A damaged size asks for gigabytes: malloc says no, as it would on a small machine.
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=16";
}

namespace {

using namespace qkr::tests;

std::string read_all(const std::string &name) {
  std::ifstream in(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Faults gather where they matter: in the header, and at the chunks behind the payload.
std::string damaged(std::string bytes, std::mt19937 &engine) {
  for (uint32_t faults = 1 + engine() % 4; faults > 0 && !bytes.empty(); --faults) {
    const size_t region = std::min<size_t>(bytes.size(), 1 + engine() % 48);
    size_t position = engine() % bytes.size();
    if (engine() % 3 != 0) position = engine() % 2 ? engine() % region : bytes.size() - 1 - engine() % region;
    const auto any = static_cast<char>(engine());
    const uint32_t kind = engine() % 6;
    if (kind == 0) bytes[position] = any;
    if (kind == 1) bytes[position] = static_cast<char>(bytes[position] ^ (1 << engine() % 8));
    if (kind == 2) bytes[position] = static_cast<char>(engine() % 2 ? 0 : 0xff);
    if (kind == 3) bytes.resize(position);
    if (kind == 4) bytes.insert(position, 1 + engine() % 8, any);
    if (kind == 5) bytes.erase(position, 1 + engine() % 8);
  }
  return bytes;
}

// Each form of draw, and what moves a stream. Whatever they answer, they stay within their arrays.
void use(const Stream &stream, std::mt19937 &engine) {
  const BrngRecord generator = generator_of(stream);
  const auto n = static_cast<int32_t>(engine() % 8 == 0 ? engine() % 3000 : engine() % 40);
  std::vector<uint32_t> words(static_cast<size_t>(n) * (generator.WordSize / 4));
  std::vector<double> reals(static_cast<size_t>(n));
  std::vector<float> singles(static_cast<size_t>(n));
  double pairs[64];
  StreamState *s = stream.get();
  for (int operation = 0; operation < 3; ++operation) {
    const uint32_t kind = engine() % 6;
    if (kind == 0) generator.iBrng(s, n, words.data());
    if (kind == 1) generator.dBrng(s, n, reals.data(), 0, 1);
    if (kind == 2) generator.sBrng(s, n, singles.data(), 0, 1);
    if (kind == 3) __vxsSkipAheadStream(s, engine());
    if (kind == 4) __vxsLeapfrogStream(s, static_cast<int32_t>(engine() % 4), engine() % 2 ? 0x7fffffff : 3);
    if (kind == 5) _vxsdRngGaussian(1, s, 1 + n % 64, pairs, 0, 1);
  }
  __vxsCopyStream(&s, stream.get());
  generator.iBrng(s, n, words.data());
  __vxsDeleteStream(&s);
}

// Streams of every kind: the generators, abstract ones, and one that holds a number over.
std::vector<Stream> all_streams() {
  static uint32_t words[8];
  static double reals[8];
  static float singles[8];
  static constexpr auto update = [](auto...) { return 1; };
  std::vector<Stream> streams;
  for (const Generator &generator : all_generators()) {
    streams.push_back(generator.start());
    for (uint32_t id = 0; id < streams.size() % 3; ++id)
      __vxsAddChunk(streams.back().get(), id, calloc(1, 20), 20);
  }
  streams.push_back(made([](StreamState **out) { return __vxsiNewAbstractStream(out, 8, words, update); }));
  streams.push_back(
      made([](StreamState **out) { return __vxsdNewAbstractStream(out, 8, reals, 0, 1, update); }));
  streams.push_back(
      made([](StreamState **out) { return __vxssNewAbstractStream(out, 8, singles, 0, 1, update); }));
  streams.push_back(new_stream(0x100000, {777}));
  _vxsdRngGaussian(1, streams.back().get(), 1, reals, 0, 1);
  return streams;
}

}  // namespace

int main(int argc, char **argv) {
  const long count = argc > 1 ? atol(argv[1]) : 0;
  if (count <= 0) return fprintf(stderr, "usage: file_fuzz COUNT [SEED]\n"), 2;
  std::mt19937 engine(argc > 2 ? static_cast<uint32_t>(atol(argv[2])) : 1);

  const std::string name = "/proc/self/fd/" + std::to_string(memfd_create("stream", 0));
  std::vector<std::string> good;
  for (const Stream &stream : all_streams()) {
    if (__vxsSaveStreamF(stream.get(), name.c_str(), -1) != VXS_STATUS_OK) abort();
    good.push_back(read_all(name));
  }

  std::map<int32_t, long> outcomes;
  for (long i = 0; i < count; ++i) {
    const std::string *intact = &good[engine() % good.size()];
    while (intact->size() > 10000 && i % 64) intact = &good[engine() % good.size()];  // they are slow
    std::ofstream(name, std::ios::binary | std::ios::trunc) << damaged(*intact, engine);
    StreamState *stream = nullptr;
    const int32_t status = __vxsLoadStreamF(&stream, name.c_str());
    ++outcomes[status];
    if ((stream != nullptr) != (status == VXS_STATUS_OK))
      return printf("%ld: %d and a stream\n", i, status), 1;
    if (!stream) continue;
    // It is what the file says: saved again and loaded again it is the same.
    const Stream first(stream);
    StreamState *again = nullptr;
    if (__vxsSaveStreamF(stream, name.c_str(), -1) != VXS_STATUS_OK ||
        __vxsLoadStreamF(&again, name.c_str()) != VXS_STATUS_OK || payload(Stream(again)) != payload(first))
      return printf("%ld: does not survive\n", i), 1;
    use(first, engine);
  }
  for (const auto &[status, times] : outcomes) printf("%6d: %ld\n", status, times);
  // Both ways out were tried.
  return !outcomes.contains(VXS_STATUS_OK) || !outcomes.contains(VXS_STATUS_FILE_FORMAT);
}
