// The command qor as a person runs it, in a folder of its own: what goes to which stream and into
// which file, and with which status.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "front/cli/csv.h"

namespace qor::test {

namespace fs = std::filesystem;

struct Result {
  int status;
  std::string out, err;
};

class Command : public testing::Test {
 protected:
  void SetUp() override {
    std::string folder = fs::temp_directory_path() / "qor_command_XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    folder_ = folder;
    fs::create_directory(folder_ / "work");
    fs::current_path(folder_ / "work");
  }
  void TearDown() override {
    fs::current_path(before_);
    fs::remove_all(folder_);
  }

  // Runs a line of the shell, in which `qor` is the command.
  static Result shell(const std::string& line) {
    static const std::string path =
        "PATH=" + fs::path(QOR_COMMAND).parent_path().string() + ":$PATH";
    const int status =
        std::system((path + "\n{ " + line + "\n} >../out 2>../err </dev/null").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, content("../out"), content("../err")};
  }

  // The output of a call of the command that succeeds and has nothing to say beside it.
  static std::string output(const std::string& arguments) {
    const Result result = shell("qor " + arguments);
    EXPECT_EQ(result.status, 0) << arguments;
    EXPECT_EQ(result.err, "") << arguments;
    return result.out;
  }

  static void write(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
  }
  static std::string content(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }
  // A text of CSV as the command reads it.
  static cli::Csv table_of(const std::string& text) {
    write("../table.csv", text);
    return cli::read_csv("../table.csv");
  }

 private:
  fs::path before_ = fs::current_path(), folder_;
};

}  // namespace qor::test
