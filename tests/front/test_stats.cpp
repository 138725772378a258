// qor stats: files of many blocks, figures against references, and what is refused.

#include <algorithm>
#include <cmath>

#include "front/cli/csv_reader.h"
#include "front/cli/summary.h"
#include "front/cli/text.h"
#include "tests/front/command_fixture.h"

namespace {

using namespace qor::cli;
using qor::test::Result;
using Stats = qor::test::Command;

const std::string kAir = QOR_EXAMPLE_DATA "/airquality.csv";
const std::string kSets = QOR_EXAMPLE_DATA "/strd/";

// ---- Blocks ---------------------------------------------------------------------------------

struct Sample {
  std::string text = "a,b,w\n";
  Observations all;
};

// Skewed values far from zero, and weights of which the first ones are 0.
Sample sample_of(int64_t rows) {
  Sample sample;
  uint64_t state = 1;
  const auto uniform = [&] {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<double>(state >> 11) * 0x1p-53;
  };
  for (int64_t i = 0; i < rows; ++i) {
    const double u = uniform(), a = 1000 + 10 * u * u, b = -3 * u + uniform();
    const double weight = i < 5 ? 0 : 0.5 + uniform();
    sample.all.x.insert(sample.all.x.end(), {a, b});
    sample.all.weights.push_back(weight);
    sample.text += shortest(a) + "," + shortest(b) + "," + shortest(weight) + "\n";
  }
  sample.all.count = rows;
  return sample;
}

// By definition, in two passes of extended precision.
struct Reference {
  long double w = 0, w2 = 0, mean[2] = {0, 0}, product = 0, power[2][5] = {};

