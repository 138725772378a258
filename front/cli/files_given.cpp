#include "front/cli/files_given.h"

#include "front/cli/file_place.h"
#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

struct Given {
  NamedFile file;
  FilePlace place;
  std::string_view replaces = {};
};

std::vector<Given> files_of(const Command& command, const Arguments& arguments) {
  std::vector<Given> files;
  const auto add = [&](const NamedFile& file, std::string_view replaces = {}) {
    if (file.use != FileUse::none) files.push_back({file, place_of(file.path), replaces});
  };
  for (size_t i = 0; i < command.operands.size(); ++i) {
    const Operand& operand = command.operands[i];
    add({operand.name, arguments.operands[i], operand.use});
  }
  for (const Option& option : command.options) {
    const std::string name(option.name);
    if (arguments.has(name)) add({name, arguments.option(name, ""), option.use}, option.replaces);
  }
  if (command.more_files != nullptr) {
    for (const NamedFile& file : command.more_files(arguments)) add(file);
  }
  files.push_back({{"standard output", "", FileUse::written}, place_of_standard_output()});
  return files;
}

// Whether writing the output would destroy the other file, or what is written there.
bool clash(const Given& output, const Given& other) {
  if (!same_file(output.place, other.place)) return false;
  if (other.file.use == FileUse::written) {
    // What goes through one descriptor comes one behind the other.
    return output.place.descriptor < 0 || output.place.descriptor != other.place.descriptor;
  }
  return output.replaces != other.file.name || !output.place.is_replaced();
}

}  // namespace

void check_files(const Command& command, const Arguments& arguments) {
  const std::vector<Given> files = files_of(command, arguments);
  const auto shown = [](const NamedFile& file, const char* between) {
    return file.path.empty() ? file.name : file.name + between + quoted(file.path);
  };
  for (const Given& output : files) {
    if (output.file.use != FileUse::written) continue;
    for (const Given& other : files) {
      if (&other == &output || !clash(output, other)) continue;
      const bool is_read = other.file.use == FileUse::read;
      throw InputError(shown(output.file, ": ") + " is the file that is " +
                       (is_read ? "read" : "written") + " as " + shown(other.file, ", ") +
                       "; another one is accepted");
    }
  }
}

}  // namespace qor::cli
