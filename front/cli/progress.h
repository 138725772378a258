// How far a long run has come, on one line of a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace qor::cli {

// The line: share done, amount, and the time that is left at the speed so far.
std::string progress_line(uint64_t done, uint64_t total, double seconds,
                          const char* unit = "values");

// Writes the line to standard error when that is a terminal, from the first half second on, and
// wipes it away at the end.
class Progress {
 public:
  // Writes nothing when `wanted` is false.
  Progress(uint64_t total, bool wanted, const char* unit = "values");
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void update(uint64_t done);

 private:
  using Clock = std::chrono::steady_clock;
  uint64_t total_;
  bool wanted_;
  const char* unit_;
  bool shown_ = false;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_;  // when the line is due
};

}  // namespace qor::cli
