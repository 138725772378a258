#include "statistics/slots.h"

#include <algorithm>

#include "statistics/kernels.h"

namespace qor::statistics {
namespace {

// Whether raw moments up to that of a central slot's power are carried.
bool has_raw_to(const Request& request, int central_slot) {
  for (int s = 0; s <= central_slot - first_central_slot + 1; ++s) {
    if (!is_asked(request, s)) return false;
  }
  return true;
}

// Central sums 2 and 3 that nothing carries, from the raw moments.
template <class Real>
void recover_central(const Request& request, double weight, int64_t p, Moments<Real>& m) {
  const Real w = static_cast<Real>(weight);
  for (int64_t j = 0; j < p; ++j) {
    const Real mean = m.mean[j], square = mean * mean;
    if (!is_asked(request, 4)) m.central[0][j] = w * (m.raw[0][j] - square);
    if (!is_asked(request, 5)) {
      m.central[1][j] = w * (m.raw[1][j] - 3 * mean * m.raw[0][j] + 2 * mean * square);
    }
  }
}

// What turns a number of that array into the slot: in units of the weight, when it is a sum.
template <class Real>
Real start_factor(const Weight& weight, int s, bool is_moment) {
  if (s < first_central_slot) return is_moment ? Real{1} : static_cast<Real>(1 / weight.sum);
  if (!is_moment) return 1;
  if (s > first_central_slot) return static_cast<Real>(weight.sum);
  return static_cast<Real>((weight.sum * weight.sum - weight.squares) / weight.sum);
}

}  // namespace

// Where there is a sum too, it counts: a central moment 2 of one observation is no number.
template <class Real>
const Real* start_array(const SsTask& task, const Request& request, int s, bool& is_moment) {
  is_moment = request.has(slot_fields[s].moment);
  if (s == first_central_slot && request.has(slot_fields[s].sum)) is_moment = false;
  if (!is_asked(request, s)) return nullptr;
  return reals<Real>(field_array(task, is_moment ? slot_fields[s].moment : slot_fields[s].sum));
}

int order_row(const Request& request) {
  const auto asked = [&request](int s) { return is_asked(request, s); };
  const bool raw_3 = asked(2), raw_4 = asked(3), raw = asked(1) || raw_3 || raw_4;
  const bool central_3 = asked(5), central_4 = asked(6);
  switch (request.method) {
    case Method::one_pass:
      if (raw_3 || raw_4 || central_3 || central_4) return 3;
      return asked(1) ? 2 : (asked(4) ? 1 : 0);
    case Method::fast:
      return raw_4 ? 3 : (raw_3 ? 2 : (asked(1) ? 1 : 0));
    default:
      return raw ? 3 : (central_4 ? 2 : (central_3 ? 1 : 0));
  }
}

Order order_of(Method method, int row) {
  switch (method) {
    case Method::one_pass:
      return one_pass_orders[row];
    case Method::fast:
      return fast_orders[row];
    default:
      return given_means_orders[row];
  }
}

Request with_carriers(const SsTask& task, const Request& request, Order order) {
  Request carried = request;
  for (int s = request.method == Method::given_means ? 1 : 0; s < slot_count; ++s) {
    if (!in_use(order, s)) continue;
    for (const Field field : {slot_fields[s].moment, slot_fields[s].sum}) {
      if (field_array(task, field) == nullptr) continue;
      carried.fields |= uint32_t{1} << field;
      break;
    }
  }
  return carried;
}

int check_state(const Request& request, double weight) {
  if (weight == 0 || request.method != Method::one_pass) return QOR_SS_OK;
  constexpr int kMissing[] = {QOR_SS_NULL_CENTRAL_SUM_2, QOR_SS_NULL_CENTRAL_SUM_3};
  for (int s = first_central_slot; s < slot_count - 1; ++s) {
    const bool needed = is_asked(request, s + 1) || is_asked(request, slot_count - 1);
    if (needed && !is_asked(request, s) && !has_raw_to(request, s)) {
      return kMissing[s - first_central_slot];
    }
  }
  return QOR_SS_OK;
}

template <class Real>
void start_slots(const SsTask& task, const Request& request, Order order, const Weight& weight,
                 const Units& units, int64_t p, Moments<Real>& moments) {
  for (int s = request.method == Method::given_means ? 1 : 0; s < slot_count; ++s) {
    if (!in_use(order, s)) continue;
    Real* to = slot(moments, s);
    bool is_moment;
    const Real* from = start_array<Real>(task, request, s, is_moment);
    const Real factor = start_factor<Real>(weight, s, is_moment);
    // A single observation has central sums of 0, and a central moment 2 that is no number.
    if (from == nullptr || weight.sum == 0 || factor == 0) {
      std::fill_n(to, p, Real{0});
      continue;
    }
    const int32_t weight_unit = is_moment ? 0 : units.weight;
    if (units.exponents == nullptr && weight_unit == 0) {
      std::transform(from, from + p, to, [factor](Real v) { return v * factor; });
      continue;
    }
    for (int64_t j = 0; j < p; ++j) {
      const int32_t unit = slot_fields[s].power * units.of(j) + weight_unit;
      to[j] = times_two_to(from[j], -unit) * factor;
    }
  }
  const bool lower_matter = is_asked(request, 5) || is_asked(request, 6);
  if (request.method == Method::one_pass && weight.sum != 0 && lower_matter) {
    recover_central(request, weight.sum, p, moments);
  }
}

template const double* start_array<double>(const SsTask&, const Request&, int, bool&);
template const float* start_array<float>(const SsTask&, const Request&, int, bool&);
template void start_slots<double>(const SsTask&, const Request&, Order, const Weight&, const Units&,
                                  int64_t, Moments<double>&);
template void start_slots<float>(const SsTask&, const Request&, Order, const Weight&, const Units&,
                                 int64_t, Moments<float>&);

}  // namespace qor::statistics
