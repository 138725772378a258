// Signalling NaN: every kernel takes them as it takes quiet ones, with the invalid flag, and gives
// none out. (CopySign moves bits, which special_values.txt says.)

#include "tests/kernels/engine.h"

namespace qor::test {
namespace {

template <class T>
using ImageOf = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;

template <class T>
constexpr ImageOf<T> kQuietBit = ImageOf<T>{1} << (format_of<T>.digits - 2);
template <class T>
constexpr ImageOf<T> kInfinity = std::bit_cast<ImageOf<T>>(std::numeric_limits<T>::infinity());
template <class T>
constexpr ImageOf<T> kSign = std::bit_cast<ImageOf<T>>(T(-0.0));

// Payloads at both ends and in the middle: the high word of a double does not tell the first from
// an infinity.
template <class T>
std::vector<ImageOf<T>> signalling() {
  std::vector<ImageOf<T>> images;
  constexpr ImageOf<T> middle = kQuietBit<T> / 2, last = kQuietBit<T> - 1;
  for (const ImageOf<T> payload : {ImageOf<T>{1}, middle, last, ImageOf<T>{0x2A5A5}}) {
    images.push_back(kInfinity<T> | payload);
    images.push_back(kSign<T> | kInfinity<T> | payload);
  }
  return images;
}

template <class T>
bool is_quiet(ImageOf<T> image) {
  return (image & ~kSign<T>) >= (kInfinity<T> | kQuietBit<T>);
}
template <class T>
bool is_signalling(const T& x) {
  ImageOf<T> image;
  std::memcpy(&image, &x, sizeof image);
  return (image & ~kSign<T>) > kInfinity<T> && !is_quiet<T>(image);
}

// `count` elements, of which the one at `at` has these images.
template <class T>
Batch<T> batch_with(const Row<T>& row, std::array<ImageOf<T>, 2> images, size_t count, size_t at) {
  Batch<T> batch;
  batch.scalar.fill(T(1.25));
  for (size_t k = 0; k < static_cast<size_t>(row.shape.inputs); ++k) {
    batch.in[k].assign(count, T(0.75));
    std::memcpy(&batch.in[k][at], &images[k], sizeof(T));
  }
  return batch;
}

template <class T>
void expect_quiet(const Row<T>& row, int slot, std::array<ImageOf<T>, 2> images, bool strided) {
  constexpr size_t kCounts[] = {35, 3}, kPlaces[] = {17, 1};  // inside a register, and in a tail
  for (int i = 0; i < 2; ++i) {
    const Batch<T> batch = batch_with(row, images, kCounts[i], kPlaces[i]);
    std::feclearexcept(FE_ALL_EXCEPT);
    const Results<T> results = (strided ? run_strided<T> : run<T>)(row, slot, batch);
    const bool invalid = std::fetestexcept(FE_INVALID) != 0;
    for (size_t k = 0; k < static_cast<size_t>(row.shape.outputs); ++k) {
      const T& result = results[k][kPlaces[i]];
      ASSERT_FALSE(is_signalling(result)) << std::hex << images[0] << ' ' << images[1];
      // Where a number comes out all the same, or the other NaN, it need not have been looked at.
      const bool looked_at =
          std::isnan(result) && !is_quiet<T>(images[0]) && !is_quiet<T>(images[1]);
      EXPECT_TRUE(invalid || !looked_at) << std::hex << images[0] << ' ' << images[1];
    }
  }
}

class EngineSignallingNan : public KernelTest {};

TEST_P(EngineSignallingNan, ComesOutQuiet) {
  with_row([](const auto& row, int slot) {
    using T = typename std::decay_t<decltype(row)>::Real;
    using Limits = std::numeric_limits<T>;
    if (row.base == "CopySign") return;
    const bool one = row.shape.inputs * row.shape.input_parts == 1;
    for (const ImageOf<T> nan : signalling<T>()) {
      for (const T partner : {T(1), T(0), T(-2.5), Limits::max(), Limits::denorm_min(),
                              Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()}) {
        const auto other = std::bit_cast<ImageOf<T>>(partner);
        for (const bool strided : {false, true}) {
          SCOPED_TRACE(strided ? "strided" : "contiguous");
          expect_quiet(row, slot, {nan, other}, strided);
          if (one) continue;
          expect_quiet(row, slot, {other, nan}, strided);
          expect_quiet(row, slot, {nan, nan}, strided);
        }
        if (one) break;
      }
    }
  });
}

QOR_FOR_ALL_KERNELS(EngineSignallingNan);

}  // namespace
}  // namespace qor::test
