// What is measured of data fitting, as benchmarks named case/library.
#pragma once

#include <benchmark/benchmark.h>

namespace qor::bench {

// Cases named "growth, METHOD, SIZE ..." show how the cost of a site grows with the cells.
void register_cases();

}  // namespace qor::bench
