// A photograph blurred and restored by a two-dimensional transform, and its spectrum as a picture. The blur
// is that of a Gaussian point, a product of spectra; the restoration divides by it again where it has left
// something.
//
// photo_transform PGM_FILE OUT_DIR
// PGM_FILE is a binary PGM picture of 8 bits a pixel, without comments behind its first lines. Writes
// OUT_DIR/photo_blurred.pgm, OUT_DIR/photo_restored.pgm and OUT_DIR/photo_spectrum.pgm.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <qkr/qkr.h>
#include <string>
#include <vector>

static constexpr double blur = 2;         // standard deviation, in pixels
static constexpr double smallest = 1e-3;  // what is left of a wave that is still restored

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "photo_transform: %s\n", message.c_str());
  std::exit(1);
}

static int header_number(std::istream &file) {
  while ((file >> std::ws) && file.peek() == '#')
    file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  int number = 0;
  file >> number;
  return number;
}

static void write_pgm(const std::string &path, int width, const std::vector<double> &grey) {
  std::ofstream file(path, std::ios::binary);
  file << "P5\n" << width << ' ' << grey.size() / width << "\n255\n";
  for (const double level : grey) file.put(static_cast<char>(std::lround(std::clamp(level, 0.0, 255.0))));
  file.close();
  if (!file) fail("cannot write " + path);
}

// From a picture to its half spectrum, width / 2 + 1 numbers a row, and back.
class Transform {
  DftDescriptor *descriptor_ = nullptr;
  int width_, height_;

 public:
  Transform(int width, int height) : width_(width), height_(height) {
    const int32_t precision = DFTX_DOUBLE, domain = DFTX_REAL, dimension = 2, lengths[] = {width, height};
    const int32_t pixels[] = {1, width}, waves[] = {1, columns()};
    int32_t code =
        qkr_dft_def_create_descriptor_highd(&descriptor_, &precision, &domain, &dimension, lengths);
    if (!code) code = set(DFTX_CONJUGATE_EVEN_STORAGE, DFTX_COMPLEX_COMPLEX);
    if (!code) code = set(DFTX_PLACEMENT, DFTX_NOT_INPLACE);
    lay_out(pixels, waves, code);
  }
  Transform(const Transform &) = delete;
  ~Transform() { qkr_dft_def_free_descriptor_external(&descriptor_); }

  int columns() const { return width_ / 2 + 1; }
  std::vector<std::complex<double>> forward(const std::vector<double> &picture) {
    std::vector<std::complex<double>> spectrum(static_cast<size_t>(columns()) * height_);
    check(qkr_dft_def_compute_forward_dz_out(&descriptor_, picture.data(), spectrum.data()));
    return spectrum;
  }
  // Rows of the input are those of the spectrum now.
  std::vector<double> backward(const std::vector<std::complex<double>> &spectrum) {
    const int32_t pixels[] = {1, width_}, waves[] = {1, columns()};
    const int32_t scale = DFTX_BACKWARD_SCALE;
    const double factor = 1.0 / width_ / height_;
    lay_out(waves, pixels, qkr_dft_def_set_value_dblval(&descriptor_, &scale, &factor));
    std::vector<double> picture(static_cast<size_t>(width_) * height_);
    check(qkr_dft_def_compute_backward_zd_out(&descriptor_, spectrum.data(), picture.data()));
    lay_out(pixels, waves, 0);
    return picture;
  }

 private:
  static void check(int32_t code) {
    if (code) fail("transform answers " + std::to_string(code));
  }
  int32_t set(int32_t parameter, int32_t value) {
    return qkr_dft_def_set_value_intval(&descriptor_, &parameter, &value);
  }
  void lay_out(const int32_t *input, const int32_t *output, int32_t code) {
    check(code);
    check(qkr_dft_set_strides(&descriptor_, input, output));
    check(qkr_dft_def_commit_descriptor_external(&descriptor_));
  }
};

static double difference(const std::vector<double> &a, const std::vector<double> &b) {
  double sum = 0;
  for (size_t i = 0; i < a.size(); ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
  return std::sqrt(sum / static_cast<double>(a.size()));
}

int main(int argc, char **argv) {
  if (argc != 3) fail("usage: photo_transform PGM_FILE OUT_DIR");
  std::ifstream file(argv[1], std::ios::binary);
  if (!file) fail(std::string("cannot read ") + argv[1]);
  char magic[2] = {};
  file.read(magic, 2);
  const int width = header_number(file), height = header_number(file), largest = header_number(file);
  file.get();
  if (!file || magic[0] != 'P' || magic[1] != '5' || largest != 255 || width < 1 || height < 1)
    fail(std::string(argv[1]) + " is not a binary PGM picture of 8 bits a pixel");
  std::vector<double> photo(static_cast<size_t>(width) * height);
  for (double &level : photo) level = file.get();
  if (!file) fail(std::string(argv[1]) + " ends before its last pixel");

  Transform transform(width, height);
  const auto spectrum = transform.forward(photo);
  auto blurred = spectrum, restored = spectrum;
  const int columns = transform.columns();
  std::vector<double> magnitude(photo.size());
  const double pi = std::acos(-1);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < columns; ++x) {
      const double across = x / static_cast<double>(width);
      const double down = (y > height / 2 ? y - height : y) / static_cast<double>(height);
      const double left = std::exp(-2 * pi * pi * blur * blur * (across * across + down * down));
      const size_t i = static_cast<size_t>(y) * columns + x;
      blurred[i] = spectrum[i] * left;
      restored[i] = left > smallest ? blurred[i] / left : blurred[i];
      // The wave of no length in the middle; the other half is the mirror image of this one.
      const auto pixel = [&](int u, int v) -> double & {
        return magnitude[static_cast<size_t>((v + height / 2) % height) * width + (u + width / 2) % width];
      };
      const double level = 12 * std::log(1 + std::abs(spectrum[i]));
      pixel(x, y) = pixel((width - x) % width, (height - y) % height) = level;
    }
  const std::vector<double> soft = transform.backward(blurred), sharp = transform.backward(restored);
  const std::string out_dir = argv[2];
  write_pgm(out_dir + "/photo_blurred.pgm", width, soft);
  write_pgm(out_dir + "/photo_restored.pgm", width, sharp);
  write_pgm(out_dir + "/photo_spectrum.pgm", width, magnitude);

  double best = 1e9;
  for (int round = 0; round < 10; ++round) {
    const auto start = std::chrono::steady_clock::now();
    transform.forward(photo);
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  std::printf("%d x %d pixels: blurred they differ by %.2f grey levels, restored by %.2f\n", width, height,
              difference(photo, soft), difference(photo, sharp));
  std::printf("transform: %.2f ms, %s\n", 1e3 * best,
              qkr_serv_in_serial() ? "one thread" : "as many threads as allowed");
}
