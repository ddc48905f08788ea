// Complex vector functions beside those of the C library.
#pragma once

#include <regex>

namespace qkr::bench {

void add_complex_benchmarks(bool quick, const std::regex &filter);

}  // namespace qkr::bench
