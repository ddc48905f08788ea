/** @file
 * C++: Fourier transforms by descriptors: one to three dimensions, batches, strides, threads. Included by
 * qkr/qkr.hpp.
 *
 *     qkr::dft<std::complex<double>> picture{{640, 480}, {.backward_scale = 1.0 / (640 * 480)}};
 *     picture.forward(z);  // in place
 *     picture.backward(z);
 *
 *     qkr::dft<double> signal{1000};
 *     signal.forward(x, X);  // 1000 real numbers, 501 complex ones
 *
 * The argument of the template is the type of a signal's elements, real or complex; the first length is
 * that of neighbouring elements. The descriptor is committed when the object is made. Compute calls are
 * const: so many threads at a time as options.thread_limit says may share an object. Statuses are the codes
 * of qkr/dft.h; a span too small for what the lengths, strides and distances reach is answered with
 * DFTX_INVALID_ARGUMENT. */
#ifndef QKR_CPP_DFT_HPP
#define QKR_CPP_DFT_HPP

#include <qkr/cpp/base.hpp>

namespace qkr {
inline namespace cpp {

/** How the spectrum of real signals is stored: complex numbers, or a packed format of at most two
 * dimensions. */
enum class spectrum : std::int32_t {
  half = DFTX_CCE_FORMAT,
  ccs = DFTX_CCS_FORMAT,
  pack = DFTX_PACK_FORMAT,
  perm = DFTX_PERM_FORMAT
};

/** What may be set beside the lengths, as qkr/dft.h tells; for designated initialisers. */
struct dft_options {
  double forward_scale = 1;         /**< DFTX_FORWARD_SCALE */
  double backward_scale = 1;        /**< DFTX_BACKWARD_SCALE */
  std::size_t transforms = 1;       /**< of one call: DFTX_NUMBER_OF_TRANSFORMS */
  std::size_t input_distance = 0;   /**< of signals, from one to the next; 0: one behind the other */
  std::size_t output_distance = 0;  /**< the same of spectra of real signals */
  shape input_strides = {};         /**< for each dimension; none: dense */
  shape output_strides = {};        /**< the same of half spectra */
  spectrum stored = spectrum::half; /**< of real signals */
  bool scrambled = false;           /**< DFTX_SCRAMBLED, of complex signals */
  std::size_t thread_limit = 1;     /**< the caller's threads at a time: DFTX_THREAD_LIMIT */
};

namespace detail {

// How far an array reaches: the place behind its last element.
struct extent {
  std::size_t distance = 0, reach = 0;
  std::int32_t strides[3] = {};

  bool lies_as(const extent &other) const noexcept {
    return distance == other.distance && strides[0] == other.strides[0] && strides[1] == other.strides[1] &&
           strides[2] == other.strides[2];
  }

  // Dense where there are no strides.
  void set(const shape &lengths, const shape &wanted, std::size_t distance_wanted,
           std::size_t transforms) noexcept {
    std::size_t step = 1, last = 0;
    for (std::size_t d = 0; d < lengths.size(); ++d) {
      const auto length = static_cast<std::size_t>(lengths[d]);
      strides[d] = wanted.size() ? wanted[d] : static_cast<std::int32_t>(step);
      last += (length - 1) * static_cast<std::size_t>(strides[d]);
      step *= length;
    }
    distance = distance_wanted ? distance_wanted : step;
    reach = transforms ? (transforms - 1) * distance + last + 1 : 0;
  }
};

template <class T>
struct dft_calls;
template <>
struct dft_calls<double> {
  static constexpr std::int32_t precision = DFTX_DOUBLE;
  static constexpr auto *forward = qkr_dft_def_compute_forward_z;
  static constexpr auto *backward = qkr_dft_def_compute_backward_z;
  static constexpr auto *to_spectrum = qkr_dft_def_compute_forward_dz_out;
  static constexpr auto *to_signal = qkr_dft_def_compute_backward_zd_out;
};
template <>
struct dft_calls<float> {
  static constexpr std::int32_t precision = DFTX_SINGLE;
  static constexpr auto *forward = qkr_dft_def_compute_forward_c;
  static constexpr auto *backward = qkr_dft_def_compute_backward_c;
  static constexpr auto *to_spectrum = qkr_dft_def_compute_forward_sc_out;
  static constexpr auto *to_signal = qkr_dft_def_compute_backward_cs_out;
};
template <class T>
struct precision_of {
  using type = T;
};
template <class T>
struct precision_of<std::complex<T>> {
  using type = T;
};

}  // namespace detail

/** A committed descriptor; move only. An empty one answers DFTX_BAD_DESCRIPTOR. T is the precision of the
 * elements, float or double, and C is std::complex<T>. */
template <class Element>
requires real_number<Element> || complex_number<Element>
class dft {
  using T = typename detail::precision_of<Element>::type;
  using C = std::complex<T>;
  using calls = detail::dft_calls<T>;
  static constexpr bool is_real = real_number<Element>;

 public:
  dft() noexcept = default;
  /** @param lengths one to three
   * @param options what differs from one dense transform without scale */
  explicit dft(const shape &lengths, const dft_options &options = {}) { check(try_reset(lengths, options)); }
  dft(dft &&other) noexcept { swap(other); }
  dft &operator=(dft &&other) noexcept {
    dft taken(std::move(other));
    swap(taken);
    return *this;
  }
  /** qkr_dft_def_free_descriptor_external(). */
  ~dft() {
    if (forward_) qkr_dft_def_free_descriptor_external(&forward_);
    if (backward_) qkr_dft_def_free_descriptor_external(&backward_);
  }

  /** Creates, sets and commits: qkr_dft_def_create_descriptor_highd() (qkr_dft_def_create_descriptor_1d() is
   * the same), qkr_dft_def_set_value_intval(), qkr_dft_def_set_value_dblval(), qkr_dft_set_strides(),
   * qkr_dft_def_commit_descriptor_external(). Where signals and spectra lie differently, backward has a
   * descriptor of its own. Unless it fails, it replaces what was there. */
  status try_reset(const shape &lengths, const dft_options &options = {}) noexcept {
    if (!lengths.valid()) return answer(DFTX_INVALID_ARGUMENT);
    dft made;
    std::int32_t code = made.make(made.forward_, lengths, options, false);
    const bool alike =
        !is_real || (made.signal_.lies_as(made.spectrum_) || (made.packed_ && options.transforms <= 1));
    if (code == DFTX_NO_ERROR && !alike) code = made.make(made.backward_, lengths, options, true);
    if (code == DFTX_NO_ERROR) swap(made);
    return answer(code);
  }

  /** Numbers that a signal reaches over, all transforms of a call included. */
  std::size_t signal_size() const noexcept { return signal_.reach; }
  /** The same of the spectrum of a real signal. */
  std::size_t spectrum_size() const noexcept { return spectrum_.reach; }

  /** @name Complex signals
   * In place: qkr_dft_def_compute_forward_z(), qkr_dft_def_compute_forward_c(),
   * qkr_dft_def_compute_backward_z(), qkr_dft_def_compute_backward_c(). */
  /**@{*/
  status try_forward(std::span<C> data) const noexcept requires(!is_real) {
    return compute(calls::forward, data);
  }
  status try_backward(std::span<C> data) const noexcept requires(!is_real) {
    return compute(calls::backward, data);
  }
  void forward(std::span<C> data) const requires(!is_real) { check(try_forward(data)); }
  void backward(std::span<C> data) const requires(!is_real) { check(try_backward(data)); }
  /**@}*/

  /** @name Real signals
   * From signal x to spectrum X: qkr_dft_def_compute_forward_dz_out(),
   * qkr_dft_def_compute_forward_sc_out(); back: qkr_dft_def_compute_backward_zd_out(),
   * qkr_dft_def_compute_backward_cs_out(). The spectrum is complex for spectrum::half, and real numbers for
   * the packed formats; a span of the other type is refused. */
  /**@{*/
  status try_forward(std::span<const T> x, std::span<C> X) const noexcept requires is_real {
    return compute(calls::to_spectrum, forward_, x, X,
                   !packed_ && x.size() >= signal_.reach && X.size() >= spectrum_.reach);
  }
  status try_forward(std::span<const T> x, std::span<T> X) const noexcept requires is_real {
    return compute(calls::to_spectrum, forward_, x, X,
                   packed_ && x.size() >= signal_.reach && X.size() >= spectrum_.reach);
  }
  status try_backward(std::span<const C> X, std::span<T> x) const noexcept requires is_real {
    return compute(calls::to_signal, backward_handle(), X, x,
                   !packed_ && x.size() >= signal_.reach && X.size() >= spectrum_.reach);
  }
  status try_backward(std::span<const T> X, std::span<T> x) const noexcept requires is_real {
    return compute(calls::to_signal, backward_handle(), X, x,
                   packed_ && x.size() >= signal_.reach && X.size() >= spectrum_.reach);
  }
  void forward(std::span<const T> x, std::span<C> X) const requires is_real { check(try_forward(x, X)); }
  void forward(std::span<const T> x, std::span<T> X) const requires is_real { check(try_forward(x, X)); }
  void backward(std::span<const C> X, std::span<T> x) const requires is_real { check(try_backward(X, x)); }
  void backward(std::span<const T> X, std::span<T> x) const requires is_real { check(try_backward(X, x)); }
  /**@}*/

  /** The descriptor, for the C interface's functions; it stays this object's. A change there is not seen
   * here. */
  DftDescriptor *forward_handle() const noexcept { return forward_; }
  /** The same of the way back, which may have a descriptor of its own. */
  DftDescriptor *backward_handle() const noexcept { return backward_ ? backward_ : forward_; }
  /** Whether there is a descriptor. */
  explicit operator bool() const noexcept { return forward_ != nullptr; }

 private:
  static constexpr status answer(std::int32_t code) noexcept { return {room::dft, code}; }

  static std::int32_t set(DftDescriptor *&descriptor, std::int32_t parameter, double value) noexcept {
    return qkr_dft_def_set_value_dblval(&descriptor, &parameter, &value);
  }
  static std::int32_t set(DftDescriptor *&descriptor, std::int32_t parameter, std::size_t value) noexcept {
    const auto number = static_cast<std::int32_t>(value);
    if (!detail::fits_int32(value)) return DFTX_INVALID_ARGUMENT;
    return qkr_dft_def_set_value_intval(&descriptor, &parameter, &number);
  }

  // Of a descriptor the input is what a call reads: the spectrum, if it goes backward.
  std::int32_t make(DftDescriptor *&descriptor, const shape &lengths, const dft_options &wish,
                    bool to_signal) noexcept {
    const auto count = static_cast<std::int32_t>(lengths.size()), precision = calls::precision;
    const std::int32_t domain = is_real ? DFTX_REAL : DFTX_COMPLEX;
    std::int32_t code =
        qkr_dft_def_create_descriptor_highd(&descriptor, &precision, &domain, &count, lengths.data());
    if (code == DFTX_NO_ERROR) code = lay_out(lengths, wish);
    const auto then = [&](auto... value) {
      if (code == DFTX_NO_ERROR) code = set(descriptor, value...);
    };
    const detail::extent &to = is_real ? spectrum_ : signal_;
    const detail::extent &input = to_signal ? to : signal_, &output = to_signal ? signal_ : to;
    if (is_real) {
      then(DFTX_CONJUGATE_EVEN_STORAGE, std::size_t{packed_ ? DFTX_COMPLEX_REAL : DFTX_COMPLEX_COMPLEX});
      if (packed_) then(DFTX_PACKED_FORMAT, static_cast<std::size_t>(wish.stored));
    }
    then(DFTX_FORWARD_SCALE, wish.forward_scale);
    then(DFTX_BACKWARD_SCALE, wish.backward_scale);
    then(DFTX_NUMBER_OF_TRANSFORMS, wish.transforms);
    then(DFTX_INPUT_DISTANCE, input.distance);
    then(DFTX_OUTPUT_DISTANCE, output.distance);
    then(DFTX_THREAD_LIMIT, wish.thread_limit);
    if (wish.scrambled) then(DFTX_ORDERING, std::size_t{DFTX_SCRAMBLED});
    if (code == DFTX_NO_ERROR && !packed_)
      code = qkr_dft_set_strides(&descriptor, input.strides, output.strides);
    return code == DFTX_NO_ERROR ? qkr_dft_def_commit_descriptor_external(&descriptor) : code;
  }

  // Where signals and spectra lie. Packed formats come without strides of the caller's.
  std::int32_t lay_out(const shape &lengths, const dft_options &wish) noexcept {
    packed_ = is_real && wish.stored != spectrum::half;
    for (const shape *strides : {&wish.input_strides, &wish.output_strides}) {
      if (!strides->valid() || (strides->size() && strides->size() != lengths.size()))
        return DFTX_INVALID_ARGUMENT;
      for (std::size_t d = 0; d < strides->size(); ++d) {
        if ((*strides)[d] < 1) return DFTX_INVALID_ARGUMENT;
      }
      if (packed_ && strides->size()) return DFTX_UNIMPLEMENTED;
    }
    signal_.set(lengths, wish.input_strides, wish.input_distance, wish.transforms);
    if (is_real) spectrum_of(lengths, wish);
    return DFTX_NO_ERROR;
  }

  // Dense unless it was wished otherwise. Distances of packed spectra count pairs of numbers.
  void spectrum_of(const shape &lengths, const dft_options &wish) noexcept {
    std::size_t l[3] = {1, 1, 1};
    for (std::size_t d = 0; d < lengths.size() && d < 3; ++d) l[d] = static_cast<std::size_t>(lengths[d]);
    if (!packed_) {
      const std::size_t half = l[0] / 2 + 1;
      const shape lines = lengths.size() == 1   ? shape(half)
                          : lengths.size() == 2 ? shape(half, l[1])
                                                : shape(half, l[1], l[2]);
      spectrum_.set(lines, wish.output_strides, wish.output_distance, wish.transforms);
      return;
    }
    const auto numbers = [&](std::size_t n) {
      return wish.stored != spectrum::ccs ? n : n + (n % 2 ? 1 : 2);
    };
    // In two dimensions rows lie N + 2 numbers apart in CCS, and the columns of real numbers are packed too.
    const std::size_t row = wish.stored == spectrum::ccs ? l[0] + 2 : l[0];
    const std::size_t reach = lengths.size() == 1 ? numbers(l[0]) : row * numbers(l[1]);
    spectrum_.distance = wish.output_distance ? wish.output_distance : (reach + 1) / 2;
    spectrum_.reach = wish.transforms ? (wish.transforms - 1) * 2 * spectrum_.distance + reach : 0;
  }

  template <class Call>
  status compute(Call call, std::span<C> data) const noexcept {
    DftDescriptor *descriptor = forward_;
    if (!descriptor) return answer(DFTX_BAD_DESCRIPTOR);
    if (data.size() < signal_.reach) return answer(DFTX_INVALID_ARGUMENT);
    return answer(call(&descriptor, data.data()));
  }
  template <class Call, class From, class To>
  status compute(Call call, DftDescriptor *descriptor, std::span<From> from, std::span<To> to,
                 bool fits) const noexcept {
    if (!descriptor) return answer(DFTX_BAD_DESCRIPTOR);
    if (!fits) return answer(DFTX_INVALID_ARGUMENT);
    return answer(call(&descriptor, from.data(), to.data()));
  }

  void swap(dft &other) noexcept {
    std::swap(forward_, other.forward_);
    std::swap(backward_, other.backward_);
    std::swap(signal_, other.signal_);
    std::swap(spectrum_, other.spectrum_);
    std::swap(packed_, other.packed_);
  }

  DftDescriptor *forward_ = nullptr, *backward_ = nullptr;
  detail::extent signal_, spectrum_;
  bool packed_ = false;
};

}  // namespace cpp
}  // namespace qkr

#endif
