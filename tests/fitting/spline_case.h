// One case of a spline: its kind, its data in a task, and what the kind's definition says.
#pragma once

#include <vector>

#include "tests/fitting/api.h"
#include "tests/fitting/reference.h"

namespace qor::test {

// Those behind `by_second` have first derivatives of local rules.
enum class Kind { linear, midpoint, knotted, natural, by_second, hermite, bessel, akima, hyman };

struct SplineShape {
  Kind kind;
  const char* name;
  int order;
  int64_t s_type;
  int64_t fewest;  // breakpoints
  size_t reach;    // cells left and right of a breakpoint that see its value; 0: all
  std::vector<int64_t> boundaries;

  bool is(Kind other) const { return kind == other; }
  bool takes_inner() const { return is(Kind::by_second) || is(Kind::hermite); }
};
const std::vector<SplineShape>& spline_shapes();

// The data of one function and the conditions it is fitted under.
struct SplineData {
  std::vector<Wide> x, y;
  std::vector<Wide> knots;
  std::vector<Wide> inner;  // the given derivatives at inner breakpoints
  std::vector<Wide> bc;
};

// By how much coefficients fail a condition of the kind's definition; see SplineConditions.
Wide failure(const SplineShape& shape, int64_t bc_type, const SplineData& data,
             const std::vector<Wide>& c);

template <class Real>
Kernel kernel_of(Kind kind) {
  using A = Api<Real>;
  constexpr Kernel kKernels[] = {A::linear,  A::quadratic, A::quadratic, A::natural, A::by_second,
                                 A::hermite, A::bessel,    A::akima,     A::hyman};
  return kKernels[static_cast<size_t>(kind)];
}

// Makes the task one of the shape; kinds that have no use for inner derivatives get them all the
// same.
template <class Real>
int set_spline(const Task<Real>& task, const SplineShape& shape, int64_t bc_type, const Real* bc,
               const std::vector<Real>& inner, const std::vector<Real>& knots, Real* c,
               int64_t hint = 0) {
  const auto& ic = shape.is(Kind::knotted) ? knots : inner;
  const bool none = shape.is(Kind::midpoint) || ic.empty();
  return task.spline(shape.order, shape.s_type, c, bc_type, bc, none ? 0 : 1,
                     none ? nullptr : ic.data(), hint);
}

}  // namespace qor::test
