// The functions of any length as tables over precision. Plans are void pointers here.
#pragma once

#include "engines.h"

namespace qkr::tests {

enum AnyKind { any_interleaved, any_split, any_real, any_out_of_order, any_kinds };
constexpr const char *any_kind_names[] = {"interleaved", "split", "real", "out of order"};

struct AnyPlanFunctions {
  zprStatus (*init_alloc)(void **plan, int32_t length, int32_t flag, int32_t hint);
  zprStatus (*get_buffer_size)(const void *plan, int32_t *size);
  zprStatus (*release)(void *plan);
};

template <class T>
struct AnyLengthFunctions {
  const char *name;
  AnyPlanFunctions plan[any_kinds];
  // Indexed by direction: 0 inverse, 1 forward.
  typename Functions<T>::Out complex[2];
  typename Functions<T>::SplitOut split[2];
  typename Functions<T>::Out real[2][formats];
  typename Functions<T>::Out out_of_order[2];
};
extern const AnyLengthFunctions<double> any_length_double;
extern const AnyLengthFunctions<float> any_length_single;
template <class T>
constexpr const AnyLengthFunctions<double> &any_length = any_length_double;
template <>
inline constexpr const AnyLengthFunctions<float> &any_length<float> = any_length_single;

// A plan for the length of a scope, with a work buffer of exactly the size that it asks for.
template <class T>
class AnyPlan {
  AnyKind kind_;
  void *plan_ = nullptr;

 public:
  explicit AnyPlan(AnyKind kind, int32_t length, int32_t flag = 8) : kind_(kind) {
    any_length<T>.plan[kind].init_alloc(&plan_, length, flag, 0);
  }
  AnyPlan(const AnyPlan &) = delete;
  ~AnyPlan() {
    if (plan_) any_length<T>.plan[kind_].release(plan_);
  }
  operator const void *() const { return plan_; }
  int32_t work_bytes() const {
    int32_t bytes = -1;
    any_length<T>.plan[kind_].get_buffer_size(plan_, &bytes);
    return bytes;
  }
};

constexpr size_t any_spectrum_size(Format format, size_t n) { return format == ccs ? n / 2 * 2 + 2 : n; }

}  // namespace qkr::tests
