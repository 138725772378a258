// Where the logarithms change their way: shared by the kernels and by the tests that sweep the
// edges.
#pragma once

#include "kernels/edges.h"

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

inline constexpr Edges logarithm_edges[] = {
    {{"sLn", "sLog2", "sLog10", "sLogb"},
     {from_image(slog::first_image), from_image(slog::last_image)}},
    {{"dLn", "dLog2", "dLog10", "dLogb"},
     {first_of(dlog::first_high_word), last_of(dlog::last_high_word)}},
    {{"sLog1p"}, {-from_image(slog1p::negative_image), from_image(slog1p::last_image)}},
    {{"dLog1p"}, {-last_of(dlog1p::negative_high_word), last_of(dlog1p::last_high_word)}},
};

// Half rows of 1024 reciprocals; cells of the mantissa, 128 at most, are among them.
inline constexpr Seams logarithm_seams[] = {{{"Ln", "Log2", "Log10"}, 0, 11},
                                            {{"Log1p"}, 0, 11, 1.0}};

}  // namespace qor::kernels::limits
