#include "tools/levels.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace qor::tools {
namespace {

std::string quoted(const std::string& word) { return std::string("'").append(word).append("'"); }

}  // namespace

bool processor_has(const std::string& level) {
  if (level == "v3") return __builtin_cpu_supports("x86-64-v3") != 0;
  if (level == "v4") return __builtin_cpu_supports("x86-64-v4") != 0;
  return true;
}

std::vector<std::string> runnable_levels(const std::string& folder) {
  std::vector<std::string> levels;
  for (const char* level : {"v1", "v3", "v4"}) {
    if (processor_has(level) && std::filesystem::exists(folder + "/" + level)) {
      levels.emplace_back(level);
    }
  }
  return levels;
}

std::vector<std::string> run_on_level(const std::string& folder, const std::string& level,
                                      const std::vector<std::string>& arguments) {
  std::string command = "LD_LIBRARY_PATH=" + quoted(folder + "/" + level) + " " +
                        quoted(std::filesystem::read_symlink("/proc/self/exe").string());
  for (const std::string& argument : arguments) command.append(" ").append(quoted(argument));
  FILE* const pipe = popen(command.c_str(), "r");
  std::vector<std::string> lines;
  char text[4096];
  while (pipe != nullptr && std::fgets(text, sizeof text, pipe) != nullptr) {
    std::string line = text;
    while (!line.empty() && line.back() == '\n') line.pop_back();
    lines.push_back(line);
  }
  if (pipe == nullptr || pclose(pipe) != 0) {
    std::fprintf(stderr, "failed: %s\n", command.c_str());
    std::exit(1);
  }
  return lines;
}

}  // namespace qor::tools
