#include "reference/reference.h"

#include <cmath>

#include "reference/due_codes.h"
#include "reference/exact_functions.h"

namespace qor::reference::references {
namespace {

using namespace exact;

constexpr auto kExp10 = [](auto x) {
  if constexpr (sizeof x == sizeof(double))
    return ::exp10(x);
  else
    return ::exp10l(x);
};
constexpr auto kInvSqrt = [](auto x) { return 1 / std::sqrt(x); };
constexpr auto kPow3o2 = [](auto x) { return x * std::sqrt(x); };
constexpr auto kPow2o3 = [](auto x) { return std::cbrt(x * x); };
constexpr auto kPow = [](auto x, auto y) { return std::pow(x, y); };
constexpr auto kFraction = [](auto x) {
  return std::copysign(std::isinf(x) ? decltype(x){0} : x - std::trunc(x), x);
};
constexpr auto kParts = [](auto x) { return std::array{std::trunc(x), kFraction(x)}; };
constexpr auto kLinearFraction = [](auto a, auto b, auto a_scale, auto a_shift, auto b_scale,
                                    auto b_shift) {
  return (a * a_scale + a_shift) / (b * b_scale + b_shift);
};

}  // namespace

// One line per base name: computation, promised HA bound s, d (0: correctly rounded), code due, C
// library name, estimate, slopes, pairing.

// clang-format off
const Reference Exp{one<mpfr_exp>, 1.0, 0.55, due::overflow_or_underflow, "exp", estimates<[](auto x) { return std::exp(x); }>, rising};
const Reference Exp2{one<mpfr_exp2>, 1.0, 1.0, due::overflow_or_underflow, "exp2", estimates<[](auto x) { return std::exp2(x); }>, rising};
const Reference Exp10{one<mpfr_exp10>, 1.0, 1.0, due::exp10, "exp10", estimates<kExp10>, rising};
const Reference Expm1{one<mpfr_expm1>, 1.0, 1.0, due::overflow, "expm1", estimates<[](auto x) { return std::expm1(x); }>, rising};
const Reference Ln{one<mpfr_log>, 1.0, 0.55, due::undefined_or_pole, "log", estimates<[](auto x) { return std::log(x); }>, rising};
const Reference Log2{one<mpfr_log2>, 1.0, 1.0, due::undefined_or_pole, "log2", estimates<[](auto x) { return std::log2(x); }>, rising};
const Reference Log10{one<mpfr_log10>, 1.0, 1.0, due::undefined_or_pole, "log10", estimates<[](auto x) { return std::log10(x); }>, rising};
const Reference Log1p{one<mpfr_log1p>, 1.0, 1.0, due::undefined_or_pole, "log1p", estimates<[](auto x) { return std::log1p(x); }>, rising};
const Reference Logb{binade, 0.0, 0.0, due::domain_at_zero, "logb", estimates<[](auto x) { return std::logb(x); }>, valley};

const Reference Inv{inverse, 0.0, 0.0, due::inverse_of_zero, nullptr, estimates<[](auto x) { return 1 / x; }>, falling};
const Reference Div{two<mpfr_div>, 0.0, 0.0, due::division_by_zero, nullptr};
const Reference Sqrt{square_root, 1.0, 0.0, due::undefined, "sqrt", estimates<[](auto x) { return std::sqrt(x); }>, rising};
const Reference InvSqrt{inverse_square_root, 1.0, 1.0, due::undefined_or_pole, nullptr, estimates<kInvSqrt>, falling};
const Reference Cbrt{one<mpfr_cbrt>, 1.0, 1.0, due::none, "cbrt", estimates<[](auto x) { return std::cbrt(x); }>, rising};
const Reference InvCbrt{inverse_cube_root, 1.0, 1.0, due::inverse_of_zero, nullptr, estimates<[](auto x) { return 1 / std::cbrt(x); }>, falling};
const Reference Pow2o3{power_2_3, 1.0, 1.0, due::none, nullptr, estimates<kPow2o3>, valley};
const Reference Pow3o2{power_3_2, 1.0, 1.0, due::undefined, nullptr, estimates<kPow3o2>, rising};
const Reference Pow{two<mpfr_pow>, 1.0, 0.6, due::power, "pow", estimates<kPow, 2>, neither, Pairing::power};
const Reference Powx{power_by_scalar, 1.0, 1.0, due::power_by_scalar, nullptr, estimates<kPow, 2>, neither, Pairing::power};
const Reference Powr{power_of_nonnegative, 1.0, 1.0, due::power_of_nonnegative, nullptr, estimates<kPow, 2>, neither, Pairing::power};
const Reference Hypot{two<mpfr_hypot>, 1.0, 1.0, due::none, "hypot", estimates<[](auto x, auto y) { return std::hypot(x, y); }, 2>};

const Reference Add{two<mpfr_add>, 0.0, 0.0, due::none, nullptr};
const Reference Sub{two<mpfr_sub>, 0.0, 0.0, due::none, nullptr};
const Reference Mul{two<mpfr_mul>, 0.0, 0.0, due::none, nullptr};
const Reference Sqr{one<mpfr_sqr>, 0.0, 0.0, due::none, nullptr, estimates<[](auto x) { return x * x; }>, valley};
const Reference Abs{one<mpfr_abs>, 0.0, 0.0, due::none, "fabs", estimates<[](auto x) { return std::abs(x); }>, valley};
const Reference Floor{one<mpfr_rint_floor>, 0.0, 0.0, due::none, "floor", estimates<[](auto x) { return std::floor(x); }>, rising};
const Reference Ceil{one<mpfr_rint_ceil>, 0.0, 0.0, due::none, "ceil", estimates<[](auto x) { return std::ceil(x); }>, rising};
const Reference Round{one<mpfr_rint_round>, 0.0, 0.0, due::none, "round", estimates<[](auto x) { return std::round(x); }>, rising};
const Reference Trunc{one<mpfr_rint_trunc>, 0.0, 0.0, due::none, "trunc", estimates<[](auto x) { return std::trunc(x); }>, rising};
const Reference Rint{one<mpfr_rint_roundeven>, 0.0, 0.0, due::none, "rint", estimates<[](auto x) { return std::rint(x); }>, rising};
const Reference NearbyInt{one<mpfr_rint_roundeven>, 0.0, 0.0, due::none, "nearbyint", estimates<[](auto x) { return std::nearbyint(x); }>, rising};
const Reference Frac{fractional, 0.0, 0.0, due::none, nullptr, estimates<kFraction>};
const Reference Modf{integral_and_fractional, 0.0, 0.0, due::none, nullptr, estimates<kParts>, rising};
const Reference CopySign{copied_sign, 0.0, 0.0, due::none, "copysign"};
const Reference NextAfter{neighbour, 0.0, 0.0, due::step, "nextafter"};
const Reference Fdim{two<mpfr_dim>, 0.0, 0.0, due::none, "fdim"};
const Reference Fmax{larger, 0.0, 0.0, due::none, "fmax"};
const Reference Fmin{smaller, 0.0, 0.0, due::none, "fmin"};
const Reference MaxMag{larger_magnitude, 0.0, 0.0, due::none, nullptr};
const Reference MinMag{smaller_magnitude, 0.0, 0.0, due::none, nullptr};
const Reference Remainder{two<mpfr_remainder>, 0.0, 0.0, due::remainder, "remainder"};
const Reference Fmod{two<mpfr_fmod>, 0.0, 0.0, due::undefined_as_pole, "fmod"};
// Less than 1 ulp for each of two roundings in either line, half of one for the division.
const Reference LinearFrac{linear_fraction, 4.5, 4.5, due::none, nullptr, estimates<kLinearFraction, 6>, neither, Pairing::near_one};
// clang-format on

}  // namespace qor::reference::references
