// The part of qor tour about random streams.
#pragma once

#include <string>

namespace qor::cli {

// Draws, saves a stream, loads it, and shows that the numbers go on.
std::string tour_of_streams();

}  // namespace qor::cli
