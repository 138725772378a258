// Tasks and editors: statuses, what is stored, the tables that a task owns.

#include <array>
#include <cmath>

#include "fitting/task.h"
#include "tests/fitting/api.h"
#include "tests/support/services_interposer.h"

namespace qor::test {
namespace {

template <class Real>
class Tasks : public BothPrecisions<Real> {};
TYPED_TEST_SUITE(Tasks, Precisions);

TYPED_TEST(Tasks, ConstructorChecksInOrder) {
  using Real = TypeParam;
  const Real v[4] = {0, 1, 2, 3};
  struct Case {
    int64_t nx;
    const Real* x;
    int64_t xhint, ny;
    const Real* y;
    int64_t yhint;
    int status;
  };
  // Each row fails the check that it names and all behind it.
  const Case cases[] = {
      {1, nullptr, 3, 1, nullptr, 8, QOR_DF_BAD_NX},
      {2, nullptr, 3, 1, nullptr, 8, QOR_DF_NULL_X},
      {2, v, 3, 1, nullptr, 8, QOR_DF_BAD_X_HINT},
      {2, v, 1, 1, nullptr, 8, QOR_DF_NULL_Y},
      {2, v, 1, 0, v, 8, QOR_DF_BAD_NY},
      {2, v, 2, 1, v, 8, QOR_DF_BAD_Y_HINT},
      {2, v, 4, INT64_MAX / 2, v, 0, QOR_DF_NO_MEMORY},
      {2, v, 4, -1, v, 0, QOR_DF_NO_MEMORY},
  };
  const long before = live_blocks();
  for (const Case& c : cases) {
    DFTask* task = nullptr;
    EXPECT_EQ(Api<Real>::new_task(&task, c.nx, c.x, c.xhint, c.ny, c.y, c.yhint, 0), c.status);
    EXPECT_EQ(task, nullptr);
  }
  EXPECT_EQ(Api<Real>::new_task(nullptr, 2, v, 0, 0, nullptr, 0, 0), QOR_DF_NULL_TASK);
  EXPECT_EQ(live_blocks(), before);
}

TYPED_TEST(Tasks, NullAndInvalidTasks) {
  using A = Api<TypeParam>;
  TypeParam v[2] = {0, 1};
  void* read;
  DFTask* none = nullptr;
  EXPECT_EQ(qor_df_kernel_DeleteTask(nullptr), QOR_DF_NULL_TASK);
  EXPECT_EQ(qor_df_kernel_DeleteTask(&none), QOR_DF_NULL_TASK);
  Task<TypeParam> task(2, v, 0);
  for (const int valid : {0, 1}) {
    static_cast<DFTask*>(task)->valid = valid;
    DFTask* given = valid != 0 ? none : static_cast<DFTask*>(task);
    const int status = valid != 0 ? QOR_DF_NULL_TASK : QOR_DF_OK;  // an invalid task is left alone
    EXPECT_EQ(A::edit_spline(given, -1, 0, 0, nullptr, 0, nullptr, nullptr, 0), status);
    EXPECT_EQ(qor_df_kernel_iEditVal(given, 99, 0), status);
    EXPECT_EQ(qor_df_kernel_iQueryVal(given, 99, nullptr), status);
    EXPECT_EQ(A::edit_pointer(given, 99, v), status);
    EXPECT_EQ(A::edit_entry(given, 99, 0, v), status);
    EXPECT_EQ(A::query_pointer(given, 99, &read), status);
    EXPECT_EQ(A::query_entry(given, 99, 0, &read), status);
  }
  for (const auto kernel : {A::linear, A::quadratic, A::natural, A::by_second, A::hermite,
                            A::bessel, A::akima, A::hyman}) {
    EXPECT_EQ(kernel(nullptr, 0, 0, nullptr), QOR_DF_NULL_TASK);
  }
  EXPECT_EQ(A::search(nullptr, 0, 0, v, 0, nullptr, nullptr, nullptr, nullptr, nullptr),
            QOR_DF_NULL_TASK);
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
  };
  const double x[3] = {0, 1, 2};
  for (const int32_t width : {0, 1}) {
    Task<double> task(3, x, 0, 0, nullptr, 0, width);
    for (const Case& c : cases) {
      for (const int64_t value : c.accepted) {
        EXPECT_EQ(qor_df_kernel_iEditVal(task, c.code, value), QOR_DF_OK) << c.code;
        int64_t read = 0x5A5A5A5A00000000;
        EXPECT_EQ(qor_df_kernel_iQueryVal(task, c.code, &read), QOR_DF_OK);
        const int64_t low = 0x5A5A5A5A00000000 | (value & 0xFFFFFFFF);
        EXPECT_EQ(read, width != 0 ? value : low) << c.code;
      }
      for (const int64_t value : c.refused) {
        EXPECT_EQ(qor_df_kernel_iEditVal(task, c.code, value), c.status) << c.code << " " << value;
      }
    }
    int64_t read;
    for (const int64_t code : {0, 1, 13, 24}) {
      EXPECT_EQ(qor_df_kernel_iEditVal(task, code, 1), QOR_DF_BAD_CODE);
      EXPECT_EQ(qor_df_kernel_iQueryVal(task, code, &read), QOR_DF_BAD_CODE);
    }
    EXPECT_EQ(qor_df_kernel_iQueryVal(task, 14, nullptr), QOR_DF_NULL_RESULT);
  }
}

TYPED_TEST(Tasks, Pointers) {
  using A = Api<TypeParam>;
  TypeParam x[3] = {0, 1, 2}, v[30] = {};
  void* read = v;
  Task<TypeParam> empty(3, x, 0);
  const std::array<int, 6> null_status = {
      0, QOR_DF_NULL_X, QOR_DF_NULL_Y, QOR_DF_BAD_IC, QOR_DF_NULL_BC, QOR_DF_NULL_SCOEFF};
  for (int64_t code = 1; code <= 5; ++code) {
    EXPECT_EQ(A::edit_pointer(empty, code, nullptr), null_status[static_cast<size_t>(code)]);
    EXPECT_EQ(A::query_pointer(empty, code, nullptr), QOR_DF_NULL_RESULT);
    EXPECT_EQ(A::query_pointer(empty, code, &read), QOR_DF_OK);
    EXPECT_EQ(read, code == 1 ? x : nullptr);
  }
  EXPECT_EQ(A::edit_pointer(empty, QOR_DF_Y, v), QOR_DF_BAD_NY);
  EXPECT_EQ(A::edit_pointer(empty, QOR_DF_SCOEFF, v), QOR_DF_BAD_NY);
  EXPECT_EQ(A::edit_pointer(empty, 6, v), QOR_DF_BAD_CODE);
  EXPECT_EQ(A::query_pointer(empty, 0, &read), QOR_DF_BAD_CODE);
  for (const int64_t code : {1, 3, 4}) {
    EXPECT_EQ(A::edit_pointer(empty, code, v + code), QOR_DF_OK);
    EXPECT_EQ(A::query_pointer(empty, code, &read), QOR_DF_OK);
    EXPECT_EQ(read, v + code);
  }
}

// Where the arrays of the functions and of their coefficients stand, by the hints.
TYPED_TEST(Tasks, TablesAreLaidOutByHint) {
  using A = Api<TypeParam>;
  TypeParam x[3] = {0, 1, 2}, y[9] = {}, c[60] = {};
  const auto entry = [&](DFTask* task, int64_t code, int64_t index) -> TypeParam* {
    void* read = y;
    EXPECT_EQ(A::query_entry(task, code, index, &read), QOR_DF_OK);
    return static_cast<TypeParam*>(read);
  };
  for (const int64_t yhint : {0, 16, 128}) {
    Task<TypeParam> task(3, x, 0, 3, y, yhint);
    for (const bool edited : {false, true}) {
      TypeParam* first = edited ? c : y;
      if (edited) {
        EXPECT_EQ(A::edit_pointer(task, QOR_DF_Y, c), QOR_DF_OK);
      }
      EXPECT_EQ(entry(task, QOR_DF_Y, 0), first);
      EXPECT_EQ(entry(task, QOR_DF_Y, 2), yhint == 128 ? nullptr : first + 6);
      EXPECT_EQ(entry(task, QOR_DF_Y, 3), nullptr);  // behind the last
    }
  }
  struct Case {
    int64_t order, type, hint, distance;
  };
  for (const Case& s : {Case{4, 5, 0, 8}, Case{3, 1, 16, 9}, Case{3, 0, 32, 6}, Case{4, 5, 128, 0},
                        Case{4, 5, 0x180, 0}}) {
    Task<TypeParam> task(3, x, 0, 3, y, 32);
    EXPECT_EQ(A::edit_spline(task, s.order, s.type, 2, nullptr, 0, nullptr, c, s.hint), QOR_DF_OK);
    for (const bool edited : {false, true}) {
      if (edited) {
        EXPECT_EQ(A::edit_pointer(task, QOR_DF_SCOEFF, c + 1), QOR_DF_OK);
      }
      TypeParam* first = edited ? c + 1 : c;
      EXPECT_EQ(entry(task, QOR_DF_SCOEFF, 0), first);
      EXPECT_EQ(entry(task, QOR_DF_SCOEFF, 2), s.distance == 0 ? nullptr : first + 2 * s.distance);
    }
  }
}

TYPED_TEST(Tasks, Entries) {
  using A = Api<TypeParam>;
  TypeParam x[3] = {0, 1, 2}, y[9] = {};
  void* read;
  Task<TypeParam> task(3, x, 0, 2, y, 32);
  EXPECT_EQ(A::edit_entry(task, 1, 9, nullptr), QOR_DF_BAD_CODE);
  EXPECT_EQ(A::edit_entry(task, 2, 9, nullptr), QOR_DF_BAD_Y_HINT);
  EXPECT_EQ(A::query_entry(task, 2, 0, &read), QOR_DF_BAD_Y_HINT);
  EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_Y_HINT, 128), QOR_DF_OK);
  for (const int64_t code : {2, 5}) {
    EXPECT_EQ(A::edit_entry(task, code, -1, nullptr), QOR_DF_BAD_INDEX);
    EXPECT_EQ(A::edit_entry(task, code, 2, y), QOR_DF_BAD_INDEX);
    EXPECT_EQ(A::edit_entry(task, code, 1, nullptr),
              code == 2 ? QOR_DF_NULL_Y : QOR_DF_NULL_SCOEFF);
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
    EXPECT_EQ(A::query_entry(task, code, 999, &read), QOR_DF_OK);
    EXPECT_EQ(read, y + 1);
  }
  EXPECT_EQ(A::query_entry(task, 2, 1, &read), QOR_DF_OK);
  EXPECT_EQ(read, y + 3);
}

