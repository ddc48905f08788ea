// A hash of the results of every transform, which must be the same at all levels, with every compiler, on
// every processor and with every C library: one line for each set, precision, form and order, and for each
// kind of length where that is no power of two.
//   transforms_digest [LARGEST_ORDER]
#include <stdlib.h>

#include "engines.h"
#include "tests/support/digest.h"

namespace {

using namespace qkr::tests;

// The plans' tables are made anew at each level.
template <class T>
void add_results(Hash &hash, const Functions<T> &f, Form form, size_t n, const std::vector<T> &x) {
  for (const bool forward : {true, false}) {
    const Plan<T> plan(f, form.kind, n, forward ? 8 : 4);
    auto in = x;
    std::vector<T> out(form.kind == split ? 2 * n : numbers_in(form, forward, n));
    run(f, form, forward, {in.data(), in.data() + n}, {out.data(), out.data() + n}, plan);
    hash.add(out);
  }
}

// Lengths that take the same way through a transform.
struct Lengths {
  std::string name;
  std::vector<size_t> of;
};
std::vector<Lengths> powers_of_two(int largest_order) {
  std::vector<Lengths> rows;
  for (int order = 0; order <= largest_order; ++order)
    rows.push_back({std::to_string(order), {size_t{1} << order}});
  return rows;
}
std::vector<Lengths> lengths_by_route() {
  std::vector<size_t> all;
  while (all.size() < 50) all.push_back(all.size() + 1);
  return {{"1 to 50", all},
          {"direct", {83, 97, 149, 178, 179}},
          {"chirp", {151, 181, 257, 302}},
          {"even", {84, 96, 182, 264, 300, 1100, 1536}},
          {"odd", {75, 105, 187, 243, 507, 625, 1155}},
          {"long", {5005, 5120, 6561, 7436}},
          {"columns apart", {12288}},
          {"longer", {10007, 22500, 65625, 100000, 196608}}};
}

template <class T>
void print_digests(int largest_order) {
  for (const auto &f : functions<T>)
    for (const Lengths &lengths : f.takes_any_length() ? lengths_by_route() : powers_of_two(largest_order))
      for (const Form form : f.forms()) {
        if (lengths.of.back() > size_t{1} << largest_order) continue;
        constexpr size_t first_out_of_order = 5001;  // those below have the bits of plans in order
        if (form.kind == out_of_order && lengths.of.front() < first_out_of_order) continue;
        const auto x = signal<T>(2 * lengths.of.back() + 2);
        print_digest(std::string(f.name) + ' ' + kind_names[form.kind] + ", " + lengths.name + ", format " +
                         std::to_string(form.format),
                     [&] {
                       Hash hash;
                       for (const size_t n : lengths.of) add_results(hash, f, form, n, x);
                       return hash.value();
                     });
      }
}

}  // namespace

int main(int count, char **arguments) {
  const int largest_order = count > 1 ? atoi(arguments[1]) : 18;
  print_digests<double>(largest_order);
  print_digests<float>(largest_order);
  return differences != 0;
}
