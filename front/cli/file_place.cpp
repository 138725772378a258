#include "front/cli/file_place.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <filesystem>
#include <system_error>

namespace qor::cli {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;  // in a chain, as the system has it

bool same_inode(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// The open descriptor that the path is the system's own name of; -1: it is no such name.
int named_descriptor(const fs::path& path) {
  std::error_code error;
  const fs::path folder = fs::canonical(path.parent_path(), error);
  if (error || folder != fs::canonical("/proc/self/fd", error)) return -1;
  const std::string name = path.filename();
  int descriptor = -1;
  std::from_chars(name.data(), name.data() + name.size(), descriptor);
  return descriptor;
}

bool leads_to(const std::string& path, const struct stat& file) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && same_inode(status, file);
}

}  // namespace

bool FilePlace::is_replaced() const {
  if (descriptor >= 0 || path.empty()) return false;
  return status ? S_ISREG(status->st_mode) && error == 0 : error == ENOENT;
}

FilePlace place_of(const std::string& name) {
  FilePlace place{.path = name};
  struct stat status {};
  if (stat(name.c_str(), &status) == 0) {
    place.status = status;
  } else {
    place.error = errno;
  }
  fs::path path = name;
  for (int links = 0; links < kMostLinks; ++links) {
    if (place.status) place.descriptor = named_descriptor(path);
    std::error_code error;
    const fs::path target = fs::read_symlink(path, error);
    if (error || place.descriptor >= 0) break;
    path = path.parent_path() / target;
  }
  place.path = path;
  // A link of the system may name a file by a path that is gone, or another's.
  if (place.status && place.descriptor < 0 && !leads_to(place.path, *place.status)) {
    place.error = ENOENT;
  }
  return place;
}

FilePlace place_of_standard_output() {
  FilePlace place{.path = "", .descriptor = STDOUT_FILENO};
  struct stat status {};
  if (fstat(STDOUT_FILENO, &status) == 0) place.status = status;
  return place;
}

bool same_file(const FilePlace& one, const FilePlace& other) {
  if (one.status && other.status) {
    const mode_t mode = one.status->st_mode;
    return same_inode(*one.status, *other.status) && (S_ISREG(mode) || S_ISBLK(mode));
  }
  if (one.status || other.status) return false;
  // Neither is there yet: the same name in the same folder.
  const fs::path a = one.path, b = other.path;
  std::error_code error;
  return a.filename() == b.filename() &&
         fs::equivalent("." / a.parent_path(), "." / b.parent_path(), error);
}

}  // namespace qor::cli
