// The part of qor tour about summary statistics.
#pragma once

#include <string>

namespace qor::cli {

// Describes the data sets in `folder`, and checks those with certified figures.
std::string tour_of_statistics(const std::string& folder);

}  // namespace qor::cli
