#include "front/cli/data_folder.h"

#include <filesystem>
#include <system_error>

#include "front/cli/input_error.h"

namespace qor::cli {

std::string data_folder() {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  const fs::path candidates[] = {
      program.parent_path().parent_path() / QOR_DATA_BELOW_PREFIX,
      QOR_DATA_INSTALLED,
      QOR_DATA_IN_SOURCES,
  };
  std::string tried;
  for (const fs::path& folder : candidates) {
    if (fs::is_directory(folder, error)) return folder.string();
    tried += "\n  " + folder.string();
  }
  throw InputError("the example data is in none of these folders (name one with --data):" + tried);
}

}  // namespace qor::cli
