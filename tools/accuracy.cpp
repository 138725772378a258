// Measures the accuracy of every kernel of the row list.
//
//   accuracy [--only sExp,dLn] [--count N] [--exhaustive] [--threads N]
//     prints a line per function and kernel of the library that the loader found
//   accuracy ... --write docs/accuracy.md [--levels build/release/levels]
//     runs itself on every level's library and writes the page

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "qor/vector_math.h"
#include "tools/accuracy_measure.h"
#include "tools/levels.h"
#include "tools/page.h"

namespace {

using qor::reference::Row;
using qor::tools::Measurement;
using qor::tools::PageLine;

constexpr const char* kHead =
    R"(Measured by `tools/accuracy` against MPFR; `tools/accuracy --write docs/accuracy.md` writes this
section anew. Errors are in ulp: the spacing of the type's numbers in the binade of the exact result,
that of denormals below. 0.5 is correct rounding. `inf` would be a NaN, an infinity or the sign of a
zero in the wrong place. An error callback sees the same values.

Arguments are all of them (`all 2^32`), or as many as the last column says: every power of two, small
integers and halves, the edges where the class of the result or the way of the kernel changes, each
with its neighbours, then random numbers with every exponent equally likely, random numbers between
edges and close to one. Pairs have exponents near to each other, or a power inside the range.
Kernels are named by the accuracies that they serve; strided kernels give the same bits. Levels: v1,
v3, v4 stand for x86-64-v1 and so on.

)";
const PageLine kTitles = {"function", "kernel", "level", "worst", "at", "mean", "arguments"};
constexpr size_t kWorst = 3, kArguments = 6;  // fields
constexpr const char* kEvery = "all 2^32";    // arguments

// A sample leaves a line over all arguments standing unless it shows a worse case.
bool replaces(const PageLine& fresh, const PageLine& old) {
  return fresh[kArguments] == kEvery || old[kArguments] != kEvery ||
         std::stod(fresh[kWorst]) > std::stod(old[kWorst]);
}

struct Options {
  std::vector<std::string> only;  // names of functions; empty for all
  std::string page, levels = QOR_BUILD_LEVELS, level = "v?";
  uint64_t count = 1 << 18;
  bool exhaustive = false;
  int threads = 2;
};

[[noreturn]] void usage(const char* word) {
  std::fprintf(stderr,
               "accuracy: %s is none of --only NAMES, --count N, --exhaustive, --threads N, "
               "--write FILE, --levels FOLDER, --level NAME\n",
               word);
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
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--exhaustive") {
      options.exhaustive = true;
      continue;
    }
    if (i + 1 == words.size()) usage(words[i].c_str());
    const std::string& value = words[i + 1];
    if (words[i] == "--only") {
      options.only = split(value);
    } else if (words[i] == "--count") {
      options.count = std::strtoull(value.c_str(), nullptr, 10);
    } else if (words[i] == "--threads") {
      options.threads = std::max(1, std::atoi(value.c_str()));
    } else if (words[i] == "--write") {
      options.page = value;
    } else if (words[i] == "--levels") {
      options.levels = value;
    } else if (words[i] == "--level") {
      options.level = value;
    } else {
      usage(words[i].c_str());
    }
    ++i;
  }
  return options;
}

std::string number(const char* format, double x) {
  char text[64];
  std::snprintf(text, sizeof text, format, x);
  return text;
}

template <class T>
void print_line(const Options& options, const Row<T>& row, int slot, const Measurement& found,
                const std::string& arguments) {
  std::string at;
  if (found.worst > 0) {
    for (int k = 0; k < row.shape.numbers_in(); ++k)
      at.append(k > 0 ? ", " : "").append(number("%a", found.at[static_cast<size_t>(k)]));
  }
  const PageLine line{row.name(),
                      row.sharing(slot),
                      options.level,
                      number("%.4f", found.worst),
                      at,
                      number("%.4f", found.mean()),
                      arguments};
  std::printf("%s\n", qor::tools::to_text(line).c_str());
  std::fflush(stdout);
}

template <class T>
void measure(const Options& options, const Row<T>& row) {
  if (!options.only.empty() && std::ranges::count(options.only, row.name()) == 0) return;
  for (int slot : row.distinct_slots()) {
    if constexpr (sizeof(T) == sizeof(float)) {
      if (options.exhaustive && row.shape.numbers_in() == 1 &&
          row.reference->in_double != nullptr) {
        print_line(options, row, slot, qor::tools::measure_all(row, slot, options.threads), kEvery);
        continue;
      }
    }
    const Measurement found = qor::tools::measure_sample(row, slot, options.count);
    print_line(options, row, slot, found, std::to_string(found.count));
  }
}

void write_page(const Options& options, std::vector<std::string> arguments) {
  std::vector<PageLine> lines;
  for (const std::string& level : qor::tools::runnable_levels(options.levels)) {
    std::vector<std::string> words = arguments;
    words.insert(words.end(), {"--level", level, "--write", ""});
    for (const std::string& text : qor::tools::run_on_level(options.levels, level, words)) {
      lines.push_back(qor::tools::from_text(text));
    }
    qor::tools::write_page(options.page, "Vector math", kHead, kTitles, lines, replaces);
  }
}

}  // namespace

int main(int count, char** words) {
  const std::vector<std::string> arguments(words + 1, words + count);
  const Options options = parse(arguments);
  if (!options.page.empty()) {
    write_page(options, arguments);
    return 0;
  }
  _arkSetMode(QOR_MODE_ERRORS_IGNORE);
  for (const auto& any : qor::reference::rows()) {
    std::visit([&](const auto& row) { measure(options, row); }, any);
  }
  return 0;
}
