// What the model of docs/machines.md needs to know of a machine, as lines "name value", in seconds:
//
//   latency      of a message without content, when another comes the other way
//   point        of the Monte Carlo example, on one core
//   copy N       for each byte that a redistribution of N^3 elements moves within one process
//   swap N       for each byte that a rank has, where two exchange half of what they have
//   transform N  for each element and each doubling of their number, on one core
//   measured R N transforms of N^3 elements over R ranks, which the model is compared with
//
// mpirun -n 2 constants, each rank on a core, or a machine, of its own
#include <algorithm>
#include <cmath>

#include "examples/mpi/distributed_transform.h"

// The best of several: others on the machine only add to it.
template <class Run>
static double time_of(MPI_Comm ranks, int times, Run run) {
  double best = HUGE_VAL;
  for (int i = 0; i < times; ++i) {
    MPI_Barrier(ranks);
    const double start = MPI_Wtime();
    run();
    MPI_Barrier(ranks);
    best = std::min(best, MPI_Wtime() - start);
  }
  return best;
}

static double latency(int rank) {
  constexpr int times = 1000;
  return time_of(MPI_COMM_WORLD, 5,
                 [&] {
                   for (int i = 0; i < times; ++i)
                     MPI_Sendrecv(nullptr, 0, MPI_CHAR, 1 - rank, 0, nullptr, 0, MPI_CHAR, 1 - rank, 0,
                                  MPI_COMM_WORLD, MPI_STATUS_IGNORE);
                 }) /
         times;
}

// On all ranks at once, between them or each by itself.
static double redistribution_time(MPI_Comm members, const Box &before, const Box &after) {
  std::vector<Complex> from(before.elements()), to(after.elements());
  const Redistribution move(members, before, after, MPI_C_DOUBLE_COMPLEX);
  return time_of(MPI_COMM_WORLD, 20, [&] { move.forward(from.data(), to.data()); });
}

static double transform_time(MPI_Comm ranks, int length) {
  DistributedTransform transform({length, length, length}, 2, 1);
  std::vector<Complex> data(transform.before().elements());
  return time_of(ranks, 12, [&] { transform.forward(data); });
}

static double axes_time(MPI_Comm ranks, int length) {
  const Box whole{{}, {length, length, length}};
  std::vector<Complex> data(whole.elements());
  AxisTransform axes[] = {{whole, 0}, {whole, 1}, {whole, 2}};
  return time_of(ranks, 12, [&] {
    for (AxisTransform &axis : axes) axis.forward(data.data());
  });
}

static double point_time() {
  constexpr int points = 500, rounds = 2000;
  StreamState *stream = nullptr;
  const uint32_t seed = 1;
  check(__vxsNewStreamEx(&stream, QKR_MT2203(0), 1, &seed), "new stream");
  std::vector<double> numbers(6 * points);
  const double time = time_of(MPI_COMM_SELF, 3, [&] {
    for (int i = 0; i < rounds; ++i) {
      check(_vxsdRngUniform(0, stream, 6 * points, numbers.data(), 0, 1), "draw");
      for (int p = 0; p < points; ++p) {
        const double *at = &numbers[6 * p];
        const double x = at[0] - at[3], y = at[1] - at[4], z = at[2] - at[5];
        numbers[p] = x * x + y * y + z * z;
      }
      _vxmdSqrt_HA(points, numbers.data(), numbers.data());
    }
  });
  __vxsDeleteStream(&stream);
  return time / points / rounds;
}

// Both ranks at once, as in a transform: they share the memory's bandwidth if they share a machine.
template <class Tell>
static void per_byte(const Session &session, int n, Tell tell) {
  const int half = n / 2, first = half * session.rank();
  const double elements = std::pow(n, 3), bytes = sizeof(Complex) * elements / 2;  // of each rank
  const Box rows{{first, 0, 0}, {half, n, n}}, columns{{0, first, 0}, {n, half, n}};
  tell("copy", n, redistribution_time(MPI_COMM_SELF, rows, rows) / bytes);
  tell("swap", n, redistribution_time(MPI_COMM_WORLD, rows, columns) / bytes);
  tell("transform", n, axes_time(MPI_COMM_WORLD, n) / elements / std::log2(elements));
}

int main(int argc, char **argv) {
  const Session session(&argc, &argv);
  if (session.ranks() != 2) fail("constants is to run on 2 ranks");
  const auto tell = [&](const char *name, int n, double value) {
    if (session.rank() == 0) std::printf("%s %d %.4g\n", name, n, value);
  };
  const double wait = latency(session.rank()), point = point_time();
  if (session.rank() == 0) std::printf("latency %.4g\npoint %.4g\n", wait, point);

  for (const int n : {64, 192}) per_byte(session, n, tell);
  for (const int n : {64, 128, 192, 256}) {
    const double one = session.rank() == 0 ? axes_time(MPI_COMM_SELF, n) : 0;  // while the other waits
    const double two = transform_time(MPI_COMM_WORLD, n);
    tell("measured 1", n, one);
    tell("measured 2", n, two);
  }
}