  explicit Reference(const Observations& all) {
    const auto each = [&](const auto& visit) {
      for (size_t i = 0; i < static_cast<size_t>(all.count); ++i) {
        visit(all.weights.empty() ? 1.0L : all.weights[i], &all.x[2 * i]);
      }
    };
    each([&](long double weight, const double* x) {
      w += weight;
      w2 += weight * weight;
      for (int j : {0, 1}) mean[j] += weight * x[j];
    });
    for (long double& m : mean) m /= w;
    each([&](long double weight, const double* x) {
      product += weight * (x[0] - mean[0]) * (x[1] - mean[1]);
      for (int j : {0, 1}) {
        for (int k = 2; k <= 4; ++k) power[j][k] += weight * std::pow(x[j] - mean[j], k);
      }
    });
  }
  long double scale() const { return w - w2 / w; }
  long double variance(int j) const { return power[j][2] / scale(); }
};

void expect_close(double value, long double expected, double bound, const char* name) {
  EXPECT_NEAR(value, static_cast<double>(expected),
              bound * std::fabs(static_cast<double>(expected)))
      << name;
}

void expect_figures(const SummaryFigures& f, const Reference& r, double bound) {
  expect_close(f.weight, r.w, bound, "weight");
  expect_close(f.covariance[1], r.product / r.scale(), bound, "covariance");
  EXPECT_EQ(f.covariance[1], f.covariance[2]);
  for (int j : {0, 1}) {
    const auto i = static_cast<size_t>(j);
    expect_close(f.mean[i], r.mean[j], bound, "mean");
    expect_close(f.deviation[i], std::sqrt(r.variance(j)), bound, "deviation");
    expect_close(f.covariance[3 * i], r.variance(j), bound, "variance");
    expect_close(f.skewness[i], r.power[j][3] / r.w / std::pow(r.variance(j), 1.5L), bound,
                 "skewness");
    // The excess is a difference: its error is that of what the 3 is taken from.
    EXPECT_NEAR(f.kurtosis[i],
                static_cast<double>(r.power[j][4] / r.w / std::pow(r.variance(j), 2.0L) - 3),
                10 * bound);
    expect_close(f.variation[i], std::sqrt(r.variance(j)) / r.mean[j], bound, "variation");
  }
}

// No two values of a sample are equal.
void expect_quantile(const Observations& all, size_t j, double order, double value) {
  std::vector<double> sorted;
  for (size_t i = j; i < all.x.size(); i += 2) sorted.push_back(all.x[i]);
  std::ranges::sort(sorted);
  const auto first = std::ranges::lower_bound(sorted, value);
  ASSERT_TRUE(first != sorted.end() && *first == value) << "not a value of the data";
  const double n = static_cast<double>(all.count);
  EXPECT_NEAR(static_cast<double>(first - sorted.begin()), order * (n - 1),
              0.5 + std::floor(Summary::kQuantileError * n));
}

TEST_F(Stats, BlocksOfAnyLengthGiveTheSame) {
  for (const bool weighted : {false, true}) {
    Sample sample = sample_of(3001);
    if (!weighted) sample.all.weights.clear();
    const Reference reference(sample.all);
    const std::string path = file("x.csv", sample.text);
    for (const bool fast : {false, true}) {
      for (const size_t rows : {size_t{1}, size_t{7}, size_t{1000}, size_t{3000}, size_t{4000}}) {
        SCOPED_TRACE(format("weighted %d, fast %d, rows %zu", weighted, fast, rows));
        Summary summary(2, {fast, {0.1, 0.5, 1}, true, 1});
        CsvReader csv(path);
        ObservationReader reader(csv, {0, 1}, weighted ? std::optional<size_t>(2) : std::nullopt);
        for (Observations block; reader.next(rows, block);) summary.add(block);
        const SummaryFigures f = summary.figures();
        EXPECT_EQ(f.observations, 3001);
        // Powers up to the fourth of values near 1000 that vary by 3 leave few digits.
        if (!fast) expect_figures(f, reference, 1e-12);
        if (fast) expect_close(f.deviation[0], std::sqrt(reference.variance(0)), 1e-9, "deviation");
        for (size_t j : {0u, 1u}) {
          expect_quantile(sample.all, j, 0.1, f.quantiles[3 * j]);
          expect_quantile(sample.all, j, 0.5, f.quantiles[3 * j + 1]);
          EXPECT_EQ(f.quantiles[3 * j + 2], f.maximum[j]);
        }
      }
    }
  }
}

// A figure of a column in CSV output.
double figure(const std::string& out, size_t row, const std::string& name) {
  const Csv csv = parse_csv(out.substr(0, out.find("\n\n")), "out");
  return numbers(csv, column_index(csv, name)).at(row);
}

TEST_F(Stats, AFileOfManyBlocks) {
  const Sample sample = sample_of(200'000);
  const Reference reference(sample.all);
  const std::string line = "stats " + file("x.csv", sample.text) + " --format csv --covariance";
  const Result weighted = run(line + " --weights w");
  ASSERT_EQ(weighted.status, 0) << weighted.err;
  EXPECT_EQ(weighted.err, "");
  EXPECT_EQ(figure(weighted.out, 1, "observations"), 200'000);
  expect_close(figure(weighted.out, 0, "weight"), reference.w, 1e-12, "weight");
  expect_close(figure(weighted.out, 1, "mean"), reference.mean[1], 1e-12, "mean");
  expect_close(figure(weighted.out, 0, "standard_deviation"), std::sqrt(reference.variance(0)),
               1e-12, "deviation");
  const Csv matrix =
      parse_csv(weighted.out.substr(weighted.out.find("\n\n") + 2), "covariance of the output");
  EXPECT_EQ(matrix.header, (std::vector<std::string>{"covariance", "a", "b"}));
  expect_close(numbers(matrix, 2).at(0), reference.product / reference.scale(), 1e-12,
               "covariance");
  const Result quantiles = run(line + " --columns b,a --quantiles 0.25,0.999");
  expect_quantile(sample.all, 1, 0.25, figure(quantiles.out, 0, "q0.25"));
  expect_quantile(sample.all, 0, 0.999, figure(quantiles.out, 1, "q0.999"));
  EXPECT_NE(run("stats " + (folder_ / "x.csv").string() + " --quantiles 0.5").out.find("20 places"),
            std::string::npos);
#ifdef QOR_HAS_TEAM
  const Result threads = run(line + " --weights w --threads 3");
  expect_close(figure(threads.out, 1, "kurtosis"), figure(weighted.out, 1, "kurtosis"), 1e-12,
               "kurtosis");
  EXPECT_EQ(figure(threads.out, 0, "maximum"), figure(weighted.out, 0, "maximum"));
#else
  const Refused refused[] = {{line + " --threads 2", {"--threads", "\"2\"", "without threads"}}};
  expect_refused(refused);
#endif
}

// ---- Results --------------------------------------------------------------------------------

TEST_F(Stats, CertifiedSets) {
  const Csv certified = read_csv(kSets + "certified.csv");
  const std::vector<double> means = numbers(certified, column_index(certified, "mean"));
  const std::vector<double> deviations =
      numbers(certified, column_index(certified, "standard_deviation"));
  // How near the deviation comes, which the decimal fractions of the data bound.
  const double bounds[] = {1e-14, 1e-13, 1e-14, 1e-14, 1e-9, 1e-8};
  ASSERT_EQ(means.size(), std::size(bounds));
  for (size_t i = 0; i < means.size(); ++i) {
    const std::string& name = certified.rows[i].fields[0];
    SCOPED_TRACE(name);
    const Result result = run("stats " + kSets + name + ".csv --format csv");
    ASSERT_EQ(result.status, 0) << result.err;
    expect_close(figure(result.out, 0, "mean"), means[i], 3.2e-15, "mean");
    expect_close(figure(result.out, 0, "standard_deviation"), deviations[i], bounds[i],
                 "deviation");
  }
}

TEST_F(Stats, Formats) {
  const std::string path = file("x.csv", "\"a,\"\"\",b\n1,1\n2,0\n3,5\n");
  const std::string line = "stats " + path + " --columns b --quantiles 0,0.5 --covariance";
  const std::string csv = run(line + " --format csv").out;
  EXPECT_EQ(
      csv.find("column,observations,mean,standard_deviation,minimum,maximum,skewness,kurtosis,"
               "variation,q0,q0.5\nb,3,2,2.6457513110645907,0,5,0.32396954"),
      0u)
      << csv;
  EXPECT_TRUE(csv.ends_with(",0,1\n\ncovariance,b\nb,7\n")) << csv;
  const Result table = run(line);
  EXPECT_EQ(
      table.out,
      path +
          ": 3 observations, method one-pass\n\n"
          "  column  mean   deviation  minimum  maximum     skewness     kurtosis   variation\n"
          "  b          2  2.64575131        0        5  0.323969548  -2.33333333  1.32287566\n"
          "\n  quantiles  0  0.5\n  b          0    1\n\n  covariance  b\n  b           7\n");
  const std::string json = run(line + " --format json").out;
  for (const char* text : {"\"observations\": 3,", "\"method\": \"one-pass\"",
                           "\"quantile_orders\": [0, 0.5]", "{\"name\": \"b\", \"mean\": 2, ",
                           "\"quantiles\": [0, 1]}", "\"covariance\": [\n    [7]\n  ]\n}\n"}) {
    EXPECT_NE(json.find(text), std::string::npos) << text << " in\n" << json;
  }
  EXPECT_NE(run("stats " + path + " --format json").out.find("\"name\": \"a,\\\"\""),
            std::string::npos);
  EXPECT_NE(run("stats " + path + " --format csv").out.find("\n\"a,\"\"\",3,2,1,"),
            std::string::npos);
}

TEST_F(Stats, WhatTheDataDoNotDetermine) {
  const std::string path = file("x.csv", "a,w\n4,2\n");
  EXPECT_EQ(run("stats " + path + " --columns a --format csv").out,
            "column,observations,mean,standard_deviation,minimum,maximum,skewness,kurtosis,"
            "variation\na,1,4,NA,4,4,NA,NA,NA\n");
  EXPECT_NE(run("stats " + path + " --weights w --format json")
                .out.find("\"mean\": 4, \"standard_deviation\": null"),
            std::string::npos);
}

// From a pipe, whose length is not known.
TEST_F(Stats, Pipe) {
  const std::string out = folder_ / "piped";
  const std::string line = "cat " + kSets + "lew.csv | " QOR_COMMAND " stats /dev/stdin >" + out;
  EXPECT_EQ(std::system(line.c_str()), 0);
  EXPECT_NE(content(out).find("/dev/stdin: 200 observations"), std::string::npos);
}

// ---- Refusals -------------------------------------------------------------------------------

TEST_F(Stats, MissingCellsAreNamedAndCounted) {
  std::string text = "a,b,w\n";
  for (int i = 0; i < 3000; ++i) text += "1,2,3\n";
  text += "NA,2,\n";
  for (int i = 0; i < 3000; ++i) text += "1,,3\n";
  const std::string path = file("x.csv", text);
  const Refused calls[] = {
      {"stats " + kAir,
       {"airquality.csv: 44 missing cells:",
        "\"Ozone\": 37, lines 6, 11, 26, 27, 28, 33, 34, 35, ...",
        "\"Solar.R\": 7, lines 6, 7, 12, 28, 97, 98, 99\n", "excluded or filled"}},
      {"stats " + path + " --weights w",
       {"3002 missing cells", "\"a\": 1, line 3002\n", "\"b\": 3000, lines 3003, 3004",
        "\"w\": 1, line 3002\n"}},
      {"stats " + path + " --columns a", {"1 missing cell:", "\"a\": 1, line 3002\n"}}};
  expect_refused(calls);
  EXPECT_EQ(run("stats " + kAir + " --columns Wind,Temp,Month").status, 0);
}

TEST_F(Stats, BadInputIsNamedAndNothingIsWritten) {
  const std::string good = file("good.csv", "a,b\n1,2\n3,4\n");
  const std::string weights = file("weights.csv", "a,w,z\n1,1,0\n2,-1,0\n");
  const Refused calls[] = {
      {"stats", {"FILE.csv is missing", "usage: qor stats"}},
      {"stats /no/such.csv", {"/no/such.csv", "No such file"}},
      {"stats " + folder_.string(), {folder_.string(), "directory"}},
      {"stats " + file("empty.csv", ""), {"empty.csv", "empty", "header line"}},
      {"stats " + file("head.csv", "a,b\n"), {"head.csv", "no row of data", "at least one"}},
      {"stats " + file("wide.csv", "a,b\n1,2\n1,2,3\n"), {"line 3: 3 fields; 2 are accepted"}},
      {"stats " + file("open.csv", "a\n1\n\"2\n"), {"line 3", "never ends"}},
      {"stats " QOR_EXAMPLE_DATA "/iris.csv", {"line 2, column \"Species\": \"setosa\""}},
      {"stats " + file("inf.csv", "a\n1\ninf\n"), {"line 3, column \"a\": \"inf\"", "finite"}},
      {"stats " + good + " --columns a,c", {"no column \"c\"", "a, b"}},
      {"stats " + good + " --weights c", {"no column \"c\"", "a, b"}},
      {"stats " + weights + " --weights w", {"line 3, column \"w\": \"-1\"", "at least 0"}},
      {"stats " + weights + " --weights z --columns a", {"\"z\"", "all weights are 0"}},
      {"stats " + file("one.csv", "w\n1\n") + " --weights w", {"no column is left", "\"w\""}},
      {"stats " + good + " --weights a --quantiles 0.5", {"--quantiles: \"0.5\"", "--weights"}},
      {"stats " + good + " --quantiles 0.5,1.5", {"--quantiles: \"1.5\"", "from 0 to 1"}},
      {"stats " + good + " --quantiles ''", {"--quantiles: \"\"", "from 0 to 1"}},
      {"stats " + good + " --method slow", {"--method", "\"slow\"", "one-pass, fast"}},
      {"stats " + good + " --format xml", {"--format", "\"xml\"", "table, csv, json"}},
      {"stats " + good + " --threads 0", {"--threads: \"0\"", "from 1 to 1024"}},
      {"stats " + good + " --threads two", {"--threads: \"two\"", "from 1 to 1024"}},
  };
  expect_refused(calls);
}

}  // namespace
