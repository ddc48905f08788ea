// A hash of the results of every vector function: a line for each, which must be the same at all levels, with
// every compiler and on every processor.
//   bits_digest [COUNT]
#include <qkr/vecmath_control.h>
#include <stdlib.h>

#include "tests/support/complex_functions.h"
#include "tests/support/digest.h"
#include "tests/support/samples.h"

namespace {

using namespace qkr::tests;

template <class T>
uint64_t hash_of(const std::vector<T> &numbers) {
  Hash hash;
  hash.add(numbers);
  return hash.value();
}

template <class T>
void print_digests(int count) {
  for (const auto &f : vector_functions<T>()) {
    const std::vector<T> a = mixed_inputs(f, f.a, count, 1), b = mixed_inputs(f, f.b, count, 2);
    print_digest(f.name, [&] {
      std::vector<T> r(count * f.entry.results());
      f.entry(count, a.data(), b.data(), r.data(), &r[r.size() - count]);
      return hash_of(r);
    });
  }
}

template <class E>
void print_complex_digests(int count) {
  Random random{1};
  std::vector<E> a(count), b(count), r(count);
  for (int i = 0; i < count; ++i) {
    const Operands z = any_operands(random);
    a[i] = rounded_element<E>(z.x, z.y), b[i] = rounded_element<E>(z.u, z.v);
  }
  for (const auto &f : complex_functions<E>())
    print_digest(f.name, [&] {
      f.entry(count, a.data(), b.data(), r.data());
      std::vector<PartOf<E>> parts;
      for (const E &z : r) parts.insert(parts.end(), {z.re, z.im});
      return hash_of(parts);
    });
}

// By the patterns of head and tail, which hold the 64 bits of a mantissa.
void print_extended_digests(int count) {
  for (const ExtendedFunction &f : extended_functions())
    print_digest(f.name, [&] {
      Random random{1};
      std::vector<double> parts;
      for (int i = 0; i < count; ++i) {
        const Operands z = any_operands(random);
        const long double x = z.x * (1 + 0x1p-62L * static_cast<long double>(random.below(256)));
        const long double r = f.entry(x, static_cast<long double>(z.y));
        const auto head = static_cast<double>(r);
        parts.insert(parts.end(), {head, static_cast<double>(r - head)});
      }
      return hash_of(parts);
    });
}

}  // namespace

int main(int count_of_arguments, char **arguments) {
  const int count = count_of_arguments > 1 ? atoi(arguments[1]) : 100'003;
  _vxmSetMode(VXM_MODE_IGNORE);
  print_digests<double>(count);
  print_digests<float>(count);
  print_complex_digests<vxm64fc>(count);
  print_complex_digests<vxm32fc>(count);
  print_extended_digests(count);
  return differences != 0;
}
