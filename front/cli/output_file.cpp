#include "front/cli/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

constexpr int kMostNames = 100;  // tried for a file that is not finished

std::string reason() { return std::generic_category().message(errno); }

// The names of files that are not finished, for what ends the run to remove.
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
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU, SIGXFSZ}) {
    if (std::signal(signal, remove_unfinished) == SIG_IGN) std::signal(signal, SIG_IGN);
  }
}

// Another descriptor of what is open for writing; -1 with errno when it is not.
int duplicated(int descriptor) {
  const int flags = fcntl(descriptor, F_GETFL);
  if (flags < 0) return -1;
  if ((flags & O_ACCMODE) == O_RDONLY) {
    errno = EBADF;
    return -1;
  }
  return fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

}  // namespace

OutputFile::OutputFile() : name_("standard output"), descriptor_(STDOUT_FILENO) {}

OutputFile::OutputFile(std::string_view option, const std::string& path) : name_(path) {
  const FilePlace place = place_of(path);
  if (place.is_replaced()) {
    descriptor_ = create(place);
  } else if (place.descriptor >= 0) {
    descriptor_ = duplicated(place.descriptor);
  } else if (place.error == 0) {
    descriptor_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  } else {
    errno = place.error;
  }
  if (descriptor_ < 0) {
    throw InputError(std::string(option) + ": " + quoted(path) + ": " + reason() +
                     "; a file that can be written is accepted");
  }
}

// Opens a new file beside the one whose place it will take; its descriptor, or -1 with errno.
int OutputFile::create(const FilePlace& place) {
  // A file that may not be written has not come here: it is not replaced either.
  if (place.status && access(place.path.c_str(), W_OK) != 0) return -1;
  int descriptor = -1;
  // A run that was killed may have left a file of this name.
  for (int i = 0; i < kMostNames; ++i) {
    temporary_ = place.path + ".qor-" + std::to_string(getpid()) + "-" + std::to_string(i);
    descriptor = open(temporary_.c_str(), O_WRONLY | O_CLOEXEC | O_CREAT | O_EXCL, 0666);
    if (descriptor >= 0 || errno != EEXIST) break;
  }
  if (descriptor < 0) return -1;
  target_ = place.path;
  swap_unfinished(nullptr, temporary_.c_str());
  if (place.status) fchmod(descriptor, place.status->st_mode & 07777);
  return descriptor;
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
