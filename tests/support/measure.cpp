#include "tests/support/measure.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <qkr/vecmath_control.h>
#include <thread>
#include <utility>

#include "tests/support/oracle.h"
#include "tests/support/samples.h"

namespace qkr::tests {
namespace {

template <class T>
struct Block {
  static constexpr int capacity = 4096;
  int count = 0;
  T a[capacity], b[capacity], r[capacity], q[capacity];
};

template <class T>
class Meter {
 public:
  explicit Meter(const VectorFunction<T> &f) : f_(f) {}

  void add(T a, T b) {
    block_.a[block_.count] = a;
    block_.b[block_.count] = b;
    if (++block_.count == block_.capacity) flush();
  }

  Errors<T> take() {
    flush();
    return std::exchange(errors_, {});
  }

 private:
  void flush() {
    f_.entry(block_.count, block_.a, block_.b, block_.r, block_.q);
    for (int i = 0; i < block_.count; ++i) {
      note(0, i, block_.r[i]);
      if (f_.entry.results() == 2) note(1, i, block_.q[i]);
    }
    errors_.points += block_.count;
    block_.count = 0;
  }

  void note(int result, int i, T computed) {
    const T a = block_.a[i], b = block_.b[i];
    Worst<T> &worst =
        std::fabs(computed) < std::numeric_limits<T>::min() ? errors_.subnormal : errors_.normal;
    double error = 0;
    if (const Quick<T> &quick = f_.quick[result]) {
      error = quick_error(quick, a, b, computed);
      // No function does better than 0.5; up to there it does not matter which reference has measured.
      const bool may_be_worst = !(error < std::max(worst.error, 0.5) - reference_tolerance<T>);
      const bool spot_check = i % 1024 == 0;
      if (may_be_worst || spot_check) {
        const double checked = oracle_.error(f_, result, a, b, computed);
        if (checked != error)
          errors_.reference_gap = std::max(errors_.reference_gap, std::fabs(checked - error));
        error = checked;
      }
    } else {
      error = oracle_.error(f_, result, a, b, computed);
    }
    errors_.sum += error;
    if (error > worst.error) worst = {error, a, b};
  }

  const VectorFunction<T> &f_;
  Oracle<T> oracle_;
  Block<T> block_;
  Errors<T> errors_;
};

// fill(part, meter) feeds each part's inputs; parts are joined in their order, so threads do not matter.
template <class T, class Fill>
Errors<T> measure_parts(const VectorFunction<T> &f, uint64_t parts, Fill fill) {
  std::vector<Errors<T>> of_part(parts);
  std::atomic<uint64_t> next = 0;
  const auto work = [&] {
    _vxmSetMode(VXM_MODE_IGNORE);
    const auto meter = std::make_unique<Meter<T>>(f);
    for (uint64_t part; (part = next++) < parts;) {
      fill(part, *meter);
      of_part[part] = meter->take();
    }
  };
  {
    std::vector<std::jthread> threads;
    const uint64_t count = std::min<uint64_t>(parts, std::max(1u, std::thread::hardware_concurrency()));
    for (uint64_t i = 0; i < count; ++i) threads.emplace_back(work);
  }
  Errors<T> all;
  for (const Errors<T> &part : of_part) {
    all.sum += part.sum;
    all.points += part.points;
    all.reference_gap = std::max(all.reference_gap, part.reference_gap);
    if (part.normal.error > all.normal.error) all.normal = part.normal;
    if (part.subnormal.error > all.subnormal.error) all.subnormal = part.subnormal;
  }
  return all;
}

// 200 neighbours on both sides of each point; with two inputs each pair of points, and 16 neighbours.
template <class T>
void add_neighbourhoods(const VectorFunction<T> &f, const std::vector<T> &points, Meter<T> &meter) {
  const auto inside = [](T x, Range<T> range) { return x >= range.low && x <= range.high; };
  const bool pairs = f.entry.inputs() == 2;
  for (T a : points)
    for (T b : pairs ? points : std::vector<T>{f.b.low})
      for (int64_t reach = pairs ? 16 : 200, step = -reach; step <= reach; ++step) {
        const T x = of_rank<T>(rank(a) + step), y = pairs ? of_rank<T>(rank(b) - step / 4) : b;
        if (inside(x, f.a) && inside(y, f.b)) meter.add(x, y);
      }
}

}  // namespace

template <class T>
Errors<T> measure(const VectorFunction<T> &f, uint64_t points) {
  constexpr uint64_t part_size = 1 << 16;
  const std::vector<T> notable = notable_points(f);
  return measure_parts(f, 1 + (points + part_size - 1) / part_size, [&](uint64_t part, Meter<T> &meter) {
    if (part == 0) return add_neighbourhoods(f, notable, meter);
    Random random{part << 32};
    for (uint64_t i = (part - 1) * part_size, end = std::min(points, i + part_size); i < end; ++i) {
      const T a = sample(f, f.a, notable, random);
      meter.add(a, f.entry.inputs() == 2 ? sample(f, f.b, notable, random) : T(0));
    }
  });
}
template Errors<double> measure(const VectorFunction<double> &, uint64_t);
template Errors<float> measure(const VectorFunction<float> &, uint64_t);

Errors<float> measure_all(const VectorFunction<float> &f) {
  constexpr int64_t part_size = 1 << 20;
  const int64_t first = rank(f.a.low), last = rank(f.a.high);
  return measure_parts(f, (last - first) / part_size + 1, [&](uint64_t part, Meter<float> &meter) {
    const int64_t begin = first + static_cast<int64_t>(part) * part_size;
    for (int64_t i = begin; i <= std::min(last, begin + part_size - 1); ++i) meter.add(of_rank<float>(i), 0);
  });
}

}  // namespace qkr::tests
