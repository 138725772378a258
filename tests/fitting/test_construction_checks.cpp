// Entry checks of the construction kernels, and the tridiagonal services that they use: solutions
// satisfy their system, pivots that vanish are told.

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "fitting/task.h"
#include "tests/fitting/spline_case.h"

namespace {

// Whether the tridiagonal routines report a zero pivot: those of this program stand in front of
// those of qor_core.
bool solver_fails = false;

template <class... Arguments>
void pass_on(const char* name, int64_t* info, Arguments... arguments) {
  if (solver_fails) {
    *info = 1;
  } else {
    reinterpret_cast<void (*)(Arguments..., int64_t*)>(dlsym(RTLD_NEXT, name))(arguments..., info);
  }
}

}  // namespace

#pragma GCC visibility push(default)

void ddttrsb_4dfl(const char* form, const int64_t* n, const int64_t* nrhs, const double* dl,
                  const double* d, const double* du, double* b, const int64_t* ldb, int64_t* info) {
  pass_on("ddttrsb_4dfl", info, form, n, nrhs, dl, d, du, b, ldb);
}
void ddtsvb_4dfl(const int64_t* n, const int64_t* nrhs, double* dl, double* d, double* du,
                 double* b, const int64_t* ldb, int64_t* info) {
  pass_on("ddtsvb_4dfl", info, n, nrhs, dl, d, du, b, ldb);
}
void sdttrsb_4dfl(const char* form, const int64_t* n, const int64_t* nrhs, const float* dl,
                  const float* d, const float* du, float* b, const int64_t* ldb, int64_t* info) {
  pass_on("sdttrsb_4dfl", info, form, n, nrhs, dl, d, du, b, ldb);
}
void sdtsvb_4dfl(const int64_t* n, const int64_t* nrhs, float* dl, float* d, float* du, float* b,
                 const int64_t* ldb, int64_t* info) {
  pass_on("sdtsvb_4dfl", info, n, nrhs, dl, d, du, b, ldb);
}

#pragma GCC visibility pop

