// A benchmark of the function rows, at every level, and the section of a document that it writes.
#pragma once

#include <cstdio>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "bench/least_times.h"
#include "bench/run_levels.h"
#include "qor/vector_math.h"
#include "reference/rows.h"
#include "tools/page.h"

namespace qor::bench {

struct RowPage {
  const char *title, *head;
  tools::PageLine titles;
};

// At one level: `add(row, level)` registers what is timed of a row, `print(row, level, times)`
// prints its lines.
template <class Add, class Print>
void run_rows(const Options& options, const std::string& only, Add add_row, Print print) {
  _arkSetMode(QOR_MODE_ERRORS_IGNORE);
  std::set<std::string> names;
  std::istringstream list(only);
  for (std::string name; std::getline(list, name, ',');) names.insert(name);
  const auto for_all = [&](auto action) {
    for (const auto& any : reference::rows()) {
      std::visit(
          [&](const auto& row) {
            if (only.empty() || names.contains(row.name())) action(row);
          },
          any);
    }
  };
  for_all([&](const auto& row) { add_row(row, options.level); });
  LeastTimes times;
  run_registered(options.passed_on, times);
  for_all([&](const auto& row) { print(row, options.level, times); });
}

// The whole program: runs itself on each level's library and writes the page when asked to.
template <class Add, class Print>
int benchmark_rows(int count, char** words, const RowPage& page, Add add_row, Print print) {
  std::string only;
  Options options = parse(count, words, {{"--only", &only}});
  if (!options.level.empty()) {
    run_rows(options, only, add_row, print);
    return 0;
  }
  if (!only.empty()) options.passed_on.insert(options.passed_on.end(), {"--only", only});
  std::vector<tools::PageLine> lines;
  std::printf("%s\n", tools::to_text(page.titles).c_str());
  run_on_levels(options, [&](const std::string&, const auto& texts) {
    for (const std::string& text : texts) {
      std::printf("%s\n", text.c_str());
      lines.push_back(tools::from_text(text));
    }
  });
  if (options.page.empty()) return 0;
  tools::write_page(options.page, page.title, page.head, page.titles, lines);
  return 0;
}

}  // namespace qor::bench
