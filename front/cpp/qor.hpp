// qor_ark_base for C++20: spans in, values out, statuses turned into messages. Header only, over
// the C ABI; link with qor_ark_base. May throw std::invalid_argument, std::length_error,
// std::bad_alloc.
//
//   std::vector<double> x{0.5, 1.0, 2.0};
//   std::vector<double> y = qor::apply(qor_ark_kernel_dExp_ttab, x);
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "qor/vector_math.h"

namespace qor {

// ---- Mode -----------------------------------------------------------------------------------

// Replaces fields of the calling thread's mode word for the length of a scope, as _arkSetMode does:
// each field that is not zero in `fields`, whole. Accuracy, error and denormal fields come back at
// the end; trap bits that were all clear cannot, so they are not accepted.
class ModeScope {
 public:
  explicit ModeScope(uint32_t fields) : before_(_arkGetMode()) {
    if ((fields & QOR_MODE_TRAPS) != 0) {
      throw std::invalid_argument("fields: " + std::to_string(fields) +
                                  " holds trap bits; accuracy, error and denormal fields are"
                                  " accepted");
    }
    _arkSetMode(fields);
  }
  ~ModeScope() {
    // An empty denormal field means the same as QOR_MODE_KEEP_DENORMALS, which can be set.
    const uint32_t denormals = before_ & QOR_MODE_DENORMALS;
    _arkSetMode((before_ & (QOR_MODE_ACCURACY | QOR_MODE_ERRORS)) |
                (denormals != 0 ? denormals : uint32_t{QOR_MODE_KEEP_DENORMALS}));
  }
  ModeScope(const ModeScope&) = delete;
  ModeScope& operator=(const ModeScope&) = delete;

 private:
  uint32_t before_;
};

// ---- Errors ---------------------------------------------------------------------------------

// What an error code of vector math means, in words.
inline std::string_view meaning(int32_t code) {
  switch (code) {
    case QOR_ERROR_NONE:
      return "no error";
    case QOR_ERROR_DOMAIN:
      return "domain error: the result is not defined for this argument";
    case QOR_ERROR_SINGULARITY:
      return "singularity: the function has a pole here";
    case QOR_ERROR_OVERFLOW:
      return "overflow: the result is too large";
    case QOR_ERROR_UNDERFLOW:
      return "underflow: the result is denormal or zero";
    default:
      return "bad argument";
  }
}

// Collects the elements that kernels report on the calling thread while it lives; nothing else
// happens on a report meanwhile. Collectors nest, the innermost collects. A report for which there
// is no memory is counted only.
class Reports {
 public:
  Reports() : mode_(QOR_MODE_ERRORS_CALLBACK), outer_(innermost_) {
    callback_before_ = _arkSetErrorCallBack(&Reports::collect);
    innermost_ = this;
  }
  ~Reports() {
    innermost_ = outer_;
    _arkSetErrorCallBack(callback_before_);
  }
  Reports(const Reports&) = delete;
  Reports& operator=(const Reports&) = delete;

  // In the order of the reports; `index` counts elements of the vector given to the kernel.
  const std::vector<ErrorContext>& list() const { return list_; }
  size_t count() const { return list_.size() + lost_; }
  void clear() { list_.clear(), lost_ = 0; }

 private:
  static int32_t collect(ErrorContext* context) noexcept {
    try {
      innermost_->list_.push_back(*context);
    } catch (...) {
      ++innermost_->lost_;
    }
    return 1;  // the kernel's results stand, and no further action follows
  }

  static inline thread_local Reports* innermost_ = nullptr;
  ModeScope mode_;
  Reports* outer_;
  qor_error_callback callback_before_;
  std::vector<ErrorContext> list_;
  size_t lost_ = 0;
};

// ---- Calls ----------------------------------------------------------------------------------

// The rows qor_ark_kernel_<f>_ttab of functions with one input, and with two.
template <class T>
using UnaryRow = void (*[3])(int32_t, const T*, T*);
template <class T>
using BinaryRow = void (*[3])(int32_t, const T*, const T*, T*);

namespace detail {

// The slot that the thread's accuracy selects.
inline size_t slot() {
  const int32_t slot = qor_ark_kernel_GetTTableIndex();
  if (slot < 0 || slot > 2) {
    throw std::invalid_argument("accuracy of the thread's mode: " + std::to_string(slot + 1) +
                                "; 1 (LA), 2 (HA) and 3 (EP) are accepted");
  }
  return static_cast<size_t>(slot);
}

inline int32_t length_of(std::string_view argument, size_t length) {
  constexpr size_t most = std::numeric_limits<int32_t>::max();
  if (length > most) {
    throw std::length_error(std::string(argument) + ": " + std::to_string(length) +
                            " elements; at most " + std::to_string(most) + " are accepted");
  }
  return static_cast<int32_t>(length);
}

inline void require_length(std::string_view argument, size_t length, size_t wanted) {
  if (length != wanted) {
    throw std::invalid_argument(std::string(argument) + ": " + std::to_string(length) +
                                " elements; " + std::to_string(wanted) +
                                " are accepted, as many as a has");
  }
}

template <class T>
using Input = std::type_identity_t<std::span<const T>>;
template <class T>
using Output = std::type_identity_t<std::span<T>>;

}  // namespace detail

// y[i] = f(a[i]) at the accuracy of the thread's mode; y may be a.
template <class T>
void apply_to(const UnaryRow<T>& row, detail::Input<T> a, detail::Output<T> y) {
  detail::require_length("y", y.size(), a.size());
  row[detail::slot()](detail::length_of("a", a.size()), a.data(), y.data());
}

// y[i] = f(a[i], b[i]) at the accuracy of the thread's mode; y may be a or b.
template <class T>
void apply_to(const BinaryRow<T>& row, detail::Input<T> a, detail::Input<T> b,
              detail::Output<T> y) {
  detail::require_length("b", b.size(), a.size());
  detail::require_length("y", y.size(), a.size());
  row[detail::slot()](detail::length_of("a", a.size()), a.data(), b.data(), y.data());
}

// The same with the result as a value.
template <class T>
std::vector<T> apply(const UnaryRow<T>& row, detail::Input<T> a) {
  std::vector<T> y(a.size());
  apply_to<T>(row, a, y);
  return y;
}

template <class T>
std::vector<T> apply(const BinaryRow<T>& row, detail::Input<T> a, detail::Input<T> b) {
  std::vector<T> y(a.size());
  apply_to<T>(row, a, b, y);
  return y;
}

}  // namespace qor
