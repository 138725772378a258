// The shape of a command of qor: what it takes, what it says about itself, what it does.
// A new command is one file that defines one, and its line in the table of main.cpp.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qor::cli {

// What becomes of a file that is named.
enum class FileUse { none, read, written };

struct Operand {
  std::string name;
  FileUse use = FileUse::none;  // of the file that it names, where it names one
};

// An option --name VALUE (or --name=VALUE), or a flag --name, given at most once.
struct Option {
  std::string_view name;   // with its dashes
  std::string_view value;  // what stands for the value in the help; empty: a flag, which has none
  std::string_view help;
  std::vector<std::string> choices = {};  // what is accepted; empty: any text
  bool required = false;
  FileUse use = FileUse::none;     // of the file that its value names, where it names one
  std::string_view replaces = {};  // the option whose file, read before, the written one may be
};

// The arguments of one call, checked against what its command declares.
class Arguments {
 public:
  std::vector<std::string> operands;  // as many as declared

  // The value of an option, or `otherwise` when it was not given.
  std::string option(std::string_view name, std::string_view otherwise) const;
  bool has(std::string_view name) const;

  struct Given {
    std::string name, value;
  };
  std::vector<Given> options;
};

// What a command writes, kept back until all has gone well.
struct Output {
  struct File {
    std::string_view option;  // that names it
    std::string path, text;
  };
  std::string out;
  std::string err;
  std::vector<File> files;  // written first: if one cannot be, nothing follows
};

struct NamedFile {
  std::string name;  // of the option or operand
  std::string path;
  FileUse use;
};

struct Command {
  std::string_view name;
  std::string_view summary;  // one line
  std::vector<Operand> operands;
  std::vector<Option> options;
  void (*run)(const Arguments& arguments, Output& output);  // bad input: throws InputError
  std::string (*more_help)() = nullptr;
  // The files that no value names by itself.
  std::vector<NamedFile> (*more_files)(const Arguments& arguments) = nullptr;
};

// Checks what follows the command's name on the command line.
Arguments parse_arguments(const Command& command, std::span<const std::string> words);

std::string usage(const Command& command);  // one line
std::string help(const Command& command);   // all of it

}  // namespace qor::cli
