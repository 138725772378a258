#include "tools/accuracy/progress.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace qor::tools {
namespace {

constexpr unsigned long long kFirstHash = 0xCBF29CE484222325;

template <class Range>
unsigned long long hash_of(const Range& bytes) {
  unsigned long long hash = kFirstHash;
  for (const char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  return hash;
}

}  // namespace

unsigned long long hash_of_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return hash_of(std::string(std::istreambuf_iterator<char>(file), {}));
}

Progress::Progress(const std::string& folder, const std::string& description, std::size_t functions)
    : functions_(functions) {
  char name[64];
  std::snprintf(name, sizeof name, "/accuracy_run_%016llx.txt", hash_of(description));
  path_ = folder + name;
  std::ifstream file(path_);
  for (std::string function; std::getline(file, function);) done_.insert(function);
  resumed_ = done_.size();
  if (resumed_ > 0) {
    std::fprintf(stderr, "goes on behind %zu of %zu functions\n", resumed_, functions_);
  }
}

void Progress::finish(const std::string& function) {
  done_.insert(function);
  std::ofstream(path_, std::ios::app) << function << '\n';
  const std::chrono::duration<double> spent = Clock::now() - start_;
  const auto fresh = static_cast<double>(done_.size() - resumed_);
  const auto left = static_cast<double>(functions_ - done_.size());
  std::fprintf(stderr, "%3zu of %zu, %s: %.0f s, %.0f s to go\n", done_.size(), functions_,
               function.c_str(), spent.count(), spent.count() / fresh * left);
}

void Progress::forget() const { std::filesystem::remove(path_); }

}  // namespace qor::tools
