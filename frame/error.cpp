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
template <class Element>
struct Elements {
  const Element *arg1, *arg2;
  Element *result1, *result2;
};

template <class Element>
void report(ThreadState& state, int32_t code, int32_t index, const Elements<Element>& at,
            const char* name) {
  using Part = Parts<Element>;
  ErrorContext context{};
  context.code = code;
  context.index = index;
  copy_name(context, name);
  if (has_values(code)) {
    Part::read(*at.arg1, context.arg1, context.arg1Im);
    Part::read(*at.arg2, context.arg2, context.arg2Im);
    Part::read(*at.result1, context.result1, context.result1Im);
    Part::read(*at.result2, context.result2, context.result2Im);
  }
  const uint32_t word = state.mode;
  if ((word & QOR_MODE_ERRORS_CALLBACK) != 0 && state.errCallback != nullptr &&
      state.errCallback(&context) != 0) {
    return;
  }
  if ((word & QOR_MODE_ERRORS_PRINTING) != 0) run_report(word, context);
  if (!has_values(code)) return;
  Part::write(*at.result2, context.result2, context.result2Im);
  Part::write(*at.result1, context.result1, context.result1Im);
}

// Stores the status as the mode says; returns whether a record is wanted.
bool note_status(ThreadState& state, int32_t code) {
  const uint32_t errors = mode_of(state) & QOR_MODE_ERRORS;
  if (errors == QOR_MODE_ERRORS_NOERR) return false;
  state.errStatus = code;
  return errors != QOR_MODE_ERRORS_IGNORE;
}

}  // namespace

template <class Element>
void report_error_strided(int32_t code, int32_t index, const Element* arg1, int32_t arg1_inc,
                          const Element* arg2, int32_t arg2_inc, Element* result1,
                          int32_t result1_inc, Element* result2, int32_t result2_inc,
                          const char* name) {
  ThreadState& state = thread_state();
  if (!note_status(state, code)) return;
  Elements<Element> at{arg1, arg2, result1, result2};
  if (has_values(code)) {
    const int64_t i = index;
    at = {arg1 + i * arg1_inc, arg2 + i * arg2_inc, result1 + i * result1_inc,
          result2 + i * result2_inc};
  }
  report(state, code, whole_vector_index(state, index, arg1), at, name);
}

template <class Element>
void report_error(int32_t code, int32_t index, const Element* arg1, const Element* arg2,
                  Element* result1, Element* result2, const char* name) {
  report_error_strided(code, index, arg1, 1, arg2, 1, result1, 1, result2, 1, name);
}

#define QOR_INSTANTIATE(E)                                                                      \
  template void report_error<E>(int32_t, int32_t, const E*, const E*, E*, E*, const char*);     \
  template void report_error_strided<E>(int32_t, int32_t, const E*, int32_t, const E*, int32_t, \
                                        E*, int32_t, E*, int32_t, const char*);
QOR_INSTANTIATE(s_element)
QOR_INSTANTIATE(d_element)
QOR_INSTANTIATE(c_element)
QOR_INSTANTIATE(z_element)

}  // namespace qor::frame
