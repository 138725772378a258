// Where the exponentials change their way: shared by the kernels and by the tests that sweep the
// edges.
#pragma once

#include "kernels/edges.h"

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

namespace sexp2 {
inline constexpr int32_t fast_image = 0x42FC0000;  // |x| up to 126: vector path
inline constexpr float overflow = 128;             // from here: +infinity
inline constexpr float underflow = -150;           // down from here: 0
inline constexpr float denormal = -126;            // below: a denormal result
}  // namespace sexp2

namespace dexp2 {
inline constexpr int32_t fast_high_word = 0x408FEFFF;  // |x| below 1022: vector path
inline constexpr double overflow = 1024;
inline constexpr double underflow = -1075;
inline constexpr double denormal = -1022;
}  // namespace dexp2

namespace sexp10 {
inline constexpr int32_t fast_image = 0x4217B818;  // |x| up to 37.9297791: vector path
// Above: +infinity. At the limit itself the narrowing overflows: infinity and flag, but no code.
inline constexpr float overflow = 0x1.344136p+5f;
inline constexpr float underflow = -0x1.693c6ap+5f;  // below: 0
inline constexpr float denormal = -0x1.2f703p+5f;    // below: a denormal result
}  // namespace sexp10

namespace dexp10 {
inline constexpr int32_t fast_high_word = 0x40733A70;       // |x| below about 307.65: vector path
inline constexpr double overflow = 0x1.34413509f79fep+8;    // above: +infinity
inline constexpr double underflow = -0x1.439b746e36b52p+8;  // below: 0
inline constexpr double denormal = -0x1.33a7146f72a41p+8;   // below: a denormal result
}  // namespace dexp10

namespace sexpm1 {
inline constexpr int32_t fast_image = 0x42AD496B;  // x up to 86.6433945, or negative: vector path
inline constexpr float overflow = sexp::overflow;  // above: +infinity
}  // namespace sexpm1

namespace dexpm1 {
inline constexpr double tiny = 0x1p-54;             // |x| below: x
inline constexpr double small = 0x1p-5;             // |x| below: no table
inline constexpr double saturated = -0x1.2cp+5;     // below: -1
inline constexpr double overflow = dexp::overflow;  // above: +infinity
}  // namespace dexpm1

inline constexpr Edges exponential_edges[] = {
    {{"sExp"},
     {from_image(sexp::fast_image), -from_image(sexp::fast_image), sexp::overflow, sexp::underflow,
      sexp::denormal, from_image(sexp::tiny_exponent << 23)}},
    {{"dExp"},
     {last_of(dexp::fast_high_word), -last_of(dexp::fast_high_word), dexp::overflow,
      dexp::underflow, dexp::denormal, first_of(dexp::tiny_exponent << 20)}},
    {{"sExp2"},
     {from_image(sexp2::fast_image), -from_image(sexp2::fast_image), sexp2::overflow,
      sexp2::underflow, sexp2::denormal}},
    {{"dExp2"},
     {last_of(dexp2::fast_high_word), -last_of(dexp2::fast_high_word), dexp2::overflow,
      dexp2::underflow, dexp2::denormal}},
    {{"sExp10"},
     {from_image(sexp10::fast_image), -from_image(sexp10::fast_image), sexp10::overflow,
      sexp10::underflow, sexp10::denormal}},
    {{"dExp10"},
     {last_of(dexp10::fast_high_word), -last_of(dexp10::fast_high_word), dexp10::overflow,
      dexp10::underflow, dexp10::denormal}},
    {{"sExpm1"}, {from_image(sexpm1::fast_image), sexpm1::overflow}},
    {{"dExpm1"},
     {dexpm1::tiny, -dexpm1::tiny, dexpm1::small, -dexpm1::small, dexpm1::saturated,
      dexpm1::overflow}},
};

// Half steps of the tables of 128 powers; those of 64 and 16 are among them.
inline constexpr Seams exponential_seams[] = {
    {{"Exp", "Expm1"}, 0x1.62e42fefa39efp-9},  // ln 2 / 256
    {{"Exp2"}, 0x1p-8},
    {{"Exp10"}, 0x1.34413509f79ffp-10},  // log10(2) / 256
};

}  // namespace qor::kernels::limits
