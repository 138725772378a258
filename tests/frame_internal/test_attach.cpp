// Load and unload notices: what is made, what is given back, what a second attach does.

#include <gtest/gtest.h>

#include <thread>

#include "frame/mode.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::frame;
using qor::test::live_blocks;

int32_t notify(Notice notice, void* reserved = nullptr) {
  return library_entry(nullptr, notice, reserved);
}

// Starts and ends without anything of the library's.
class Attach : public testing::Test {
 protected:
  void SetUp() override {
    notify(Notice::process_detach);
    none_ = live_blocks();
  }
  void TearDown() override {
    notify(Notice::process_detach);
    EXPECT_EQ(live_blocks(), none_);
    EXPECT_EQ(mode(), 0x1A02u);  // use starts anew
  }
  long none_ = 0;
};

TEST_F(Attach, DetachOfTheProcessGivesEverythingBackAndUseStartsAnew) {
  for (const Notice notice :
       {Notice::process_attach, Notice::process_attach, Notice::thread_attach}) {
    EXPECT_EQ(notify(notice), 1);
    EXPECT_EQ(live_blocks(), none_ + 2);  // heap and block
  }
  std::thread([&] {
    merge_mode(thread_state(), QOR_MODE_LA);
    EXPECT_EQ(live_blocks(), none_ + 3);
    notify(Notice::thread_detach);
    EXPECT_EQ(live_blocks(), none_ + 2);
    EXPECT_EQ(mode(), 0x1A02u);  // a new block
  }).join();
  EXPECT_EQ(live_blocks(), none_ + 2);
  // At the end of the process nothing is freed.
  int process_ends = 1;
  notify(Notice::process_detach, &process_ends);
  EXPECT_EQ(live_blocks(), none_ + 2);
}

TEST_F(Attach, UnloadFreesTheBlocksOfOtherThreadsToo) {
  std::thread([&] {
    mode();
    EXPECT_EQ(live_blocks(), none_ + 2);
    std::thread([] { notify(Notice::process_detach); }).join();
    EXPECT_EQ(live_blocks(), none_);
  }).join();
}

TEST_F(Attach, FailureIsAnsweredAndPrinted) {
  qor::test::take_printed_messages();
  for (long failing : {0L, 1L}) {
    qor::test::FailingAllocations allocations(failing);
    EXPECT_EQ(notify(Notice::process_attach), 0);
    const auto printed = qor::test::take_printed_messages();
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_EQ(printed[0].number, 773);
    notify(Notice::process_detach);
  }
}

}  // namespace
