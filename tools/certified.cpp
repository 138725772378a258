// Measures mean and standard deviation on the certified data sets.
//
//   certified                          prints the section
//   certified --write docs/accuracy.md writes it there

#include "reference/certified.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "qor/statistics.h"
#include "tools/section.h"

namespace {

using qor::reference::CertifiedSet;
using qor::reference::matching_digits;

constexpr const char* kTitle = "Summary statistics";
constexpr const char* kHead =
    R"(Measured by `tools/certified`; `tools/certified --write docs/accuracy.md` writes this section anew.
Decimal digits, at most 15, in which mean and standard deviation agree with the certified values of
the sets in `examples/data/strd`, at x86-64-v1; the other levels give the same bits. The last column
is what the data allow: the digits of the exact standard deviation of their nearest numbers.

)";

struct Moments {
  double mean, deviation;
};

int basic(SsTask* task, uint64_t method, const double*) {
  return _ostdSSBasic(task, QOR_SS_ESTIMATE_CENTRAL_2, method, nullptr);
}
int basic(SsTask* task, uint64_t method, const float*) {
  return _ostsSSBasic(task, QOR_SS_ESTIMATE_CENTRAL_2, method, nullptr);
}
int make(SsTask** task, const int32_t* p, const int32_t* n, const int32_t* storage,
         const double* x) {
  return __ostdSSNewTask(task, p, n, storage, x, nullptr, nullptr, 0);
}
int make(SsTask** task, const int32_t* p, const int32_t* n, const int32_t* storage,
         const float* x) {
  return __ostsSSNewTask(task, p, n, storage, x, nullptr, nullptr, 0);
}
void edit(SsTask* task, double* mean, double* raw, double* central) {
  __ostdSSEditMoments(task, mean, raw, nullptr, nullptr, central, nullptr, nullptr);
}
void edit(SsTask* task, float* mean, float* raw, float* central) {
  __ostsSSEditMoments(task, mean, raw, nullptr, nullptr, central, nullptr, nullptr);
}

template <class Real>
Moments moments(const std::vector<Real>& y, uint64_t method) {
  const int32_t p = 1, n = static_cast<int32_t>(y.size()), storage = QOR_SS_BY_VARIABLE;
  Real mean[1], raw[1], central[1];
  SsTask* task = nullptr;
  if (make(&task, &p, &n, &storage, y.data()) != QOR_SS_OK) return {NAN, NAN};
  edit(task, mean, raw, central);
  const int status = basic(task, method, y.data());
  __ostSSDeleteTask(&task);
  if (status != QOR_SS_OK) return {NAN, NAN};
  return {double{mean[0]}, std::sqrt(double{central[0]})};
}

// The standard deviation of the numbers that stand for the data. Deviations from a value among them
// are exact in extended precision, and few enough that their sums are.
template <class Real>
double exact_deviation(const std::vector<Real>& y) {
  const long double origin = y[0], n = static_cast<long double>(y.size());
  long double sum = 0, squares = 0;
  for (const Real v : y) sum += v - origin;
  for (const Real v : y) squares += (v - origin - sum / n) * (v - origin - sum / n);
  return static_cast<double>(std::sqrt(squares / (n - 1)));
}

template <class Real>
std::string lines(const CertifiedSet& set, const char* precision) {
  const std::vector<Real> y(set.y.begin(), set.y.end());
  const double allowed = matching_digits(exact_deviation(y), set.deviation);
  std::string text;
  for (const auto& [method, name] :
       {std::pair{QOR_SS_METHOD_ONE_PASS, "one pass"}, std::pair{QOR_SS_METHOD_FAST, "fast"}}) {
    const Moments m = moments(y, method);
    char line[160];
    std::snprintf(line, sizeof line, "| %s | %zu | %s | %s | %.1f | %.1f | %.1f |\n",
                  set.name.c_str(), y.size(), precision, name, matching_digits(m.mean, set.mean),
                  matching_digits(m.deviation, set.deviation), allowed);
    text += line;
  }
  return text;
}

}  // namespace

int main(int count, char** arguments) {
  const bool write = count == 3 && std::strcmp(arguments[1], "--write") == 0;
  if (count != 1 && !write) {
    std::fprintf(stderr, "certified: the only option is --write FILE\n");
    return 2;
  }
  const auto sets = qor::reference::certified_sets(QOR_EXAMPLE_DATA "/strd");
  if (sets.empty()) {
    std::fprintf(stderr, "certified: no data sets in %s\n", QOR_EXAMPLE_DATA "/strd");
    return 2;
  }
  std::string text = kHead;
  text += "| set | observations | precision | method | mean | standard deviation | allowed |\n";
  text += "|---|---|---|---|---|---|---|\n";
  for (const CertifiedSet& set : sets) {
    text += lines<double>(set, "double") + lines<float>(set, "single");
  }
  if (write) {
    qor::tools::write_section(arguments[2], kTitle, text);
  } else {
    std::fputs(text.c_str(), stdout);
  }
  return 0;
}
