#pragma once

// Tables of the transforms, made by the generators in tools/tables.

#pragma GCC visibility push(hidden)

namespace qkr::sigfft {
constexpr int quarter_wave_order = 12;
// Row i: sin(2 pi i / 2^quarter_wave_order), the first quarter of the wave.
alignas(64) extern const double quarter_wave[1024];

// Row j: cosine and sine of 2 pi j / 1024, each as a head of 26 bits and a rest.
constexpr int unit_circle_steps = 1024;
alignas(64) extern const double unit_circle[129][4];
}  // namespace qkr::sigfft

#pragma GCC visibility pop
