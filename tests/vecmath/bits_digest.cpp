// A hash of the results of every vector function: a line for each, which must be the same at all levels, with
// every compiler and on every processor.
//   bits_digest [COUNT]
#include <qkr/vecmath_control.h>
#include <stdlib.h>

#include "tests/support/digest.h"
#include "tests/support/samples.h"

namespace {

using namespace qkr::tests;

template <class T>
void print_digests(int count) {
  for (const auto &f : vector_functions<T>()) {
    const std::vector<T> a = mixed_inputs(f, f.a, count, 1), b = mixed_inputs(f, f.b, count, 2);
    print_digest(f.name, [&] {
      std::vector<T> r(count * f.entry.results());
      f.entry(count, a.data(), b.data(), r.data(), f.entry.results() == 2 ? &r[count] : nullptr);
      Hash hash;
      hash.add(r);
      return hash.value();
    });
  }
}

}  // namespace

int main(int count_of_arguments, char **arguments) {
  const int count = count_of_arguments > 1 ? atoi(arguments[1]) : 100'003;
  _vxmSetMode(VXM_MODE_IGNORE);
  print_digests<double>(count);
  print_digests<float>(count);
  return differences != 0;
}
