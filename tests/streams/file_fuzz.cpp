// Loads stream files with random faults: `file_fuzz COUNT [SEED]`. A fault may be refused or may give a
// stream that goes on; the address sanitizer says whether it does more than that. State from a damaged file
// is not drawn from: the loader does not check it.
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <sys/mman.h>
#include <unistd.h>

#include "tests/streams/generators.h"

// A damaged size asks for gigabytes: malloc says no, as it would on a small machine.
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=16";
}

namespace {

using namespace qkr::tests;

std::string read_all(int file) {
  std::string bytes(static_cast<size_t>(lseek(file, 0, SEEK_END)), 0);
  if (pread(file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) abort();
  return bytes;
}

void write_all(int file, const std::string &bytes) {
  if (ftruncate(file, 0) != 0 ||
      pwrite(file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
    abort();
}

// Faults gather where they matter: in the header, and at the chunks behind the payload.
std::string damaged(std::string bytes, std::mt19937 &engine) {
  for (uint32_t faults = 1 + engine() % 4; faults > 0 && !bytes.empty(); --faults) {
    const size_t region = std::min<size_t>(bytes.size(), 1 + engine() % 48);
    size_t position = engine() % bytes.size();
    if (engine() % 3 != 0) position = engine() % 2 ? engine() % region : bytes.size() - 1 - engine() % region;
    switch (engine() % 6) {
      case 0:
        bytes[position] = static_cast<char>(engine());
        break;
      case 1:
        bytes[position] = static_cast<char>(bytes[position] ^ (1 << engine() % 8));
        break;
      case 2:
        bytes[position] = static_cast<char>(engine() % 2 ? 0 : 0xff);
        break;
      case 3:
        bytes.resize(position);
        break;
      case 4:
        bytes.insert(position, 1 + engine() % 8, static_cast<char>(engine()));
        break;
      default:
        bytes.erase(position, 1 + engine() % 8);
    }
  }
  return bytes;
}

}  // namespace

int main(int argc, char **argv) {
  const long count = argc > 1 ? atol(argv[1]) : 0;
  if (count <= 0) return fprintf(stderr, "usage: file_fuzz COUNT [SEED]\n"), 2;
  std::mt19937 engine(argc > 2 ? static_cast<uint32_t>(atol(argv[2])) : 1);

  const int file = memfd_create("stream", 0);
  const std::string name = "/proc/self/fd/" + std::to_string(file);
  std::vector<std::string> good;
  for (const Generator &g : all_generators()) {
    const Stream stream = new_stream(g.id, g.seeds);
    for (uint32_t id = 0; id < good.size() % 3; ++id) __vxsAddChunk(stream.get(), id, calloc(1, 20), 20);
    if (__vxsSaveStreamF(stream.get(), name.c_str(), -1) != VXS_STATUS_OK) abort();
    good.push_back(read_all(file));
  }

  std::map<int32_t, long> outcomes;
  for (long i = 0; i < count; ++i) {
    // The large ones are slow, and differ in nothing.
    const std::string &intact = good[engine() % (i % 16 ? 4 : good.size())];
    write_all(file, damaged(intact, engine));
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
  }
  for (const auto &[status, times] : outcomes) printf("%6d: %ld\n", status, times);
  // Both ways out were tried.
  return outcomes.contains(VXS_STATUS_OK) && outcomes.contains(VXS_STATUS_FILE_FORMAT) &&
                 outcomes.contains(VXS_STATUS_FILE_READ)
             ? 0
             : 1;
}
