// The functions of both sets and precisions as tables, so that a test is written once. Plans are void
// pointers here.
#pragma once

#include <qkr/sigfft.h>
#include <vector>

namespace qkr::tests {

enum Kind { interleaved, split, real, kinds };
enum Format { perm, pack, ccs, formats };
constexpr const char *kind_names[] = {"interleaved", "split", "real"};

struct PlanFunctions {
  zprStatus (*get_size)(int32_t order, int32_t flag, int32_t hint, int32_t *spec, int32_t *init,
                        int32_t *work);
  zprStatus (*init)(void **plan, int32_t order, int32_t flag, int32_t hint, uint8_t *spec, uint8_t *init);
  zprStatus (*init_alloc)(void **plan, int32_t order, int32_t flag, int32_t hint);
  zprStatus (*get_buffer_size)(const void *plan, int32_t *size);
  zprStatus (*release)(void *plan);
};

template <class T>
struct Functions {
  using Out = zprStatus (*)(const T *src, T *dst, const void *plan, uint8_t *work);
  using In = zprStatus (*)(T *data, const void *plan, uint8_t *work);
  using SplitOut = zprStatus (*)(const T *src_re, const T *src_im, T *dst_re, T *dst_im, const void *plan,
                                 uint8_t *work);
  using SplitIn = zprStatus (*)(T *data_re, T *data_im, const void *plan, uint8_t *work);

  const char *name;
  PlanFunctions plan[kinds];
  // Indexed by direction: 0 inverse, 1 forward.
  Out complex[2];
  In complex_in_place[2];
  SplitOut split[2];
  SplitIn split_in_place[2];
  Out real[2][formats];
  In real_in_place[2][formats];
};

// Of the w6_ set, of the plain set.
extern const Functions<double> functions_double[2];
extern const Functions<float> functions_single[2];
template <class T>
constexpr const Functions<double> (&functions)[2] = functions_double;
template <>
inline constexpr const Functions<float> (&functions<float>)[2] = functions_single;

// A plan of InitAlloc for the length of a scope.
template <class T>
class Plan {
  const Functions<T> &functions_;
  Kind kind_;
  void *plan_ = nullptr;

 public:
  Plan(const Functions<T> &f, Kind kind, int order, int flag = 8) : functions_(f), kind_(kind) {
    f.plan[kind].init_alloc(&plan_, order, flag, 0);
  }
  Plan(const Plan &) = delete;
  ~Plan() {
    if (plan_) functions_.plan[kind_].release(plan_);
  }
  operator const void *() const { return plan_; }
};

// How many numbers of T a spectrum of n real numbers takes.
constexpr size_t spectrum_size(Format format, size_t n) { return format != ccs ? n : n == 1 ? 2 : n + 2; }

std::vector<double> random_numbers(size_t count, unsigned seed);
template <class T>
std::vector<T> signal(size_t count, unsigned seed = 1) {
  const auto numbers = random_numbers(count, seed);
  return std::vector<T>(numbers.begin(), numbers.end());
}

template <class T>
struct SplitArrays {
  std::vector<T> re, im;
};
template <class T>
SplitArrays<T> apart(const std::vector<T> &x) {
  SplitArrays<T> parts;
  for (size_t i = 0; i < x.size(); i += 2) parts.re.push_back(x[i]), parts.im.push_back(x[i + 1]);
  return parts;
}
template <class T>
std::vector<T> together(const SplitArrays<T> &parts) {
  std::vector<T> x;
  for (size_t i = 0; i < parts.re.size(); ++i) x.push_back(parts.re[i]), x.push_back(parts.im[i]);
  return x;
}

}  // namespace qkr::tests
