// What a run writes: moments and sums from its slots, then the ratios of moments.

#include <cmath>

#include "statistics/slots.h"

namespace qor::statistics {
namespace {

// From the central sum of power 2 to the central moment: W / (W^2 - W2), n - 1 with unit weights.
double unbiased_factor(const Weight& weight) {
  return weight.sum / (weight.sum * weight.sum - weight.squares);
}

// An array by the field's name, null when it is not asked for; and the variables that are written.
template <class Real>
struct Output {
  const SsTask& task;
  const Request& request;
  int64_t p;

  Real* array(int field) const {
    return request.has(field) ? reals<Real>(field_array(task, field)) : nullptr;
  }
  // value(j) to the variables that take part.
  template <class Value>
  void write(int field, Value value) const {
    Real* to = array(field);
    if (to == nullptr) return;
    const Integers indices = integers(task, task.indices);
    for (int64_t j = 0; j < p; ++j) {
      if (!indices.given() || indices[j] != 0) to[j] = value(j);
    }
  }
};

// Central moments and sums of the fast method, from its raw moments.
template <class Real>
void write_from_raw(const Output<Real>& out, const Weight& weight, const Moments<Real>& m) {
  const auto second = [&m](int64_t j) { return m.raw[0][j] - m.mean[j] * m.mean[j]; };
  const auto third = [&m](int64_t j) {
    const Real mean = m.mean[j];
    return m.raw[1][j] - 3 * mean * m.raw[0][j] + 2 * mean * mean * mean;
  };
  const auto fourth = [&m](int64_t j) {
    const Real mean = m.mean[j], square = mean * mean;
    return m.raw[2][j] - 4 * mean * m.raw[1][j] + 6 * square * m.raw[0][j] - 3 * square * square;
  };
  const Real w = static_cast<Real>(weight.sum);
  const Real unbiased = static_cast<Real>(unbiased_factor(weight) * weight.sum);
  out.write(field_central_sum_2, [&](int64_t j) { return second(j) * w; });
  out.write(field_central_sum_3, [&](int64_t j) { return third(j) * w; });
  out.write(field_central_sum_4, [&](int64_t j) { return fourth(j) * w; });
  out.write(field_central_2, [&](int64_t j) { return second(j) * unbiased; });
  out.write(field_central_3, third);
  out.write(field_central_4, fourth);
}

// Central moments and sums from central sums. Sums first: a moment's array may carry its sum.
template <class Real>
void write_from_central(const Output<Real>& out, const Weight& weight, const Moments<Real>& m) {
  const Real factors[] = {static_cast<Real>(unbiased_factor(weight)),
                          static_cast<Real>(1 / weight.sum), static_cast<Real>(1 / weight.sum)};
  for (int k = 0; k < 3; ++k) {
    const Real* sums = m.central[k];
    if (sums == nullptr) continue;
    const Real factor = factors[k];
    out.write(field_central_sum_2 + k, [&](int64_t j) { return sums[j]; });
    out.write(field_central_2 + k, [&](int64_t j) { return sums[j] * factor; });
  }
}

template <class Real>
void write_ratios(const Output<Real>& out) {
  const Real* mean = out.array(field_mean);
  const Real* c2 = out.array(field_central_2);
  const Real* c3 = out.array(field_central_3);
  const Real* c4 = out.array(field_central_4);
  out.write(field_kurtosis, [&](int64_t j) { return c4[j] / (c2[j] * c2[j]) - 3; });
  out.write(field_skewness, [&](int64_t j) { return c3[j] / std::sqrt(c2[j] * c2[j] * c2[j]); });
  out.write(field_variation, [&](int64_t j) { return std::sqrt(c2[j]) / mean[j]; });
}

}  // namespace

template <class Real>
void finish_slots(const SsTask& task, const Request& request, const Weight& weight, int64_t p,
                  Moments<Real>& moments) {
  const Output<Real> out{task, request, p};
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
    out.write(slot_fields[s].moment, [&](int64_t j) { return from[j]; });
    out.write(slot_fields[s].sum, [&](int64_t j) { return from[j] * w; });
  }
  write_ratios(out);
}

template <class Real>
void finish_from_sums(const SsTask& task, const Request& request, const Weight& weight, int64_t p) {
  const Output<Real> out{task, request, p};
  const Real factors[slot_count] = {
      static_cast<Real>(1 / weight.sum),          static_cast<Real>(1 / weight.sum),
      static_cast<Real>(1 / weight.sum),          static_cast<Real>(1 / weight.sum),
      static_cast<Real>(unbiased_factor(weight)), static_cast<Real>(1 / weight.sum),
      static_cast<Real>(1 / weight.sum)};
  for (int s = 0; s < slot_count; ++s) {
    // Moments that only others need may come without their sum: they are taken as they stand.
    const Real* sum = reals<Real>(field_array(task, slot_fields[s].sum));
    if (sum == nullptr) continue;
    out.write(slot_fields[s].moment, [&](int64_t j) { return sum[j] * factors[s]; });
  }
  write_ratios(out);
}

template void finish_slots<double>(const SsTask&, const Request&, const Weight&, int64_t,
                                   Moments<double>&);
template void finish_slots<float>(const SsTask&, const Request&, const Weight&, int64_t,
                                  Moments<float>&);

template void finish_from_sums<double>(const SsTask&, const Request&, const Weight&, int64_t);
template void finish_from_sums<float>(const SsTask&, const Request&, const Weight&, int64_t);

}  // namespace qor::statistics
