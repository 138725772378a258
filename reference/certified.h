// The certified univariate data sets in examples/data/strd.
#pragma once

#include <string>
#include <vector>

namespace qor::reference {

struct CertifiedSet {
  std::string name;
  std::vector<double> y;
  double mean, deviation;
};

// All of them, in the order of certified.csv in `folder`; empty when that cannot be read.
std::vector<CertifiedSet> certified_sets(const std::string& folder);

// Decimal digits that agree, from 0 to 15.
double matching_digits(double value, double certified);

}  // namespace qor::reference
