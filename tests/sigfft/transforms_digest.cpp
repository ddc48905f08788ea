// A hash of the results of every transform, convolution and product of spectra, which must be the same at all
// levels, with every compiler, on every processor and with every C library: one line for each set, precision,
// form and order, for each kind of length where that is no power of two, for each method.
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

// `results` numbers that compute(dst) makes.
template <class T, class Compute>
void print_results(const std::string &name, size_t results, Compute compute) {
  print_digest(name, [&] {
    std::vector<T> dst(results);
    compute(dst.data());
    Hash hash;
    hash.add(dst);
    return hash.value();
  });
}

template <class T, class Convolve>
void print_convolutions(const char *name, const std::vector<T> &x, Convolve convolve) {
  struct Method {
    const char *name;
    size_t longer, shorter;
  };
  for (const Method &m : {Method{" sum", 1100, 31}, {" transform", 700, 500}, {" blocks", 3000, 100}})
    print_results<T>(std::string(name) + m.name, m.longer + m.shorter - 1, [&](T *dst) {
      convolve(x.data(), (int32_t)m.longer, x.data() + m.longer, (int32_t)m.shorter, dst);
    });
}

template <class T>
void print_products(const char *name, const std::vector<T> &x,
                    zprStatus (*multiply)(const T *, const T *, T *, int32_t)) {
  constexpr int32_t odd = 1001;
  for (const int32_t n : {odd, odd + 1})
    print_results<T>(std::string(name) + ' ' + std::to_string(n), (size_t)n,
                     [&](T *dst) { multiply(x.data(), x.data() + n, dst, n); });
}

void print_convolutions() {
  const auto doubles = signal<double>(4000);
  const auto singles = signal<float>(4000);
  std::vector<int16_t> shorts;
  for (const double x : doubles) shorts.push_back((int16_t)(1000 * x));
  print_convolutions("zprsConv_64f", doubles, zprsConv_64f);
  print_convolutions("zprsConv_32f", singles, zprsConv_32f);
  print_convolutions("zprsConv_16s_Sfs", shorts,
                     [](auto... arguments) { return zprsConv_16s_Sfs(arguments..., 10); });
  print_products("zprsMulPerm_64f", doubles, zprsMulPerm_64f);
  print_products("zprsMulPerm_32f", singles, zprsMulPerm_32f);
  print_products("zprsMulPack_64f", doubles, zprsMulPack_64f);
  print_products("zprsMulPack_32f", singles, zprsMulPack_32f);
}

}  // namespace

int main(int count, char **arguments) {
  const int largest_order = count > 1 ? atoi(arguments[1]) : 18;
  print_digests<double>(largest_order);
  print_digests<float>(largest_order);
  print_convolutions();
  return differences != 0;
}
