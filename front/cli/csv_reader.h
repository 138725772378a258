// A CSV file read row by row, however long it is: csv.h tells what is accepted.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "front/cli/csv.h"
#include "front/cli/csv_scanner.h"

namespace qor::cli {

class CsvReader {
 public:
  static constexpr size_t kChunk = size_t{1} << 20;    // bytes read at a time
  static constexpr size_t kMostRow = size_t{1} << 26;  // bytes of a row

  explicit CsvReader(const std::string& file, size_t chunk = kChunk);
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;

  const CsvHead& head() const { return head_; }
  bool next(Csv::Row& row);  // false at the end; each has as many fields as the header

  uint64_t bytes() const { return bytes_; }  // read so far
  uint64_t total_bytes() const;              // 0 when that is not known, as of a pipe

 private:
  // Where the fields of the text stand that was looked through last.
  enum class Place { field_start, plain, quoted, quote_in_quoted };

  bool next_of_any_width(Csv::Row& row);
  bool refill();
  void read_chunk();
  void find_row_ends(size_t from);

  CsvHead head_;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream_;
  size_t chunk_;
  std::string buffer_;
  size_t complete_ = 0;  // bytes of it that are whole rows
  Place place_ = Place::field_start;
  uint64_t bytes_ = 0;
  bool at_end_ = false;
  CsvScanner scanner_;  // through the whole rows
};

}  // namespace qor::cli
