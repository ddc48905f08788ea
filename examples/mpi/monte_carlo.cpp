// The mean distance of two points in a cube, by simulation on any number of ranks. The numbers are parted in
// three ways, and with each the result has the same bits however many ranks there are:
//
//   member    each block of points has a generator of a family for itself
//   skip      all blocks are pieces of one sequence, each of which begins by skipping to its place
//   leapfrog  one sequence is dealt out in turn, so that block k gets numbers k, k + blocks, ...
//
// Two rules see to that. A stream belongs to a block, and the number of blocks does not depend on that of the
// ranks. And sums of floating-point numbers depend on the order, so no MPI_Reduce, whose order follows the
// ranks: the sums of the blocks are gathered, and added in the order of the blocks.
//
// mpirun -n RANKS monte_carlo [POINTS_PER_BLOCK]
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <qkr/qkr.h>
#include <vector>

#include "session.h"

// Many more blocks than ranks, so that shares are even; at most as many as MT2203 has members. And odd: of a
// sequence modulo a power of two, as MCG59's is, every 2^k-th number makes a much worse sequence.
constexpr int blocks = 1021;
constexpr int numbers_per_point = 6;
constexpr uint64_t seed = 2026;

struct DeleteStream {
  void operator()(StreamState *stream) const { __vxsDeleteStream(&stream); }
};
using Stream = std::unique_ptr<StreamState, DeleteStream>;

static Stream new_stream(uint32_t generator, int n, const uint32_t *words) {
  StreamState *stream = nullptr;
  const int32_t status = __vxsNewStreamEx(&stream, generator, n, words);
  Stream owned(stream);
  check(status, "new stream");
  return owned;
}

static Stream member(int block, int64_t) {
  uint32_t words[4];  // of the block's own, because members with the same seed begin alike
  __vxsSeedWords(seed, block, 4, words);
  return new_stream(QKR_MT2203(block), 4, words);
}

static Stream skip(int block, int64_t numbers) {
  uint32_t words[6];
  __vxsSeedWords(seed, 0, 6, words);
  Stream stream = new_stream(QKR_MRG32K3A, 6, words);
  check(qkr_skip_ahead(stream.get(), block * numbers), "skip");
  return stream;
}

static Stream leapfrog(int block, int64_t) {
  uint32_t words[2];
  __vxsSeedWords(seed, 0, 2, words);
  words[0] |= 1;  // from an odd number its period is the longest
  Stream stream = new_stream(QKR_MCG59, 2, words);
  check(__vxsLeapfrogStream(stream.get(), block, blocks), "leapfrog");
  return stream;
}

struct Sums {
  double distances = 0, squares = 0;
};

static Sums simulate(const Stream &stream, int points) {
  constexpr int most = 500;  // points at a time, which stay in the first-level cache
  double numbers[numbers_per_point * most], distances[most];
  Sums sums;
  for (int left = points; left > 0; left -= most) {
    const int n = std::min(left, most);
    check(_vxsdRngUniform(0, stream.get(), numbers_per_point * n, numbers, 0, 1), "draw");
    for (int i = 0; i < n; ++i) {
      const double *p = numbers + numbers_per_point * i, *q = p + 3;
      const double x = p[0] - q[0], y = p[1] - q[1], z = p[2] - q[2];
      distances[i] = x * x + y * y + z * z;
    }
    for (int i = 0; i < n; ++i) sums.squares += distances[i];
    _vxmdSqrt_HA(n, distances, distances);
    for (int i = 0; i < n; ++i) sums.distances += distances[i];
  }
  return sums;
}

// The sums of all blocks, in their order, on rank 0.
static std::vector<Sums> gather(const Session &session, const std::vector<Sums> &mine) {
  std::vector<Sums> all(session.rank() == 0 ? blocks : 0);
  std::vector<int> counts, starts;
  for (int rank = 0; rank < session.ranks(); ++rank) {
    starts.push_back(2 * part_start(blocks, rank, session.ranks()));
    counts.push_back(2 * part_start(blocks, rank + 1, session.ranks()) - starts.back());
  }
  MPI_Gatherv(mine.data(), static_cast<int>(2 * mine.size()), MPI_DOUBLE, all.data(), counts.data(),
              starts.data(), MPI_DOUBLE, 0, MPI_COMM_WORLD);
  return all;
}

int main(int argc, char **argv) {
  const Session session(&argc, &argv);
  const int points = argc > 1 ? std::atoi(argv[1]) : 2000;
  if (argc > 2 || points < 1) fail("usage: monte_carlo [POINTS_PER_BLOCK]");

  // D. P. Robbins, American Mathematical Monthly 85 (1978) 278
  const double root2 = std::numbers::sqrt2, root3 = std::numbers::sqrt3;
  const double exact = (4 + 17 * root2 - 6 * root3 + 21 * std::log(1 + root2) + 42 * std::log(2 + root3) -
                        7 * std::numbers::pi) /
                       105;
  if (session.rank() == 0) std::printf("exact mean %.9f, %d blocks of %d points\n", exact, blocks, points);

  struct Way {
    const char *name, *generator;
    Stream (*stream_of)(int block, int64_t numbers);
  };
  constexpr Way ways[] = {
      {"member", "MT2203", member}, {"skip", "MRG32K3A", skip}, {"leapfrog", "MCG59", leapfrog}};
  for (const Way &way : ways) {
    const double start = MPI_Wtime();
    std::vector<Sums> mine;
    for (int block = part_start(blocks, session.rank(), session.ranks());
         block < part_start(blocks, session.rank() + 1, session.ranks()); ++block)
      mine.push_back(simulate(way.stream_of(block, int64_t{numbers_per_point} * points), points));

    Sums sums;
    for (const Sums &block : gather(session, mine)) {
      sums.distances += block.distances;
      sums.squares += block.squares;
    }
    if (session.rank() != 0) continue;
    const double count = static_cast<double>(blocks) * points, mean = sums.distances / count;
    const double deviation = std::sqrt((sums.squares / count - mean * mean) / count);
    std::printf("%-9s %-9s mean %.9f +- %.9f, bits %a\n", way.name, way.generator, mean, deviation, mean);
    std::fprintf(stderr, "%-9s %d ranks: %.3f s\n", way.name, session.ranks(), MPI_Wtime() - start);
  }
}
