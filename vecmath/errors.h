// The error gate of vector math: what kernels, dispatchers, handlers and control calls share.
#pragma once

#include <qkr/vecmath_control.h>

extern "C" {

// Where kernels report an element: _vxmdError and _vxmsError under names of our own, so that the call is
// direct. The compiler keeps live registers across it, and, as the gate is cold, treats the way there as
// unlikely.
__attribute__((cold)) void _vxmdErrorGate(int32_t status, int32_t index, const double *a, const double *b,
                                          double *r1, double *r2, const char *name);
__attribute__((cold)) void _vxmsErrorGate(int32_t status, int32_t index, const float *a, const float *b,
                                          float *r1, float *r2, const char *name);

// The cells of the calling thread, made at first use; null if there is no memory, which no caller tests.
VxmMode *_GetMode();
int32_t *_GetErrStatus();
VxmErrorCallBack *_GetCallBack();
const void **_GetInputVectorPointer();

// The handlers that the mode has switched on, in this order: errno, stderr, floating-point event.
void _vxmStdErrorHandler(VxmErrorContext *record);
void _vxmStdErrorHandlerErrno(VxmErrorContext *record);
void _vxmStdErrorHandlerStderr(VxmErrorContext *record);
void _vxmStdErrorHandlerExcept(VxmErrorContext *record);

extern const char *_vxmStrErrStatusHeading;
extern const uint32_t _vxmdSpecialTab[8];

// Joins at most 8, 64 and 8 characters and a terminator; returns the number of characters.
int32_t _vxmCreateFuncNameStr(const char *prefix, const char *name, const char *suffix, char *out);
}
