// A hash of the results of every vector function at every level over the same inputs: builds by different
// compilers must print the same lines.
#include <qkr/vecmath_control.h>
#include <stdio.h>

#include "tests/support/levels.h"
#include "tests/support/samples.h"

namespace {

using namespace qkr::tests;

// FNV-1a over the bytes of the patterns.
template <class T>
uint64_t hash(const std::vector<T> &numbers) {
  uint64_t h = 0xCBF29CE484222325;
  for (T x : numbers)
    for (size_t byte = 0; byte < sizeof(T); ++byte)
      h = (h ^ (pattern_of(x) >> 8 * byte & 0xFF)) * 0x100000001B3;
  return h;
}

template <class T>
void print_digests() {
  constexpr int count = 100'003;
  for (const auto &f : vector_functions<T>()) {
    const std::vector<T> a = mixed_inputs(f, f.a, count, 1), b = mixed_inputs(f, f.b, count, 2);
    for_each_level([&](const char *level) {
      std::vector<T> r(count * f.entry.results());
      f.entry(count, a.data(), b.data(), r.data(), f.entry.results() == 2 ? &r[count] : nullptr);
      printf("%s %s %016llx\n", f.name, level, static_cast<unsigned long long>(hash(r)));
    });
  }
}

}  // namespace

int main() {
  _vxmSetMode(VXM_MODE_IGNORE);
  print_digests<double>();
  print_digests<float>();
}
