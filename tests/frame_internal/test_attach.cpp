// Load and unload notices: what is made, what is given back, what a second attach does.

#include <gtest/gtest.h>

#include <thread>

#include "frame/mode.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::frame;

TEST(Attach, DetachOfTheProcessGivesEverythingBackAndUseStartsAnew) {
  library_entry(nullptr, Notice::process_detach, nullptr);
  const long none = qor::test::live_blocks();
  EXPECT_EQ(library_entry(nullptr, Notice::process_attach, nullptr), 1);
  EXPECT_EQ(qor::test::live_blocks(), none + 2);  // heap and block
  EXPECT_EQ(library_entry(nullptr, Notice::process_attach, nullptr), 1);
  EXPECT_EQ(library_entry(nullptr, Notice::thread_attach, nullptr), 1);
  EXPECT_EQ(qor::test::live_blocks(), none + 2);
  std::thread([&] {
    merge_mode(thread_state(), QOR_MODE_LA);
    EXPECT_EQ(qor::test::live_blocks(), none + 3);
    library_entry(nullptr, Notice::thread_detach, nullptr);
    EXPECT_EQ(qor::test::live_blocks(), none + 2);
    EXPECT_EQ(mode(), 0x1A02u);  // a new block
  }).join();
  EXPECT_EQ(qor::test::live_blocks(), none + 2);
  // At the end of the process nothing is freed.
  int process_ends = 1;
  library_entry(nullptr, Notice::process_detach, &process_ends);
  EXPECT_EQ(qor::test::live_blocks(), none + 2);
  library_entry(nullptr, Notice::process_detach, nullptr);
  EXPECT_EQ(qor::test::live_blocks(), none);
  EXPECT_EQ(mode(), 0x1A02u);
}

TEST(Attach, UnloadFreesTheBlocksOfOtherThreadsToo) {
  library_entry(nullptr, Notice::process_detach, nullptr);
  const long none = qor::test::live_blocks();
  std::thread([&] {
    mode();
    EXPECT_EQ(qor::test::live_blocks(), none + 2);
    std::thread([] { library_entry(nullptr, Notice::process_detach, nullptr); }).join();
    EXPECT_EQ(qor::test::live_blocks(), none);
  }).join();
  EXPECT_EQ(mode(), 0x1A02u);
}

TEST(Attach, FailureIsAnsweredAndPrinted) {
  library_entry(nullptr, Notice::process_detach, nullptr);
  qor::test::take_printed_messages();
  for (long failing : {0L, 1L}) {
    qor::test::FailingAllocations allocations(failing);
    EXPECT_EQ(library_entry(nullptr, Notice::process_attach, nullptr), 0);
    const auto printed = qor::test::take_printed_messages();
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_EQ(printed[0].number, 773);
    library_entry(nullptr, Notice::process_detach, nullptr);
  }
  EXPECT_EQ(mode(), 0x1A02u);
}

}  // namespace
