// What a run writes: moments and sums from its slots, then the ratios of moments.

#include <cmath>

#include "statistics/slots.h"

namespace qor::statistics {
namespace {

// From the central sum of power 2 to the central moment: W / (W^2 - W2), n - 1 with unit weights.
double unbiased_factor(const Weight& weight) {
  return weight.sum / (weight.sum * weight.sum - weight.squares);
}

// An array by the field's name, null when it is not asked for; and the variables that are written,
// out of the units of the run.
template <class Real>
struct Output {
  const SsTask& task;
  const Request& request;
  Units units;
  int64_t p;

  Real* array(int field) const {
    return request.has(field) ? reals<Real>(field_array(task, field)) : nullptr;
  }
  // value(j), a sum over powers of values, to the variables that take part.
  template <class Value>
  void write(int field, int power, Value value, int32_t weight_unit = 0) const {
    Real* to = array(field);
    if (to == nullptr) return;
    const Integers indices = integers(task, task.indices);
    if (units.exponents == nullptr && weight_unit == 0 && !indices.given()) {
      for (int64_t j = 0; j < p; ++j) to[j] = value(j);
      return;
    }
    for (int64_t j = 0; j < p; ++j) {
      if (indices.given() && indices[j] == 0) continue;
      to[j] = times_two_to(value(j), power * units.of(j) + weight_unit);
    }
  }
  // The same times weights.
  template <class Value>
  void write_sum(int field, int power, Value value) const {
    write(field, power, value, units.weight);
  }
};

// The ratios of moments, each a function of the variable, in double: in the units of a run, where
// powers of c2 stay in the range, or in those of the caller, where steps leave it only with the
// result.
enum class RatioUnits { run, caller };

template <RatioUnits units, class Real, class Mean, class C2, class C3, class C4>
void write_ratios(const Output<Real>& out, Mean mean, C2 c2, C3 c3, C4 c4) {
  constexpr bool in_range = units == RatioUnits::run;
  const auto ratio = [](double value) { return static_cast<Real>(value); };
  out.write(field_kurtosis, 0, [&](int64_t j) {
    const double square = c2(j), fourth = c4(j);
    return ratio((in_range ? fourth / (square * square) : fourth / square / square) - 3);
  });
  out.write(field_skewness, 0, [&](int64_t j) {
    const double square = c2(j), third = c3(j), root = std::sqrt(square);
    return ratio(in_range ? third / (square * root) : third / square / root);
  });
  out.write(field_variation, 0,
            [&](int64_t j) { return ratio(std::sqrt(double{c2(j)}) / double{mean(j)}); });
}

// What the fast method makes of its raw moments: central moments and sums, ratios.
template <class Real>
void write_from_raw(const Output<Real>& out, const Weight& weight, const Moments<Real>& m) {
  const Real w = static_cast<Real>(weight.sum);
  const Real unbiased = static_cast<Real>(unbiased_factor(weight) * weight.sum);
  const auto first = [&m](int64_t j) { return m.mean[j]; };
  const auto second = [&m](int64_t j) { return m.raw[0][j] - m.mean[j] * m.mean[j]; };
  const auto third = [&m](int64_t j) {
    const Real mean = m.mean[j];
    return m.raw[1][j] - 3 * mean * m.raw[0][j] + 2 * mean * mean * mean;
  };
  const auto fourth = [&m](int64_t j) {
    const Real mean = m.mean[j], square = mean * mean;
    return m.raw[2][j] - 4 * mean * m.raw[1][j] + 6 * square * m.raw[0][j] - 3 * square * square;
  };
  const auto c2 = [&](int64_t j) { return second(j) * unbiased; };
  out.write_sum(field_central_sum_2, 2, [&](int64_t j) { return second(j) * w; });
  out.write_sum(field_central_sum_3, 3, [&](int64_t j) { return third(j) * w; });
  out.write_sum(field_central_sum_4, 4, [&](int64_t j) { return fourth(j) * w; });
  out.write(field_central_2, 2, c2);
  out.write(field_central_3, 3, third);
  out.write(field_central_4, 4, fourth);
  write_ratios<RatioUnits::run>(out, first, c2, third, fourth);
}

// What the other methods make of their central sums. Ratios and sums first: a moment's array may
// carry its sum.
template <class Real>
void write_from_central(const Output<Real>& out, const Weight& weight, const Moments<Real>& m) {
  const Real factors[] = {static_cast<Real>(unbiased_factor(weight)),
                          static_cast<Real>(1 / weight.sum), static_cast<Real>(1 / weight.sum)};
  const auto moment = [&](int k) {
    return [sums = m.central[k], factor = factors[k]](int64_t j) { return sums[j] * factor; };
  };
  write_ratios<RatioUnits::run>(
      out, [&m](int64_t j) { return m.mean[j]; }, moment(0), moment(1), moment(2));
  for (int k = 0; k < 3; ++k) {
    const Real* sums = m.central[k];
    if (sums == nullptr) continue;
    out.write_sum(field_central_sum_2 + k, k + 2, [&](int64_t j) { return sums[j]; });
    out.write(field_central_2 + k, k + 2, moment(k));
  }
}

}  // namespace

template <class Real>
void finish_slots(const SsTask& task, const Request& request, const Weight& weight,
                  const Units& units, int64_t p, const Moments<Real>& moments) {
  const Output<Real> out{task, request, units, p};
  const Real w = static_cast<Real>(weight.sum);
  // Whatever is made from raw moments comes before the sums that may stand in their place.
  if (request.method == Method::fast) {
    write_from_raw(out, weight, moments);
  } else {
    write_from_central(out, weight, moments);
  }
  for (int s = 0; s < first_central_slot; ++s) {
    const Real* from = slot(moments, s);
    if (from == nullptr) continue;
    const auto [moment, sum, power] = slot_fields[s];
    // A moment's array may be the slot, which then leaves the units of the run.
    out.write_sum(sum, power, [&](int64_t j) { return from[j] * w; });
    out.write(moment, power, [&](int64_t j) { return from[j]; });
  }
}

template <class Real>
void finish_from_sums(const SsTask& task, const Request& request, const Weight& weight,
                      const Units& units, int64_t p) {
  const Output<Real> out{task, request, units, p};
  const Real each = static_cast<Real>(1 / weight.sum);
  const Real unbiased = static_cast<Real>(unbiased_factor(weight));
  for (int s = 0; s < slot_count; ++s) {
    // Moments that only others need may come without their sum: they are taken as they stand.
    const Real* sum = reals<Real>(field_array(task, slot_fields[s].sum));
    if (sum == nullptr) continue;
    const Real factor = s == first_central_slot ? unbiased : each;
    out.write(slot_fields[s].moment, 0,
              [&](int64_t j) { return times_two_to(sum[j], -units.weight) * factor; });
  }
  const auto array = [&out](int field) {
    return [values = out.array(field)](int64_t j) { return values[j]; };
  };
  write_ratios<RatioUnits::caller>(out, array(field_mean), array(field_central_2),
                                   array(field_central_3), array(field_central_4));
}

template void finish_slots<double>(const SsTask&, const Request&, const Weight&, const Units&,
                                   int64_t, const Moments<double>&);
template void finish_slots<float>(const SsTask&, const Request&, const Weight&, const Units&,
                                  int64_t, const Moments<float>&);

template void finish_from_sums<double>(const SsTask&, const Request&, const Weight&, const Units&,
                                       int64_t);
template void finish_from_sums<float>(const SsTask&, const Request&, const Weight&, const Units&,
                                      int64_t);

}  // namespace qor::statistics
