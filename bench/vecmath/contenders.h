// Who runs beside us: the peers' entries, looked up by name in the libraries that are loaded.
#pragma once

#include <array>
#include <dlfcn.h>
#include <string>
#include <vector>

#include "simd/level.h"
#include "vecmath/functions.h"
#include "vecmath/inputs.h"
#include "vecmath/loops.h"

namespace qkr::bench {

struct LevelNames {
  const char *ours, *sleef;
  char mvec;
};
constexpr LevelNames level_names[] = {
    {"sse2", "sse2", 'b'}, {"avx2", "avx2", 'd'}, {"avx512", "avx512f", 'e'}};

template <class T>
const Loops<T> &loops_of(Level level) {
  const int i = static_cast<int>(level);
  if constexpr (is_double<T>) return *std::array{&sse2::loops_d, &avx2::loops_d, &avx512::loops_d}[i];
  else return *std::array{&sse2::loops_s, &avx2::loops_s, &avx512::loops_s}[i];
}

template <class T>
struct Contender {
  std::string name;
  Loop<T> run;
  const void *f = nullptr, *g = nullptr;
};

inline const void *symbol(const std::string &name) { return dlsym(RTLD_DEFAULT, name.c_str()); }

template <class T>
void libm_unary(const Task<T> &t) {
  const auto f = (T(*)(T))t.f;
  for (int i = 0; i < t.n; ++i) t.r[i] = f(t.a[i]);
}
template <class T>
void libm_binary(const Task<T> &t) {
  const auto f = (T(*)(T, T))t.f;
  for (int i = 0; i < t.n; ++i) t.r[i] = f(t.a[i], t.b[i]);
}
template <class T>
void libm_two_results(const Task<T> &t) {
  const auto f = (void (*)(T, T *, T *))t.f;
  for (int i = 0; i < t.n; ++i) f(t.a[i], t.r + i, t.q + i);
}

template <class T>
Loop<T> plain_loop(const Function &function, Level level) {
  const PlainLoop<T> *loop = loops_of<T>(level).plain;
  while (loop->name && std::string(loop->name) != function.c_name) ++loop;
  return loop->run;
}

template <class T>
void add_libm(std::vector<Contender<T>> &to, const Function &function) {
  const Loop<T> by_shape[] = {libm_unary<T>, libm_binary<T>, libm_two_results<T>};
  if (const void *f = symbol(function.c_name + std::string(is_double<T> ? "" : "f")))
    to.push_back({function.inputs.library, by_shape[static_cast<int>(function.shape)], f});
}

template <class T>
void add_sleef(std::vector<Contender<T>> &to, const Function &function, Level level) {
  const Loops<T> &loops = loops_of<T>(level);
  const Loop<T> by_shape[] = {loops.unary, loops.binary, loops.two_results};
  const std::string base = "Sleef_" + std::string(function.c_name) + (is_double<T> ? 'd' : 'f') +
                           std::to_string(loops.width) + '_';
  for (const char *accuracy : {"u10", "u05", "u15", ""})
    if (const void *f = symbol(base + accuracy + level_names[static_cast<int>(level)].sleef)) {
      to.push_back({"sleef", by_shape[static_cast<int>(function.shape)], f});
      return;
    }
}

template <class T>
void add_libmvec(std::vector<Contender<T>> &to, const Function &function, Level level) {
  const Loops<T> &loops = loops_of<T>(level);
  const auto entry = [&](const char *name, const char *parameters) {
    return symbol(std::string("_ZGV") + level_names[static_cast<int>(level)].mvec + 'N' +
                  std::to_string(loops.width) + parameters + '_' + name + (is_double<T> ? "" : "f"));
  };
  const void *f = nullptr, *g = nullptr;
  if (function.shape == Shape::unary) {
    if ((f = entry(function.c_name, "v"))) to.push_back({"libmvec", loops.unary, f});
  } else if (function.shape == Shape::binary) {
    if ((f = entry(function.c_name, "vv"))) to.push_back({"libmvec", loops.binary, f});
  } else if ((f = entry(function.inputs.first, "v")) && (g = entry(function.inputs.second, "v"))) {
    to.push_back({"libmvec", loops.f_then_g, f, g});
  }
}

template <class T>
std::vector<Contender<T>> contenders(const Function &function, Level level) {
  std::vector<Contender<T>> all;
  if constexpr (is_double<T>) all.push_back({"qkr", function.ours_d});
  else all.push_back({"qkr", function.ours_s});

  // modf of C has a form of its own, and the moves stand in no library: these have plain loops beside them.
  const bool in_libraries = function.shape < Shape::two_results || function.inputs.first;
  if (in_libraries) {
    if (level == Level::sse2) add_libm(all, function);  // measured once: it does not depend on the level
    add_sleef(all, function, level);
    add_libmvec(all, function, level);
  }
  if (const Loop<T> run = plain_loop<T>(function, level)) all.push_back({"loop", run});
  return all;
}

}  // namespace qkr::bench
