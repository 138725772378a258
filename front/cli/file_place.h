// What the name of a file stands for.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

namespace qor::cli {

struct FilePlace {
  std::string path;                        // where the chain of symbolic links ends
  int descriptor = -1;                     // the open one that is named, as by /dev/stdout
  std::optional<struct stat> status = {};  // of what is there
  int error = 0;  // errno: why the path does not lead there; ENOENT: nothing is there

  // Whether writing puts a new file there, in place of a plain one or of none.
  bool is_replaced() const;
};

FilePlace place_of(const std::string& name);
FilePlace place_of_standard_output();

// Whether one is written over the other, whatever their names. Devices and pipes are never: they
// take what comes.
bool same_file(const FilePlace& one, const FilePlace& other);

}  // namespace qor::cli
