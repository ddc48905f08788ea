// The quarter wave that all twiddles come from.
#include "sigfft/plan/circle.h"
#include "sigfft/plan/plan_tables.h"
#include "sigfft/tables/tables.h"

namespace qkr::sigfft {

template <class T>
T *fill_base_table(int order, T *table) {
  const size_t n = size_t{1} << order, quarter = n / 4;
  if (order <= quarter_wave_order) {
    for (size_t i = 0; i < quarter; ++i) table[i] = (T)quarter_wave[i << (quarter_wave_order - order)];
    table[quarter] = 1;
  } else {
    fill_quarter_sines(n, table);
  }
  return align16(table + quarter + 1);
}

template double *fill_base_table(int, double *);
template float *fill_base_table(int, float *);

}  // namespace qkr::sigfft
