#pragma once

// Tables of the transforms, made by the generators in tools/tables.

#pragma GCC visibility push(hidden)

namespace qkr::sigfft {
constexpr int fixed_twiddle_order = 10;
// Row i: sin(2 pi i / 2^fixed_twiddle_order), the first quarter of the wave.
alignas(64) extern const double fft_fix_twiddle_table[256];
}  // namespace qkr::sigfft

#pragma GCC visibility pop
