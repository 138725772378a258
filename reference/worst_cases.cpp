#include "reference/worst_cases.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace qor::reference {
namespace {

constexpr const char* kHead =
    R"(# The worst errors found, written by tools/accuracy. One kernel at one level a line:
#
#   function kernel level ulp found count steps at...
#
# The kernel is named by the slots that it serves. Found: swept (all arguments), searched (from
# edges, binades and cells up to the worst), sampled, or earlier (by a machine that runs the level,
# perhaps of another kernel); count arguments were tried. Steps: results that step back where the
# function is monotone, - where that was not counted. At: the numbers of the element that shows the
# error.
)";
constexpr std::string_view kNames[] = {"swept", "searched", "sampled", "earlier"};

std::string to_text(const WorstCase& line) {
  char number[64];
  std::snprintf(number, sizeof number, "%.4f", line.ulp);
  std::ostringstream text;
  text << line.function << ' ' << line.kernel << ' ' << line.level << ' ' << number << ' '
       << name_of(line.found) << ' ' << line.count << ' ';
  if (line.steps_back < 0) {
    text << '-';
  } else {
    text << line.steps_back;
  }
  for (const double x : line.at) {
    std::snprintf(number, sizeof number, "%a", x);
    text << ' ' << number;
  }
  return text.str();
}

WorstCase from_text(const std::string& text) {
  std::istringstream stream(text);
  WorstCase line;
  std::string found, steps;
  stream >> line.function >> line.kernel >> line.level >> line.ulp >> found >> line.count >> steps;
  for (const Found kind : {Found::swept, Found::searched, Found::earlier}) {
    if (found == name_of(kind)) line.found = kind;
  }
  if (steps != "-") line.steps_back = std::atoll(steps.c_str());
  for (std::string number; stream >> number;) {
    line.at.push_back(std::strtod(number.c_str(), nullptr));
  }
  return line;
}

}  // namespace

std::string_view name_of(Found found) { return kNames[static_cast<size_t>(found)]; }

std::vector<WorstCase> read_worst_cases(const std::string& path) {
  std::ifstream file(path);
  std::vector<WorstCase> cases;
  for (std::string text; std::getline(file, text);) {
    if (!text.empty() && text[0] != '#') cases.push_back(from_text(text));
  }
  return cases;
}

void write_worst_cases(const std::string& path, std::vector<WorstCase> cases) {
  std::map<std::string, int> places;
  for (const AnyRow& any : rows()) {
    std::visit(
        [&](const auto& row) {
          for (const int slot : row.distinct_slots()) {
            const auto place = static_cast<int>(places.size());
            places.emplace(row.name() + kernel_key(row, slot), place);
          }
        },
        any);
  }
  const auto key = [](const WorstCase& line) { return line.function + line.kernel; };
  std::erase_if(cases, [&](const WorstCase& line) { return !places.contains(key(line)); });
  std::ranges::sort(cases, [&](const WorstCase& a, const WorstCase& b) {
    return std::pair(places[key(a)], a.level) < std::pair(places[key(b)], b.level);
  });
  const std::string fresh = path + ".new";
  {
    std::ofstream file(fresh);
    file << kHead;
    for (const WorstCase& line : cases) file << to_text(line) << '\n';
  }
  std::filesystem::rename(fresh, path);
}

}  // namespace qor::reference
