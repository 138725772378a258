// Functions that rise or fall do so from each number to the next: at seams of tables, and where the
// result goes from one number to its neighbour. (All floats: the target `monotone`.)

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

class EngineMonotone : public KernelTest {};

template <class T>
struct Sides {
  Slopes slopes;
  // How results go from x to a larger number, 0 where nothing is said.
  int at(T x) const { return x < 0 ? slopes.below : x > 0 ? slopes.above : 0; }
};

// Steps back between arguments that are neighbours, and the first of them.
template <class T>
struct Steps {
  int64_t back = 0;
  T first = 0;

  void count(const Sides<T>& sides, const std::vector<T>& x, const std::vector<T>& y) {
    for (size_t i = 0; i + 1 < x.size(); ++i) {
      const int slope = sides.at(x[i]);
      const bool wrong = slope > 0 ? y[i + 1] < y[i] : y[i + 1] > y[i];
      const bool neighbours = position(x[i + 1]) == position(x[i]) + 1;
      if (!wrong || slope == 0 || sides.at(x[i + 1]) != slope || !neighbours) continue;
      if (back++ == 0) first = x[i];
    }
  }
};

template <class T>
std::vector<T> results_at(const Row<T>& row, int slot, const std::vector<T>& x) {
  Batch<T> batch;
  batch.in[0] = x;
  return run(row, slot, batch)[0];
}

// Numbers from position `first` on, `count` of them.
template <class T>
void add_run(std::vector<T>& x, int64_t first, int64_t count) {
  const int64_t last = std::min(first + count, last_position<T>);
  for (int64_t i = std::max(first, -last_position<T>); i < last; ++i)
    x.push_back(at_position<T>(i));
}

// All numbers within some steps of a seam.
template <class T>
Steps<T> steps_at_seams(const Row<T>& row, int slot) {
  constexpr int64_t kReach = sizeof(T) == sizeof(float) ? 64 : 24;
  const Sides<T> sides{row.reference->slopes};
  Steps<T> steps;
  std::vector<T> x;
  int64_t done = std::numeric_limits<int64_t>::min();
  const auto look = [&] {
    steps.count(sides, x, results_at(row, slot, x));
    x.clear();
  };
  for (const T seam : seams(row)) {
    const int64_t last = position(seam) + kReach, first = std::max(last - 2 * kReach, done);
    if (first < last) add_run(x, first, last - first + 1);
    done = std::max(done, last);
    if (x.size() > 65536) look();
  }
  look();
  return steps;
}

// ---- Where results step -----------------------------------------------------------------------

// Numbers of every exponent, most of them where results are neither constant nor out of range.
template <class T>
std::vector<T> places(std::mt19937_64& random, size_t count) {
  std::vector<T> x(count);
  for (T& place : x) {
    const auto bits = random();
    const int spread = (bits & 3) == 0 ? format_of<T>.max_exponent : (bits & 3) == 1 ? 30 : 9;
    const int exponent = static_cast<int>(random() % (2 * static_cast<uint64_t>(spread))) - spread;
    place = std::ldexp(1 + std::ldexp(static_cast<T>(random() >> 12), -52), exponent);
    if ((bits & 4) != 0) place = -place;
  }
  return x;
}

// What is known of a place: the result there, and how far on another one is at most, 0 while no
// such distance is known.
template <class T>
struct Place {
  T x, y;
  int64_t reach = 0;
};

// The results at a distance from the places that are asked, given to use(place, result).
template <class T, class Asked, class Use>
void look_further(const Row<T>& row, int slot, std::vector<Place<T>>& places, int64_t distance,
                  Asked is_asked, Use use) {
  std::vector<T> x;
  for (const Place<T>& place : places) {
    if (is_asked(place)) x.push_back(at_position<T>(position(place.x) + distance));
  }
  if (x.empty()) return;
  const std::vector<T> y = results_at(row, slot, x);
  size_t next = 0;
  for (Place<T>& place : places) {
    if (is_asked(place)) use(place, y[next++]);
  }
}

// The last numbers before a step of the result: from each place, where that is finite and the
// result changes within 2^48, in powers of 16 and then by halves.
template <class T>
std::vector<T> before_steps(const Row<T>& row, int slot, const std::vector<T>& from) {
  const std::vector<T> y = results_at(row, slot, from);
  std::vector<Place<T>> places;
  for (size_t i = 0; i < from.size(); ++i) {
    if (std::isfinite(y[i])) places.push_back({from[i], y[i]});
  }
  constexpr int kFurthest = sizeof(T) == sizeof(float) ? 20 : 48;
  for (int k = 0; k <= kFurthest; k += 4) {
    const int64_t distance = int64_t{1} << k;
    look_further(
        row, slot, places, distance, [](const Place<T>& place) { return place.reach == 0; },
        [&](Place<T>& place, T there) { place.reach = there == place.y ? 0 : distance; });
  }
  for (int64_t half = int64_t{1} << (kFurthest - 1); half > 0; half /= 2) {
    look_further(
        row, slot, places, half, [&](const Place<T>& place) { return half < place.reach; },
        [&](Place<T>& place, T there) {
          if (there == place.y) place.x = at_position<T>(position(place.x) + half);
        });
  }
  std::vector<T> found;
  for (const Place<T>& place : places) {
    if (place.reach != 0) found.push_back(place.x);
  }
  return found;
}

template <class T>
Steps<T> steps_where_results_step(const Row<T>& row, int slot, size_t count) {
  constexpr size_t kPlaces = 4096;
  constexpr int64_t kReach = 6;
  const Sides<T> sides{row.reference->slopes};
  std::mt19937_64 random(19);
  Steps<T> steps;
  for (size_t done = 0; done < count; done += kPlaces) {
    std::vector<T> at = before_steps(row, slot, places<T>(random, kPlaces)), x;
    std::sort(at.begin(), at.end());
    int64_t next = -last_position<T>;  // no pair is counted twice
    for (const T place : at) {
      const int64_t first = std::max(next, position(place) - kReach);
      const int64_t last = position(place) + kReach;
      if (first < last) add_run(x, first, last - first + 1);
      next = std::max(next, last);
    }
    steps.count(sides, x, results_at(row, slot, x));
  }
  return steps;
}

TEST_P(EngineMonotone, NeverStepsBack) {
  with_row([](const auto& row, int slot) {
    constexpr bool single = std::is_same_v<decltype(row), const Row<float>&>;
    const Slopes slopes = row.reference->slopes;
    if (slopes.below == 0 && slopes.above == 0) return;
    // Results that are the nearest to what rises rise too.
    if (row.bound(slot) == 0) return;
    const auto at_seams = steps_at_seams(row, slot);
    EXPECT_EQ(at_seams.back, 0) << "at seams, first behind " << std::hexfloat << at_seams.first;
    const auto elsewhere = steps_where_results_step(row, slot, single ? 1 << 15 : 1 << 18);
    EXPECT_EQ(elsewhere.back, 0) << "where results step, first behind " << std::hexfloat
                                 << elsewhere.first;
  });
}

QOR_FOR_ALL_KERNELS(EngineMonotone);

}  // namespace
}  // namespace qor::test
