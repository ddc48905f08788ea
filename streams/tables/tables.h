// Constant tables of the generators; the program that makes each stands in tools/tables.
#pragma once

#include <stdint.h>

extern "C" {

// matrixA, maskB, maskC of each member of MT2203.
extern const uint32_t _vxs_mt2203_table[1024][3];
}
