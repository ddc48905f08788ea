// Array copies, fills and conversions beside the C library's memcpy and memset.
//
//   bench_arrays [--quick] [--filter REGEX] [--benchmark_out=FILE.json ...]
//
// A benchmark is named FUNCTION/LEVEL/SIZE/CONTENDER, for instance Set_64f/avx2/4096/memset; those of the set
// without prefix begin with Plain. The size is in bytes: of the destination for copies and fills, of both
// arrays together for conversions, which stand beside a copy that reads and writes as many. bench/report.py
// makes tables and plots of the file.
#include <cstring>
#include <functional>
#include <memory>
#include <qkr/sigfft.h>

#include "run.h"
#include "simd/level.h"

namespace qkr::bench {
namespace {

constexpr const char *level_names[] = {"sse2", "avx2", "avx512"};
constexpr double block_aim = 1 / 0.95, conversion_aim = 1.3;

using Run = std::function<void(char *src, char *dst)>;
struct Row {
  const char *name;
  const char *reference;
  double aim;
  Run (*ours)(size_t size);
};

void copied(char *src, char *dst, size_t size) { memcpy(dst, src, size); }
void zeroed(char *dst, size_t size) { memset(dst, 0, size); }

#define QKR_COPY(set, label, suffix, T)                                  \
  {                                                                      \
    label "Copy_" #suffix, "memcpy", block_aim, [](size_t size) -> Run { \
      return [len = (int32_t)(size / sizeof(T))](char *src, char *dst) { \
        set##zprsCopy_##suffix((const T *)src, (T *)dst, len);           \
      };                                                                 \
    }                                                                    \
  }
#define QKR_FILL(set, label, name, suffix, T, ...)                         \
  {                                                                        \
    label #name "_" #suffix, "memset", block_aim, [](size_t size) -> Run { \
      return [len = (int32_t)(size / sizeof(T))](char *, char *dst) {      \
        set##zprs##name##_##suffix(__VA_ARGS__(T *) dst, len);             \
      };                                                                   \
    }                                                                      \
  }
#define QKR_CONVERT(suffix, S, T, ...)                                                  \
  {                                                                                     \
    "Convert_" #suffix, "copy", conversion_aim, [](size_t size) -> Run {                \
      return [len = (int32_t)(size / (sizeof(S) + sizeof(T)))](char *src, char *dst) {  \
        zprsConvert_##suffix((const S *)src, (T *)dst, len __VA_OPT__(, ) __VA_ARGS__); \
      };                                                                                \
    }                                                                                   \
  }
#define QKR_COMMA ,

const Row rows[] = {QKR_COPY(w6_, "", 8u, uint8_t),
                    QKR_COPY(w6_, "", 64fc, zpr64fc),
                    QKR_FILL(w6_, "", Zero, 64f, double),
                    QKR_FILL(w6_, "", Set, 8u, uint8_t, 7 QKR_COMMA),
                    QKR_FILL(w6_, "", Set, 16s, int16_t, 7 QKR_COMMA),
                    QKR_FILL(w6_, "", Set, 32f, float, 7 QKR_COMMA),
                    QKR_FILL(w6_, "", Set, 64f, double, 7 QKR_COMMA),
                    QKR_FILL(w6_, "", Set, 64fc, zpr64fc, zpr64fc{7 QKR_COMMA 8} QKR_COMMA),
                    QKR_COPY(, "Plain", 64f, double),
                    QKR_FILL(, "Plain", Zero, 64f, double),
                    QKR_FILL(, "Plain", Set, 64f, double, 7 QKR_COMMA),
                    QKR_CONVERT(8s32f, int8_t, float),
                    QKR_CONVERT(16s32f, int16_t, float),
                    QKR_CONVERT(32s32f, int32_t, float),
                    QKR_CONVERT(32s64f, int32_t, double),
                    QKR_CONVERT(32f8s_Sfs, float, int8_t, 1, 3),
                    QKR_CONVERT(32f8u_Sfs, float, uint8_t, 1, 3),
                    QKR_CONVERT(32f16s_Sfs, float, int16_t, 1, 3),
                    QKR_CONVERT(32f16u_Sfs, float, uint16_t, 1, 3),
                    QKR_CONVERT(32f32s_Sfs, float, int32_t, 1, 3),
                    QKR_CONVERT(64f32s_Sfs, double, int32_t, 1, 3),
                    QKR_CONVERT(16f16s_Sfs, uint16_t, int16_t, 1, 3),
                    QKR_CONVERT(16s16f, int16_t, uint16_t, 1),
                    QKR_CONVERT(16f32f, uint16_t, float),
                    QKR_CONVERT(32f16f, float, uint16_t, 1)};

// Pages that are there; the destination starts elsewhere in a page than the source.
constexpr size_t largest = size_t{256} << 20;
char *area(int which) {
  static const auto memory = std::make_unique<char[]>(2 * largest + 8192);
  char *const start = memory.get() + (-(size_t)memory.get() & 4095);
  return which ? start + largest + 2048 : start;
}

void add_benchmark(const std::string &name, const std::regex &filter, Run run, size_t size, int level,
                   double aim) {
  if (!std::regex_search(name, filter)) return;
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
    force_level((Level)level);
    for (auto _ : state) {
      run(area(0), area(1));
      benchmark::ClobberMemory();
    }
    state.counters["elements"] = (double)size;
    if (aim) state.counters["aim"] = aim;
    else state.counters["reference"] = 1;
  });
}

// Short ones step by step: there the way into a function counts.
const size_t sizes[] = {64,      96,      128,     200,     256,     400,     512,     1000,   4096,
                        1 << 14, 1 << 16, 1 << 18, 1 << 20, 1 << 22, 1 << 24, 1 << 26, largest};

void add_benchmarks(bool quick, const std::regex &filter) {
  for (const Row &row : rows)
    for (const size_t size : sizes) {
      if (quick && size > 1 << 20) break;
      const std::string function = row.name, of_size = '/' + std::to_string(size) + '/';
      Run reference;
      if (row.reference == std::string("memset")) reference = [=](char *, char *dst) { zeroed(dst, size); };
      else if (row.aim == block_aim) reference = [=](char *src, char *dst) { copied(src, dst, size); };
      else reference = [=](char *src, char *dst) { copied(src, dst, size / 2); };
      add_benchmark(function + "/any" + of_size + row.reference, filter, reference, size, 0, 0);
      for (int level = 0; level <= (int)supported_level(); ++level)
        add_benchmark(function + '/' + level_names[level] + of_size + "qkr", filter, row.ours(size), size,
                      level, row.aim);
    }
}

}  // namespace
}  // namespace qkr::bench

int main(int argc, char **argv) { return qkr::bench::run(argc, argv, qkr::bench::add_benchmarks); }
