// The registry of basic generators: a legacy table, and the current one, which users extend.
#include <qkr/streams_generators.h>

#include "streams/internal.h"
#include "streams/tables/tables.h"

namespace qkr {
namespace {

// StateSize, SeedWords, IncludesZero, WordSize, Bits, InitStream, sBrng, dBrng, iBrng
constexpr BrngRecord mcg31m1_row = {
    24, 1, 0, 4, 31, __vxsBRngMCG31M1InitStream, __vxssBRngMCG31M1, __vxsdBRngMCG31M1, __vxsiBRngMCG31M1};
constexpr BrngRecord r250_row = {
    1024, 252, 1, 4, 32, __vxsBRngR250InitStream, __vxssBRngR250, __vxsdBRngR250, __vxsiBRngR250};
constexpr BrngRecord mrg32k3a_row = {
    40, 6, 1, 4, 32, __vxsBRngMRG32K3AInitStream, __vxssBRngMRG32K3A, __vxsdBRngMRG32K3A, __vxsiBRngMRG32K3A};
constexpr BrngRecord mcg59_row = {
    32, 1, 0, 8, 59, __vxsBRngMCG59InitStream, __vxssBRngMCG59, __vxsdBRngMCG59, __vxsiBRngMCG59};
constexpr BrngRecord wh_row = {48,           4,           1, 16, 24, __vxsBRngWHInitStream, __vxssBRngWH,
                               __vxsdBRngWH, __vxsiBRngWH};
constexpr BrngRecord sobol_row = {
    5472, 1324, 0, 4, 32, __vxsBRngSobolInitStream, __vxssBRngSobol, __vxsdBRngSobol, __vxsiBRngSobol};
constexpr BrngRecord niederr_row = {43280,
                                    10498,
                                    0,
                                    4,
                                    32,
                                    __vxsBRngNiederrInitStream,
                                    __vxssBRngNiederr,
                                    __vxsdBRngNiederr,
                                    __vxsiBRngNiederr};
constexpr BrngRecord mt19937_row = {
    2520, 625, 1, 4, 32, __vxsBRngMT19937InitStream, __vxssBRngMT19937, __vxsdBRngMT19937, __vxsiBRngMT19937};
constexpr BrngRecord mt2203_row = {
    312, 70, 1, 4, 32, __vxsBRngMT2203InitStream, __vxssBRngMT2203, __vxsdBRngMT2203, __vxsiBRngMT2203};
constexpr BrngRecord i_abstract_row = {48,
                                       0,
                                       1,
                                       4,
                                       32,
                                       __vxsBRngiAbstractInitStream,
                                       __vxssBRngiAbstract,
                                       __vxsdBRngiAbstract,
                                       __vxsiBRngiAbstract};
constexpr BrngRecord d_abstract_row = {64,
                                       0,
                                       1,
                                       4,
                                       32,
                                       __vxsBRngdAbstractInitStream,
                                       __vxssBRngdAbstract,
                                       __vxsdBRngdAbstract,
                                       __vxsiBRngdAbstract};
constexpr BrngRecord s_abstract_row = {56,
                                       0,
                                       1,
                                       4,
                                       32,
                                       __vxsBRngsAbstractInitStream,
                                       __vxssBRngsAbstract,
                                       __vxsdBRngsAbstract,
                                       __vxsiBRngsAbstract};

constexpr int32_t row_shift = 20;
constexpr int32_t first_current_id = 1 << row_shift;
constexpr int32_t first_legacy_wh = 4;  // ids 4 to 276 are the members of WH

constexpr LegacyTable make_legacy_table() {
  LegacyTable table = {{mcg31m1_row, r250_row, mrg32k3a_row, mcg59_row}};
  for (int row = first_legacy_wh; row < first_legacy_wh + wichmann_hill::members; ++row)
    table.rows[row] = wh_row;
  table.rows[first_legacy_wh + wichmann_hill::members] = sobol_row;
  table.rows[first_legacy_wh + wichmann_hill::members + 1] = niederr_row;
  return table;
}

}  // namespace

constinit const LegacyTable legacy_generators = make_legacy_table();

BrngRecord current_generators[current_rows] = {mcg31m1_row, r250_row,       mrg32k3a_row,   mcg59_row,
                                               wh_row,      sobol_row,      niederr_row,    mt19937_row,
                                               mt2203_row,  i_abstract_row, d_abstract_row, s_abstract_row};
int32_t family_sizes[current_rows] = {1, 1, 1, 1, wichmann_hill::members, 1, 1, 1, mt2203::members, 1, 1, 1};
int32_t current_generator_count = 12;

}  // namespace qkr

using namespace qkr;

namespace {

// Other threads may look while one registers: a row counts once it is whole.
int32_t registered_rows() { return __atomic_load_n(&current_generator_count, __ATOMIC_ACQUIRE); }

}  // namespace

extern "C" {

const BrngRecord *__vxsGetBrngBaseOffset(int32_t id, int32_t *row, int32_t *member) {
  if (id >= first_current_id) {
    *row = (id >> row_shift) - 1;
    *member = id & (first_current_id - 1);
    return current_generators;
  }
  const bool is_wh = id >= first_legacy_wh && id < first_legacy_wh + wichmann_hill::members;
  *row = is_wh ? first_legacy_wh : id;
  *member = is_wh ? id - first_legacy_wh : 0;
  return legacy_generators.rows;
}

int32_t __vxsIsBrngValid(const BrngRecord *table, int32_t row, int32_t member) {
  const bool valid = table == legacy_generators.rows ? row < legacy_rows
                                                     : row < registered_rows() && member < family_sizes[row];
  return valid ? VXS_STATUS_OK : VXS_STATUS_BAD_GENERATOR;
}

int32_t __vxsGetBrngProperties(int32_t id, BrngRecord *out) {
  int32_t row, member;
  const BrngRecord *table = __vxsGetBrngBaseOffset(id, &row, &member);
  const int32_t status = __vxsIsBrngValid(table, row, member);
  if (status == VXS_STATUS_OK) *out = table[row];
  return status;
}

int32_t __vxsGetNumRegBrngs(void) { return registered_rows(); }

int32_t __vxsRegisterBrng(const BrngRecord *record) {
  if (record->StateSize < 0) return VXS_STATUS_BAD_STATE_SIZE;
  if (record->WordSize != 4 && record->WordSize != 8 && record->WordSize != 16) {
    return VXS_STATUS_BAD_WORD_SIZE;
  }
  if (record->SeedWords < 1) return VXS_STATUS_BAD_SEED_WORDS;
  if (record->Bits < 1) return VXS_STATUS_BAD_BITS;
  if (!record->dBrng || !record->sBrng || !record->iBrng || !record->InitStream) {
    return VXS_STATUS_NULL_POINTER;
  }
  const int32_t row = current_generator_count;
  current_generators[row] = *record;
  family_sizes[row] = 1;
  __atomic_store_n(&current_generator_count, row + 1, __ATOMIC_RELEASE);
  return (row + 1) << row_shift;
}

}  // extern "C"
