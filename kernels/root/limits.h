// Where the roots and their powers leave the vector path: shared by the kernels and by the tests
// that sweep the edges. Images of floats, high words of doubles; `first` and `last` are inside.
#pragma once

#include "kernels/edges.h"

namespace qor::kernels::limits {

// Positive normal numbers.
inline constexpr Range positive_normal_float{0x00800000, 0x7F7FFFFF};
inline constexpr Range positive_normal_double{0x00100000, 0x7FEFFFFF};

namespace root {
inline constexpr Range ssqrt{0x00800000, 0x7F7FF000};  // the last 4095 floats go aside too
inline constexpr Range dsqrt = positive_normal_double;
inline constexpr Range normal_float = positive_normal_float;  // Cbrt, InvCbrt, Pow2o3
inline constexpr Range normal_double = positive_normal_double;
// InvSqrt: there 1 / x, and the last bits of a double by themselves, are normal numbers.
inline constexpr Range sinv_sqrt{0x00800000, 0x7E77FFFF};  // to 1.9375 2^125
inline constexpr Range dinv_sqrt{0x03500000, 0x7FCEFFFF};  // from 2^-970 to 1.9375 2^1021
inline constexpr Range spow3o2{0x15800000, 0x6A214517};    // from 2^-84 to the last finite result
inline constexpr Range dpow3o2{0x15600000, 0x6A9965FD};    // from 2^-681 to just below 2^(2048/3)
}  // namespace root

// Of both arguments: squares neither overflow nor have low parts that are denormal.
namespace hypot {
inline constexpr Range middle_float{0x2B800000, 0x5E7FFFFF};   // 2^-40 to 2^62
inline constexpr Range middle_double{0x23400000, 0x5FCFFFFF};  // 2^-459 to 2^510
}  // namespace hypot

inline constexpr Edges root_edges[] = {
    {{"sSqrt"}, {from_image(root::ssqrt.first), from_image(root::ssqrt.last)}},
    {{"dSqrt"}, {first_of(root::dsqrt.first), last_of(root::dsqrt.last)}},
    {{"sCbrt", "sInvCbrt", "sPow2o3"},
     {from_image(root::normal_float.first), from_image(root::normal_float.last)}},
    {{"dCbrt", "dInvCbrt", "dPow2o3"},
     {first_of(root::normal_double.first), last_of(root::normal_double.last)}},
    {{"sInvSqrt"}, {from_image(root::sinv_sqrt.first), from_image(root::sinv_sqrt.last)}},
    {{"dInvSqrt"}, {first_of(root::dinv_sqrt.first), last_of(root::dinv_sqrt.last)}},
    {{"sPow3o2"}, {from_image(root::spow3o2.first), from_image(root::spow3o2.last)}},
    {{"dPow3o2"}, {first_of(root::dpow3o2.first), last_of(root::dpow3o2.last)}},
    {{"sHypot"},
     {from_image(hypot::middle_float.first), from_image(hypot::middle_float.last)},
     {from_image(hypot::middle_float.first), from_image(hypot::middle_float.last)}},
    {{"dHypot"},
     {first_of(hypot::middle_double.first), last_of(hypot::middle_double.last)},
     {first_of(hypot::middle_double.first), last_of(hypot::middle_double.last)}},
};

// 32 cells of the mantissa; the processor's estimates of inverse roots have steps of their own.
inline constexpr Seams root_seams[] = {{{"Cbrt", "InvCbrt", "Pow2o3", "Pow3o2"}, 0, 5},
                                       {{"InvSqrt", "Hypot"}, 0, 11}};

}  // namespace qor::kernels::limits
