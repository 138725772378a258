// Where the example data is.
#pragma once

#include <string>

namespace qor::cli {

// The folder of the example data: below the prefix that the command runs from, the one it was
// installed to, or the sources it was built from, whichever exists first; else an InputError.
std::string data_folder();

}  // namespace qor::cli
