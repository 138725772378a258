// Peers of a row's kernels that are found on this machine, each over whole vectors.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "reference/rows.h"

namespace qor::bench {

template <class T>
struct Peer {
  std::string library;
  std::function<void(const reference::Call<T>& call)> run;
};

inline constexpr const char* peer_libraries[] = {"libm", "libmvec", "SLEEF", "compiler"};

// The C library's function in a loop, the level's vector functions of libmvec and SLEEF (its 1-ulp
// ones), and for functions of an operator or an instruction the loop that the compiler vectorises
// for the level. Counts are multiples of a register's.
template <class T>
std::vector<Peer<T>> peers_of(const reference::Row<T>& row, const std::string& level);

// A vector function of a library, registers of this many bytes in and out.
template <int register_bytes, class T>
void apply(void* function, int inputs, const reference::Call<T>& call);

// The compiler's own loop of a function at a level, null where there is none.
using Loop = void (*)(int32_t n, const void* a, const void* b, void* y);
template <int register_bytes, class T>
Loop plain_loop(std::string_view base);

}  // namespace qor::bench
