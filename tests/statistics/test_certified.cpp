// The certified data sets: means and standard deviations to as many digits as their conditioning
// lets a double have.

#include <cmath>
#include <fstream>
#include <sstream>

#include "tests/statistics/estimates.h"

namespace qor::test {
namespace {

struct CertifiedSet {
  std::string name;
  std::vector<double> y;
  double mean, deviation;
};

std::vector<double> column(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  std::vector<double> y;
  while (std::getline(file, line)) y.push_back(std::stod(line));
  return y;
}

std::vector<CertifiedSet> certified_sets() {
  const std::string folder = QOR_EXAMPLE_DATA "/strd/";
  std::ifstream file(folder + "certified.csv");
  std::string line, n, mean, deviation;
  std::getline(file, line);
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
    set.y = column(folder + set.name + ".csv");
    EXPECT_EQ(set.y.size(), std::stoul(n)) << set.name;
    sets.push_back(set);
  }
  return sets;
}

// Digits that agree, at most 15.
double digits(double value, double certified) {
  const double error = std::fabs(value - certified) / std::fabs(certified);
  return error == 0 ? 15 : std::min(15.0, -std::log10(error));
}

struct Bound {
  const char* name;
  double deviation_digits;  // one pass
};

// The conditioning, mean over deviation, eats the rest: the data of the last two are not the
// certified decimals but the doubles next to them.
constexpr Bound kBounds[] = {{"lew", 14.5},     {"michelso", 13.2}, {"numacc1", 15},
                             {"numacc2", 14.5}, {"numacc3", 9.44},  {"numacc4", 8.2}};

TEST(Certified, OnePass) {
  const auto sets = certified_sets();
  ASSERT_EQ(sets.size(), std::size(kBounds));
  for (size_t i = 0; i < sets.size(); ++i) {
    const CertifiedSet& set = sets[i];
    ASSERT_EQ(set.name, kBounds[i].name);
    double mean[1], r2[1], c2[1];
    Task<double> task(1, static_cast<int64_t>(set.y.size()), QOR_SS_BY_VARIABLE, set.y.data());
    task.set(QOR_SS_MEAN, mean);
    task.set(QOR_SS_RAW_2, r2);
    task.set(QOR_SS_CENTRAL_2, c2);
    ASSERT_EQ(_ostdSSBasic(task, QOR_SS_ESTIMATE_CENTRAL_2, QOR_SS_METHOD_ONE_PASS, nullptr), 0);
    EXPECT_GE(digits(mean[0], set.mean), 14.5) << set.name;
    EXPECT_GE(digits(std::sqrt(c2[0]), set.deviation), kBounds[i].deviation_digits) << set.name;
  }
}

}  // namespace
}  // namespace qor::test
