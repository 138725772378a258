#include <bit>
#include <iterator>

#include "kernels/exp_limits.h"
#include "kernels/log_limits.h"
#include "tests/support/arguments.h"

namespace qor::test {
namespace {

namespace limits = kernels::limits;

constexpr double from_image(int32_t image) {
  return static_cast<double>(std::bit_cast<float>(image));
}
constexpr double from_high_word(int32_t word) {
  return std::bit_cast<double>((static_cast<int64_t>(word) << 32) | 0xFFFFFFFF);
}
constexpr double from_exponent_s(int32_t biased) { return from_image(biased << 23); }
constexpr double from_exponent_d(int32_t biased) {
  return std::bit_cast<double>(static_cast<int64_t>(biased) << 52);
}

struct Edges {
  std::string_view row;
  std::initializer_list<double> at;
};

const Edges kEdges[] = {
    {"sExp",
     {from_image(limits::sexp::fast_image), limits::sexp::overflow, limits::sexp::underflow,
      limits::sexp::denormal, from_exponent_s(limits::sexp::tiny_exponent)}},
    {"dExp",
     {from_high_word(limits::dexp::fast_high_word), limits::dexp::overflow, limits::dexp::underflow,
      limits::dexp::denormal, from_exponent_d(limits::dexp::tiny_exponent)}},
    {"sLog1p", {-1.0, from_image(limits::slog1p::last_image)}},
    {"dLog1p", {-1.0, from_high_word(limits::dlog1p::last_high_word)}},
};

}  // namespace

std::vector<double> branch_edges(std::string_view row) {
  for (const Edges& edges : kEdges) {
    if (edges.row == row) return edges.at;
  }
  return {};
}

}  // namespace qor::test
