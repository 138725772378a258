// Tasks under random sequences of edits, sound and hostile: whatever is then constructed, searched,
// interpolated or integrated ends with a status, and with success only where the arrays are there.
// The seed is fixed; the sanitizers see what a status does not tell.

#include <algorithm>
#include <limits>
#include <map>
#include <random>

#include "fitting/task.h"
#include "tests/fitting/spline_case.h"

namespace qor::test {
namespace {

// What the editors are given. The caller's arrays hold as much as the largest numbers ask for.
constexpr int64_t kMost = 24;
constexpr int64_t kNumbers[] = {INT64_MIN, -7, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 16, kMost};
constexpr int64_t kTables[] = {QOR_DF_Y, QOR_DF_SCOEFF};
constexpr int64_t kPartitions[] = {0, 1, 2, 4};
constexpr int64_t kStorages[] = {0, 16, 32, 128};
constexpr int64_t kHints[] = {0, 1, 2, 4, 16, 32, 64, 128, 256, 512, -1, INT64_MAX};
constexpr int64_t kBoundaries[] = {0, 1, 2, 12, 24, 36, 48, 64, 128, 3, -1, INT64_MAX};

struct Random {
  std::mt19937 engine{7};

  int64_t below(int64_t end) { return static_cast<int64_t>(engine()) % end; }
  bool once_in(int64_t count) { return below(count) == 0; }
  template <class Values>
  auto one_of(const Values& values) {
    return values[static_cast<size_t>(below(static_cast<int64_t>(std::size(values))))];
  }
  int64_t mostly(int64_t sound) { return once_in(16) ? one_of(kNumbers) : sound; }
};

template <class Real>
int guess_wildly(const int64_t* n, const Real*, int64_t* cell, int64_t* flag, void* params, void*) {
  Random& random = *static_cast<Random*>(params);
  for (int64_t i = 0; i < *n; ++i) {
    cell[i] = random.one_of(kNumbers);
    flag[i] = random.below(2);
  }
  return random.once_in(8) ? QOR_DF_CELLS_FINAL : 0;
}
template <class Real>
int fill_values(const int64_t* n, const Real*, const int32_t*, Real* result, void*, void*) {
  std::fill_n(result, *n, Real(1));
  return 0;
}
template <class Real>
int fill_integrals(const int64_t* n, const Real*, const Real*, Real* result, void*, void*) {
  std::fill_n(result, *n, Real(1));
  return 0;
}

template <class Real>
class Attack : public BothPrecisions<Real> {
 protected:
  using A = Api<Real>;
  static constexpr size_t kTable = kMost * kMost;
  Random random;
  std::vector<Real> x, y = std::vector<Real>(kTable + 4, 1), given = std::vector<Real>(kMost, 1),
                       c = std::vector<Real>(kTable * kMost + 4), r;
  std::vector<std::vector<Real>> knots;
  std::map<int, int64_t> seen;  // statuses

  Attack() {
    for (int64_t i = 0; i < kMost; ++i) x.push_back(static_cast<Real>(i * i + i));
    for (size_t i = 5; i < y.size(); i += 3) y[i] = static_cast<Real>(i);
    for (size_t nx = 2; nx <= kMost; ++nx) {
      std::vector<Real> k = {x[0]};
      for (size_t i = 1; i < nx; ++i) k.push_back((x[i - 1] + x[i]) / 2);
      k.resize(kMost + 1, x[nx - 1]);
      knots.push_back(k);
    }
  }

