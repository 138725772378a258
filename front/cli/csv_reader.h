// A CSV file read row by row, however long it is: csv.h tells what is accepted.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "front/cli/csv.h"
#include "front/cli/csv_scanner.h"

namespace qor::cli {

class CsvReader {
 public:
  static constexpr size_t kChunk = size_t{1} << 20;  // bytes read at a time

  explicit CsvReader(const std::string& file, size_t chunk = kChunk);
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;

  const CsvHead& head() const { return head_; }
  bool next(CsvRow& row);  // false at the end; each has as many fields as the header

  uint64_t bytes() const { return bytes_; }  // read so far
  uint64_t total_bytes() const;              // 0 when that is not known, as of a pipe

 private:
  bool next_of_any_width(CsvRow& row);
  void read_more();

  CsvHead head_;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream_;
  size_t chunk_;
  std::vector<char> buffer_;
  std::span<char> text_;  // in the buffer: what is read and not given yet
  bool at_end_ = false;
  uint64_t bytes_ = 0;
  CsvScanner scanner_;
};

}  // namespace qor::cli
