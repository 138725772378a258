// Measures the accuracy of every kernel of the row list, at all levels that this machine runs.
//
//   accuracy [--quick] [--only sExp,dLn] [--budget N] [--threads N] [--table FILE]
//            [--levels FOLDER]
//     puts what it finds into the table of worst cases, in place of what that has for the same
//     kernels, as soon as a function is done, and prints it: a part of the functions leaves a whole
//     table. An interrupted run, started again, goes on where it was.
//     --quick sweeps nothing, and searches an eighth as long (about five minutes at two levels):
//     a line of the table stays when its error is found again at its element, and nowhere a larger
//     one
//   accuracy --page docs/accuracy.md     writes the page from the table
//   accuracy --check docs/accuracy.md    says whether that would change it
//   accuracy --monotone [--only ...]     looks for steps back of floats alone

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tools/accuracy/page.h"
#include "tools/accuracy/progress.h"
#include "tools/accuracy/search.h"
#include "tools/accuracy/sweep.h"
#include "tools/levels.h"
#include "tools/section.h"

namespace {

using qor::reference::Found;
using qor::reference::Numbers;
using qor::reference::Row;
using qor::reference::WorstCase;
using qor::tools::Finding;
using qor::tools::LevelKernel;
using qor::tools::LevelLibrary;

struct Options {
  std::vector<std::string> only;  // names of functions; empty for all
  std::string table = QOR_SOURCE "/reference/worst_cases.txt", levels = QOR_BUILD_LEVELS;
  std::string page, checked_page;
  uint64_t budget = 0;  // arguments of a search
  int threads = 1;
  bool monotone = false, quick = false;

  bool wants(const std::string& name) const {
    return only.empty() || std::ranges::count(only, name) != 0;
  }
};

[[noreturn]] void usage(const std::string& word) {
  std::fprintf(
      stderr,
      "accuracy: %s is none of --quick, --only NAMES, --budget N, --threads N, --table FILE, "
      "--levels FOLDER, --page FILE, --check FILE, --monotone\n",
      word.c_str());
  std::exit(2);
}

std::vector<std::string> split(const std::string& names) {
  std::vector<std::string> list;
  std::istringstream stream(names);
  for (std::string name; std::getline(stream, name, ',');) list.push_back(name);
  return list;
}

Options parse(const std::vector<std::string>& words) {
  Options options;
  std::string only, budget, threads;
  const std::map<std::string, std::string*> values = {{"--only", &only},
                                                      {"--budget", &budget},
                                                      {"--threads", &threads},
                                                      {"--page", &options.page},
                                                      {"--check", &options.checked_page},
                                                      {"--table", &options.table},
                                                      {"--levels", &options.levels}};
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--monotone" || words[i] == "--quick") {
      (words[i] == "--quick" ? options.quick : options.monotone) = true;
      continue;
    }
    const auto value = values.find(words[i]);
    if (value == values.end() || i + 1 == words.size()) usage(words[i]);
    *value->second = words[++i];
  }
  options.only = split(only);
  options.budget = uint64_t{1} << (options.quick ? 25 : 28);
  if (!budget.empty()) options.budget = std::strtoull(budget.c_str(), nullptr, 10);
  if (!threads.empty()) options.threads = std::max(1, std::atoi(threads.c_str()));
  return options;
}

// ---- Measuring ------------------------------------------------------------------------------

// The elements of lines about a function: hard ones that are known, whichever kernel they are of.
template <class T>
std::vector<Numbers<T>> known_elements(const std::vector<WorstCase>& cases, const Row<T>& row) {
  std::vector<Numbers<T>> elements;
  for (const WorstCase& line : cases) {
    if (line.function != row.name() ||
        line.at.size() != static_cast<size_t>(row.shape.numbers_in()))
      continue;
    Numbers<T> numbers{};
    std::ranges::transform(line.at, numbers.begin(), [](double x) { return static_cast<T>(x); });
    elements.push_back(numbers);
  }
  return elements;
}

template <class T>
std::vector<WorstCase> measure(const Options& options, const std::vector<LevelLibrary>& libraries,
                               const std::vector<WorstCase>& known, const Row<T>& row) {
  const std::vector<LevelKernel<T>> kernels = qor::tools::kernels_of(libraries, row);
  std::vector<Finding<T>> findings;
  Found found = Found::searched;
  if constexpr (sizeof(T) == sizeof(float)) {
    if (row.shape.numbers_in() == 1 && !options.quick) {
      found = Found::swept;
      findings = qor::tools::sweep(libraries, kernels, options.threads, true);
    }
  }
  if (findings.empty() && row.bound(qor::reference::HA) == 0) {
    found = Found::sampled;
    findings = qor::tools::sample(row, kernels, uint64_t{1} << (options.quick ? 15 : 18));
  }
  if (findings.empty()) {
    findings = qor::tools::search(row, kernels, known_elements(known, row), options.budget);
  }
  std::vector<WorstCase> lines;
  for (size_t k = 0; k < kernels.size(); ++k) lines.push_back(findings[k].line(kernels[k], found));
  return lines;
}

