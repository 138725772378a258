// Compiled once per level: what the compiler makes of a plain loop.

#include <cmath>

#include "bench/vector_math/peers.h"

namespace qor::bench {
namespace {

template <class T, class F>
void unary(int32_t n, const void* a, const void*, void* y) {
  const T* __restrict__ x = static_cast<const T*>(a);
  T* __restrict__ to = static_cast<T*>(y);
  for (int32_t i = 0; i < n; ++i) to[i] = F{}(x[i]);
}

template <class T, class F>
void binary(int32_t n, const void* a, const void* b, void* y) {
  const T* __restrict__ x1 = static_cast<const T*>(a), * __restrict__ x2 = static_cast<const T*>(b);
  T* __restrict__ to = static_cast<T*>(y);
  for (int32_t i = 0; i < n; ++i) to[i] = F{}(x1[i], x2[i]);
}

template <class T, class F>
constexpr Loop one(F) {
  return unary<T, F>;
}
template <class T, class F>
constexpr Loop two(F) {
  return binary<T, F>;
}

struct Entry {
  std::string_view base;
  Loop loop;
};

template <class T>
const Entry kLoops[] = {
    {"Add", two<T>([](T a, T b) { return a + b; })},
    {"Sub", two<T>([](T a, T b) { return a - b; })},
    {"Mul", two<T>([](T a, T b) { return a * b; })},
    {"Div", two<T>([](T a, T b) { return a / b; })},
    {"Fmax", two<T>([](T a, T b) { return a > b ? a : b; })},
    {"Fmin", two<T>([](T a, T b) { return a < b ? a : b; })},
    {"Sqr", one<T>([](T a) { return a * a; })},
    {"Inv", one<T>([](T a) { return 1 / a; })},
    {"Sqrt", one<T>([](T a) { return std::sqrt(a); })},
    {"InvSqrt", one<T>([](T a) { return 1 / std::sqrt(a); })},
    {"Abs", one<T>([](T a) { return std::fabs(a); })},
    {"Floor", one<T>([](T a) { return std::floor(a); })},
    {"Ceil", one<T>([](T a) { return std::ceil(a); })},
    {"Trunc", one<T>([](T a) { return std::trunc(a); })},
    {"Round", one<T>([](T a) { return std::round(a); })},
    {"Rint", one<T>([](T a) { return std::rint(a); })},
    {"NearbyInt", one<T>([](T a) { return std::nearbyint(a); })},
};

}  // namespace

template <int register_bytes, class T>
Loop plain_loop(std::string_view base) {
  for (const Entry& entry : kLoops<T>) {
    if (entry.base == base) return entry.loop;
  }
  return nullptr;
}

template Loop plain_loop<QOR_REGISTER_BYTES, float>(std::string_view);
template Loop plain_loop<QOR_REGISTER_BYTES, double>(std::string_view);

}  // namespace qor::bench
