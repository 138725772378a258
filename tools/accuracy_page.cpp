#include "tools/accuracy_page.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include "tests/support/rows.h"

namespace qor::tools {
namespace {

constexpr const char* kHead = R"(# Accuracy

Measured by `tools/accuracy` against MPFR; `tools/accuracy --write docs/accuracy.md` writes this
page anew. Errors are in ulp: the spacing of the type's numbers in the binade of the exact result,
that of denormals below. 0.5 is correct rounding. `inf` would be a NaN, an infinity or the sign of a
zero in the wrong place. An error callback sees the same values.

Arguments are all of them (`all 2^32`), or as many as the last column says: every power of two, small
integers and halves, the edges where the class of the result or the way of the kernel changes, each
with its neighbours, then random numbers with every exponent equally likely, random numbers between
edges and close to one. Pairs have exponents near to each other, or a power inside the range.
Kernels are named by the accuracies that they serve; strided kernels give the same bits. Levels: v1,
v3, v4 stand for x86-64-v1 and so on.

)";

std::map<std::string, size_t> table_order() {
  std::map<std::string, size_t> order;
  for (const test::AnyRow& any : test::rows()) {
    const std::string name = std::visit([](const auto& row) { return row.name(); }, any);
    order.emplace(name, order.size());
  }
  return order;
}

std::vector<AccuracyLine> read_page(const std::string& path) {
  std::vector<AccuracyLine> lines;
  std::ifstream file(path);
  for (std::string text; std::getline(file, text);) {
    AccuracyLine line = from_text(text);
    if (!line.function.empty()) lines.push_back(line);
  }
  return lines;
}

bool replaces(const AccuracyLine& fresh, const AccuracyLine& old) {
  const auto worst = [](const AccuracyLine& line) {
    return std::strtod(line.worst.c_str(), nullptr);
  };
  return fresh.exhaustive() || !old.exhaustive() || worst(fresh) > worst(old);
}

}  // namespace

std::string to_text(const AccuracyLine& line) {
  return "| " + line.function + " | " + line.slots + " | " + line.level + " | " + line.worst +
         " | " + line.at + " | " + line.mean + " | " + line.arguments + " |";
}

AccuracyLine from_text(const std::string& text) {
  std::vector<std::string> fields;
  std::istringstream stream(text);
  for (std::string field; std::getline(stream, field, '|');) {
    const size_t first = field.find_first_not_of(' ');
    fields.push_back(first == std::string::npos
                         ? ""
                         : field.substr(first, field.find_last_not_of(' ') + 1 - first));
  }
  const bool line = fields.size() == 8 && fields[3].size() == 2 && fields[3][0] == 'v';
  if (!line) return {};
  return {fields[1], fields[3], fields[2], fields[4], fields[5], fields[6], fields[7]};
}

void write_accuracy_page(const std::string& path, const std::vector<AccuracyLine>& measured) {
  std::vector<AccuracyLine> lines = read_page(path);
  for (const AccuracyLine& fresh : measured) {
    const auto old = std::find_if(lines.begin(), lines.end(),
                                  [&](const AccuracyLine& line) { return line.same_key(fresh); });
    if (old == lines.end()) {
      lines.push_back(fresh);
    } else if (replaces(fresh, *old)) {
      *old = fresh;
    }
  }
  const auto order = table_order();
  std::erase_if(lines, [&](const AccuracyLine& line) { return !order.contains(line.function); });
  std::stable_sort(lines.begin(), lines.end(), [&](const AccuracyLine& a, const AccuracyLine& b) {
    return std::pair(order.at(a.function), a.level) < std::pair(order.at(b.function), b.level);
  });
  std::ofstream file(path);
  file << kHead << "| function | kernel | level | worst | at | mean | arguments |\n"
       << "|---|---|---|---|---|---|---|\n";
  for (const AccuracyLine& line : lines) file << to_text(line) << "\n";
}

}  // namespace qor::tools
