// Stages of streaming quantiles: their sizes, their memory, what they take in.

#include "statistics/stream_state.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "statistics/radix_sort.h"

namespace qor::statistics {
namespace {

constexpr double kLog2OfE = 1.4426950408889634;
// Below this many powers of two of epsilon*capacity, two compressions would cost more than epsilon.
constexpr double kLeastLog = 2;

// parts / epsilon in whole observations, as far as they can be counted.
int64_t whole_observations(double parts, double epsilon) {
  constexpr double most = 0x1p61;
  return static_cast<int64_t>(std::min(parts / epsilon, most));
}

int64_t aligned(int64_t bytes) {
  constexpr auto unit = static_cast<int64_t>(services::work_alignment);
  return services::counted_product(services::counted_sum(bytes, unit - 1) / unit, unit);
}

template <class Key>
Key* keys_of(const Stage& stage) {
  return static_cast<Key*>(stage.keys);
}
template <class Key>
RankedKey<Key>* row_of(const Stage& stage, int64_t level) {
  return static_cast<RankedKey<Key>*>(stage.rows) + (level - 1) * stage.row_length;
}

// The stage's tables in one block, which begins with the lengths.
template <class Key>
bool allocate_tables(Stage& stage) {
  using services::counted_product, services::counted_sum;
  const int64_t lengths =
      aligned(counted_product(stage.levels + 1, static_cast<int64_t>(sizeof(int64_t))));
  const int64_t keys = aligned(counted_product(
      counted_sum(stage.block, sorting_room<Key>(stage.block)), static_cast<int64_t>(sizeof(Key))));
  const int64_t rows = counted_product(counted_product(stage.row_length, stage.levels + 2),
                                       static_cast<int64_t>(sizeof(RankedKey<Key>)));
  char* block = services::allocate_values<char>(counted_sum(counted_sum(lengths, keys), rows));
  if (block == nullptr) return false;
  stage.length = reinterpret_cast<int64_t*>(block);
  stage.keys = block + lengths;
  stage.rows = block + lengths + keys;
  std::fill(stage.length, stage.length + stage.levels + 1, 0);
  return true;
}

// Moves the full buffer into the levels.
template <class Key>
void raise_buffer(Stage& stage) {
  Key* keys = keys_of<Key>(stage);
  sort_by_key(stage.block, keys, keys, keys + stage.block);
  RankedKey<Key>* held = row_of<Key>(stage, stage.levels + 1);
  RankedKey<Key>* other = row_of<Key>(stage, stage.levels + 2);
  int64_t entries = summarise_block(keys, stage.block, held);
  int64_t level = 1;
  for (; stage.length[level] != 0; ++level) {
    entries =
        merge_and_compress(row_of<Key>(stage, level), stage.length[level], held, entries, other);
    stage.length[level] = 0;
    std::swap(held, other);
  }
  std::copy(held, held + entries, row_of<Key>(stage, level));
  stage.length[level] = entries;
  stage.fill = 0;
}

}  // namespace

StageSize stage_size(double epsilon, int64_t k) {
  const int power = static_cast<int>(k) + 1;
  const int64_t capacity =
      std::max<int64_t>(whole_observations(std::ldexp(2.0, power) - 1, epsilon) -
                            whole_observations(std::ldexp(1.0, power) - 1, epsilon),
                        1);
  const double halvings =
      std::max(std::log(epsilon * static_cast<double>(capacity)) * kLog2OfE, kLeastLog);
  const int64_t block = whole_observations(halvings, epsilon);
  const int64_t occupied = std::bit_width(static_cast<uint64_t>(capacity / block));
  return {capacity, block, std::max(static_cast<int64_t>(halvings + 2), occupied)};
}

StreamState* new_stream_state(int64_t p, int32_t precision, const Integers& indices) {
  const int64_t variables =
      services::counted_product(p, static_cast<int64_t>(sizeof(StreamVariable)));
  auto* state = reinterpret_cast<StreamState*>(services::allocate_values<char>(
      services::counted_sum(static_cast<int64_t>(sizeof(StreamState)), variables)));
  if (state == nullptr) return nullptr;
  state->p = p;
  state->precision = precision;
  for (int64_t j = 0; j < p; ++j) {
    const bool active = !indices.given() || indices[j] != 0;
    state->variable[j] = {0, -1, active ? 1 : 0, nullptr};
  }
  return state;
}

void free_stream_state(StreamState* state) {
  for (int64_t j = 0; j < state->p; ++j) {
    const StreamVariable& variable = state->variable[j];
    for (int64_t k = 0; k < variable.stages; ++k) qor_serv_deallocate(variable.stage[k].length);
    qor_serv_deallocate(variable.stage);
  }
  qor_serv_deallocate(state);
}

template <class Key>
bool add_stage(StreamVariable& variable, double epsilon) {
  const StageSize size = stage_size(epsilon, variable.stages);
  Stage stage{};
  stage.capacity = size.capacity;
  stage.block = size.block;
  stage.levels = size.levels;
  // A block of b keys gives b/2 + 1 entries, and each further level one more than the last.
  stage.row_length = services::counted_sum(size.block / 2 + 1, size.levels);
  auto* grown = services::allocate_values<Stage>(variable.stages + 1);
  if (grown == nullptr) return false;
  if (!allocate_tables<Key>(stage)) {
    qor_serv_deallocate(grown);
    return false;
  }
  std::copy(variable.stage, variable.stage + variable.stages, grown);
  grown[variable.stages] = stage;
  qor_serv_deallocate(variable.stage);
  variable.stage = grown;
  variable.current = variable.stages++;
  return true;
}

template <class Real>
void take_observations(Stage& stage, const Column<Real>& observations) {
  Key<Real>* keys = keys_of<Key<Real>>(stage);
  for (int64_t first = 0; first < observations.n;) {
    const int64_t end = std::min(observations.n, first + stage.block - stage.fill);
    for (; first < end; ++first) keys[stage.fill++] = observations.key(first);
    if (stage.fill == stage.block) raise_buffer<Key<Real>>(stage);
  }
  stage.taken += observations.n;
}

template bool add_stage<uint64_t>(StreamVariable&, double);
template bool add_stage<uint32_t>(StreamVariable&, double);
template void take_observations<double>(Stage&, const Column<double>&);
template void take_observations<float>(Stage&, const Column<float>&);

}  // namespace qor::statistics
