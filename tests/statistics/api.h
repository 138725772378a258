// A statistics task for the length of a scope.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

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
  // An integer of the task's width that lives as long as the task.
  const void* number(int64_t value) {
    EXPECT_LT(used_, kMost);
    if (!wide_) {
      narrow_numbers_[used_] = static_cast<int32_t>(value);
      return &narrow_numbers_[used_++];
    }
    wide_numbers_[used_] = value;
    return &wide_numbers_[used_++];
  }

 private:
  static constexpr int kMost = 64;
  bool wide_;
  int used_ = 0;
  int32_t narrow_numbers_[kMost];
  int64_t wide_numbers_[kMost];
  SsTask* task_ = nullptr;
};

}  // namespace qor::test
