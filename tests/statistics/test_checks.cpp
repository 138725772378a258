// The checks of the compute entries, in the order of checks.txt: with all faults of a call present
// the first status comes, with that one mended the next, and so to the end.

#include <map>

#include "tests/statistics/api.h"
#include "tests/statistics/parameters.h"

namespace qor::test {
namespace {

struct Fault {
  std::string field, value;
  int status, place = 0;
};

struct Call {
  std::vector<uint64_t> estimates, methods;
  int status;
  std::vector<Fault> faults;
};

std::vector<uint64_t> masks(const std::string& list) {
  if (list == "all") return {~uint64_t{0}};
  std::vector<uint64_t> read;
  std::istringstream text(list);
  for (std::string mask; std::getline(text, mask, ',');)
    read.push_back(std::stoull(mask, nullptr, 0));
  return read;
}

std::vector<Call> calls_of(const std::string& entry) {
  std::vector<Call> calls;
  bool of_entry = false;
  for (std::istringstream& line : table_lines("checks.txt")) {
    std::string first, name, estimates, methods;
    line >> first;
    if (first == "call") {
      Call call;
      line >> name >> estimates >> methods >> call.status;
      call.estimates = masks(estimates);
      call.methods = masks(methods);
      of_entry = name == entry;
      if (of_entry) calls.push_back(call);
    } else if (of_entry) {
      Fault fault{first.substr(0, first.find('[')), "", 0};
      line >> fault.value >> fault.status;
      if (fault.field != first) fault.place = std::stoi(first.substr(fault.field.size() + 1));
      calls.back().faults.push_back(fault);
    }
  }
  return calls;
}

// A record in which everything is there, and the values behind its fields.
template <class Real>
class Record {
 public:
  Record() : task_(1, 1, QOR_SS_BY_VARIABLE, nullptr), values_(parameters().size()) {
    for (size_t at = 0; at < values_.size(); ++at) {
      const std::string& whole = parameters()[at].whole;
      for (int place = 0; place < kRoom && whole != "-"; ++place) put(at, whole, place);
    }
  }
  void make(const Fault& fault) {
    const size_t at = place_of(fault.field);
    if (fault.value == "none") {
      field(at) = nullptr;
    } else if (fault.value[0] == '=') {
      field(at) = field(place_of(fault.value.substr(1)));
    } else {
      put(at, fault.value, fault.place);
    }
  }
  SsTask* task() { return task_; }

 private:
  static constexpr int kRoom = 20;  // two variables of ten observations
  struct Values {
    int32_t integers[kRoom];
    Real reals[kRoom];
  };

  static size_t place_of(const std::string& name) {
    const auto found = std::find_if(parameters().begin(), parameters().end(),
                                    [&](const Parameter& p) { return p.name == name; });
    EXPECT_NE(found, parameters().end()) << name;
    return static_cast<size_t>(found - parameters().begin());
  }

  const void*& field(size_t at) { return field_of(task_.record(), parameters()[at]); }
  void put(size_t at, const std::string& value, int place) {
    Values& values = values_[at];
    if (parameters()[at].kind == "integer") {
      values.integers[place] = std::stoi(value, nullptr, 0);
      field(at) = values.integers;
    } else {
      values.reals[place] = static_cast<Real>(std::stod(value));
      field(at) = values.reals;
    }
  }

  Task<Real> task_;
  std::vector<Values> values_;
};

template <class Real>
int run(const std::string& entry, SsTask* task, uint64_t estimates, uint64_t method) {
  using A = Api<Real>;
  if (entry == "weighted_median") return A::weighted_median(task);
  if (entry == "distances") return A::distances(task);
  static const std::map<std::string, decltype(A::basic)> entries = {
      {"basic", A::basic},
      {"absolute_deviations", A::absolute_deviations},
      {"missing_values", A::missing_values},
      {"outliers", A::outliers},
      {"robust_covariance", A::robust_covariance},
      {"partial_covariance", A::partial_covariance},
      {"pooled_covariance", A::pooled_covariance},
      {"parametrization", A::parametrization},
      {"min_max", A::min_max},
      {"quantiles", A::quantiles},
      {"stream_quantiles", A::stream_quantiles},
      {"sort", A::sort}};
  return entries.at(entry)(task, estimates, method, nullptr);
}

template <class Real>
void expect_order(const std::string& entry, const Call& call, uint64_t estimates, uint64_t method) {
  SCOPED_TRACE(::testing::Message() << entry << " " << estimates << " by " << method);
  const size_t count = call.faults.size();
  for (size_t first = 0; first <= count; ++first) {
    Record<Real> record;
    for (size_t i = count; i-- > first;) record.make(call.faults[i]);
    EXPECT_EQ(run<Real>(entry, record.task(), estimates, method),
              first < count ? call.faults[first].status : call.status)
        << "with the faults from number " << first << " on";
  }
  EXPECT_EQ(run<Real>(entry, nullptr, estimates, method), QOR_SS_NULL_TASK);
}

template <class Real>
class Checks : public ::testing::Test {
 protected:
  static void of(std::initializer_list<const char*> entries) {
    for (const char* entry : entries) {
      const auto calls = calls_of(entry);
      EXPECT_FALSE(calls.empty()) << entry;
      for (const Call& call : calls) {
        for (const uint64_t estimates : call.estimates) {
          for (const uint64_t method : call.methods) {
            expect_order<Real>(entry, call, estimates, method);
          }
        }
      }
    }
  }
};
template <class Real>
class OrderChecks : public Checks<Real> {};
TYPED_TEST_SUITE(Checks, Precisions);
TYPED_TEST_SUITE(OrderChecks, Precisions);

TYPED_TEST(Checks, Basic) { this->of({"basic"}); }
TYPED_TEST(Checks, RobustAndDerived) {
  this->of({"absolute_deviations", "missing_values", "outliers", "robust_covariance"});
}
TYPED_TEST(Checks, Matrices) {
  this->of({"partial_covariance", "pooled_covariance", "parametrization", "weighted_median",
            "distances"});
}
TYPED_TEST(OrderChecks, MinMax) { this->of({"min_max"}); }
TYPED_TEST(OrderChecks, Quantiles) { this->of({"quantiles"}); }
TYPED_TEST(OrderChecks, StreamQuantiles) { this->of({"stream_quantiles"}); }
TYPED_TEST(OrderChecks, Sort) { this->of({"sort"}); }

}  // namespace
}  // namespace qor::test
