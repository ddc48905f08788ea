// Plans: their sizes, how they are built, in memory of their own or of the caller, and released.
#include <math.h>
#include <string.h>

#include "sigfft/arrays/memory.h"
#include "sigfft/plan/plan_tables.h"

namespace qkr::sigfft {
namespace {

// Bytes: of the twiddle tables, of scratch memory to fill them, of work buffer for a transform.
struct Sizes {
  size_t twiddles, scratch, work;
};

template <class T>
constexpr size_t complex_bytes(size_t count) {
  return align16(count * 2 * sizeof(T));
}
constexpr size_t reversal_bytes(int order) {
  return align16(((size_t{1} << order) / 4 + 1) * sizeof(uint32_t));
}
template <class T>
constexpr size_t base_bytes(int order) {
  return align16(((size_t{1} << order) / 4 + 1) * sizeof(T));
}
template <class T>
constexpr size_t real_table_bytes(int order) {
  return complex_bytes<T>((size_t{1} << order) / 4);
}

constexpr size_t larger(size_t a, size_t b) { return a > b ? a : b; }

template <EntrySet set, class T>
Sizes complex_sizes(int order) {
  constexpr int staged = largest_staged_order<set, T>;
  const size_t n = size_t{1} << order;
  if (order <= staged) return {complex_bytes<T>(n + 1), 0, set == EntrySet::w6 ? complex_bytes<T>(n) : 0};

  if constexpr (set == EntrySet::w6) {
    const Blocking blocking = w6_blocking<T>(order);
    Sizes sizes = complex_sizes<set, T>(order - blocking.blocks);
    sizes.twiddles += complex_bytes<T>(n);
    sizes.work = larger(sizes.work, complex_bytes<T>(size_t{1} << blocking.buffer));
    if (order >= first_tiled_order<T>)
      sizes.work = larger(sizes.work, complex_bytes<T>(size_t{2} << (2 * tile_bits)));
    return sizes;
  } else {
    const int blocks = plain_blocks<T>(order);
    if (!blocks) return {complex_bytes<T>(n / 4) + complex_bytes<T>((size_t{1} << staged) + 1), 0, 0};
    // Four columns across the blocks are worked on together.
    const size_t columns = complex_bytes<T>(size_t{4} << blocks);
    Sizes sizes = complex_sizes<set, T>(order - blocks);
    sizes.twiddles += complex_bytes<T>(n) + complex_bytes<T>((size_t{1} << blocks) + 1);
    sizes.scratch += columns + reversal_bytes(blocks);
    sizes.work = larger(sizes.work, columns);
    return sizes;
  }
}

// The tables of a plan lie one behind the other.
struct TableMemory {
  char *next;
  size_t alignment;
  void *take(size_t bytes) {
    char *const table = next;
    next += round_up(bytes, alignment);
    return table;
  }
};

constexpr bool is_real(int32_t id) { return id == id_R_32f || id == id_R_64f; }
constexpr bool valid_order(int32_t order) { return order >= 0 && order <= largest_order; }
constexpr bool valid_flag(int32_t flag) { return flag == 1 || flag == 2 || flag == 4 || flag == 8; }

template <EntrySet set, class T>
void start_plan(Plan<T> *plan, int32_t id, int32_t order, int32_t hint, bool owned) {
  memset(plan, 0, sizeof *plan);
  plan->set = set;
  plan->id = id;
  plan->order = order;
  plan->hint = hint;
  plan->owned = owned;
}

template <class T>
void set_normalisation(Plan<T> *plan, int32_t flag) {
  const double n = (double)(size_t{1} << plan->order);
  plan->forward_norm = flag == 1 || flag == 4;
  plan->inverse_norm = flag == 2 || flag == 4;
  if (flag != 8) plan->norm_factor = flag == 4 ? (T)(1 / sqrt(n)) : 1 / (T)n;
}

// Bytes of all tables.
template <EntrySet set, class T>
size_t tables_bytes(int32_t id, int order, size_t alignment) {
  const int complex_order = order - is_real(id);
  return round_up(reversal_bytes(complex_order), alignment) +
         round_up(complex_sizes<set, T>(complex_order).twiddles, alignment) +
         (is_real(id) ? 2 * round_up(real_table_bytes<T>(order), alignment) : 0);
}

template <EntrySet set, class T>
void make_tables(Plan<T> *plan, const T *base, TableMemory memory) {
  const int order = plan->order, complex_order = order - is_real(plan->id);
  const bool staged = complex_order <= largest_staged_order<set, T>;
  const Sizes sizes = complex_sizes<set, T>(complex_order);
  plan->work_bytes = (int32_t)sizes.work;

  plan->reversal = (uint32_t *)memory.take(reversal_bytes(complex_order));
  plan->twiddles = (T *)memory.take(sizes.twiddles);
  if (set == EntrySet::plain) fill_reversal_pairs(complex_order, plan->reversal);
  else if (staged || complex_order < first_tiled_order<T>) fill_reversal(complex_order, plan->reversal);
  else fill_reversal_tiles(complex_order, tile_bits, plan->reversal);
  if (staged) fill_staged_table<set>(complex_order, base, order, plan->twiddles);
  else fill_large_tables<set>(*plan, complex_order, base, order, plan->twiddles);
  if (!is_real(plan->id)) return;

  plan->forward_real = (T *)memory.take(real_table_bytes<T>(order));
  plan->inverse_real = (T *)memory.take(real_table_bytes<T>(order));
  fill_forward_real_table<set>(order, base, plan->forward_real);
  fill_inverse_real_table<set>(order, base, plan->inverse_real);
}

template <class T>
void release_plan(Plan<T> *plan) {
  plan->id = 0;
  if (plan->owned) release_block(plan);
}

template <EntrySet set, class T>
zprStatus init_alloc(int32_t id, Plan<T> **out, int32_t order, int32_t flag, int32_t hint) {
  if (!out) return zprStsNullPtrErr;
  if (!valid_order(order)) return zprStsFftOrderErr;
  const bool has_tables = valid_flag(flag) && order > largest_fixed_order;
  constexpr size_t alignment = best_alignment, record = round_up(sizeof(Plan<T>), alignment);
  const auto plan =
      (Plan<T> *)allocate_block(record + (has_tables ? tables_bytes<set, T>(id, order, alignment) : 0));
  if (!plan) return zprStsMemAllocErr;
  start_plan<set>(plan, id, order, hint, true);
  if (!valid_flag(flag)) return release_plan(plan), zprStsFftFlagErr;
  set_normalisation(plan, flag);
  if (has_tables) {
    const auto base = (T *)allocate_block(base_bytes<T>(order));
    if (!base) return release_plan(plan), zprStsMemAllocErr;
    fill_base_table(order, base);
    make_tables<set>(plan, base, {(char *)plan + record, alignment});
    release_block(base);
  }
  *out = plan;
  return zprStsNoErr;
}

template <EntrySet set, class T>
zprStatus init(int32_t id, Plan<T> **out, int32_t order, int32_t flag, int32_t hint, uint8_t *spec_memory,
               uint8_t *init_buffer) {
  if (!out) return zprStsNullPtrErr;
  if (!valid_order(order)) return zprStsFftOrderErr;
  if (!spec_memory) return zprStsNullPtrErr;
  if (!valid_flag(flag)) return zprStsFftFlagErr;
  if (order > largest_fixed_order && !init_buffer) return zprStsNullPtrErr;
  const auto plan = (Plan<T> *)align16(spec_memory);
  start_plan<set>(plan, id, order, hint, false);
  set_normalisation(plan, flag);
  if (order > largest_fixed_order) {
    const auto base = (T *)align16(init_buffer);
    fill_base_table(order, base);
    make_tables<set>(plan, base, {(char *)plan + align16(sizeof *plan), 16});
  }
  *out = plan;
  return zprStsNoErr;
}

template <EntrySet set, class T>
zprStatus get_size(int32_t id, int32_t order, int32_t flag, int32_t *spec_size, int32_t *init_size,
                   int32_t *work_size) {
  if (!valid_order(order)) return zprStsFftOrderErr;
  if (!spec_size || !init_size || !work_size) return zprStsNullPtrErr;
  if (!valid_flag(flag)) return zprStsFftFlagErr;
  constexpr size_t rounding = 16;  // of the caller's pointers
  constexpr size_t record = (is_double<T> ? 136 : 128) + rounding;
  static_assert(sizeof(Plan<T>) + rounding <= record);
  size_t spec = record, scratch = 0, work = 0;
  if (order > largest_fixed_order) {
    const Sizes sizes = complex_sizes<set, T>(order - is_real(id));
    spec = align16(record) + tables_bytes<set, T>(id, order, 16);
    scratch = sizes.scratch + base_bytes<T>(order) + rounding;
    work = sizes.work ? sizes.work + rounding : 0;
  }
  if (spec > INT32_MAX || scratch > INT32_MAX) return zprStsSizeErr;
  *spec_size = (int32_t)spec;
  *init_size = (int32_t)scratch;
  *work_size = (int32_t)work;
  return zprStsNoErr;
}

template <EntrySet set, class T>
zprStatus get_buffer_size(int32_t id, const Plan<T> *plan, int32_t *size) {
  if (!plan || !size) return zprStsNullPtrErr;
  if (!is_of<set>(plan, id)) return zprStsContextMatchErr;
  *size = plan->work_bytes < 1 ? 0 : plan->work_bytes + 16;
  return zprStsNoErr;
}

template <EntrySet set, class T>
zprStatus free_plan(int32_t id, Plan<T> *plan) {
  if (!plan) return zprStsNullPtrErr;
  if (!is_of<set>(plan, id)) return zprStsContextMatchErr;
  release_plan(plan);
  return zprStsNoErr;
}

}  // namespace
}  // namespace qkr::sigfft

