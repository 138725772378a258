// The command lines of command_lines.txt, where their form is described.

#include <fnmatch.h>

#include <cstring>
#include <map>

#include "tests/front/command_fixture.h"
#include "tests/support/tables.h"

namespace {

using namespace qor::test;

// A text of the table with its ends of lines, and its * as the only thing that stands for another.
std::string pattern_of(const std::string& text) {
  std::string pattern;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "\\n") == 0) {
      pattern += '\n';
      ++i;
    } else {
      if (std::strchr("[]?\\", text[i]) != nullptr) pattern += '\\';
      pattern += text[i];
    }
  }
  return pattern;
}

void expect_fits(const std::string& text, const std::string& wanted) {
  EXPECT_EQ(fnmatch(pattern_of(wanted).c_str(), text.c_str(), 0), 0)
      << "got    " << text << "\nwanted " << wanted;
}

// What is before the separator; the text keeps what is behind it.
std::string cut(std::string& text, const std::string& separator) {
  const size_t at = text.find(separator);
  const std::string before = text.substr(0, at);
  text.erase(0, at == std::string::npos ? at : at + separator.size());
  return before;
}

class CommandLines : public Command {
 protected:
  using Files = std::map<std::string, std::string>;

  // The files of the folder, with what is in them.
  static Files files() {
    Files all;
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
      all[entry.path()] = entry.is_regular_file() ? content(entry.path()) : "";
    }
    return all;
  }

  // The names of those that came, went or changed.
  static std::string changed(const Files& before, const Files& after) {
    std::string names;
    for (const auto& [name, text] : before) {
      if (!after.contains(name) || after.at(name) != text) names += name + " ";
    }
    for (const auto& [name, text] : after) {
      if (!before.contains(name)) names += name + " ";
    }
    return names;
  }

  static void check(std::string row) {
    const int wanted = std::stoi(cut(row, "  "));
    const std::string line = cut(row, " => ");
    const auto before = files();
    const Result result = shell(line);
    EXPECT_EQ(result.status, wanted) << result.err;
    if (wanted == 0) {
      expect_fits(result.out, cut(row, " !! "));
      expect_fits(result.err, row);
    } else {
      EXPECT_EQ(result.out, "");
      expect_fits(result.err, "qor: " + row + "\n");
      EXPECT_EQ(changed(before, files()), "");
    }
  }
};

TEST_F(CommandLines, DoWhatTheTableSays) {
  setenv("data", QOR_EXAMPLE_DATA, 1);
  for (auto [place, row] : table_lines("front/command_lines.txt", 100)) {
    SCOPED_TRACE(place + " " + row);
    if (std::isdigit(row[0]) != 0) {
      check(row);
    } else {
      const std::string name = cut(row, "=");
      setenv(name.c_str(), row.c_str(), 1);
    }
  }
}

}  // namespace
