// Quadratic splines on knots of their own. Knots k[0..n] interleave the n breakpoints x:
// k[0] = x[0], x[j-1] < k[j] < x[j], k[n] = x[n-1]; cell j reaches from k[j] to k[j+1] and matches
// y[j] at x[j].
//
// The unknowns are the first derivatives t[0..n] at the knots. Between knots the first derivative
// is a line, so that its integral from x[i] to x[i+1], over the right part of cell i and the left
// part of cell i + 1, is
//   A t[i] + B t[i+1] + C t[i+2] = y[i+1] - y[i]
//   A = (q - p)^2 / 2q of cell i,  C = p^2 / 2q of cell i + 1,
//   B = (q - p)(q + p) / 2q of cell i + p (2q - p) / 2q of cell i + 1,
// with q the width of a cell and p the distance from its left knot to its breakpoint. B >= A + C,
// so that no pivoting is needed. The end conditions give t[0] and t[n] in terms of their neighbours
// and are put in; a periodic spline, t[0] = t[n], leads to a cyclic system of n rows.

#include "fitting/construction.h"
#include "fitting/quadratic.h"
#include "fitting/scratch.h"
#include "fitting/tridiagonal.h"

namespace qor::fitting {
namespace {

// t[end] = near * t[next to it] + far * t[behind that] + constant.
template <class Real>
struct EndRelation {
  Real near, far, constant;
};

// outward is -1 at the left end and +1 at the right; q is the width of the end cell, next that of
// its neighbour.
template <class Real>
EndRelation<Real> end_relation(const End<Real>& end, Real outward, Real q, Real next) {
  switch (end.kind) {
    case EndKind::not_a_knot:  // the second derivative of both cells is one
      return {(q + next) / next, -q / next, 0};
    case EndKind::first_derivative:
      return {0, 0, end.value};
    case EndKind::second_derivative:
      return {1, 0, outward * (q * end.value)};
    default:
      return {1, 0, 0};
  }
}

template <class Real>
struct KnotSystem {
  int64_t n, functions;
  Real *p, *q;        // n each
  Real *dl, *d, *du;  // of the rows
  Real* b;            // `rows` for each function, and one column behind them
  int64_t rows;       // n - 1, and n when periodic
  bool periodic;
  EndRelation<Real> left, right;

  static int64_t scratch_size(int64_t n, int64_t functions) {
    return counted_product(n, counted_sum(functions, 6));
  }

  KnotSystem(const DFTask& task, const Boundary<Real>& boundary, Real* scratch)
      : n(task.nx),
        functions(task.ny),
        p(scratch),
        q(p + n),
        dl(q + n),
        d(dl + n),
        du(d + n),
        b(du + n),
        rows(boundary.periodic() ? n : n - 1),
        periodic(boundary.periodic()) {}

  template <class Partition>
  void set_cells(const Partition& x, const Real* knots, const Boundary<Real>& boundary) {
    for (int64_t j = 0; j < n; ++j) {
      q[j] = knots[j + 1] - knots[j];
      p[j] = x.x(j) - knots[j];
    }
    p[0] = 0;
    p[n - 1] = q[n - 1];
    left = end_relation<Real>(boundary.left, -1, q[0], q[1]);
    right = end_relation<Real>(boundary.right, 1, q[n - 1], q[n - 2]);
  }

  // With ratios in place of products, which may underflow.
  Real left_part(int64_t j) const { return p[j] / q[j]; }
  Real before(int64_t i) const { return (q[i] - p[i]) * (1 - left_part(i)) / 2; }
  Real behind(int64_t i) const { return p[i + 1] * left_part(i + 1) / 2; }
  Real middle(int64_t i) const {
    return ((q[i] - p[i]) * (1 + left_part(i)) + p[i + 1] * (2 - left_part(i + 1))) / 2;
  }

  // Row i for the unknown t[i+1].
  void fill_rows() {
    for (int64_t i = 0; i < rows; ++i) {
      d[i] = middle(i);
      if (i > 0) dl[i - 1] = before(i);
      if (i + 1 < rows) du[i] = behind(i);
    }
    const int64_t last = rows - 1;
    d[0] += before(0) * left.near;
    d[last] += behind(last) * right.near;
    if (rows > 1) {
      du[0] += before(0) * left.far;
      dl[last - 1] += behind(last) * right.far;
    }
  }
  template <class Values>
  void fill_right_side(const Values& y, int64_t function) {
    Real* v = b + function * rows;
    for (int64_t i = 0; i < rows; ++i) v[i] = y[i + 1] - y[i];
    v[0] -= before(0) * left.constant;
    v[rows - 1] -= behind(rows - 1) * right.constant;
  }