using namespace qkr::sigfft;

#define QKR_PLAN(set, kind, T, get_size_name, init_name, init_alloc_name, get_buffer_size_name, free_name) \
  zprStatus get_size_name(int32_t order, int32_t flag, int32_t, int32_t *spec_size, int32_t *init_size,    \
                          int32_t *work_size) {                                                            \
    return get_size<EntrySet::set, T>(id_##kind, order, flag, spec_size, init_size, work_size);            \
  }                                                                                                        \
  zprStatus init_name(zprsFFTSpec_##kind **plan, int32_t order, int32_t flag, int32_t hint,                \
                      uint8_t *spec_memory, uint8_t *init_buffer) {                                        \
    return init<EntrySet::set>(id_##kind, (Plan<T> **)plan, order, flag, hint, spec_memory, init_buffer);  \
  }                                                                                                        \
  zprStatus init_alloc_name(zprsFFTSpec_##kind **plan, int32_t order, int32_t flag, int32_t hint) {        \
    return init_alloc<EntrySet::set>(id_##kind, (Plan<T> **)plan, order, flag, hint);                      \
  }                                                                                                        \
  zprStatus get_buffer_size_name(const zprsFFTSpec_##kind *plan, int32_t *size) {                          \
    return get_buffer_size<EntrySet::set>(id_##kind, (const Plan<T> *)plan, size);                         \
  }                                                                                                        \
  zprStatus free_name(zprsFFTSpec_##kind *plan) {                                                          \
    return free_plan<EntrySet::set>(id_##kind, (Plan<T> *)plan);                                           \
  }
QKR_PLAN(w6, C_32fc, float, w6_zprsFFTGetSize_C_32fc, w6_zprsFFTInit_C_32fc, w6_zprsFFTInitAlloc_C_32fc,
         w6_zprsFFTGetBufSize_C_32fc, w6_zprsFFTFree_C_32fc)
QKR_PLAN(w6, C_32f, float, w6_zprsFFTGetSize_C_32f, w6_zprsFFTInit_C_32f, w6_zprsFFTInitAlloc_C_32f,
         w6_zprsFFTGetBufSize_C_32f, w6_zprsFFTFree_C_32f)
QKR_PLAN(w6, R_32f, float, w6_zprsFFTGetSize_R_32f, w6_zprsFFTInit_R_32f, w6_zprsFFTInitAlloc_R_32f,
         w6_zprsFFTGetBufSize_R_32f, w6_zprsFFTFree_R_32f)
QKR_PLAN(w6, C_64fc, double, w6_zprsFFTGetSize_C_64fc, w6_zprsFFTInit_C_64fc, w6_zprsFFTInitAlloc_C_64fc,
         w6_zprsFFTGetBufSize_C_64fc, w6_zprsFFTFree_C_64fc)
QKR_PLAN(w6, C_64f, double, w6_zprsFFTGetSize_C_64f, w6_zprsFFTInit_C_64f, w6_zprsFFTInitAlloc_C_64f,
         w6_zprsFFTGetBufSize_C_64f, w6_zprsFFTFree_C_64f)
QKR_PLAN(w6, R_64f, double, w6_zprsFFTGetSize_R_64f, w6_zprsFFTInit_R_64f, w6_zprsFFTInitAlloc_R_64f,
         w6_zprsFFTGetBufSize_R_64f, w6_zprsFFTFree_R_64f)
QKR_PLAN(plain, C_32fc, float, zprsFFTGetSize_C_32fc, zprsFFTInit_C_32fc, zprsFFTInitAlloc_C_32fc,
         zprsFFTGetBufSize_C_32fc, zprsFFTFree_C_32fc)
QKR_PLAN(plain, C_32f, float, zprsFFTGetSize_C_32f, zprsFFTInit_C_32f, zprsFFTInitAlloc_C_32f,
         zprsFFTGetBufSize_C_32f, zprsFFTFree_C_32f)
QKR_PLAN(plain, R_32f, float, zprsFFTGetSize_R_32f, zprsFFTInit_R_32f, zprsFFTInitAlloc_R_32f,
         zprsFFTGetBufSize_R_32f, zprsFFTFree_R_32f)
QKR_PLAN(plain, C_64fc, double, zprsFFTGetSize_C_64fc, zprsFFTInit_C_64fc, zprsFFTInitAlloc_C_64fc,
         zprsFFTGetBufSize_C_64fc, zprsFFTFree_C_64fc)
QKR_PLAN(plain, C_64f, double, zprsFFTGetSize_C_64f, zprsFFTInit_C_64f, zprsFFTInitAlloc_C_64f,
         zprsFFTGetBufSize_C_64f, zprsFFTFree_C_64f)
QKR_PLAN(plain, R_64f, double, zprsFFTGetSize_R_64f, zprsFFTInit_R_64f, zprsFFTInitAlloc_R_64f,
         zprsFFTGetBufSize_R_64f, zprsFFTFree_R_64f)
