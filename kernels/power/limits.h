// Where the powers leave the vector path: shared by the kernels and by the tests that sweep the
// edges. Images of floats, high words of doubles; `first` and `last` are inside.
#pragma once

#include "kernels/root/limits.h"

namespace qor::kernels::limits {

namespace spow {
inline constexpr Range base = positive_normal_float;
inline constexpr Range exponent{0x00000000, 0x4AFFFFFF};  // |y| below 2^23: the product below 2^30
inline constexpr int32_t exponent_of_result = 125;        // |y log2 x| up to about 125.5
}  // namespace spow

namespace dpow {
inline constexpr Range base = positive_normal_double;
// |y| in [2^-800, 2^64): the parts of y log2 x neither overflow nor become denormal.
inline constexpr Range exponent{0x0DF00000, 0x43EFFFFF};
inline constexpr int32_t product_high_word = 0x408F3FFF;  // |y log2 x| up to about 1000
}  // namespace dpow

inline constexpr Edges power_edges[] = {
    {{"sPow", "sPowr", "sPowx"},
     {from_image(spow::base.first), from_image(spow::base.last)},
     {from_image(spow::exponent.last)},
     {spow::exponent_of_result + 0.5}},
    {{"dPow", "dPowr", "dPowx"},
     {first_of(dpow::base.first), last_of(dpow::base.last)},
     {first_of(dpow::exponent.first), last_of(dpow::exponent.last)},
     {last_of(dpow::product_high_word)}},
};

// Half cells of 1024.
inline constexpr Seams power_seams[] = {{{"Pow", "Powr", "Powx"}, 0, 11}};

}  // namespace qor::kernels::limits
