// From the library's statuses to NumPy's floating-point errors.
//
// NumPy clears the floating-point flags before a loop and looks at them afterwards; np.errstate says what
// becomes of them. So a loop collects the statuses of its elements through an error callback, and raises
// the flags at its end. The thread's own policy (mode, callback, status word) is put aside meanwhile.
#pragma once

#include <cfenv>
#include <qkr/vecmath_control.h>

namespace qkr::ufuncs {

constexpr unsigned bit(int status) { return 1u << status; }

inline constexpr unsigned all_statuses =
    bit(VXM_STATUS_ERRDOM) | bit(VXM_STATUS_SING) | bit(VXM_STATUS_OVERFLOW) | bit(VXM_STATUS_UNDERFLOW);

// From its making to finish(), the statuses of this thread's vector functions come here.
class Collecting {
 public:
  // For functions that have no statuses `wanted` is false, and nothing is done.
  explicit Collecting(bool wanted) : wanted(wanted) {
    if (wanted) qkr_vxm_exchange_policy(&policy);
  }
  // @return what was collected, bit by bit
  unsigned finish() {
    if (!wanted) return 0;
    qkr_vxm_exchange_policy(&policy);
    if (policy.status == VXM_STATUS_OK) return 0;
    const unsigned statuses = seen;
    seen = 0;
    return statuses;
  }

 private:
  static int32_t note(VxmErrorContext *element) {
    seen |= bit(element->iCode);
    return 1;  // the element keeps its result
  }

  static inline thread_local unsigned seen = 0;
  bool wanted;
  VxmErrorPolicy policy = {VXM_MODE_CALLBACK, VXM_STATUS_OK, note};
};

inline void raise(unsigned statuses) {
  std::feraiseexcept((statuses & bit(VXM_STATUS_ERRDOM) ? FE_INVALID : 0) |
                     (statuses & bit(VXM_STATUS_SING) ? FE_DIVBYZERO : 0) |
                     (statuses & bit(VXM_STATUS_OVERFLOW) ? FE_OVERFLOW : 0) |
                     (statuses & bit(VXM_STATUS_UNDERFLOW) ? FE_UNDERFLOW : 0));
}

}  // namespace qkr::ufuncs
