#include "reference/certified.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

namespace qor::reference {
namespace {

std::vector<double> read_column(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);  // the title
  std::vector<double> y;
  while (std::getline(file, line)) y.push_back(std::stod(line));
  return y;
}

}  // namespace

std::vector<CertifiedSet> certified_sets(const std::string& folder) {
  std::ifstream file(folder + "/certified.csv");
  std::string line, n, mean, deviation;
  std::getline(file, line);  // titles
  std::vector<CertifiedSet> sets;
  while (std::getline(file, line)) {
    CertifiedSet set;
    std::istringstream cells(line);
    std::getline(cells, set.name, ',');
    std::getline(cells, n, ',');
    std::getline(cells, mean, ',');
    std::getline(cells, deviation);
    set.mean = std::stod(mean);
    set.deviation = std::stod(deviation);
    set.y = read_column(folder + "/" + set.name + ".csv");
    if (set.y.size() != std::stoul(n)) return {};
    sets.push_back(set);
  }
  return sets;
}

double matching_digits(double value, double certified) {
  const double error = std::fabs(value - certified) / std::fabs(certified);
  if (!(error < 1)) return 0;
  return error == 0 ? 15 : std::min(15.0, -std::log10(error));
}

}  // namespace qor::reference
