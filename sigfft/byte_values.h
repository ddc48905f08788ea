// The values of bytes in single precision.
#pragma once

// The middle of a table: owntablIntToFloat[i] is i, for i from -128 to 255.
extern "C" const float *const owntablIntToFloat;
