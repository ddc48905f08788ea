// The standard error handlers: errno, stderr, floating-point event.
#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "vecmath/errors/gate.h"

using namespace qkr;

namespace {

struct Status {
  const char *name;
  int error;
  const char *message;
};

// What the errno handler has set outlasts the printing.
struct KeepErrno {
  const int before = errno;
  ~KeepErrno() { errno = before; }
};

constexpr const char *heading = "Error (VXM_STATUS_%s) in %s: ";

constexpr Status statuses[] = {
    {"BADMEM", EACCES, "NULL pointer is passed\n"},
    {"BADSIZE", EINVAL, "array size %d is not positive\n"},
    {nullptr, 0, nullptr},
    {"ERRDOM", EDOM, "argument is out of domain\n"},
    {"SING", ERANGE, "argument caused singularity\n"},
    {"OVERFLOW", ERANGE, "argument caused overflow\n"},
    {"UNDERFLOW", ERANGE, "argument caused underflow\n"},
};

const Status *find_status(int32_t code) {
  const bool known = code >= VXM_STATUS_BADMEM && code <= VXM_STATUS_UNDERFLOW;
  return known ? &statuses[code - VXM_STATUS_BADMEM] : nullptr;
}

// Functions of one input or result repeat it as the second one. NaNs count as equal.
bool is_second(double first, double second) { return __builtin_islessgreater(first, second) && second != 0; }

void print_values(const VxmErrorContext &record) {
  const int i = record.iIndex;
  const double a = record.dbA1, b = record.dbA2, y = record.dbR1, z = record.dbR2;
  const bool two_inputs = is_second(a, b), two_results = is_second(y, z);
  if (two_inputs && two_results)
    fprintf(stderr, "a(%d)=%g\nb(%d)=%g\ny(%d)=%g\nz(%d)=%g\n", i, a, i, b, i, y, i, z);
  else if (two_inputs) fprintf(stderr, "a(%d)=%g\nb(%d)=%g\ny(%d)=%g\n", i, a, i, b, i, y);
  else if (two_results) fprintf(stderr, "a(%d)=%g\ny(%d)=%g\nz(%d)=%g\n", i, a, i, y, i, z);
  else fprintf(stderr, "a(%d)=%g\nr(%d)=%g\n", i, a, i, y);
}

// Four doubles with their words in the wrong order: a subnormal, a quiet NaN, 0.0, a subnormal. That order is
// why an overflow raises no event.
constexpr uint32_t event_operands[8] = {0x00100000, 0x00000001, 0x7FEFFFFF, 0xFFFFFFFF, 0, 0, 0x3FF00000, 0};

}  // namespace

// A thread's errno stays where it is.
__attribute__((tls_model("initial-exec"))) static QKR_THREAD_LOCAL int *errno_found = nullptr;

static void set_errno(int32_t code) {
  const Status *status = find_status(code);
  if (!errno_found) errno_found = &errno;
  *errno_found = status ? status->error : EFAULT;
}
void qkr::set_errno(VxmErrorContext *record) { ::set_errno(record->iCode); }

void qkr::print_error(VxmErrorContext *record) {
  if (record->iCode == VXM_STATUS_OK) return;
  const KeepErrno keep_errno;
  char name[sizeof record->cFuncName + 1];
  snprintf(name, sizeof name, "%.64s", record->cFuncName);  // a name that fills its field has no terminator

  if (const Status *status = find_status(record->iCode)) {
    fprintf(stderr, heading, status->name, name);
    fprintf(stderr, status->message, record->iIndex);
    if (record->iCode < 0) return;
  } else {
    fprintf(stderr, "Unknown error in %s", name);
  }
  print_values(*record);
}

static void raise_event(int32_t code) {
  const auto element = [](int i) {
    double value;
    memcpy(&value, event_operands + 2 * i, sizeof value);
    volatile double at_run_time = value;
    return double{at_run_time};
  };
  [[maybe_unused]] volatile double event;
  switch (code) {
    case VXM_STATUS_ERRDOM:
      event = element(2) / element(2);
      break;
    case VXM_STATUS_SING:
      event = element(3) / element(2);
      break;
    case VXM_STATUS_OVERFLOW:
      event = element(1) * element(1);
      break;
    case VXM_STATUS_UNDERFLOW:
      event = element(0) * element(0);
      break;
  }
}

void qkr::raise_event(VxmErrorContext *record) { ::raise_event(record->iCode); }

void qkr::handle_unseen(int32_t code, VxmMode mode) {
  if (mode & VXM_MODE_ERRNO) ::set_errno(code);
  if (mode & VXM_MODE_EXCEPT) ::raise_event(code);
}

void qkr::handle_error(VxmErrorContext *record) {
  const VxmMode mode = *thread_mode();
  if (mode & VXM_MODE_ERRNO) set_errno(record);
  if (mode & VXM_MODE_STDERR) print_error(record);
  if (mode & VXM_MODE_EXCEPT) raise_event(record);
}
