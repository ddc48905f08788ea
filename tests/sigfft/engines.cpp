#include "engines.h"

#include <random>

namespace qkr::tests {
namespace {

// A function with its own plan type as one that takes void pointers.
template <class To, class From>
To as(From f) {
  return reinterpret_cast<To>(reinterpret_cast<void (*)()>(f));
}

}  // namespace

#define QKR_PLAN(family, kind)                                                 \
  as<decltype(PlanFunctions::init_alloc)>(family##InitAlloc_##kind),           \
      as<decltype(PlanFunctions::get_buffer_size)>(family##GetBufSize_##kind), \
      as<decltype(PlanFunctions::release)>(family##Free_##kind)
#define QKR_PLAN_WITH_SIZES(family, kind) \
  QKR_PLAN(family, kind), family##GetSize_##kind, as<decltype(PlanFunctions::init)>(family##Init_##kind)
#define QKR_BOTH(type, family, name) \
  { as<type>(family##Inv_##name), as<type>(family##Fwd_##name) }
#define QKR_FORMATS(type, family, suffix)                                             \
  {                                                                                   \
    {as<type>(family##Inv_PermToR_##suffix), as<type>(family##Inv_PackToR_##suffix),  \
     as<type>(family##Inv_CCSToR_##suffix)},                                          \
    {                                                                                 \
      as<type>(family##Fwd_RToPerm_##suffix), as<type>(family##Fwd_RToPack_##suffix), \
          as<type>(family##Fwd_RToCCS_##suffix)                                       \
    }                                                                                 \
  }
#define QKR_OUT(T, family, p)                                                                               \
  QKR_BOTH(Functions<T>::Out, family, CToC_##p##fc), QKR_BOTH(Functions<T>::SplitOut, family, CToC_##p##f), \
      QKR_FORMATS(Functions<T>::Out, family, p##f)
#define QKR_POWERS_OF_TWO(T, name, family, p)                                          \
  {                                                                                    \
    name,                                                                              \
        {{QKR_PLAN_WITH_SIZES(family, C_##p##fc)},                                     \
         {QKR_PLAN_WITH_SIZES(family, C_##p##f)},                                      \
         {QKR_PLAN_WITH_SIZES(family, R_##p##f)},                                      \
         {}},                                                                          \
        QKR_OUT(T, family, p), {}, QKR_BOTH(Functions<T>::In, family, CToC_##p##fc_I), \
        QKR_BOTH(Functions<T>::SplitIn, family, CToC_##p##f_I),                        \
        QKR_FORMATS(Functions<T>::In, family, p##f_I)                                  \
  }
#define QKR_ANY_LENGTH(T, name, p)                                                             \
  {                                                                                            \
    name,                                                                                      \
        {{QKR_PLAN(w6_zprsDFT, C_##p##fc)},                                                    \
         {QKR_PLAN(w6_zprsDFT, C_##p##f)},                                                     \
         {QKR_PLAN(w6_zprsDFT, R_##p##f)},                                                     \
         {QKR_PLAN(w6_zprsDFTOutOrd, C_##p##fc)}},                                             \
        QKR_OUT(T, w6_zprsDFT, p), QKR_BOTH(Functions<T>::Out, w6_zprsDFTOutOrd, CToC_##p##fc) \
  }

const Functions<double> functions_double[3] = {QKR_POWERS_OF_TWO(double, "w6 double", w6_zprsFFT, 64),
                                               QKR_POWERS_OF_TWO(double, "plain double", zprsFFT, 64),
                                               QKR_ANY_LENGTH(double, "double", 64)};
const Functions<float> functions_single[3] = {QKR_POWERS_OF_TWO(float, "w6 single", w6_zprsFFT, 32),
                                              QKR_POWERS_OF_TWO(float, "plain single", zprsFFT, 32),
                                              QKR_ANY_LENGTH(float, "single", 32)};

std::vector<double> random_numbers(size_t count, unsigned seed) {
  std::mt19937_64 generator(seed);
  std::uniform_real_distribution<double> uniform(-1, 1);
  std::vector<double> numbers(count);
  for (double &x : numbers) x = uniform(generator);
  return numbers;
}

}  // namespace qkr::tests
