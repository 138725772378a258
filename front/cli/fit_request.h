// What a call of qor fit asks for, checked.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "front/cli/command.h"
#include "front/cli/csv.h"
#include "front/cli/spline.h"

namespace qor::cli {

struct FitRequest {
  const SplineKind& kind;
  Boundary boundary;
  std::string x;                // a column's name
  std::vector<Points> columns;  // one a --y column, rows without a value left out
  std::vector<double> sites;    // NaN where the file of sites has none
  bool has_range;               // sites from --at: the plot then covers them
  std::vector<int64_t> orders;  // of derivatives, ascending; empty: integrals alone
  std::optional<std::pair<double, double>> limits;  // of integrals
};

// Reads and checks everything; `notes` gets a line for each column with rows that are left out.
FitRequest read_fit_request(const Arguments& arguments, std::string& notes);

}  // namespace qor::cli
