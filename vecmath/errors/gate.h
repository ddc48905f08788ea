// The error gate of vector math: what kernels, dispatchers, handlers and control calls share.
#pragma once

#include <qkr/vecmath_control.h>

namespace qkr {

// Where kernels report an element: _vxmdError and _vxmsError under names of our own, so that the call is
// direct. The compiler keeps live registers across it, and, as the gate is cold, treats the way there as
// unlikely.
__attribute__((cold)) void report_error(int32_t status, int32_t index, const double *a, const double *b,
                                        double *r1, double *r2, const char *name);
__attribute__((cold)) void report_error(int32_t status, int32_t index, const float *a, const float *b,
                                        float *r1, float *r2, const char *name);

// The cells of the calling thread, made at first use; null if there is no memory, which no caller tests.
// Where they are is remembered, as short vector calls and reports would notice two calls of the C library a
// look.
#define QKR_THREAD_CELL(accessor, Type)                                   \
  extern __attribute__((tls_model("initial-exec"), visibility("hidden"))) \
  QKR_THREAD_LOCAL Type *accessor##_found;                                \
  Type *accessor##_at_first();                                            \
  inline Type *accessor() { return accessor##_found ? accessor##_found : accessor##_at_first(); }
QKR_THREAD_CELL(thread_mode, VxmMode)
QKR_THREAD_CELL(thread_status, int32_t)
QKR_THREAD_CELL(thread_callback, VxmErrorCallBack)
QKR_THREAD_CELL(thread_input_vector, const void *)
#undef QKR_THREAD_CELL

// Where the calling thread collects statuses; null unless qkr_vxm_exchange_policy() has set it.
extern __attribute__((tls_model("initial-exec"))) QKR_THREAD_LOCAL uint32_t *collected_statuses;

// The handlers that the mode has switched on, in this order: errno, stderr, floating-point event.
void handle_error(VxmErrorContext *record);
// The same without stderr, where only the status counts.
void handle_unseen(int32_t code, VxmMode mode);
void set_errno(VxmErrorContext *record);
void print_error(VxmErrorContext *record);
void raise_event(VxmErrorContext *record);

// Joins at most 8, 64 and 8 characters and a terminator; returns the number of characters.
int32_t join_name(const char *prefix, const char *name, const char *suffix, char *out);

}  // namespace qkr
