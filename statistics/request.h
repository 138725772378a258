// What a call of Basic is to give: which arrays the asked estimates need, and by which method.
#pragma once

#include "statistics/task.h"

namespace qor::statistics {

// Arrays of Basic, by their bits in requirements.
enum Field : int {
  field_mean,
  field_raw_2,
  field_raw_3,
  field_raw_4,
  field_central_2,
  field_central_3,
  field_central_4,
  field_cov,
  field_cor,
  field_kurtosis,
  field_skewness,
  field_variation,
  field_sum,
  field_raw_sum_2,
  field_raw_sum_3,
  field_raw_sum_4,
  field_central_sum_2,
  field_central_sum_3,
  field_central_sum_4,
  field_cp,
  field_never  // set in requirements that nothing meets
};

enum class Method { fast, one_pass, given_means, from_sums };

struct Request {
  Method method;
  uint32_t fields;  // bit f: field f is needed, and is written

  bool has(int field) const { return (fields >> field & 1) != 0; }
  bool has_matrix() const { return has(field_cov) || has(field_cor) || has(field_cp); }
};

// The array of a field, null when not registered.
void* field_array(const SsTask& task, int field);

// Reads what an entry was asked for. Returns 0 or the first status that applies.
int read_request(const SsTask& task, uint64_t estimates, uint64_t method, Request& request);

}  // namespace qor::statistics
