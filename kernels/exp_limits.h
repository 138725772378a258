// Where the exponentials change their way: shared by the kernels and by the tests that sweep the
// edges.
#pragma once

#include <cstdint>

namespace qor::kernels::limits {

namespace sexp {
inline constexpr int32_t fast_image = 0x42AEAC4F;    // |x| up to 87.3365402: vector path
inline constexpr float overflow = 0x1.62e42ep+6f;    // above: +infinity
inline constexpr float underflow = -0x1.9fe368p+6f;  // below: 0
inline constexpr float denormal = -0x1.5d589ep+6f;   // below: a denormal result
inline constexpr int32_t tiny_exponent = 75;         // biased exponents below: 1 + x
}  // namespace sexp

namespace dexp {
inline constexpr int32_t fast_high_word = 0x4086232A;  // |x| below about 708.396: vector path
inline constexpr double overflow = 0x1.62e42fefa39efp+9;
inline constexpr double underflow = -0x1.74910d52d3051p+9;
inline constexpr double denormal = -0x1.6232bdd7abcd2p+9;
inline constexpr int32_t tiny_exponent = 971;
}  // namespace dexp

}  // namespace qor::kernels::limits
