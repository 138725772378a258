// A statistics task for the length of a scope.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>

#include "statistics/task.h"
#include "tests/support/statistics_entries.h"

namespace qor::test {

using Precisions = ::testing::Types<double, float>;

// A task over data, with integers of either width that live here.
template <class Real>
class Task {
 public:
  Task(int64_t p, int64_t n, int64_t storage, const Real* x, const Real* weights = nullptr,
       bool wide = false)
      : wide_(wide) {
    const int status = Api<Real>::new_task(&task_, number(p), number(n), number(storage), x,
                                           weights, nullptr, wide);
    EXPECT_EQ(status, QOR_SS_OK);
  }
  ~Task() { EXPECT_EQ(__ostSSDeleteTask(&task_), QOR_SS_OK); }
  Task(const Task&) = delete;
  Task& operator=(const Task&) = delete;

  operator SsTask*() { return task_; }
  SsTask& record() { return *task_; }

  void set(int64_t code, const Real* array) {
    EXPECT_EQ(Api<Real>::edit(task_, code, array), QOR_SS_OK);
  }
  void set_number(int64_t code, int64_t value) {
    EXPECT_EQ(__ostiSSEditTask(task_, code, number(value)), QOR_SS_OK);
  }

 private:
  // An integer of the task's width that lives as long as the task.
  const void* number(int64_t value) {
    wide_numbers_.push_back(value);
    narrow_numbers_.push_back(static_cast<int32_t>(value));
    return wide_ ? static_cast<const void*>(&wide_numbers_.back()) : &narrow_numbers_.back();
  }

  bool wide_;
  std::deque<int32_t> narrow_numbers_;
  std::deque<int64_t> wide_numbers_;
  SsTask* task_ = nullptr;
};

}  // namespace qor::test
