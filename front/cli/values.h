// Values in memory as the command writes them: rows of one or more numbers of one type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qor::cli {

enum class Element { real64, real32, int32, uint32, uint64 };

struct Layout {
  Element element;
  size_t columns;  // numbers in a row

  size_t element_bytes() const {
    return element == Element::real64 || element == Element::uint64 ? 8 : 4;
  }
  size_t row_bytes() const { return columns * element_bytes(); }
};

// Number `index` of an array, counted over rows and columns.
double number_at(const Layout& layout, const void* values, size_t index);

enum class Format { csv, npy, raw };

// What goes before `rows` rows: the header line with the name (numbered when there are several
// columns), or that of an .npy file, version 1.0; nothing for raw bytes.
std::string head_of(Format format, const Layout& layout, std::string_view name, uint64_t rows);

// Appends rows: lines whose numbers read back exactly, or the bytes as they are.
void append_rows(Format format, const Layout& layout, const void* values, size_t rows,
                 std::string& text);

}  // namespace qor::cli
