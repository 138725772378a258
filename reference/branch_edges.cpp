#include <bit>
#include <iterator>

#include "kernels/exponential/limits.h"
#include "kernels/logarithm/limits.h"
#include "kernels/root/limits.h"
#include "reference/arguments.h"

namespace qor::reference {
namespace {

namespace limits = kernels::limits;

constexpr double from_image(int32_t image) {
  return static_cast<double>(std::bit_cast<float>(image));
}
constexpr double from_high_word(int32_t word) {
  return std::bit_cast<double>((static_cast<int64_t>(word) << 32) | 0xFFFFFFFF);
}
// The ends of a range of images, and of high words.
constexpr double first_s(limits::Range range) { return from_image(range.first); }
constexpr double last_s(limits::Range range) { return from_image(range.last); }
constexpr double first_d(limits::Range range) {
  return std::bit_cast<double>(static_cast<int64_t>(range.first) << 32);
}
constexpr double last_d(limits::Range range) { return from_high_word(range.last); }
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
    {"sExp2",
     {from_image(limits::sexp2::fast_image), limits::sexp2::overflow, limits::sexp2::underflow,
      limits::sexp2::denormal}},
    {"dExp2",
     {from_high_word(limits::dexp2::fast_high_word), limits::dexp2::overflow,
      limits::dexp2::underflow, limits::dexp2::denormal}},
    {"sExp10",
     {from_image(limits::sexp10::fast_image), limits::sexp10::overflow, limits::sexp10::underflow,
      limits::sexp10::denormal}},
    {"dExp10",
     {from_high_word(limits::dexp10::fast_high_word), limits::dexp10::overflow,
      limits::dexp10::underflow, limits::dexp10::denormal}},
    {"sExpm1", {from_image(limits::sexpm1::fast_image), limits::sexpm1::overflow}},
    {"dExpm1",
     {limits::dexpm1::tiny, limits::dexpm1::small, -limits::dexpm1::small,
      limits::dexpm1::saturated, limits::dexpm1::overflow}},
    {"sLog1p", {-1.0, from_image(limits::slog1p::last_image)}},
    {"dLog1p", {-1.0, from_high_word(limits::dlog1p::last_high_word)}},
    {"sSqrt", {first_s(limits::root::ssqrt), last_s(limits::root::ssqrt)}},
    {"sInvSqrt", {first_s(limits::root::sinv_sqrt), last_s(limits::root::sinv_sqrt)}},
    {"dInvSqrt", {first_d(limits::root::dinv_sqrt), last_d(limits::root::dinv_sqrt)}},
    {"sPow3o2", {first_s(limits::root::spow3o2), last_s(limits::root::spow3o2)}},
    {"dPow3o2", {first_d(limits::root::dpow3o2), last_d(limits::root::dpow3o2)}},
    {"sHypot", {first_s(limits::hypot::middle_float), last_s(limits::hypot::middle_float)}},
    {"dHypot", {first_d(limits::hypot::middle_double), last_d(limits::hypot::middle_double)}},
};

}  // namespace

std::vector<double> branch_edges(std::string_view row) {
  for (const Edges& edges : kEdges) {
    if (edges.row == row) return edges.at;
  }
  return {};
}

}  // namespace qor::reference
