// The eight error routines (four element types, contiguous and strided), once as a template.

#include "frame/error.h"

#include <cstring>

#include "frame/mode.h"

namespace qor::frame {
namespace {

constexpr int32_t kNameLimit = 47;

// How the record shows an element: its parts widened, and the shift from bytes to elements.
template <class Element>
struct Parts;

template <>
struct Parts<float> {
  static constexpr int shift = 2;
  static void read(float from, double& re, double&) { re = static_cast<double>(from); }
  static void write(float& to, double re, double) { to = static_cast<float>(re); }
};

template <>
struct Parts<double> {
  static constexpr int shift = 3;
  static void read(double from, double& re, double&) { re = from; }
  static void write(double& to, double re, double) { to = re; }
};

template <>
struct Parts<qor_complex_float> {
  static constexpr int shift = 3;
  static void read(const qor_complex_float& from, double& re, double& im) {
    re = static_cast<double>(from.re);
    im = static_cast<double>(from.im);
  }
  static void write(qor_complex_float& to, double re, double im) {
    to = {static_cast<float>(re), static_cast<float>(im)};
  }
};

template <>
struct Parts<qor_complex_double> {
  static constexpr int shift = 4;
  static void read(const qor_complex_double& from, double& re, double& im) {
    re = from.re;
    im = from.im;
  }
  static void write(qor_complex_double& to, double re, double im) { to = {re, im}; }
};

bool has_values(int32_t code) {
  return code != QOR_ERROR_ARGUMENT_INDEXED && code != QOR_ERROR_ARGUMENT;
}

void copy_name(ErrorContext& context, const char* name) {
  const auto length = static_cast<int32_t>(strnlen(name, kNameLimit));
  std::memcpy(context.funcName, name, static_cast<size_t>(length));
  context.funcName[length] = '\0';
  context.funcNameLength = length;
}

// The index within the whole vector whose start the thread has set, if it has.
template <class Element>
int32_t whole_vector_index(const ThreadState& state, int32_t index, const Element* arg1) {
  if (state.interfInputVector == nullptr) return index;
  const intptr_t bytes =
      reinterpret_cast<intptr_t>(arg1) - reinterpret_cast<intptr_t>(state.interfInputVector);
  return static_cast<int32_t>(index + (bytes >> Parts<Element>::shift));
}

// The element of each vector that a report is about.
template <class In, class Out>
struct Elements {
  const In *arg1, *arg2;
  Out *result1, *result2;
};

template <class In, class Out>
void report(ThreadState& state, int32_t code, int32_t index, const Elements<In, Out>& at,
            const char* name) {
  ErrorContext context{};
  context.code = code;
  context.index = index;
  copy_name(context, name);
  if (has_values(code)) {
    Parts<In>::read(*at.arg1, context.arg1, context.arg1Im);
    Parts<In>::read(*at.arg2, context.arg2, context.arg2Im);
    Parts<Out>::read(*at.result1, context.result1, context.result1Im);
    Parts<Out>::read(*at.result2, context.result2, context.result2Im);
  }
  const uint32_t word = state.mode;
  if ((word & QOR_MODE_ERRORS_CALLBACK) != 0 && state.errCallback != nullptr &&
      state.errCallback(&context) != 0) {
    return;
  }
  if ((word & QOR_MODE_ERRORS_PRINTING) != 0) run_report(word, context);
  if (!has_values(code)) return;
  Parts<Out>::write(*at.result2, context.result2, context.result2Im);
  Parts<Out>::write(*at.result1, context.result1, context.result1Im);
}

// Stores the status as the mode says; returns whether a record is wanted.
bool note_status(ThreadState& state, int32_t code) {
  const uint32_t errors = mode_of(state) & QOR_MODE_ERRORS;
  if (errors == QOR_MODE_ERRORS_NOERR) return false;
  state.errStatus = code;
  return errors != QOR_MODE_ERRORS_IGNORE;
}

}  // namespace

bool reports_are_off() { return (mode() & QOR_MODE_ERRORS) == QOR_MODE_ERRORS_NOERR; }

bool each_report_counts() {
  ThreadState& state = thread_state();
  const uint32_t word = mode_of(state);
  const uint32_t errors = word & QOR_MODE_ERRORS;
  if (errors == QOR_MODE_ERRORS_NOERR || errors == QOR_MODE_ERRORS_IGNORE) return false;
  if ((errors & QOR_MODE_ERRORS_CALLBACK) != 0 && state.errCallback != nullptr) return true;
  if ((errors & QOR_MODE_ERRORS_STDERR) != 0) return true;
  return (errors & QOR_MODE_ERRORS_EXCEPT) != 0 && (word & QOR_MODE_TRAPS) != 0;
}

template <class In, class Out>
void report_error_strided(int32_t code, int32_t index, const In* arg1, int32_t arg1_inc,
                          const In* arg2, int32_t arg2_inc, Out* result1, int32_t result1_inc,
                          Out* result2, int32_t result2_inc, const char* name) {
  ThreadState& state = thread_state();
  if (!note_status(state, code)) return;
  Elements<In, Out> at{arg1, arg2, result1, result2};
  if (has_values(code)) {
    const int64_t i = index;
    at = {arg1 + i * arg1_inc, arg2 + i * arg2_inc, result1 + i * result1_inc,
          result2 + i * result2_inc};
  }
  report(state, code, whole_vector_index(state, index, arg1), at, name);
}

template <class In, class Out>
void report_error(int32_t code, int32_t index, const In* arg1, const In* arg2, Out* result1,
                  Out* result2, const char* name) {
  report_error_strided(code, index, arg1, 1, arg2, 1, result1, 1, result2, 1, name);
}

#define QOR_INSTANTIATE(In, Out)                                                               \
  template void report_error<In, Out>(int32_t, int32_t, const In*, const In*, Out*, Out*,      \
                                      const char*);                                            \
  template void report_error_strided<In, Out>(int32_t, int32_t, const In*, int32_t, const In*, \
                                              int32_t, Out*, int32_t, Out*, int32_t, const char*);
QOR_INSTANTIATE(s_element, s_element)
QOR_INSTANTIATE(d_element, d_element)
QOR_INSTANTIATE(c_element, c_element)
QOR_INSTANTIATE(z_element, z_element)
QOR_INSTANTIATE(s_element, c_element)
QOR_INSTANTIATE(d_element, z_element)
QOR_INSTANTIATE(c_element, s_element)
QOR_INSTANTIATE(z_element, d_element)

}  // namespace qor::frame
