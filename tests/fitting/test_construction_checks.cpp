// Entry checks of the construction kernels.

#include <cmath>
#include <limits>

#include "fitting/task.h"
#include "tests/fitting/solver_interposer.h"
#include "tests/fitting/spline_case.h"

namespace qor::test {
namespace {

constexpr int64_t kAnyOrder = 4;

template <class Real>
class ConstructionChecks : public BothPrecisions<Real> {
 protected:
  // Runs a kernel over nx points; what is not given here is sound.
  struct Setting {
    int64_t nx = 8, bc_type = 2, s_type = 5, method = 0, ic_type = 0, yhint = 0;
    const Real* bc = nullptr;
    const Real* ic = nullptr;
    bool closed = true;
  };
  int run(Kernel kernel, const Setting& s) {
    Real x[8], y[8] = {1, 2, 3, 5, 2, 4, 2, 7};
    for (int i = 0; i < 8; ++i) x[i] = static_cast<Real>(i);
    if (s.closed) y[s.nx - 1] = y[0];
    for (Real& c : c_) c = 77;
    Task<Real> task(s.nx, x, 0, 1, y, s.yhint);
    EXPECT_EQ(Api<Real>::edit_pointer(task, QOR_DF_SCOEFF, c_), 0);
    qor_df_kernel_iEditVal(task, QOR_DF_TYPE, s.s_type);
    qor_df_kernel_iEditVal(task, QOR_DF_BC_TYPE, s.bc_type);
    qor_df_kernel_iEditVal(task, QOR_DF_IC_TYPE, s.ic_type);
    if (s.bc != nullptr) Api<Real>::edit_pointer(task, QOR_DF_BC, s.bc);
    if (s.ic != nullptr) Api<Real>::edit_pointer(task, QOR_DF_IC, s.ic);
    const int status = kernel(task, kAnyOrder, s.method, nullptr);
    if (status != QOR_DF_OK) {
      for (const Real c : c_) EXPECT_EQ(c, 77) << "written in spite of " << status;
    }
    return status;
  }

