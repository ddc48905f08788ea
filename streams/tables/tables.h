// Tables of the basic generators, made by the generators in tools/tables, whose opening comments give the rule
// of the rows.
#pragma once

#include <stdint.h>

#include "streams/internal.h"

#pragma GCC visibility push(hidden)

extern "C" {
// Member k of WH: moduli, multipliers, reciprocals of the moduli.
extern const uint32_t _vxs_WH_M[wh_members][4];
extern const uint8_t _vxs_WH_A[wh_members][4];
extern const double _vxsdWH_IM_Tab[wh_members][4];
}

#pragma GCC visibility pop
