#include "tools/accuracy/levels.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "qor/vector_math.h"
#include "tools/levels.h"

namespace qor::tools {
namespace {

void* symbol(const LevelLibrary& library, const std::string& name) {
  void* const found = dlsym(library.handle, name.c_str());
  if (found == nullptr) {
    std::fprintf(stderr, "accuracy: the library of %s has no %s\n", library.level.c_str(),
                 name.c_str());
    std::exit(1);
  }
  return found;
}

}  // namespace

std::string library_path(const std::string& folder, const std::string& level) {
  return folder + "/" + level + "/libqor_ark_base.so.1";
}

std::vector<LevelLibrary> load_levels(const std::string& folder) {
  std::vector<LevelLibrary> libraries;
  for (const std::string& level : runnable_levels(folder)) {
    const std::string path = library_path(folder, level);
    // Bound to its own rows first: another level's are in the process already.
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    if (handle == nullptr) {
      std::fprintf(stderr, "accuracy: %s\n", dlerror());
      std::exit(1);
    }
    libraries.push_back({level, handle});
  }
  return libraries;
}

void silence(const std::vector<LevelLibrary>& libraries) {
  for (const LevelLibrary& library : libraries) {
    const auto set_mode = reinterpret_cast<decltype(&_arkSetMode)>(symbol(library, "_arkSetMode"));
    set_mode(QOR_MODE_ERRORS_IGNORE);
  }
}

void* table_of(const LevelLibrary& library, const std::string& row) {
  return symbol(library, "qor_ark_kernel_" + row + "_ttab");
}

}  // namespace qor::tools
