#include "front/cli/spline.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <new>
#include <numeric>
#include <stdexcept>

#include "front/cli/input_error.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

// Types of cubics; a periodic end takes a derivative with the second.
constexpr int64_t kCubic = 5, kCubicOfDerivatives = 3, kOnKnots = 1;

constexpr SplineKind kKinds[] = {
    {"linear", 2, 0, 2, "", qor_df_kernel_dDFLinearSpline1D},
    {"quadratic", 3, kOnKnots, 2, "not-a-knot", qor_df_kernel_dDFQuadraticSpline1D},
    {"natural", 4, kCubic, 2, "free", qor_df_kernel_dDFNaturalCubicSpline1D},
    {"hermite", 4, kCubicOfDerivatives, 3, "slopes", qor_df_kernel_dDFHermiteCubicSpline1D},
    {"bessel", 4, kCubic, 4, "not-a-knot", qor_df_kernel_dDFBesselCubicSpline1D},
    {"akima", 4, kCubic, 5, "none", qor_df_kernel_dDFAkimaCubicSpline1D},
    {"hyman", 4, kCubic, 4, "not-a-knot", qor_df_kernel_dDFHymanCubicSpline1D},
};

struct BoundaryForm {
  std::string_view name;
  int64_t code;
  size_t values;
  std::string_view only_kind;  // empty: all kinds that have a boundary
};

constexpr BoundaryForm kBoundaries[] = {
    {"not-a-knot", QOR_DF_BC_NOT_A_KNOT, 0, ""},
    {"free", QOR_DF_BC_FREE, 0, ""},
    {"periodic", QOR_DF_BC_PERIODIC, 0, ""},
    {"first", QOR_DF_BC_FIRST_FIRST, 2, ""},
    {"second", QOR_DF_BC_SECOND_SECOND, 2, ""},
    {"first-second", QOR_DF_BC_FIRST_SECOND, 2, ""},
    {"second-first", QOR_DF_BC_SECOND_FIRST, 2, ""},
    {"none", QOR_DF_BC_NONE, 0, "akima"},
    {"slopes", QOR_DF_BC_FIRST_FIRST, 0, "hermite"},
    {"midpoint", QOR_DF_BC_FIRST_MIDPOINT, 1, "quadratic"},
};

bool takes(const SplineKind& kind, const BoundaryForm& form) {
  return !kind.boundary.empty() && (form.only_kind.empty() || form.only_kind == kind.name);
}

[[noreturn]] void refuse_boundary(const SplineKind& kind, const std::string& text) {
  throw InputError("--boundary: " + quoted(text) + "; " + std::string(kind.name) +
                   " takes: " + boundaries_of(kind));
}

void succeed(int status, const char* what) {
  if (status == QOR_DF_NO_MEMORY) throw std::bad_alloc();
  if (status != QOR_DF_OK) throw std::runtime_error(format("%s: status %d", what, status));
}

}  // namespace

std::span<const SplineKind> spline_kinds() { return kKinds; }

const SplineKind& spline_kind(std::string_view name) {
  return *std::ranges::find(kKinds, name, &SplineKind::name);
}

std::string boundaries_of(const SplineKind& kind) {
  std::vector<std::string> names;
  for (const BoundaryForm& form : kBoundaries) {
    if (!takes(kind, form)) continue;
    constexpr std::string_view kValues[] = {"", ":VALUE", ":LEFT,RIGHT"};
    names.push_back(std::string(form.name) + std::string(kValues[form.values]));
  }
  return names.empty() ? "none at all" : joined(names);
}

Boundary parse_boundary(const SplineKind& kind, const std::string& text) {
  const std::string given = text.empty() ? std::string(kind.boundary) : text;
  if (given.empty()) return {};
  const size_t colon = given.find(':');
  const std::string name = given.substr(0, colon);
  const auto form = std::ranges::find(kBoundaries, name, &BoundaryForm::name);
  if (form == std::end(kBoundaries) || !takes(kind, *form)) refuse_boundary(kind, given);
  Boundary boundary{given, form->code, {}};
  if (colon != std::string::npos) {
    for (const std::string& word : split(given.substr(colon + 1), ',')) {
      const auto value = parse_number(word);
      if (!value || !std::isfinite(*value)) refuse_boundary(kind, given);
      boundary.values.push_back(*value);
    }
  }
  if (boundary.values.size() != form->values) refuse_boundary(kind, given);
  return boundary;
}

