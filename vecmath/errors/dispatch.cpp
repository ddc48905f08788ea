// The dispatchers: the one way by which vector functions report a bad element.
#include <bit>
#include <string.h>

#include "vecmath/errors/gate.h"

using namespace qkr;

namespace {

// A name of 64 characters has its terminator in the first byte of the length, which is stored after it.
static_assert(offsetof(VxmErrorContext, iFuncNameLen) ==
              offsetof(VxmErrorContext, cFuncName) + sizeof VxmErrorContext::cFuncName);

// Three bits without a function count beside VXM_MODE_CALLBACK.
constexpr int32_t callback_bits = 0xF000, handler_bits = VXM_MODE_ERRORS & ~callback_bits;

// Whole elements from `from` to `to`, rounded downward.
template <typename Real>
int64_t distance(const void *from, const Real *to) {
  const uintptr_t bytes = reinterpret_cast<uintptr_t>(to) - reinterpret_cast<uintptr_t>(from);
  return static_cast<int64_t>(bytes) >> std::countr_zero(sizeof(Real));
}

// The mode is read anew before each decision: the callback may have changed it.
template <typename Real>
void dispatch(int32_t status, int32_t index, const Real *a, const Real *b, Real *r1, Real *r2,
              const char *name) {
  *thread_status() = status;
  if (collected_statuses) *collected_statuses |= 1u << (status & 31);
  const VxmMode mode = *thread_mode();
  if ((mode & VXM_MODE_ERRORS) == VXM_MODE_IGNORE) return;
  // Without anybody to look at the record it need not be filled.
  if (!(mode & VXM_MODE_STDERR) && !((mode & callback_bits) && *thread_callback()))
    return handle_unseen(status, mode);

  VxmErrorContext record = {};
  record.iCode = status;
  record.iIndex = index;
  if (const void *whole = *thread_input_vector())
    record.iIndex = static_cast<int32_t>(index + distance(whole, a));
  char *name_field = reinterpret_cast<char *>(&record) + offsetof(VxmErrorContext, cFuncName);
  record.iFuncNameLen = join_name("", name, "", name_field);

  const bool has_element = status != VXM_STATUS_BADSIZE && status != VXM_STATUS_BADMEM;
  if (has_element) {
    record.dbA1 = a[index];
    record.dbA2 = b[index];
    record.dbR1 = r1[index];
    record.dbR2 = r2[index];
  }
  if (*thread_mode() & callback_bits) {
    const VxmErrorCallBack callback = *thread_callback();
    if (callback && callback(&record) != 0) return;
  }
  if (*thread_mode() & handler_bits) handle_error(&record);
  if (has_element) {  // the first result last: it wins where both are one vector
    r2[index] = static_cast<Real>(record.dbR2);
    r1[index] = static_cast<Real>(record.dbR1);
  }
}

}  // namespace

int32_t qkr::join_name(const char *prefix, const char *name, const char *suffix, char *out) {
  const struct {
    const char *text;
    int limit;
  } parts[] = {{prefix, 8}, {name, 64}, {suffix, 8}};
  int32_t length = 0;
  for (const auto &part : parts)
    for (int i = 0; i < part.limit && part.text[i]; ++i) out[length++] = part.text[i];
  out[length] = 0;
  return length;
}

extern "C" {

size_t qkr_vxm_service_strlen1(const char *s) { return strlen(s); }

int32_t qkr_vxm_service_strcat1(const char *a, const char *b, char *out) {
  const size_t length_a = strlen(a), length_b = strlen(b);
  memmove(out, a, length_a);
  memcpy(out + length_a, b, length_b);
  out[length_a + length_b] = 0;
  return static_cast<int32_t>(length_a + length_b);
}

void _vxmdError(int32_t status, int32_t index, const double *a, const double *b, double *r1, double *r2,
                const char *name) {
  dispatch(status, index, a, b, r1, r2, name);
}
void _vxmsError(int32_t status, int32_t index, const float *a, const float *b, float *r1, float *r2,
                const char *name) {
  dispatch(status, index, a, b, r1, r2, name);
}

}  // extern "C"

void qkr::report_error(int32_t status, int32_t index, const double *a, const double *b, double *r1,
                       double *r2, const char *name) {
  dispatch(status, index, a, b, r1, r2, name);
}
void qkr::report_error(int32_t status, int32_t index, const float *a, const float *b, float *r1, float *r2,
                       const char *name) {
  dispatch(status, index, a, b, r1, r2, name);
}
