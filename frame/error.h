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
// callback may change them. A function with one input (output) passes its vector twice. Inputs and
// results may differ in type, one being the complex type of the other.
template <class In, class Out>
void report_error(int32_t code, int32_t index, const In* arg1, const In* arg2, Out* result1,
                  Out* result2, const char* name);

// The same for strided vectors: the element of a vector v is v[index * inc].
template <class In, class Out>
void report_error_strided(int32_t code, int32_t index, const In* arg1, int32_t arg1_inc,
                          const In* arg2, int32_t arg2_inc, Out* result1, int32_t result1_inc,
                          Out* result2, int32_t result2_inc, const char* name);

// Whether reports of the calling thread do nothing at all.
bool reports_are_off();

// Whether each report of the calling thread can be told from the last ones alone: a callback, a
// message or a trap follows. Otherwise a report sets the status, errno and the x87 condition.
bool each_report_counts();

// Acts on a finished record as the mode says: errno, messages, floating-point condition.
void run_report(uint32_t mode, const ErrorContext& context);

}  // namespace qor::frame
