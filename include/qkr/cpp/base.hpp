/** @file
 * C++: statuses, the exception, and what the library is. Included by qkr/qkr.hpp.
 *
 * Every operation comes twice. `qkr::exp(x, y)` and `s.normal(out)` throw a qkr::error; `qkr::try_exp(x,
 * y)` and `s.try_normal(out)` are noexcept and return a qkr::status. What a constructor does, `try_reset`
 * does for an object that exists already. */
#ifndef QKR_CPP_BASE_HPP
#define QKR_CPP_BASE_HPP

#include <complex>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iterator>
#include <limits>
#include <qkr/qkr.h>
#include <span>
#include <type_traits>
#include <utility>

/** Elements that one call of a C function gets at the most: longer arrays go in pieces of so many. A power
 * of two of at least 64; the same in all files of a program. */
#ifndef QKR_LONGEST_PIECE
#define QKR_LONGEST_PIECE 0x40000000
#endif

namespace qkr {
inline namespace cpp {

/** Where a status comes from: the rooms of qkr/library.h. */
enum class room : std::int32_t {
  vecmath = QKR_ROOM_VECMATH,
  streams = QKR_ROOM_STREAMS,
  sigfft = QKR_ROOM_SIGFFT,
  dft = QKR_ROOM_DFT,
  convcorr = QKR_ROOM_CONVCORR
};

/** What an operation of a room answered: the number that the C function returns, or one of the same list for
 * what is found wrong before the call. */
class [[nodiscard]] status {
 public:
  /** The answer `code` of a room. */
  constexpr status(qkr::room from, std::int32_t code) noexcept : room_(from), code_(code) {}

  /** Whether the operation was done: 0, and of streams also a positive status of a generator of your own. */
  constexpr bool ok() const noexcept { return code_ == 0 || (code_ > 0 && room_ == qkr::room::streams); }
  /** The number of the C interface: a status of the room, 0 for success. */
  constexpr std::int32_t code() const noexcept { return code_; }
  /** The room that answered. */
  constexpr qkr::room room() const noexcept { return room_; }
  /** A few words: qkr_status_text(). */
  const char *text() const noexcept { return qkr_status_text(static_cast<std::int32_t>(room_), code_); }

  friend constexpr bool operator==(const status &, const status &) = default;

 private:
  qkr::room room_;
  std::int32_t code_;
};

/** The one exception of the library: a status, with its text as what(). */
class error : public std::exception {
 public:
  /** @param of what went wrong */
  explicit error(qkr::status of) noexcept : status_(of) {}
  /** A few words: qkr_status_text(). */
  const char *what() const noexcept override { return status_.text(); }
  /** The status that an operation without exceptions would have returned. */
  qkr::status status() const noexcept { return status_; }
  /** The number of that status. */
  std::int32_t code() const noexcept { return status_.code(); }
  /** The room that it comes from. */
  qkr::room room() const noexcept { return status_.room(); }

 private:
  qkr::status status_;
};

/** Throws what is not a success: turns a noexcept operation into the other. */
inline void check(status answer) {
  if (!answer.ok()) [[unlikely]]
    throw error(answer);
}

/** Version of the library that is loaded, as QKR_VERSION: qkr_version(). */
inline std::int32_t version() noexcept { return qkr_version(); }

/** Vector widths: QKR_LEVEL_SSE2 and its companions. */
enum class simd_level : std::int32_t {
  sse2 = QKR_LEVEL_SSE2,
  avx2 = QKR_LEVEL_AVX2,
  avx512 = QKR_LEVEL_AVX512
};

/** The vector width in use: qkr_level(). */
inline simd_level level_in_use() noexcept { return static_cast<simd_level>(qkr_level()); }

/** Takes another one, or the widest that the processor has; returns which: qkr_set_level(). */
inline simd_level use_level(simd_level level) noexcept {
  return static_cast<simd_level>(qkr_set_level(static_cast<std::int32_t>(level)));
}

/** Numbers of single and double precision: float, double. */
template <class T>
concept real_number = std::same_as<T, float> || std::same_as<T, double>;
/** Complex numbers of them: std::complex<float>, std::complex<double>. */
template <class T>
concept complex_number = std::same_as<T, std::complex<float>> || std::same_as<T, std::complex<double>>;

/** Lengths, strides or the like, one for each dimension, the dimension of neighbouring elements first:
 * written `{640, 480}`, or made of a range of whole numbers. Seven at the most, which 32 bits hold; valid()
 * tells. */
class shape {
 public:
  /** No dimensions, or the numbers in turn, or those of a range. */
  shape() noexcept = default;
  template <std::integral... Number>
  requires(sizeof...(Number) > 0) shape(Number... numbers)
  noexcept { (add(numbers), ...); }
  template <class Range>
  requires std::integral<std::remove_cvref_t<decltype(*std::begin(std::declval<const Range &>()))>> shape(
      const Range &range)
  noexcept {
    for (const auto number : range) add(number);
  }

  /** Whether there were at most seven numbers, each of 32 bits. */
  bool valid() const noexcept { return valid_; }
  /** How many dimensions. */
  std::size_t size() const noexcept { return count_; }
  /** The numbers, for the C interface's functions. */
  const std::int32_t *data() const noexcept { return numbers_; }
  /** The number of dimension i, below size(). */
  std::int32_t operator[](std::size_t i) const noexcept { return numbers_[i]; }

 private:
  template <class Number>
  void add(Number number) noexcept {
    valid_ = valid_ && count_ < 7 && std::in_range<std::int32_t>(number);
    if (valid_) numbers_[count_++] = static_cast<std::int32_t>(number);
  }

  std::size_t count_ = 0;
  std::int32_t numbers_[7] = {};
  bool valid_ = true;
};

namespace detail {

inline constexpr std::size_t longest_piece = QKR_LONGEST_PIECE;
static_assert(longest_piece >= 64 && longest_piece <= 0x40000000 && longest_piece % 64 == 0);

// call(count, first) for the pieces of n elements in turn; one call, of 0 elements, if there are none. A
// call returns a status of the C interface, and the first that is negative ends all.
template <class Call>
inline std::int32_t in_pieces(std::size_t n, Call call) noexcept {
  if (n <= longest_piece) [[likely]]
    return call(static_cast<std::int32_t>(n), std::size_t{0});
  for (std::size_t first = 0; first < n; first += longest_piece) {
    const std::size_t count = n - first < longest_piece ? n - first : longest_piece;
    if (const std::int32_t code = call(static_cast<std::int32_t>(count), first); code < 0) return code;
  }
  return 0;
}

constexpr bool fits_int32(std::size_t n) noexcept {
  return n <= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
}

// std::complex has the layout of the C interface's structures of two numbers.
template <class To, class T>
inline To *as(T *p) noexcept {
  static_assert(sizeof(To) == sizeof(T));
  return reinterpret_cast<To *>(p);
}

}  // namespace detail
}  // namespace cpp
}  // namespace qkr

#endif
