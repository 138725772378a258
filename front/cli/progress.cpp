#include "front/cli/progress.h"

#include <unistd.h>

#include <cstdio>

#include "front/cli/text.h"

namespace qor::cli {
namespace {

constexpr std::chrono::milliseconds kFirst{500}, kPause{200};

// To the line's start, and wipe what stands there.
constexpr const char* kWipe = "\r\033[K";

}  // namespace

std::string progress_line(uint64_t done, uint64_t total, double seconds, const char* unit) {
  const auto d = static_cast<double>(done), t = static_cast<double>(total);
  return format("%3.0f %%  %.0f of %.0f %s, %.0f s left", 100 * d / t, d, t, unit,
                done == 0 ? 0.0 : seconds * (t - d) / d);
}

Progress::Progress(uint64_t total, bool wanted, const char* unit)
    : total_(total),
      wanted_(wanted && isatty(STDERR_FILENO) != 0),
      unit_(unit),
      next_(start_ + kFirst) {}

Progress::~Progress() {
  if (shown_) std::fputs(kWipe, stderr);
}

void Progress::update(uint64_t done) {
  if (!wanted_) return;
  const Clock::time_point now = Clock::now();
  if (now < next_) return;
  next_ = now + kPause;
  shown_ = true;
  const std::chrono::duration<double> taken = now - start_;
  std::fprintf(stderr, "%s%s", kWipe, progress_line(done, total_, taken.count(), unit_).c_str());
}

}  // namespace qor::cli
