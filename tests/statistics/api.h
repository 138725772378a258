// A statistics task for the length of a scope, and how its tests go through many cases.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <deque>
#include <tuple>
#include <vector>

#include "reference/statistics_entries.h"
#include "statistics/task.h"
#include "tests/support/services_interposer.h"

namespace qor::test {

using reference::Api;
using Precisions = ::testing::Types<double, float>;
template <class Real>
using OtherPrecision = std::conditional_t<std::is_same_v<Real, double>, float, double>;

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

// One element of each list, in all combinations.
inline std::vector<std::tuple<>> combinations() { return {{}}; }
template <class First, class... Rest>
auto combinations(const std::vector<First>& first, const std::vector<Rest>&... rest) {
  std::vector<std::tuple<First, Rest...>> all;
  for (const First& one : first) {
    for (const auto& others : combinations(rest...)) {
      all.push_back(std::tuple_cat(std::tuple<First>(one), others));
    }
  }
  return all;
}
inline const std::vector<bool> kBools = {false, true};

// Whether two values are the same, zeros of either sign and any NaNs.
template <class Real>
bool same_value(Real a, Real b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

// The estimators of order, in the files of each.
template <class Real>
class OrderAllocation : public ::testing::Test {};

}  // namespace qor::test
