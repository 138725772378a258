#include "tools/page.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "reference/rows.h"
#include "tools/section.h"

namespace qor::tools {
namespace {

std::map<std::string, size_t> table_order() {
  std::map<std::string, size_t> order;
  for (const reference::AnyRow& any : reference::rows()) {
    const std::string name = std::visit([](const auto& row) { return row.name(); }, any);
    order.emplace(name, order.size());
  }
  return order;
}

bool same_key(const PageLine& a, const PageLine& b) {
  return std::equal(a.begin(), a.begin() + key_fields, b.begin());
}

}  // namespace

std::string to_text(const PageLine& line) {
  std::string text = "|";
  for (const std::string& field : line) text.append(" ").append(field).append(" |");
  return text;
}

PageLine from_text(const std::string& text) {
  PageLine line;
  std::istringstream stream(text);
  std::string field;
  if (!std::getline(stream, field, '|') || !field.empty()) return {};
  while (std::getline(stream, field, '|')) {
    const size_t first = field.find_first_not_of(' ');
    const size_t last = field.find_last_not_of(' ');
    line.push_back(first == std::string::npos ? "" : field.substr(first, last + 1 - first));
  }
  return line.size() > key_fields ? line : PageLine{};
}

void write_page(const std::string& path, const std::string& title, const char* head,
                const PageLine& titles, const std::vector<PageLine>& measured) {
  std::vector<PageLine> lines;
  std::istringstream before(read_section(path, title));
  for (std::string text; std::getline(before, text);) lines.push_back(from_text(text));
  for (const PageLine& fresh : measured) {
    const auto old = std::find_if(lines.begin(), lines.end(), [&](const PageLine& line) {
      return !line.empty() && same_key(line, fresh);
    });
    if (old == lines.end()) {
      lines.push_back(fresh);
    } else {
      *old = fresh;
    }
  }
  const auto order = table_order();
  // By function and level; of these in the order that they have.
  std::multimap<std::pair<size_t, std::string>, PageLine> sorted;
  for (const PageLine& line : lines) {
    if (line.size() == titles.size() && order.contains(line[0])) {
      sorted.emplace(std::pair(order.at(line[0]), line[2]), line);
    }
  }
  std::string text = head;
  const auto add = [&](const PageLine& line) { text.append(to_text(line)).append("\n"); };
  add(titles);
  add(PageLine(titles.size(), "---"));
  for (const auto& [key, line] : sorted) add(line);
  write_section(path, title, text);
}

}  // namespace qor::tools
