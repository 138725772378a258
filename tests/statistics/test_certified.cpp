// The certified data sets: means and standard deviations to as many digits as their conditioning
// lets a double have.

#include <cmath>

#include "tests/statistics/api.h"
#include "tests/support/certified.h"

namespace qor::test {
namespace {

struct Bound {
  const char* name;
  double deviation_digits;  // one pass
};

// The conditioning, mean over deviation, eats the rest: the data of the last two are not the
// certified decimals but the doubles next to them.
constexpr Bound kBounds[] = {{"lew", 14.5},     {"michelso", 13.2}, {"numacc1", 15},
                             {"numacc2", 14.5}, {"numacc3", 9.44},  {"numacc4", 8.2}};

TEST(Certified, OnePass) {
  const auto sets = certified_sets(QOR_EXAMPLE_DATA "/strd");
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
    EXPECT_GE(matching_digits(mean[0], set.mean), 14.5) << set.name;
    EXPECT_GE(matching_digits(std::sqrt(c2[0]), set.deviation), kBounds[i].deviation_digits)
        << set.name;
  }
}

}  // namespace
}  // namespace qor::test
