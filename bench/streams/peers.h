// What runs beside us: other libraries' generators, and every generator of ours one step at a time. Compiled
// for each level, as well as the compiler can.
#pragma once

#include <cstdint>

namespace qkr::bench {

// Fills out[0..n-1]; T is uint32_t, double or float. Each keeps a state of its own from call to call.
template <class T>
struct Peer {
  const char *generator;  // of ours that it stands beside
  const char *name;
  void (*draw)(int n, T *out);
};

struct Peers {
  const Peer<uint32_t> *words;  // up to one without a name
  const Peer<double> *doubles;
  const Peer<float> *singles;
  const Peer<uint32_t> *more_words;
  const Peer<double> *more_doubles;
};

namespace sse2 {
extern const Peers peers;
}
namespace avx2 {
extern const Peers peers;
}
namespace avx512 {
extern const Peers peers;
}

}  // namespace qkr::bench