namespace qor::test {
namespace {

enum Missing { nothing, coefficients, values, functions };

template <class Real>
class ConstructionChecks : public BothPrecisions<Real> {
 protected:
  static constexpr Real kGiven[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  // What is not given here is sound.
  struct Setting {
    int64_t nx = 8, bc_type = 2, s_type = 5, method = 0, ic_type = 0, yhint = 0;
    const Real *bc = nullptr, *ic = kGiven;
    bool closed = true;
    Missing missing = nothing;
  };
  static int run(Kernel kernel, const Setting& s) {
    Real x[8], y[8] = {1, 2, 3, 5, 2, 4, 2, 7}, c[40];
    for (int i = 0; i < 8; ++i) x[i] = static_cast<Real>(i);
    if (s.closed) y[s.nx - 1] = y[0];
    std::fill_n(c, 40, Real(77));
    const bool none = s.missing >= values;
    const Task<Real> task(s.nx, x, 0, none ? 0 : 1, none ? nullptr : y);
    if (s.missing == values) qor_df_kernel_iEditVal(task, QOR_DF_NY, 1);
    if (s.missing == nothing) Api<Real>::edit_pointer(task, QOR_DF_SCOEFF, c);
    DFTask& record = *static_cast<DFTask*>(task);  // the editors do not take all of these
    record.s_type = s.s_type;
    record.bc_type = s.bc_type;
    record.ic_type = s.ic_type;
    record.bc = s.bc;
    record.ic = s.ic;
    record.yhint = s.yhint;
    const int status = kernel(task, 4, s.method, nullptr);
    const bool written = std::any_of(c, c + 40, [](Real v) { return v != 77; });
    EXPECT_EQ(written, status == QOR_DF_OK && s.missing == nothing);
    return status;
  }
};
TYPED_TEST_SUITE(ConstructionChecks, Precisions);

// What is missing, in the order of the checks.
TYPED_TEST(ConstructionChecks, OfAllKinds) {
  const TypeParam knots[9] = {0, 0.5, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7};
  for (const SplineShape& shape : spline_shapes()) {
    SCOPED_TRACE(shape.name);
    const Kernel k = kernel_of<TypeParam>(shape.kind);
    const bool on_knots = shape.is(Kind::knotted);
    auto s =
        typename TestFixture::Setting{.bc = this->kGiven, .ic = on_knots ? knots : this->kGiven};
    s.bc_type = shape.is(Kind::midpoint) ? 128 : 2;
    s.ic_type = on_knots ? 1 : 0;
    EXPECT_EQ(this->run(k, s), QOR_DF_OK);
    s.missing = functions;
    EXPECT_EQ(this->run(k, s), QOR_DF_OK);
    s.missing = coefficients;
    EXPECT_EQ(this->run(k, s), QOR_DF_NULL_SCOEFF);
    s.missing = values;
    EXPECT_EQ(this->run(k, s), QOR_DF_NULL_Y);
    s.bc_type = 3;
    EXPECT_EQ(this->run(k, s), shape.order == 2 ? QOR_DF_NULL_Y : QOR_DF_BAD_BC_TYPE);
    s.ic_type = 2;
    EXPECT_TRUE(shape.order != 3 || this->run(k, s) == QOR_DF_BAD_IC_TYPE);
    s.yhint = 64;
    EXPECT_EQ(this->run(k, s), QOR_DF_BAD_Y_HINT);
    s.method = 1;
    const bool none = shape.order < 4 || shape.is(Kind::natural);
    EXPECT_EQ(this->run(k, s), none ? QOR_DF_BAD_METHOD : QOR_DF_BAD_Y_HINT);
  }
}

TYPED_TEST(ConstructionChecks, OfQuadratics) {
  const auto check = [&](typename TestFixture::Setting setting, int status) {
    setting.missing = values;
    EXPECT_EQ(this->run(Api<TypeParam>::quadratic, setting), status);
  };
  const auto* v = this->kGiven;
  check({.bc_type = 2, .bc = v}, QOR_DF_BAD_BC_TYPE);
  check({.bc_type = 128}, QOR_DF_NULL_BC);
  check({.bc_type = 128, .ic_type = 1, .bc = v}, QOR_DF_BAD_BC_TYPE);
  check({.bc_type = 12, .ic_type = 1}, QOR_DF_NULL_BC);
  check({.nx = 2, .bc_type = 1, .ic_type = 1}, QOR_DF_BAD_NX);
  EXPECT_EQ(this->run(Api<TypeParam>::quadratic, {.ic_type = 1, .ic = nullptr}), QOR_DF_BAD_IC);
}

TYPED_TEST(ConstructionChecks, OfCubics) {
  const auto* v = this->kGiven;
  for (const SplineShape& shape : spline_shapes()) {
    if (shape.order != 4) continue;
    SCOPED_TRACE(shape.name);
    const Kernel k = kernel_of<TypeParam>(shape.kind);
    const bool akima = shape.is(Kind::akima), natural = shape.is(Kind::natural);
    EXPECT_EQ(this->run(k, {.nx = shape.fewest}), QOR_DF_OK);
    EXPECT_EQ(this->run(k, {.nx = natural ? 2 : shape.fewest - 1, .bc_type = 1, .yhint = 64}),
              QOR_DF_BAD_NX);
    EXPECT_EQ(this->run(k, {.bc_type = 3, .ic = nullptr}), QOR_DF_BAD_BC_TYPE);
    EXPECT_EQ(this->run(k, {.bc_type = 128, .bc = v}), QOR_DF_BAD_BC_TYPE);
    EXPECT_EQ(this->run(k, {.bc_type = 0}), akima ? QOR_DF_OK : QOR_DF_BAD_BC_TYPE);
    for (const int64_t bc_type : {12, 24, 36, 48}) {
      EXPECT_EQ(this->run(k, {.bc_type = bc_type, .ic = nullptr}), QOR_DF_NULL_BC);
      EXPECT_EQ(this->run(k, {.bc_type = bc_type, .bc = v}), QOR_DF_OK);
    }
    for (const int64_t s_type : {0, 3}) {
      EXPECT_EQ(this->run(k, {.bc_type = 64, .s_type = s_type}), QOR_DF_NULL_BC);
    }
    EXPECT_EQ(this->run(k, {.bc_type = 64}), shape.takes_inner() ? QOR_DF_NULL_BC : QOR_DF_OK);
    EXPECT_EQ(this->run(k, {.ic = nullptr, .missing = values}),
              shape.takes_inner() ? QOR_DF_BAD_IC : QOR_DF_NULL_Y);
    EXPECT_EQ(this->run(k, {.bc_type = 64, .bc = v, .closed = false}), QOR_DF_NOT_PERIODIC);
  }
}

TYPED_TEST(ConstructionChecks, KnotsInterleaveBreakpoints) {
  using Real = TypeParam;
  const auto with = [&](size_t at, Real value, int64_t bc_type = 2, bool closed = true) {
    Real ic[5] = {0, Real(0.5), Real(1.5), Real(2.5), 3};
    ic[at] = value;
    return this->run(Api<Real>::quadratic,
                     {.nx = 4, .bc_type = bc_type, .ic_type = 1, .ic = ic, .closed = closed});
  };
  EXPECT_EQ(with(1, Real(0.25)), QOR_DF_OK);
  EXPECT_EQ(with(1, Real(0.25), 64), QOR_DF_OK);
  EXPECT_EQ(with(1, Real(0.25), 64, false), QOR_DF_NOT_PERIODIC);
  EXPECT_EQ(with(0, Real(0.0625)), QOR_DF_BAD_IC);
  EXPECT_EQ(with(4, std::nextafter(Real(3), Real(4))), QOR_DF_BAD_IC);
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  for (const Real bad : {Real(1), Real(2), Real(5), nan}) EXPECT_EQ(with(2, bad), QOR_DF_BAD_IC);
}

TYPED_TEST(ConstructionChecks, SolverFailures) {
  using A = Api<TypeParam>;
  const TypeParam knots[9] = {0, 0.5, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7};
  solver_fails = true;
  EXPECT_EQ(this->run(A::natural, {}), QOR_DF_SOLVER_FAILED);
  EXPECT_EQ(this->run(A::quadratic, {.ic_type = 1, .ic = knots}), QOR_DF_SOLVER_FAILED);
  solver_fails = false;
  // Breakpoints that do not increase leave a zero pivot.
  const TypeParam x[4] = {}, y[4] = {};
  TypeParam c[12];
  const Task<TypeParam> task(4, x, 0, 1, y);
  ASSERT_EQ(task.spline(4, 5, c, 2), 0);
  EXPECT_EQ(A::natural(task, 0, 0, nullptr), QOR_DF_SOLVER_FAILED);
}

template <class Real>
class Tridiagonal : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Tridiagonal, Precisions);

TYPED_TEST(Tridiagonal, FactorsAndSolves) {
  using Real = TypeParam;
  using A = Api<Real>;
  std::mt19937 random(5);
  std::uniform_real_distribution<Real> unit(-1, 1);
  const Real eps = 16 * std::numeric_limits<Real>::epsilon();
  for (const int64_t n : {1, 2, 3, 50}) {
    for (const int64_t nrhs : {0, 1, 3, 4, 9}) {
      const int64_t ldb = n + 2;
      const auto rows = static_cast<size_t>(n);
      std::vector<Real> dl(rows), d(rows), du(rows), b(static_cast<size_t>(ldb * nrhs));
      for (auto* v : {&dl, &d, &du, &b}) {
        for (Real& e : *v) e = unit(random) + (v == &d ? 3 : 0);
      }
      auto l = dl, u = d, w = du, x = b, y = b;
      int64_t info = 7;
      A::factor(&n, l.data(), u.data(), w.data(), &info);
      ASSERT_EQ(info, 0);
      A::solve("N", &n, &nrhs, l.data(), u.data(), w.data(), x.data(), &ldb, &info);
      ASSERT_EQ(info, 0);
      auto l2 = dl, u2 = d, w2 = du;
      A::factor_and_solve(&n, &nrhs, l2.data(), u2.data(), w2.data(), y.data(), &ldb, &info);
      ASSERT_EQ(info, 0);
      EXPECT_EQ(x, y);
      for (size_t k = 0; k < b.size(); ++k) {
        const size_t i = k % static_cast<size_t>(ldb);
        Real sum = x[k];  // behind a column's rows nothing is written
        if (i < rows) sum *= d[i];
        if (i < rows && i > 0) sum += dl[i - 1] * x[k - 1];
        if (i + 1 < rows) sum += du[i] * x[k + 1];
        EXPECT_NEAR(sum, b[k], i < rows ? eps : 0);
      }
    }
  }
}

TYPED_TEST(Tridiagonal, ReportsZeroPivots) {
  using Real = TypeParam;
  using A = Api<Real>;
  const int64_t n = 3, nrhs = 1;
  int64_t info = 0;
  Real dl[2] = {1, 1}, d[3] = {1, 1, 5}, du[2] = {1, 1}, b[3] = {1, 2, 3};
  A::factor_and_solve(&n, &nrhs, dl, d, du, b, &n, &info);
  EXPECT_EQ(info, 2);
  EXPECT_EQ(b[0], 1);
  EXPECT_EQ(b[2], 3);
  Real zero[3] = {0, 1, 1}, at_end[3] = {1, 1, 1}, half[2] = {0, 1};
  A::factor(&n, dl, zero, du, &info);
  EXPECT_EQ(info, 1);
  A::factor(&n, half, at_end, du, &info);
  EXPECT_EQ(info, 3);
  A::solve("T", &n, &nrhs, dl, d, du, b, &n, &info);
  EXPECT_LT(info, 0);
}

}  // namespace
}  // namespace qor::test
