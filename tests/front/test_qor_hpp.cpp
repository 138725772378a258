// The C++ header: calls, the mode and what is reported meanwhile, messages.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "front/cpp/qor.hpp"

namespace {

using Doubles = std::vector<double>;

// Rows of our own show which slot runs and how arguments arrive.
template <int slot>
void weighted(int32_t n, const double* a, const double* b, double* y) {
  for (int32_t i = 0; i < n; ++i) y[i] = 100 * slot + 10 * a[i] + b[i];
}
qor::BinaryRow<double> weighted_row = {weighted<0>, weighted<1>, weighted<2>};

TEST(Header, AppliesTheSlotOfTheMode) {
  const Doubles a{1, 2}, b{3, 4};
  {
    const qor::ModeScope mode(QOR_MODE_EP);
    EXPECT_EQ(qor::apply(weighted_row, a, b), (Doubles{213, 224}));
  }
  EXPECT_EQ(qor::apply(weighted_row, a, b), (Doubles{113, 124}));

  std::vector<float> in_place{0.0f, -std::numeric_limits<float>::infinity()};
  qor::apply_to(qor_ark_kernel_sExp_ttab, in_place, in_place);
  EXPECT_EQ(in_place, (std::vector<float>{1.0f, 0.0f}));
  EXPECT_TRUE(qor::apply(qor_ark_kernel_dExp_ttab, {}).empty());
}

TEST(Header, RefusesWhatDoesNotFit) {
  const Doubles a{1, 2}, b{3};
  Doubles y(3);
  const auto message = [](const auto& call) -> std::string {
    try {
      call();
    } catch (const std::invalid_argument& error) {
      return error.what();
    }
    return "accepted";
  };
  EXPECT_EQ(message([&] { qor::apply(weighted_row, a, b); }),
            "b: 1 elements; 2 are accepted, as many as a has");
  EXPECT_EQ(message([&] { qor::apply_to(qor_ark_kernel_dExp_ttab, a, y); }),
            "y: 3 elements; 2 are accepted, as many as a has");
  EXPECT_NE(message([] { const qor::ModeScope mode(QOR_MODE_TRAP_OVERFLOW); }).find("trap bits"),
            std::string::npos);
  const qor::ModeScope mode(0x7);
  EXPECT_EQ(message([&] { qor::apply(weighted_row, a, a); }),
            "accuracy of the thread's mode: 7; 1 (LA), 2 (HA) and 3 (EP) are accepted");
}

TEST(Header, ModeScopeRestores) {
  const uint32_t before = _arkGetMode(), fields = ~uint32_t{QOR_MODE_DENORMALS};
  {
    const qor::ModeScope mode(QOR_MODE_LA | QOR_MODE_ERRORS_NOERR | QOR_MODE_FLUSH_DENORMALS);
    EXPECT_EQ(_arkGetMode() & (QOR_MODE_ACCURACY | QOR_MODE_ERRORS | QOR_MODE_DENORMALS),
              uint32_t{QOR_MODE_LA} | QOR_MODE_ERRORS_NOERR | QOR_MODE_FLUSH_DENORMALS);
  }
  EXPECT_EQ(_arkGetMode() & fields, before & fields);
  EXPECT_NE(_arkGetMode() & QOR_MODE_DENORMALS, uint32_t{QOR_MODE_FLUSH_DENORMALS});
}

int32_t outer_callback(ErrorContext*) { return 1; }

TEST(Header, ReportsAreCollectedByTheInnermost) {
  const auto callback_before = _arkSetErrorCallBack(outer_callback);
  const uint32_t mode_before = _arkGetMode();
  const Doubles x{0, 1e9, std::nan(""), -1e9, 1};
  {
    const qor::Reports outer;
    {
      const qor::Reports inner;
      EXPECT_EQ(qor::apply(qor_ark_kernel_dExp_ttab, x)[1], HUGE_VAL);
      ASSERT_EQ(inner.count(), 2u);
      EXPECT_EQ(inner.list()[0].index, 1);
      EXPECT_EQ(inner.list()[0].code, QOR_ERROR_OVERFLOW);
      EXPECT_EQ(inner.list()[1].index, 3);
      EXPECT_EQ(inner.list()[1].arg1, -1e9);
    }
    EXPECT_EQ(outer.count(), 0u);
    qor::apply(qor_ark_kernel_dExp_ttab, x);
    EXPECT_EQ(outer.count(), 2u);
  }
  EXPECT_EQ(_arkGetErrorCallBack(), outer_callback);
  EXPECT_EQ(_arkGetMode() & QOR_MODE_ERRORS, mode_before & QOR_MODE_ERRORS);
  _arkSetErrorCallBack(callback_before);
}

}  // namespace
