// The thread block's life: one a thread, freed at its end, survived or fatal when it cannot be had.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "qor/vector_math.h"
#include "tests/support/services_interposer.h"

namespace {

TEST(ThreadState, IsFreedAtThreadEnd) {
  _arkGetMode();
  const long before = qor::test::live_blocks();
  for (int i = 0; i < 8; ++i) std::thread([] { _arkSetErrStatus(1); }).join();
  EXPECT_EQ(qor::test::live_blocks(), before);
}

TEST(ThreadState, StartsClearWhateverTheParentHas) {
  _arkSetErrStatus(3);
  _arkSetErrorCallBack([](ErrorContext*) { return 0; });
  std::thread([] {
    EXPECT_EQ(_arkGetErrStatus(), 0);
    EXPECT_EQ(_arkGetErrorCallBack(), nullptr);
  }).join();
  EXPECT_EQ(_arkClearErrStatus(), 3);
  _arkClearErrorCallBack();
}

TEST(ThreadState, ThreadsThatUseItAtOnceDoNotDisturbEachOther) {
  std::atomic<bool> wrong{false};
  std::vector<std::thread> threads;
  for (int i = 1; i <= 8; ++i) {
    threads.emplace_back([i, &wrong] {
      for (int round = 0; round < 2000; ++round) {
        _arkSetErrStatus(i);
        double x = 1.0, y = 0.0;
        _arkdExp(1, &x, &y);
        if (_arkGetErrStatus() != i) wrong = true;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_FALSE(wrong);
}

TEST(ThreadStateDeathTest, NoMemoryForABlockEndsTheProcess) {
  EXPECT_EXIT(
      {
        qor::test::FailingAllocations failing(0);
        std::thread([] {
          qor::test::take_printed_messages();
          std::atexit([] {
            // The message went out before the exit.
            const auto printed = qor::test::take_printed_messages();
            if (printed.size() != 1 || printed[0].number != 773 || printed[0].level != 1) {
              std::_Exit(99);
            }
          });
          _arkGetMode();
        }).join();
      },
      ::testing::ExitedWithCode(3), "");
}

}  // namespace
