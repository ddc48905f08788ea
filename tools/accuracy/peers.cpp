#include "tools/accuracy/peers.h"

#include <immintrin.h>
#include <math.h>
#include <string.h>

#ifdef QKR_PEER_SLEEF
#include <sleef.h>
#endif

// One line for a function: ours, theirs.
#define FUNCTIONS(PEER) \
  PEER(Exp, exp)        \
  PEER(Ln, log)         \
  PEER(Log10, log10)

#ifdef QKR_PEER_LIBMVEC
#define DECLARE(ours, theirs)                    \
  extern "C" __m256d _ZGVdN4v_##theirs(__m256d); \
  extern "C" __m256 _ZGVdN8v_##theirs##f(__m256);
FUNCTIONS(DECLARE)
#endif

namespace qkr::tools {
namespace {

using tests::either;

template <class T>
struct NativeOf {
  using type = __m256d;
};
template <>
struct NativeOf<float> {
  using type = __m256;
};

template <class T, T (*function)(T)>
void loop(int32_t n, const T *a, T *r) {
  for (int32_t i = 0; i < n; ++i) r[i] = function(a[i]);
}

template <class T, auto function>
void vector_loop(int32_t n, const T *a, T *r) {
  using V = typename NativeOf<T>::type;
  constexpr int32_t length = sizeof(V) / sizeof(T);
  for (int32_t i = 0; i < n; i += length) {
    const size_t bytes = sizeof(T) * (n - i < length ? n - i : length);
    V v = {};
    memcpy(&v, a + i, bytes);
    v = function(v);
    memcpy(r + i, &v, bytes);
  }
}

}  // namespace

template <class T>
std::vector<Peer<T>> peers() {
  std::vector<Peer<T>> all;
#define LIBM(ours, theirs)                                                             \
  all.push_back({either<T>("_vxmd" #ours "_HA", "_vxms" #ours "_HA"), "libm " #theirs, \
                 either<T>(loop<double, theirs>, loop<float, theirs##f>)});
  FUNCTIONS(LIBM)
  if (!__builtin_cpu_supports("avx2")) return all;
#define VECTOR_PEER(library, ours, theirs, in_double, in_single)                       \
  all.push_back({either<T>("_vxmd" #ours "_HA", "_vxms" #ours "_HA"), library #theirs, \
                 either<T>(vector_loop<double, in_double>, vector_loop<float, in_single>)});
#ifdef QKR_PEER_SLEEF
#define SLEEF(ours, theirs) \
  VECTOR_PEER("SLEEF u10 ", ours, theirs, Sleef_##theirs##d4_u10avx2, Sleef_##theirs##f8_u10avx2)
  FUNCTIONS(SLEEF)
#endif
#ifdef QKR_PEER_LIBMVEC
#define LIBMVEC(ours, theirs) VECTOR_PEER("libmvec ", ours, theirs, _ZGVdN4v_##theirs, _ZGVdN8v_##theirs##f)
  FUNCTIONS(LIBMVEC)
#endif
  return all;
}
template std::vector<Peer<double>> peers();
template std::vector<Peer<float>> peers();

}  // namespace qkr::tools
