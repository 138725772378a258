// What kernels report on this thread while one of these lives: a callback that writes it down and
// lets nothing else follow.
#pragma once

#include <string>
#include <vector>

#include "qor/vector_math.h"

namespace qor::test {

class ReportLog {
 public:
  explicit ReportLog(uint32_t more_mode_fields = 0);
  ~ReportLog();
  ReportLog(const ReportLog&) = delete;
  ReportLog& operator=(const ReportLog&) = delete;

  const std::vector<ErrorContext>& reports() const;
  void clear();

 private:
  uint32_t mode_before_;
};

// Gives a mode word back. A field of 0 would leave the thread what it has, so the denormal field
// says what it means: denormals are kept.
inline void restore_mode(uint32_t word) {
  _arkSetMode((word & QOR_MODE_DENORMALS) != 0 ? word : word | QOR_MODE_KEEP_DENORMALS);
}

// Sets fields of the thread's mode word for a while.
class ModeScope {
 public:
  explicit ModeScope(uint32_t fields) : before_(_arkSetMode(fields)) {}
  ~ModeScope() { restore_mode(before_); }
  ModeScope(const ModeScope&) = delete;
  ModeScope& operator=(const ModeScope&) = delete;

 private:
  uint32_t before_;
};

}  // namespace qor::test
