// Splines as the command fits them: a kind and a boundary condition by name, and a spline through
// the points of one column.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qor/fitting.h"

namespace qor::cli {

struct SplineKind {
  std::string_view name;
  int64_t order;  // coefficients of a cell
  int64_t type;   // the library's number
  size_t fewest_points;
  std::string_view boundary;  // when none is asked for; empty: the kind has none
  int (*construct)(DFTask*, int64_t, int64_t, const ThreadHook*);
};

std::span<const SplineKind> spline_kinds();
const SplineKind& spline_kind(std::string_view name);  // one of these

// A condition at the two ends, with its values where it has any.
struct Boundary {
  std::string text;  // as given
  int64_t code = QOR_DF_BC_NONE;
  std::vector<double> values;
};

// "free", "first:0,1.5" and the like; empty text is the kind's own. What the kind does not take is
// an InputError.
Boundary parse_boundary(const SplineKind& kind, const std::string& text);

// What parse_boundary accepts for a kind: forms separated by commas.
std::string boundaries_of(const SplineKind& kind);

// Points of one name, x increasing. slopes: first derivatives at the points, for hermite alone.
struct Points {
  std::string name;
  std::vector<double> x, y, slopes;
};

// A spline through points. Points that do not suit kind or boundary are an InputError.
class Spline {
 public:
  Spline(const SplineKind& kind, Boundary boundary, Points points);

  const Points& points() const { return points_; }

  // The derivative of this order, 0 the value itself, at sites in any order. The polynomials at the
  // ends reach beyond the points; NaN gives NaN.
  std::vector<double> derivative(std::span<const double> sites, int64_t order) const;
  std::vector<double> values(std::span<const double> sites) const { return derivative(sites, 0); }
  double integral(double from, double to) const;

 private:
  void check() const;
  void set_conditions();

  struct Delete {
    void operator()(DFTask* task) const { qor_df_kernel_DeleteTask(&task); }
  };
  const SplineKind& kind_;
  Boundary boundary_;
  Points points_;
  std::vector<double> inner_;  // inner conditions: derivatives, or knots
  std::vector<double> coefficients_;
  std::unique_ptr<DFTask, Delete> task_;
};

}  // namespace qor::cli
