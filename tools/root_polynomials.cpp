// Makes kernels/root/tables/root_polynomials.h: starts of 1 / sqrt(x), and the series that finish
// it.
//
// An integer difference, magic - bits(x) / 2, is the bits of a z near to 1 / sqrt(x) but for a
// factor (Lomont, 2003): within 3.5 %, and the same for x and 4 x. With t = x z^2,
//   single:  y = z (a - t), where z is near to 2^(-1/3) / sqrt(x): there the product has no slope;
//   double:  y = z P(t - 1), P(w) for (1 + w)^(-1/2), where z is near to 1 / sqrt(x).

#include <bit>
#include <cmath>
#include <cstdint>

#include "tools/polynomial.h"

namespace {

using qor::tools::nearest;
using qor::tools::Real;

// What a y of single precision loses when it is cut to 12 bits: up to 2^-12 near 1, where it counts
// most, 2^-11 near 1/2.
constexpr double cut = 0x1.4p-12;

// The least and the largest z sqrt(x) of a magic number, in double.
struct Spread {
  double least = 2, largest = 0;

  explicit Spread(uint64_t magic) {
    constexpr int points = 3 << 10;
    for (int i = 0; i < points; ++i) {
      const double x = 1 + 3.0 * i / points;
      const double z = std::bit_cast<double>(magic - (std::bit_cast<uint64_t>(x) >> 1));
      least = std::min(least, z * std::sqrt(x));
      largest = std::max(largest, z * std::sqrt(x));
    }
  }
  // The largest |x z^2 - 1|.
  double of_square() const { return std::max(largest * largest - 1, 1 - least * least); }
  // The largest |y sqrt(x) - 1| of y = z (a - x z^2), as it stands and cut.
  double of_step(double a) const {
    const double top = std::sqrt(a / 3);
    double error = 0;
    for (const double s : {least, largest, std::clamp(top, least, largest)}) {
      const double y = s * (a - s * s);
      error = std::max({error, std::abs(y - 1), std::abs(y * (1 - cut) - 1)});
    }
    return error;
  }
};

// The argument of the least value of a function that falls and then rises.
template <class F>
double argument_of_least(double first, double last, F f) {
  while (last - first > 1e-8) {
    const double left = first + (last - first) / 3, right = last - (last - first) / 3;
    if (f(left) < f(right)) {
      last = right;
    } else {
      first = left;
    }
  }
  return (first + last) / 2;
}

// The magic number in double whose `error` is least, to 2^-12 of its exponent.
template <class F>
uint64_t best_magic(F error) {
  constexpr uint64_t step = uint64_t{1} << 40, first = 0x5FE0000000000000,
                     last = 0x5FEFFFFFFFFFFFFF;
  uint64_t best = first;
  for (uint64_t magic = first; magic <= last; magic += step) {
    if (error(Spread(magic)) < error(Spread(best))) best = magic;
  }
  return best;
}

double step_constant(const Spread& spread) {
  return argument_of_least(1.8, 2.0, [&](double a) { return spread.of_step(a); });
}

void print_single_start() {
  const uint64_t magic = best_magic([](const Spread& s) { return s.of_step(step_constant(s)); });
  const Spread spread(magic);
  const auto a = static_cast<float>(step_constant(spread));
  // Half the bias goes with the magic number; 3/2 of it is what the difference needs.
  constexpr uint64_t bias_double = uint64_t{3 * 1023} << 51;
  constexpr uint32_t bias_single = uint32_t{3 * 127} << 22;
  const auto moved = static_cast<int64_t>(magic - bias_double) >> 29;
  std::printf("\n// Relative error of the start below 2^%.2f.\n", std::log2(spread.of_step(a)));
  std::printf("inline constexpr int32_t inverse_root_magic_float = 0x%X;\n",
              static_cast<uint32_t>(bias_single + moved));
  std::printf("inline constexpr float inverse_root_step = %s;\n", qor::tools::literal(a).c_str());
}

// ((1 + e)^(-1/2) - 1) / e, by its series: e may be 0.
Real correction(const Real& e) {
  Real term(-0.5), sum(0.0);
  for (int k = 1; k < 90; ++k) {
    sum = sum + term;
    term = term * e * Real(-(2.0 * k + 1)) / Real(2.0 * k + 2);
  }
  return sum;
}
Real inverse_root(const Real& w) { return Real(1.0) + w * correction(w); }

void print_double_start() {
  const uint64_t magic = best_magic([](const Spread& s) { return s.of_square(); });
  std::printf("\ninline constexpr int64_t inverse_root_magic_double = 0x%llX;\n",
              static_cast<unsigned long long>(magic));
  qor::tools::print_polynomial<double>("(1 + r)^(-1/2)", "inverse_root_start", inverse_root,
                                       Real(Spread(magic).of_square()), 2, 0);
}

}  // namespace

int main() {
  qor::tools::print_head("root_polynomials", "#include <cstdint>\n");
  print_single_start();
  print_double_start();
  constexpr const char* rule = "((1 + r)^(-1/2) - 1) / r";
  using qor::tools::print_polynomial;
  print_polynomial<float>(rule, "inverse_root_float", correction, Real(0x1.5p-9), 1, 1);
  print_polynomial<double>(rule, "inverse_root_double", correction, Real(0x1.1p-14), 2, 1);
  print_polynomial<double>(rule, "inverse_root_double_cut", correction, Real(0x1.3p-11), 3, 1);
  qor::tools::print_tail();
}
