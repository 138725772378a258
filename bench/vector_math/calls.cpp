// Compiled once per level, for registers of QOR_REGISTER_BYTES.

#include <cstring>

#include "bench/vector_math/peers.h"

namespace qor::bench {

template <int register_bytes, class T>
void apply(void* function, int inputs, const reference::Call<T>& call) {
  typedef T V [[gnu::vector_size(register_bytes)]];
  constexpr int kLanes = register_bytes / static_cast<int>(sizeof(T));
  const auto load = [](const T* from) {
    V x;
    std::memcpy(&x, from, sizeof x);
    return x;
  };
  const auto unary = reinterpret_cast<V (*)(V)>(function);
  const auto binary = reinterpret_cast<V (*)(V, V)>(function);
  for (int32_t i = 0; i + kLanes <= call.n; i += kLanes) {
    const V x = load(call.in[0] + i);
    const V y = inputs == 1 ? unary(x) : binary(x, load(call.in[1] + i));
    std::memcpy(call.out[0] + i, &y, sizeof y);
  }
}

template void apply<QOR_REGISTER_BYTES>(void*, int, const reference::Call<float>&);
template void apply<QOR_REGISTER_BYTES>(void*, int, const reference::Call<double>&);

}  // namespace qor::bench
