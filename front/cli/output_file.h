// Where a command writes what is too long to be held back.
#pragma once

#include <string>
#include <string_view>

#include "front/cli/file_place.h"

namespace qor::cli {

// A file that takes the place of the one of its name only when all has been written: until then it
// has another name in the same folder, and it goes when it is given up. What is no plain file (a
// device, a pipe) and what is open (standard output, /dev/fd/3) are written as they are.
//
// A place where no file can be written is an InputError that names the option; a failure to write
// is a std::runtime_error.
class OutputFile {
 public:
  OutputFile();  // standard output
  OutputFile(std::string_view option, const std::string& path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  void write(std::string_view bytes);
  void commit();  // writes nothing more; the file now has its name

 private:
  int create(const FilePlace& place);
  [[noreturn]] void fail() const;
  void close();

  std::string name_;       // for messages
  std::string target_;     // the name that it will have
  std::string temporary_;  // the one that it has; empty when it is written as it is
  int descriptor_ = -1;
};

}  // namespace qor::cli
