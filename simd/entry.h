// Exported entries of functions that are compiled for three vector widths.
//
//   QKR_ENTRY(name, (int32_t n, const double *a, double *r), (n, a, r)) { ... }
//
// QKR_ENTRY_OF takes the type of a result first. The body becomes a function of the level's namespace. The C
// function `name`, of the baseline compilation, branches to the body of the processor's level; an indirect
// jump takes 10 ns where the kernel has them unpredicted. QKR_ENTRY_AFTER takes a statement that stands
// before and may return, in the baseline alone.
#pragma once

#include "simd/level.h"
#include "simd/vectors.h"

#ifdef QKR_ONE_LEVEL  // a build for sanitizers has the baseline alone
#define QKR_WIDE_BODIES(name, arguments)
#else
#define QKR_WIDE_BODIES(name, arguments)                                                        \
  const qkr::Level level = qkr::level();                                                        \
  if (__builtin_expect(level > qkr::Level::avx2, 1)) return qkr::avx512::name##_body arguments; \
  if (level > qkr::Level::sse2) return qkr::avx2::name##_body arguments;
#endif

#if QKR_BASELINE
#define QKR_DISPATCHER(first, result, name, parameters, arguments) \
  namespace qkr::sse2 {                                            \
  QKR_NOINLINE result name##_body parameters;                      \
  }                                                                \
  extern "C" result name parameters {                              \
    first;                                                         \
    QKR_WIDE_BODIES(name, arguments)                               \
    return qkr::sse2::name##_body arguments;                       \
  }
#else
#define QKR_DISPATCHER(first, result, name, parameters, arguments)
#endif

#define QKR_ENTRY_AFTER(first, result, name, parameters, arguments) \
  namespace qkr::sse2 {                                             \
  result name##_body parameters;                                    \
  }                                                                 \
  namespace qkr::avx2 {                                             \
  result name##_body parameters;                                    \
  }                                                                 \
  namespace qkr::avx512 {                                           \
  result name##_body parameters;                                    \
  }                                                                 \
  QKR_DISPATCHER(first, result, name, parameters, arguments)        \
  result qkr::QKR_SIMD_LEVEL::name##_body parameters

#define QKR_ENTRY_OF(result, name, parameters, arguments) \
  QKR_ENTRY_AFTER(, result, name, parameters, arguments)
#define QKR_ENTRY(name, parameters, arguments) QKR_ENTRY_OF(void, name, parameters, arguments)

// A statement for QKR_ENTRY_AFTER: a short call stays with the baseline, where all levels do the same for it.
#define QKR_STAY_IF(is_short, name, arguments) \
  if (is_short) return qkr::sse2::name##_body arguments
