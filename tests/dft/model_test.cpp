// Random sequences of calls against a model of what they must answer. The sanitizers look for what a model
// cannot see.
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <qkr/dft.h>
#include <random>
#include <vector>

namespace qkr::tests {
namespace {

// Counts, distances and limits: settings that take any number.
bool is_number(int32_t parameter) {
  return parameter == 7 || parameter == 14 || parameter == 15 || parameter == 26;
}

// What decides the answers.
struct Model {
  bool exists = false, is_committed = false;
  int32_t precision = 0, domain = 0, dimension = 0;
  int32_t storage = DFTX_COMPLEX_REAL, format = DFTX_CCS_FORMAT;

  int32_t commit() {
    if (!exists) return DFTX_INVALID_ARGUMENT;
    const bool packed = domain == DFTX_REAL && storage == DFTX_COMPLEX_REAL;
    is_committed = !(packed && (dimension == 3 || format == DFTX_CCE_FORMAT));
    return is_committed ? DFTX_NO_ERROR : DFTX_UNIMPLEMENTED;
  }
  int32_t set(int32_t parameter, int32_t value) {
    if (!exists) return DFTX_INVALID_ARGUMENT;
    is_committed = false;
    const auto among = [value](std::initializer_list<int32_t> good) {
      return std::find(good.begin(), good.end(), value) != good.end();
    };
    const auto storage_code = [&](std::initializer_list<int32_t> good) {
      return among(good) ? DFTX_NO_ERROR : among({39, 40, 42}) ? DFTX_UNIMPLEMENTED : DFTX_INVALID_ARGUMENT;
    };
    const auto code = [](bool good) { return good ? DFTX_NO_ERROR : DFTX_INVALID_ARGUMENT; };
    if (parameter >= 0 && (parameter <= 3 || parameter == 19)) return DFTX_UNIMPLEMENTED;
    if (is_number(parameter)) return DFTX_NO_ERROR;
    switch (parameter) {
      case 8:
        return storage_code({39});
      case 9:
        return storage_code({42});
      case 10:
        if (among({39, 40})) storage = value;
        if (value == 39) format = DFTX_CCE_FORMAT;
        return storage_code({39, 40});
      case 11:
        return code(among({43, 44}));
      case 18:
        return code(among({48}) || (value == 49 && domain != DFTX_REAL));
      case 21:
        if (among({54, 55, 56, 57})) format = value;
        return code(among({54, 55, 56, 57}));
      default:
        return DFTX_INVALID_ARGUMENT;
    }
  }
  int32_t compute(int32_t wanted_precision, int32_t wanted_domain) const {
    if (!exists) return DFTX_INVALID_ARGUMENT;
    if (!is_committed) return DFTX_NOT_COMMITTED;
    return precision == wanted_precision && domain == wanted_domain ? DFTX_NO_ERROR : DFTX_INVALID_ARGUMENT;
  }
};

// Zeros, which transforms leave alone.
std::vector<double> source(1 << 12), target(1 << 12);

class Sequence {
  std::minstd_rand engine_;  // seeded for each sequence: a larger state would take longer than all calls
  DftDescriptor *handle_ = nullptr;
  Model model_;

  int32_t below(int32_t n) { return static_cast<int32_t>((engine_() >> 8) % static_cast<uint32_t>(n)); }

