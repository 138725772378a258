// The work memory of a call: as many pieces as it asks for, all given back.

#include <algorithm>
#include <cstdint>

#include "statistics/work_memory.h"
#include "tests/statistics/api.h"

namespace qor::test {
namespace {

TEST(WorkMemory, HasNoLimitOfPieces) {
  const long before = live_blocks();
  {
    statistics::WorkMemory memory;
    std::vector<int64_t*> pieces;
    for (int64_t k = 0; k < 40; ++k) {
      pieces.push_back(memory.take<int64_t>(k + 1));
      ASSERT_NE(pieces.back(), nullptr);
      EXPECT_EQ(reinterpret_cast<uintptr_t>(pieces.back()) % services::work_alignment, 0u);
      std::fill_n(pieces.back(), k + 1, k);
    }
    for (int64_t k = 0; k < 40; ++k) {
      const int64_t* piece = pieces[static_cast<size_t>(k)];
      EXPECT_EQ(std::count(piece, piece + k + 1, k), k + 1);
    }
    EXPECT_EQ(memory.take<int64_t>(0), nullptr);
    EXPECT_FALSE(memory.failed());
    EXPECT_EQ(memory.take<int64_t>(services::too_many), nullptr);
    EXPECT_TRUE(memory.failed());
    EXPECT_EQ(memory.take<int64_t>(1), nullptr) << "no memory is remembered";
  }
  EXPECT_EQ(live_blocks(), before);
}

}  // namespace
}  // namespace qor::test