  Real* maybe(Real* pointer) { return random.once_in(8) ? nullptr : pointer; }
  Real* part_of(std::vector<Real>& array) { return array.data() + random.below(4); }
  Real* conditions(DFTask* task) {
    const bool of_task = task->nx >= 2 && task->nx <= kMost && random.once_in(2);
    const int64_t nx = of_task ? task->nx : random.below(kMost - 1) + 2;
    return maybe(knots[static_cast<size_t>(nx - 2)].data());
  }
  Real* array_of(DFTask* task, int64_t code) {
    switch (code) {
      case QOR_DF_X:
        return maybe(x.data());
      case QOR_DF_Y:
        return maybe(part_of(y));
      case QOR_DF_IC:
        return conditions(task);
      case QOR_DF_BC:
        return maybe(given.data());
      default:
        return maybe(part_of(c));
    }
  }

  DFTask* make() {
    DFTask* task = nullptr;
    const bool none = random.once_in(6);
    const int status = A::new_task(
        &task, random.mostly(random.below(kMost - 1) + 2), maybe(x.data()),
        random.mostly(random.one_of(kPartitions)),
        random.mostly(none ? 0 : random.below(kMost) + 1), none ? nullptr : maybe(part_of(y)),
        random.mostly(random.one_of(kStorages)), static_cast<int32_t>(random.below(2)));
    EXPECT_EQ(task == nullptr, status != QOR_DF_OK);
    ++seen[status];
    return task;
  }

  int64_t value_for(int64_t code) {
    switch (code) {
      case QOR_DF_X_HINT:
      case QOR_DF_Y_HINT:
      case QOR_DF_SCOEFF_HINT:
        return random.one_of(kHints);
      case QOR_DF_BC_TYPE:
        return random.one_of(kBoundaries);
      default:
        return random.one_of(kNumbers);
    }
  }

  int edit(DFTask* task) {
    const int64_t code = random.mostly(random.below(QOR_DF_CHECK - QOR_DF_NX + 1) + QOR_DF_NX);
    const int64_t pointer = random.mostly(random.below(5) + 1);
    const int64_t table = random.mostly(random.one_of(kTables));
    switch (random.below(6)) {
      case 0:
        return A::edit_spline(task, random.mostly(random.below(5)), random.mostly(random.below(10)),
                              random.one_of(kBoundaries), maybe(given.data()), random.below(3),
                              conditions(task), maybe(part_of(c)), random.one_of(kHints));
      case 1:
        return A::edit_pointer(task, pointer, array_of(task, pointer));
      case 2:
        return A::edit_entry(task, table, random.mostly(random.below(kMost)),
                             array_of(task, table));
      case 3: {
        int status = QOR_DF_OK;
        for (int64_t i = 0; i < task->ny && status == QOR_DF_OK; ++i) {
          status = A::edit_entry(task, table, i, array_of(task, table));
        }
        return status;
      }
      default:
        return qor_df_kernel_iEditVal(task, code, value_for(code));
    }
  }

  // Whether the task tells an array for each of its functions.
  static bool complete(DFTask* task, int64_t code) {
    if (code == QOR_DF_Y && task->yhint == QOR_DF_INTERLEAVED) {
      void* first = nullptr;
      EXPECT_EQ(A::query_pointer(task, code, &first), QOR_DF_OK);
      return first != nullptr || task->ny == 0;
    }
    for (int64_t i = 0; i < task->ny; ++i) {
      if (entry_of(task, code, i) == nullptr) return false;
    }
    return true;
  }

  // A status tells the truth about the arrays that a call needs.
  void check(DFTask* task, int status, bool needs_values, bool needs_coefficients) {
    ++seen[status];
    const bool values = !needs_values || complete(task, QOR_DF_Y);
    const bool coefficients = !needs_coefficients || complete(task, QOR_DF_SCOEFF);
    EXPECT_TRUE(status != QOR_DF_OK || (values && coefficients));
    EXPECT_TRUE(status != QOR_DF_NULL_Y || !values);
    EXPECT_TRUE(status != QOR_DF_NULL_SCOEFF || (values && !coefficients));
  }

