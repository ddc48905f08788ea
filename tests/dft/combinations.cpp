#include "tests/dft/combinations.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <fftw3.h>
#include <map>
#include <random>
#include <sstream>
#include <tuple>

namespace qkr::tests {
namespace {

using Exact = long double;
using Numbers = std::vector<std::complex<Exact>>;  // dimension 0 fastest

Numbers exact_transform(Numbers x, const Lengths &lengths, bool forward) {
  const std::vector<int> slowest_first(lengths.rbegin(), lengths.rend());
  const auto data = reinterpret_cast<fftwl_complex *>(x.data());
  const fftwl_plan plan = fftwl_plan_dft(static_cast<int>(lengths.size()), slowest_first.data(), data, data,
                                         forward ? FFTW_FORWARD : FFTW_BACKWARD, FFTW_ESTIMATE);
  fftwl_execute(plan);
  fftwl_destroy_plan(plan);
  return x;
}

// A number of an array: where it stands, in single numbers, and what it is.
struct Word {
  int64_t place;
  Exact value;
};
using Words = std::vector<Word>;

struct Steps {
  std::vector<int64_t> along;  // single numbers from one element to the next
  int64_t distance;            // and from one transform to the next
};

// Offset and linear number of every element of an array whose first dimension has `first_length` elements.
template <class Body>
void for_each_element(const Case &c, int64_t first_length, const Steps &steps, Body body) {
  const int64_t n0 = c.lengths[0], n1 = c.lengths.size() > 1 ? c.lengths[1] : 1;
  const int64_t n2 = c.lengths.size() > 2 ? c.lengths[2] : 1;
  const auto step = [&](size_t d) { return d < steps.along.size() ? steps.along[d] : 0; };
  for (int64_t i2 = 0; i2 < n2; ++i2)
    for (int64_t i1 = 0; i1 < n1; ++i1)
      for (int64_t i0 = 0; i0 < first_length; ++i0)
        body(i0 * step(0) + i1 * step(1) + i2 * step(2), i0 + n0 * (i1 + n1 * i2));
}

// How the numbers of a packed spectrum of n points are parts of X[k]: 0 real, 1 imaginary, 2 a zero.
struct Part {
  int64_t k;
  int part;
};
std::vector<Part> packed_parts(int32_t format, int64_t n) {
  std::vector<Part> parts;
  const int64_t half = n / 2, last = n % 2 ? half : half - 1;
  parts.push_back({0, 0});
  if (format == DFTX_CCS_FORMAT) parts.push_back({0, 2});
  if (format == DFTX_PERM_FORMAT && n % 2 == 0) parts.push_back({half, 0});
  for (int64_t k = 1; k <= last; ++k) parts.push_back({k, 0}), parts.push_back({k, 1});
  if (format != DFTX_PERM_FORMAT && n % 2 == 0) parts.push_back({half, 0});
  if (format == DFTX_CCS_FORMAT && n % 2 == 0) parts.push_back({half, 2});
  return parts;
}
Exact part_of(std::complex<Exact> x, int part) { return part == 2 ? 0 : part ? x.imag() : x.real(); }

Words packed_words(const Case &c, const Numbers &spectrum, const Steps &steps) {
  const int64_t n0 = c.lengths[0];
  const auto across = packed_parts(c.format, n0);
  Words words;
  if (c.lengths.size() == 1) {
    for (int64_t j = 0; j < static_cast<int64_t>(across.size()); ++j)
      words.push_back({j / 2 * steps.along[0] + j % 2, part_of(spectrum[across[j].k], across[j].part)});
    return words;
  }
  const int64_t n1 = c.lengths[1];
  auto down = packed_parts(c.format, n1);
  if (n1 == 1) down.resize(1);
  for (int64_t j = 0; j < static_cast<int64_t>(across.size()); ++j) {
    const auto [k, part] = across[j];
    const bool is_real = part == 0 && (k == 0 || 2 * k == n0);
    for (int64_t i = 0; i < (is_real ? static_cast<int64_t>(down.size()) : n1); ++i)
      words.push_back({j * steps.along[0] + i * steps.along[1],
                       is_real ? part_of(spectrum[k + n0 * down[i].k], down[i].part)
                               : part_of(spectrum[k + n0 * i], part)});
  }
  return words;
}

bool is_half_spectrum(const Case &c) { return c.storage == DFTX_COMPLEX_COMPLEX; }
bool is_packed(const Case &c, bool input) {
  return c.domain == DFTX_REAL && input != c.forward && !is_half_spectrum(c);
}
bool is_signal(const Case &c, bool input) { return c.domain == DFTX_REAL && input == c.forward; }

// The numbers of one array of one transform.
Words words_of(const Case &c, const Numbers &x, bool input, const Steps &steps) {
  if (is_packed(c, input)) return packed_words(c, x, steps);
  Words words;
  const bool complex = !is_signal(c, input);
  const int64_t first = complex && c.domain == DFTX_REAL ? c.lengths[0] / 2 + 1 : c.lengths[0];
  // Bin N/2 + 1 and so on of a half spectrum would be those of the next row.
  for_each_element(c, first, steps, [&](int64_t place, int64_t i) {
    words.push_back({place, x[i].real()});
    if (complex) words.push_back({place + 1, x[i].imag()});
  });
  return words;
}

// In elements, as the caller gives them.
struct Settings {
  std::vector<int32_t> strides;
  int32_t distance;
  bool set;
};

Settings settings_of(const Case &c, bool input) {
  const bool packed_plane = is_packed(c, input) && c.lengths.size() == 2;
  const int32_t n = std::max(c.transforms, 1);
  std::vector<int32_t> strides;
  int32_t stride = 1;
  for (size_t d = 0; d < c.lengths.size(); ++d) {
    strides.push_back(stride);
    const bool ccs_row = packed_plane && c.format == DFTX_CCS_FORMAT;
    stride *= c.lengths[d] + (ccs_row ? 2 : 0);
  }
  const int32_t numbers_of_row = c.lengths[0] / 2 + 1;
  // Room for one transform, in pairs or in single numbers, also for the other array if the two are one.
  const int32_t room =
      static_cast<int32_t>(points(c.lengths) / c.lengths[0]) * std::max(c.lengths[0], numbers_of_row);
  switch (c.layout) {
    case Layout::contiguous: {
      const bool pairs = !is_signal(c, input);
      int32_t distance = room + 4 * c.lengths[0] + 16;
      if (c.domain == DFTX_COMPLEX) distance = static_cast<int32_t>(points(c.lengths));
      else if (!pairs) distance *= 2;
      return {strides, distance, false};
    }
    case Layout::interleaved:
      for (int32_t &s : strides) s *= packed_plane ? 2 * n : n;
      return {strides, 1, true};
    default:
      for (size_t d = 0; d < strides.size(); ++d)
        strides[d] = d == 0 ? 3 : strides[d - 1] * (c.lengths[d - 1] + 4) + 1;
      return {strides, strides.back() * (c.lengths.back() + 3) + 50, true};
  }
}

Steps steps_of(const Case &c, bool input) {
  const Settings settings = settings_of(c, input);
  const bool packed_plane = is_packed(c, input) && c.lengths.size() == 2;
  const int64_t width = is_signal(c, input) ? 1 : 2;
  Steps steps;
  for (const int32_t s : settings.strides) steps.along.push_back(packed_plane ? s : width * s);
  steps.distance = width * settings.distance;
  return steps;
}

// Random numbers, or of some seeds zeros of either sign around a 1, and their transform, which many cases
// share.
struct Pair {
  Numbers signal, spectrum;
};
const Pair &random_pair(const std::vector<int32_t> &lengths, bool real, bool forward, int32_t seed) {
  static std::map<std::tuple<std::vector<int32_t>, bool, bool, int32_t>, Pair> pairs;
  Pair &pair = pairs[{lengths, real, forward, seed}];
  if (!pair.signal.empty()) return pair;
  std::mt19937 engine(seed);
  std::uniform_real_distribution<float> uniform(-1, 1);
  pair.signal.resize(points(lengths));
  for (auto &number : pair.signal) {
    Exact re = uniform(engine), im = uniform(engine);
    if (seed % 4 == 3) re = &number == &pair.signal.back() ? 1 : std::copysign(Exact(0), re), im = -re * 0;
    number = {re, real ? 0 : im};
  }
  pair.spectrum = exact_transform(pair.signal, lengths, forward);
  return pair;
}

// What stands where nothing is to be written.
template <class T>
constexpr T untouched = T(-12345.678);

template <class T>
Outcome compute_in(const Case &c, DftDescriptor *descriptor) {
  const bool one_array = c.domain == DFTX_COMPLEX || c.in_place;
  const Steps in = steps_of(c, true), out = steps_of(c, false);
  const Steps &target = c.domain == DFTX_COMPLEX ? in : out;

  Words input_words, output_words;
  for (int32_t t = 0; t < c.transforms; ++t) {
    const bool real = c.domain == DFTX_REAL;
    const Pair &pair = random_pair(c.lengths, real, real || c.forward, c.first + t);
    Numbers x = pair.signal, y = pair.spectrum;
    if (real && !c.forward) {
      std::swap(x, y);
      for (auto &number : y) number *= points(c.lengths);
    }
    for (auto &number : y) number *= c.scale;
    for (const Word &w : words_of(c, x, true, in))
      input_words.push_back({w.place + t * in.distance, w.value});
    for (const Word &w : words_of(c, y, false, target))
      output_words.push_back({w.place + t * target.distance, w.value});
  }
  int64_t input_size = 1, output_size = 1;
  for (const Word &w : input_words) input_size = std::max(input_size, w.place + 1);
  for (const Word &w : output_words) output_size = std::max(output_size, w.place + 1);
  // A transform in place may use the memory of both arrays.
  Guarded<T> output(std::max(output_size, one_array ? input_size : 0), c.edge), input(input_size, c.edge);
  std::ranges::fill(output, untouched<T>);
  std::ranges::fill(input, untouched<T>);
  for (const Word &w : input_words) (one_array ? output : input)[w.place] = static_cast<T>(w.value);
  const std::vector<T> input_before(input.begin(), input.end());

  Outcome outcome;
  outcome.code = call(c, descriptor, one_array ? output.data() : input.data(), output.data());

  Exact difference = 0, sum = 0;
  std::vector<bool> expected(output.size(), one_array);
  for (const Word &w : output_words) {
    const Exact d = output[w.place] - w.value;
    difference += d * d, sum += w.value * w.value;
    expected[w.place] = true;
    outcome.numbers.push_back(static_cast<double>(output[w.place]));
  }
  outcome.error = static_cast<double>(std::sqrt(sum == 0 ? difference : difference / sum));
  for (size_t i = 0; i < output.size(); ++i)
    if (!expected[i] && output[i] != untouched<T>) outcome.strayed = true;
  if (!std::equal(input.begin(), input.end(), input_before.begin())) outcome.strayed = true;
  outcome.bytes.resize(output.size() * sizeof(T));
  std::memcpy(outcome.bytes.data(), output.data(), outcome.bytes.size());
  return outcome;
}

}  // namespace

int32_t call(const Case &c, DftDescriptor *d, void *in, void *out) {
  const bool in_double = c.precision == DFTX_DOUBLE;
  if (c.domain == DFTX_COMPLEX) {
    const auto forward = in_double ? qkr_dft_def_compute_forward_z : qkr_dft_def_compute_forward_c;
    const auto backward = in_double ? qkr_dft_def_compute_backward_z : qkr_dft_def_compute_backward_c;
    return (c.forward ? forward : backward)(&d, out);
  }
  if (in_double)
    return c.forward ? qkr_dft_def_compute_forward_dz_out(&d, static_cast<double *>(in), out)
                     : qkr_dft_def_compute_backward_zd_out(&d, in, static_cast<double *>(out));
  return c.forward ? qkr_dft_def_compute_forward_sc_out(&d, static_cast<float *>(in), out)
                   : qkr_dft_def_compute_backward_cs_out(&d, in, static_cast<float *>(out));
}

int64_t points(const Lengths &lengths) {
  int64_t size = 1;
  for (const int32_t n : lengths) size *= n;
  return size;
}

int32_t expected_code(const Case &c) {
  if (c.domain == DFTX_COMPLEX) return DFTX_NO_ERROR;
  if (c.ordering == DFTX_SCRAMBLED) return DFTX_INVALID_ARGUMENT;
  const bool packed = c.storage == DFTX_COMPLEX_REAL;
  return packed && (c.lengths.size() == 3 || c.format == DFTX_CCE_FORMAT) ? DFTX_UNIMPLEMENTED
                                                                          : DFTX_NO_ERROR;
}

std::vector<Case> cases(const Ranges &ranges) {
  std::vector<Case> all = {{}};
  const auto vary = [&](const auto &values, auto set) {
    std::vector<Case> varied;
    for (Case &c : all)
      for (const auto &value : values) {
        set(c, value);
        varied.push_back(c);
      }
    all = std::move(varied);
  };
  const auto vary_field = [&](const auto &values, auto field) {
    vary(values, [=](Case &c, const auto &value) { c.*field = value; });
  };
  vary_field(ranges.lengths, &Case::lengths);
  vary_field(ranges.precisions, &Case::precision);
  vary(ranges.kinds, [](Case &c, const Kind &kind) {
    c.domain = kind.domain, c.storage = kind.storage, c.format = kind.format;
  });
  vary_field(ranges.forward, &Case::forward);
  vary_field(ranges.transforms, &Case::transforms);
  vary_field(ranges.layouts, &Case::layout);
  vary_field(ranges.scales, &Case::scale);
  vary_field(ranges.placements, &Case::placement);
  vary_field(ranges.orderings, &Case::ordering);
  vary_field(ranges.thread_limits, &Case::thread_limit);
  vary_field(ranges.one_array, &Case::in_place);
  vary_field(ranges.edges, &Case::edge);
  std::erase_if(all, [&](const Case &c) {
    const bool collides = c.layout != Layout::contiguous && c.transforms > 1;
    return (c.in_place && (c.domain == DFTX_COMPLEX || collides)) ||
           (!ranges.with_refused && expected_code(c) != DFTX_NO_ERROR);
  });
  return all;
}

std::string name(const Case &c) {
  std::ostringstream text;
  text << (c.forward ? "forward " : "backward ") << (c.precision == DFTX_DOUBLE ? "double " : "single ")
       << (c.domain == DFTX_REAL ? "real" : "complex");
  for (const int32_t n : c.lengths) text << ' ' << n;
  text << " storage " << c.storage << " format " << c.format << " placement " << c.placement << " ordering "
       << c.ordering << " transforms " << c.transforms << " layout " << static_cast<int>(c.layout)
       << " scale " << c.scale << " limit " << c.thread_limit << (c.in_place ? " one array" : "")
       << (c.edge == Edge::start ? " behind a guarded page" : " before a guarded page");
  return text.str();
}

int32_t prepare(const Case &c, DftDescriptor **handle) {
  const int32_t dimension = static_cast<int32_t>(c.lengths.size());
  int32_t code =
      qkr_dft_def_create_descriptor_highd(handle, &c.precision, &c.domain, &dimension, c.lengths.data());
  if (code) return code;
  const Settings in = settings_of(c, true), out = settings_of(c, false);
  const auto set = [&](int32_t parameter, int32_t value) {
    if (!code) code = qkr_dft_def_set_value_intval(handle, &parameter, &value);
  };
  if (c.domain == DFTX_REAL) {
    set(DFTX_CONJUGATE_EVEN_STORAGE, c.storage);
    set(DFTX_PACKED_FORMAT, c.format);
  }
  set(DFTX_PLACEMENT, c.placement);
  set(DFTX_ORDERING, c.ordering);
  set(DFTX_NUMBER_OF_TRANSFORMS, c.transforms);
  set(DFTX_INPUT_DISTANCE, in.distance);
  set(DFTX_OUTPUT_DISTANCE, out.distance);
  set(DFTX_THREAD_LIMIT, c.thread_limit);
  const int32_t parameter = c.forward ? DFTX_FORWARD_SCALE : DFTX_BACKWARD_SCALE;
  if (!code) code = qkr_dft_def_set_value_dblval(handle, &parameter, &c.scale);
  if (!code && in.set) code = qkr_dft_set_strides(handle, in.strides.data(), out.strides.data());
  return code ? code : qkr_dft_def_commit_descriptor_external(handle);
}

Outcome compute(const Case &c, DftDescriptor *descriptor) {
  return c.precision == DFTX_DOUBLE ? compute_in<double>(c, descriptor) : compute_in<float>(c, descriptor);
}

Outcome run(const Case &c) {
  DftDescriptor *descriptor = nullptr;
  Outcome outcome;
  outcome.code = prepare(c, &descriptor);
  if (!outcome.code) outcome = compute(c, descriptor);
  if (descriptor) qkr_dft_def_free_descriptor_external(&descriptor);
  return outcome;
}

}  // namespace qkr::tests
