#include "tests/support/measure.h"

#include <algorithm>
#include <atomic>
#include <qkr/vecmath_control.h>
#include <thread>

#include "tests/support/oracle.h"
#include "tests/support/samples.h"

namespace qkr::tests {
namespace {

template <class T>
struct Inputs {
  std::vector<T> a, b;
  void add(T x, T y = 0) { a.push_back(x), b.push_back(y); }
};

template <class T>
Errors<T> errors_at(const Inputs<T> &inputs, const VectorFunction<T> &f) {
  const auto &[a, b] = inputs;
  std::vector<T> results[] = {a, a};
  f.entry(static_cast<int32_t>(a.size()), a.data(), b.data(), results[0].data(), results[1].data());
  Oracle<T> oracle;
  Errors<T> errors;
  errors.points = a.size();
  for (size_t i = 0; i < a.size(); ++i)
    for (int k = 0; k < f.entry.results(); ++k) {
      const T computed = results[k][i];
      const double quick = f.quick[k] ? quick_error(f.quick[k], a[i], b[i], computed) : INFINITY;
      // No function does better than 0.5; up to there it does not matter which reference has measured.
      const double worst = std::max(errors.worst_beside(computed).error, 0.5);
      const bool may_be_worst = !(quick < worst - reference_tolerance<T>), spot_check = i % 1024 == 0;
      const double error = may_be_worst || spot_check ? oracle.error(f, k, a[i], b[i], computed) : quick;
      if (f.quick[k] && error != quick)
        errors.reference_gap = std::max(errors.reference_gap, std::fabs(error - quick));
      errors.note(computed, {error, a[i], b[i]});
    }
  return errors;
}

// Of all inputs_of(part); parts are joined in their order, so threads do not matter.
template <class T, class InputsOf>
Errors<T> measure_parts(const VectorFunction<T> &f, uint64_t parts, InputsOf inputs_of) {
  std::vector<Errors<T>> of_part(parts);
  std::atomic<uint64_t> next = 0;
  const auto work = [&] {
    _vxmSetMode(VXM_MODE_IGNORE);
    for (uint64_t part; (part = next++) < parts;) of_part[part] = errors_at(inputs_of(part), f);
  };
  std::vector<std::jthread> threads(std::max(1u, std::thread::hardware_concurrency()));
  for (std::jthread &thread : threads) thread = std::jthread(work);
  for (std::jthread &thread : threads) thread.join();
  Errors<T> all;
  for (const Errors<T> &part : of_part) all.join(part);
  return all;
}

// 200 neighbours on both sides of each point; with two inputs each pair of points, and 16 neighbours.
template <class T>
Inputs<T> neighbourhoods(const VectorFunction<T> &f, const std::vector<T> &points) {
  const auto inside = [](T x, Range<T> range) { return x >= range.low && x <= range.high; };
  const bool pairs = f.entry.inputs() == 2;
  Inputs<T> inputs;
  for (T a : points)
    for (T b : pairs ? points : std::vector<T>{f.b.low})
      for (int64_t reach = pairs ? 16 : 200, step = -reach; step <= reach; ++step) {
        const T x = of_rank<T>(rank(a) + step), y = pairs ? of_rank<T>(rank(b) - step / 4) : b;
        if (inside(x, f.a) && inside(y, f.b)) inputs.add(x, y);
      }
  return inputs;
}

}  // namespace

template <class T>
Errors<T> measure(const VectorFunction<T> &f, uint64_t points) {
  constexpr uint64_t part_size = 1 << 16;
  const std::vector<T> notable = notable_points(f);
  return measure_parts(f, 1 + (points + part_size - 1) / part_size, [&](uint64_t part) {
    if (part == 0) return neighbourhoods(f, notable);
    Inputs<T> inputs;
    Random random{part << 32};
    for (uint64_t i = (part - 1) * part_size, end = std::min(points, i + part_size); i < end; ++i) {
      const T a = sample(f, f.a, notable, random);
      inputs.add(a, f.entry.inputs() == 2 ? sample(f, f.b, notable, random) : T(0));
    }
    return inputs;
  });
}
template Errors<double> measure(const VectorFunction<double> &, uint64_t);
template Errors<float> measure(const VectorFunction<float> &, uint64_t);

Errors<float> measure_all(const VectorFunction<float> &f) {
  constexpr int64_t part_size = 1 << 20;
  const int64_t first = rank(f.a.low), last = rank(f.a.high);
  return measure_parts(f, (last - first) / part_size + 1, [&](uint64_t part) {
    const int64_t begin = first + static_cast<int64_t>(part) * part_size;
    Inputs<float> inputs;
    for (int64_t i = begin; i <= std::min(last, begin + part_size - 1); ++i) inputs.add(of_rank<float>(i));
    return inputs;
  });
}

}  // namespace qkr::tests
