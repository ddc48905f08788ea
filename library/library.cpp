// The version, and the choice of the vector width for those who call the library.
#include <qkr/library.h>

#include "simd/level.h"

static_assert(QKR_LEVEL_SSE2 == static_cast<int>(qkr::Level::sse2) &&
              QKR_LEVEL_AVX2 == static_cast<int>(qkr::Level::avx2) &&
              QKR_LEVEL_AVX512 == static_cast<int>(qkr::Level::avx512));

extern "C" {

int32_t qkr_version(void) { return QKR_VERSION; }

int32_t qkr_level(void) { return static_cast<int32_t>(qkr::level()); }

int32_t qkr_set_level(int32_t level) {
  if (level < QKR_LEVEL_SSE2 || level > QKR_LEVEL_AVX512) return -1;
  const auto widest = static_cast<int32_t>(qkr::supported_level());
  if (level > widest) level = widest;
  qkr::force_level(static_cast<qkr::Level>(level));
  return level;
}

}  // extern "C"
