// The checks of the compute entries that look at the order of the data, in their order.

#include "tests/statistics/checks.h"

namespace qor::test {
namespace {

template <class Real>
class OrderChecks : public Checks<Real> {
 protected:
  using Base = Checks<Real>;
  using List = std::vector<typename Base::Fault>;

  // Where a storage word must be there and hold one of two bits.
  static List storage_faults(const void* SsTask::*word) {
    return {Base::none(word, -4044), Base::bad(word, 4, -4003)};
  }
  static List data_faults() {
    return {Base::none(&SsTask::n, -4002), Base::bad(&SsTask::n, 0, -4002),
            Base::none(&SsTask::x, -4032)};
  }
  static List in_order(std::initializer_list<List> parts) {
    List all;
    for (const List& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
  }
};
TYPED_TEST_SUITE(OrderChecks, Precisions);

TYPED_TEST(OrderChecks, MinMax) {
  using Real = TypeParam;
  using C = OrderChecks<Real>;
  const auto run = [](uint64_t estimates, uint64_t method) {
    return [=](SsTask* t) { return Api<Real>::min_max(t, estimates, method, nullptr); };
  };
  const auto faults = C::in_order({C::storage_faults(&SsTask::x_storage),
                                   {C::none(&SsTask::min, -4015), C::none(&SsTask::max, -4016)},
                                   C::data_faults()});
  for (const uint64_t method : {1, 2, 3}) C::expect_order(faults, run(kAll, method), QOR_SS_OK);
  C::expect_order({C::none(&SsTask::max, -4016)}, run(QOR_SS_ESTIMATE_MAX, 4), -4029);
  C::expect_order({}, run(QOR_SS_ESTIMATE_MIN, 0), -4029);
}

TYPED_TEST(OrderChecks, Quantiles) {
  using Real = TypeParam;
  using C = OrderChecks<Real>;
  const auto run = [](uint64_t estimates, uint64_t method) {
    return [=](SsTask* t) { return Api<Real>::quantiles(t, estimates, method, nullptr); };
  };
  const auto order = [](Real value) -> typename C::Fault {
    return {[value](auto& w, SsTask&) { w.orders[1] = value; }, -4022};
  };
  const typename C::List of_quantiles = {C::none(&SsTask::quantiles, -4023),
                                         C::none(&SsTask::quantile_orders, -4021),
                                         C::none(&SsTask::quantile_count, -4022),
                                         C::bad(&SsTask::quantile_count, -1, -4022),
                                         order(Real(1.5)),
                                         order(Real(-0.1)),
                                         order(std::numeric_limits<Real>::quiet_NaN())};
  const typename C::List of_order_statistics =
      C::in_order({{C::none(&SsTask::order_statistics, -4024)},
                   C::storage_faults(&SsTask::order_statistics_storage)});
  const auto storage = C::storage_faults(&SsTask::x_storage);
  C::expect_order(C::in_order({storage, of_quantiles, of_order_statistics, C::data_faults()}),
                  run(kAll, 1), QOR_SS_OK);
  C::expect_order(C::in_order({storage, of_quantiles}), run(QOR_SS_ESTIMATE_QUANTILES, 2), -4029);
  C::expect_order(of_order_statistics, run(QOR_SS_ESTIMATE_ORDER_STATISTICS, 0), -4029);
}

TYPED_TEST(OrderChecks, StreamQuantiles) {
  using Real = TypeParam;
  using C = OrderChecks<Real>;
  const auto run = [](uint64_t method) {
    return [=](SsTask* t) { return Api<Real>::stream_quantiles(t, kAll, method, nullptr); };
  };
  const auto epsilon = [](double value) -> typename C::Fault {
    return {[value](auto& w, SsTask&) { w.epsilon[0] = static_cast<Real>(value); }, -4067};
  };
  const typename C::Fault bad_order = {[](auto& w, SsTask&) { w.orders[0] = Real(2); }, -4069};
  const typename C::List of_length = {C::none(&SsTask::n, -4002), C::bad(&SsTask::n, -1, -4002)};
  const typename C::List of_data =
      C::in_order({{C::none(&SsTask::x, -4032)}, C::storage_faults(&SsTask::x_storage)});
  const typename C::List of_answers = {C::none(&SsTask::stream_quantiles, -4070),
                                       C::none(&SsTask::stream_quantile_orders, -4068),
                                       C::none(&SsTask::stream_quantile_count, -4069),
                                       C::bad(&SsTask::stream_quantile_count, -1, -4069),
                                       C::none(&SsTask::stream_parameter_count, -4064),
                                       C::bad(&SsTask::stream_parameter_count, 2, -4066),
                                       bad_order,
                                       C::none(&SsTask::stream_parameters, -4065)};
  const typename C::List of_epsilon = {epsilon(0), epsilon(-0.5), epsilon(1.5),
                                       epsilon(std::numeric_limits<double>::quiet_NaN())};
  for (const uint64_t method : {0x40, 0x80}) {
    C::expect_order(C::in_order({of_length, of_data, of_answers, of_epsilon}), run(method),
                    QOR_SS_OK);
  }
  C::expect_order(of_answers, run(0x20), -4029);
  // Without new data nothing about data is asked.
  const auto no_data = [](auto& w, SsTask& t) {
    t.n = w.task.number(0);
    t.x = nullptr;
    t.x_storage = nullptr;
  };
  C::expect_order({{no_data, QOR_SS_OK}}, run(0x40), QOR_SS_OK);
}

TYPED_TEST(OrderChecks, Sort) {
  using Real = TypeParam;
  using C = OrderChecks<Real>;
  const auto run = [](uint64_t method) {
    return [=](SsTask* t) { return Api<Real>::sort(t, kAll, method, nullptr); };
  };
  const auto words = [](int64_t in, int64_t out) {
    return [=](auto& w, SsTask& t) {
      t.x_storage = w.task.number(in);
      t.sorted_output_storage = w.task.number(out);
    };
  };
  const typename C::List faults = {
      C::none(&SsTask::sorted_output, -4084), C::none(&SsTask::sorted_output_storage, -4044),
      C::none(&SsTask::x_storage, -4044), C::bad(&SsTask::sorted_output_storage, 4, -4003),
      C::bad(&SsTask::x_storage, 4, -4003)};
  C::expect_order(C::in_order({faults, C::data_faults()}), run(0x100000), QOR_SS_OK);
  C::expect_order(faults, run(0x1), -4029);

  // In place: both layouts the same, all variables.
  static const int32_t every[2] = {1, 1};
  const auto in_place = [](int64_t in, int64_t out, const int32_t* indices) {
    return [=](auto& w, SsTask& t) {
      t.sorted_output = w.x;
      t.indices = indices;
      t.x_storage = w.task.number(in);
      t.sorted_output_storage = w.task.number(out);
    };
  };
  C::expect_order({{in_place(QOR_SS_BY_VARIABLE, QOR_SS_BY_OBSERVATION, every), -4044},
                   {in_place(QOR_SS_BY_VARIABLE, QOR_SS_BY_VARIABLE, every), -4085},
                   {in_place(4, 4, nullptr), -4003},
                   {in_place(QOR_SS_BY_VARIABLE, QOR_SS_BY_VARIABLE, nullptr), QOR_SS_OK}},
                  run(0x100000), QOR_SS_OK);
  C::expect_order({{words(QOR_SS_BY_VARIABLE, QOR_SS_BY_OBSERVATION), QOR_SS_OK}}, run(0x100000),
                  QOR_SS_OK);
}

}  // namespace
}  // namespace qor::test
