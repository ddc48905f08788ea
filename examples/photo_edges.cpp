// A photograph sharpened, and its edges found, by two-dimensional convolution: with a full kernel, and with
// two kernels of one dimension each whose product it is, one after the other, which pays for large kernels.
//
// photo_edges PGM_FILE OUT_DIR PGM_FILE is a binary PGM picture of 8 bits a pixel, without comments behind
// its first lines. Writes OUT_DIR/photo_sharpened.pgm and OUT_DIR/photo_edges.pgm.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <qkr/qkr.h>
#include <string>
#include <vector>

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "photo_edges: %s\n", message.c_str());
  std::exit(1);
}

static int header_number(std::istream &file) {
  while ((file >> std::ws) && file.peek() == '#')
    file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  int number = 0;
  file >> number;
  return number;
}

struct Picture {
  int width = 0, height = 0;
  std::vector<float> pixels;
};

static Picture read_pgm(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) fail("cannot read " + path);
  char magic[2] = {};
  file.read(magic, 2);
  Picture picture;
  picture.width = header_number(file), picture.height = header_number(file);
  const int largest = header_number(file);
  file.get();
  if (!file || magic[0] != 'P' || magic[1] != '5' || largest != 255 || picture.width < 1 ||
      picture.height < 1)
    fail(path + " is not a binary PGM picture of 8 bits a pixel");
  picture.pixels.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
  for (float &level : picture.pixels) level = static_cast<float>(file.get());
  if (!file) fail(path + " ends before its last pixel");
  return picture;
}

static void write_pgm(const std::string &path, const Picture &picture) {
  std::ofstream file(path, std::ios::binary);
  file << "P5\n" << picture.width << ' ' << picture.height << "\n255\n";
  for (const float level : picture.pixels)
    file.put(static_cast<char>(std::lround(std::clamp(level, 0.0f, 255.0f))));
  file.close();
  if (!file) fail("cannot write " + path);
}

// The part of the convolution that lies over the picture, with black around it.
static Picture convolved(const Picture &picture, const Picture &kernel) {
  const int32_t shape[] = {picture.width, picture.height}, taps[] = {kernel.width, kernel.height};
  const int32_t start[] = {kernel.width / 2, kernel.height / 2};
  Picture result = picture;
  ConvCorrTask *task = nullptr;
  int32_t status =
      __vxsNewTask(&task, VXS_CC_CONVOLUTION, 0, VXS_CC_DIRECT, 0, VXS_CC_SINGLE, 2, shape, taps, shape);
  if (!status) status = __vxsEditTask(task, VXS_CC_PARAM_START, start);
  if (!status)
    status = __vxsExec(task, picture.pixels.data(), nullptr, kernel.pixels.data(), nullptr,
                       result.pixels.data(), nullptr);
  __vxsDeleteTask(&task);
  if (status) fail("convolution answers " + std::to_string(status));
  return result;
}

// A kernel that is a column times a row.
struct Separable {
  Picture row, column;
  Separable(const std::vector<float> &across, const std::vector<float> &down)
      : row{static_cast<int>(across.size()), 1, across}, column{1, static_cast<int>(down.size()), down} {}
  Picture full() const {
    Picture kernel = {row.width, column.height, {}};
    for (const float d : column.pixels)
      for (const float a : row.pixels) kernel.pixels.push_back(d * a);
    return kernel;
  }
};

// By both ways; says what each took and how far they differ.
static Picture by_both(const char *name, const Picture &picture, const Separable &kernel) {
  const auto timed = [](auto work, double &milliseconds) {
    Picture result;
    for (int round = 0; round < 5; ++round) {
      const auto start = std::chrono::steady_clock::now();
      result = work();
      const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
      milliseconds = round ? std::min(milliseconds, took.count()) : took.count();
    }
    return result;
  };
  double full_ms = 0, separable_ms = 0;
  const Picture full = timed([&] { return convolved(picture, kernel.full()); }, full_ms);
  const Picture separable =
      timed([&] { return convolved(convolved(picture, kernel.row), kernel.column); }, separable_ms);
  float difference = 0;
  for (size_t i = 0; i < full.pixels.size(); ++i)
    difference = std::max(difference, std::abs(full.pixels[i] - separable.pixels[i]));
  std::printf("%-12s %2d x %-2d full %6.2f ms, separable %6.2f ms, they differ by at most %.5f grey levels\n",
              name, kernel.row.width, kernel.column.height, full_ms, separable_ms,
              static_cast<double>(difference));
  return separable;
}

int main(int argc, char **argv) {
  if (argc != 3) fail("usage: photo_edges PGM_FILE OUT_DIR");
  const Picture photo = read_pgm(argv[1]);

  // A Gaussian point, of standard deviation 2; the picture gains what it loses by being blurred.
  std::vector<float> gaussian;
  double sum = 0;
  for (int i = -6; i <= 6; ++i) sum += std::exp(-i * i / 8.0);
  for (int i = -6; i <= 6; ++i) gaussian.push_back(static_cast<float>(std::exp(-i * i / 8.0) / sum));
  Picture sharpened = by_both("Gaussian", photo, {gaussian, gaussian});
  for (size_t i = 0; i < photo.pixels.size(); ++i)
    sharpened.pixels[i] = photo.pixels[i] + 1.5f * (photo.pixels[i] - sharpened.pixels[i]);

  // Slopes across and down (I. Sobel and G. Feldman, 1968), and the steepness that they make together.
  const std::vector<float> slope = {1, 0, -1}, smooth = {1, 2, 1};
  Picture edges = by_both("slope across", photo, {slope, smooth});
  const Picture down = by_both("slope down", photo, {smooth, slope});
  for (size_t i = 0; i < edges.pixels.size(); ++i)
    edges.pixels[i] = std::hypot(edges.pixels[i], down.pixels[i]) / 2;

  const std::string out_dir = argv[2];
  write_pgm(out_dir + "/photo_sharpened.pgm", sharpened);
  write_pgm(out_dir + "/photo_edges.pgm", edges);
}
