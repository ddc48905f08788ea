// A hash of the results of every transform: one line for each set, precision, form and order, which must be
// the same at all levels, with every compiler, on every processor and with every C library.
//   transforms_digest [LARGEST_ORDER]
#include <stdio.h>
#include <stdlib.h>

#include "engines.h"
#include "tests/support/levels.h"

namespace {

using namespace qkr::tests;

class Hash {
  uint64_t value_ = 0xCBF29CE484222325;

 public:
  template <class T>
  void add(const std::vector<T> &numbers) {
    for (T x : numbers) {
      if constexpr (sizeof x == 8) value_ ^= __builtin_bit_cast(uint64_t, x);
      else value_ ^= __builtin_bit_cast(uint32_t, x);
      value_ *= 0x9E3779B97F4A7C15;
      value_ ^= value_ >> 29;
    }
  }
  uint64_t value() const { return value_; }
};

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

int differences;

template <class T>
void print_digests(int largest_order) {
  for (const auto &f : functions<T>)
    for (const Kind kind : {interleaved, split, real})
      for (const Format format : {perm, pack, ccs}) {
        if (kind != real && format != perm) continue;
        constexpr const char *format_names[] = {"", " Pack", " CCS"};
        for (int order = 0; order <= largest_order; ++order) {
          const auto x = signal<T>((size_t{2} << order) + 2, (unsigned)order);
          uint64_t first = 0;
          for_each_level([&](const char *level) {
            const uint64_t hash = hash_of(f, kind, format, order, x);
            if (!first) {
              first = hash;
              printf("%s %s%s %d %016llx\n", f.name, kind_names[kind], format_names[format], order,
                     (unsigned long long)hash);
            } else if (hash != first) {
              printf("  differs at %s: %016llx\n", level, (unsigned long long)hash);
              ++differences;
            }
          });
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
