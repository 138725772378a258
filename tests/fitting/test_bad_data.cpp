// NaN and infinite values among the data reach the cells that their kind's arithmetic takes them
// to, and nothing else: not other cells, not other functions.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "tests/fitting/api.h"

namespace qor::test {
namespace {

constexpr size_t kPoints = 24, kBad = 11;

// A kind, and how many cells left and right of the breakpoint of a value see the value; 0: all.
template <class Real>
struct Reach {
  const char* name;
  Kernel kernel;
  int64_t order, type, bc_type;
  size_t cells;
};

template <class Real>
struct Data {
  std::vector<Real> x, y, inner;

  Data() {
    for (size_t i = 0; i < kPoints; ++i) {
      x.push_back(static_cast<Real>(i) + static_cast<Real>(i % 3) / 8);
      inner.push_back(static_cast<Real>(i % 5) - 2);
    }
    for (size_t i = 0; i < 2 * kPoints; ++i) y.push_back(static_cast<Real>((7 * i) % 11));
  }

  // Coefficients of both functions; entry k of the pair is function k's.
  std::vector<std::vector<Real>> construct(const Reach<Real>& reach) const {
    std::vector<Real> c(static_cast<size_t>(reach.order) * (kPoints - 1) * 2);
    const bool conditions = reach.type == 3;
    Task<Real> task(kPoints, x.data(), QOR_DF_NON_UNIFORM, 2, y.data());
    EXPECT_EQ(task.spline(reach.order, reach.type, c.data(), reach.bc_type, inner.data(),
                          conditions ? 1 : 0, conditions ? inner.data() : nullptr),
              QOR_DF_OK);
    EXPECT_EQ(reach.kernel(task, 0, 0, nullptr), QOR_DF_OK) << reach.name;
    const auto middle = c.begin() + static_cast<std::ptrdiff_t>(c.size() / 2);
    return {{c.begin(), middle}, {middle, c.end()}};
  }
};

template <class Real>
bool same_bits(const Real* a, const Real* b, size_t count) {
  return std::memcmp(a, b, count * sizeof(Real)) == 0;
}

template <class Real>
class BadData : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(BadData, Precisions);

TYPED_TEST(BadData, StaysWhereItsArithmeticIs) {
  using Real = TypeParam;
  using A = Api<Real>;
  const Reach<Real> kinds[] = {{"linear", A::linear, 2, 0, 0, 1},
                               {"quadratic", A::quadratic, 3, 0, QOR_DF_BC_FIRST_MIDPOINT, 0},
                               {"natural", A::natural, 4, 5, QOR_DF_BC_FREE, 0},
                               {"default", A::by_second, 4, 3, QOR_DF_BC_FREE, 1},
                               {"hermite", A::hermite, 4, 3, QOR_DF_BC_FREE, 1},
                               {"bessel", A::bessel, 4, 5, QOR_DF_BC_NOT_A_KNOT, 2},
                               {"hyman", A::hyman, 4, 5, QOR_DF_BC_FREE, 2},
                               {"akima", A::akima, 4, 5, QOR_DF_BC_NONE, 3}};
  const Real infinity = std::numeric_limits<Real>::infinity();
  for (const Reach<Real>& kind : kinds) {
    const Data<Real> good;
    const auto wanted = good.construct(kind);
    for (const Real value : {std::numeric_limits<Real>::quiet_NaN(), infinity, -infinity}) {
      SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(value));
      Data<Real> bad;
      bad.y[kBad] = value;
      const auto got = bad.construct(kind);
      EXPECT_TRUE(same_bits(got[1].data(), wanted[1].data(), got[1].size()));
      const auto order = static_cast<size_t>(kind.order);
      for (size_t cell = 0; cell + 1 < kPoints; ++cell) {
        const bool near = cell + kind.cells >= kBad && cell < kBad + kind.cells;
        if (kind.cells != 0 && !near) {
          EXPECT_TRUE(same_bits(&got[0][cell * order], &wanted[0][cell * order], order)) << cell;
        }
      }
      // The cells that begin and end there cannot hide it.
      for (const size_t cell : {kBad - 1, kBad}) {
        const Real* c = &got[0][cell * order];
        EXPECT_FALSE(std::all_of(c, c + order, [](Real v) { return std::isfinite(v); })) << cell;
      }
    }
  }
}

}  // namespace
}  // namespace qor::test