TYPED_TEST(Tasks, SplineEditorStoresWhatPassed) {
  using A = Api<TypeParam>;
  TypeParam x[3] = {0, 1, 2}, y[3] = {}, v[2] = {}, c[8];
  const auto value = [](DFTask* task, int64_t code) {
    int64_t read = 0;
    EXPECT_EQ(qor_df_kernel_iQueryVal(task, code, &read), QOR_DF_OK);
    return read;
  };
  Task<TypeParam> task(3, x, 0, 1, y);
  EXPECT_EQ(A::edit_spline(task, -1, -1, 12, nullptr, 1, nullptr, c, 7), QOR_DF_BAD_ORDER);
  EXPECT_EQ(A::edit_spline(task, 4, -1, 12, nullptr, 1, nullptr, c, 7), QOR_DF_BAD_TYPE);
  EXPECT_EQ(value(task, QOR_DF_ORDER), 4);
  EXPECT_EQ(A::edit_spline(task, 3, 8, 12, nullptr, 1, nullptr, c, 7), QOR_DF_NULL_BC);
  EXPECT_EQ(value(task, QOR_DF_TYPE), 8);
  EXPECT_EQ(value(task, QOR_DF_BC_TYPE), 0);
  EXPECT_EQ(A::edit_spline(task, 3, 8, 64, nullptr, 1, nullptr, c, 7), QOR_DF_BAD_IC);
  EXPECT_EQ(value(task, QOR_DF_BC_TYPE), 64);
  EXPECT_EQ(A::edit_spline(task, 3, 8, 1, nullptr, 0, v, c, 7), QOR_DF_BAD_IC_TYPE);
  EXPECT_EQ(A::edit_spline(task, 3, 8, 12, v, 9, v, c, 7), QOR_DF_OK);
  EXPECT_EQ(value(task, QOR_DF_IC_TYPE), 9);
  EXPECT_EQ(value(task, QOR_DF_SCOEFF_HINT), 7);
  Task<TypeParam> none(3, x, 0);
  EXPECT_EQ(A::edit_spline(none, 4, 5, 1, nullptr, 0, nullptr, c, 32), QOR_DF_BAD_NY);
  EXPECT_EQ(value(none, QOR_DF_SCOEFF_HINT), 0);
}

