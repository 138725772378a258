// qor random for tests, and the library beside it.
#pragma once

#include "qor/distributions.h"
#include "tests/front/command_fixture.h"
#include "tests/streams/stream_support.h"

namespace qor::test {

template <class Value>
std::string bytes_of(const std::vector<Value>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(Value)};
}

inline std::string uniform_bytes(const Stream& stream, size_t n) {
  std::vector<double> values(n);
  _ostdRngUniform(0, stream.get(), static_cast<int32_t>(n), values.data(), 0, 1);
  return bytes_of(values);
}

class Random : public Command {
 protected:
  // Runs a drawing that must succeed and returns what it wrote to standard output.
  std::string drawn(const std::string& arguments) const {
    const Result result = run("random " + arguments);
    EXPECT_EQ(result.status, 0) << arguments << "\n" << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }
  std::string path(const std::string& name) const { return folder_ / name; }
  // The names in the folder but for the two that a run makes.
  std::string names() const {
    std::string all;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      const std::string name = entry.path().filename();
      if (name != "out" && name != "err") all += name + " ";
    }
    return all;
  }
};

inline const std::string kMcg59 = "--generator mcg59 --seed 7777777 ";

}  // namespace qor::test
