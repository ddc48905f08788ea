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

#define QKR_PLAN_ROW(prefix, kind)                                                                \
  {                                                                                               \
    prefix##zprsFFTGetSize_##kind, as<decltype(PlanFunctions::init)>(prefix##zprsFFTInit_##kind), \
        as<decltype(PlanFunctions::init_alloc)>(prefix##zprsFFTInitAlloc_##kind),                 \
        as<decltype(PlanFunctions::get_buffer_size)>(prefix##zprsFFTGetBufSize_##kind),           \
        as<decltype(PlanFunctions::release)>(prefix##zprsFFTFree_##kind)                          \
  }
#define QKR_BOTH(type, prefix, name) \
  { as<type>(prefix##zprsFFTInv_##name), as<type>(prefix##zprsFFTFwd_##name) }
#define QKR_FORMATS(type, prefix, p, suffix)                                                              \
  {                                                                                                       \
    {as<type>(prefix##zprsFFTInv_PermToR_##p##suffix), as<type>(prefix##zprsFFTInv_PackToR_##p##suffix),  \
     as<type>(prefix##zprsFFTInv_CCSToR_##p##suffix)},                                                    \
    {                                                                                                     \
      as<type>(prefix##zprsFFTFwd_RToPerm_##p##suffix), as<type>(prefix##zprsFFTFwd_RToPack_##p##suffix), \
          as<type>(prefix##zprsFFTFwd_RToCCS_##p##suffix)                                                 \
    }                                                                                                     \
  }
#define QKR_FUNCTIONS(T, name, prefix, p)                                                                    \
  {                                                                                                          \
    name, {QKR_PLAN_ROW(prefix, C_##p##fc), QKR_PLAN_ROW(prefix, C_##p##f), QKR_PLAN_ROW(prefix, R_##p##f)}, \
        QKR_BOTH(Functions<T>::Out, prefix, CToC_##p##fc),                                                   \
        QKR_BOTH(Functions<T>::In, prefix, CToC_##p##fc_I),                                                  \
        QKR_BOTH(Functions<T>::SplitOut, prefix, CToC_##p##f),                                               \
        QKR_BOTH(Functions<T>::SplitIn, prefix, CToC_##p##f_I),                                              \
        QKR_FORMATS(Functions<T>::Out, prefix, p, f), QKR_FORMATS(Functions<T>::In, prefix, p, f_I)          \
  }

const Functions<double> functions_double[2] = {QKR_FUNCTIONS(double, "w6 double", w6_, 64),
                                               QKR_FUNCTIONS(double, "plain double", , 64)};
const Functions<float> functions_single[2] = {QKR_FUNCTIONS(float, "w6 single", w6_, 32),
                                              QKR_FUNCTIONS(float, "plain single", , 32)};

std::vector<double> random_numbers(size_t count, unsigned seed) {
  std::mt19937_64 generator(seed);
  std::uniform_real_distribution<double> uniform(-1, 1);
  std::vector<double> numbers(count);
  for (double &x : numbers) x = uniform(generator);
  return numbers;
}

}  // namespace qkr::tests
