/* From the library's statuses to NumPy's floating-point errors.
 *
 * NumPy clears the floating-point flags before a loop and looks at them afterwards; np.errstate says what becomes of
 * them. So a loop collects the statuses of its elements through an error callback, and raises the flags at its end. The
 * thread's own policy (mode, callback, status word) is put aside meanwhile. */
#ifndef QKR_PYTHON_UFUNCS_ERRORS_H
#define QKR_PYTHON_UFUNCS_ERRORS_H

#include <cfenv>
#include <qkr/vecmath_control.h>

namespace qkr::ufuncs {

constexpr unsigned bit(int status) { return 1u << status; }

inline constexpr unsigned all_statuses =
    bit(VXM_STATUS_ERRDOM) | bit(VXM_STATUS_SING) | bit(VXM_STATUS_OVERFLOW) | bit(VXM_STATUS_UNDERFLOW);

class Reporting {
 public:
  /* `reported` are the statuses that become errors, bit by bit; 0 for functions that have none. */
  explicit Reporting(unsigned reported) : reported(reported) {
    if (!reported) return;
    qkr_vxm_exchange_policy(&policy);
  }
  ~Reporting() {
    if (!reported) return;
    qkr_vxm_exchange_policy(&policy);
    if (policy.status == VXM_STATUS_OK) return;
    raise(seen & reported);
    seen = 0;
  }
  Reporting(const Reporting &) = delete;
  Reporting &operator=(const Reporting &) = delete;

 private:
  static int32_t note(VxmErrorContext *element) {
    seen |= bit(element->iCode);
    return 1; /* the element keeps its result */
  }
  static void raise(unsigned statuses) {
    std::feraiseexcept((statuses & bit(VXM_STATUS_ERRDOM) ? FE_INVALID : 0) |
                       (statuses & bit(VXM_STATUS_SING) ? FE_DIVBYZERO : 0) |
                       (statuses & bit(VXM_STATUS_OVERFLOW) ? FE_OVERFLOW : 0) |
                       (statuses & bit(VXM_STATUS_UNDERFLOW) ? FE_UNDERFLOW : 0));
  }

  static inline thread_local unsigned seen;
  unsigned reported;
  VxmErrorPolicy policy = {VXM_MODE_CALLBACK, VXM_STATUS_OK, note};
};

}  // namespace qkr::ufuncs

#endif
