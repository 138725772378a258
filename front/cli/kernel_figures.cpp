#include "front/cli/kernel_figures.h"

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>

#include "front/cli/functions.h"

namespace qor::cli {
namespace {

struct Peer {
  const char* function;
  double low, high;
  double (*libm)(double);
  long double (*reference)(long double);
};

// clang-format off
const Peer kPeers[] = {
    {"Exp",   -10.0, 10.0,  std::exp,   std::exp},
    {"Exp2",  -10.0, 10.0,  std::exp2,  std::exp2},
    {"Exp10", -10.0, 10.0,  exp10,      exp10l},
    {"Expm1", -2.0,  2.0,   std::expm1, std::expm1},
    {"Ln",    0.01,  100.0, std::log,   std::log},
    {"Log2",  0.01,  100.0, std::log2,  std::log2},
    {"Log10", 0.01,  100.0, std::log10, std::log10},
    {"Log1p", -0.9,  10.0,  std::log1p, std::log1p},
    {"Logb",  0.01,  100.0, std::logb,  std::logb},
};
// clang-format on

std::vector<double> sample(double low, double high, size_t count) {
  std::mt19937_64 engine(1);
  std::uniform_real_distribution<double> uniform(low, high);
  std::vector<double> values(count);
  std::ranges::generate(values, [&] { return uniform(engine); });
  return values;
}

// Nanoseconds per element of `work`, which goes over `count` elements: the fastest of some blocks.
template <class Work>
double fastest(size_t count, const Work& work) {
  using Clock = std::chrono::steady_clock;
  constexpr int blocks = 400;
  constexpr int repeats = 8;
  double best = HUGE_VAL;
  for (int block = 0; block < blocks; ++block) {
    const auto start = Clock::now();
    for (int i = 0; i < repeats; ++i) work();
    const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
    best = std::min(best, taken.count() / (repeats * static_cast<double>(count)));
  }
  return best;
}

// Distance from the reference in units of the last place of a double of its size.
double ulp_error(double value, long double reference) {
  if (reference == static_cast<long double>(value)) return 0.0;
  const int exponent = std::max(std::ilogb(reference), -1022);
  return static_cast<double>(std::fabs(value - reference) / std::ldexp(1.0L, exponent - 52));
}

KernelFigures measure(const Function& function, const Peer& peer) {
  KernelFigures figures{function.name, peer.low, peer.high, 0, 0, 0};
  const std::vector<double> x = sample(peer.low, peer.high, 1024);
  std::vector<double> y(x.size());
  figures.ns = fastest(x.size(), [&] { apply_to<double>(*function.unary, x, y); });
  figures.libm_ns = fastest(x.size(), [&] { std::ranges::transform(x, y.begin(), peer.libm); });
  const std::vector<double> arguments = sample(peer.low, peer.high, 20'000);
  const std::vector<double> results = apply<double>(*function.unary, arguments);
  for (size_t i = 0; i < arguments.size(); ++i) {
    figures.ulp = std::max(figures.ulp, ulp_error(results[i], peer.reference(arguments[i])));
  }
  return figures;
}

}  // namespace

std::vector<KernelFigures> measure_kernels() {
  std::vector<KernelFigures> all;
  for (const Peer& peer : kPeers) {
    const Function* function = find_function(peer.function);
    if (function != nullptr) all.push_back(measure(*function, peer));
  }
  return all;
}

std::string library_file() {
  Dl_info info;
  const auto kernel = reinterpret_cast<const void*>(qor_ark_kernel_dExp_ttab[0]);
  if (dladdr(kernel, &info) == 0 || info.dli_fname == nullptr) return "unknown";
  return info.dli_fname;
}

}  // namespace qor::cli
