// qor: the kernels at work on files, from the command line.

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <deque>
#include <exception>
#include <string>
#include <vector>

#include "front/cli/command.h"
#include "front/cli/commands.h"
#include "front/cli/files_given.h"
#include "front/cli/input_error.h"
#include "front/cli/output_file.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

constexpr int kBadInput = 2;
constexpr int kFailed = 1;

const Command* const kCommands[] = {
    &tour_command, &map_command, &random_command, &fit_command, &stats_command,
};

std::string overview() {
  std::string text = "usage: qor COMMAND ...\n\n";
  for (const Command* command : kCommands) {
    text += format("  %-8s %s\n", std::string(command->name).c_str(),
                   std::string(command->summary).c_str());
  }
  return text + "\nqor COMMAND --help tells what a command takes.\n";
}

const Command& find_command(const std::string& name) {
  std::vector<std::string> names;
  for (const Command* command : kCommands) {
    if (command->name == name) return *command;
    names.emplace_back(command->name);
  }
  throw InputError("no command " + quoted(name) + "; the commands are " + joined(names));
}

bool asks_for_help(const std::string& word) { return word == "--help" || word == "-h"; }

void run(std::span<const std::string> words, Output& output) {
  if (words.empty()) throw InputError("a command is missing\n" + overview());
  if (asks_for_help(words[0]) || words[0] == "help") {
    output.out = overview();
    return;
  }
  const Command& command = find_command(words[0]);
  if (words.size() > 1 && asks_for_help(words[1])) {
    output.out = help(command);
    return;
  }
  const Arguments arguments = parse_arguments(command, words.subspan(1));
  check_files(command, arguments);
  command.run(arguments, output);
}

// Closed ones are made to fail: the number of none of the three may be that of a file that is
// opened later.
void hold_standard_descriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

// Returns whether all of it went out.
bool write(std::FILE* to, const std::string& text) {
  return std::fwrite(text.data(), 1, text.size(), to) == text.size() && std::fflush(to) == 0;
}

// All are written before one takes its name.
void write(const std::vector<Output::File>& files) {
  std::deque<OutputFile> written;
  for (const Output::File& file : files) {
    written.emplace_back(file.option, file.path).write(file.text);
  }
  for (OutputFile& file : written) file.commit();
}

}  // namespace
}  // namespace qor::cli

int main(int count, char** values) {
  using namespace qor::cli;
  hold_standard_descriptors();
  Output output;
  try {
    const std::vector<std::string> words(values + (count > 0 ? 1 : 0), values + count);
    run(words, output);
    write(output.files);
  } catch (const InputError& error) {
    std::fprintf(stderr, "qor: %s\n", error.what());
    return kBadInput;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qor: %s\n", error.what());
    return kFailed;
  }
  // Some file systems tell only at the end that a write failed.
  if (!write(stdout, output.out) || std::fclose(stdout) != 0) {
    std::perror("qor: standard output");
    return kFailed;
  }
  return write(stderr, output.err) ? 0 : kFailed;
}
