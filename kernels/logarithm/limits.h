// Where the logarithms change their way: shared by the kernels and by the tests that sweep the
// edges.
#pragma once

#include <cstdint>

namespace qor::kernels::limits {

// The vector paths are for positive normal numbers.
namespace slog {
inline constexpr int32_t first_image = 0x00800000;
inline constexpr int32_t last_image = 0x7F7FFFFF;
inline constexpr float denormal_scale = 0x1p25f;  // Logb: makes a denormal normal
}  // namespace slog

namespace dlog {
inline constexpr int32_t first_high_word = 0x00100000;
inline constexpr int32_t last_high_word = 0x7FEFFFFF;
inline constexpr double denormal_scale = 0x1p55;
}  // namespace dlog

// Log1p: the vector path is for -1 < x < last.
namespace slog1p {
inline constexpr int32_t last_image = 0x7A7FFFFF;      // below 2^118
inline constexpr int32_t negative_image = 0x3F7FFFFF;  // of -x, x above -1
}  // namespace slog1p

namespace dlog1p {
inline constexpr int32_t last_high_word = 0x7F3FFFFF;      // below 2^1013
inline constexpr int32_t negative_high_word = 0x3FEFFFFF;  // of -x, x above -1
}  // namespace dlog1p

}  // namespace qor::kernels::limits
