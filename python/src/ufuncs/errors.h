// From the library's statuses to NumPy's floating-point errors.
//
// NumPy clears the floating-point flags before a loop and looks at them afterwards; np.errstate says what
// becomes of them. So a loop collects the statuses of its elements, and raises the flags at its end. The
// thread's own policy (mode, callback, status word) is put aside meanwhile.
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
  // The policy holds an address within.
  Collecting(const Collecting &) = delete;
  Collecting &operator=(const Collecting &) = delete;
  // Returns what was collected, bit by bit.
  unsigned finish() {
    if (wanted) qkr_vxm_exchange_policy(&policy);
    return statuses;
  }

 private:
  bool wanted;
  uint32_t statuses = 0;
  VxmErrorPolicy policy = {VXM_MODE_IGNORE, VXM_STATUS_OK, nullptr, &statuses};
};

inline void raise(unsigned statuses) {
  std::feraiseexcept((statuses & bit(VXM_STATUS_ERRDOM) ? FE_INVALID : 0) |
                     (statuses & bit(VXM_STATUS_SING) ? FE_DIVBYZERO : 0) |
                     (statuses & bit(VXM_STATUS_OVERFLOW) ? FE_OVERFLOW : 0) |
                     (statuses & bit(VXM_STATUS_UNDERFLOW) ? FE_UNDERFLOW : 0));
}

}  // namespace qkr::ufuncs
