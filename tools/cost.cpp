// Measures the cost figures of the row list that are not given: cycles per element at x86-64-v1.
//
//   cost [--levels build/release/levels]                  prints a line per function: LA, HA, EP
//   cost --write include/qor/vector_math_rows.h [...]     puts them into the list
//
// Method. A call on 1024 ordinary elements in cache is timed with the time-stamp counter, the least
// of many calls counts. A tick of that counter is turned into core cycles by a chain of dependent
// additions, one cycle each, timed in the same way just before. Slots that share a kernel have one
// figure, and the strided row that of its mate.

#include <x86intrin.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "reference/evaluate.h"
#include "tools/levels.h"

namespace {

using qor::reference::Row;

// Figures that are given: rows by name, and round fillers by their value.
constexpr std::string_view kGivenRows[] = {
    "sExp",  "sAdd",  "sSub",  "sMul",   "dAdd",     "sFrac",    "dFrac",    "sSin",    "sTan",
    "sAcos", "sAsin", "sAtan", "sAtan2", "sErfInv",  "cArg",     "dPow",     "cLn",     "zLn",
    "cAdd",  "cSub",  "zAdd",  "zSub",   "sCdfNorm", "dCdfNorm", "sExpInt1", "dExpInt1"};
constexpr float kFillers[] = {220.3f, 1111.0f, 111.3f, 111.0f, 111.111f};

bool is_open(std::string_view name, float figure) {
  return std::ranges::count(kGivenRows, name) == 0 && std::ranges::count(kFillers, figure) == 0;
}

// The least number of ticks that a call takes.
template <class Run>
double least_ticks(int repetitions, Run run) {
  uint64_t least = ~uint64_t{0};
  for (int i = 0; i < repetitions; ++i) {
    unsigned processor;
    const uint64_t start = __rdtscp(&processor);
    run();
    least = std::min<uint64_t>(least, __rdtscp(&processor) - start);
  }
  return static_cast<double>(least);
}

double cycles_per_tick() {
  constexpr int kAdditions = 1 << 14;
  const double ticks = least_ticks(400, [] {
    uint64_t sum = 1;
    for (int i = 0; i < kAdditions; i += 16) {
      asm volatile(".rept 16\n\tadd %0, %0\n\t.endr" : "+r"(sum));
    }
  });
  return kAdditions / ticks;
}

template <class T>
double cycles_per_element(const Row<T>& row, int slot) {
  constexpr size_t kCount = 1024;
  constexpr int kRepetitions = 3000;
  const auto batch = qor::reference::Arguments<T>(row).ordinary(kCount);
  auto results = qor::reference::run(row, slot, batch);
  auto call = qor::reference::call_on(row, batch);
  for (size_t k = 0; k < results.size(); ++k) call.out[k] = results[k].data();
  const double scale = cycles_per_tick();
  return scale * least_ticks(kRepetitions, [&] { row.run(slot, call); }) / kCount;
}

template <class T>
void print_figures(const Row<T>& row) {
  if (!is_open(row.name(), row.costs[0])) return;
  std::map<char, double> by_kernel;
  std::printf("%s", row.name().c_str());
  for (int slot = 0; slot < qor::reference::slots; ++slot) {
    const auto [figure, fresh] = by_kernel.emplace(row.kernels[static_cast<size_t>(slot)], 0.0);
    if (fresh) figure->second = cycles_per_element(row, slot);
    std::printf(" %.2f", figure->second);
  }
  std::printf("\n");
}

// The list with the figures of `lines` ("sSqrt 1.5 1.5 1.5") in place of what it has.
std::string with_figures(const std::string& list, const std::vector<std::string>& lines) {
  std::map<std::string, std::string> figures;
  for (const std::string& line : lines) {
    std::string name, la, ha, ep;
    std::istringstream(line) >> name >> la >> ha >> ep;
    std::ostringstream joined;
    joined << la << ", " << ha << ", " << ep;
    figures[name] = joined.str();
  }
  std::istringstream input(list);
  std::ostringstream output;
  for (std::string line; std::getline(input, line); output << line << '\n') {
    char letter = 0, base[32] = "";
    if (std::sscanf(line.c_str(), " X(%c, %31[A-Za-z0-9],", &letter, base) != 2) continue;
    const auto found = figures.find(std::string(1, letter).append(base));
    if (found == figures.end()) continue;
    size_t first = line.find(')');
    const size_t end = first;
    for (int field = 0; field < qor::reference::slots; ++field) first = line.rfind(',', first - 1);
    line.replace(first + 2, end - first - 2, found->second);
  }
  return output.str();
}

}  // namespace

int main(int count, char** words) {
  std::string list, levels = QOR_BUILD_LEVELS;
  bool measure = false;
  for (int i = 1; i < count; ++i) {
    const std::string_view word = words[i];
    if (word == "--measure") {
      measure = true;
    } else if (i + 1 < count && word == "--write") {
      list = words[++i];
    } else if (i + 1 < count && word == "--levels") {
      levels = words[++i];
    } else {
      std::fprintf(stderr, "cost: %s is none of --write LIST, --levels FOLDER\n", words[i]);
      return 2;
    }
  }
  if (measure) {
    for (const auto& any : qor::reference::rows()) {
      std::visit([](const auto& row) { print_figures(row); }, any);
    }
    return 0;
  }
  const auto lines = qor::tools::run_on_level(levels, "v1", {"--measure"});
  for (const std::string& line : lines) std::printf("%s\n", line.c_str());
  if (list.empty()) return 0;
  std::ifstream file(list);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  std::ofstream(list) << with_figures(text, lines);
  return 0;
}
