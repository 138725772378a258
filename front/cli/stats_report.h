// What qor stats writes: a table to read, CSV or JSON.
#pragma once

#include <string>
#include <vector>

#include "front/cli/summary.h"

namespace qor::cli {

struct StatsReport {
  std::string file, weights;  // weights: a column's name, empty when there are none
  std::vector<std::string> columns;
  Summary::Wanted wanted;
  SummaryFigures figures;
};

std::string table_of(const StatsReport& report);
std::string csv_of(const StatsReport& report);
std::string json_of(const StatsReport& report);

}  // namespace qor::cli
