// Arrays that a task lacks: whatever reads or writes them tells so, however the lack came about.

#include <algorithm>

#include "tests/fitting/spline_case.h"

namespace qor::test {
namespace {

constexpr int64_t kPoints = 6, kFunctions = 3;

template <class Real>
class MissingArrays : public BothPrecisions<Real> {
 protected:
  static constexpr Real kX[kPoints] = {0, 1, 2, 3, 4, 5}, kGiven[kPoints] = {1, 1, 1, 1, 1, 1};
  static constexpr Real kKnots[kPoints + 1] = {0, 0.5, 1.5, 2.5, 3.5, 4.5, 5};
  Real y[5 * kPoints] = {}, c[5 * 4 * kPoints] = {};

  static void set(DFTask* task, int64_t code, int64_t value) {
    EXPECT_EQ(qor_df_kernel_iEditVal(task, code, value), QOR_DF_OK);
  }
  void set_entries(DFTask* task, int64_t code, const std::vector<int64_t>& entries) {
    for (const int64_t i : entries) {
      const Real* entry = code == QOR_DF_Y ? y + kPoints * i : c + 4 * kPoints * i;
      EXPECT_EQ(Api<Real>::edit_entry(task, code, i, entry), QOR_DF_OK);
    }
  }

  // All that reads the arrays of a task.
  void check(const Task<Real>& task, bool has_values, bool has_coefficients) {
    const int values = has_values ? QOR_DF_OK : QOR_DF_NULL_Y;
    const int coefficients = has_coefficients ? QOR_DF_OK : QOR_DF_NULL_SCOEFF;
    Real r[2 * 5];
    const auto evaluate = [&](int64_t order, int64_t type, int64_t ic_type, const Real* ic,
                              int status) {
      SCOPED_TRACE(testing::Message() << "order " << order << " type " << type);
      EXPECT_EQ(task.spline(order, type, nullptr, 2, nullptr, ic_type, ic), QOR_DF_OK);
      for (const int64_t layout : {16, 32}) {
        EXPECT_EQ(task.interpolate({1, 2}, r, {.derivatives = {1}, .layout = layout}), status);
        if (type == 6) continue;
        EXPECT_EQ(task.integrate({1, 2}, {2, 0}, r, {.layout = layout}), status);
      }
    };
    for (const SplineShape& shape : spline_shapes()) {
      SCOPED_TRACE(shape.name);
      const bool knots = shape.is(Kind::knotted), inner = knots || shape.takes_inner();
      EXPECT_EQ(task.spline(shape.order, shape.s_type, nullptr, shape.boundaries[0], kGiven, inner,
                            !inner  ? nullptr
                            : knots ? kKnots
                                    : kGiven),
                QOR_DF_OK);
      EXPECT_EQ(kernel_of<Real>(shape.kind)(task, 0, 0, nullptr),
                has_values ? coefficients : QOR_DF_NULL_Y);
    }
    for (const int64_t order : {2, 3, 4}) evaluate(order, 0, 0, nullptr, coefficients);
    evaluate(3, 1, 1, kKnots, coefficients);
    for (const int64_t type : {6, 7, 8}) evaluate(0, type, 0, nullptr, values);
  }
};
TYPED_TEST_SUITE(MissingArrays, Precisions);

// Arrays of one function after the other, of which some never came.
TYPED_TEST(MissingArrays, OfSomeFunctions) {
  struct Given {
    std::vector<int64_t> entries;
    bool all;
  };
  for (const Given& given : {Given{{}, false},
                             {{0}, false},
                             {{1}, false},
                             {{2}, false},
                             {{0, 1}, false},
                             {{1, 2}, false},
                             {{0, 2}, false},
                             {{2, 1, 0}, true}}) {
    SCOPED_TRACE(testing::PrintToString(given.entries));
    for (const int64_t hint : {128, 16}) {
      Task<TypeParam> values(kPoints, this->kX, 0), coefficients(kPoints, this->kX, 0);
      for (DFTask* task : {static_cast<DFTask*>(values), static_cast<DFTask*>(coefficients)}) {
        this->set(task, QOR_DF_NY, kFunctions);
        this->set(task, QOR_DF_Y_HINT, hint);
        this->set(task, QOR_DF_SCOEFF_HINT, hint);
      }
      this->set_entries(values, QOR_DF_Y, given.entries);
      this->set_entries(values, QOR_DF_SCOEFF, {0, 1, 2});
      this->check(values, given.all, true);
      this->set_entries(coefficients, QOR_DF_Y, {0, 1, 2});
      this->set_entries(coefficients, QOR_DF_SCOEFF, given.entries);
      this->check(coefficients, true, given.all);
    }
  }
}

// Tables that were laid out under other hints and for other numbers of functions.
TYPED_TEST(MissingArrays, AfterEditsOfHintsAndNumbers) {
  struct Change {
    int64_t yhint, scoeffhint;  // of the tables
    int64_t code, value;        // edited then
    bool values, coefficients;  // of all functions are there
  };
  for (const Change& change : {Change{128, 0, QOR_DF_Y_HINT, 128, false, true},
                               {128, 0, QOR_DF_Y_HINT, 16, false, true},
                               {128, 0, QOR_DF_Y_HINT, 32, true, true},
                               {32, 0, QOR_DF_Y_HINT, 0, false, true},
                               {32, 0, QOR_DF_Y_HINT, 128, false, true},
                               {0, 0, QOR_DF_Y_HINT, 32, true, true},
                               {0, 128, QOR_DF_SCOEFF_HINT, 16, true, false},
                               {0, 128, QOR_DF_SCOEFF_HINT, 128, true, false},
                               {0, 32, QOR_DF_SCOEFF_HINT, 0, true, true},
                               {0, 0, QOR_DF_NY, kFunctions + 1, false, false},
                               {0, 0, QOR_DF_NY, 100000, false, false},
                               {128, 128, QOR_DF_NY, 1, true, true},
                               {32, 0, QOR_DF_NY, kFunctions + 1, true, false},
                               {32, 0, QOR_DF_NY, kFunctions - 1, true, true}}) {
    SCOPED_TRACE(testing::Message() << change.yhint << " " << change.scoeffhint << " code "
                                    << change.code << " value " << change.value);
    const Task<TypeParam> task(kPoints, this->kX, 0, kFunctions, this->y, change.yhint);
    ASSERT_EQ(task.spline(4, 5, this->c, 2, nullptr, 0, nullptr, change.scoeffhint), QOR_DF_OK);
    this->set(task, change.code, change.value);
    if (change.code == QOR_DF_NY && change.values != change.coefficients) {
      // The table of coefficients grows with what is set; the last one stays.
      this->check(task, change.values, false);
      this->set_entries(task, QOR_DF_SCOEFF, {change.value - 1});
      this->check(task, change.values, true);
    } else {
      this->check(task, change.values, change.coefficients);
    }
  }
}

}  // namespace
}  // namespace qor::test
