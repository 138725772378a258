#include "tests/fitting/spline_case.h"

#include <algorithm>
#include <cmath>

namespace qor::test {
namespace {

using enum Kind;

Wide slope(const SplineData& s, size_t i) { return (s.y[i + 1] - s.y[i]) / (s.x[i + 1] - s.x[i]); }

// The derivative at a point of the parabola through it and those at distances h before it and k
// behind, from the slopes there.
Wide parabola(Wide before, Wide behind, Wide h, Wide k) {
  return (k * before + h * behind) / (h + k);
}

// The condition of a local kind, and of those that are given one.
Wide inner_derivative(const SplineShape& shape, const SplineData& s, size_t i) {
  if (shape.takes_inner()) return s.inner[i - 1];
  const Wide before = slope(s, i - 1), behind = slope(s, i);
  const Wide bessel_value = parabola(before, behind, s.x[i] - s.x[i - 1], s.x[i + 1] - s.x[i]);
  if (shape.is(bessel)) return bessel_value;
  if (shape.is(hyman)) {
    if (before * behind <= 0) return 0;
    const Wide bound = 3 * std::min(std::fabs(before), std::fabs(behind));
    return std::copysign(std::min(std::fabs(bessel_value), bound), bessel_value);
  }
  const Wide here = std::fabs(behind - before);
  const Wide w_right = i + 2 < s.x.size() ? std::fabs(slope(s, i + 1) - behind) : here;
  const Wide w_left = i >= 2 ? std::fabs(before - slope(s, i - 2)) : here;
  if (w_left + w_right < 1e-10L) return (before + behind) / 2;
  return (w_right * before + w_left * behind) / (w_left + w_right);
}

// The derivative at an end of the cubic through the three points nearest to it that has the
// derivative t at the middle one, by divided differences.
Wide derivative_of_one_cubic(const SplineData& s, bool left, Wide t) {
  const size_t n = s.x.size(), cell = left ? 0 : n - 2, next = left ? 1 : n - 3;
  const size_t end = left ? 0 : n - 1, middle = left ? 1 : n - 2, far = left ? 2 : n - 3;
  const Wide h = s.x[end] - s.x[middle];
  const Wide second = (slope(s, cell) - t) / h;
  const Wide far_second = (slope(s, next) - t) / (s.x[far] - s.x[middle]);
  const Wide third = (second - far_second) / (s.x[end] - s.x[far]);
  return t + 2 * h * second + h * h * third;
}

// What a boundary code asks for at one end. Without a knot at either of two cells, none has the
// highest power.
void add_end(SplineConditions& conditions, int64_t bc_type, bool left, const SplineData& s) {
  const int last = conditions.cells() - 1, cell = left ? 0 : last, highest = conditions.order() - 1;
  const Wide at = left ? s.x.front() : s.x.back();
  const bool first_derivative = (bc_type & (left ? 4 : 8)) != 0;
  if (bc_type == 1 && last == 1) {
    conditions.matches(cell, highest, at, 0);
  } else if (bc_type == 1) {
    conditions.continuous(left ? 1 : last, highest);
  } else {
    conditions.matches(cell, first_derivative ? 1 : 2, at, bc_type == 2 ? 0 : s.bc[left ? 0 : 1]);
  }
}

void add_ends(SplineConditions& conditions, const SplineShape& shape, int64_t bc_type,
              const SplineData& s) {
  const size_t n = s.x.size();
  const int last = conditions.cells() - 1;
  const auto both = [&](int derivative, Wide left, Wide right) {
    conditions.matches(0, derivative, s.x.front(), left);
    conditions.matches(last, derivative, s.x.back(), right);
  };
  if (bc_type == 64 && (shape.is(natural) || shape.is(knotted))) {
    for (const int d : {1, 2}) {
      conditions.condition(0).term(1, 0, d, s.x.front()).term(-1, last, d, s.x.back());
    }
  } else if (bc_type == 64 && shape.takes_inner()) {
    both(shape.is(by_second) ? 2 : 1, s.bc[0], s.bc[0]);
  } else if (bc_type == 64) {
    const Wide t = parabola(slope(s, n - 2), slope(s, 0), s.x[n - 1] - s.x[n - 2], s.x[1] - s.x[0]);
    both(1, t, t);
  } else if (bc_type == 0) {
    both(1, (3 * slope(s, 0) - slope(s, 1)) / 2, (3 * slope(s, n - 2) - slope(s, n - 3)) / 2);
  } else if (bc_type == 1 && shape.kind > by_second) {
    both(1, derivative_of_one_cubic(s, true, inner_derivative(shape, s, 1)),
         derivative_of_one_cubic(s, false, inner_derivative(shape, s, n - 2)));
  } else {
    add_end(conditions, bc_type, true, s);
    add_end(conditions, bc_type, false, s);
  }
}

}  // namespace

const std::vector<SplineShape>& spline_shapes() {
  static const std::vector<int64_t> all = {1, 2, 12, 24, 36, 48, 64};
  static const std::vector<SplineShape> shapes = {
      {linear, "linear", 2, 0, 2, 1, {0}},
      {midpoint, "midpoint quadratic", 3, 0, 2, 0, {128}},
      {knotted, "quadratic on knots", 3, 1, 2, 0, all},
      {natural, "natural", 4, 5, 2, 0, all},
      {by_second, "default", 4, 0, 3, 1, all},
      {hermite, "Hermite", 4, 3, 3, 1, all},
      {bessel, "Bessel", 4, 2, 4, 2, all},
      {akima, "Akima", 4, 4, 5, 3, {1, 2, 12, 24, 36, 48, 64, 0}},
      {hyman, "Hyman", 4, 9, 4, 2, all},
  };
  return shapes;
}

Wide failure(const SplineShape& shape, int64_t bc_type, const SplineData& s,
             const std::vector<Wide>& c) {
  const bool on_knots = shape.is(knotted);
  SplineConditions conditions(on_knots ? s.knots : s.x, shape.order, c);
  for (int i = 0; i < conditions.cells(); ++i) {
    const auto at = static_cast<size_t>(i);
    conditions.matches(i, 0, s.x[at], s.y[at]);
    if (!on_knots) conditions.matches(i, 0, s.x[at + 1], s.y[at + 1]);
    if (i == 0) continue;
    if (shape.kind >= by_second) {
      const Wide t = inner_derivative(shape, s, at);
      const int derivative = shape.is(by_second) ? 2 : 1;
      conditions.matches(i - 1, derivative, s.x[at], t);
      conditions.matches(i, derivative, s.x[at], t);
    } else if (!shape.is(linear)) {
      // The first derivative goes on; with knots the value does too, of a natural one the second.
      conditions.continuous(i, 1);
      if (!shape.is(midpoint)) conditions.continuous(i, on_knots ? 0 : 2);
    }
  }
  if (shape.is(midpoint)) {
    conditions.matches(0, 0, (s.x[0] + s.x[1]) / 2, s.bc[0]);
  } else if (!shape.is(linear)) {
    add_ends(conditions, shape, bc_type, s);
  }
  return conditions.largest_failure();
}

}  // namespace qor::test
