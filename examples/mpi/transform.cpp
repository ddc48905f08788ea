// Fourier transform of an array too large for one machine, which is spread over the ranks in slabs or in
// pencils. The spectrum has the same bits for any number of ranks, and so has what is printed.
//
// mpirun -n RANKS transform slabs|pencils N0 N1 [N2]
//
// So that this can be seen, rank 0 makes the whole transform once more by itself, if the array has at most
// 2^22 elements.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "distributed_transform.h"

// Random numbers, element g of the whole array from numbers 2 g and 2 g + 1 of one sequence: a rank skips to
// the rows of its box, and so the array does not depend on how it is spread.
static std::vector<Complex> fill(const Box &box, const std::array<int, 3> &lengths) {
  constexpr uint32_t seed[] = {1, 2026};
  StreamState *stream = nullptr;
  check(__vxsNewStreamEx(&stream, QKR_MCG59, 2, seed), "new stream");
  std::vector<Complex> data(box.elements());
  auto *row = reinterpret_cast<double *>(data.data());
  int64_t place = 0;
  for (int i = box.start[0]; i < box.start[0] + box.size[0]; ++i)
    for (int j = box.start[1]; j < box.start[1] + box.size[1]; ++j) {
      const int64_t start = 2 * ((int64_t{i} * lengths[1] + j) * lengths[2] + box.start[2]);
      check(qkr_skip_ahead(stream, start - place), "skip");
      check(_vxsdRngUniform(0, stream, 2 * box.size[2], row, -1, 1), "draw");
      place = start + 2 * box.size[2];
      row += 2 * box.size[2];
    }
  __vxsDeleteStream(&stream);
  return data;
}

// A hash of all bits of the array, each in its place, that can be summed over the elements in any order.
static uint64_t digest(const std::vector<Complex> &data, const Box &box, const std::array<int, 3> &lengths) {
  uint64_t sum = 0;
  const auto mixed = [](uint64_t x) {  // the output function of SplitMix64
    x = (x ^ x >> 30) * 0xbf58476d1ce4e5b9;
    x = (x ^ x >> 27) * 0x94d049bb133111eb;
    return x ^ x >> 31;
  };
  const Complex *element = data.data();
  for (int i = 0; i < box.size[0]; ++i)
    for (int j = 0; j < box.size[1]; ++j)
      for (int k = 0; k < box.size[2]; ++k, ++element) {
        const uint64_t place =
            (uint64_t(box.start[0] + i) * lengths[1] + box.start[1] + j) * lengths[2] + box.start[2] + k;
        sum += mixed(mixed(mixed(place) ^ std::bit_cast<uint64_t>(element->real())) ^
                     std::bit_cast<uint64_t>(element->imag()));
      }
  return sum;
}

static uint64_t digest_of_all(uint64_t mine) {
  MPI_Allreduce(MPI_IN_PLACE, &mine, 1, MPI_UINT64_T, MPI_SUM, MPI_COMM_WORLD);
  return mine;
}

// By this process alone: axis by axis in the same order, and by one descriptor of all dimensions.
static void compare_with_one_process(const std::array<int, 3> &lengths, uint64_t found) {
  const Box whole{{}, lengths};
  const std::vector<Complex> data = fill(whole, lengths);
  std::vector<Complex> by_axes = data, at_once = data;
  for (int axis = 2; axis >= 0; --axis) AxisTransform(whole, axis).forward(by_axes.data());
  std::printf("one process, axis by axis:   %s\n",
              digest(by_axes, whole, lengths) == found ? "the same bits" : "OTHER BITS");

  DftDescriptor *descriptor = nullptr;
  const int32_t precision = DFTX_DOUBLE, domain = DFTX_COMPLEX, dimension = 3;
  const int32_t neighbours_first[] = {lengths[2], lengths[1], lengths[0]};
  check(qkr_dft_def_create_descriptor_highd(&descriptor, &precision, &domain, &dimension, neighbours_first),
        "create");
  check(qkr_dft_def_commit_descriptor_external(&descriptor), "commit");
  check(qkr_dft_def_compute_forward_z(&descriptor, at_once.data()), "transform");
  qkr_dft_def_free_descriptor_external(&descriptor);
  double difference = 0, largest = 0;
  for (size_t i = 0; i < by_axes.size(); ++i) {
    difference = std::max(difference, std::abs(by_axes[i] - at_once[i]));
    largest = std::max(largest, std::abs(by_axes[i]));
  }
  std::printf("one process, one descriptor: differs by %.1e of the largest\n", difference / largest);
}

int main(int argc, char **argv) {
  const Session session(&argc, &argv);
  const bool slabs = argc > 1 && !std::strcmp(argv[1], "slabs");
  std::array<int, 3> lengths{1, 1, 1};
  for (int i = 2; i < std::min(argc, 5); ++i) lengths[i - 2] = std::atoi(argv[i]);
  if (argc < 4 || argc > 5 || (!slabs && std::strcmp(argv[1], "pencils") != 0) ||
      std::ranges::min(lengths) < 1)
    fail("usage: transform slabs|pencils N0 N1 [N2]");

  int grid[2] = {slabs ? session.ranks() : 0, slabs ? 1 : 0};
  MPI_Dims_create(session.ranks(), 2, grid);
  DistributedTransform transform(lengths, grid[0], grid[1]);
  const std::vector<Complex> original = fill(transform.before(), lengths);

  std::vector<Complex> data = original;
  MPI_Barrier(MPI_COMM_WORLD);
  const double start = MPI_Wtime();
  transform.forward(data);
  MPI_Barrier(MPI_COMM_WORLD);
  const double time = MPI_Wtime() - start;
  const uint64_t found = digest_of_all(digest(data, transform.after(), lengths));

  transform.backward(data);
  const double elements = static_cast<double>(lengths[0]) * lengths[1] * lengths[2];
  double error = 0;
  for (size_t i = 0; i < data.size(); ++i)
    error = std::max(error, std::abs(data[i] / elements - original[i]));
  MPI_Allreduce(MPI_IN_PLACE, &error, 1, MPI_DOUBLE, MPI_MAX, MPI_COMM_WORLD);

  if (session.rank() != 0) return 0;
  std::fprintf(stderr, "%s over %d x %d ranks: %.3f ms\n", argv[1], grid[0], grid[1], 1e3 * time);
  std::printf("%d x %d x %d, digest of the spectrum %016llx\n", lengths[0], lengths[1], lengths[2],
              static_cast<unsigned long long>(found));
  if (elements <= 1 << 22) compare_with_one_process(lengths, found);
  std::printf("there and back: differs by %.1e\n", error);
}
