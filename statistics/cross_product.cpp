#include "statistics/cross_product.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "frame/mode.h"
#include "qor/vector_math.h"
#include "services/scratch.h"
#include "statistics/blas.h"

namespace qor::statistics {
namespace {

constexpr uint32_t kKernelMode = 0x140000;  // denormals are kept
constexpr int kHA = 1;                      // the row's slot

void inverse_root_kernel(int32_t n, const double* x, double* y) {
  qor_ark_kernel_dInvSqrt_ttab[kHA](n, x, y);
}
void inverse_root_kernel(int32_t n, const float* x, float* y) {
  qor_ark_kernel_sInvSqrt_ttab[kHA](n, x, y);
}

// 1 / sqrt of each, in place. The kernel sees positive values only, since nothing here reports.
template <class Real>
void invert_roots(Real* x, int64_t n) {
  frame::ThreadState& state = frame::thread_state();
  const uint32_t mode = frame::merge_mode(state, kKernelMode);
  constexpr int64_t kBatch = 64;
  Real in[kBatch], out[kBatch];
  for (int64_t first = 0, count; first < n; first += count) {
    count = std::min(kBatch, n - first);
    std::transform(x + first, x + first + count, in, [](Real v) { return v > 0 ? v : Real{1}; });
    inverse_root_kernel(static_cast<int32_t>(count), in, out);
    for (int64_t i = 0; i < count; ++i) {
      Real& v = x[first + i];
      v = v > 0 ? out[i] : 1 / std::sqrt(v);
    }
  }
  state.mode = mode;
}

// The stored variances of cor give each product of deviations back. A variable that does not vary
// has none, whatever its correlations are.
template <class Real>
void unscale_correlations(Real* cross, int64_t p) {
  for (int64_t k = 0; k < p; ++k) {
    for (int64_t j = 0; j < k; ++j) {
      const Real variance_j = cross[j * p + j], variance_k = cross[k * p + k];
      Real& element = cross[k * p + j];
      element = variance_j == 0 || variance_k == 0
                    ? Real{0}
                    : element * (std::sqrt(variance_j) * std::sqrt(variance_k));
    }
  }
}

template <class Real>
void write_correlation(const MatrixView<Real>& to, Integers indices, const Real* cross, int64_t p,
                       Real scale, const Units& units, Real* inverse_roots) {
  for (int64_t j = 0; j < p; ++j) inverse_roots[j] = cross[j * p + j];
  invert_roots(inverse_roots, p);
  write_matrix(to.data, to.form, p, indices, [&](int64_t j, int64_t k) {
    const Real product = cross[k * p + j];
    return j == k ? times_two_to(scale * product, 2 * units.of(j))
                  : product * inverse_roots[j] * inverse_roots[k];
  });
}

// value(j, k), products of two variables and perhaps a weight, out of the units of the run.
template <class Real, class Value>
void write_products(const MatrixView<Real>& to, Integers indices, int64_t p, const Units& units,
                    int32_t weight_unit, Value value) {
  if (units.exponents == nullptr && weight_unit == 0) {
    return write_matrix(to.data, to.form, p, indices, value);
  }
  write_matrix(to.data, to.form, p, indices, [&](int64_t j, int64_t k) {
    return times_two_to(value(j, k), units.of(j) + units.of(k) + weight_unit);
  });
}

// A block of observations as BLAS reads it: "n" row after row, "t" column after column.
template <class Real>
struct Block {
  const Real* data;
  int ld;
  const char* form;
  const char* transposed;
};

template <class Real>
bool is_columns(const Observations<Real>& data) {
  return data.by_variable && data.p > 1;
}
// Whether BLAS cannot read the data where they stand: columns lie n apart, which it must be able to
// count, and it knows no units.
template <class Real>
bool needs_copy(const Observations<Real>& data) {
  const bool too_far_apart = is_columns(data) && data.n > std::numeric_limits<int>::max();
  return too_far_apart || data.scale != nullptr;
}

// The block copied into `to`: value(x, i, j) of variable j of observation i, times factor(i).
template <class Real, class Factor, class Value>
Block<Real> copy_values(const Observations<Real>& data, int64_t first, int64_t count, Real* to,
                        Factor factor, Value value) {
  const int p = static_cast<int>(data.p);
  if (is_columns(data)) {
    for (int64_t j = 0; j < data.p; ++j) {
      const Real* column = data.variable(j) + first;
      for (int64_t i = 0; i < count; ++i) to[j * count + i] = factor(i) * value(column[i], i, j);
    }
    return {to, static_cast<int>(count), "t", "n"};
  }
  for (int64_t i = 0; i < count; ++i) {
    const Real* row = data.x + (first + i) * data.p;
    const Real f = factor(i);
    for (int64_t j = 0; j < data.p; ++j) to[i * data.p + j] = f * value(row[j], i, j);
  }
  return {to, p, "n", "t"};
}

// The block copied into `to` in the units of the run, observation i times factor(i), in the layout
// of the data and compact.
template <class Real, class Factor>
Block<Real> copy_block(const Observations<Real>& data, int64_t first, int64_t count, Real* to,
                       Factor factor) {
  if (data.scale != nullptr) {
    return copy_values(
        data, first, count, to, factor,
        [&data, first](Real x, int64_t i, int64_t j) { return data.in_units(x, first + i, j); });
  }
  return copy_values(data, first, count, to, factor, [](Real x, int64_t, int64_t) { return x; });
}

template <class Real>
Block<Real> block_in_place(const Observations<Real>& data, int64_t first) {
  if (is_columns(data)) return {data.x + first, static_cast<int>(data.n), "t", "n"};
  return {data.x + first * data.p, static_cast<int>(data.p), "n", "t"};
}

}  // namespace

template <class Real>
MatrixView<Real> matrix_of(const SsTask& task, int field) {
  const void* storage = field == field_cp    ? task.cp_storage
                        : field == field_cov ? task.cov_storage
                                             : task.cor_storage;
  return {reals<Real>(field_array(task, field)), matrix_form(integer(task, storage))};
}

int holder_field(const Request& request) {
  for (const int field : {field_cp, field_cov}) {
    if (request.has(field)) return field;
  }
  return field_cor;
}

template <class Real>
void change_units(int field, const Units& units, int64_t p, Real* matrix) {
  if (units.exponents == nullptr && units.weight == 0) return;
  for (int64_t k = 0; k < p; ++k) {
    for (int64_t j = 0; j <= k; ++j) {
      if (field == field_cor && j != k) continue;  // correlations have no units
      const int32_t unit = units.of(j) + units.of(k) + (field == field_cp ? units.weight : 0);
      matrix[k * p + j] = times_two_to(matrix[k * p + j], -unit);
    }
  }
}

template <class Real>
void read_cross_product(const MatrixView<Real>& holder, int field, int64_t p, const Weight& weight,
                        const Units& units, Real* cross) {
  // A single observation, or none, has no products of deviations, and its covariances are no
  // numbers.
  const double factor =
      field == field_cp ? 1 : (weight.sum > 0 ? weight.sum - weight.squares / weight.sum : 0);
  if (weight.sum == 0 || factor == 0) {
    std::fill_n(cross, p * p, Real{0});
    return;
  }
  read_matrix(holder.data, holder.form, p, cross);
  change_units(field, units, p, cross);
  if (field == field_cor) unscale_correlations(cross, p);
  if (field == field_cp) return;
  for (int64_t k = 0; k < p; ++k) {
    for (int64_t j = 0; j <= k; ++j) cross[k * p + j] *= static_cast<Real>(factor);
  }
}

template <class Real>
void write_matrices(const SsTask& task, const Request& request, const Real* cross,
                    const Weight& weight, const Units& units, Real* inverse_roots) {
  const int64_t p = integer(task, task.p);
  const Integers indices = integers(task, task.indices);
  const Real scale = static_cast<Real>(covariance_scale(weight));
  // `cross` may be the holder, the last in this order of those requested.
  if (request.has(field_cor)) {
    write_correlation(matrix_of<Real>(task, field_cor), indices, cross, p, scale, units,
                      inverse_roots);
  }
  if (request.has(field_cov)) {
    write_products(matrix_of<Real>(task, field_cov), indices, p, units, 0,
                   [&](int64_t j, int64_t k) { return scale * cross[k * p + j]; });
  }
  if (request.has(field_cp)) {
    write_products(matrix_of<Real>(task, field_cp), indices, p, units, units.weight,
                   [&](int64_t j, int64_t k) { return cross[k * p + j]; });
  }
}

template <class Real>
void add_rank_one(Real alpha, const Real* m, int64_t p, Real* cross) {
  const int n = static_cast<int>(p), one = 1;
  Blas<Real>::syr("u", &n, &alpha, m, &one, cross, &n, 1);
}

int64_t product_block(int64_t p) {
  constexpr int64_t kBytes = 262144, kLeast = 128;
  return std::max(kLeast, kBytes / services::counted_product(8, p));
}

template <class Real>
int64_t product_work(const Observations<Real>& data, int64_t block) {
  const int64_t copies = (data.weights != nullptr) + needs_copy(data);
  return services::counted_product(copies, services::counted_product(block, data.p));
}

template <class Real>
void add_products(const Observations<Real>& data, int64_t first, int64_t count, Real* work,
                  Real* cross) {
  const int p = static_cast<int>(data.p), k = static_cast<int>(count);
  const Real one = 1;
  const Block<Real> block =
      needs_copy(data) ? copy_block(data, first, count, work, [](int64_t) { return Real{1}; })
                       : block_in_place(data, first);
  if (data.weights == nullptr) {
    Blas<Real>::syrk("u", block.form, &p, &k, &one, block.data, &block.ld, &one, cross, &p, 1, 1);
    return;
  }
  Real* weighted = needs_copy(data) ? work + count * data.p : work;
  const Real* weights = data.weights + first;
  const Real unit = data.weight_scale;
  const Block<Real> scaled =
      copy_block(data, first, count, weighted, [=](int64_t i) { return weights[i] * unit; });
  Blas<Real>::gemm(scaled.form, scaled.transposed, &p, &p, &k, &one, scaled.data, &scaled.ld,
                   block.data, &block.ld, &one, cross, &p, 1, 1);
}

template MatrixView<double> matrix_of<double>(const SsTask&, int);
template MatrixView<float> matrix_of<float>(const SsTask&, int);
template void change_units<double>(int, const Units&, int64_t, double*);
template void change_units<float>(int, const Units&, int64_t, float*);
template void read_cross_product<double>(const MatrixView<double>&, int, int64_t, const Weight&,
                                         const Units&, double*);
template void read_cross_product<float>(const MatrixView<float>&, int, int64_t, const Weight&,
                                        const Units&, float*);
template void write_matrices<double>(const SsTask&, const Request&, const double*, const Weight&,
                                     const Units&, double*);
template void write_matrices<float>(const SsTask&, const Request&, const float*, const Weight&,
                                    const Units&, float*);
template void add_rank_one<double>(double, const double*, int64_t, double*);
template void add_rank_one<float>(float, const float*, int64_t, float*);
template int64_t product_work<double>(const Observations<double>&, int64_t);
template int64_t product_work<float>(const Observations<float>&, int64_t);
template void add_products<double>(const Observations<double>&, int64_t, int64_t, double*, double*);
template void add_products<float>(const Observations<float>&, int64_t, int64_t, float*, float*);

}  // namespace qor::statistics
