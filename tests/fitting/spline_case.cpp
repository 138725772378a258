#include "tests/fitting/spline_case.h"

#include <algorithm>
#include <cmath>

namespace qor::test {
namespace {

const std::vector<int64_t> kAllBoundaries = {1, 2, 12, 24, 36, 48, 64};

struct EndCondition {
  int derivative;  // given at the end; -1 for none
  Wide value;
};

EndCondition end_condition(int64_t bc_type, bool left, Wide value) {
  const int64_t bits = left ? bc_type & (4 | 16) : bc_type & (8 | 32);
  if (bc_type == 2) return {2, 0};
  if (bits == 4 || bits == 8) return {1, value};
  return {bits != 0 ? 2 : -1, value};
}

Wide slope(const SplineData& s, size_t i) { return (s.y[i + 1] - s.y[i]) / (s.x[i + 1] - s.x[i]); }

// The derivative at point i of the parabola through points l, i, r at distances h and k.
Wide parabola(Wide before, Wide behind, Wide h, Wide k) {
  return (k * before + h * behind) / (h + k);
}

Wide inner_derivative(SplineKind kind, const SplineData& s, size_t i) {
  if (kind == SplineKind::hermite) return s.inner[i - 1];
  const Wide before = slope(s, i - 1), behind = slope(s, i);
  const Wide bessel = parabola(before, behind, s.x[i] - s.x[i - 1], s.x[i + 1] - s.x[i]);
  if (kind == SplineKind::bessel) return bessel;
  if (kind == SplineKind::hyman) {
    if (before * behind <= 0) return 0;
    const Wide bound = 3 * std::min(std::fabs(before), std::fabs(behind));
    return std::copysign(std::min(std::fabs(bessel), bound), bessel);
  }
  const size_t n = s.x.size();
  const Wide here = std::fabs(behind - before);
  const Wide w_right = i + 2 < n ? std::fabs(slope(s, i + 1) - behind) : here;
  const Wide w_left = i >= 2 ? std::fabs(before - slope(s, i - 2)) : here;
  if (w_left + w_right < 1e-10L) return (before + behind) / 2;
  return (w_right * before + w_left * behind) / (w_left + w_right);
}

// The condition at one end of a cubic.
void cubic_end(SplineSystem& system, int64_t bc_type, bool left, const SplineData& s) {
  const int cell = left ? 0 : system.cells() - 1;
  const Wide at = left ? s.x.front() : s.x.back();
  if (bc_type == 1) return system.continuous(left ? 1 : system.cells() - 1, 3);
  const EndCondition end = end_condition(bc_type, left, s.bc[left ? 0 : 1]);
  if (end.derivative >= 0) system.matches(cell, end.derivative, at, end.value);
}

void periodic_ends(SplineSystem& system, int derivative) {
  const int last = system.cells() - 1;
  system.condition(0)
      .term(1, 0, derivative, system.edge(0))
      .term(-1, last, derivative, system.edge(last + 1));
}

std::vector<Wide> defined_natural(int64_t bc_type, const SplineData& s, SplineSystem& system) {
  const int n = static_cast<int>(s.x.size());
  for (int i = 1; i + 1 < n; ++i) {
    system.continuous(i, 1);
    system.continuous(i, 2);
  }
  if (bc_type == 64 && n == 2) {
    system.matches(0, 1, s.x[0], 0);
    system.matches(0, 2, s.x[0], 0);
  } else if (bc_type == 64) {
    periodic_ends(system, 1);
    periodic_ends(system, 2);
  } else if (bc_type == 1 && n == 3) {
    system.continuous(1, 3);
    system.matches(0, 3, s.x[0], 0);
  } else {
    cubic_end(system, bc_type, true, s);
    cubic_end(system, bc_type, false, s);
  }
  return system.solve();
}

// The derivative at an end of the cubic through the three points nearest to it that has the
// derivative t at the middle one.
Wide derivative_of_one_cubic(const SplineData& s, bool left, Wide t) {
  const size_t first = left ? 0 : s.x.size() - 3;
  SplineSystem one({s.x[first], s.x[first + 2]}, 4);
  for (size_t i = first; i < first + 3; ++i) one.matches(0, 0, s.x[i], s.y[i]);
  one.matches(0, 1, s.x[first + 1], t);
  return polynomial_at(one.solve(), 1, left ? 0 : s.x[first + 2] - s.x[first]);
}

// First derivatives at inner breakpoints, each cell by itself.
std::vector<Wide> defined_local(SplineKind kind, int64_t bc_type, const SplineData& s,
                                SplineSystem& system) {
  const size_t n = s.x.size();
  for (size_t i = 1; i + 1 < n; ++i) {
    const Wide t = inner_derivative(kind, s, i);
    system.matches(static_cast<int>(i) - 1, 1, s.x[i], t);
    system.matches(static_cast<int>(i), 1, s.x[i], t);
  }
  const int last = static_cast<int>(n) - 2;
  if (bc_type == 64) {
    const Wide wrapped =
        parabola(slope(s, n - 2), slope(s, 0), s.x[n - 1] - s.x[n - 2], s.x[1] - s.x[0]);
    const Wide t = kind == SplineKind::hermite ? s.bc[0] : wrapped;
    system.matches(0, 1, s.x[0], t);
    system.matches(last, 1, s.x[n - 1], t);
  } else if (bc_type == 0) {
    system.matches(0, 1, s.x[0], (3 * slope(s, 0) - slope(s, 1)) / 2);
    system.matches(last, 1, s.x[n - 1], (3 * slope(s, n - 2) - slope(s, n - 3)) / 2);
  } else if (bc_type == 1) {
    const Wide first_inner = inner_derivative(kind, s, 1);
    const Wide last_inner = inner_derivative(kind, s, n - 2);
    system.matches(0, 1, s.x[0], derivative_of_one_cubic(s, true, first_inner));
    system.matches(last, 1, s.x[n - 1], derivative_of_one_cubic(s, false, last_inner));
  } else {
    cubic_end(system, bc_type, true, s);
    cubic_end(system, bc_type, false, s);
  }
  return system.solve();
}

std::vector<Wide> defined_by_second(int64_t bc_type, const SplineData& s, SplineSystem& system) {
  const int n = static_cast<int>(s.x.size());
  for (int i = 1; i + 1 < n; ++i) {
    const auto at = static_cast<size_t>(i);
    system.matches(i - 1, 2, s.x[at], s.inner[at - 1]);
    system.matches(i, 2, s.x[at], s.inner[at - 1]);
  }
  if (bc_type == 64) {
    system.matches(0, 2, s.x.front(), s.bc[0]);
    system.matches(n - 2, 2, s.x.back(), s.bc[0]);
  } else if (bc_type == 1 && n == 3) {
    system.matches(0, 3, s.x[0], 0);
    system.matches(1, 3, s.x[1], 0);
  } else {
    cubic_end(system, bc_type, true, s);
    cubic_end(system, bc_type, false, s);
  }
  return system.solve();
}

std::vector<Wide> defined_on_knots(int64_t bc_type, const SplineData& s) {
  SplineSystem system(s.knots, 3);
  const int n = system.cells();
  for (int j = 0; j < n; ++j) {
    system.matches(j, 0, s.x[static_cast<size_t>(j)], s.y[static_cast<size_t>(j)]);
    if (j == 0) continue;
    system.continuous(j, 0);
    system.continuous(j, 1);
  }
  if (bc_type == 64) {
    periodic_ends(system, 1);
    periodic_ends(system, 2);
  } else if (bc_type == 1) {
    system.continuous(1, 2);
    system.continuous(n - 1, 2);
  } else {
    const EndCondition left = end_condition(bc_type, true, s.bc[0]);
    const EndCondition right = end_condition(bc_type, false, s.bc[1]);
    system.matches(0, left.derivative, s.x.front(), left.value);
    system.matches(n - 1, right.derivative, s.x.back(), right.value);
  }
  return system.solve();
}

}  // namespace

const std::vector<SplineShape>& spline_shapes() {
  static const std::vector<SplineShape> shapes = [] {
    auto with_none = kAllBoundaries;
    with_none.push_back(0);
    return std::vector<SplineShape>{
        {SplineKind::linear, "linear", 2, 0, 2, {0}},
        {SplineKind::midpoint_quadratic, "midpoint quadratic", 3, 0, 2, {128}},
        {SplineKind::knot_quadratic, "quadratic on knots", 3, 1, 2, kAllBoundaries},
        {SplineKind::natural, "natural", 4, 5, 2, kAllBoundaries},
        {SplineKind::by_second, "default", 4, 0, 3, kAllBoundaries},
        {SplineKind::hermite, "Hermite", 4, 3, 3, kAllBoundaries},
        {SplineKind::bessel, "Bessel", 4, 2, 4, kAllBoundaries},
        {SplineKind::akima, "Akima", 4, 4, 5, with_none},
        {SplineKind::hyman, "Hyman", 4, 9, 4, kAllBoundaries},
    };
  }();
  return shapes;
}

int64_t fewest_breakpoints(const SplineShape& shape, int64_t bc_type) {
  return bc_type == 1 ? std::max<int64_t>(shape.fewest, 3) : shape.fewest;
}

std::vector<Wide> defined_spline(const SplineShape& shape, int64_t bc_type, const SplineData& s) {
  if (shape.kind == SplineKind::knot_quadratic) return defined_on_knots(bc_type, s);
  SplineSystem system(s.x, shape.order);
  for (int i = 0; i < system.cells(); ++i) {
    const auto at = static_cast<size_t>(i);
    system.matches(i, 0, s.x[at], s.y[at]);
    system.matches(i, 0, s.x[at + 1], s.y[at + 1]);
    if (shape.kind == SplineKind::midpoint_quadratic && i > 0) system.continuous(i, 1);
  }
  switch (shape.kind) {
    case SplineKind::linear:
      return system.solve();
    case SplineKind::midpoint_quadratic:
      system.matches(0, 0, (s.x[0] + s.x[1]) / 2, s.bc[0]);
      return system.solve();
    case SplineKind::natural:
      return defined_natural(bc_type, s, system);
    case SplineKind::by_second:
      return defined_by_second(bc_type, s, system);
    default:
      return defined_local(shape.kind, bc_type, s, system);
  }
}

}  // namespace qor::test
