// The values of bytes in single precision.
#pragma once

// The middle of a table: byte_values[i] is i, for i from -128 to 255.
extern "C" const float *const byte_values;
