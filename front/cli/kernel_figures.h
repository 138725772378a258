// Speed and accuracy of kernels, measured on the spot.
#pragma once

#include <string>
#include <vector>

namespace qor::cli {

struct KernelFigures {
  std::string function;
  double low, high;    // the arguments' interval
  double ns, libm_ns;  // per element, vectors of 1,024 in cache; libm's scalar function in a loop
  double ulp;          // worst of the sample, against long double arithmetic
};

// The figures of the exponentials and logarithms that the library has, in well under a second.
std::vector<KernelFigures> measure_kernels();

// The file of the library that the loader picked, whose folder tells the instruction level.
std::string library_file();

}  // namespace qor::cli
