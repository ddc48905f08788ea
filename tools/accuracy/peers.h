// The functions of other libraries, in the calling form of ours.
#pragma once

#include "tests/support/vector_functions.h"

namespace qkr::tools {

template <class T>
struct Peer {
  const char *function;  // ours that it stands beside
  const char *name;
  tests::Entry<T> entry;
};

// Those that were found when the tool was built and that this processor can run.
template <class T>
std::vector<Peer<T>> peers();

}  // namespace qkr::tools
