// Lengths of all routes and borders between them: fixed code, direct sums, each factor alone and beside
// others, odd and even, one stage and several, long stages, chirps just below and above a power of two.
#pragma once

#include <cstddef>

namespace qkr::tests {

constexpr size_t sample_lengths[] = {
    1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,   13,   14,   15,   16,   18,   20,   21,  22,
    24,  25,  26,  27,  28,  30,  33,  34,  35,  39,  45,  49,   55,   60,   63,   64,   77,   91,   97,  100,
    105, 119, 121, 143, 149, 151, 169, 173, 179, 181, 187, 210,  243,  256,  257,  289,  298,  300,  302, 358,
    362, 500, 501, 502, 503, 512, 514, 625, 750, 847, 999, 1000, 1001, 1009, 1025, 1155, 1326, 1536, 2009};

}  // namespace qkr::tests
