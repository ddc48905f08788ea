// A hash of the results of every transform: one line for each set, precision, form and order, which must be
// the same at all levels, with every compiler, on every processor and with every C library.
//   transforms_digest [LARGEST_ORDER]
#include <stdlib.h>

#include "engines.h"
#include "tests/support/digest.h"

namespace {

using namespace qkr::tests;

// The plans' tables are made anew at each level.
template <class T>
uint64_t hash_of(const Functions<T> &f, Kind kind, Format format, int order, const std::vector<T> &x) {
  Hash hash;
  for (const bool forward : {true, false}) {
    const Plan<T> plan(f, kind, order, forward ? 8 : 4);
    if (kind == interleaved) {
      std::vector<T> y(x.size());
      f.complex[forward](x.data(), y.data(), plan, nullptr);
      hash.add(y);
    } else if (kind == split) {
      const SplitArrays<T> parts = apart(x);
      SplitArrays<T> y = parts;
      f.split[forward](parts.re.data(), parts.im.data(), y.re.data(), y.im.data(), plan, nullptr);
      hash.add(y.re);
      hash.add(y.im);
    } else {
      const size_t n = size_t{1} << order;
      std::vector<T> y(forward ? spectrum_size(format, n) : n);
      f.real[forward][format](x.data(), y.data(), plan, nullptr);
      hash.add(y);
    }
  }
  return hash.value();
}

template <class T>
void print_digests(int largest_order) {
  for (const auto &f : functions<T>)
    for (const Kind kind : {interleaved, split, real})
      for (const Format format : {perm, pack, ccs}) {
        if (kind != real && format != perm) continue;
        constexpr const char *format_names[] = {"", " Pack", " CCS"};
        for (int order = 0; order <= largest_order; ++order) {
          const auto x = signal<T>((size_t{2} << order) + 2, (unsigned)order);
          print_digest(std::string(f.name) + ' ' + kind_names[kind] + format_names[format] + ' ' +
                           std::to_string(order),
                       [&] { return hash_of(f, kind, format, order, x); });
        }
      }
}

}  // namespace

int main(int count, char **arguments) {
  const int largest_order = count > 1 ? atoi(arguments[1]) : 18;
  print_digests<double>(largest_order);
  print_digests<float>(largest_order);
  return differences != 0;
}
