// Exported entries of functions that are compiled for three vector widths.
//
//   QKR_ENTRY(name, (int32_t n, const double *a, double *r), (n, a, r)) { ... }
//
// QKR_ENTRY_OF takes the type of a result first. The body becomes a function of the level's namespace. The
// baseline compilation also gets the C function `name`, which calls the body of the processor's level: one
// indirect call. Where that costs more than the work, QKR_ENTRY_AFTER takes a statement that stands before
// it and may return; only the baseline compiles it.
#pragma once

#include "simd/level.h"
#include "simd/vectors.h"

#ifdef QKR_ONE_LEVEL  // a build for sanitizers has the baseline alone
#define QKR_BODIES(name) qkr::sse2::name##_body
#else
#define QKR_BODIES(name) qkr::sse2::name##_body, qkr::avx2::name##_body, qkr::avx512::name##_body
#endif

#if QKR_BASELINE
#define QKR_DISPATCHER(first, result, name, parameters, arguments)            \
  extern "C" result name parameters {                                         \
    first;                                                                    \
    static constexpr result(*const bodies[]) parameters = {QKR_BODIES(name)}; \
    return bodies[static_cast<unsigned>(qkr::level())] arguments;             \
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