  void use(DFTask* task);
};
TYPED_TEST_SUITE(Attack, Precisions);

// Sites, cells and hints of all kinds; what reads them is chosen by the task's order and type.
template <class Real>
void Attack<Real>::use(DFTask* task) {
  for (const SplineShape& shape : spline_shapes()) {
    check(task, kernel_of<Real>(shape.kind)(task, 0, 0, nullptr), true, true);
  }
  constexpr Real inf = std::numeric_limits<Real>::infinity();
  const Real site[9] = {x[1], x[0], -1, Real(2.5), inf - inf, x[5], inf, 1000, -inf};
  const Real hint[5] = {0, static_cast<Real>(random.below(3)), 0, 0, 5};
  const Real* data_hint = random.once_in(3) ? hint : nullptr;
  int32_t cell[9];
  for (int32_t& k : cell) k = static_cast<int32_t>(random.one_of(kNumbers));
  int64_t wanted[5];
  for (int64_t& flag : wanted) flag = random.below(2);
  const int64_t nsite = random.below(9), hint_of_sites = random.one_of(kHints);
  const int64_t layout = random.once_in(2) ? 0 : random.one_of(kHints);
  const auto search = random.once_in(3) ? guess_wildly<Real> : nullptr;
  const auto values = [&] { return random.once_in(3) ? fill_values<Real> : nullptr; };
  const auto integrals = [&] { return random.once_in(3) ? fill_integrals<Real> : nullptr; };
  r.resize(static_cast<size_t>(9 * 5 * (task->ny + 1)));

  const bool of_values = task->s_order == 0 && task->s_type >= 6 && task->s_type <= 8;
  const bool of_coefficients = task->s_order > 0;
  ++seen[A::search(task, 0, nsite, site, hint_of_sites, data_hint, cell, search, &random, nullptr)];
  check(task,
        A::interpolate(task, random.below(5), 0, nsite, site, hint_of_sites, random.below(6),
                       random.once_in(4) ? nullptr : wanted, data_hint, r.data(), layout, cell,
                       values(), nullptr, values(), nullptr, values(), nullptr, search, &random,
                       nullptr),
        of_values, of_coefficients);
  check(task,
        A::integrate(task, 0, nsite, site, hint_of_sites, site + 1, 0, data_hint, nullptr, r.data(),
                     layout, integrals(), nullptr, integrals(), nullptr, integrals(), nullptr,
                     search, &random, nullptr),
        of_values, of_coefficients);
}

TYPED_TEST(Attack, EndsWithStatuses) {
  for (int round = 0; round < 4000; ++round) {
    DFTask* task = this->make();
    for (int step = 0; task != nullptr && step < 12; ++step) {
      ++this->seen[this->edit(task)];
      this->use(task);
      ASSERT_FALSE(this->HasFailure()) << round << " " << step;
    }
    qor_df_kernel_DeleteTask(&task);
  }
  // All that the arrays of a task can lead to was met.
  for (const int status : {QOR_DF_OK,
                           QOR_DF_BAD_NX,
                           QOR_DF_NULL_X,
                           QOR_DF_BAD_X_HINT,
                           QOR_DF_BAD_NY,
                           QOR_DF_NULL_Y,
                           QOR_DF_BAD_Y_HINT,
                           QOR_DF_BAD_TYPE,
                           QOR_DF_BAD_IC,
                           QOR_DF_BAD_IC_TYPE,
                           QOR_DF_BAD_BC_TYPE,
                           QOR_DF_NULL_BC,
                           QOR_DF_BAD_CODE,
                           QOR_DF_NULL_SCOEFF,
                           QOR_DF_NOT_PERIODIC,
                           QOR_DF_BAD_INDEX,
                           QOR_DF_BAD_R_HINT,
                           QOR_DF_NOT_A_BREAKPOINT,
                           QOR_DF_LOOKUP_DERIVATIVES,
                           QOR_DF_BAD_DATA_HINT}) {
    EXPECT_GT(this->seen[status], 20) << status;
  }
}

}  // namespace
}  // namespace qor::test
