// The functions of all sets, kinds and precisions as tables, so that a test is written once. Plans are void
// pointers here.
#pragma once

#include <qkr/sigfft.h>
#include <span>
#include <vector>

namespace qkr::tests {

enum Kind { interleaved, split, real, out_of_order, kinds };
enum Format { perm, pack, ccs, formats };
constexpr const char *kind_names[] = {"interleaved", "split", "real", "out of order"};

// A kind of data, real ones with the format of their spectrum.
struct Form {
  Kind kind;
  Format format = perm;
};

// `size` is the order of a power of two, or any length.
struct PlanFunctions {
  zprStatus (*init_alloc)(void **plan, int32_t size, int32_t flag, int32_t hint);
  zprStatus (*get_buffer_size)(const void *plan, int32_t *size);
  zprStatus (*release)(void *plan);
  // Of the sets for powers of two.
  zprStatus (*get_size)(int32_t order, int32_t flag, int32_t hint, int32_t *spec, int32_t *init,
                        int32_t *work) = nullptr;
  zprStatus (*init)(void **plan, int32_t order, int32_t flag, int32_t hint, uint8_t *spec,
                    uint8_t *init) = nullptr;
};

// The functions of a set, by direction: 0 inverse, 1 forward. Those for any length have no entries in place:
// they are given one array twice.
template <class T>
struct Functions {
  using Out = zprStatus (*)(const T *src, T *dst, const void *plan, uint8_t *work);
  using In = zprStatus (*)(T *data, const void *plan, uint8_t *work);
  using SplitOut = zprStatus (*)(const T *src_re, const T *src_im, T *dst_re, T *dst_im, const void *plan,
                                 uint8_t *work);
  using SplitIn = zprStatus (*)(T *data_re, T *data_im, const void *plan, uint8_t *work);

  const char *name;
  PlanFunctions plan[kinds];
  Out complex[2];
  SplitOut split[2];
  Out real[2][formats];
  Out out_of_order[2];
  In complex_in_place[2] = {};
  SplitIn split_in_place[2] = {};
  In real_in_place[2][formats] = {};

  bool takes_any_length() const { return !plan[interleaved].get_size; }
  std::vector<Form> forms() const {
    std::vector<Form> all = {
        {interleaved}, {tests::split}, {tests::real, perm}, {tests::real, pack}, {tests::real, ccs}};
    if (takes_any_length()) all.push_back({tests::out_of_order});
    return all;
  }
};

// Of the w6_ set, of the plain set, for any length.
enum Set { w6, plain, any_length };
extern const Functions<double> functions_double[3];
extern const Functions<float> functions_single[3];
template <class T>
constexpr const Functions<double> (&functions)[3] = functions_double;
template <>
inline constexpr const Functions<float> (&functions<float>)[3] = functions_single;

template <class T>
std::span<const Functions<T>> sets_for_powers_of_two() {
  return std::span<const Functions<T>>(functions<T>).first(2);
}

// A plan of InitAlloc for the length of a scope.
template <class T>
class Plan {
  const PlanFunctions &functions_;
  void *plan_ = nullptr;

 public:
  Plan(const Functions<T> &f, Kind kind, size_t n, int flag = 8) : functions_(f.plan[kind]) {
    functions_.init_alloc(&plan_, f.takes_any_length() ? (int)n : __builtin_ctzl(n), flag, 0);
  }
  Plan(const Plan &) = delete;
  ~Plan() {
    if (plan_) functions_.release(plan_);
  }
  operator const void *() const { return plan_; }
  int32_t work_bytes() const {
    int32_t bytes = -1;
    functions_.get_buffer_size(plan_, &bytes);
    return bytes;
  }
};

// Real and imaginary parts, or in `re` alone all the numbers.
template <class T>
struct Parts {
  T *re, *im;
};

// How many numbers an array holds that a transform of n points reads or writes.
constexpr size_t spectrum_size(Format format, size_t n) { return format == ccs ? n / 2 * 2 + 2 : n; }
constexpr size_t numbers_in(Form form, bool is_spectrum, size_t n) {
  return form.kind == split ? n : form.kind != real ? 2 * n : is_spectrum ? spectrum_size(form.format, n) : n;
}

// By the function in place where source and result are one array.
template <class T>
zprStatus run(const Functions<T> &f, Form form, bool forward, Parts<T> src, Parts<T> dst, const void *plan,
              uint8_t *work = nullptr) {
  const bool in_place = src.re == dst.re && src.im == dst.im && !f.takes_any_length();
  switch (form.kind) {
    case interleaved:
      if (in_place) return f.complex_in_place[forward](dst.re, plan, work);
      return f.complex[forward](src.re, dst.re, plan, work);
    case split:
      if (in_place) return f.split_in_place[forward](dst.re, dst.im, plan, work);
      return f.split[forward](src.re, src.im, dst.re, dst.im, plan, work);
    case real:
      if (in_place) return f.real_in_place[forward][form.format](dst.re, plan, work);
      return f.real[forward][form.format](src.re, dst.re, plan, work);
    default:
      return f.out_of_order[forward](src.re, dst.re, plan, work);
  }
}

std::vector<double> random_numbers(size_t count, unsigned seed);
template <class T>
std::vector<T> signal(size_t count, unsigned seed = 1) {
  const auto numbers = random_numbers(count, seed);
  return std::vector<T>(numbers.begin(), numbers.end());
}

// Interleaved numbers as the real parts and behind them the imaginary parts.
template <class T>
std::vector<T> apart(const std::vector<T> &x) {
  std::vector<T> parts;
  for (const size_t part : {0, 1})
    for (size_t i = part; i < x.size(); i += 2) parts.push_back(x[i]);
  return parts;
}

}  // namespace qkr::tests
