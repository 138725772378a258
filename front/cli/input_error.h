// What a person gave to the command and can put right: ends it with its message and status 2.
#pragma once

#include <stdexcept>

namespace qor::cli {

struct InputError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace qor::cli
