// The command qor as a person runs it: what goes to which stream, and with which status.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <sstream>
#include <string>
#include <vector>

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
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string file(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return folder_ / name;
  }

  // Runs qor with arguments as a shell reads them.
  Result run(const std::string& arguments) const {
    const std::string out = folder_ / "out", err = folder_ / "err";
    const std::string line = QOR_COMMAND " " + arguments + " >" + out + " 2>" + err + " </dev/null";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, content(out), content(err)};
  }

  // A call that is refused, and what its message names.
  struct Refused {
    std::string arguments;
    std::vector<std::string> named;
  };
  void expect_refused(std::span<const Refused> calls) const {
    for (const Refused& call : calls) {
      SCOPED_TRACE("qor " + call.arguments);
      const Result result = run(call.arguments);
      EXPECT_EQ(result.status, 2);
      EXPECT_EQ(result.out, "");
      EXPECT_EQ(result.err.find("qor: "), 0u);
      for (const std::string& name : call.named) {
        EXPECT_NE(result.err.find(name), std::string::npos) << name << " in " << result.err;
      }
    }
  }

  static std::string content(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

  fs::path folder_;
};

}  // namespace qor::test
