// Calls without memory.
#pragma once

#include <gtest/gtest.h>

#include "qor/statistics.h"
#include "tests/support/services_interposer.h"

namespace qor::test {

// Runs what prepare() makes with the first, the second ... allocation failing until none fails:
// each failure has its status, and nothing is lost. Returns how many there were.
template <class Prepare>
long failures_survived(Prepare prepare) {
  for (long failing = 0;; ++failing) {
    const long before = live_blocks();
    bool reached;
    int status;
    {
      auto run = prepare();
      const FailingAllocations guard(failing);
      status = run();
      reached = guard.asked() > failing;
    }
    EXPECT_EQ(live_blocks(), before);
    EXPECT_EQ(status, reached ? QOR_SS_NO_MEMORY : QOR_SS_OK);
    if (!reached || status == QOR_SS_OK) return failing;
  }
}

// The estimators of order, in the files of each.
template <class Real>
class OrderAllocation : public ::testing::Test {};

}  // namespace qor::test
