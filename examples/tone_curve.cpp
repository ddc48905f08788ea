// A logarithmic tone curve: lightens the shadows of a photograph much and its highlights little, as the eye
// does. A grey level x between 0 (black) and 1 (white) becomes ln(1 + gain x) / ln(1 + gain).
//
// tone_curve PGM_FILE OUT_DIR
// PGM_FILE is a binary PGM picture of 8 bits a pixel.
// Writes OUT_DIR/tone_before.pgm, OUT_DIR/tone_after.pgm and OUT_DIR/tone_curve.csv.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <numeric>
#include <qkr/qkr.h>
#include <string>
#include <vector>

static constexpr float gain = 10;    // black gains most: its contrast grows by gain / ln(1 + gain), about 4.2
static constexpr float white = 255;  // grey levels are 0 (black) to 255

[[noreturn]] static void fail(const std::string &message) {
  std::fprintf(stderr, "tone_curve: %s\n", message.c_str());
  std::exit(1);
}

struct Picture {
  int width = 0, height = 0;
  std::vector<uint8_t> grey;  // row by row from the top
};

// The next number of a PGM header, past comments; 0 if there is none.
static int header_number(std::istream &file) {
  while ((file >> std::ws) && file.peek() == '#')
    file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  int number = 0;
  file >> number;
  return number;
}

static Picture read_pgm(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) fail("cannot read " + path);
  char magic[2] = {};
  file.read(magic, 2);
  Picture picture{header_number(file), header_number(file), {}};
  const int largest = header_number(file);
  file.get();  // the one white space before the pixels
  if (!file || magic[0] != 'P' || magic[1] != '5' || largest != 255 || picture.width < 1 ||
      picture.height < 1 || picture.width > std::numeric_limits<int32_t>::max() / picture.height)
    fail(path + " is not a binary PGM picture of 8 bits a pixel");
  picture.grey.resize(static_cast<size_t>(picture.width) * picture.height);
  file.read(reinterpret_cast<char *>(picture.grey.data()), static_cast<std::streamsize>(picture.grey.size()));
  if (!file) fail(path + " ends before its last pixel");
  return picture;
}

static void write_pgm(const std::string &path, const Picture &picture) {
  std::ofstream file(path, std::ios::binary);
  file << "P5\n" << picture.width << ' ' << picture.height << "\n255\n";
  file.write(reinterpret_cast<const char *>(picture.grey.data()),
             static_cast<std::streamsize>(picture.grey.size()));
  file.close();
  if (!file) fail("cannot write " + path);
}

// All the work is one logarithm over the whole array, in place.
static std::vector<uint8_t> apply_curve(const std::vector<uint8_t> &grey) {
  std::vector<float> tone(grey.begin(), grey.end());
  for (float &x : tone) x = 1 + gain * (x / white);
  _vxmsLn_HA(static_cast<int32_t>(tone.size()), tone.data(), tone.data());
  const float scale = white / std::log(1 + gain);
  std::vector<uint8_t> result(tone.size());
  std::transform(tone.begin(), tone.end(), result.begin(),
                 [&](float ln) { return static_cast<uint8_t>(std::min(std::lround(ln * scale), 255L)); });
  return result;
}

static void report(const char *when, const std::vector<uint8_t> &grey) {
  const double pixels = static_cast<double>(grey.size());
  const double dark = std::count_if(grey.begin(), grey.end(), [](int level) { return level < 64; });
  std::printf("%s mean grey level %5.1f of 255, %4.1f %% of the pixels below 64\n", when,
              std::accumulate(grey.begin(), grey.end(), 0.0) / pixels, 100 * dark / pixels);
}

int main(int argc, char **argv) {
  if (argc != 3) fail("usage: tone_curve PGM_FILE OUT_DIR");
  const Picture before = read_pgm(argv[1]);
  const Picture after{before.width, before.height, apply_curve(before.grey)};
  std::printf("%d x %d pixels, gain %g\n", before.width, before.height, gain);
  report("before:", before.grey);
  report("after: ", after.grey);

  const std::string out_dir = argv[2];
  write_pgm(out_dir + "/tone_before.pgm", before);
  write_pgm(out_dir + "/tone_after.pgm", after);

  std::vector<uint8_t> levels(256);
  std::iota(levels.begin(), levels.end(), 0);
  const std::vector<uint8_t> curve = apply_curve(levels);
  std::ofstream file(out_dir + "/tone_curve.csv");
  file << "grey_before,grey_after\n";
  for (int level : levels) file << level << ',' << +curve[level] << '\n';
  file.close();
  if (!file) fail("cannot write " + out_dir + "/tone_curve.csv");
}
