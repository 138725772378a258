// Children forked while other threads are busy in the library.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

namespace qor::test {

// Forks while three threads run `busy` again and again: `work` ends in every child.
template <class Busy, class Work>
void expect_children_to_end(Busy busy, Work work) {
  constexpr int kChildren = 50, kSeconds = 10;
  std::atomic<bool> stop{false};
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&] {
      while (!stop) busy();
    });
  }
  for (int k = 0; k < kChildren && !testing::Test::HasFailure(); ++k) {
    const pid_t child = fork();
    if (child == 0) {
      alarm(kSeconds);
      work();
      _exit(0);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "child " << k;
  }
  stop = true;
  for (std::thread& thread : threads) thread.join();
}

}  // namespace qor::test
