// Makes kernels/power/tables/pow_tables.h: cells for the logarithm of the powers, and the
// polynomial of 2^f of their single form.
//
// Cell i of a table with 2^bits cells holds the z in [a, 2 a) whose image, less that of a, has i in
// its leading mantissa bits; a is just below 3/4 such that 1 is the middle of a cell. A row holds
// a reciprocal c of the cell's middle and -log2 c; c is 1 where z can be 1.

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "tools/table_writer.h"

namespace {

using qor::tools::nearest;
using qor::tools::Real;

double from_high_word(uint64_t word) { return std::bit_cast<double>(word << 32); }

struct Cells {
  uint64_t first_high_word;
  int bits;

  double begin(int i) const {
    const uint64_t step = uint64_t{1} << (20 - bits);
    return from_high_word(first_high_word + static_cast<uint64_t>(i) * step);
  }
  double middle(int i) const { return (begin(i) + begin(i + 1)) / 2; }
  bool has_one(int i) const { return begin(i) < 1 && begin(i + 1) > 1; }
  // The largest |z c - 1| in the cell.
  double largest_rest(int i, double c) const {
    return std::fmax(std::fabs(begin(i) * c - 1), std::fabs(begin(i + 1) * c - 1));
  }
};

double rounded_to_bits(double x, int bits) {
  return std::ldexp(std::nearbyint(std::ldexp(x, bits)), -bits);
}

// The best short reciprocal for which z c - 1 is a double for every z of the cell.
double exact_reciprocal(const Cells& cells, int i) {
  if (cells.has_one(i)) return 1;
  const int grid_of_z = cells.begin(i) < 1 ? 53 : 52;
  for (int bits = cells.bits + 2; bits > 0; --bits) {
    const double c = rounded_to_bits(1 / cells.middle(i), bits);
    if (cells.largest_rest(i, c) <= std::ldexp(1, 53 - grid_of_z - bits)) return c;
  }
  std::abort();
}

Real minus_log2(double c) {
  Real log(c);
  mpfr_log2(log.get(), log.get(), MPFR_RNDN);
  return Real(0) - log;
}

// Of the floats near the reciprocal of the cell's middle the one whose logarithm is nearest to a
// float.
float float_reciprocal(const Cells& cells, int i) {
  if (cells.has_one(i)) return 1;
  float c = static_cast<float>(1 / cells.middle(i)), best = c;
  double smallest = 1;
  for (int n = 0; n < 50000; ++n) {
    const Real log = minus_log2(static_cast<double>(c));
    const Real rest = log - Real(static_cast<double>(nearest<float>(log)));
    const double distance = std::fabs(nearest<double>(rest));
    if (distance < smallest) {
      smallest = distance;
      best = c;
    }
    c = std::nextafter(c, 2.0f);
  }
  if (smallest > 0x1p-39) std::abort();
  return best;
}

// -log2 c: a multiple of 2^-42, to which exponents can be added exactly, and the rest.
std::array<double, 2> log_parts(double c) {
  const Real value = minus_log2(c);
  const double high = rounded_to_bits(nearest<double>(value), 42);
  return {high, nearest<double>(value - Real(high))};
}

std::array<double, 4> row(double c) {
  const auto [high, low] = log_parts(c);
  return {c, high, low, 0};
}

// 2^f on [-1/2, 1/2] as 1 + f g(f), exact at 0: g by the polynomial through its values at the
// Chebyshev nodes, in Newton's divided differences multiplied out. The lowest power first.
std::vector<Real> exp2_polynomial(int degree) {
  const auto count = static_cast<size_t>(degree);
  std::vector<Real> node(count), difference(count);
  for (size_t i = 0; i < count; ++i) {
    node[i] =
        Real(0.5 * std::cos(M_PI * (static_cast<double>(i) + 0.5) / static_cast<double>(count)));
    mpfr_exp2(difference[i].get(), node[i].get(), MPFR_RNDN);
    difference[i] = (difference[i] - Real(1)) / node[i];
  }
  for (size_t order = 1; order < count; ++order) {
    for (size_t i = count - 1; i >= order; --i) {
      difference[i] = (difference[i] - difference[i - 1]) / (node[i] - node[i - order]);
    }
  }
  std::vector<Real> coefficient(count, Real(0));
  for (size_t i = count; i-- > 0;) {
    for (size_t k = count - 1; k > 0; --k) {
      coefficient[k] = coefficient[k - 1] - coefficient[k] * node[i];
    }
    coefficient[0] = difference[i] - coefficient[0] * node[i];
  }
  coefficient.insert(coefficient.begin(), Real(1));
  return coefficient;
}

template <class ValueOf>
void print_column(const char* rule, const char* name, int count, ValueOf value) {
  std::printf("\n// %s\nalignas(64) inline constexpr float %s[%d] = {\n", rule, name, count);
  for (int i = 0; i < count; ++i) std::printf("  %s,\n", qor::tools::literal(value(i)).c_str());
  std::printf("};\n");
}

}  // namespace

int main() {
  using qor::tools::print_table;
  qor::tools::print_head("pow_tables", "#include \"kernels/lanes.h\"\n");
  std::printf("\nusing lanes::TableQuad;\n");

  const Cells medium{0x3FE7F000, 7}, fine{0x3FE7FE00, 10}, coarse{0x3FE78000, 4};
  print_table("c, of as many bits as leave z c - 1 exact; -log2 c in two parts.",
              "TableQuad<double>", "pow_log2_128", 128,
              [&](int i) { return row(exact_reciprocal(medium, i)); });
  print_table(
      "c of 13 fraction bits; -log2 c in two parts.", "TableQuad<double>", "pow_log2_1024", 1024,
      [&](int i) { return row(fine.has_one(i) ? 1 : rounded_to_bits(1 / fine.middle(i), 13)); });
  print_column("c, a float whose -log2 c is nearly a float.", "pow_reciprocal_16", 16,
               [&](int i) { return float_reciprocal(coarse, i); });
  print_column("-log2 c, to 2^-39.", "pow_log2_16", 16, [&](int i) {
    return nearest<float>(minus_log2(static_cast<double>(float_reciprocal(coarse, i))));
  });

  const auto exp2 = exp2_polynomial(7);
  std::printf(
      "\n// 2^f for |f| <= 1/2, from the highest power down; relative error below 2^-33.\n");
  std::printf("inline constexpr double pow_exp2[8] = {\n");
  for (size_t i = 8; i-- > 0;) {
    std::printf("  %s,\n", qor::tools::literal(nearest<double>(exp2[i])).c_str());
  }
  std::printf("};\n");
  qor::tools::print_tail();
}
