// Work memory of the fitting entries.
#pragma once

#include "services/scratch.h"

namespace qor::fitting {

using services::allocate_values;
using services::counted_product;
using services::counted_sum;
using services::HeapScratch;
using services::Scratch;
using services::too_many;

}  // namespace qor::fitting
