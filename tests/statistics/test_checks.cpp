// The checks of the compute entries, in the order of the tables: with all faults of a call present
// the first status comes, with that one mended the next, and so to the end.

#include <map>

#include "tests/statistics/api.h"
#include "tests/statistics/parameters.h"

namespace qor::test {
namespace {

struct Fault {
  std::string field, value;
  int status;
};

struct Call {
  std::string entry;
  std::vector<uint64_t> estimates, methods;
  int status;
  std::vector<Fault> faults;
};

std::vector<uint64_t> masks(const std::string& list) {
  std::vector<uint64_t> read;
  std::istringstream text(list == "all" ? "0xFFFFFFFFFFFFFFFF" : list);
  for (std::string mask; std::getline(text, mask, ',');) {
    read.push_back(std::stoull(mask, nullptr, 0));
  }
  return read;
}

std::vector<Call> read_calls(const std::string& table) {
  std::vector<Call> calls;
  for (const auto& [place, text] : table_lines("statistics/" + table)) {
    std::istringstream line(text);
    std::string first, entry, estimates, methods, value;
    int status;
    line >> first;
    if (first == "call") {
      line >> entry >> estimates >> methods >> status;
      calls.push_back({entry, masks(estimates), masks(methods), status, {}});
    } else {
      line >> value >> status;
      calls.back().faults.push_back({first, value, status});
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
      for (size_t place = 0; place < kRoom && whole != "-"; ++place) put(at, whole, place);
    }
  }
  void make(const Fault& fault) {
    const size_t bracket = fault.field.find('['), at = index_of(fault.field.substr(0, bracket));
    if (fault.value == "none") {
      field(at) = nullptr;
    } else if (fault.value[0] == '=') {
      field(at) = field(index_of(fault.value.substr(1)));
    } else {
      const bool has_place = bracket != std::string::npos;
      put(at, fault.value, has_place ? std::stoul(fault.field.substr(bracket + 1)) : 0);
    }
  }
  SsTask* task() { return task_; }

 private:
  static constexpr size_t kRoom = 20;  // two variables of ten observations
  struct Values {
    int32_t integers[kRoom];
    Real reals[kRoom];
  };

  const void*& field(size_t at) { return field_of(task_.record(), parameters()[at]); }
  void put(size_t at, const std::string& value, size_t place) {
    if (parameters()[at].kind == "integer") {
      values_[at].integers[place] = std::stoi(value, nullptr, 0);
      field(at) = values_[at].integers;
    } else {
      values_[at].reals[place] = static_cast<Real>(std::stod(value));
      field(at) = values_[at].reals;
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
  if (entry == "new_task") {
    const SsTask from = task == nullptr ? SsTask{} : *task;
    SsTask* made = nullptr;
    const int status = A::new_task(task == nullptr ? nullptr : &made, from.p, from.n,
                                   from.x_storage, static_cast<Real*>(from.x), nullptr, nullptr, 0);
    EXPECT_EQ(made != nullptr, status == QOR_SS_OK);
    if (made != nullptr) __ostSSDeleteTask(&made);
    return status;
  }
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
void expect_checks(const std::string& table) {
  for (const Call& call : read_calls(table)) {
    const size_t count = call.faults.size();
    for (const auto& [estimates, method] : combinations(call.estimates, call.methods)) {
      SCOPED_TRACE(::testing::Message() << call.entry << " " << estimates << " by " << method);
      for (size_t first = 0; first <= count; ++first) {
        Record<Real> record;
        for (size_t i = count; i-- > first;) record.make(call.faults[i]);
        EXPECT_EQ(run<Real>(call.entry, record.task(), estimates, method),
                  first < count ? call.faults[first].status : call.status)
            << "with the faults from number " << first << " on";
      }
      EXPECT_EQ(run<Real>(call.entry, nullptr, estimates, method), QOR_SS_NULL_TASK);
    }
  }
}

template <class Real>
class Checks : public ::testing::Test {};
template <class Real>
class OrderChecks : public ::testing::Test {};
TYPED_TEST_SUITE(Checks, Precisions);
TYPED_TEST_SUITE(OrderChecks, Precisions);

TYPED_TEST(Checks, OfEveryEntry) { expect_checks<TypeParam>("checks.txt"); }
TYPED_TEST(OrderChecks, OfEveryEntry) { expect_checks<TypeParam>("order_checks.txt"); }

}  // namespace
}  // namespace qor::test
