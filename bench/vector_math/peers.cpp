#include "bench/vector_math/peers.h"

#include <dlfcn.h>

#include <initializer_list>

namespace qor::bench {
namespace {

using reference::Call;
using reference::Row;

// What a level is to libmvec and SLEEF.
struct Level {
  std::string_view name;
  int register_bytes;
  const char* libmvec_letter;
  const char* sleef_suffix;
};
constexpr Level kLevels[] = {
    {"v1", 16, "b", "sse2"}, {"v3", 32, "d", "avx2"}, {"v4", 64, "e", "avx512f"}};

const Level& level_of(std::string_view name) {
  for (const Level& level : kLevels) {
    if (level.name == name) return level;
  }
  return kLevels[0];
}

void* symbol(const char* library, const std::string& name) {
  void* const handle = dlopen(library, RTLD_NOW);
  return handle == nullptr ? nullptr : dlsym(handle, name.c_str());
}

template <class T>
constexpr bool single = sizeof(T) == sizeof(float);

template <class T>
void* libmvec_function(const Level& level, const Row<T>& row) {
  std::string name = "_ZGV";
  name.append(level.libmvec_letter).append("N");
  name.append(std::to_string(level.register_bytes / static_cast<int>(sizeof(T))));
  name.append(row.shape.inputs == 1 ? "v_" : "vv_").append(row.reference->libm);
  return symbol("libmvec.so.1", name.append(single<T> ? "f" : ""));
}

// The 1-ulp form, that of half an ulp where there is no other, or the one form of exact functions.
template <class T>
void* sleef_function(const Level& level, const Row<T>& row) {
  std::string stem = "Sleef_";
  stem.append(row.reference->libm).append(single<T> ? "f" : "d");
  stem.append(std::to_string(level.register_bytes / static_cast<int>(sizeof(T)))).append("_");
  for (const char* accuracy : {"u10", "u05", ""}) {
    const std::string name = std::string(stem).append(accuracy).append(level.sleef_suffix);
    if (void* const found = symbol("libsleef.so.3", name)) return found;
  }
  return nullptr;
}

template <class T>
void loop_over(void* function, int inputs, const Call<T>& call) {
  const auto unary = reinterpret_cast<T (*)(T)>(function);
  const auto binary = reinterpret_cast<T (*)(T, T)>(function);
  for (int32_t i = 0; i < call.n; ++i) {
    call.out[0][i] = inputs == 1 ? unary(call.in[0][i]) : binary(call.in[0][i], call.in[1][i]);
  }
}

template <class T>
void apply_on(const Level& level, void* function, int inputs, const Call<T>& call) {
  switch (level.register_bytes) {
    case 16:
      return apply<16>(function, inputs, call);
    case 32:
      return apply<32>(function, inputs, call);
    default:
      return apply<64>(function, inputs, call);
  }
}

template <class T>
Loop loop_of(const Level& level, std::string_view base) {
  switch (level.register_bytes) {
    case 16:
      return plain_loop<16, T>(base);
    case 32:
      return plain_loop<32, T>(base);
    default:
      return plain_loop<64, T>(base);
  }
}

}  // namespace

template <class T>
std::vector<Peer<T>> peers_of(const Row<T>& row, const std::string& level_name) {
  const Level& level = level_of(level_name);
  std::vector<Peer<T>> peers;
  const int inputs = row.shape.inputs;
  if (row.reference->libm != nullptr && row.shape.outputs == 1 && row.shape.scalars == 0 &&
      row.shape.input_parts == 1) {
    const auto name = std::string(row.reference->libm).append(single<T> ? "f" : "");
    if (void* const f = symbol("libm.so.6", name)) {
      peers.push_back({"libm", [=](const Call<T>& call) { loop_over(f, inputs, call); }});
    }
    if (void* const f = libmvec_function(level, row)) {
      peers.push_back({"libmvec", [=](const Call<T>& c) { apply_on(level, f, inputs, c); }});
    }
    if (void* const f = sleef_function(level, row)) {
      peers.push_back({"SLEEF", [=](const Call<T>& c) { apply_on(level, f, inputs, c); }});
    }
  }
  if (row.letter == 's' || row.letter == 'd') {
    if (const Loop loop = loop_of<T>(level, row.base)) {
      peers.push_back(
          {"compiler", [=](const Call<T>& c) { loop(c.n, c.in[0], c.in[1], c.out[0]); }});
    }
  }
  return peers;
}

template std::vector<Peer<float>> peers_of(const Row<float>&, const std::string&);
template std::vector<Peer<double>> peers_of(const Row<double>&, const std::string&);

}  // namespace qor::bench
