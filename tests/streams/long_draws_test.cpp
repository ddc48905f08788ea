// Draws of 2^31 - 1 numbers: counting reaches the end of its range. The numbers go to one stretch of memory,
// mapped over and over, so that 32 GB of addresses need little of it; the last numbers stay.
#include <algorithm>
#include <sys/mman.h>
#include <unistd.h>

#include "tests/streams/generators.h"

namespace {

using namespace qkr::tests;

constexpr int32_t most = INT32_MAX;
constexpr size_t stretch = size_t{1} << 26;

class Repeated {
 public:
  explicit Repeated(size_t bytes) : bytes_((bytes + 2 * stretch) / stretch * stretch) {
    const int file = memfd_create("numbers", 0);
    if (file < 0 || ftruncate(file, stretch) != 0) return;
    void *all = mmap(nullptr, bytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (all != MAP_FAILED) start_ = static_cast<char *>(all);
    for (size_t at = 0; start_ && at < bytes_; at += stretch) {
      if (mmap(start_ + at, stretch, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) == MAP_FAILED) {
        munmap(start_, bytes_);
        start_ = nullptr;
      }
    }
    close(file);
  }
  ~Repeated() {
    if (start_) munmap(start_, bytes_);
  }
  char *start() const { return start_; }

 private:
  size_t bytes_;
  char *start_ = nullptr;
};

TEST(LongDraws, ReachTheLargestCount) {
  const struct {
    uint32_t id;
    Seeds seeds;
    bool skips;
  } rows[] = {{0x100000, {777}, true}, {0x200000, {777}, false},    {0x300000, {777}, true},
              {0x400000, {777}, true}, {0x500000, {7, 8, 9}, true}, {0x600000, {3}, true},
              {0x600000, {40}, true},  {0x800000, {777}, false},    {0x900000, {777}, false}};
  const Repeated memory(size_t{16} * most);
  if (!memory.start()) GTEST_SKIP() << "no memory";
  for (const auto &row : rows) {
    for (const bool reals : {false, true}) {
      if (reals && row.id != 0x500000) continue;  // the others make reals of their words
      SCOPED_TRACE(testing::Message() << std::hex << row.id << (reals ? ", reals" : ""));
      const Stream stream = new_stream(row.id, row.seeds), other = copy_of(stream);
      const BrngRecord generator = generator_of(stream);
      const size_t size = reals ? sizeof(float) : static_cast<size_t>(generator.WordSize);
      auto *words = reinterpret_cast<uint32_t *>(memory.start());
      auto *singles = reinterpret_cast<float *>(memory.start());
      const auto draw = [&](const Stream &from, int32_t n) {
        return reals ? generator.sBrng(from.get(), n, singles, 0, 1) : generator.iBrng(from.get(), n, words);
      };
      constexpr int32_t last = 1000;
      ASSERT_EQ(draw(stream, most), VXS_STATUS_OK);
      const char *end = memory.start() + size * most;
      const std::string numbers(end - size * last, end);
      if (row.skips) {
        ASSERT_EQ(__vxsSkipAheadStream(other.get(), most - last), VXS_STATUS_OK);
      } else {
        for (int32_t left = most - last, n; left > 0; left -= n) draw(other, n = std::min(left, 1 << 20));
      }
      ASSERT_EQ(draw(other, last), VXS_STATUS_OK);
      EXPECT_EQ(numbers, std::string(memory.start(), size * last));
      EXPECT_EQ(payload(stream), payload(other));
    }
  }
}

}  // namespace
