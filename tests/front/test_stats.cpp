// qor stats: files of many blocks, and figures against references.

#include <algorithm>
#include <cmath>

#include "front/cli/csv_reader.h"
#include "front/cli/summary.h"
#include "front/cli/text.h"
#include "tests/front/command_fixture.h"

namespace {

using namespace qor::cli;

class Stats : public qor::test::Command {
 protected:
  // A figure of a column in CSV output.
  static double figure(const std::string& out, size_t row, const std::string& name) {
    const Csv csv = table_of(out.substr(0, out.find("\n\n")));
    return numbers(csv, column_index(csv, name)).at(row);
  }
};

struct Figure {
  const char* name;  // in CSV
  std::vector<double> SummaryFigures::*values;
};
constexpr Figure kFigures[] = {
    {"mean", &SummaryFigures::mean},           {"standard_deviation", &SummaryFigures::deviation},
    {"minimum", &SummaryFigures::minimum},     {"maximum", &SummaryFigures::maximum},
    {"skewness", &SummaryFigures::skewness},   {"kurtosis", &SummaryFigures::kurtosis},
    {"variation", &SummaryFigures::variation},
};

// Skewed values far from zero in columns a and b, and weights of which the first ones are 0.
struct Sample {
  std::string text = "a,b,w\n";
  std::vector<double> values[2], weights;

  explicit Sample(int rows) {
    uint64_t state = 1;
    const auto uniform = [&] {
      state = state * 6364136223846793005u + 1442695040888963407u;
      return static_cast<double>(state >> 11) * 0x1p-53;
    };
    for (int i = 0; i < rows; ++i) {
      const double u = uniform(), a = 1000 + 10 * u * u, b = -3 * u + uniform();
      const double weight = i < 5 ? 0 : 0.5 + uniform();
      values[0].push_back(a);
      values[1].push_back(b);
      weights.push_back(weight);
      text += shortest(a) + "," + shortest(b) + "," + shortest(weight) + "\n";
    }
  }

  // By definition, in two passes of extended precision.
  SummaryFigures figures(bool weighted) const {
    const auto weight = [&](size_t i) { return weighted ? weights[i] : 1.0L; };
    const auto sum = [&](const auto& term) {
      long double total = 0;
      for (size_t i = 0; i < weights.size(); ++i) total += weight(i) * term(i);
      return total;
    };
    const long double w = sum([](size_t) { return 1.0L; });
    const long double scale = w - sum(weight) / w;
    long double mean[2];
    for (int j : {0, 1}) mean[j] = sum([&](size_t i) { return values[j][i]; }) / w;
    const auto central = [&](int j, int k) {
      return sum([&](size_t i) { return std::pow(values[j][i] - mean[j], k); });
    };
    const long double covariance =
        sum([&](size_t i) { return (values[0][i] - mean[0]) * (values[1][i] - mean[1]); }) / scale;
    SummaryFigures f;
    f.weight = static_cast<double>(w);
    const auto add = [](std::vector<double>& to, long double value) {
      to.push_back(static_cast<double>(value));
    };
    for (int j : {0, 1}) {
      const long double variance = central(j, 2) / scale, deviation = std::sqrt(variance);
      add(f.mean, mean[j]);
      add(f.deviation, deviation);
      add(f.minimum, std::ranges::min(values[j]));
      add(f.maximum, std::ranges::max(values[j]));
      add(f.skewness, central(j, 3) / w / (variance * deviation));
      add(f.kurtosis, central(j, 4) / w / (variance * variance) - 3);
      add(f.variation, deviation / mean[j]);
      add(f.covariance, j == 0 ? variance : covariance);
      add(f.covariance, j == 0 ? covariance : variance);
    }
    return f;
  }

