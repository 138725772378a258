// The two tables of generators, the identifier scheme and registration.

#include "streams/registry.h"

#include <algorithm>
#include <iterator>

#include "streams/abstract.h"

namespace {

constexpr int32_t kFirstNewId = 0x100000;
constexpr int32_t kIdShift = 20;
constexpr int32_t kSubMask = kFirstNewId - 1;

// The first numbering: rows 0 to 3 as in the new one, then every member of WH as a row of its own.
constexpr int32_t kOldWh = 4, kWhMembers = 273;
constexpr int32_t kOldSobol = kOldWh + kWhMembers, kOldNiederr = kOldSobol + 1;
// Two more than there are: validation has always let rows 279 and 280 pass.
constexpr int32_t kOldRowLimit = 281;

constexpr int32_t kNewWh = 4, kNewSobol = 5, kNewNiederr = 6, kNewMt2203 = 8;
constexpr int32_t kMt2203Members = 6024;

constexpr BrngProperties kRows[] = {
    // bytes, seed words, zero flag, word bytes, word bits, functions
    {24, 1, 0, 4, 31, __ostBRngMCG31M1InitStream, __ostsBRngMCG31M1, __ostdBRngMCG31M1,
     __ostiBRngMCG31M1},
    {1024, 252, 1, 4, 32, __ostBRngR250InitStream, __ostsBRngR250, __ostdBRngR250, __ostiBRngR250},
    {40, 6, 1, 4, 32, __ostBRngMRG32K3AInitStream, __ostsBRngMRG32K3A, __ostdBRngMRG32K3A,
     __ostiBRngMRG32K3A},
    {32, 1, 0, 8, 59, __ostBRngMCG59InitStream, __ostsBRngMCG59, __ostdBRngMCG59, __ostiBRngMCG59},
    {48, 4, 1, 16, 24, __ostBRngWHInitStream, __ostsBRngWH, __ostdBRngWH, __ostiBRngWH},
    // Sobol, Niederr, MT19937, MT2203: no generator functions yet, so no streams.
    {11712, 2604, 0, 4, 32, nullptr, nullptr, nullptr, nullptr},
    {84288, 10498, 0, 4, 32, nullptr, nullptr, nullptr, nullptr},
    {2520, 625, 1, 4, 32, nullptr, nullptr, nullptr, nullptr},
    {312, 70, 1, 4, 32, nullptr, nullptr, nullptr, nullptr},
    {qor::streams::record_bytes_of_ring<uint32_t>, 0, 1, 4, 32, __ostBRngiAbstractInitStream,
     __ostsBRngiAbstract, __ostdBRngiAbstract, __ostiBRngiAbstract},
    {qor::streams::record_bytes_of_ring<double>, 0, 1, 4, 32, __ostBRngdAbstractInitStream,
     __ostsBRngdAbstract, __ostdBRngdAbstract, __ostiBRngdAbstract},
    {qor::streams::record_bytes_of_ring<float>, 0, 1, 4, 32, __ostBRngsAbstractInitStream,
     __ostsBRngsAbstract, __ostdBRngsAbstract, __ostiBRngsAbstract},
    // SFMT19937, TRNG, ARS5, PHILOX4X32X10: likewise.
    {2536, 625, 1, 4, 32, nullptr, nullptr, nullptr, nullptr},
    {24, 1, 0, 4, 32, nullptr, nullptr, nullptr, nullptr},
    {72, 8, 1, 4, 32, nullptr, nullptr, nullptr, nullptr},
    {64, 8, 1, 4, 32, nullptr, nullptr, nullptr, nullptr},
};
constexpr auto kRowCount = static_cast<int32_t>(std::size(kRows));

// Seen from outside it is an array, which callers may take to be aligned as the ABI has arrays.
struct alignas(16) Table {
  BrngProperties rows[QOR_BRNG_ROWS];
};

constexpr Table first_numbering() {
  Table table{};
  std::copy_n(kRows, kOldWh, table.rows);
  std::fill_n(table.rows + kOldWh, kWhMembers, kRows[kNewWh]);
  table.rows[kOldSobol] = kRows[kNewSobol];
  table.rows[kOldNiederr] = kRows[kNewNiederr];
  return table;
}

constexpr Table new_numbering() {
  Table table{};
  std::copy_n(kRows, kRowCount, table.rows);
  return table;
}

struct MemberCounts {
  int32_t of[QOR_BRNG_ROWS];
};

constexpr MemberCounts member_counts() {
  MemberCounts counts{};
  std::fill_n(counts.of, kRowCount, 1);
  counts.of[kNewWh] = kWhMembers;
  counts.of[kNewMt2203] = kMt2203Members;
  return counts;
}

constinit MemberCounts members = member_counts();
constinit int32_t rows_in_use = kRowCount;

}  // namespace

