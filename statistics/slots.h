// The seven slots of a run in the caller's arrays: which array carries which, and what stands in it
// between calls.
#pragma once

#include "statistics/moments.h"
#include "statistics/request.h"
#include "statistics/units.h"
#include "statistics/view.h"

namespace qor::statistics {

// Slot s of seven: the mean, raw moments 2 to 4, central sums 2 to 4.
inline constexpr int slot_count = 7;
inline constexpr int first_central_slot = 4;

struct SlotFields {
  Field moment;
  Field sum;
  int power;
};
inline constexpr SlotFields slot_fields[slot_count] = {
    {field_mean, field_sum, 1},
    {field_raw_2, field_raw_sum_2, 2},
    {field_raw_3, field_raw_sum_3, 3},
    {field_raw_4, field_raw_sum_4, 4},
    {field_central_2, field_central_sum_2, 2},
    {field_central_3, field_central_sum_3, 3},
    {field_central_4, field_central_sum_4, 4},
};

template <class Real>
Real*& slot(Moments<Real>& moments, int s) {
  if (s == 0) return moments.mean;
  return s < first_central_slot ? moments.raw[s - 1] : moments.central[s - first_central_slot];
}
template <class Real>
const Real* slot(const Moments<Real>& moments, int s) {
  return slot(const_cast<Moments<Real>&>(moments), s);
}

inline bool in_use(Order order, int s) {
  return s < first_central_slot ? s < order.raw : s - first_central_slot < order.central;
}

inline bool is_asked(const Request& request, int s) {
  return request.has(slot_fields[s].moment) || request.has(slot_fields[s].sum);
}

// The array that carries a slot between calls: the moment's, else the sum's, else null.
template <class Real>
Real* slot_array(const SsTask& task, const Request& request, int s) {
  if (!is_asked(request, s)) return nullptr;
  const Field field =
      request.has(slot_fields[s].moment) ? slot_fields[s].moment : slot_fields[s].sum;
  return reals<Real>(field_array(task, field));
}

// The row of the method's order table that the request needs.
int order_row(const Request& request);
Order order_of(Method method, int row);

// The request with the registered arrays of all slots in use: they carry the state from block to
// block, and are written.
Request with_carriers(const SsTask& task, const Request& request, Order order);

// Whether the state that the one pass method goes on from is there: central sums 3 and 4 need those
// of lower order, or the raw moments to make them of. Returns 0 or the status of the missing sum.
int check_state(const Request& request, double weight);

// Where a slot's state stands in the caller's arrays, null when nowhere, and whether as a moment.
template <class Real>
const Real* start_array(const SsTask& task, const Request& request, int s, bool& is_moment);

// Fills the slots in use with the state that the caller's arrays hold, or with zeros where there is
// no weight yet. A given mean stays as it is. Slots and weight are in the units of the run.
template <class Real>
void start_slots(const SsTask& task, const Request& request, Order order, const Weight& weight,
                 const Units& units, int64_t p, Moments<Real>& moments);

// Writes all that was asked for but the matrices.
template <class Real>
void finish_slots(const SsTask& task, const Request& request, const Weight& weight,
                  const Units& units, int64_t p, const Moments<Real>& moments);

// The same from the registered sums, without a run. The weight is in its unit, near 1, so that sums
// divided by it stay in the range that their moments have.
template <class Real>
void finish_from_sums(const SsTask& task, const Request& request, const Weight& weight,
                      const Units& units, int64_t p);

}  // namespace qor::statistics
