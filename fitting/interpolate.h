// An interpolation call, taken apart: what is asked for, what a block of sites looks like, and the
// evaluators of the kinds of interpolants.
#pragma once

#include <cstdint>

#include "fitting/interpolant.h"
#include "fitting/team.h"

namespace qor::fitting {

// The derivative orders asked for: flags of 32 or 64 bits, of which no set one means the value.
class WantedDerivatives {
 public:
  WantedDerivatives(const DFTask& task, int64_t ndorder, const void* dorder);

  int64_t asked() const { return asked_; }      // flags given
  int64_t results() const { return results_; }  // results per site and function
  bool value_alone() const { return results_ == 1 && (flags_ == nullptr || is_set(0)); }
  bool value_flagged() const { return flags_ != nullptr && is_set(0); }

  // routine(order, position among the results) for each order in turn.
  template <class Routine>
  void for_each(Routine routine) const {
    if (flags_ == nullptr) return routine(int64_t{0}, int64_t{0});
    for (int64_t order = 0, position = 0; order < asked_; ++order) {
      if (is_set(order)) routine(order, position++);
    }
  }

 private:
  bool is_set(int64_t order) const {
    return wide_ ? static_cast<const int64_t*>(flags_)[order] != 0
                 : static_cast<const int32_t*>(flags_)[order] != 0;
  }
  bool wide_;
  int64_t asked_;
  const void* flags_;  // null when none is set
  int64_t results_;
};

// A block of sites by stretches of consecutive ones in one cell, where these are long: stretch k
// ends before site end[k], on a polynomial that begins at `left`. No stretches: they are short.
template <class Real>
struct Stretches {
  static constexpr int64_t shortest = 8;  // on average
  static constexpr int64_t most = block_size / shortest;
  static constexpr int64_t room = most + 16;
  int64_t count = 0;
  int32_t end[room];
  int32_t piece[room];
  Real left[room];
};

// A block of sites, or a part of one, for polynomials located by stretches or else site by site.
template <class Real>
struct Block {
  int64_t count;
  const Real* site;
  const int32_t* cell;
  int32_t* piece;
  Real* distance;
  const Stretches<Real>* stretches;  // null: site by site

  Block part(int64_t from, int64_t length) const {
    return {length, site + from, cell + from, piece + from, distance + from, nullptr};
  }
};

// Finds piece and distance of every site of a block for an interpolant of polynomials.
template <class Real>
void locate(const DFTask& task, Interpolant interpolant, const Block<Real>& block);

// Finds the stretches of a block instead, for evaluation of values alone. Returns whether there are
// long ones and the interpolant can use them.
template <class Real>
bool locate_stretches(const DFTask& task, Interpolant interpolant, const Block<Real>& block,
                      Stretches<Real>* stretches);

// Writes the wanted results of one function for a block, site by result. Statuses: those of lookup.
template <class Real>
int evaluate(const DFTask& task, Interpolant interpolant, const WantedDerivatives& wanted,
             const Block<Real>& block, int64_t function, Real* out);

// Values at breakpoints: no other site is known.
template <class Real>
int evaluate_lookup(const DFTask& task, const WantedDerivatives& wanted, const Block<Real>& block,
                    int64_t function, Real* out);

// Values of step functions; `left_continuous` tells the kind.
template <class Real>
void evaluate_steps(const DFTask& task, bool left_continuous, const WantedDerivatives& wanted,
                    const Block<Real>& block, int64_t function, Real* out);

}  // namespace qor::fitting
