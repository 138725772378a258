#include "tools/section.h"

#include <fstream>
#include <iterator>

namespace qor::tools {
namespace {

// Where a section stands in a document: its heading, its text, its end.
struct Place {
  size_t heading, text, end;
};

std::string read(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

Place find(const std::string& document, const std::string& title) {
  const std::string heading = "\n## " + title + "\n";
  const size_t at = document.find(heading);
  if (at == std::string::npos) return {document.size(), document.size(), document.size()};
  const size_t text = at + heading.size();
  const size_t next = document.find("\n## ", text - 1);
  return {at, text, next == std::string::npos ? document.size() : next};
}

}  // namespace

std::string read_section(const std::string& path, const std::string& title) {
  const std::string document = read(path);
  const Place place = find(document, title);
  return document.substr(place.text, place.end - place.text);
}

void write_section(const std::string& path, const std::string& title, const std::string& text) {
  std::string document = read(path);
  const Place place = find(document, title);
  document.replace(place.heading, place.end - place.heading, "\n## " + title + "\n\n" + text);
  std::ofstream(path) << document;
}

}  // namespace qor::tools
