// Where the logarithms change their way: shared by the kernels and by the tests that sweep the
// edges.
#pragma once

#include <cstdint>

namespace qor::kernels::limits {

// Images of positive normal numbers, moved by an offset to the bottom of the signed integers: all
// others (zeros, denormals, negative numbers, infinities, NaN) compare above.
namespace slog {
inline constexpr uint32_t offset = 0x7F800000;
inline constexpr int32_t last_image = static_cast<int32_t>(0xFEFFFFFF);
inline constexpr float denormal_scale = 0x1p25f;  // Logb: makes a denormal normal
}  // namespace slog

namespace dlog {
inline constexpr uint64_t offset = 0x7FF0000000000000;
inline constexpr int32_t last_high_word = static_cast<int32_t>(0xFFDFFFFF);
inline constexpr double denormal_scale = 0x1p55;
}  // namespace dlog

// Log1p: the vector path is for -1 < x < last.
namespace slog1p {
inline constexpr int32_t last_image = 0x7A7FFFFF;      // below 2^118
inline constexpr int32_t negative_image = 0x3F7FFFFF;  // of -x, x above -1
inline constexpr float tiny = 0x1p-30f;                // |x| below: log1p(x) is x
}  // namespace slog1p

namespace dlog1p {
inline constexpr int32_t last_high_word = 0x7F3FFFFF;      // below 2^1013
inline constexpr int32_t negative_high_word = 0x3FEFFFFF;  // of -x, x above -1
inline constexpr double tiny = 0x1p-60;
}  // namespace dlog1p

}  // namespace qor::kernels::limits
