// The checks of the compute entries of moments, matrices and robust estimates, in their order.

#include "tests/statistics/checks.h"

namespace qor::test {
namespace {

TYPED_TEST_SUITE(Checks, Precisions);

TYPED_TEST(Checks, Basic) {
  using Real = TypeParam;
  using C = Checks<Real>;
  const auto run = [](uint64_t estimates, uint64_t method) {
    return [=](SsTask* t) { return Api<Real>::basic(t, estimates, method, nullptr); };
  };
  std::vector<typename C::Fault> faults;
  void* SsTask::*const fields[] = {
      &SsTask::mean,          &SsTask::raw_2,         &SsTask::raw_3,         &SsTask::raw_4,
      &SsTask::central_2,     &SsTask::central_3,     &SsTask::central_4,     &SsTask::cov,
      &SsTask::cor,           &SsTask::kurtosis,      &SsTask::skewness,      &SsTask::variation,
      &SsTask::sum,           &SsTask::raw_sum_2,     &SsTask::raw_sum_3,     &SsTask::raw_sum_4,
      &SsTask::central_sum_2, &SsTask::central_sum_3, &SsTask::central_sum_4, &SsTask::cp};
  const int statuses[] = {-4006, -4007, -4008, -4009, -4010, -4011, -4012, -4018, -4019, -4013,
                          -4014, -4017, -4074, -4075, -4076, -4077, -4078, -4079, -4080, -4081};
  for (size_t i = 0; i < std::size(fields); ++i) faults.push_back(C::none(fields[i], statuses[i]));
  const std::vector<typename C::Fault> after = {
      C::none(&SsTask::n, -4002),           C::bad(&SsTask::n, 0, -4002),
      C::none(&SsTask::x, -4032),           C::none(&SsTask::x_storage, -4044),
      C::bad(&SsTask::x_storage, 4, -4003), C::bad(&SsTask::p, 0, -4001),
      C::none(&SsTask::cov_storage, -4044), C::none(&SsTask::cor_storage, -4044),
      C::none(&SsTask::cp_storage, -4044),
  };
  auto all = faults;
  all.insert(all.end(), after.begin(), after.end());
  for (const uint64_t method : {0x1, 0x2, 0x100, 0x201}) {
    C::expect_order(all, run(kAll, method), QOR_SS_OK);
  }
  for (const uint64_t method : {0x0, 0x3, 0x101, 0x102, 0x103, 0x4}) {
    C::expect_order({{[](auto&, SsTask& t) { t.mean = nullptr; }, -4029}}, run(kAll, method),
                    -4029);
  }
  C::expect_order({}, run(1, 0x100000001), QOR_SS_OK);  // the high word of a method is not read
  C::expect_order({}, run(1, 0x100000000), -4029);

  // From sums: no sum may be asked for, and the sources are other ones.
  const uint64_t moments = 0x3FF | QOR_SS_ESTIMATE_COVARIANCE | QOR_SS_ESTIMATE_CORRELATION;
  for (const uint64_t method : {0x200, 0x400}) {
    auto from_sums = faults;
    from_sums.push_back(C::none(&SsTask::n, -4020));
    from_sums.push_back(C::bad(&SsTask::p, 0, -4001));
    from_sums.push_back(C::none(&SsTask::cov_storage, -4044));
    C::expect_order(from_sums, run(moments, method), QOR_SS_OK);
    C::expect_order({{[](auto& w, SsTask& t) { t.weights = w.array; }, -4020}},
                    run(moments, method), QOR_SS_OK);
    for (int bit = 25; bit <= 32; ++bit) {
      C::expect_order({}, run(uint64_t{1} << bit, method), -4029);
    }
  }
}

// What an estimate needs beside its own array.
TYPED_TEST(Checks, BasicWorkingSpace) {
  using Real = TypeParam;
  using C = Checks<Real>;
  struct Case {
    uint64_t estimate, method;
    void* SsTask::*needed;
    int status;
  };
  const Case cases[] = {
      {QOR_SS_ESTIMATE_CENTRAL_2, 1, &SsTask::raw_2, -4007},
      {QOR_SS_ESTIMATE_KURTOSIS, 2, &SsTask::raw_4, -4009},
      {QOR_SS_ESTIMATE_KURTOSIS, 2, &SsTask::central_4, -4012},
      {QOR_SS_ESTIMATE_SKEWNESS, 1, &SsTask::central_3, -4011},
      {QOR_SS_ESTIMATE_VARIATION, 0x100, &SsTask::mean, -4006},
      {QOR_SS_ESTIMATE_CENTRAL_SUM_4, 1, &SsTask::raw_3, -4008},
      {QOR_SS_ESTIMATE_CENTRAL_SUM_4, 2, &SsTask::mean, -4006},
      {QOR_SS_ESTIMATE_CENTRAL_SUM_4, 2, &SsTask::raw_3, 0},
      {QOR_SS_ESTIMATE_CP, 1, &SsTask::mean, -4006},
      {QOR_SS_ESTIMATE_SUM, 2, &SsTask::mean, 0},
      {QOR_SS_ESTIMATE_SUM, 0x100, &SsTask::mean, -4006},
      {QOR_SS_ESTIMATE_COVARIANCE, 0x200, &SsTask::cp, -4081},
      {QOR_SS_ESTIMATE_KURTOSIS, 0x200, &SsTask::raw_4, 0},
      {QOR_SS_ESTIMATE_CENTRAL_3, 0x200, &SsTask::central_sum_3, -4079},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "estimate " << c.estimate << " method " << c.method);
    C::expect_order(
        {C::none(c.needed, c.status)},
        [&](SsTask* t) { return Api<Real>::basic(t, c.estimate, c.method, nullptr); }, QOR_SS_OK);
  }
}

TYPED_TEST(Checks, RobustAndDerived) {
  using Real = TypeParam;
  using C = Checks<Real>;
  using A = Api<Real>;
  const auto run = [](auto entry, uint64_t estimates, uint64_t method) {
    return [=](SsTask* t) { return entry(t, estimates, method, nullptr); };
  };
  C::expect_order({C::bad(&SsTask::p, 0, -4001), C::none(&SsTask::n, -4002),
                   C::none(&SsTask::x_storage, -4044), C::bad(&SsTask::x_storage, 0x30000, -4003),
                   C::none(&SsTask::median_absolute_deviation, -4082),
                   C::none(&SsTask::mean_absolute_deviation, -4083), C::none(&SsTask::mean, -4006),
                   C::none(&SsTask::x, -4032)},
                  run(A::absolute_deviations, kAll, 0x101));
  C::expect_order({}, run(A::absolute_deviations, 0x200000000, 0x100), -4029);
  C::expect_order({}, run(A::absolute_deviations, 0x400000000, 0x2), -4029);

  C::expect_order(
      {C::bad(&SsTask::p, 0, -4001), C::none(&SsTask::x_storage, -4003),
       C::bad(&SsTask::x_storage, 0x30000, -4003), C::none(&SsTask::missing_parameters, -4048),
       C::none(&SsTask::missing_parameter_count, -4049),
       C::bad(&SsTask::missing_parameter_count, 4, -4050),
       C::none(&SsTask::simulated_estimate_count, -4055), C::none(&SsTask::n, -4002),
       C::none(&SsTask::x, -4032)},
      run(A::missing_values, 0, 0x10));
  C::expect_order({C::none(&SsTask::simulated_estimates, -4054)}, run(A::missing_values, 0, 0x10));
  const auto no_estimates = [](auto&, SsTask& t) {
    t.simulated_estimates = nullptr;
    t.simulated_estimate_count = t.simulated_correlation_count = nullptr;
  };
  C::expect_order({{no_estimates, -4060}}, run(A::missing_values, 0, 0), -4029);
  const auto zero_estimates = [](auto& w, SsTask& t) {
    t.simulated_correlations = nullptr;
    t.simulated_estimate_count = w.task.number(0);
  };
  C::expect_order({{zero_estimates, -4060}}, run(A::missing_values, 0, 0), -4029);

  C::expect_order({C::bad(&SsTask::p, 0, -4001), C::bad(&SsTask::n, 9, -4002),
                   C::none(&SsTask::x_storage, -4003), C::bad(&SsTask::x_storage, 0, -4003),
                   C::none(&SsTask::outlier_weights, -4041)},
                  run(A::outliers, 0, 0x1), -4029);
  C::expect_order({C::none(&SsTask::x, -4032)}, run(A::outliers, 0, 0x20));
  C::expect_order({C::bad(&SsTask::p, -1, -4001), C::bad(&SsTask::n, 4, -4002),
                   C::none(&SsTask::x_storage, -4044), C::bad(&SsTask::x_storage, 0, -4003),
                   C::none(&SsTask::robust_mean, -4028), C::none(&SsTask::robust_covariance, -4027),
                   C::none(&SsTask::robust_covariance_storage, -4044),
                   C::bad(&SsTask::robust_covariance_storage, 3, -4003)},
                  run(A::robust_covariance, 0, 0x1), -4029);
  C::expect_order({C::none(&SsTask::x, -4032)}, run(A::robust_covariance, 0, 0x8));
}

TYPED_TEST(Checks, Matrices) {
  using Real = TypeParam;
  using C = Checks<Real>;
  using A = Api<Real>;
  const auto run = [](auto entry, uint64_t estimates, uint64_t method) {
    return [=](SsTask* t) { return entry(t, estimates, method, nullptr); };
  };
  C::expect_order({C::none(&SsTask::cov_storage, -4044), C::none(&SsTask::partial_index, -4045),
                   C::none(&SsTask::partial_covariance, -4046),
                   C::none(&SsTask::partial_covariance_storage, -4044),
                   C::none(&SsTask::partial_correlation, -4047),
                   C::none(&SsTask::partial_correlation_storage, -4044)},
                  run(A::partial_covariance, kAll, 0x2), -4029);
  const auto no_cov = [](auto&, SsTask& t) { t.cov = t.cor = nullptr; };
  const auto only_cor = [](auto&, SsTask& t) {
    t.cov = nullptr;
    t.cor_storage = nullptr;
  };
  C::expect_order({{no_cov, -4018}, {only_cor, -4044}, C::bad(&SsTask::p, 0, -4001)},
                  run(A::partial_covariance, 0, 0x1));

  C::expect_order(
      {C::none(&SsTask::x_storage, -4044), C::bad(&SsTask::x_storage, 0, -4003),
       C::none(&SsTask::group_indices, -4030), C::none(&SsTask::pooled_mean, -4035),
       C::none(&SsTask::pooled_covariance_storage, -4044),
       C::none(&SsTask::pooled_covariance, -4034), C::none(&SsTask::group_selection, -4030),
       C::none(&SsTask::group_means, -4037), C::none(&SsTask::group_covariance_storage, -4044),
       C::none(&SsTask::group_covariances, -4036)},
      run(A::pooled_covariance, kAll, 0x1), -4029);
  static const int32_t negative[10] = {0, 0, 0, 0, 0, 0, 0, 0, 0, -1}, two[2] = {1, 2};
  C::expect_order({C::bad(&SsTask::p, 0, -4001),
                   C::none(&SsTask::n, -4002),
                   C::none(&SsTask::x, -4032),
                   {[](auto&, SsTask& t) { t.group_indices = negative; }, -4038},
                   {[](auto&, SsTask& t) { t.group_selection = two; }, -4038}},
                  run(A::pooled_covariance, kAll, 0x2));
  // A selection that nothing asks for is not read.
  C::expect_order({C::none(&SsTask::group_selection, QOR_SS_NOT_BUILT)},
                  run(A::pooled_covariance, QOR_SS_ESTIMATE_POOLED_MEAN, 0x2));

  const auto in_place = [](auto& w, SsTask& t) {
    t.parametrized_correlation = t.cor;
    t.cor_storage = w.task.number(1);
  };
  C::expect_order({C::bad(&SsTask::p, 0, -4001),
                   C::none(&SsTask::cor, -4019),
                   C::none(&SsTask::cor_storage, -4044),
                   C::bad(&SsTask::cor_storage, 4, -4003),
                   C::none(&SsTask::parametrized_correlation, -4071),
                   C::none(&SsTask::parametrized_correlation_storage, -4044),
                   C::bad(&SsTask::parametrized_correlation_storage, -1, -4003),
                   {in_place, -4003}},
                  run(A::parametrization, 0, 0x2), -4029);
  C::expect_order({}, run(A::parametrization, 0, 0x4));

  C::expect_order(
      {C::bad(&SsTask::p, 0, -4001), C::bad(&SsTask::n, 0, -4002), C::none(&SsTask::x, -4032),
       C::none(&SsTask::x_storage, -4044), C::none(&SsTask::weights, -4005)},
      [](SsTask* t) { return A::weighted_median(t); }, -4005);
  C::expect_order({C::bad(&SsTask::p, 0, -4001), C::bad(&SsTask::n, 0, -4002),
                   C::none(&SsTask::x, -4032), C::none(&SsTask::x_storage, -4044)},
                  [](SsTask* t) { return A::distances(t); });
}

}  // namespace
}  // namespace qor::test
