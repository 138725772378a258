// Tasks and editors: statuses, what is stored, the tables that a task owns.

#include <algorithm>
#include <cmath>
#include <limits>

#include "fitting/task.h"
#include "tests/fitting/spline_case.h"
#include "tests/support/services_interposer.h"

namespace qor::test {
namespace {

// A value that a task holds.
int64_t value(DFTask* task, int64_t code) {
  int64_t read = 0;
  EXPECT_EQ(qor_df_kernel_iQueryVal(task, code, &read), QOR_DF_OK);
  return read;
}

template <class Real>
class Tasks : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Tasks, Precisions);

// A call fails the check that its status names and all behind it.
TYPED_TEST(Tasks, ConstructorChecksInOrder) {
  const TypeParam v[2] = {0, 1}, *null = nullptr;
  const long before = live_blocks();
  DFTask* task = nullptr;
  const auto make = [&](int64_t nx, const TypeParam* x, int64_t xhint, int64_t ny,
                        const TypeParam* y, int64_t yhint) {
    return Api<TypeParam>::new_task(&task, nx, x, xhint, ny, y, yhint, 0);
  };
  EXPECT_EQ(make(1, null, 3, 1, null, 8), QOR_DF_BAD_NX);
  EXPECT_EQ(make(2, null, 3, 1, null, 8), QOR_DF_NULL_X);
  EXPECT_EQ(make(2, v, 3, 1, null, 8), QOR_DF_BAD_X_HINT);
  EXPECT_EQ(make(2, v, 1, 1, null, 8), QOR_DF_NULL_Y);
  EXPECT_EQ(make(2, v, 1, 0, v, 8), QOR_DF_BAD_NY);
  EXPECT_EQ(make(2, v, 2, 1, v, 8), QOR_DF_BAD_Y_HINT);
  EXPECT_EQ(make(2, v, 1, -1, v, 8), QOR_DF_BAD_NY);
  EXPECT_EQ(task, nullptr);
  EXPECT_EQ(Api<TypeParam>::new_task(nullptr, 2, v, 0, 0, null, 0, 0), QOR_DF_NULL_TASK);
  EXPECT_EQ(qor_df_kernel_DeleteTask(nullptr), QOR_DF_NULL_TASK);
  EXPECT_EQ(qor_df_kernel_DeleteTask(&task), QOR_DF_NULL_TASK);
  EXPECT_EQ(make(2, v, 0, 1, v, 0), QOR_DF_OK);
  EXPECT_EQ(qor_df_kernel_DeleteTask(&task), QOR_DF_OK);
  EXPECT_EQ(task, nullptr);
  EXPECT_EQ(live_blocks(), before);
}

TYPED_TEST(Tasks, NullAndInvalidTasks) {
  using A = Api<TypeParam>;
  TypeParam v[2] = {0, 1};
  void* read;
  const auto check = [&](DFTask* task, int status) {
    EXPECT_EQ(A::edit_spline(task, -1, 0, 0, nullptr, 0, nullptr, nullptr, 0), status);
    EXPECT_EQ(qor_df_kernel_iEditVal(task, 99, 0), status);
    EXPECT_EQ(qor_df_kernel_iQueryVal(task, 99, nullptr), status);
    EXPECT_EQ(A::edit_pointer(task, 99, v), status);
    EXPECT_EQ(A::edit_entry(task, 99, 0, v), status);
    EXPECT_EQ(A::query_pointer(task, 99, &read), status);
    EXPECT_EQ(A::query_entry(task, 99, 0, &read), status);
  };
  check(nullptr, QOR_DF_NULL_TASK);
  const Task<TypeParam> task(2, v, 0);
  static_cast<DFTask*>(task)->valid = 0;
  check(task, QOR_DF_OK);  // left alone
  for (const SplineShape& shape : spline_shapes()) {
    EXPECT_EQ(kernel_of<TypeParam>(shape.kind)(nullptr, 0, 0, nullptr), QOR_DF_NULL_TASK);
  }
  EXPECT_EQ(Task<TypeParam>().search({}, nullptr), QOR_DF_NULL_TASK);
}

TEST(Editors, Values) {
  struct Case {
    int64_t code;
    std::vector<int64_t> accepted, refused;
    int status;
  };
  const Case cases[] = {
      {14, {2, 3}, {1, 0, -5}, QOR_DF_BAD_NX},
      {15, {0, 2, 4}, {3, 5, -1, 8}, QOR_DF_BAD_X_HINT},
      {16, {1, 5}, {0, -1}, QOR_DF_BAD_NY},
      {17, {0, 16, 32, 128}, {1, 64, 256}, QOR_DF_BAD_Y_HINT},
      {18, {0, 4, 17}, {-1}, QOR_DF_BAD_ORDER},
      {19, {0, 1, 2, 3, 4, 5, 9}, {-1, 6, 7, 8, 10}, QOR_DF_BAD_TYPE},
      {20, {0, 1, 2, 8, 11, 24, -1}, {3, 4, 7, 16}, QOR_DF_BAD_IC_TYPE},
      {21, {0, 1000}, {-1}, QOR_DF_BAD_BC_TYPE},
      {22, {0, 16, 32, 128}, {1, 64}, QOR_DF_BAD_SCOEFF_HINT},
      {23, {0, 1}, {2, -1}, QOR_DF_BAD_CHECK},
      {0, {}, {1}, QOR_DF_BAD_CODE},
      {13, {}, {1}, QOR_DF_BAD_CODE},
      {24, {}, {1}, QOR_DF_BAD_CODE},
  };
  const double x[3] = {0, 1, 2};
  for (const int32_t width : {0, 1}) {
    const Task<double> task(3, x, 0, 0, nullptr, 0, width);
    for (const Case& c : cases) {
      SCOPED_TRACE(c.code);
      int64_t read = 0x5A5A5A5A00000000;
      for (const int64_t value : c.accepted) {
        EXPECT_EQ(qor_df_kernel_iEditVal(task, c.code, value), QOR_DF_OK);
        EXPECT_EQ(qor_df_kernel_iQueryVal(task, c.code, &read), QOR_DF_OK);
        EXPECT_EQ(read, width != 0 ? value : 0x5A5A5A5A00000000 | (value & 0xFFFFFFFF));
      }
      for (const int64_t value : c.refused) {
        EXPECT_EQ(qor_df_kernel_iEditVal(task, c.code, value), c.status) << value;
      }
      EXPECT_EQ(qor_df_kernel_iQueryVal(task, c.code, &read),
                c.accepted.empty() ? QOR_DF_BAD_CODE : QOR_DF_OK);
      EXPECT_EQ(qor_df_kernel_iQueryVal(task, c.code, nullptr), QOR_DF_NULL_RESULT);
    }
  }
}

TYPED_TEST(Tasks, Pointers) {
  using A = Api<TypeParam>;
  TypeParam x[3] = {0, 1, 2}, v[30] = {};
  void* read = v;
  const Task<TypeParam> task(3, x, 0);
  const int null[5] = {QOR_DF_NULL_X, QOR_DF_NULL_Y, QOR_DF_BAD_IC, QOR_DF_NULL_BC,
                       QOR_DF_NULL_SCOEFF};
  for (int64_t code = 1; code <= 5; ++code) {
    const bool table = code == QOR_DF_Y || code == QOR_DF_SCOEFF;  // of no function
    EXPECT_EQ(A::edit_pointer(task, code, nullptr), null[code - 1]);
    EXPECT_EQ(A::query_pointer(task, code, nullptr), QOR_DF_NULL_RESULT);
    EXPECT_EQ(A::query_pointer(task, code, &read), QOR_DF_OK);
    EXPECT_EQ(read, code == 1 ? x : nullptr);
    EXPECT_EQ(A::edit_pointer(task, code, v + code), table ? QOR_DF_BAD_NY : QOR_DF_OK);
    EXPECT_EQ(A::query_pointer(task, code, &read), QOR_DF_OK);
    EXPECT_EQ(read, table ? nullptr : v + code);
  }
  EXPECT_EQ(A::edit_pointer(task, 6, v), QOR_DF_BAD_CODE);
  EXPECT_EQ(A::query_pointer(task, 0, &read), QOR_DF_BAD_CODE);
}

// Where the arrays of three functions and of their coefficients stand, by the hints.
TYPED_TEST(Tasks, TablesAreLaidOutByHint) {
  using A = Api<TypeParam>;
  TypeParam x[3] = {0, 1, 2}, y[9] = {}, c[60] = {};
  const auto expect_table = [](DFTask* task, int64_t code, const TypeParam* first, int distance) {
    EXPECT_EQ(entry_of(task, code, 0), first);
    EXPECT_EQ(entry_of(task, code, 2), distance == 0 ? nullptr : first + 2 * distance);
    EXPECT_EQ(entry_of(task, code, 3), nullptr);  // behind the last
  };
  for (const int64_t yhint : {0, 16, 128}) {
    const Task<TypeParam> task(3, x, 0, 3, y, yhint);
    expect_table(task, QOR_DF_Y, y, yhint == 128 ? 0 : 3);
    EXPECT_EQ(A::edit_pointer(task, QOR_DF_Y, c), QOR_DF_OK);
    expect_table(task, QOR_DF_Y, c, yhint == 128 ? 0 : 3);
  }
  const Task<TypeParam> task(3, x, 0, 3, y, 32);
  const auto expect_coefficients = [&](int64_t order, int64_t type, int64_t hint, int distance) {
    EXPECT_EQ(task.spline(order, type, c, 2, nullptr, 0, nullptr, hint), QOR_DF_OK);
    expect_table(task, QOR_DF_SCOEFF, c, distance);
    EXPECT_EQ(A::edit_pointer(task, QOR_DF_SCOEFF, c + 1), QOR_DF_OK);
    expect_table(task, QOR_DF_SCOEFF, c + 1, distance);
  };
  expect_coefficients(4, 5, 0, 8);
  expect_coefficients(3, 1, 16, 9);
  expect_coefficients(3, 0, 32, 6);
  expect_coefficients(4, 5, 128, 0);
  expect_coefficients(4, 5, 0x180, 0);
}

TYPED_TEST(Tasks, Entries) {
  using A = Api<TypeParam>;
  TypeParam x[3] = {0, 1, 2}, y[9] = {};
  void* read;
  const Task<TypeParam> task(3, x, 0, 2, y, 32);
  EXPECT_EQ(A::edit_entry(task, 1, 9, nullptr), QOR_DF_BAD_CODE);
  EXPECT_EQ(A::edit_entry(task, 2, 9, nullptr), QOR_DF_BAD_Y_HINT);
  EXPECT_EQ(A::query_entry(task, 2, 0, &read), QOR_DF_BAD_Y_HINT);
  EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_Y_HINT, 128), QOR_DF_OK);
  for (const int64_t code : {2, 5}) {
    const int null = code == 2 ? QOR_DF_NULL_Y : QOR_DF_NULL_SCOEFF;
    EXPECT_EQ(A::edit_entry(task, code, -1, nullptr), QOR_DF_BAD_INDEX);
    EXPECT_EQ(A::edit_entry(task, code, 2, y), QOR_DF_BAD_INDEX);
    EXPECT_EQ(A::edit_entry(task, code, 1, nullptr), null);
    EXPECT_EQ(A::query_entry(task, code, -1, &read), QOR_DF_BAD_INDEX);
    EXPECT_EQ(A::query_entry(task, code, 3, &read), QOR_DF_BAD_INDEX);
    EXPECT_EQ(A::query_entry(task, code, 0, nullptr), QOR_DF_NULL_RESULT);
    EXPECT_EQ(A::query_entry(task, 3, 0, &read), QOR_DF_BAD_CODE);
  }
  // Functions that came by an edit have room, and those that were set stay.
  EXPECT_EQ(A::edit_entry(task, 2, 1, y + 3), QOR_DF_OK);
  EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_NY, 1000), QOR_DF_OK);
  for (const int64_t code : {2, 5}) {
    EXPECT_EQ(A::edit_entry(task, code, 999, y + 1), QOR_DF_OK);
    EXPECT_EQ(entry_of(task, code, 999), y + 1);
  }
  EXPECT_EQ(entry_of(task, 2, 1), y + 3);
}