// Whether a quick look found what the table says, to its digits. Samples do not try the table's
// elements.
bool confirms(const WorstCase& fresh, const WorstCase& old) {
  constexpr double kDigits = 1e-4;
  const bool as_large = fresh.found == Found::sampled || fresh.ulp > old.ulp - kDigits;
  return as_large && fresh.ulp < old.ulp + kDigits && old.found != Found::earlier;
}

void print(const WorstCase& line, const WorstCase* old) {
  std::printf("%-12s %-9s %s %8.4f", line.function.c_str(), line.kernel.c_str(), line.level.c_str(),
              line.ulp);
  if (old != nullptr) std::printf(" (%.4f)", old->ulp);
  for (const double x : line.at) std::printf(" %a", x);
  if (line.steps_back > 0) {
    std::printf(", %lld steps back", static_cast<long long>(line.steps_back));
  }
  std::printf("\n");
}

// The fresh lines take the places of those with their keys; lines of levels that this machine does
// not run are marked as earlier. The table is read anew, since another run may be at work on other
// functions.
void merge(const Options& options, const std::vector<WorstCase>& fresh) {
  std::vector<WorstCase> cases = qor::reference::read_worst_cases(options.table);
  for (const WorstCase& line : fresh) {
    const auto old = std::ranges::find_if(cases, [&](const auto& c) { return c.same_key(line); });
    print(line, old == cases.end() ? nullptr : &*old);
    if (old == cases.end()) {
      cases.push_back(line);
    } else if (!options.quick || !confirms(line, *old)) {
      *old = line;
    }
  }
  for (WorstCase& line : cases) {
    const bool same = !fresh.empty() && line.function == fresh[0].function;
    if (same && !qor::tools::processor_has(line.level)) line.found = Found::earlier;
  }
  std::fflush(stdout);
  qor::reference::write_worst_cases(options.table, std::move(cases));
}

// What makes a run another one: what is asked, and the bytes of the libraries.
std::string description(const Options& options, const std::vector<LevelLibrary>& libraries) {
  std::string text = options.table + (options.quick ? " quick " : " ");
  text.append(std::to_string(options.budget));
  for (const std::string& name : options.only) text.append(" ").append(name);
  for (const LevelLibrary& library : libraries) {
    const auto hash =
        qor::tools::hash_of_file(qor::tools::library_path(options.levels, library.level));
    text.append(" ").append(library.level).append(std::to_string(hash));
  }
  return text;
}

void measure_all(const Options& options, const std::vector<LevelLibrary>& libraries) {
  const std::vector<WorstCase> known = qor::reference::read_worst_cases(options.table);
  const auto for_wanted = [&](auto action) {
    for (const auto& any : qor::reference::rows()) {
      std::visit(
          [&](const auto& row) {
            if (options.wants(row.name())) action(row);
          },
          any);
    }
  };
  size_t count = 0;
  for_wanted([&](const auto&) { ++count; });
  qor::tools::Progress progress(options.levels, description(options, libraries), count);
  for_wanted([&](const auto& row) {
    if (progress.is_done(row.name())) return;
    merge(options, measure(options, libraries, known, row));
    progress.finish(row.name());
  });
  progress.forget();
}

// Prints the functions of floats that step back; 1 when there are any.
int find_steps_back(const Options& options, const std::vector<LevelLibrary>& libraries) {
  int status = 0;
  for (const auto& any : qor::reference::rows()) {
    const auto* row = std::get_if<Row<float>>(&any);
    if (row == nullptr || row->shape.numbers_in() != 1 || !options.wants(row->name())) continue;
    const auto kernels = qor::tools::kernels_of(libraries, *row);
    const auto findings = qor::tools::sweep(libraries, kernels, options.threads, false);
    for (size_t k = 0; k < kernels.size(); ++k) {
      if (findings[k].steps_back <= 0) continue;
      status = 1;
      std::printf("%s %s %s steps back %lld times\n", row->name().c_str(),
                  row->sharing(kernels[k].slot).c_str(), kernels[k].level.c_str(),
                  static_cast<long long>(findings[k].steps_back));
    }
  }
  return status;
}

// ---- The page -------------------------------------------------------------------------------

int write_or_check_page(const Options& options) {
  const std::vector<WorstCase> cases = qor::reference::read_worst_cases(options.table);
  const std::vector<std::string> faults = qor::tools::missing(cases);
  for (const std::string& fault : faults) std::fprintf(stderr, "accuracy: %s\n", fault.c_str());
  if (!faults.empty()) return 1;
  const std::string text = qor::tools::accuracy_section(cases);
  if (!options.page.empty()) {
    qor::tools::write_section(options.page, qor::tools::accuracy_title, text);
    return 0;
  }
  if (qor::tools::read_section(options.checked_page, qor::tools::accuracy_title) == "\n" + text) {
    return 0;
  }
  std::fprintf(stderr, "accuracy: %s is not what --page writes\n", options.checked_page.c_str());
  return 1;
}

}  // namespace

int main(int count, char** words) {
  const Options options = parse({words + 1, words + count});
  if (!options.page.empty() || !options.checked_page.empty()) return write_or_check_page(options);
  const std::vector<LevelLibrary> libraries = qor::tools::load_levels(options.levels);
  qor::tools::silence(libraries);
  if (options.monotone) return find_steps_back(options, libraries);
  measure_all(options, libraries);
  return 0;
}
