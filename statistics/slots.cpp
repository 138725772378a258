#include "statistics/slots.h"

#include <algorithm>

#include "statistics/kernels.h"

namespace qor::statistics {
namespace {

// What turns the array that carries a slot back into the slot.
template <class Real>
Real start_factor(const Request& request, const Weight& weight, int s) {
  const bool is_moment = request.has(slot_fields[s].moment);
  if (s < first_central_slot) return is_moment ? Real{1} : static_cast<Real>(1 / weight.sum);
  if (!is_moment) return 1;
  if (s > first_central_slot) return static_cast<Real>(weight.sum);
  return static_cast<Real>((weight.sum * weight.sum - weight.squares) / weight.sum);
}

}  // namespace

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

template <class Real>
void start_slots(const SsTask& task, const Request& request, Order order, const Weight& weight,
                 int64_t p, Moments<Real>& moments) {
  for (int s = request.method == Method::given_means ? 1 : 0; s < slot_count; ++s) {
    if (!in_use(order, s)) continue;
    Real* to = slot(moments, s);
    const Real* from = slot_array<Real>(task, request, s);
    const Real factor = start_factor<Real>(request, weight, s);
    // A single observation has central sums of 0, and a central moment 2 that is no number.
    if (from == nullptr || weight.sum == 0 || factor == 0) {
      std::fill_n(to, p, Real{0});
    } else {
      std::transform(from, from + p, to, [factor](Real v) { return v * factor; });
    }
  }
}

template void start_slots<double>(const SsTask&, const Request&, Order, const Weight&, int64_t,
                                  Moments<double>&);
template void start_slots<float>(const SsTask&, const Request&, Order, const Weight&, int64_t,
                                 Moments<float>&);

}  // namespace qor::statistics
