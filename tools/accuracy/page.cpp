#include "tools/accuracy/page.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include "reference/rows.h"
#include "tools/page.h"

namespace qor::tools {
namespace {

using reference::Found;
using reference::WorstCase;

constexpr const char* kHead =
    R"(Measured by `tools/accuracy` against MPFR, which keeps its findings in `reference/worst_cases.txt`
(the tests hold every kernel to them, 0.02 ulp above) and writes this section from there with
`--page`. Errors are in ulp: the spacing of the type's numbers in the binade of the exact result,
that of denormals below. 0.5 is correct rounding. `inf` would be a NaN, an infinity or the sign of a
zero in the wrong place. An error callback sees the same values.

Functions of one float are swept over all 2^32 arguments. The others are searched: hard arguments
and edges, every binade, every cell of the tables, then climbing from the thousand worst, with bits
flipped, by steps and in zooms. Functions whose results are the correctly rounded ones are sampled.
"Earlier" are figures of the last machine that ran the level, perhaps of another kernel: the tests
hold such a level to what is promised alone. "Steps back" counts results that fall where the exact
ones rise, or the other way round, between neighbouring floats, for functions that are monotone.

Kernels are named by the accuracies that they serve; strided kernels give the same bits. Levels: v1,
v3, v4 stand for x86-64-v1 and so on.
)";
const PageLine kTitles = {"function", "kernel", "level", "worst", "at", "arguments", "steps back"};

std::string number(const char* format, double x) {
  char text[64];
  std::snprintf(text, sizeof text, format, x);
  return text;
}

PageLine page_line(const WorstCase& line) {
  std::string kernel = line.kernel, at;
  std::ranges::replace(kernel, '+', ' ');
  for (const double x : line.at) at.append(at.empty() ? "" : ", ").append(number("%a", x));
  std::string arguments = line.count == uint64_t{1} << 32 ? "all 2^32" : std::to_string(line.count);
  if (line.found != Found::swept)
    arguments = std::string(name_of(line.found)).append(" ").append(arguments);
  return {line.function,
          kernel,
          line.level,
          number("%.4f", line.ulp),
          at,
          arguments,
          line.steps_back < 0 ? "" : std::to_string(line.steps_back)};
}

std::vector<std::string> one_float_functions() {
  std::vector<std::string> names;
  for (const reference::AnyRow& any : reference::rows()) {
    const auto* row = std::get_if<reference::Row<float>>(&any);
    if (row != nullptr && row->shape.numbers_in() == 1) names.push_back(row->name());
  }
  return names;
}

// "v1 v4" for a function, "" for one that was swept at no level.
std::string swept_levels(const std::vector<WorstCase>& cases, const std::string& function) {
  std::string levels;
  for (const WorstCase& line : cases) {
    if (line.function != function || line.found != Found::swept) continue;
    if (levels.find(line.level) == std::string::npos) {
      levels.append(levels.empty() ? "" : " ").append(line.level);
    }
  }
  return levels;
}

std::string swept_paragraph(const std::vector<WorstCase>& cases) {
  std::map<std::string, std::string> functions;  // by levels
  for (const std::string& name : one_float_functions()) {
    std::string& list = functions[swept_levels(cases, name)];
    list.append(list.empty() ? "" : ", ").append(name);
  }
  std::string text;
  for (const auto& [levels, list] : functions) {
    text.append("\nSwept at ").append(levels).append(": ").append(list).append(".\n");
  }
  return text;
}

}  // namespace

std::vector<std::string> missing(const std::vector<WorstCase>& cases) {
  std::vector<std::string> faults;
  for (const reference::AnyRow& any : reference::rows()) {
    std::visit(
        [&](const auto& row) {
          for (const int slot : row.distinct_slots()) {
            const std::string name = row.name(), kernel = reference::kernel_key(row, slot);
            const bool there = std::ranges::any_of(cases, [&](const WorstCase& line) {
              return line.function == name && line.kernel == kernel;
            });
            if (!there) faults.push_back(name + " " + kernel + " was not measured");
          }
        },
        any);
  }
  for (const std::string& name : one_float_functions()) {
    if (swept_levels(cases, name).empty()) faults.push_back(name + " was swept at no level");
  }
  return faults;
}

std::string accuracy_section(const std::vector<WorstCase>& cases) {
  std::string text = kHead + swept_paragraph(cases) + "\n";
  const auto add = [&](const PageLine& line) { text.append(to_text(line)).append("\n"); };
  add(kTitles);
  add(PageLine(kTitles.size(), "---"));
  for (const WorstCase& line : cases) add(page_line(line));
  return text;
}

}  // namespace qor::tools
