// The services as a host's own: this program's qor_serv_* stand in front of those of qor_core, so
// that a test can make an allocation fail, count blocks and read what was printed.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qor::test {

struct PrintedMessage {
  int level, number, count;
};

// While one of these lives, the allocation with this number (counted from 0, on any thread) and all
// that follow it fail; a number below 0 lets all pass.
class FailingAllocations {
 public:
  explicit FailingAllocations(long first_failing);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  // Allocations asked for since the construction.
  long asked() const;
  // Bytes of the largest of them.
  size_t largest() const;
};

// Blocks of qor_serv_allocate that live now.
long live_blocks();

// Runs what prepare() makes with the first, the second ... allocation failing until none fails:
// each failure has the status `no_memory`, success 0, and nothing is lost. Returns how many there
// were.
template <class Prepare>
long failures_survived(int no_memory, Prepare prepare) {
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
    EXPECT_EQ(status, reached ? no_memory : 0);
    if (!reached || status != no_memory) return failing;
  }
}

// Messages printed since the last call.
std::vector<PrintedMessage> take_printed_messages();

}  // namespace qor::test
