// Transforms of arrays that are spread over ranks in slabs, beside FFTW's, which leaves the spectrum spread
// in the same way, its second axis cut. Best times of several runs, in turn, and the largest difference.
//
// mpirun -n RANKS beside_fftw
#include <algorithm>
#include <cmath>
#include <fftw3-mpi.h>

#include "examples/mpi/distributed_transform.h"

template <class Run>
static double time_of(Run run) {
  MPI_Barrier(MPI_COMM_WORLD);
  const double start = MPI_Wtime();
  run();
  MPI_Barrier(MPI_COMM_WORLD);
  return MPI_Wtime() - start;
}

static double largest_of_all(double mine) {
  MPI_Allreduce(MPI_IN_PLACE, &mine, 1, MPI_DOUBLE, MPI_MAX, MPI_COMM_WORLD);
  return mine;
}

static void compare(const Session &session, const std::array<int, 3> &lengths) {
  ptrdiff_t rows, row_start, columns, column_start;
  const ptrdiff_t n[] = {lengths[0], lengths[1], lengths[2]};
  const ptrdiff_t room =
      fftw_mpi_local_size_many_transposed(3, n, 1, FFTW_MPI_DEFAULT_BLOCK, FFTW_MPI_DEFAULT_BLOCK,
                                          MPI_COMM_WORLD, &rows, &row_start, &columns, &column_start);
  fftw_complex *theirs = fftw_alloc_complex(room);
  const fftw_plan plan = fftw_mpi_plan_dft(3, n, theirs, theirs, MPI_COMM_WORLD, FFTW_FORWARD,
                                           FFTW_MEASURE | FFTW_MPI_TRANSPOSED_OUT);
  const Box before{{static_cast<int>(row_start), 0, 0}, {static_cast<int>(rows), lengths[1], lengths[2]}};
  const Box after{{0, static_cast<int>(column_start), 0},
                  {lengths[0], static_cast<int>(columns), lengths[2]}};

  DistributedTransform transform(lengths, session.ranks(), 1);
  std::vector<Complex> original(transform.before().elements()), ours, same(before.elements());
  for (size_t i = 0; i < original.size(); ++i)
    original[i] = std::polar(1.0, 1.7 * static_cast<double>(i * i % 1009) + session.rank());
  // Parts of uneven cuts are not quite the same ones.
  Redistribution(MPI_COMM_WORLD, transform.before(), before, MPI_C_DOUBLE_COMPLEX)
      .forward(original.data(), same.data());

  double our_time = HUGE_VAL, their_time = HUGE_VAL;
  for (int run = 0; run < 8; ++run) {
    ours = original;
    our_time = std::min(our_time, time_of([&] { transform.forward(ours); }));
    std::copy_n(same.data(), same.size(), reinterpret_cast<Complex *>(theirs));
    their_time = std::min(their_time, time_of([&] { fftw_execute(plan); }));
  }

  std::vector<Complex> as_theirs(after.elements());
  Redistribution(MPI_COMM_WORLD, transform.after(), after, MPI_C_DOUBLE_COMPLEX)
      .forward(ours.data(), as_theirs.data());
  double difference = 0, largest = 0;
  const Complex *found = as_theirs.data();
  for (ptrdiff_t i = 0; i < n[0]; ++i)
    for (ptrdiff_t j = 0; j < columns; ++j)
      for (ptrdiff_t k = 0; k < n[2]; ++k, ++found) {  // FFTW's second axis comes first now
        const double *expected = theirs[(j * n[0] + i) * n[2] + k];
        difference = std::max(difference, std::abs(*found - Complex(expected[0], expected[1])));
        largest = std::max(largest, std::abs(*found));
      }
  difference = largest_of_all(difference) / largest_of_all(largest);
  if (session.rank() == 0)
    std::printf("| %d x %d x %d | %d | %.2f | %.2f | %.2f | %.0e |\n", lengths[0], lengths[1], lengths[2],
                session.ranks(), 1e3 * our_time, 1e3 * their_time, our_time / their_time, difference);
  fftw_destroy_plan(plan);
  fftw_free(theirs);
}

int main(int argc, char **argv) {
  const Session session(&argc, &argv);
  fftw_mpi_init();
  if (session.rank() == 0)
    std::printf("| array | ranks | ours, ms | FFTW, ms | ratio | difference |\n|---|---|---|---|---|---|\n");
  for (const std::array<int, 3> &lengths :
       {std::array{1024, 1024, 1}, std::array{1000, 999, 1}, std::array{64, 64, 64},
        std::array{128, 128, 128}, std::array{90, 125, 147}})
    compare(session, lengths);
  fftw_mpi_cleanup();
}
