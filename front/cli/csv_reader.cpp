#include "front/cli/csv_reader.h"

#include <sys/stat.h>

#include "front/cli/input_error.h"

namespace qor::cli {

CsvReader::CsvReader(const std::string& file, size_t chunk)
    : head_{file, {}},
      stream_(std::fopen(file.c_str(), "rb"), std::fclose),
      chunk_(chunk),
      scanner_({}, head_.file) {
  if (!stream_) refuse_unreadable(file);
  Csv::Row row;
  next_of_any_width(row);
  head_.header = header_of(std::move(row), file);
}

bool CsvReader::next(Csv::Row& row) {
  if (!next_of_any_width(row)) return false;
  check_width(head_, row);
  return true;
}

uint64_t CsvReader::total_bytes() const {
  struct stat status {};
  const bool known = fstat(fileno(stream_.get()), &status) == 0 && S_ISREG(status.st_mode);
  return known ? static_cast<uint64_t>(status.st_size) : 0;
}

bool CsvReader::next_of_any_width(Csv::Row& row) {
  while (!scanner_.next(row)) {
    if (!refill()) return false;
  }
  return true;
}

// Gives the scanner more whole rows; false when there are none.
bool CsvReader::refill() {
  buffer_.erase(0, complete_);
  complete_ = 0;
  while (complete_ == 0 && !at_end_) {
    if (buffer_.size() > kMostRow) {
      throw InputError(head_.file + ", line " + std::to_string(scanner_.line()) +
                       ": a row that goes on for more than " + std::to_string(kMostRow) +
                       " bytes; shorter ones are accepted");
    }
    read_chunk();
  }
  scanner_ =
      CsvScanner(std::string_view(buffer_).substr(0, complete_), head_.file, scanner_.line());
  return complete_ > 0;
}

void CsvReader::read_chunk() {
  const size_t before = buffer_.size();
  buffer_.resize(before + chunk_);
  const size_t count = std::fread(buffer_.data() + before, 1, chunk_, stream_.get());
  if (std::ferror(stream_.get()) != 0) refuse_unreadable(head_.file);
  buffer_.resize(before + count);
  const bool marked = bytes_ == 0 && buffer_.starts_with(kByteOrderMark);
  bytes_ += count;
  find_row_ends(before + (marked ? kByteOrderMark.size() : 0));
  if (count < chunk_) {
    at_end_ = true;
    complete_ = buffer_.size();
  }
}

void CsvReader::find_row_ends(size_t from) {
  for (size_t i = from; i < buffer_.size(); ++i) {
    const char c = buffer_[i];
    if (place_ == Place::quoted) {
      if (c == '"') place_ = Place::quote_in_quoted;
    } else if (c == '"' && place_ != Place::plain) {
      place_ = Place::quoted;  // opened, or a doubled quote
    } else if (c == ',') {
      place_ = Place::field_start;
    } else if (c == '\n') {
      place_ = Place::field_start;
      complete_ = i + 1;
    } else {
      place_ = Place::plain;
    }
  }
}

}  // namespace qor::cli