TYPED_TEST(Tasks, SplineEditorStoresWhatPassed) {
  TypeParam x[3] = {0, 1, 2}, v[3] = {}, c[8];
  const Task<TypeParam> task(3, x, 0, 1, x), none(3, x, 0);
  EXPECT_EQ(task.spline(-1, -1, c, 12, nullptr, 1, nullptr, 7), QOR_DF_BAD_ORDER);
  EXPECT_EQ(task.spline(4, -1, c, 12, nullptr, 1, nullptr, 7), QOR_DF_BAD_TYPE);
  EXPECT_EQ(value(task, QOR_DF_ORDER), 4);
  EXPECT_EQ(task.spline(3, 8, c, 12, nullptr, 1, nullptr, 7), QOR_DF_NULL_BC);
  EXPECT_EQ(value(task, QOR_DF_TYPE), 8);
  EXPECT_EQ(value(task, QOR_DF_BC_TYPE), 0);
  EXPECT_EQ(task.spline(3, 8, c, 64, nullptr, 1, nullptr, 7), QOR_DF_BAD_IC);
  EXPECT_EQ(value(task, QOR_DF_BC_TYPE), 64);
  EXPECT_EQ(task.spline(3, 8, c, 1, nullptr, 0, v, 7), QOR_DF_BAD_IC_TYPE);
  EXPECT_EQ(task.spline(3, 8, c, 12, v, 9, v, 7), QOR_DF_OK);
  EXPECT_EQ(value(task, QOR_DF_IC_TYPE), 9);
  EXPECT_EQ(value(task, QOR_DF_SCOEFF_HINT), 7);
  EXPECT_EQ(none.spline(4, 5, c, 1, nullptr, 0, nullptr, 32), QOR_DF_BAD_NY);
  EXPECT_EQ(value(none, QOR_DF_SCOEFF_HINT), 0);
}

