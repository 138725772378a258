// The stack that the entries on order take, whatever the number of observations: hosts run them on
// small stacks of their own.

#include <pthread.h>
#include <sys/mman.h>

#include <functional>

#include "tests/statistics/api.h"
#include "tests/statistics/patterns.h"

namespace qor::test {
namespace {

constexpr size_t kStack = size_t{1} << 20, kMost = size_t{1} << 16;
constexpr unsigned char kUntouched = 0xA5;

// Bytes from the top of a thread's stack to the lowest one that call() writes.
size_t reach_of(const std::function<void()>& call) {
  void* const stack =
      mmap(nullptr, kStack, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (stack == MAP_FAILED) throw std::bad_alloc();
  auto* const bytes = static_cast<unsigned char*>(stack);
  std::fill_n(bytes, kStack, kUntouched);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack, kStack);
  pthread_t thread;
  const auto run = [](void* context) -> void* {
    (*static_cast<const std::function<void()>*>(context))();
    return nullptr;
  };
  EXPECT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&call)),
            0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  const auto* const lowest =
      std::find_if(bytes, bytes + kStack, [](unsigned char b) { return b != kUntouched; });
  const auto reach = static_cast<size_t>(bytes + kStack - lowest);
  munmap(stack, kStack);
  return reach;
}

// What a call takes beyond the thread itself.
size_t stack_of(const std::function<void()>& call) {
  static const size_t of_thread = reach_of([] {});
  return reach_of(call) - of_thread;
}

template <class Real>
struct Services;
template <>
struct Services<double> {
  static constexpr auto sort = __ostdQSort;
  static constexpr auto sort_step = __ostdQSortStep;
  static constexpr auto select = __ostdQSortSelect;
};
template <>
struct Services<float> {
  static constexpr auto sort = __ostsQSort;
  static constexpr auto sort_step = __ostsQSortStep;
  static constexpr auto select = __ostsQSortSelect;
};

template <class Real>
class StackOfOrder : public ::testing::Test {};
TYPED_TEST_SUITE(StackOfOrder, Precisions);

TYPED_TEST(StackOfOrder, IsSmallForSortingServices) {
  using Real = TypeParam;
  const auto patterns = {Pattern::random, Pattern::organ_pipe};
  for (const auto& [pattern, n] :
       combinations(std::vector<Pattern>(patterns), std::vector<int64_t>{100, 600000})) {
    const auto x = pattern_data<Real>(pattern, n);
    const std::function<void(Real*)> services[] = {
        [n](Real* a) { Services<Real>::sort(n, a); },
        [n](Real* a) { Services<Real>::sort_step(n / 3, a, 3); },
        [n](Real* a) { Services<Real>::select(n, a, n / 2); }};
    for (const auto& service : services) {
      auto copy = x;
      EXPECT_LT(stack_of([&] { service(copy.data()); }), kMost) << pattern << " " << n;
    }
  }
}

// Lengths for each way of sorting, with runs that are sorted again.
TYPED_TEST(StackOfOrder, IsSmallForEntries) {
  using Real = TypeParam;
  using A = Api<Real>;
  for (const auto& c :
       combinations(std::vector<Pattern>{Pattern::random, Pattern::narrow, Pattern::outlier},
                    std::vector<int64_t>{500, 5000, 600000},
                    std::vector<int64_t>{QOR_SS_BY_VARIABLE, QOR_SS_BY_OBSERVATION})) {
    const auto& [pattern, n, storage] = c;
    SCOPED_TRACE(::testing::PrintToString(c));
    const auto x = pattern_data<Real>(pattern, 2 * n);
    std::vector<Real> sorted(x.size()), quantiles(4);
    const Real orders[] = {Real(0.1), Real(0.5)}, epsilon = Real(1e-4);
    Task<Real> task(2, n, storage, x.data());
    for (const int64_t code : {QOR_SS_SORTED_OUTPUT, QOR_SS_ORDER_STATISTICS}) {
      task.set(code, sorted.data());
    }
    for (const int64_t code : {QOR_SS_QUANTILES, QOR_SS_STREAM_QUANTILES}) {
      task.set(code, quantiles.data());
    }
    for (const int64_t code : {QOR_SS_QUANTILE_ORDERS, QOR_SS_STREAM_QUANTILE_ORDERS}) {
      task.set(code, orders);
    }
    for (const int64_t code : {QOR_SS_SORTED_OUTPUT_STORAGE, QOR_SS_ORDER_STATISTICS_STORAGE}) {
      task.set_number(code, storage);
    }
    for (const int64_t code : {QOR_SS_QUANTILE_COUNT, QOR_SS_STREAM_QUANTILE_COUNT}) {
      task.set_number(code, 2);
    }
    task.set(QOR_SS_STREAM_PARAMETERS, &epsilon);
    task.set_number(QOR_SS_STREAM_PARAMETER_COUNT, 1);
    const auto stack = [&](auto entry, uint64_t estimates, uint64_t method) {
      return stack_of([&] { ASSERT_EQ(entry(task, estimates, method, nullptr), QOR_SS_OK); });
    };
    EXPECT_LT(stack(A::sort, 0, QOR_SS_METHOD_SORT), kMost);
    EXPECT_LT(stack(A::quantiles, QOR_SS_ESTIMATE_QUANTILES, QOR_SS_METHOD_FAST), kMost);
    EXPECT_LT(stack(A::quantiles, QOR_SS_ESTIMATE_ORDER_STATISTICS, QOR_SS_METHOD_FAST), kMost);
    EXPECT_LT(stack(A::stream_quantiles, 0, QOR_SS_METHOD_STREAM_ANSWER), kMost);
  }
}

}  // namespace
}  // namespace qor::test
