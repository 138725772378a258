// Integration: against integrals in extended precision, exchanged limits, outer parts, callbacks.

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "tests/fitting/api.h"
#include "tests/fitting/reference.h"

namespace qor::test {
namespace {

// Pieces with coefficients, as left edges and polynomials; the end pieces reach to infinity.
struct WidePieces {
  std::vector<Wide> left;
  std::vector<std::vector<Wide>> c;

  // By the pieces that (l, u) overlaps.
  Wide integral(Wide l, Wide u) const {
    if (u < l) return -integral(u, l);
    Wide sum = 0;
    for (size_t p = 0; p < left.size(); ++p) {
      const Wide from = p == 0 ? l : std::max(l, left[p]);
      const Wide to = p + 1 == left.size() ? u : std::min(u, left[p + 1]);
      if (from < to) sum += primitive(p, to - left[p]) - primitive(p, from - left[p]);
    }
    return sum;
  }
  Wide primitive(size_t p, Wide t) const {
    Wide sum = 0;
    for (size_t k = c[p].size(); k-- > 0;) sum = (sum + c[p][k] / static_cast<Wide>(k + 1)) * t;
    return sum;
  }
};

template <class Real>
class Integration : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Integration, Precisions);

template <class Real>
void check_integrals(const Task<Real>& task, const std::vector<WidePieces>& functions,
                     const std::vector<Real>& limits) {
  std::vector<Real> l, u;
  for (const Real a : limits) {
    for (const Real b : limits) {
      l.push_back(a);
      u.push_back(b);
    }
  }
  const auto nlim = static_cast<int64_t>(l.size());
  const size_t n = l.size(), ny = functions.size();
  std::vector<Real> r(n * ny), by_limit(n * ny), back(n * ny);
  ASSERT_EQ(task.integrate(nlim, l.data(), u.data(), r.data()), 0);
  ASSERT_EQ(task.integrate(nlim, l.data(), u.data(), by_limit.data(), {.layout = 32}), 0);
  ASSERT_EQ(task.integrate(nlim, u.data(), l.data(), back.data(), {.layout = 128}), 0);
  for (size_t f = 0; f < ny; ++f) {
    for (size_t i = 0; i < n; ++i) {
      const Real value = r[f * n + i];
      const auto expected = functions[f].integral(l[i], u[i]);
      ASSERT_NEAR(static_cast<double>(value), static_cast<double>(expected),
                  2000 * std::numeric_limits<Real>::epsilon() *
                      static_cast<double>(1 + std::fabs(expected)))
          << l[i] << " " << u[i];
      ASSERT_EQ(back[f * n + i], -value);
      ASSERT_EQ(by_limit[i * ny + f], value);
      if (l[i] == u[i]) {
        ASSERT_EQ(value, 0);
      }
    }
  }
}

// All interpolants that have pieces, over all pairs of limits among breakpoints, places between and
// places outside.
TYPED_TEST(Integration, EqualsExtendedPrecision) {
  using Real = TypeParam;
  std::mt19937 random(17);
  std::uniform_int_distribution<int> digit(-8, 8);
  for (const bool uniform : {false, true}) {
    std::vector<Real> x, y, c;
    for (int i = 0; i < 9; ++i) {
      x.push_back(uniform ? Real(0.25) * static_cast<Real>(i) - 1
                          : Real(0.25) * static_cast<Real>(i) - 1 +
                                Real(0.0625) * static_cast<Real>(i % 3));
    }
    for (int k = 0; k < 2 * 9; ++k) y.push_back(static_cast<Real>(digit(random)));
    for (int k = 0; k < 2 * 7 * 9; ++k) c.push_back(static_cast<Real>(digit(random)) / 4);
    const std::vector<Real> ends = {x.front(), x.back()};
    std::vector<Real> limits = x, knots = {x[0]};
    for (size_t i = 1; i < 9; ++i) knots.push_back((x[i - 1] + x[i]) / 2);
    knots.push_back(x[8]);
    for (const Real s :
         {x[0] - 1, x[0] + Real(0.03125), x[4] + Real(0.09375), x[8] + 1, x[8] + 2}) {
      limits.push_back(s);
    }
    Task<Real> task(9, uniform ? ends.data() : x.data(), uniform ? 4 : 0, 2, y.data());
    const auto pieces_of = [&](size_t count, const std::vector<Real>& left, auto coefficients) {
      std::vector<WidePieces> functions(2);
      for (size_t f = 0; f < 2; ++f) {
        for (size_t p = 0; p < count; ++p) {
          functions[f].left.push_back(left[p]);
          functions[f].c.push_back(coefficients(f, p));
        }
      }
      return functions;
    };
    for (const size_t order : {2u, 3u, 4u, 7u}) {
      const auto s_order = static_cast<int64_t>(order);
      const auto polynomials = [&](size_t cells) {
        return [&, cells](size_t f, size_t p) {
          const auto first = c.begin() + static_cast<long>((f * cells + p) * order);
          return std::vector<Wide>(first, first + static_cast<long>(order));
        };
      };
      ASSERT_EQ(task.spline(s_order, 0, c.data()), 0);
      check_integrals(task, pieces_of(8, x, polynomials(8)), limits);
      if (order == 3) {
        ASSERT_EQ(task.spline(3, 1, c.data(), 2, nullptr, 1, knots.data()), 0);
        check_integrals(task, pieces_of(9, knots, polynomials(9)), limits);
      }
    }
    for (const size_t type : {7u, 8u}) {
      ASSERT_EQ(task.spline(0, static_cast<int64_t>(type), nullptr), 0);
      const auto constants = [&](size_t f, size_t p) {
        const size_t from = type == 8 ? std::min<size_t>(p + 1, 8) : p;
        return std::vector<Wide>{y[f * 9 + from]};
      };
      check_integrals(task, pieces_of(9, x, constants), limits);
    }
  }
}

TYPED_TEST(Integration, LimitFormsGiveTheSameBits) {
  using Real = TypeParam;
  std::vector<Real> x, y, c(4 * 99);
  for (int i = 0; i < 100; ++i) {
    x.push_back(static_cast<Real>(i) + Real(0.25) * static_cast<Real>(i % 2));
    y.push_back(std::sin(static_cast<Real>(i)));
  }
  Task<Real> task(100, x.data(), 0, 1, y.data());
  ASSERT_EQ(task.spline(4, 5, c.data(), 2), 0);
  ASSERT_EQ(Api<Real>::natural(task, 0, 0, nullptr), 0);
  const Real left_ends[2] = {-3, 60}, right_ends[2] = {101, 20};
  std::vector<Real> l, u, expected(700), r(700);
  const Real left_step = Real(63) / 699, right_step = Real(-81) / 699;
  for (int i = 0; i < 700; ++i) {
    l.push_back(static_cast<Real>(i) * left_step + left_ends[0]);
    u.push_back(static_cast<Real>(i) * right_step + right_ends[0]);
  }
  const Real peak[5] = {0, 1, 0, 0, 50};
  ASSERT_EQ(task.integrate(700, l.data(), u.data(), expected.data()), 0);
  ASSERT_EQ(task.integrate(700, l.data(), u.data(), r.data(),
                           {.left_hint = QOR_DF_SORTED, .right_data_hint = peak}),
            0);
  EXPECT_EQ(r, expected);
  ASSERT_EQ(task.integrate(700, left_ends, right_ends, r.data(), {.left_hint = 4, .right_hint = 4}),
            0);
  EXPECT_EQ(r, expected);
}

TYPED_TEST(Integration, Statuses) {
  using Real = TypeParam;
  const Real x[3] = {0, 1, 2}, y[3] = {1, 2, 3}, l[1] = {0}, u[1] = {1}, bad[5] = {0, 7, 0, 0, 0};
  Real c[12] = {}, r[1];
  Task<Real> task(3, x, 0, 1, y);
  for (const auto& [order, type] : {std::pair{0, 6}, {0, 0}, {1, 0}, {3, 2}, {4, 1}}) {
    ASSERT_EQ(task.spline(order, type, c), 0);
    EXPECT_EQ(task.integrate(1, l, u, r, {.left_data_hint = bad, .layout = 5}), QOR_DF_BAD_TYPE);
  }
  ASSERT_EQ(task.spline(4, 0, c), 0);
  EXPECT_EQ(task.integrate(1, l, u, r, {.left_data_hint = bad, .layout = 5}), QOR_DF_BAD_DATA_HINT);
  EXPECT_EQ(task.integrate(1, l, u, r, {.right_data_hint = bad, .layout = 5}),
            QOR_DF_BAD_DATA_HINT);
  for (const int64_t layout : {5, 256, 512}) {
    EXPECT_EQ(task.integrate(1, l, u, r, {.layout = layout}), QOR_DF_BAD_INTEGRAL_R_HINT);
  }
  EXPECT_EQ(task.integrate(0, l, u, r), QOR_DF_OK);
  ASSERT_EQ(task.spline(3, 1, c), 0);
  EXPECT_EQ(task.integrate(1, l, u, r), QOR_DF_BAD_IC);
  Task<Real> empty(3, x, 0);
  qor_df_kernel_iEditVal(empty, QOR_DF_NY, 1);
  qor_df_kernel_iEditVal(empty, QOR_DF_ORDER, 4);
  EXPECT_EQ(empty.integrate(1, l, u, r), QOR_DF_NULL_SCOEFF);
  EXPECT_EQ(
      Api<Real>::integrate(nullptr, 0, 1, l, 0, u, 0, nullptr, nullptr, r, 0, nullptr, nullptr,
                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
      QOR_DF_NULL_TASK);
}

// A part's integrand: the factor times t.
template <class Real>
struct Part {
  Real lowest, highest, factor;
  int status;
};

template <class Real>
int integrate_line(const int64_t* n, const Real* l, const Real* u, Real* result, void* params,
                   void* zero) {
  const auto& part = *static_cast<Part<Real>*>(params);
  EXPECT_EQ(zero, nullptr);
  for (int64_t i = 0; i < *n; ++i) {
    EXPECT_TRUE(part.lowest <= l[i] && l[i] <= u[i] && u[i] <= part.highest) << l[i] << " " << u[i];
    result[i] = part.factor * (u[i] * u[i] - l[i] * l[i]) / 2;
  }
  return part.status;
}

// Every subset of callbacks: their parts from them, the others from the spline y = 1.
TYPED_TEST(Integration, Callbacks) {
  using Real = TypeParam;
  const Real x[3] = {0, 1, 2}, y[3] = {1, 1, 1};
  const std::vector<Real> at = {-3, -1, 0, 0.5, 1, 1.5, 2, 3, 5};
  Real c[4], r[1];
  Task<Real> task(3, x, 0, 1, y);
  ASSERT_EQ(task.spline(2, 0, c), 0);
  ASSERT_EQ(Api<Real>::linear(task, 0, 0, nullptr), 0);
  for (int mask = 0; mask < 8; ++mask) {
    for (int status : {0, -9}) {
      Part<Real> left{-9, 0, 2, status}, right{2, 9, 4, status}, inside{0, 2, 8, status};
      const auto callback = integrate_line<Real>;
      const auto run = [&](Real l, Real u) {
        return Api<Real>::integrate(
            task, 0, 1, &l, 0, &u, 0, nullptr, nullptr, r, 0, (mask & 1) != 0 ? callback : nullptr,
            &left, (mask & 2) != 0 ? callback : nullptr, &right,
            (mask & 4) != 0 ? callback : nullptr, &inside, nullptr, nullptr, nullptr);
      };
      for (const Real l : at) {
        for (const Real u : at) {
          const Real low = std::min(l, u), high = std::max(l, u);
          const auto part = [&](int bit, Real from, Real to, Real factor) {
            const Real a = std::clamp(low, from, to), b = std::clamp(high, from, to);
            return (mask & bit) != 0 ? factor * (b * b - a * a) / 2 : b - a;
          };
          const Real sum = part(1, -9, 0, 2) + part(4, 0, 2, 8) + part(2, 2, 9, 4);
          const bool touches = ((mask & 1) != 0 && low < 0) || ((mask & 2) != 0 && high > 2) ||
                               ((mask & 4) != 0 && low <= 2 && high >= 0);
          ASSERT_EQ(run(l, u), touches ? status : 0) << mask << " " << l << " " << u;
          if (status == 0) {
            ASSERT_NEAR(r[0], u >= l ? sum : -sum, 1e-4) << mask << " " << l << " " << u;
          }
        }
      }
    }
  }
  // A user's function needs all three.
  ASSERT_EQ(task.spline(0, 3, nullptr), 0);
  Part<Real> all{-9, 9, 2, 0};
  const auto callback = integrate_line<Real>;
  const Real l[1] = {4}, u[1] = {-2};
  EXPECT_EQ(
      task.integrate(1, l, u, r,
                     {.left = callback, .right = callback, .inside = callback, .params = &all}),
      0);
  EXPECT_NEAR(r[0], -12, 1e-5);
}

}  // namespace
}  // namespace qor::test
