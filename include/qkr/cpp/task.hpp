/** @file
 * C++: convolution and correlation tasks, of one to seven dimensions. Included by qkr/qkr.hpp; the opening
 * comment of qkr/cpp/convolution.hpp has an example, and qkr/convcorr.h says what is computed. */
#ifndef QKR_CPP_TASK_HPP
#define QKR_CPP_TASK_HPP

#include <qkr/cpp/base.hpp>

namespace qkr {
inline namespace cpp {

/** What a task computes: VXS_CC_CONVOLUTION, VXS_CC_CORRELATION. */
enum class operation : std::int32_t { convolution = VXS_CC_CONVOLUTION, correlation = VXS_CC_CORRELATION };
/** How: VXS_CC_DIRECT, VXS_CC_FFT. */
enum class method : std::int32_t { direct = VXS_CC_DIRECT, transform = VXS_CC_FFT };

/** A task; move only, clone() copies. An empty one answers VXS_CC_ERROR_NULL. Unlike the C interface's, it
 * is not blocked by a failure: every operation begins with a clear status. One thread at a time. */
template <real_number T>
class convolution_task {
 public:
  convolution_task() noexcept = default;
  /** Shapes of the operands x and y and of the result z: __vxsNewTask(). */
  convolution_task(const shape &x, const shape &y, const shape &z, operation kind = operation::convolution,
                   method by = method::direct) {
    check(try_reset(x, y, z, kind, by));
  }
  convolution_task(convolution_task &&other) noexcept : task_(std::exchange(other.task_, nullptr)) {}
  convolution_task &operator=(convolution_task &&other) noexcept {
    convolution_task taken(std::move(other));
    std::swap(task_, taken.task_);
    return *this;
  }
  /** __vxsDeleteTask(). */
  ~convolution_task() { __vxsDeleteTask(&task_); }

  /** A task in the place of this one, unless it fails: __vxsNewTask(). */
  status try_reset(const shape &x, const shape &y, const shape &z, operation kind = operation::convolution,
                   method by = method::direct) noexcept {
    return create(x, y, z, kind, by, nullptr, nullptr);
  }
  /** The same with an operand x for all executions, which stays the caller's: __vxsNewTaskX(). */
  status try_reset_shared(std::span<const T> shared, const shape &strides, const shape &x, const shape &y,
                          const shape &z, operation kind = operation::convolution,
                          method by = method::direct) noexcept {
    if (!reaches(shared.size(), x, strides)) return answer(VXS_CC_ERROR_XSHAPE);
    return create(x, y, z, kind, by, shared.data(), strides.size() ? strides.data() : nullptr);
  }
  /** A task with such an operand: __vxsNewTaskX(). */
  static convolution_task shared(std::span<const T> shared_x, const shape &strides, const shape &x,
                                 const shape &y, const shape &z, operation kind = operation::convolution,
                                 method by = method::direct) {
    convolution_task task;
    check(task.try_reset_shared(shared_x, strides, x, y, z, kind, by));
    return task;
  }

  /** A task like this one: __vxsCopyTask(). */
  status try_clone(convolution_task &out) const noexcept {
    ConvCorrTask *made = nullptr;
    const std::int32_t code = __vxsCopyTask(&made, unblocked());
    if (code == VXS_CC_OK) {
      __vxsDeleteTask(&out.task_);
      out.task_ = made;
    }
    return answer(code);
  }
  convolution_task clone() const {
    convolution_task copy;
    check(try_clone(copy));
    return copy;
  }

  /** @name Settings
   * __vxsEditTask() with VXS_CC_PARAM_START, VXS_CC_PARAM_DECIMATION, VXS_CC_PARAM_MODE and
   * VXS_CC_PARAM_INTERNAL_PRECISION. Execution finds out what is out of range. */
  /**@{*/
  status try_start(const shape &first) noexcept {
    return edit(VXS_CC_PARAM_START, first, VXS_CC_ERROR_START);
  }
  void start(const shape &first) { check(try_start(first)); }
  status try_decimation(const shape &steps) noexcept {
    return edit(VXS_CC_PARAM_DECIMATION, steps, VXS_CC_ERROR_DECIMATION);
  }
  void decimation(const shape &steps) { check(try_decimation(steps)); }
  status try_use(method by) noexcept { return edit(VXS_CC_PARAM_MODE, static_cast<std::int32_t>(by)); }
  void use(method by) { check(try_use(by)); }
  /** Floats computed in double precision, or not. */
  status try_use_double(bool wanted = true) noexcept {
    return edit(VXS_CC_PARAM_INTERNAL_PRECISION, wanted || sizeof(T) == 8 ? VXS_CC_DOUBLE : VXS_CC_SINGLE);
  }
  void use_double(bool wanted = true) { check(try_use_double(wanted)); }
  /**@}*/

  /** @name Execution
   * z from x and y, dense, or with strides of either sign for each, {} standing for dense: __vxsExec(), and
   * __vxsExecX() with the x that was given before. (__vxsCommitTask() is not needed. What is executed is
   * one of _vxsConvDDDirect1D_dec(), _vxsConvDDDirectAll_dec(), _vxsConvDDFft1D_dec(),
   * _vxsConvDDFftAll_dec() and their kin for Corr and for SD and SS.) */
  /**@{*/
  status try_run(std::span<const T> x, std::span<const T> y, std::span<T> z) noexcept {
    return try_run(x, {}, y, {}, z, {});
  }
  void run(std::span<const T> x, std::span<const T> y, std::span<T> z) { check(try_run(x, y, z)); }
  status try_run(std::span<const T> x, const shape &x_strides, std::span<const T> y, const shape &y_strides,
                 std::span<T> z, const shape &z_strides) noexcept {
    if (!task_) return answer(VXS_CC_ERROR_NULL);
    if (!reaches(x.size(), shape_of(task_->xshape), x_strides)) return answer(VXS_CC_ERROR_XSHAPE);
    return execute(y, y_strides, z, z_strides, [&](const std::int32_t *ys, const std::int32_t *zs) {
      return __vxsExec(task_, x.data(), x_strides.size() ? x_strides.data() : nullptr, y.data(), ys, z.data(),
                       zs);
    });
  }
  void run(std::span<const T> x, const shape &x_strides, std::span<const T> y, const shape &y_strides,
           std::span<T> z, const shape &z_strides) {
    check(try_run(x, x_strides, y, y_strides, z, z_strides));
  }
  status try_run(std::span<const T> y, std::span<T> z) noexcept { return try_run(y, {}, z, {}); }
  void run(std::span<const T> y, std::span<T> z) { check(try_run(y, z)); }
  status try_run(std::span<const T> y, const shape &y_strides, std::span<T> z,
                 const shape &z_strides) noexcept {
    return execute(y, y_strides, z, z_strides, [&](const std::int32_t *ys, const std::int32_t *zs) {
      return __vxsExecX(task_, y.data(), ys, z.data(), zs);
    });
  }
  void run(std::span<const T> y, const shape &y_strides, std::span<T> z, const shape &z_strides) {
    check(try_run(y, y_strides, z, z_strides));
  }
  /**@}*/

  /** The task, for the C interface's functions (__vxsccGetStatus(), __vxsccSetStatus()); it stays this
   * object's. */
  ConvCorrTask *handle() const noexcept { return task_; }
  /** Whether it is a task, and not empty. */
  explicit operator bool() const noexcept { return task_ != nullptr; }

 private:
  static constexpr status answer(std::int32_t code) noexcept { return {room::convcorr, code}; }

  // Whether `size` elements hold an operand: logical element j of n stands at j stride, or (n - 1 - j)
  // |stride|.
  static bool reaches(std::size_t size, const shape &lengths, const shape &strides) noexcept {
    if (!lengths.valid() || !strides.valid() || (strides.size() && strides.size() != lengths.size()))
      return false;
    std::size_t last = 0, step = 1;
    for (std::size_t d = 0; d < lengths.size(); ++d) {
      if (lengths[d] < 1) return true;  // the library's own checks answer
      const auto length = static_cast<std::size_t>(lengths[d]);
      const std::int64_t stride = strides.size() ? strides[d] : 0;
      last +=
          (length - 1) * (strides.size() ? static_cast<std::size_t>(stride < 0 ? -stride : stride) : step);
      step *= length;
    }
    return size > last;
  }

  status create(const shape &x, const shape &y, const shape &z, operation kind, method by, const void *shared,
                const std::int32_t *strides) noexcept {
    if (!x.valid() || x.size() != y.size() || x.size() != z.size()) return answer(VXS_CC_ERROR_DIMS);
    const auto precision = sizeof(T) == 8 ? VXS_CC_DOUBLE : VXS_CC_SINGLE;
    const auto dims = static_cast<std::int32_t>(x.size());
    ConvCorrTask *made = nullptr;
    const std::int32_t code =
        shared ? __vxsNewTaskX(&made, static_cast<std::int32_t>(kind), 0, static_cast<std::int32_t>(by), 0,
                               precision, dims, x.data(), y.data(), z.data(), shared, strides)
               : __vxsNewTask(&made, static_cast<std::int32_t>(kind), 0, static_cast<std::int32_t>(by), 0,
                              precision, dims, x.data(), y.data(), z.data());
    if (code == VXS_CC_OK) {
      __vxsDeleteTask(&task_);
      task_ = made;
    }
    return answer(code);
  }

  // The task, without what would block it.
  ConvCorrTask *unblocked() const noexcept {
    if (task_) __vxsccSetStatus(task_, VXS_CC_OK);
    return task_;
  }
  status edit(std::int32_t parameter, const shape &values, std::int32_t refusal) noexcept {
    if (!task_) return answer(VXS_CC_ERROR_NULL);
    if (!values.valid() || static_cast<std::int32_t>(values.size()) != task_->dims) return answer(refusal);
    return answer(__vxsEditTask(unblocked(), parameter, values.data()));
  }
  status edit(std::int32_t parameter, std::int32_t value) noexcept {
    return answer(__vxsEditTask(unblocked(), parameter, &value));
  }

  template <class Call>
  status execute(std::span<const T> y, const shape &y_strides, std::span<T> z, const shape &z_strides,
                 Call call) noexcept {
    if (!task_) return answer(VXS_CC_ERROR_NULL);
    if (!reaches(y.size(), shape_of(task_->yshape), y_strides)) return answer(VXS_CC_ERROR_YSHAPE);
    if (!reaches(z.size(), shape_of(task_->zshape), z_strides)) return answer(VXS_CC_ERROR_ZSHAPE);
    unblocked();
    return answer(
        call(y_strides.size() ? y_strides.data() : nullptr, z_strides.size() ? z_strides.data() : nullptr));
  }
  shape shape_of(const std::int32_t *lengths) const noexcept {
    return std::span(lengths, static_cast<std::size_t>(task_->dims));
  }

  ConvCorrTask *task_ = nullptr;
};

}  // namespace cpp
}  // namespace qkr

#endif