// The lookup table by its meaning: no breakpoint of bin k comes before low or behind high of it.
TYPED_TEST(Tasks, LookupTable) {
  using Real = TypeParam;
  struct Size {
    int64_t nx, bins;
  };
  for (const Size s : {Size{2, 16}, Size{300, 18}, Size{16384, 1024}, Size{32000, 1024}}) {
    std::vector<Real> x;
    for (int64_t i = 0; i < s.nx; ++i) {
      x.push_back(Real(0.25) * static_cast<Real>(i) + static_cast<Real>(i % 7) / 32);
    }
    Task<Real> task(s.nx, x.data(), 0);
    const DFTask& record = *static_cast<DFTask*>(task);
    ASSERT_EQ(record.lut_size, s.bins);
    const Real scale = sizeof(Real) == 8 ? static_cast<Real>(record.lut_scale.d)
                                         : static_cast<Real>(record.lut_scale.s);
    EXPECT_EQ(scale, static_cast<Real>(s.bins) / (x.back() - x.front()));
    for (int64_t i = 0; i < s.nx; ++i) {
      const auto bin = static_cast<int64_t>((x[static_cast<size_t>(i)] - x[0]) * scale);
      EXPECT_LE(record.lut[bin].low, i);
      if (bin < s.bins) {
        EXPECT_GE(record.lut[bin].high, i);
      }
    }
    for (int64_t k = 0; k < s.bins; ++k) {
      const auto& bin = record.lut[k];
      ASSERT_LE(bin.low, bin.high);
      EXPECT_LE((x[bin.low] - x[0]) * scale, static_cast<Real>(k) + (k == 0 ? 1 : 0));
      if (bin.high < s.nx - 1) {
        EXPECT_GE((x[bin.high] - x[0]) * scale, static_cast<Real>(k + 1));
      }
    }
    EXPECT_EQ(record.lut[s.bins].low, record.lut[s.bins - 1].low);
    EXPECT_EQ(record.lut[s.bins].high, static_cast<uint32_t>(s.nx - 1));
  }
}

TYPED_TEST(Tasks, LookupTableComesWithTheHint) {
  using Real = TypeParam;
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  std::vector<Real> x(300);
  for (size_t i = 0; i < x.size(); ++i) x[i] = static_cast<Real>(i);
  Task<Real> task(300, x.data(), QOR_DF_UNIFORM_PARTITION);
  const DFTask& record = *static_cast<DFTask*>(task);
  EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_X_HINT, 2), QOR_DF_OK);
  EXPECT_EQ(record.lut, nullptr);
  EXPECT_EQ(qor_df_kernel_iEditVal(task, QOR_DF_X_HINT, 1), QOR_DF_OK);
  EXPECT_EQ(record.lut_size, 18);
  // Breakpoints that are no numbers, or out of order, stay within the table.
  for (const Real bad : {nan, Real(-1e30), Real(1e30), std::numeric_limits<Real>::infinity()}) {
    for (const size_t at : {size_t{0}, size_t{150}, size_t{299}}) {
      auto damaged = x;
      damaged[at] = bad;
      Task<Real> other(300, damaged.data(), 0);
    }
  }
}

}  // namespace
}  // namespace qor::test
