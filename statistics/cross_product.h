// The cross-product matrix of a run: sums of products of deviations, in the place that Accumulator
// tells. One of the requested matrices carries it from block to block.
#pragma once

#include "statistics/kernels.h"
#include "statistics/matrix.h"
#include "statistics/request.h"
#include "statistics/units.h"

namespace qor::statistics {

// A registered matrix, as the caller stores it.
template <class Real>
struct MatrixView {
  Real* data;
  MatrixForm form;
};

// The matrix of a field: cov, cor or cp.
template <class Real>
MatrixView<Real> matrix_of(const SsTask& task, int field);

// The field that carries the cross-product: the first requested of cp, cov, cor.
int holder_field(const Request& request);

// The factor from cross-product to covariance: 1 / (W - W2/W), and 1 without weight.
inline double covariance_scale(const Weight& weight) {
  return weight.sum > 0 ? 1 / (weight.sum - weight.squares / weight.sum) : 1;
}

// What a field holds, from the caller's units to those of a run.
template <class Real>
void change_units(int field, const Units& units, int64_t p, Real* matrix);

// Makes `cross` the cross-product that the holder carries, nothing where there is no weight yet; it
// and the weight are in the units of the run. `cross` may be the holder itself, when that is full.
template <class Real>
void read_cross_product(const MatrixView<Real>& holder, int field, int64_t p, const Weight& weight,
                        const Units& units, Real* cross);

// Writes the requested ones of cov, cor and cp, the holder last. `inverse_roots`: p reals of work.
template <class Real>
void write_matrices(const SsTask& task, const Request& request, const Real* cross,
                    const Weight& weight, const Units& units, Real* inverse_roots);

// Block products, for the methods by sums of powers.

// Adds alpha m m^T.
template <class Real>
void add_rank_one(Real alpha, const Real* m, int64_t p, Real* cross);

// Observations that one block has: 256 KiB of doubles, at least 128.
int64_t product_block(int64_t p);

// Reals of work that add_products needs for blocks of `block` observations.
template <class Real>
int64_t product_work(const Observations<Real>& data, int64_t block);

// Adds the sum of w x x^T over observations first to first + count - 1, in the units of the run.
template <class Real>
void add_products(const Observations<Real>& data, int64_t first, int64_t count, Real* work,
                  Real* cross);

}  // namespace qor::statistics
