#include "front/cli/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

std::string reason() { return std::generic_category().message(errno); }

// Where a chain of symbolic links ends, so that the file is replaced and not the link.
std::string followed(const std::string& path) {
  char* const real = realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  const std::string result = real;
  std::free(real);
  return result;
}

// The names of files that are not finished, for an interruption to remove.
std::array<std::atomic<const char*>, 4> unfinished;

void remove_unfinished(int signal) {
  for (const auto& name : unfinished) {
    if (name != nullptr) unlink(name);
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

// Puts `fresh` in the place of `old`; null is a free place. Names beyond the places are not
// removed.
void swap_unfinished(const char* old, const char* fresh) {
  for (auto& name : unfinished) {
    const char* expected = old;
    if (name.compare_exchange_strong(expected, fresh)) break;
  }
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (std::signal(signal, remove_unfinished) == SIG_IGN) std::signal(signal, SIG_IGN);
  }
}

}  // namespace

OutputFile::OutputFile() : name_("standard output"), descriptor_(STDOUT_FILENO) {}

OutputFile::OutputFile(std::string_view option, const std::string& path)
    : name_(path), target_(followed(path)) {
  struct stat there {};
  const bool exists = stat(path.c_str(), &there) == 0;
  if (exists && !S_ISREG(there.st_mode)) {
    descriptor_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  } else if (!path.empty() && (!exists || access(target_.c_str(), W_OK) == 0)) {
    // A file that may not be written has not come here: it is not replaced either.
    temporary_ = target_ + ".qor-" + std::to_string(getpid());
    descriptor_ = open(temporary_.c_str(), O_WRONLY | O_CLOEXEC | O_CREAT | O_EXCL, 0666);
    if (descriptor_ >= 0) swap_unfinished(nullptr, temporary_.c_str());
    if (exists && descriptor_ >= 0) fchmod(descriptor_, there.st_mode & 07777);
  }
  if (descriptor_ < 0) {
    throw InputError(std::string(option) + ": " + quoted(path) + ": " + reason() +
                     "; a file that can be written is accepted");
  }
}

OutputFile::~OutputFile() {
  if (descriptor_ > STDOUT_FILENO) ::close(descriptor_);
  if (temporary_.empty()) return;
  unlink(temporary_.c_str());
  swap_unfinished(temporary_.c_str(), nullptr);
}

void OutputFile::fail() const { throw std::runtime_error(name_ + ": " + reason()); }

void OutputFile::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail();
    bytes.remove_prefix(static_cast<size_t>(written));
  }
}

void OutputFile::close() {
  const int descriptor = std::exchange(descriptor_, -1);
  if (descriptor > STDOUT_FILENO && ::close(descriptor) != 0) fail();
}

void OutputFile::commit() {
  close();
  if (temporary_.empty()) return;
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) fail();
  swap_unfinished(temporary_.c_str(), nullptr);
  temporary_.clear();
}

}  // namespace qor::cli
