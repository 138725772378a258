// The cases: ours, GSL and Boost.Math on the same data.

#include "bench/fitting/cases.h"

#include <gsl/gsl_spline.h>

#include <algorithm>
#include <boost/math/interpolators/cardinal_cubic_b_spline.hpp>
#include <random>
#include <string>
#include <vector>

#include "qor/fitting.h"

namespace qor::bench {
namespace {

enum class Sites { sorted, random, uniform };
enum class Partition { non_uniform, uniform };

// A natural spline over `cells` cells and sites inside its partition.
struct Workload {
  int64_t nx, functions;
  std::vector<double> x, y, c, site, r;
  std::vector<int32_t> cell;
  DFTask* task = nullptr;

  Workload(int64_t cells, int64_t ny, Partition partition, Sites kind, int64_t nsite)
      : nx(cells + 1), functions(ny) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> unit(0, 1);
    const bool uniform = partition == Partition::uniform;
    for (int64_t i = 0; i < nx; ++i) {
      x.push_back(static_cast<double>(i) + (uniform ? 0 : 0.5 * unit(random)));
    }
    for (int64_t k = 0; k < nx * ny; ++k) y.push_back(unit(random));
    c.resize(static_cast<size_t>(4 * cells * ny));
    const double width = x.back() - x.front();
    for (int64_t i = 0; i < nsite; ++i) site.push_back(x.front() + width * unit(random));
    if (kind != Sites::random) std::sort(site.begin(), site.end());
    r.resize(static_cast<size_t>(nsite * ny));
    cell.resize(static_cast<size_t>(nsite));
    ends_[0] = x.front();
    ends_[1] = x.back();
    qor_df_kernel_dNewTask1D(&task, nx, uniform ? ends_ : x.data(),
                             uniform ? QOR_DF_UNIFORM_PARTITION : QOR_DF_NON_UNIFORM, ny, y.data(),
                             0, 1);
    qor_df_kernel_dEditPPSpline1D(task, 4, 5, QOR_DF_BC_FREE, nullptr, 0, nullptr, c.data(), 0);
    construct();
    if (kind == Sites::uniform) site = {x.front(), x.back()};
  }
  ~Workload() { qor_df_kernel_DeleteTask(&task); }
  Workload(const Workload&) = delete;
  Workload& operator=(const Workload&) = delete;

  void construct() { qor_df_kernel_dDFNaturalCubicSpline1D(task, 0, 0, nullptr); }
  void interpolate(int64_t nsite, int64_t hint) {
    qor_df_kernel_dDFInterpolate1D(task, 0, 0, nsite, site.data(), hint, 0, nullptr, nullptr,
                                   r.data(), 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                                   nullptr, nullptr, nullptr, nullptr, nullptr);
  }

