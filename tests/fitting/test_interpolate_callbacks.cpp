// Interpolation with callbacks: the user's values left, right and inside, and the user's search.

#include "tests/fitting/pieces.h"

namespace qor::test {
namespace {

template <class Real>
class InterpolationCallbacks : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(InterpolationCallbacks, Precisions);

// What a callback saw, and what it is to return.
struct Seen {
  int64_t calls = 0, sites = 0;
  int status = 0;
};

// Marks results by the class of the site: the cell, or minus the cell for the second derivative.
template <class Real>
int mark_cells(const int64_t* n, const Real* site, const int32_t* cell, Real* result, void* params,
               void* zero) {
  Seen& seen = *static_cast<Seen*>(params);
  EXPECT_EQ(zero, nullptr);
  ++seen.calls;
  seen.sites += *n;
  for (int64_t i = 0; i < *n; ++i) {
    EXPECT_EQ(cell[i] == 0, site[i] < 0) << site[i];
    result[2 * i] = static_cast<Real>(cell[i]) + 1000;
    result[2 * i + 1] = -result[2 * i];
  }
  return seen.status;
}

TYPED_TEST(InterpolationCallbacks, ServeTheirSites) {
  using Real = TypeParam;
  const Real x[3] = {0, 1, 2}, y[6] = {};
  Real c[16];
  for (int k = 0; k < 16; ++k) c[k] = static_cast<Real>(k);
  const std::vector<Real> site = {-2, -1, Real(0.5), 3, -1, Real(1.5), 2, 2.5};
  const int32_t cell[8] = {0, 0, 1, 3, 0, 2, 2, 3};
  Task<Real> task(3, x, 0, 2, y);
  for (const int64_t layout : {16, 32}) {
    for (int mask = 0; mask < 8; ++mask) {
      for (const int64_t order : {4, 0}) {
        ASSERT_EQ(task.spline(order, 0, c), 0);
        Seen seen;
        const auto callback = mark_cells<Real>;
        const typename Task<Real>::Sites s{.derivatives = {1, 1},
                                           .layout = layout,
                                           .left = (mask & 1) != 0 ? callback : nullptr,
                                           .right = (mask & 2) != 0 ? callback : nullptr,
                                           .inside = (mask & 4) != 0 ? callback : nullptr,
                                           .params = &seen};
        std::vector<Real> r(32), plain(32);
        const int status = task.interpolate(site, r.data(), s);
        if (order == 0 && mask != 7) {
          EXPECT_EQ(status, QOR_DF_BAD_TYPE);
          continue;
        }
        ASSERT_EQ(status, 0);
        if (order != 0) {
          ASSERT_EQ(task.interpolate(site, plain.data(), {.derivatives = {1, 1}, .layout = layout}),
                    0);
        }
        for (int64_t i = 0; i < 8; ++i) {
          const int bit = cell[i] == 0 ? 1 : cell[i] == 3 ? 2 : 4;
          for (int64_t f = 0; f < 2; ++f) {
            const Real mark = static_cast<Real>(cell[i]) + 1000;
            const size_t value = place(layout, i, f, 0, 8, 2, 2);
            const size_t slope = place(layout, i, f, 1, 8, 2, 2);
            EXPECT_EQ(r[value], (mask & bit) != 0 ? mark : plain[value]) << mask << " " << i;
            EXPECT_EQ(r[slope], (mask & bit) != 0 ? -mark : plain[slope]);
          }
        }
        const int64_t sites = (mask & 1) * 3 + (mask & 2) / 2 * 2 + (mask & 4) / 4 * 3;
        EXPECT_EQ(seen.sites, 2 * sites);
        seen.status = -77;
        EXPECT_EQ(task.interpolate(site, r.data(), s), mask == 0 ? 0 : -77);
      }
    }
  }
}

template <class Real>
int fail_search(const int64_t*, const Real*, int64_t*, int64_t*, void*, void*) {
  return -55;
}

TYPED_TEST(InterpolationCallbacks, UsersSearch) {
  using Real = TypeParam;
  const Pieces<Real> p(4, 1, 4);
  Task<Real> task(p.nx, p.x.data(), 1, 1, p.y.data());
  ASSERT_EQ(task.spline(4, 5, const_cast<Real*>(p.c.data())), 0);
  Real r[1] = {99};
  EXPECT_EQ(task.interpolate({0}, r, {.search = fail_search<Real>}), -55);
  EXPECT_EQ(r[0], 99);
}

}  // namespace
}  // namespace qor::test
