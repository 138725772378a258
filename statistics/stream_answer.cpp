// What a stream's summaries say about its quantiles.

#include <algorithm>
#include <cmath>

#include "statistics/order_place.h"
#include "statistics/radix_sort.h"
#include "statistics/stream_state.h"

namespace qor::statistics {
namespace {

struct Extent {
  int64_t observations, entries, lists;
};

// calls(first entry, count) for the summaries of all levels, and partial(stage) for buffers in use.
template <class Key, class Summary, class Partial>
void for_each_list(const StreamVariable& variable, Summary summary, Partial partial) {
  for (int64_t k = 0; k < variable.stages; ++k) {
    const Stage& stage = variable.stage[k];
    const auto* row = static_cast<const RankedKey<Key>*>(stage.rows);
    for (int64_t level = 1; level <= stage.levels; ++level, row += stage.row_length) {
      if (stage.length[level] > 0) summary(row, stage.length[level]);
    }
    if (stage.fill > 0) partial(stage);
  }
}

template <class Key>
Extent extent_of(const StreamVariable& variable) {
  Extent extent{};
  for (int64_t k = 0; k < variable.stages; ++k) extent.observations += variable.stage[k].taken;
  const auto count = [&](int64_t entries) {
    extent.entries += entries;
    ++extent.lists;
  };
  for_each_list<Key>(
      variable, [&](const RankedKey<Key>*, int64_t entries) { count(entries); },
      [&](const Stage& stage) { count(stage.fill); });
  return extent;
}

// Copies all lists behind one another; begin[k] is where list k stands, and behind the last one
// their end.
template <class Key>
void gather(const StreamVariable& variable, RankedKey<Key>* entries, int64_t* begin) {
  RankedKey<Key>* end = entries;
  *begin++ = 0;
  for_each_list<Key>(
      variable,
      [&](const RankedKey<Key>* row, int64_t count) {
        end = std::copy(row, row + count, end);
        *begin++ = end - entries;
      },
      [&](const Stage& stage) {
        auto* keys = static_cast<Key*>(stage.keys);
        sort_by_key(stage.fill, keys, keys, keys + stage.block);
        for (int64_t i = 0; i < stage.fill; ++i) *end++ = {keys[i], i + 1, i + 1};
        *begin++ = end - entries;
      });
}

// The entry whose rank, in the middle of its bounds, is closest to the place in whole ranks; the
// earlier one of several.
template <class Key>
Key closest_key(const RankedKey<Key>* entries, const Extent& extent, double place) {
  double best = 2 * static_cast<double>(extent.observations);
  Key key = entries[0].key;
  for (int64_t i = 0; i < extent.entries; ++i) {
    const double rank = 0.5 * static_cast<double>(entries[i].lowest + entries[i].highest);
    const double distance = std::trunc(std::abs(rank - place));
    if (distance < best) {
      best = distance;
      key = entries[i].key;
    }
  }
  return key;
}

}  // namespace

template <class Real>
bool answer(const StreamVariable& variable, const Real* order, int64_t orders, Real* quantile) {
  const Extent extent = extent_of<Key<Real>>(variable);
  if (extent.observations == 0) return true;
  const services::HeapScratch<RankedKey<Key<Real>>> entries(
      services::counted_product(extent.entries, 2));
  const services::HeapScratch<int64_t> begin(extent.lists + 1);
  if (entries.data() == nullptr || begin.data() == nullptr) return false;
  gather(variable, entries.data(), begin.data());
  const auto* all =
      merge_all(entries.data(), entries.data() + extent.entries, begin.data(), extent.lists);
  for (int64_t k = 0; k < orders; ++k) {
    const double place = order_place(order[k], extent.observations);
    quantile[k] = value_of<Real>(closest_key(all, extent, place));
  }
  return true;
}

template bool answer<double>(const StreamVariable&, const double*, int64_t, double*);
template bool answer<float>(const StreamVariable&, const float*, int64_t, float*);

}  // namespace qor::statistics