extern "C" {
// An array cannot be filled by a constant expression, a struct can: the exported arrays are second
// names of these.
[[gnu::used]] constinit Table qor_first_brng_table = first_numbering();
[[gnu::used]] constinit Table qor_new_brng_table = new_numbering();
extern BrngProperties __RegBrngs[QOR_BRNG_ROWS] __attribute__((alias("qor_first_brng_table")));
extern BrngProperties __RegBrngsNew[QOR_BRNG_ROWS] __attribute__((alias("qor_new_brng_table")));
}

namespace qor::streams {

const BrngProperties* valid_row(const BrngProperties* table, int32_t row, int32_t sub) {
  if (row < 0 || __ostIsBrngValid(table, row, sub) != QOR_STREAM_OK) return nullptr;
  return &table[row];
}

const BrngProperties* usable_row(int32_t id) {
  int32_t row = 0, sub = 0;
  const BrngProperties* table = __ostGetBrngBaseOffset(id, &row, &sub);
  const BrngProperties* properties = valid_row(table, row, sub);
  return properties != nullptr && properties->initStream != nullptr ? properties : nullptr;
}

}  // namespace qor::streams

BrngProperties* __ostGetBrngBaseOffset(int32_t id, int32_t* row, int32_t* sub) {
  if (id >= kFirstNewId) {
    *row = (id >> kIdShift) - 1;
    *sub = id & kSubMask;
    return __RegBrngsNew;
  }
  const bool wh = id >= kOldWh && id < kOldSobol;
  *row = wh ? kOldWh : id;
  *sub = wh ? id - kOldWh : 0;
  return __RegBrngs;
}

int32_t __ostIsBrngValid(const BrngProperties* table, int32_t row, int32_t sub) {
  if (table == __RegBrngs) return row < kOldRowLimit ? QOR_STREAM_OK : QOR_STREAM_BAD_GENERATOR;
  const bool valid = row >= 0 && row < rows_in_use && sub < members.of[row];
  return valid ? QOR_STREAM_OK : QOR_STREAM_BAD_GENERATOR;
}

int32_t __ostGetBrngProperties(int32_t id, BrngProperties* properties) {
  int32_t row = 0, sub = 0;
  const BrngProperties* table = __ostGetBrngBaseOffset(id, &row, &sub);
  const BrngProperties* found = qor::streams::valid_row(table, row, sub);
  if (found == nullptr) return QOR_STREAM_BAD_GENERATOR;
  *properties = *found;
  return QOR_STREAM_OK;
}

int32_t __ostGetNumRegBrngs() { return rows_in_use; }

int32_t __ostRegisterBrng(const BrngProperties* properties) {
  const BrngProperties& p = *properties;
  if (p.stateBytes < 0) return QOR_STREAM_BAD_STATE_BYTES;
  if (p.wordBytes != 4 && p.wordBytes != 8 && p.wordBytes != 16) return QOR_STREAM_BAD_WORD_BYTES;
  if (p.seedWords < 1) return QOR_STREAM_BAD_SEED_WORDS;
  if (p.wordBits < 1) return QOR_STREAM_BAD_WORD_BITS;
  if (p.dBRng == nullptr || p.sBRng == nullptr || p.iBRng == nullptr || p.initStream == nullptr)
    return QOR_STREAM_NULL_POINTER;
  if (rows_in_use == QOR_BRNG_ROWS) return QOR_STREAM_NO_MEMORY;
  __RegBrngsNew[rows_in_use] = p;
  members.of[rows_in_use] = 1;
  ++rows_in_use;
  return rows_in_use << kIdShift;
}
