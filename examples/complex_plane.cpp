// Three functions over the complex plane, coloured: the hue is the argument of f(z), and the brightness
// turns with the logarithm of |f(z)|, so that each ring is e times as far from zero as the last. Zeros and
// poles are points where all hues meet; a branch cut is a line where they jump.
//
// complex_plane OUT_DIR
// Writes OUT_DIR/plane_NAME.ppm for each function, and says where f jumps.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <qkr/qkr.h>
#include <string>
#include <vector>

using Numbers = std::vector<vxm64fc>;

constexpr int side = 480;    // pixels
constexpr double reach = 3;  // the picture shows |x|, |y| < reach
constexpr double two_pi = 6.283185307179586;

static vxm64fc point(int row, int column) {
  const auto place = [](int i) { return reach * (2 * i + 1 - side) / side; };  // of a pixel's middle, never 0
  return {place(column), -place(row)};
}

static int32_t count(const Numbers &z) { return static_cast<int32_t>(z.size()); }

static void arc_sine(const Numbers &z, Numbers &w) { _vxmzAsin_HA(count(z), z.data(), w.data()); }

// z^z: one logarithm, cut along the negative real axis.
static void self_power(const Numbers &z, Numbers &w) { _vxmzPow_HA(count(z), z.data(), z.data(), w.data()); }

// sqrt(z^2 - 1) as the product of two roots has one cut, between -1 and 1.
static void two_roots(const Numbers &z, Numbers &w) {
  Numbers left = z;
  w = z;
  for (vxm64fc &x : left) x.re += 1;
  for (vxm64fc &x : w) x.re -= 1;
  _vxmzSqrt_HA(count(left), left.data(), left.data());
  _vxmzSqrt_HA(count(w), w.data(), w.data());
  for (size_t i = 0; i < w.size(); ++i) {
    const vxm64fc a = left[i], b = w[i];
    w[i] = {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
  }
}

struct Function {
  const char *name, *title;
  void (*of)(const Numbers &z, Numbers &w);
};
static const Function functions[] = {{"asin", "arcsin z", arc_sine},
                                     {"power", "z^z", self_power},
                                     {"roots", "sqrt(z + 1) sqrt(z - 1)", two_roots}};

// Red, green and blue of a hue and a brightness, both from 0 to 1.
static std::string colour(double hue, double brightness) {
  std::string rgb;
  for (double shift : {0.0, 2.0, 4.0}) {
    const double part = std::fabs(std::fmod(hue * 6 + shift + 3, 6) - 3) - 1;
    rgb += static_cast<char>(255 * brightness * std::fmin(std::fmax(part, 0), 1));
  }
  return rgb;
}

static void write_picture(const std::string &path, const Numbers &w) {
  Numbers logarithms(w.size());  // ln |w| and arg w at once
  _vxmzLn_HA(count(w), w.data(), logarithms.data());
  std::ofstream file(path, std::ios::binary);
  file << "P6\n" << side << ' ' << side << "\n255\n";
  for (const vxm64fc &log : logarithms)
    file << colour(log.im / two_pi + 0.5, 0.55 + 0.45 * (log.re - std::floor(log.re)));
  file.close();
  if (!file) {
    std::fprintf(stderr, "complex_plane: cannot write %s\n", path.c_str());
    std::exit(1);
  }
}

static double distance(vxm64fc a, vxm64fc b) { return std::hypot(a.re - b.re, a.im - b.im); }

// The stretches of the real axis across which f changes by much more than it does beside them.
static void tell_cuts(const Function &f, const Numbers &w) {
  std::printf("%-24s jumps across the real axis", f.title);
  const char *between = " from";
  int first = -1;
  for (int column = 0; column <= side; ++column) {
    const vxm64fc *middle = &w[side / 2 * side + column];  // the row below the axis
    const bool jumps = column < side &&
                       distance(middle[-side], middle[0]) > 3 * (distance(middle[-2 * side], middle[-side]) +
                                                                 distance(middle[0], middle[side]));
    if (jumps && first < 0) first = column;
    if (jumps || first < 0) continue;
    std::printf("%s %.2f to %.2f", between, point(0, first).re, point(0, column - 1).re);
    between = ", from", first = -1;
  }
  std::printf("\n");
}

int main(int argc, char **argv) {
  if (argc != 2) return std::fprintf(stderr, "usage: complex_plane OUT_DIR\n"), 1;
  Numbers z(side * side), w(side * side);
  for (int i = 0; i < side * side; ++i) z[i] = point(i / side, i % side);
  for (const Function &f : functions) {
    f.of(z, w);
    write_picture(std::string(argv[1]) + "/plane_" + f.name + ".ppm", w);
    tell_cuts(f, w);
  }
}
