#include "front/cli/csv_reader.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

// For the reason in errno.
[[noreturn]] void refuse_unreadable(const std::string& file) {
  throw InputError(file + ": " + std::generic_category().message(errno) +
                   "; a CSV file that can be read is accepted");
}

}  // namespace

CsvReader::CsvReader(const std::string& file, size_t chunk)
    : head_{file, {}},
      stream_(std::fopen(file.c_str(), "rb"), std::fclose),
      chunk_(chunk),
      scanner_(head_.file) {
  if (!stream_) refuse_unreadable(file);
  CsvRow row;
  if (!next_of_any_width(row)) {
    throw InputError(file + ": the file is empty; a header line and rows of data are accepted");
  }
  for (const std::string_view name : row.fields) head_.header.emplace_back(trimmed(name));
}

bool CsvReader::next(CsvRow& row) {
  if (!next_of_any_width(row)) return false;
  if (row.fields.size() == head_.header.size()) return true;
  throw InputError(head_.file + ", line " + std::to_string(row.line) + ": " +
                   std::to_string(row.fields.size()) + " fields; " +
                   std::to_string(head_.header.size()) + " are accepted, as in the header");
}

uint64_t CsvReader::total_bytes() const {
  struct stat status {};
  const bool known = fstat(fileno(stream_.get()), &status) == 0 && S_ISREG(status.st_mode);
  return known ? static_cast<uint64_t>(status.st_size) : 0;
}

bool CsvReader::next_of_any_width(CsvRow& row) {
  while (!scanner_.next(text_, at_end_, row)) {
    if (at_end_) return false;
    read_more();
  }
  return true;
}

void CsvReader::read_more() {
  // A row that goes on is scanned again from its start: as much again makes that twice at most.
  const size_t kept = text_.size();
  const size_t wanted = kept < kChunk ? chunk_ : kept;
  std::ranges::copy(text_, buffer_.begin());
  if (buffer_.size() < kept + wanted) buffer_.resize(kept + wanted);
  const size_t count = std::fread(buffer_.data() + kept, 1, wanted, stream_.get());
  if (std::ferror(stream_.get()) != 0) refuse_unreadable(head_.file);
  text_ = std::span(buffer_).first(kept + count);
  bytes_ += count;
  at_end_ = count < wanted;
}

}  // namespace qor::cli
