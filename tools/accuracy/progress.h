// How far a run is: which of its functions are done, told and kept in a file, so that a run that
// was interrupted goes on where it ended.
#pragma once

#include <chrono>
#include <cstddef>
#include <set>
#include <string>

namespace qor::tools {

class Progress {
 public:
  // A run is known by its description, which goes into the name of a file in `folder`.
  Progress(const std::string& folder, const std::string& description, std::size_t functions);

  bool is_done(const std::string& function) const { return done_.contains(function); }

  // Says on standard error what is done, and how long the rest may take.
  void finish(const std::string& function);

  // At the end: the next run begins anew.
  void forget() const;

 private:
  using Clock = std::chrono::steady_clock;

  std::string path_;
  std::size_t functions_, resumed_;
  std::set<std::string> done_;
  Clock::time_point start_ = Clock::now();
};

// Of the bytes of a file: 64 bits by Fowler, Noll and Vo.
unsigned long long hash_of_file(const std::string& path);

}  // namespace qor::tools
