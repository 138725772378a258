#include "front/cli/values.h"

#include <charconv>
#include <cstring>

#include "front/cli/text.h"

namespace qor::cli {
namespace {

// Calls action(value) with number `index` in its own type.
template <class Action>
auto with_number(const Layout& layout, const void* values, size_t index, Action action) {
  const auto as = [&]<class Number>(Number value) {
    std::memcpy(&value, static_cast<const char*>(values) + index * sizeof value, sizeof value);
    return action(value);
  };
  switch (layout.element) {
    case Element::real64:
      return as(double{});
    case Element::real32:
      return as(float{});
    case Element::int32:
      return as(int32_t{});
    case Element::uint32:
      return as(uint32_t{});
    default:
      return as(uint64_t{});
  }
}

const char* npy_type(Element element) {
  switch (element) {
    case Element::real64:
      return "<f8";
    case Element::real32:
      return "<f4";
    case Element::int32:
      return "<i4";
    case Element::uint32:
      return "<u4";
    default:
      return "<u8";
  }
}

// Magic, version, length of the dictionary that describes the array, and the dictionary, filled up
// with blanks so that the values start at a multiple of 64.
std::string npy_head(const Layout& layout, uint64_t rows) {
  constexpr size_t before = 10, alignment = 64;
  const std::string columns = layout.columns == 1 ? "" : " " + std::to_string(layout.columns);
  std::string dictionary = "{'descr': '" + std::string(npy_type(layout.element)) +
                           "', 'fortran_order': False, 'shape': (" + std::to_string(rows) + "," +
                           columns + "), }";
  while ((before + dictionary.size() + 1) % alignment != 0) dictionary += ' ';
  dictionary += '\n';
  std::string head("\x93NUMPY\x01\x00", 8);
  head += static_cast<char>(dictionary.size() & 0xFF);
  head += static_cast<char>(dictionary.size() >> 8);
  return head + dictionary;
}

std::string csv_head(const Layout& layout, std::string_view name) {
  std::string head(name);
  for (size_t column = 1; column < layout.columns; ++column) {
    if (column == 1) head += '1';
    head += "," + std::string(name) + std::to_string(column + 1);
  }
  return head + '\n';
}

void append_csv(const Layout& layout, const void* values, size_t rows, std::string& text) {
  char digits[32];
  for (size_t i = 0; i < rows * layout.columns; ++i) {
    char* end = with_number(layout, values, i, [&](auto value) {
      return std::to_chars(digits, digits + sizeof digits - 1, value).ptr;
    });
    *end++ = (i + 1) % layout.columns == 0 ? '\n' : ',';
    text.append(digits, end);
  }
}

}  // namespace

double number_at(const Layout& layout, const void* values, size_t index) {
  return with_number(layout, values, index, [](auto value) { return static_cast<double>(value); });
}

std::string head_of(Format format, const Layout& layout, std::string_view name, uint64_t rows) {
  if (format == Format::raw) return "";
  return format == Format::csv ? csv_head(layout, name) : npy_head(layout, rows);
}

void append_rows(Format format, const Layout& layout, const void* values, size_t rows,
                 std::string& text) {
  if (format == Format::csv) {
    append_csv(layout, values, rows, text);
  } else {
    text.append(static_cast<const char*>(values), rows * layout.row_bytes());
  }
}

}  // namespace qor::cli
