// Data and weights of any size: what the precision can represent comes out, whatever powers and
// squares there are on the way. Sizes are powers of two, which change no digit.

#include <cmath>
#include <limits>
#include <memory>

#include "tests/statistics/estimates.h"

namespace qor::test {
namespace {

template <class Real>
class Scales : public ::testing::Test {};
TYPED_TEST_SUITE(Scales, Precisions);

constexpr double kUlps = 60;

// The sample with variable j times 2^data[j modulo their number], weights times 2^weight.
template <class Real>
Sample<Real> scaled(Sample<Real> s, const std::vector<int>& data, int weight = 0) {
  for (size_t i = 0; i < s.rows.size(); ++i) {
    const size_t variable = i % static_cast<size_t>(s.p);
    s.rows[i] = std::ldexp(s.rows[i], data[variable % data.size()]);
  }
  for (Real& w : s.weights) w = std::ldexp(w, weight);
  s.unit = std::ldexp(Real{1}, data[0]);
  return s;
}

// Exponents from the smallest to the largest numbers, where squares and fourth powers are still in
// the range and where they are not.
template <class Real>
const std::vector<int> kExponents = {-1060, -900, -350, -260, 256, 345, 515, 900, 1018};
template <>
const std::vector<int> kExponents<float> = {-144, -100, -60, -40, -27, 22, 31, 43, 64, 100, 122};

// Of the dimension of an estimate.
struct Dimension {
  int power, weight;
};
Dimension dimension_of(const Estimate& estimate) {
  const std::string name = estimate.name;
  const int power = name == "mean" || name == "sum"                                 ? 1
                    : name.ends_with("3")                                           ? 3
                    : name.ends_with("4")                                           ? 4
                    : name.ends_with("2") || name == "covariance" || name[1] == 'r' ? 2
                                                                                    : 0;
  return {power, name.find("sum") != std::string::npos || estimate.code == QOR_SS_CP ? 1 : 0};
}

// Every estimate of data of every size, alone and with weights; all variables of one size, and each
// of its own.
TYPED_TEST(Scales, OfData) {
  using Real = TypeParam;
  std::vector<std::vector<int>> sizes;
  for (const int exponent : kExponents<Real>) sizes.push_back({exponent});
  sizes.push_back({kExponents<Real>.back(), 0, -kExponents<Real>.back(), 0, 3});
  for (const auto& c : combinations(std::vector<int64_t>{1, 5}, kBools, kMethods, kLayouts)) {
    const auto& [p, weighted, method, layout] = c;
    const auto s = small_sample<Real>(p == 1 ? 600 : 70, p, weighted);
    for (const auto& data : sizes) {
      if (data.size() > 1 && method == kGiven) continue;
      SCOPED_TRACE(::testing::PrintToString(c) + " size " + ::testing::PrintToString(data));
      const auto sample = scaled(s, data);
      const Asked asked{.method = method, .layout = layout, .storage = QOR_SS_MATRIX_LOWER};
      expect_near(compute(sample, asked), exact_values(sample, method), asked, kUlps);
    }
  }
}

// Weights are free of scale: no bit of a moment changes with their unit, sums change by it alone.
TYPED_TEST(Scales, OfWeights) {
  using Real = TypeParam;
  for (const auto& c : combinations(std::vector<int64_t>{1, 5}, kMethods, kExponents<Real>)) {
    const auto& [p, method, exponent] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    const auto s = small_sample<Real>(300, p, true), sample = scaled(s, {0}, exponent);
    const Asked asked{.method = method};
    const auto plain = compute(s, asked);
    auto results = compute(sample, asked);
    for (size_t e = 0; e < estimate_count; ++e) {
      auto wanted = plain.arrays[e];
      const int unit = dimension_of(estimates[e]).weight * exponent;
      for (Real& v : wanted) v = std::ldexp(v, unit);
      EXPECT_EQ(results.arrays[e], wanted) << estimates[e].name;
    }
    // Sums give the moments back while the weights' squares are numbers like others.
    if (!std::isnormal(results.weights[1])) continue;
    const auto from_sums = go_on(sample, {.method = kSums, .mask = kAll & ~kSumBits}, results);
    expect_near(from_sums, exact_values(sample, method), {.mask = kAll & ~kSumBits}, 200);
  }
}

// Far from zero: what a single pass is for.
TYPED_TEST(Scales, FarFromZero) {
  using Real = TypeParam;
  struct Case {
    double first, step;
  };
  constexpr bool is_double = std::is_same_v<Real, double>;
  const Case cases[] = {{5e9, 1e6},
                        {1e13, 1e9},
                        {2e19, 3e15},
                        {1e-12, 1e-16},
                        {1e-20, 1e-24},
                        {is_double ? 1e80 : 1e33, is_double ? 1e76 : 1e29},
                        {is_double ? 1e104 : 1e36, is_double ? 1e100 : 1e32},
                        {is_double ? 1e155 : 1e38, is_double ? 1e151 : 1e34}};
  for (const auto& [first, step] : cases) {
    for (const bool weighted : kBools) {
      SCOPED_TRACE(::testing::Message() << first << " weighted " << weighted);
      Sample<Real> s = small_sample<Real>(3000, 1, weighted);
      for (int64_t i = 0; i < s.n; ++i) {
        s.rows[static_cast<size_t>(i)] =
            static_cast<Real>(first + step * static_cast<double>(i % 100 * (i % 7)));
      }
      const Asked asked{.mask = kVectors | QOR_SS_ESTIMATE_COVARIANCE};
      expect_near(compute(s, asked), exact_values(s, kOnePass), asked, kUlps);
    }
  }
}

// Sizes that change on the way, in either direction, early and late.
TYPED_TEST(Scales, ThatChange) {
  using Real = TypeParam;
  const int size = kExponents<Real>.back() - 5;
  for (const auto& c : combinations(kBools, kMethods, std::vector<int>{size, -size, size / 4},
                                    std::vector<int64_t>{20, 1500})) {
    const auto& [weighted, method, exponent, from] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    auto s = small_sample<Real>(2000, 2, weighted);
    for (size_t i = static_cast<size_t>(2 * from); i < s.rows.size(); ++i) {
      s.rows[i] = std::ldexp(s.rows[i], exponent);
    }
    const Asked asked{.method = method};
    expect_near(compute(s, asked), exact_values(s, method), asked, kUlps);
    auto weights = small_sample<Real>(2000, 2, true);
    for (size_t i = static_cast<size_t>(from); i < weights.weights.size(); ++i) {
      weights.weights[i] = std::ldexp(weights.weights[i], exponent);
    }
    expect_near(compute(weights, asked), exact_values(weights, method), asked, kUlps);
  }
}

// The state between blocks is in the caller's arrays: moments count there, also where their sums
// would not be finite.
TYPED_TEST(Scales, OverBlocks) {
  using Real = TypeParam;
  constexpr int largest = std::is_same_v<Real, double> ? 253 : 29;
  for (const auto& c : combinations(kBools, kMethods, std::vector<int>{-largest + 5, largest})) {
    const auto& [weighted, method, exponent] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    const auto s = scaled(small_sample<Real>(3000, 2, weighted), {exponent});
    const Asked asked{.method = method, .mask = kAll & ~kSumBits, .cuts = {3, 1400}};
    expect_near(compute(s, asked), exact_values(s, method), asked, 200);
  }
}

// An observation without weight adds nothing, however large; and a thread that has no others is an
// empty part.
TYPED_TEST(Scales, WithoutWeight) {
  using Real = TypeParam;
  const ThreadHook team = team_hook(2, run_members<run_in_order>);
  for (const auto& c : combinations(kMethods, kBools, kBools)) {
    const auto& [method, small, half] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    auto s = small_sample<Real>(20000, 2, true);
    if (small) s = scaled(s, {kExponents<Real>.front() + 30});
    for (int64_t i = 0; i < s.n; ++i) {
      if (half ? i >= s.n / 2 : i % 37 != 5) continue;
      s.weights[static_cast<size_t>(i)] = 0;
      for (size_t j = 0; j < 2; ++j) {
        s.rows[static_cast<size_t>(2 * i) + j] = std::numeric_limits<Real>::max();
      }
    }
    const Asked asked{.method = method, .hook = &team};
    expect_near(compute(s, asked), exact_values(s, method), asked, kUlps);
  }
}
TYPED_TEST(Scales, OfPartsThatAreMerged) {
  using Real = TypeParam;
  const ThreadHook team = team_hook(2, run_members<run_in_order>);
  for (const auto& [method, exponent] : combinations(kMethods, kExponents<Real>)) {
    SCOPED_TRACE(exponent);
    auto s = scaled(small_sample<Real>(20000, 2, true), {exponent});
    std::fill_n(s.weights.begin(), s.n / 2, Real{0});
    const Asked asked{.method = method, .hook = &team};
    expect_near(compute(s, asked), exact_values(s, method), asked, kUlps);
  }
}

// Memory that ends where a run is made again.
TYPED_TEST(Scales, MemoryEnds) {
  using Real = TypeParam;
  constexpr int64_t p = 600;  // the stack has room for the first pieces of work memory alone
  for (const int64_t from : {0, 500}) {
    auto s = small_sample<Real>(1100, p, true);
    for (size_t i = static_cast<size_t>(p * from); i < s.rows.size(); ++i) {
      s.rows[i] = std::ldexp(s.rows[i], kExponents<Real>.back());
    }
    const long failures = failures_survived(QOR_SS_NO_MEMORY, [&] {
      auto results = std::make_shared<Results<Real>>(p);
      auto task = std::make_shared<Task<Real>>(p, s.n, QOR_SS_BY_OBSERVATION, s.rows.data(),
                                               s.weights.data());
      results->attach(*task, QOR_SS_MATRIX_UPPER);
      return [=] {
        const int status = Api<Real>::basic(*task, kAll, kFast, nullptr);
        EXPECT_TRUE(status != QOR_SS_OK || std::isfinite(results->of(QOR_SS_KURTOSIS)[0]));
        return status;
      };
    });
    const long on_stack = sizeof(Real) == sizeof(float) ? 3 : 2;
    EXPECT_EQ(failures, (from == 0 ? 5 : 9) - on_stack);
  }
}

}  // namespace
}  // namespace qor::test