  // Cyclic rows for t[0..n-1]. The first asks for equal second derivatives at both ends,
  //   (1 + q[0]/q[n-1]) t[0] - t[1] - q[0]/q[n-1] t[n-1] = 0,
  // row i + 1 is the integral from x[i]. The two corners go into the product of a column, behind
  // the right sides, and the row (1, 0 ... 0, corner) (Sherman and Morrison, 1950).
  Real pivot() const { return 1 + q[0] / q[n - 1]; }
  Real corner() const { return q[0] / q[n - 1] / pivot(); }
  void fill_periodic_rows() {
    d[0] = 2 * pivot();
    du[0] = -1;
    for (int64_t i = 0; i + 1 < n; ++i) {
      dl[i] = before(i);
      d[i + 1] = middle(i);
      if (i + 2 < n) du[i + 1] = behind(i);
    }
    d[n - 1] -= behind(n - 2) * corner();
    Real* u = b + functions * n;
    for (int64_t i = 0; i < n; ++i) u[i] = 0;
    u[0] = -pivot();
    u[n - 1] = behind(n - 2);
  }
  template <class Values>
  void fill_periodic_right_side(const Values& y, int64_t function) {
    Real* v = b + function * n;
    v[0] = 0;
    for (int64_t i = 0; i + 1 < n; ++i) v[i + 1] = y[i + 1] - y[i];
  }
  void close_period(int64_t function) {
    const Real* u = b + functions * n;
    Real* v = b + function * n;
    const Real a = (v[0] + corner() * v[n - 1]) / (1 + u[0] + corner() * u[n - 1]);
    for (int64_t i = 0; i < n; ++i) v[i] -= u[i] * a;
  }

  bool solve() {
    return solve_tridiagonal(rows, periodic ? functions + 1 : functions, dl, d, du, b);
  }

  // The first derivative at knot j of a solved function.
  Real derivative(int64_t function, int64_t j) const {
    const Real* v = b + function * rows;
    if (periodic) return v[j == n ? 0 : j];
    if (j == 0) return ended(left, v[0], v[rows > 1 ? 1 : 0]);
    if (j == n) return ended(right, v[rows - 1], v[rows > 1 ? rows - 2 : 0]);
    return v[j - 1];
  }
  static Real ended(const EndRelation<Real>& end, Real near, Real far) {
    return end.near * near + end.far * far + end.constant;
  }

  template <class Values>
  void write_cells(const Values& y, int64_t function, Real* c) const {
    Real t = derivative(function, 0);
    for (int64_t j = 0; j < n; ++j, c += quadratic_order) {
      const Real next = derivative(function, j + 1);
      c[2] = (next - t) / (2 * q[j]);
      c[1] = t;
      c[0] = y[j] - p[j] * (t + p[j] * c[2]);
      t = next;
    }
  }
};

template <class Real, class Partition>
bool valid_knots(const Partition& x, const Real* knots) {
  if (knots[0] != x.x(0) || knots[x.n] != x.last()) return false;
  for (int64_t i = 1; i < x.n; ++i) {
    const Real right = i == x.n - 1 ? x.last() : x.x(i);
    if (!(knots[i] > x.x(i - 1) && knots[i] < right)) return false;
  }
  return true;
}

template <class Real>
struct KnotQuadratic {
  template <class Partition, class Values>
  static int run(const DFTask& task);
};

template <class Real>
template <class Partition, class Values>
int KnotQuadratic<Real>::run(const DFTask& task) {
  const Partition x(task);
  const Real* knots = internal_conditions<Real>(task);
  if (!valid_knots(x, knots)) return QOR_DF_BAD_IC;
  const Boundary<Real> boundary = boundary_of<Real>(task);
  if (boundary.periodic() && !all_close<Values>(task)) return QOR_DF_NOT_PERIODIC;
  const HeapScratch<Real> scratch(KnotSystem<Real>::scratch_size(x.n, task.ny));
  if (scratch.data() == nullptr) return QOR_DF_NO_MEMORY;
  KnotSystem<Real> system(task, boundary, scratch.data());
  system.set_cells(x, knots, boundary);
  if (system.periodic) {
    system.fill_periodic_rows();
  } else {
    system.fill_rows();
  }
  for (int64_t f = 0; f < task.ny; ++f) {
    if (system.periodic) {
      system.fill_periodic_right_side(Values(task, f), f);
    } else {
      system.fill_right_side(Values(task, f), f);
    }
  }
  if (!system.solve()) return QOR_DF_SOLVER_FAILED;
  for (int64_t f = 0; f < task.ny; ++f) {
    if (system.periodic) system.close_period(f);
    system.write_cells(Values(task, f), f, coefficients<Real>(task, f));
  }
  return QOR_DF_OK;
}

}  // namespace

template <class Real>
int construct_on_knots(const DFTask& task) {
  return by_forms<Real, KnotQuadratic<Real>>(task, task);
}
template int construct_on_knots<double>(const DFTask&);
template int construct_on_knots<float>(const DFTask&);

}  // namespace qor::fitting