 private:
  Real c_[40];
};
TYPED_TEST_SUITE(ConstructionChecks, Precisions);

TYPED_TEST(ConstructionChecks, OfCubics) {
  using A = Api<TypeParam>;
  const TypeParam v[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  for (const SplineShape& shape : spline_shapes()) {
    if (shape.order != 4) continue;
    SCOPED_TRACE(shape.name);
    const Kernel k = kernel_of<TypeParam>(shape.kind);
    const bool needs_ic = shape.kind == SplineKind::by_second || shape.kind == SplineKind::hermite;
    const TypeParam* ic = v;
    EXPECT_EQ(this->run(k, {.nx = shape.fewest, .ic = ic}), QOR_DF_OK);
    const int64_t below = shape.fewest - 1;
    if (below >= 2) {
      EXPECT_EQ(this->run(k, {.nx = below, .bc_type = 3, .ic = ic}), QOR_DF_BAD_NX);
    }
    EXPECT_EQ(this->run(k, {.bc_type = 3, .ic = ic}), QOR_DF_BAD_BC_TYPE);
    EXPECT_EQ(this->run(k, {.bc_type = 128, .bc = v, .ic = ic}), QOR_DF_BAD_BC_TYPE);
    EXPECT_EQ(this->run(k, {.bc_type = 0, .ic = ic}),
              shape.kind == SplineKind::akima ? QOR_DF_OK : QOR_DF_BAD_BC_TYPE);
    for (const int64_t bc_type : {12, 24, 36, 48}) {
      EXPECT_EQ(this->run(k, {.bc_type = bc_type, .ic = ic}), QOR_DF_NULL_BC);
      EXPECT_EQ(this->run(k, {.bc_type = bc_type, .bc = v, .ic = ic}), QOR_DF_OK);
    }
    for (const int64_t s_type : {0, 3}) {
      EXPECT_EQ(this->run(k, {.bc_type = 64, .s_type = s_type, .ic = ic}), QOR_DF_NULL_BC);
    }
    EXPECT_EQ(this->run(k, {.bc_type = 64, .ic = ic}), needs_ic ? QOR_DF_NULL_BC : QOR_DF_OK);
    EXPECT_EQ(this->run(k, {.bc_type = 64, .bc = v, .ic = ic, .closed = false}),
              QOR_DF_NOT_PERIODIC);
    EXPECT_EQ(this->run(k, {.ic = nullptr}), needs_ic ? QOR_DF_BAD_IC : QOR_DF_OK);
  }
  EXPECT_EQ(this->run(A::natural, {.method = 1}), QOR_DF_BAD_METHOD);
  EXPECT_EQ(this->run(A::natural, {.nx = 2, .bc_type = 1}), QOR_DF_BAD_NX);
}

TYPED_TEST(ConstructionChecks, OfLinearAndQuadratic) {
  using A = Api<TypeParam>;
  const TypeParam v[2] = {1, 2};
  EXPECT_EQ(this->run(A::linear, {.nx = 2}), QOR_DF_OK);
  EXPECT_EQ(this->run(A::linear, {.method = 1}), QOR_DF_BAD_METHOD);
  EXPECT_EQ(this->run(A::quadratic, {.bc_type = 128, .method = 2, .bc = v}), QOR_DF_BAD_METHOD);
  EXPECT_EQ(this->run(A::quadratic, {.bc_type = 2, .bc = v}), QOR_DF_BAD_BC_TYPE);
  EXPECT_EQ(this->run(A::quadratic, {.bc_type = 128}), QOR_DF_NULL_BC);
  EXPECT_EQ(this->run(A::quadratic, {.bc_type = 128, .ic_type = 2, .bc = v}), QOR_DF_BAD_IC_TYPE);
  EXPECT_EQ(this->run(A::quadratic, {.bc_type = 128, .ic_type = 1, .bc = v}), QOR_DF_BAD_BC_TYPE);
  EXPECT_EQ(this->run(A::quadratic, {.bc_type = 12, .ic_type = 1}), QOR_DF_NULL_BC);
  EXPECT_EQ(this->run(A::quadratic, {.bc_type = 2, .ic_type = 1}), QOR_DF_BAD_IC);
  EXPECT_EQ(this->run(A::quadratic, {.nx = 2, .bc_type = 1, .ic_type = 1}), QOR_DF_BAD_NX);
}

TYPED_TEST(ConstructionChecks, KnotsInterleaveBreakpoints) {
  using Real = TypeParam;
  const Real good[5] = {0, Real(0.5), Real(1.5), Real(2.5), 3};
  const auto with = [&](size_t at, Real value) {
    std::vector<Real> ic(good, good + 5);
    ic[at] = value;
    return this->run(Api<Real>::quadratic, {.nx = 4, .ic_type = 1, .ic = ic.data()});
  };
  EXPECT_EQ(with(1, Real(0.25)), QOR_DF_OK);
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  EXPECT_EQ(with(0, Real(0.0625)), QOR_DF_BAD_IC);
  EXPECT_EQ(with(4, std::nextafter(Real(3), Real(4))), QOR_DF_BAD_IC);
  for (const Real bad : {Real(1), Real(2), Real(5), nan}) EXPECT_EQ(with(2, bad), QOR_DF_BAD_IC);
}

// Storage is checked before anything that depends on it; tables that a kernel needs may be missing.
TYPED_TEST(ConstructionChecks, StorageAndTables) {
  using Real = TypeParam;
  const Real x[6] = {0, 1, 2, 3, 4, 5}, y[6] = {1, 2, 3, 4, 5, 1}, v[8] = {};
  for (const SplineShape& shape : spline_shapes()) {
    SCOPED_TRACE(shape.name);
    const Kernel k = kernel_of<Real>(shape.kind);
    Task<Real> task(6, x, 0, 1, y);
    const bool on_knots = shape.kind == SplineKind::knot_quadratic;
    EXPECT_EQ(task.spline(shape.order, shape.s_type, nullptr, shape.boundaries[0], v,
                          on_knots || shape.order == 4 ? 1 : 0,
                          on_knots || shape.order == 4 ? v : nullptr),
              0);
    EXPECT_EQ(k(task, 0, 0, nullptr), QOR_DF_NULL_SCOEFF);
    Task<Real> empty(6, x, 0);
    qor_df_kernel_iEditVal(empty, QOR_DF_BC_TYPE, shape.boundaries[0]);
    qor_df_kernel_iEditVal(empty, QOR_DF_IC_TYPE, on_knots ? 1 : 0);
    Api<Real>::edit_pointer(empty, QOR_DF_BC, v);
    Api<Real>::edit_pointer(empty, QOR_DF_IC, v);
    if (!on_knots) {
      EXPECT_EQ(k(empty, 0, 0, nullptr), QOR_DF_OK);  // no function, nothing to do
    }
    qor_df_kernel_iEditVal(empty, QOR_DF_NY, 1);
    EXPECT_EQ(k(empty, 0, 0, nullptr), QOR_DF_NULL_Y);
    static_cast<DFTask*>(empty)->yhint = 64;  // no editor takes it
    EXPECT_EQ(k(empty, 0, 0, nullptr), QOR_DF_BAD_Y_HINT);
  }
}

TYPED_TEST(ConstructionChecks, SolverFailures) {
  using A = Api<TypeParam>;
  const TypeParam knots[9] = {0, 0.5, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7};
  for (const int failing : {0, 1}) {  // the factorisation, the solution
    const FailingSolver guard(failing);
    EXPECT_EQ(this->run(A::natural, {}), QOR_DF_SOLVER_FAILED);
  }
  const FailingSolver guard(0);
  EXPECT_EQ(this->run(A::quadratic, {.ic_type = 1, .ic = knots}), QOR_DF_SOLVER_FAILED);
  // Breakpoints that do not increase leave a zero pivot.
  const TypeParam x[4] = {}, y[4] = {};
  TypeParam c[12];
  Task<TypeParam> task(4, x, 0, 1, y);
  ASSERT_EQ(task.spline(4, 5, c, 2), 0);
  EXPECT_EQ(A::natural(task, 0, 0, nullptr), QOR_DF_SOLVER_FAILED);
}

// The midpoints move from the stack to the heap between these sizes.
TYPED_TEST(ConstructionChecks, MidpointScratchDoesNotShow) {
  using Real = TypeParam;
  constexpr size_t n = 4200;
  std::vector<Real> x, y;
  for (size_t i = 0; i < n; ++i) {
    x.push_back(static_cast<Real>(i));
    y.push_back(static_cast<Real>((i * i) % 7));
  }
  const Real bc[1] = {2};
  std::vector<std::vector<Real>> c;
  for (const int64_t nx : {4094, 4095, 4200}) {
    c.emplace_back(static_cast<size_t>(3 * (nx - 1)));
    Task<Real> task(nx, x.data(), 0, 1, y.data());
    ASSERT_EQ(task.spline(3, 0, c.back().data(), 128, bc), 0);
    ASSERT_EQ(Api<Real>::quadratic(task, 0, 0, nullptr), QOR_DF_OK);
    EXPECT_TRUE(std::equal(c[0].begin(), c[0].end(), c.back().begin()));
  }
}

}  // namespace
}  // namespace qor::test
