// The error routines: what a kernel calls for an element that has no plain result.
#pragma once

#include <cstdint>

#include "qor/vector_math.h"

namespace qor::frame {

// Element types of the routines, by type letter.
using s_element = float;
using d_element = double;
using c_element = qor_complex_float;
using z_element = qor_complex_double;

// Reports element `index` of contiguous vectors. The kernel has stored its results already; the
// callback may change them. A function with one input (output) passes its vector twice.
template <class Element>
void report_error(int32_t code, int32_t index, const Element* arg1, const Element* arg2,
                  Element* result1, Element* result2, const char* name);

// The same for strided vectors: the element of a vector v is v[index * inc].
template <class Element>
void report_error_strided(int32_t code, int32_t index, const Element* arg1, int32_t arg1_inc,
                          const Element* arg2, int32_t arg2_inc, Element* result1,
                          int32_t result1_inc, Element* result2, int32_t result2_inc,
                          const char* name);

// Acts on a finished record as the mode says: errno, messages, floating-point condition.
void run_report(uint32_t mode, const ErrorContext& context);

}  // namespace qor::frame
