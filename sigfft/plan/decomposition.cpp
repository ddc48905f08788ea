// The blocks of long transforms, by order from 9 to 30: so many that a block's transform, and the columns
// that a pass takes together, stay in the cache.
#include "sigfft/plan/decomposition.h"

namespace qkr::sigfft {

const Blocking w6_blockings_64f[] = {
    {0, 0},  {0, 0},  {0, 0},  {0, 0},  {0, 0},  {0, 0},   // 9 to 14
    {3, 8},  {4, 10}, {4, 10}, {4, 10}, {6, 13}, {6, 13},  // 15 to 20
    {7, 14}, {8, 14}, {8, 14}, {8, 14}, {8, 14}, {8, 14}, {8, 14}, {8, 14}, {8, 14}, {8, 14},
};
const Blocking w6_blockings_32f[] = {
    {0, 0},  {0, 0},  {0, 0},  {0, 0},  {0, 0},  {0, 0},  {0, 0},  {0, 0},  // 9 to 16
    {3, 9},  {4, 10}, {4, 10}, {4, 10},                                     // 17 to 20
    {5, 13}, {8, 15}, {8, 15}, {8, 15}, {8, 15}, {8, 15}, {8, 15}, {8, 15}, {8, 15}, {8, 15},
};
const int8_t plain_blocks_64f[] = {0, 0, 0, 4, 5, 6, 7, 7, 8, 9, 9, 9, 8, 8, 9, 9, 9, 9, 9, 9, 9, 9};
const int8_t plain_blocks_32f[] = {0,  0,  0,  0, 5, 6,  7,  8,  8,  8,  10,
                                   10, 10, 10, 8, 8, 10, 10, 10, 10, 10, 10};

}  // namespace qkr::sigfft