  // No two values are equal.
  void expect_quantile(int j, double order, double value) const {
    std::vector<double> sorted = values[j];
    std::ranges::sort(sorted);
    const auto place = std::ranges::lower_bound(sorted, value) - sorted.begin();
    const auto n = static_cast<double>(sorted.size());
    EXPECT_EQ(sorted.at(static_cast<size_t>(place)), value) << "not a value of the data";
    EXPECT_NEAR(static_cast<double>(place), order * (n - 1),
                0.5 + std::floor(Summary::kQuantileError * n));
  }
};

// Powers up to the fourth of values near 1000 that vary by 3 leave few digits.
void expect_close(double value, double expected, const char* name, double bound = 1e-12) {
  EXPECT_NEAR(value, expected, bound * (5 + std::fabs(expected))) << name;
}

TEST_F(Stats, BlocksOfAnyLengthGiveTheSame) {
  const Sample sample(3001);
  write("x.csv", sample.text);
  for (const auto& [weighted, fast] : {std::pair(false, false), {false, true}, {true, false}}) {
    const SummaryFigures expected = sample.figures(weighted);
    for (const size_t rows : {1, 7, 1000, 3000, 4000}) {
      SCOPED_TRACE(format("weighted %d, fast %d, rows %zu", weighted, fast, rows));
      Summary summary(2, {fast, {0.1, 0.5, 1}, true, 1});
      CsvReader csv("x.csv");
      ObservationReader reader(csv, {0, 1}, weighted ? std::optional<size_t>(2) : std::nullopt);
      for (Observations block; reader.next(rows, block);) summary.add(block);
      const SummaryFigures f = summary.figures();
      EXPECT_EQ(f.observations, 3001);
      for (const auto& [name, values] : kFigures) {
        for (size_t j : {0u, 1u}) {
          if (!fast) expect_close((f.*values)[j], (expected.*values)[j], name);
        }
      }
      for (size_t k = 0; k < 4 && !fast; ++k) {
        expect_close(f.covariance[k], expected.covariance[k], "covariance");
      }
      expect_close(f.weight, expected.weight, "weight");
      expect_close(f.deviation[0], expected.deviation[0], "deviation", 1e-9);
      for (int j : {0, 1}) {
        const double* quantiles = &f.quantiles[static_cast<size_t>(3 * j)];
        sample.expect_quantile(j, 0.1, quantiles[0]);
        sample.expect_quantile(j, 0.5, quantiles[1]);
        EXPECT_EQ(quantiles[2], expected.maximum[static_cast<size_t>(j)]);
      }
    }
  }
}

TEST_F(Stats, AFileOfManyBlocks) {
  const Sample sample(200'000);
  const SummaryFigures expected = sample.figures(true);
  write("x.csv", sample.text);
  const auto expect_figures = [&](const std::string& threads) {
    const std::string out =
        output("stats x.csv --format csv --weights w --covariance --threads " + threads);
    expect_close(figure(out, 0, "weight"), expected.weight, "weight");
    for (size_t j : {0u, 1u}) {
      EXPECT_EQ(figure(out, j, "observations"), 200'000);
      for (const auto& [name, values] : kFigures) {
        expect_close(figure(out, j, name), (expected.*values)[j], name);
      }
    }
    const Csv matrix = table_of(out.substr(out.find("\n\n") + 2));
    EXPECT_EQ(matrix.header, (std::vector<std::string>{"covariance", "a", "b"}));
    expect_close(numbers(matrix, 2).at(0), expected.covariance[1], "covariance");
  };
  expect_figures("1");
#ifdef QOR_HAS_TEAM
  expect_figures("3");
#else
  const qor::test::Result refused = shell("qor stats x.csv --threads 2");
  EXPECT_EQ(refused.status, 2);
  EXPECT_NE(refused.err.find("without threads"), std::string::npos) << refused.err;
#endif
  const std::string quantiles =
      output("stats x.csv --format csv --columns b,a --quantiles 0.25,0.999");
  sample.expect_quantile(1, 0.25, figure(quantiles, 0, "q0.25"));
  sample.expect_quantile(0, 0.999, figure(quantiles, 1, "q0.999"));
  EXPECT_NE(output("stats x.csv --quantiles 0.5").find("20 places"), std::string::npos);
}

}  // namespace
