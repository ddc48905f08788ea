// A hash of the results of every transform, convolution and product of spectra, which must be the same at all
// levels, with every compiler, on every processor and with every C library: one line for each set, precision,
// form and order, for each kind of length where that is no power of two, for each method.
//   transforms_digest [LARGEST_ORDER]
#include <stdlib.h>

#include "any_length_engines.h"
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

// Lengths that take the same way through a transform.
struct Lengths {
  const char *name;
  std::vector<int32_t> of;
};
std::vector<Lengths> lengths_by_route() {
  std::vector<int32_t> all;
  while (all.size() < 50) all.push_back((int32_t)all.size() + 1);
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
void add_results(Hash &hash, AnyKind kind, int32_t n, const std::vector<T> &x) {
  const auto &f = any_length<T>;
  const auto numbers = (size_t)n;
  for (const bool forward : {true, false}) {
    const AnyPlan<T> plan(kind, n, forward ? 8 : 4);
    std::vector<T> y(2 * numbers);
    const T *const in = x.data();
    T *const out = y.data();
    if (kind == any_real) {
      for (const Format format : {perm, pack, ccs}) {
        y.assign(forward ? any_spectrum_size(format, numbers) : numbers, 0);
        f.real[forward][format](in, y.data(), plan, nullptr);
        hash.add(y);
      }
      continue;
    }
    if (kind == any_split) f.split[forward](in, in + numbers, out, out + numbers, plan, nullptr);
    else (kind == any_out_of_order ? f.out_of_order : f.complex)[forward](in, out, plan, nullptr);
    hash.add(y);
  }
}

template <class T>
void print_any_length(int largest_order) {
  for (const Lengths &lengths : lengths_by_route())
    for (int kind = 0; kind < any_kinds; ++kind) {
      if (lengths.of.back() > 1 << largest_order) continue;
      constexpr int32_t first_out_of_order = 5001;  // those below have the bits of plans in order
      if (kind == any_out_of_order && lengths.of.front() < first_out_of_order) continue;
      const auto x = signal<T>(2 * (size_t)lengths.of.back() + 2);
      print_digest(std::string(any_length<T>.name) + ' ' + any_kind_names[kind] + ", " + lengths.name, [&] {
        Hash hash;
        for (const int32_t n : lengths.of) add_results(hash, (AnyKind)kind, n, x);
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
  print_any_length<double>(largest_order);
  print_any_length<float>(largest_order);
  print_convolutions();
  return differences != 0;
}
