#include "front/cli/csv_scanner.h"

#include <algorithm>

#include "front/cli/input_error.h"

namespace qor::cli {
namespace {

constexpr size_t kOpen = std::string_view::npos;  // the text ends before it is decided

std::string_view view(std::span<const char> text) { return {text.data(), text.size()}; }

// The bytes of the line end that stands at the front; 0 when there is none.
size_t line_end(std::string_view text, bool whole) {
  if (text.starts_with('\n')) return 1;
  if (text.starts_with("\r\n")) return 2;
  return text == "\r" && !whole ? kOpen : 0;
}

// Reads a field without quotes; where it ends: at a comma, a line feed or the end of the text.
size_t plain_field(std::string_view text, size_t at, CsvRow& row) {
  size_t end = at;
  while (end < text.size() && text[end] != ',' && text[end] != '\n') ++end;
  const bool in_crlf = end > at && text[end - 1] == '\r' && text.substr(end).starts_with('\n');
  row.fields.push_back(text.substr(at, end - at - (in_crlf ? 1 : 0)));
  return end;
}

// The first quote that is not doubled.
size_t closing_quote(std::string_view text, size_t at) {
  for (;; at += 2) {
    at = text.find('"', at);
    if (at == std::string_view::npos) return kOpen;
    if (!text.substr(at).starts_with("\"\"")) return at;
  }
}

// Makes one of every two quotes, in the text that the field is a view into.
void halve_quotes(std::span<char> text, std::string_view& field) {
  char* const start = text.data() + (field.data() - text.data());
  char* to = start;
  for (size_t i = 0; i < field.size(); ++i) {
    *to++ = field[i];
    if (field[i] == '"') ++i;
  }
  field = {start, static_cast<size_t>(to - start)};
}

}  // namespace

bool CsvScanner::next(std::span<char>& text, bool whole, CsvRow& row) {
  if (!skip_to_row(text, whole)) return false;
  const bool ends_here = whole && text.size() <= kMostRow;
  const auto [bytes, lines] = scan(view(text).substr(0, kMostRow), ends_here, row);
  if (bytes == 0) {
    if (text.size() <= kMostRow) return false;
    fail(line_, "a row that goes on for more than " + std::to_string(kMostRow) +
                    " bytes; shorter ones are accepted");
  }
  for (const size_t i : doubled_) halve_quotes(text, row.fields[i]);
  text = text.subspan(bytes);
  line_ += lines;
  return true;
}

// Skips the byte order mark and blank lines; whether a row starts there.
bool CsvScanner::skip_to_row(std::span<char>& text, bool whole) {
  if (at_start_) {
    const bool marked = view(text).starts_with(kByteOrderMark);
    if (!marked && !whole && kByteOrderMark.starts_with(view(text))) return false;
    if (marked) text = text.subspan(kByteOrderMark.size());
    at_start_ = false;
  }
  while (!text.empty()) {
    const size_t blank = line_end(view(text), whole);
    if (blank == kOpen) return false;
    if (blank == 0) return true;
    text = text.subspan(blank);
    ++line_;
  }
  return false;
}

// Reads the row that the text starts with; what it takes, which is nothing when it goes on.
CsvScanner::Extent CsvScanner::scan(std::string_view text, bool whole, CsvRow& row) {
  row.line = line_;
  row.fields.clear();
  doubled_.clear();
  size_t lines = 1;
  for (size_t at = 0;; ++at) {
    const bool in_quotes = at < text.size() && text[at] == '"';
    at = in_quotes ? quoted_field(text, at, whole, row, lines) : plain_field(text, at, row);
    if (at == kOpen || (at == text.size() && !whole)) return {0, 0};
    if (at == text.size()) return {at, lines};
    if (text[at] == '\n') return {at + 1, lines};
  }
}

// Reads a field in quotes, and a carriage return before a line feed; ends where a plain field does.
size_t CsvScanner::quoted_field(std::string_view text, size_t at, bool whole, CsvRow& row,
                                size_t& lines) {
  const size_t opened = line_ + lines - 1;
  const size_t close = closing_quote(text, at + 1);
  if (close == kOpen) {
    if (whole) fail(opened, "a quoted field that never ends");
    return kOpen;
  }
  const std::string_view field = text.substr(at + 1, close - at - 1);
  if (field.find('"') != std::string_view::npos) doubled_.push_back(row.fields.size());
  row.fields.push_back(field);
  lines += static_cast<size_t>(std::ranges::count(field, '\n'));
  const std::string_view behind = text.substr(close + 1);
  const size_t end = line_end(behind, whole);
  if (end == kOpen) return kOpen;
  if (end == 0 && !behind.empty() && behind[0] != ',') {
    fail(line_ + lines - 1,
         "text behind the closing quote of a field; a comma or the line's end is accepted");
  }
  return close + std::max<size_t>(end, 1);
}

void CsvScanner::fail(size_t line, const std::string& what) const {
  throw InputError(*file_ + ", line " + std::to_string(line) + ": " + what);
}

}  // namespace qor::cli
