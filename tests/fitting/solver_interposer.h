// The tridiagonal services as a host's own: those of this program stand in front of those of
// qor_core, so that a test can make them fail.
#pragma once

namespace qor::test {

// While one of these lives, the call with this number (counted from 0) of a tridiagonal routine
// reports a zero pivot.
class FailingSolver {
 public:
  explicit FailingSolver(int failing);
  ~FailingSolver();
  FailingSolver(const FailingSolver&) = delete;
  FailingSolver& operator=(const FailingSolver&) = delete;
};

}  // namespace qor::test
