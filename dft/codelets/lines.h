// Codelets: transforms of one line of 2 to 64 numbers. Each is one call without plan or work memory, which
// scales nothing, and gives the bits of the engine's transforms.
#pragma once

#include "dft/descriptor/record.h"

namespace qkr::dft {

constexpr int largest_codelet_order = 6;

}  // namespace qkr::dft

// The codelet of 2^order numbers for this processor, from order 1 on; `format` is that of the spectrum.
extern "C" qkr::dft::LineTransform dft_complex_codelet(bool in_double, bool forward, int order);
extern "C" qkr::dft::LineTransform dft_real_codelet(bool in_double, bool forward, int order, int32_t format);
