#include "any_length_engines.h"

namespace qkr::tests {
namespace {

// A function with its own plan type as one that takes void pointers.
template <class To, class From>
To as(From f) {
  return reinterpret_cast<To>(reinterpret_cast<void (*)()>(f));
}

}  // namespace

#define QKR_PLAN_ROW(family, kind)                                                           \
  {                                                                                          \
    as<decltype(AnyPlanFunctions::init_alloc)>(w6_zprs##family##InitAlloc_##kind),           \
        as<decltype(AnyPlanFunctions::get_buffer_size)>(w6_zprs##family##GetBufSize_##kind), \
        as<decltype(AnyPlanFunctions::release)>(w6_zprs##family##Free_##kind)                \
  }
#define QKR_BOTH(type, family, name) \
  { as<type>(w6_zprs##family##Inv_##name), as<type>(w6_zprs##family##Fwd_##name) }
#define QKR_REAL(p, type)                                                             \
  {                                                                                   \
    {as<type>(w6_zprsDFTInv_PermToR_##p##f), as<type>(w6_zprsDFTInv_PackToR_##p##f),  \
     as<type>(w6_zprsDFTInv_CCSToR_##p##f)},                                          \
    {                                                                                 \
      as<type>(w6_zprsDFTFwd_RToPerm_##p##f), as<type>(w6_zprsDFTFwd_RToPack_##p##f), \
          as<type>(w6_zprsDFTFwd_RToCCS_##p##f)                                       \
    }                                                                                 \
  }
#define QKR_FUNCTIONS(T, name, p)                                                                           \
  {                                                                                                         \
    name,                                                                                                   \
        {QKR_PLAN_ROW(DFT, C_##p##fc), QKR_PLAN_ROW(DFT, C_##p##f), QKR_PLAN_ROW(DFT, R_##p##f),            \
         QKR_PLAN_ROW(DFTOutOrd, C_##p##fc)},                                                               \
        QKR_BOTH(Functions<T>::Out, DFT, CToC_##p##fc), QKR_BOTH(Functions<T>::SplitOut, DFT, CToC_##p##f), \
        QKR_REAL(p, Functions<T>::Out), QKR_BOTH(Functions<T>::Out, DFTOutOrd, CToC_##p##fc)                \
  }
const AnyLengthFunctions<double> any_length_double = QKR_FUNCTIONS(double, "double", 64);
const AnyLengthFunctions<float> any_length_single = QKR_FUNCTIONS(float, "single", 32);

}  // namespace qkr::tests
