// One case of a spline: its data in a task of some form, and what the kinds' definitions say.
#pragma once

#include <string>
#include <vector>

#include "tests/fitting/api.h"
#include "tests/fitting/reference.h"

namespace qor::test {

enum class SplineKind {
  linear,
  midpoint_quadratic,
  knot_quadratic,
  natural,
  by_second,
  hermite,
  bessel,
  akima,
  hyman
};

struct SplineShape {
  SplineKind kind;
  const char* name;
  int order;
  int64_t s_type;
  int64_t fewest;  // breakpoints
  std::vector<int64_t> boundaries;
};
const std::vector<SplineShape>& spline_shapes();
int64_t fewest_breakpoints(const SplineShape& shape, int64_t bc_type);

// The data of one function and the conditions it is fitted under.
struct SplineData {
  std::vector<Wide> x, y;
  std::vector<Wide> knots;
  std::vector<Wide> inner;  // the given derivatives at inner breakpoints
  Wide bc[2];
};

// The coefficients that the kind's definition gives.
std::vector<Wide> defined_spline(const SplineShape& shape, int64_t bc_type, const SplineData& data);

template <class Real>
Kernel kernel_of(SplineKind kind) {
  using A = Api<Real>;
  switch (kind) {
    case SplineKind::linear:
      return A::linear;
    case SplineKind::midpoint_quadratic:
    case SplineKind::knot_quadratic:
      return A::quadratic;
    case SplineKind::natural:
      return A::natural;
    case SplineKind::by_second:
      return A::by_second;
    case SplineKind::hermite:
      return A::hermite;
    case SplineKind::bessel:
      return A::bessel;
    case SplineKind::akima:
      return A::akima;
    default:
      return A::hyman;
  }
}

}  // namespace qor::test