 private:
  double ends_[2];
};

int64_t hint_of(Sites kind) {
  return kind == Sites::sorted ? QOR_DF_SORTED : kind == Sites::uniform ? QOR_DF_UNIFORM_SITES : 0;
}

void count_items(benchmark::State& state, int64_t items) {
  state.SetItemsProcessed(state.iterations() * items);
}

void construct_qor(benchmark::State& state, int64_t points, int64_t functions,
                   Partition partition) {
  Workload w(points - 1, functions, partition, Sites::sorted, 1);
  for (auto _ : state) {
    w.construct();
    benchmark::ClobberMemory();
  }
  count_items(state, points * functions);
}

void construct_gsl(benchmark::State& state, int64_t points, int64_t functions) {
  Workload w(points - 1, functions, Partition::non_uniform, Sites::sorted, 1);
  const auto n = static_cast<size_t>(points);
  gsl_spline* spline = gsl_spline_alloc(gsl_interp_cspline, n);
  for (auto _ : state) {
    for (int64_t f = 0; f < functions; ++f) {
      gsl_spline_init(spline, w.x.data(), w.y.data() + f * points, n);
      benchmark::ClobberMemory();
    }
  }
  gsl_spline_free(spline);
  count_items(state, points * functions);
}

void construct_boost(benchmark::State& state, int64_t points) {
  Workload w(points - 1, 1, Partition::uniform, Sites::sorted, 1);
  for (auto _ : state) {
    boost::math::interpolators::cardinal_cubic_b_spline<double> spline(
        w.y.data(), static_cast<size_t>(points), 0.0, 1.0);
    benchmark::DoNotOptimize(spline);
  }
  count_items(state, points);
}

void evaluate_qor(benchmark::State& state, int64_t cells, Partition partition, Sites kind,
                  int64_t nsite) {
  Workload w(cells, 1, partition, kind, nsite);
  for (auto _ : state) {
    w.interpolate(nsite, hint_of(kind));
    benchmark::ClobberMemory();
  }
  count_items(state, nsite);
}

void evaluate_gsl(benchmark::State& state, int64_t cells, Partition partition, Sites kind,
                  int64_t nsite) {
  Workload w(cells, 1, partition, kind, nsite);
  gsl_spline* spline = gsl_spline_alloc(gsl_interp_cspline, static_cast<size_t>(w.nx));
  gsl_interp_accel* accelerator = gsl_interp_accel_alloc();
  gsl_spline_init(spline, w.x.data(), w.y.data(), static_cast<size_t>(w.nx));
  for (auto _ : state) {
    for (size_t i = 0; i < w.site.size(); ++i) {
      w.r[i] = gsl_spline_eval(spline, w.site[i], accelerator);
    }
    benchmark::ClobberMemory();
  }
  gsl_interp_accel_free(accelerator);
  gsl_spline_free(spline);
  count_items(state, nsite);
}

void evaluate_boost(benchmark::State& state, int64_t cells, Sites kind, int64_t nsite) {
  Workload w(cells, 1, Partition::uniform, kind, nsite);
  const boost::math::interpolators::cardinal_cubic_b_spline<double> spline(
      w.y.data(), static_cast<size_t>(w.nx), 0.0, 1.0);
  for (auto _ : state) {
    for (size_t i = 0; i < w.site.size(); ++i) w.r[i] = spline(w.site[i]);
    benchmark::ClobberMemory();
  }
  count_items(state, nsite);
}

void integrate_qor(benchmark::State& state, int64_t cells, int64_t nlim) {
  Workload w(cells, 1, Partition::non_uniform, Sites::random, nlim + 1);
  for (auto _ : state) {
    qor_df_kernel_dDFIntegrate1D(w.task, 0, nlim, w.site.data(), 0, w.site.data() + 1, 0, nullptr,
                                 nullptr, w.r.data(), 0, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, nullptr, nullptr, nullptr);
    benchmark::ClobberMemory();
  }
  count_items(state, nlim);
}

void integrate_gsl(benchmark::State& state, int64_t cells, int64_t nlim) {
  Workload w(cells, 1, Partition::non_uniform, Sites::random, nlim + 1);
  gsl_spline* spline = gsl_spline_alloc(gsl_interp_cspline, static_cast<size_t>(w.nx));
  gsl_interp_accel* accelerator = gsl_interp_accel_alloc();
  gsl_spline_init(spline, w.x.data(), w.y.data(), static_cast<size_t>(w.nx));
  for (auto _ : state) {
    for (size_t i = 0; i < static_cast<size_t>(nlim); ++i) {
      const auto [l, u] = std::minmax(w.site[i], w.site[i + 1]);
      w.r[i] = gsl_spline_eval_integ(spline, l, u, accelerator);
    }
    benchmark::ClobberMemory();
  }
  gsl_interp_accel_free(accelerator);
  gsl_spline_free(spline);
  count_items(state, nlim);
}

template <class Function, class... Arguments>
void add(const std::string& name, Function function, Arguments... arguments) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [=](benchmark::State& state) { function(state, arguments...); });
}

void register_construction() {
  for (const int64_t functions : {1, 16}) {
    const std::string name = "construct natural 10000 x " + std::to_string(functions);
    add(name + "/qor", construct_qor, int64_t{10000}, functions, Partition::non_uniform);
    add(name + "/gsl", construct_gsl, int64_t{10000}, functions);
  }
  const std::string uniform = "construct natural uniform 10000";
  add(uniform + "/qor", construct_qor, int64_t{10000}, int64_t{1}, Partition::uniform);
  add(uniform + "/gsl", construct_gsl, int64_t{10000}, int64_t{1});
  add(uniform + "/boost", construct_boost, int64_t{10000});
}

void register_evaluation(const std::string& name, int64_t cells, Partition partition, Sites kind,
                         int64_t nsite) {
  add(name + "/qor", evaluate_qor, cells, partition, kind, nsite);
  if (kind == Sites::uniform) return;
  add(name + "/gsl", evaluate_gsl, cells, partition, kind, nsite);
  if (partition == Partition::uniform) add(name + "/boost", evaluate_boost, cells, kind, nsite);
}

}  // namespace

void register_cases() {
  constexpr int64_t kMillion = 1000000, kGrowthSites = 100000;
  register_construction();
  register_evaluation("sorted 256 cells 4096", 256, Partition::non_uniform, Sites::sorted, 4096);
  register_evaluation("uniform sites 256 cells 4096", 256, Partition::non_uniform, Sites::uniform,
                      4096);
  register_evaluation("sorted 10000 cells 1e6", 10000, Partition::non_uniform, Sites::sorted,
                      kMillion);
  register_evaluation("random 10000 cells 1e6", 10000, Partition::non_uniform, Sites::random,
                      kMillion);
  register_evaluation("uniform partition sorted 10000 cells 1e6", 10000, Partition::uniform,
                      Sites::sorted, kMillion);
  register_evaluation("uniform partition random 10000 cells 1e6", 10000, Partition::uniform,
                      Sites::random, kMillion);
  add("integrate 1000 cells 1000/qor", integrate_qor, int64_t{1000}, int64_t{1000});
  add("integrate 1000 cells 1000/gsl", integrate_gsl, int64_t{1000}, int64_t{1000});
  for (int64_t power = 2, cells = 100; power <= 7; ++power, cells *= 10) {
    const std::string size = "1e" + std::to_string(power) + " cells";
    add("growth, bisection, " + size + "/qor", evaluate_qor, cells, Partition::non_uniform,
        Sites::random, kGrowthSites);
    add("growth, uniform partition, " + size + "/qor", evaluate_qor, cells, Partition::uniform,
        Sites::random, kGrowthSites);
  }
}

}  // namespace qor::bench