// The lookup table, which comes with the hint, by its meaning: no breakpoint of bin k comes before
// low or behind high of it. Breakpoints that are no numbers, or out of order, stay within it.
TYPED_TEST(Tasks, LookupTable) {
  using Real = TypeParam;
  for (const auto& [nx, bins] : {std::pair{2, 16}, {300, 18}, {16384, 1024}, {32000, 1024}}) {
    std::vector<Real> x;
    for (int i = 0; i < nx; ++i)
      x.push_back(static_cast<Real>(i) / 4 + static_cast<Real>(i % 7) / 32);
    const Task<Real> task(nx, x.data(), QOR_DF_UNIFORM_PARTITION);
    const DFTask& record = *static_cast<DFTask*>(task);
    EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_X_HINT, 2), QOR_DF_OK);
    EXPECT_EQ(record.lut, nullptr);
    EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_X_HINT, 1), QOR_DF_OK);
    ASSERT_EQ(record.lut_size, bins);
    const Real scale = static_cast<Real>(bins) / (x.back() - x.front());
    EXPECT_EQ(sizeof(Real) == 8 ? record.lut_scale.d : double{record.lut_scale.s}, double{scale});
    const auto bin_of = [&](size_t i) { return static_cast<int>((x[i] - x[0]) * scale); };
    for (int k = 0; k < bins; ++k) {
      const auto [low, high] = record.lut[k];
      EXPECT_TRUE(low == 0 || (bin_of(low) < k && bin_of(low + 1) >= k)) << k;
      EXPECT_TRUE((high + 1u == x.size() || bin_of(high) > k) && bin_of(high - 1) <= k) << k;
    }
    EXPECT_EQ(record.lut[bins].low, record.lut[bins - 1].low);
    EXPECT_EQ(record.lut[bins].high, record.lut[bins - 1].high);
    const Real inf = std::numeric_limits<Real>::infinity();
    for (const Real bad : {inf - inf, inf, Real(-1e30), Real(1e30)}) {
      for (const size_t at : {size_t{0}, x.size() / 2, x.size() - 1}) {
        auto damaged = x;
        damaged[at] = bad;
        const Task<Real> other(nx, damaged.data(), 0);
      }
    }
  }
}

}  // namespace
}  // namespace qor::test
