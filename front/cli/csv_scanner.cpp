#include "front/cli/csv_scanner.h"

#include "front/cli/input_error.h"

namespace qor::cli {

CsvScanner::CsvScanner(std::string_view text, const std::string& file, size_t line)
    : text_(text), file_(&file), line_(line) {
  if (line == 1 && text_.starts_with(kByteOrderMark)) text_.remove_prefix(kByteOrderMark.size());
}

bool CsvScanner::next(Csv::Row& row) {
  while (at_ < text_.size() && line_end() > 0) end_line();
  if (at_ == text_.size()) return false;
  row.line = line_;
  row.fields.clear();
  for (;;) {
    row.fields.push_back(peek() == '"' ? quoted_field() : plain_field());
    if (peek() != ',') break;
    ++at_;
  }
  end_line();
  return true;
}

size_t CsvScanner::line_end() const {
  if (text_.substr(at_, 1) == "\n") return 1;
  return text_.substr(at_, 2) == "\r\n" ? 2 : 0;
}

void CsvScanner::end_line() {
  at_ += line_end();
  ++line_;
}

std::string CsvScanner::plain_field() {
  const size_t start = at_;
  while (at_ < text_.size() && text_[at_] != ',' && line_end() == 0) ++at_;
  return std::string(text_.substr(start, at_ - start));
}

std::string CsvScanner::quoted_field() {
  const size_t opened = line_;
  std::string field;
  for (++at_; at_ < text_.size(); ++at_) {
    if (text_[at_] == '\n') ++line_;
    if (text_[at_] == '"') {
      if (text_.substr(at_, 2) != "\"\"") break;
      ++at_;
    }
    field += text_[at_];
  }
  if (at_ == text_.size()) fail(opened, "a quoted field that never ends");
  ++at_;
  if (at_ < text_.size() && text_[at_] != ',' && line_end() == 0) {
    fail(line_, "text behind the closing quote of a field; a comma or the line's end is accepted");
  }
  return field;
}

void CsvScanner::fail(size_t line, const std::string& what) const {
  throw InputError(*file_ + ", line " + std::to_string(line) + ": " + what);
}

}  // namespace qor::cli
