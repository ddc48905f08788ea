/** @file
 * C++: random streams. Included by qkr/qkr.hpp; the distributions stand in qkr/cpp/distributions.hpp.
 *
 *     qkr::stream s{qkr::mt2203(7), 777};
 *     s.normal(out, 5.0, 2.0);
 *     s.skip(1'000'000);
 *     std::uniform_int_distribution<int> die(1, 6);
 *     int face = die(s);
 *
 * A stream belongs to one thread at a time. The numbers are those of the C functions named beside each. */
#ifndef QKR_CPP_STREAM_HPP
#define QKR_CPP_STREAM_HPP

#include <qkr/cpp/base.hpp>
#include <qkr/cpp/distributions.hpp>

namespace qkr {
inline namespace cpp {

/** A basic generator: its id, and how many seed words it takes in. */
struct generator {
  std::uint32_t id;        /**< in the registry: QKR_MT19937 and its companions */
  std::int32_t seed_words; /**< that a spread seed fills; 0 for quasi-random generators */
  friend constexpr bool operator==(const generator &, const generator &) = default;
};

/** An id that no generator has. */
inline constexpr std::uint32_t no_generator = 0x7fffffff;

/** @name Generators
 * The table in qkr/streams.h says what each can do, qkr/streams_generators.h what it is. */
/**@{*/
inline constexpr generator mcg31m1{QKR_MCG31M1, 1};
inline constexpr generator r250{QKR_R250, 250};
inline constexpr generator mrg32k3a{QKR_MRG32K3A, 6};
inline constexpr generator mcg59{QKR_MCG59, 2};
inline constexpr generator mt19937{QKR_MT19937, 4};
inline constexpr generator sobol{QKR_SOBOL, 0};               /**< the seed is the dimension */
inline constexpr generator niederreiter{QKR_NIEDERREITER, 0}; /**< the seed is the dimension */
/** Member k of Wichmann-Hill's 273. */
constexpr generator wh(std::uint32_t k) noexcept { return {k < 273 ? QKR_WH(k) : no_generator, 4}; }
/** Member k of 1024 small Mersenne twisters. */
constexpr generator mt2203(std::uint32_t k) noexcept { return {k < 1024 ? QKR_MT2203(k) : no_generator, 4}; }
/** Philox 4x32-10: qkr_philox(), which enters it into the registry. */
inline generator philox() noexcept { return {static_cast<std::uint32_t>(qkr_philox()), 2}; }
/**@}*/

/** Enters a generator of your own: __vxsRegisterBrng(). __vxsGetNumRegBrngs() counts them. */
inline status try_register_generator(const BrngRecord &record, generator &made) noexcept {
  const std::int32_t id = __vxsRegisterBrng(&record);
  if (id >= 0) made = {static_cast<std::uint32_t>(id), record.SeedWords};
  return {room::streams, id < 0 ? id : VXS_STATUS_OK};
}
inline generator register_generator(const BrngRecord &record) {
  generator made{};
  check(try_register_generator(record, made));
  return made;
}

/** The row of a generator in the registry: __vxsGetBrngProperties() (__vxsGetBrngBaseOffset() finds where it
 * stands, __vxsIsBrngValid() whether it exists). */
inline status try_properties(generator of, BrngRecord &out) noexcept {
  if (!detail::fits_int32(of.id)) return {room::streams, VXS_STATUS_BAD_GENERATOR};
  return {room::streams, __vxsGetBrngProperties(static_cast<std::int32_t>(of.id), &out)};
}
inline BrngRecord properties(generator of) {
  BrngRecord record{};
  check(try_properties(of, record));
  return record;
}

/** Seed for one of many streams that are to be independent: one number for all of them, and the stream's own
 * index. Its words come from __vxsSeedWords(). Similar seeds of one word, or one seed for all members of a
 * family, give streams that begin alike; these do not. */
struct spread_seed {
  std::uint64_t seed;  /**< of all streams */
  std::uint64_t index; /**< of this one */
};

/** A random stream; move only, clone() copies. One that is moved from or made without arguments is empty: its
 * operations answer VXS_STATUS_NULL_POINTER. */
class stream : public draws<stream> {
 public:
  /** An empty stream. */
  stream() noexcept = default;

  /** A stream of a generator: __vxsNewStreamEx().
   * @param seed one seed word, or two, the lower first, of a number above 2^32 - 1; of quasi-random
   * generators the dimension */
  template <std::integral Seed>
  stream(generator of, Seed seed) {
    check(try_reset(of, seed));
  }
  /** Seed words as the generator takes them. */
  stream(generator of, std::span<const std::uint32_t> words) { check(try_reset(of, words)); }
  /** Seed words by a hash of seed and index. */
  stream(generator of, spread_seed seed) { check(try_reset(of, seed)); }
  /** A stream of a file: __vxsLoadStreamF(). */
  explicit stream(const char *path) { check(try_load(path)); }

  stream(stream &&other) noexcept { swap(other); }
  stream &operator=(stream &&other) noexcept {
    stream taken(std::move(other));
    swap(taken);
    return *this;
  }
  /** Deletes it: __vxsDeleteStream(). */
  ~stream() {
    if (state_) __vxsDeleteStream(&state_);
  }

  /** @name Making
   * Replace what the stream holds, unless they fail. */
  /**@{*/
  template <std::integral Seed>
  status try_reset(generator of, Seed seed) noexcept {
    const auto number = static_cast<std::uint64_t>(static_cast<std::make_unsigned_t<Seed>>(seed));
    const std::uint32_t words[2] = {static_cast<std::uint32_t>(number),
                                    static_cast<std::uint32_t>(number >> 32)};
    return try_reset(of, std::span(words, words[1] ? 2 : 1));
  }
  status try_reset(generator of, std::span<const std::uint32_t> words) noexcept {
    if (!detail::fits_int32(words.size())) return answer(VXS_STATUS_BAD_ARGUMENT);
    if (!detail::fits_int32(of.id))
      return answer(VXS_STATUS_BAD_GENERATOR);  // the library takes it for negative
    StreamState *made = nullptr;
    const std::int32_t code =
        __vxsNewStreamEx(&made, of.id, static_cast<std::int32_t>(words.size()), words.data());
    return adopt(made, code);
  }
  status try_reset(generator of, spread_seed seed) noexcept {
    std::uint32_t words[250];
    if (of.seed_words < 1) return answer(VXS_STATUS_BAD_ARGUMENT);
    const std::int32_t count = of.seed_words < 250 ? of.seed_words : 250;
    __vxsSeedWords(seed.seed, seed.index, count, words);
    return try_reset(of, std::span(words, static_cast<std::size_t>(count)));
  }
  status try_load(const char *path) noexcept {
    StreamState *made = nullptr;
    const std::int32_t code = __vxsLoadStreamF(&made, path);
    return adopt(made, code);
  }
  /** An abstract stream: numbers of your own from `buffer`, which stays yours and valid, refilled by
   * `update`; those of doubles and floats lie in [lower, upper). __vxsiNewAbstractStream(),
   * __vxsdNewAbstractStream(), __vxssNewAbstractStream(). */
  status try_reset_abstract(std::span<std::uint32_t> buffer, AbstractUpdateI update) noexcept {
    return abstract(buffer, [&](StreamState **out, std::int32_t n) {
      return __vxsiNewAbstractStream(out, n, buffer.data(), update);
    });
  }
  status try_reset_abstract(std::span<double> buffer, double lower, double upper,
                            AbstractUpdateD update) noexcept {
    return abstract(buffer, [&](StreamState **out, std::int32_t n) {
      return __vxsdNewAbstractStream(out, n, buffer.data(), lower, upper, update);
    });
  }
  status try_reset_abstract(std::span<float> buffer, float lower, float upper,
                            AbstractUpdateS update) noexcept {
    return abstract(buffer, [&](StreamState **out, std::int32_t n) {
      return __vxssNewAbstractStream(out, n, buffer.data(), lower, upper, update);
    });
  }
  template <class... Arguments>
  static stream abstract_of(Arguments &&...arguments) {
    stream made;
    check(made.try_reset_abstract(std::forward<Arguments>(arguments)...));
    return made;
  }
  /**@}*/

  /** @name Copies and files */
  /**@{*/
  /** A second stream that goes on as this one does: __vxsCopyStream(). */
  status try_clone(stream &out) const noexcept {
    if (!state_) return answer(VXS_STATUS_NULL_POINTER);
    StreamState *made = nullptr;
    const std::int32_t code = __vxsCopyStream(&made, state_);
    const status done = out.adopt(made, code);
    if (done.ok()) out.ahead_ = ahead_;
    return done;
  }
  stream clone() const {
    stream copy;
    check(try_clone(copy));
    return copy;
  }
  /** Takes over the running state of a stream of the same generator: __vxsCopyStreamState(). */
  status try_take_state_of(const stream &other) noexcept {
    if (!state_ || !other.state_) return answer(VXS_STATUS_NULL_POINTER);
    ahead_ = {};
    return answer(__vxsCopyStreamState(state_, other.state_));
  }
  void take_state_of(const stream &other) { check(try_take_state_of(other)); }
  /** Writes it to a file: __vxsSaveStreamF(). Numbers that operator() holds ahead are not in it. */
  status try_save(const char *path) const noexcept {
    return state_ ? answer(__vxsSaveStreamF(state_, path, -1)) : answer(VXS_STATUS_NULL_POINTER);
  }
  void save(const char *path) const { check(try_save(path)); }
  /**@}*/

  /** @name Partition
   * From where the stream is: behind what operator() has drawn, which is dropped. */
  /**@{*/
  /** Passes over n numbers, any count: qkr_skip_ahead() (__vxsSkipAheadStream() takes 32 bits). */
  status try_skip(std::uint64_t n) noexcept {
    if (!state_) return answer(VXS_STATUS_NULL_POINTER);
    ahead_ = {};
    return answer(qkr_skip_ahead(state_, n));
  }
  void skip(std::uint64_t n) { check(try_skip(n)); }
  /** Keeps number k of each n, k below n: __vxsLeapfrogStream(). */
  status try_leapfrog(std::size_t k, std::size_t n) noexcept {
    if (!state_) return answer(VXS_STATUS_NULL_POINTER);
    if (k >= n || !detail::fits_int32(n) || n == QKR_ONE_DIMENSION) return answer(VXS_STATUS_BAD_ARGUMENT);
    ahead_ = {};
    return answer(__vxsLeapfrogStream(state_, static_cast<std::int32_t>(k), static_cast<std::int32_t>(n)));
  }
  void leapfrog(std::size_t k, std::size_t n) { check(try_leapfrog(k, n)); }
  /** Keeps component k of each point of a quasi-random stream: __vxsLeapfrogStream(). */
  status try_keep_dimension(std::size_t k) noexcept {
    if (!state_) return answer(VXS_STATUS_NULL_POINTER);
    if (!detail::fits_int32(k)) return answer(VXS_STATUS_BAD_ARGUMENT);
    ahead_ = {};
    return answer(__vxsLeapfrogStream(state_, static_cast<std::int32_t>(k), QKR_ONE_DIMENSION));
  }
  void keep_dimension(std::size_t k) { check(try_keep_dimension(k)); }
  /**@}*/

  /** @name Standard uniform random bit generator
   * The leading 32 bits of a uniform number (_vxsdRngUniform()), or the leading 16 of each of two where a
   * number of the generator has fewer than 32. They are drawn 64 at a time: what else draws from the stream
   * goes on behind them. Not for quasi-random streams, nor abstract ones of integers or floats. */
  /**@{*/
  using result_type = std::uint32_t;
  static constexpr result_type min() noexcept { return 0; }
  static constexpr result_type max() noexcept { return 0xffffffff; }
  result_type operator()() {
    if (ahead_.used == ahead_.count) [[unlikely]]
      check(try_draw_ahead());
    return ahead_.words[ahead_.used++];
  }
  /**@}*/

  /** The C interface's stream, for its functions: it stays this object's. Null if empty. Chunks hang on it
   * (__vxsAddChunk(), __vxsSearchChunk(), __vxsGetNumChunks(), __vxsDeleteChunks()). */
  StreamState *handle() const noexcept { return state_; }
  /** Hands the stream over to the caller, who deletes it by __vxsDeleteStream(). */
  StreamState *release() noexcept {
    ahead_ = {};
    return std::exchange(state_, nullptr);
  }
  /** The id of its generator: __vxsGetStreamStateBrng(). 0 if empty. */
  std::uint32_t id() const noexcept { return state_ ? __vxsGetStreamStateBrng(state_) : 0; }
  /** Whether it is a stream, and not empty. */
  explicit operator bool() const noexcept { return state_ != nullptr; }
  /** Exchanges two streams. */
  void swap(stream &other) noexcept {
    std::swap(state_, other.state_);
    std::swap(ahead_, other.ahead_);
  }

 private:
  // Words that operator() has drawn and not given out.
  struct Ahead {
    std::uint32_t used = 0, count = 0, words[64] = {};
  };

  static constexpr status answer(std::int32_t code) noexcept { return {room::streams, code}; }

  status adopt(StreamState *made, std::int32_t code) noexcept {
    stream old;
    if (code >= 0) {
      old.state_ = std::exchange(state_, made);
      ahead_ = {};
    } else {
      old.state_ = made;  // after a refused seeding there is a stream to delete
    }
    return answer(code);
  }

  template <class T, class Make>
  status abstract(std::span<T> buffer, Make make) noexcept {
    if (!detail::fits_int32(buffer.size())) return answer(VXS_STATUS_BAD_ARGUMENT);
    StreamState *made = nullptr;
    const std::int32_t code = make(&made, static_cast<std::int32_t>(buffer.size()));
    return adopt(made, code);
  }

  status try_draw_ahead() noexcept {
    if (!state_) return answer(VXS_STATUS_NULL_POINTER);
    BrngRecord record;
    __vxsGetBrngProperties(static_cast<std::int32_t>(state_->brng), &record);
    const auto leading = [](double u, double scale) {
      const auto bits = static_cast<std::uint64_t>(u * scale);
      return static_cast<std::uint32_t>(static_cast<double>(bits) < scale ? bits : bits - 1);
    };
    double u[128];
    const bool by_two = record.Bits < 32;
    const std::int32_t code = _vxsdRngUniform(0, state_, by_two ? 128 : 64, u, 0.0, 1.0);
    if (code < 0) return answer(code);
    for (std::size_t i = 0; i < 64; ++i) {
      ahead_.words[i] =
          by_two ? leading(u[2 * i], 0x1p16) << 16 | leading(u[2 * i + 1], 0x1p16) : leading(u[i], 0x1p32);
    }
    ahead_.used = 0;
    ahead_.count = 64;
    return answer(code);
  }

  StreamState *state_ = nullptr;
  Ahead ahead_;
};

}  // namespace cpp
}  // namespace qkr

#endif