Spline::Spline(const SplineKind& kind, Boundary boundary, Points points)
    : kind_(kind), boundary_(std::move(boundary)), points_(std::move(points)) {
  check();
  set_conditions();
  const auto n = static_cast<int64_t>(points_.x.size());
  DFTask* task = nullptr;
  succeed(qor_df_kernel_dNewTask1D(&task, n, points_.x.data(), QOR_DF_NON_UNIFORM, 1,
                                   points_.y.data(), QOR_DF_NO_HINT, 1),
          "task");
  task_.reset(task);
  coefficients_.resize(static_cast<size_t>(kind_.order) * points_.x.size());
  const bool midpoint = boundary_.code == QOR_DF_BC_FIRST_MIDPOINT;
  succeed(qor_df_kernel_dEditPPSpline1D(
              task, kind_.order, midpoint ? 0 : kind_.type, boundary_.code,
              boundary_.values.empty() ? nullptr : boundary_.values.data(), inner_.empty() ? 0 : 1,
              inner_.empty() ? nullptr : inner_.data(), coefficients_.data(), QOR_DF_NO_HINT),
          "spline");
  succeed(kind_.construct(task, 0, 0, nullptr), "construction");
}

void Spline::check() const {
  const auto& [name, x, y, slopes] = points_;
  const bool not_a_knot = boundary_.code == QOR_DF_BC_NOT_A_KNOT;
  const size_t fewest = std::max<size_t>(kind_.fewest_points, not_a_knot ? 3 : 2);
  if (x.size() < fewest) {
    throw InputError(format("%s: %zu points; %s with boundary %s takes at least %zu", name.c_str(),
                            x.size(), std::string(kind_.name).c_str(),
                            boundary_.text.empty() ? "none" : boundary_.text.c_str(), fewest));
  }
  if (boundary_.code == QOR_DF_BC_PERIODIC && y.front() != y.back()) {
    throw InputError("--boundary: periodic; " + name + " begins with " + shortest(y.front()) +
                     " and ends with " + shortest(y.back()) + ", equal values are accepted");
  }
}

// What the kind wants to know between the ends, and what the ends take from it.
void Spline::set_conditions() {
  const std::vector<double>& x = points_.x;
  const std::vector<double>& slopes = points_.slopes;
  if (kind_.type == kCubicOfDerivatives) {
    inner_.assign(slopes.begin() + 1, slopes.end() - 1);
    if (boundary_.text == "slopes") boundary_.values = {slopes.front(), slopes.back()};
    if (boundary_.code == QOR_DF_BC_PERIODIC) boundary_.values = {slopes.front()};
  } else if (kind_.type == kOnKnots && boundary_.code != QOR_DF_BC_FIRST_MIDPOINT) {
    // Knots half way between the points, and at the ends.
    inner_.push_back(x.front());
    for (size_t i = 1; i < x.size(); ++i) inner_.push_back(std::midpoint(x[i - 1], x[i]));
    inner_.push_back(x.back());
  }
}

std::vector<double> Spline::derivative(std::span<const double> sites, int64_t order) const {
  std::vector<double> result(sites.size());
  std::vector<int64_t> flags(static_cast<size_t>(order) + 1);
  flags.back() = 1;
  const auto descent = std::ranges::adjacent_find(sites, std::not_fn(std::less_equal()));
  const int64_t hint = descent == sites.end() ? QOR_DF_SORTED : 0;
  succeed(qor_df_kernel_dDFInterpolate1D(task_.get(), 0, 0, std::ssize(sites), sites.data(), hint,
                                         std::ssize(flags), flags.data(), nullptr, result.data(),
                                         QOR_DF_NO_HINT, nullptr, nullptr, nullptr, nullptr,
                                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
          "interpolation");
  return result;
}

double Spline::integral(double from, double to) const {
  double result;
  succeed(qor_df_kernel_dDFIntegrate1D(task_.get(), 0, 1, &from, 0, &to, 0, nullptr, nullptr,
                                       &result, QOR_DF_NO_HINT, nullptr, nullptr, nullptr, nullptr,
                                       nullptr, nullptr, nullptr, nullptr, nullptr),
          "integration");
  return result;
}

}  // namespace qor::cli
