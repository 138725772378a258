// The tour's part on data fitting.
#pragma once

#include <filesystem>
#include <string>

#include "front/cli/command.h"

namespace qor::cli {

// The plots' files.
inline constexpr const char* kCarbonDioxidePlot = "qor_tour_co2.svg";
inline constexpr const char* kMercuryPlot = "qor_tour_mercury.svg";

// Splines through the records in `folder`; their plots go to files in the folder `plots`.
std::string tour_fitting(const std::string& folder, const std::filesystem::path& plots,
                         Output& output);

}  // namespace qor::cli
