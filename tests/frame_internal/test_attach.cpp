// Load and unload notices: what is made, what is given back, what a second attach does.

#include <gtest/gtest.h>

#include <thread>

#include "frame/environment_option.h"
#include "frame/mode.h"
#include "tests/support/forks.h"
#include "tests/support/services_interposer.h"

namespace {

using namespace qor::frame;
using qor::test::expect_children_to_end;
using qor::test::live_blocks;

int32_t notify(Notice notice, void* reserved = nullptr) {
  return library_entry(nullptr, notice, reserved);
}

// The blocks that live when everything has been given back.
long blocks_after_detach() {
  notify(Notice::process_detach);
  return live_blocks();
}

TEST(Attach, DetachOfTheProcessGivesEverythingBackAndUseStartsAnew) {
  const long none = blocks_after_detach();
  for (const Notice notice :
       {Notice::process_attach, Notice::process_attach, Notice::thread_attach}) {
    EXPECT_EQ(notify(notice), 1);
    EXPECT_EQ(live_blocks(), none + 2);  // heap and block
  }
  std::thread([&] {
    merge_mode(thread_state(), QOR_MODE_LA);
    EXPECT_EQ(live_blocks(), none + 3);
    notify(Notice::thread_detach);
    EXPECT_EQ(live_blocks(), none + 2);
    EXPECT_EQ(mode(), 0x1A02u);  // a new block
  }).join();
  EXPECT_EQ(live_blocks(), none + 2);
  int process_ends = 1;
  notify(Notice::process_detach, &process_ends);
  EXPECT_EQ(live_blocks(), none + 2) << "freed at the end of the process";
  EXPECT_EQ(blocks_after_detach(), none);
  EXPECT_EQ(mode(), 0x1A02u);
}

TEST(Attach, UnloadFreesTheBlocksOfOtherThreadsToo) {
  const long none = blocks_after_detach();
  std::thread([&] {
    mode();
    EXPECT_EQ(live_blocks(), none + 2);
    std::thread([&] { EXPECT_EQ(blocks_after_detach(), none); }).join();
  }).join();
  EXPECT_EQ(mode(), 0x1A02u);
}

TEST(Attach, ForkedChildrenFindTheLocksFree) {
  const auto start_anew = [] {
    notify(Notice::process_detach);
    mode();
  };
  const auto read_options = [] { read_environment_option(); };
  const auto start_threads = [] { std::thread([] { mode(); }).join(); };
  expect_children_to_end(read_options, start_anew);
  expect_children_to_end(start_threads, start_anew);
}

TEST(Attach, FailureIsAnsweredAndPrinted) {
  const long none = blocks_after_detach();
  qor::test::take_printed_messages();
  for (long failing : {0L, 1L}) {
    qor::test::FailingAllocations allocations(failing);
    EXPECT_EQ(notify(Notice::process_attach), 0);
    const auto printed = qor::test::take_printed_messages();
    ASSERT_EQ(printed.size(), 1u);
    EXPECT_EQ(printed[0].number, 773);
    EXPECT_EQ(blocks_after_detach(), none);
  }
  EXPECT_EQ(mode(), 0x1A02u);
}

}  // namespace