  void create() {
    if (handle_) return release();
    // Mostly good, so that there is something to set, commit and compute.
    const bool any = below(4) == 0;
    const int32_t precision = any ? 34 + below(4) : 35 + below(2),
                  domain = any ? 31 + below(4) : 32 + below(2),
                  dimension = any ? below(10) - 1 : 1 + below(3);
    int32_t lengths[9];
    for (int32_t &n : lengths) n = below(30) == 0 ? -below(3) : 1 + below(6);
    if (dimension == 1 && below(2)) lengths[0] = 1 << below(8);
    bool positive = true;
    for (int32_t i = 0; i < dimension; ++i) positive = positive && lengths[i] > 0;
    int32_t expected = DFTX_NO_ERROR;
    if (dimension < 1 || dimension > 7 || !positive) expected = DFTX_INVALID_ARGUMENT;
    else if (domain != DFTX_COMPLEX && domain != DFTX_REAL) expected = DFTX_INVALID_ARGUMENT;
    else if (dimension > 3) expected = DFTX_UNIMPLEMENTED;
    else if (precision != DFTX_SINGLE && precision != DFTX_DOUBLE) expected = DFTX_INVALID_ARGUMENT;
    // Bad dimensions leave the handle alone, any other failure makes it null.
    static int32_t somewhere;
    DftDescriptor *const untouched = reinterpret_cast<DftDescriptor *>(&somewhere);
    handle_ = untouched;
    const auto entry = below(2) ? qkr_dft_def_create_descriptor_highd : qkr_dft_def_create_descriptor_1d;
    const int32_t code = entry(&handle_, &precision, &domain, &dimension, lengths);
    const bool is_left = handle_ == untouched;
    if (is_left) handle_ = nullptr;
    ASSERT_EQ(code, expected);
    ASSERT_EQ(is_left, dimension < 1 || dimension > 7 || !positive);
    ASSERT_EQ(handle_ != nullptr, expected == DFTX_NO_ERROR);
    if (!expected) model_ = {true, false, precision, domain, dimension};
  }
  void release() {
    ASSERT_EQ(qkr_dft_def_free_descriptor_external(&handle_),
              model_.exists ? DFTX_NO_ERROR : DFTX_INVALID_ARGUMENT);
    ASSERT_EQ(handle_, nullptr);
    model_ = {};
  }
  void set() {
    static constexpr int32_t settings[] = {7, 8, 9, 10, 10, 11, 14, 15, 18, 21, 21, 26};
    const int32_t parameter = below(4) ? settings[below(12)] : below(50) ? below(30) - 1 : INT32_MAX;
    // They stay small, so that the data have room.
    const bool far = (parameter == 14 || parameter == 15) && below(2);
    const int32_t value = far ? 130 : is_number(parameter) ? below(4) : 38 + below(21);
    ASSERT_EQ(qkr_dft_def_set_value_intval(&handle_, &parameter, &value), model_.set(parameter, value))
        << parameter << ' ' << value;
  }
  void set_scale() {
    const int32_t parameter = below(2) ? 4 + below(2) : below(30) - 1;
    const double value = below(2) ? 1 : 0.5;
    const bool good = model_.exists && (parameter == 4 || parameter == 5);
    ASSERT_EQ(qkr_dft_def_set_value_dblval(&handle_, &parameter, &value),
              good ? DFTX_NO_ERROR : DFTX_INVALID_ARGUMENT);
    model_.is_committed = false;
  }
  void set_strides() {
    int32_t input[3], output[3];
    bool good = model_.exists;
    for (int i = 0; i < 3; ++i) {
      input[i] = below(40) ? 1 + below(12) : 0;
      output[i] = below(40) ? 1 + below(12) : -1;
    }
    // Complex data have one array, whose strides may stand for both.
    const int32_t *const first = below(20) ? input : nullptr, *const second = below(5) ? output : nullptr;
    good = good && first && (second || model_.domain == DFTX_COMPLEX);
    for (int i = 0; i < model_.dimension; ++i) good = good && first[i] > 0 && (!second || second[i] > 0);
    ASSERT_EQ(qkr_dft_set_strides(&handle_, first, second), good ? DFTX_NO_ERROR : DFTX_INVALID_ARGUMENT);
    model_.is_committed = false;
  }
  void compute() {
    double *x = source.data(), *y = target.data();
    const auto fx = reinterpret_cast<float *>(x), fy = reinterpret_cast<float *>(y);
    int32_t code = 0, precision = below(2) ? DFTX_DOUBLE : DFTX_SINGLE,
            domain = below(2) ? DFTX_REAL : DFTX_COMPLEX;
    // Mostly of the right kind.
    if (model_.exists && below(8)) precision = model_.precision, domain = model_.domain;
    const bool in_double = precision == DFTX_DOUBLE, forward = below(2);
    if (domain == DFTX_COMPLEX) {
      const auto entry = in_double ? forward ? qkr_dft_def_compute_forward_z : qkr_dft_def_compute_backward_z
                         : forward ? qkr_dft_def_compute_forward_c
                                   : qkr_dft_def_compute_backward_c;
      code = entry(&handle_, x);
    } else if (in_double) {
      code = forward ? qkr_dft_def_compute_forward_dz_out(&handle_, x, y)
                     : qkr_dft_def_compute_backward_zd_out(&handle_, x, y);
    } else {
      code = forward ? qkr_dft_def_compute_forward_sc_out(&handle_, fx, fy)
                     : qkr_dft_def_compute_backward_cs_out(&handle_, fx, fy);
    }
    ASSERT_EQ(code, model_.compute(precision, domain));
  }

 public:
  explicit Sequence(uint64_t seed) : engine_(static_cast<uint32_t>((seed + 1) * 0x9e3779b97f4a7c15u >> 33)) {}
  ~Sequence() {
    if (handle_) qkr_dft_def_free_descriptor_external(&handle_);
  }
  void step() {
    // Without a descriptor now and then, so that null handles come too.
    if (!handle_ && below(4)) return create();
    const int32_t what = below(14);
    if (what < 1) return below(4) ? release() : create();
    if (what < 5) return set();
    if (what < 6) return set_scale();
    if (what < 7) return set_strides();
    if (what > 10) return compute();
    ASSERT_EQ(qkr_dft_def_commit_descriptor_external(&handle_), model_.commit());
  }
};

// QKR_MODEL_SEQUENCES=10000000 for a long look.
TEST(Model, RandomSequences) {
  const char *wanted = getenv("QKR_MODEL_SEQUENCES");
  const long sequences = wanted ? atol(wanted) : 100000;
  for (long seed = 0; seed < sequences; ++seed) {
    Sequence sequence(static_cast<uint64_t>(seed));
    for (int i = 0; i < 12 && !testing::Test::HasFatalFailure(); ++i) sequence.step();
    if (testing::Test::HasFatalFailure()) {
      ADD_FAILURE() << "in sequence " << seed;
      return;
    }
  }
}

}  // namespace
}  // namespace qkr::tests
