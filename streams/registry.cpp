// The registry of basic generators: a legacy table, and the current one, which users extend.
#include <qkr/streams_generators.h>

#include "streams/internal.h"

namespace {

#define ENTRIES(G) __vxsBRng##G##InitStream, __vxssBRng##G, __vxsdBRng##G, __vxsiBRng##G

// StateSize, SeedWords, IncludesZero, WordSize, Bits, entry points
constexpr BrngRecord mcg31m1 = {24, 1, 0, 4, 31, ENTRIES(MCG31M1)};
constexpr BrngRecord r250 = {1024, 252, 1, 4, 32, ENTRIES(R250)};
constexpr BrngRecord mrg32k3a = {40, 6, 1, 4, 32, ENTRIES(MRG32K3A)};
constexpr BrngRecord mcg59 = {32, 1, 0, 8, 59, ENTRIES(MCG59)};
constexpr BrngRecord wh = {48, 4, 1, 16, 24, ENTRIES(WH)};
constexpr BrngRecord sobol = {5472, 1324, 0, 4, 32, ENTRIES(Sobol)};
constexpr BrngRecord niederr = {43280, 10498, 0, 4, 32, ENTRIES(Niederr)};
constexpr BrngRecord mt19937 = {2520, 625, 1, 4, 32, ENTRIES(MT19937)};
constexpr BrngRecord mt2203 = {312, 70, 1, 4, 32, ENTRIES(MT2203)};
constexpr BrngRecord i_abstract = {48, 0, 1, 4, 32, ENTRIES(iAbstract)};
constexpr BrngRecord d_abstract = {64, 0, 1, 4, 32, ENTRIES(dAbstract)};
constexpr BrngRecord s_abstract = {56, 0, 1, 4, 32, ENTRIES(sAbstract)};

constexpr LegacyTable make_legacy_table() {
  LegacyTable table = {{mcg31m1, r250, mrg32k3a, mcg59}};
  for (int row = first_legacy_wh; row < first_legacy_wh + wh_members; ++row) table.rows[row] = wh;
  table.rows[first_legacy_wh + wh_members] = sobol;
  table.rows[first_legacy_wh + wh_members + 1] = niederr;
  return table;
}

constexpr int32_t row_shift = 20;
constexpr int32_t first_current_id = 1 << row_shift;

}  // namespace

extern "C" {

constinit const LegacyTable __RegBrngs = make_legacy_table();

BrngRecord __RegBrngsNew[current_rows] = {mcg31m1, r250,    mrg32k3a, mcg59,      wh,         sobol,
                                          niederr, mt19937, mt2203,   i_abstract, d_abstract, s_abstract};
int32_t NumOffsets[current_rows] = {1, 1, 1, 1, wh_members, 1, 1, 1, mt2203_members, 1, 1, 1};
int32_t NRegBrngsNew = 12;

const BrngRecord *__vxsGetBrngBaseOffset(int32_t id, int32_t *row, int32_t *member) {
  if (id >= first_current_id) {
    *row = (id >> row_shift) - 1;
    *member = id & (first_current_id - 1);
    return __RegBrngsNew;
  }
  const bool is_wh = id >= first_legacy_wh && id < first_legacy_wh + wh_members;
  *row = is_wh ? first_legacy_wh : id;
  *member = is_wh ? id - first_legacy_wh : 0;
  return __RegBrngs.rows;
}

int32_t __vxsIsBrngValid(const BrngRecord *table, int32_t row, int32_t member) {
  const bool valid =
      table == __RegBrngs.rows ? row < legacy_rows : row < NRegBrngsNew && member < NumOffsets[row];
  return valid ? VXS_STATUS_OK : VXS_STATUS_BAD_GENERATOR;
}

int32_t __vxsGetBrngProperties(int32_t id, BrngRecord *out) {
  int32_t row, member;
  const BrngRecord *table = __vxsGetBrngBaseOffset(id, &row, &member);
  const int32_t status = __vxsIsBrngValid(table, row, member);
  if (status == VXS_STATUS_OK) *out = table[row];
  return status;
}

int32_t __vxsGetNumRegBrngs(void) { return NRegBrngsNew; }

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
  __RegBrngsNew[NRegBrngsNew] = *record;
  NumOffsets[NRegBrngsNew] = 1;
  return ++NRegBrngsNew << row_shift;
}

}  // extern "C"
