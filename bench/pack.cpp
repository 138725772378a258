// Pack and unpack by increment against the compiler's plain strided loop, in the same run.
//
//   bench_pack [--write docs/performance.md] [--levels build/release/levels] [--benchmark_...]
//
// Runs itself on each level's library and prints a line per function and increment.

#include "bench/least_times.h"
#include "bench/run_levels.h"
#include "qor/vector_math.h"
#include "tools/section.h"

namespace {

using qor::bench::add;
using qor::bench::LeastTimes;
using qor::bench::number;

constexpr const char* kHead =
    R"(Written by `bench_pack --write docs/performance.md`. Times of a plain loop, `y[i] = a[i * inca]` or
`y[i * incy] = a[i]`, divided by ours: above 1 this library is faster. 1024 elements in cache; the
least of several repetitions, taken in turns.

| function | level | increment 2 | 3 | 7 | -1 |
|---|---|---|---|---|---|
)";

constexpr int64_t kCount = 1024;
constexpr int64_t kIncrements[] = {2, 3, 7, -1};
constexpr int32_t k64Bits = 0;  // the flag of 64-bit counts and increments

template <class T>
using Pack = void (*)(int64_t n, const T* a, int64_t inca, T* y, int32_t flag);
template <class T>
using Unpack = void (*)(int64_t n, const T* a, T* y, int64_t incy, int32_t flag);

template <class T>
[[gnu::noinline]] void plain_pack(int64_t n, const T* a, int64_t inca, T* __restrict__ y) {
  for (int64_t i = 0; i < n; ++i) y[i] = a[i * inca];
}
template <class T>
[[gnu::noinline]] void plain_unpack(int64_t n, const T* a, T* __restrict__ y, int64_t incy) {
  for (int64_t i = 0; i < n; ++i) y[i * incy] = a[i];
}

std::string name_of(const std::string& function, int64_t increment, const char* who) {
  return function + "/" + std::to_string(increment) + "/" + who;
}

// The vectors of a type: a dense one, and one that holds 1024 elements at any of the increments.
template <class T>
T* dense() {
  static std::vector<T> elements(kCount);
  return elements.data();
}
template <class T>
T* spread(int64_t increment) {
  static std::vector<T> elements(kCount * 7);
  return elements.data() + (increment < 0 ? kCount - 1 : 0);
}

template <class T>
void add_type(const std::string& letter, Pack<T> pack, Unpack<T> unpack) {
  for (const int64_t inc : kIncrements) {
    T* const y = dense<T>();
    T* const a = spread<T>(inc);
    add(name_of(letter + "PackI", inc, "ours"), [=] { pack(kCount, a, inc, y, k64Bits); });
    add(name_of(letter + "PackI", inc, "plain"), [=] { plain_pack(kCount, a, inc, y); });
    add(name_of(letter + "UnpackI", inc, "ours"), [=] { unpack(kCount, y, a, inc, k64Bits); });
    add(name_of(letter + "UnpackI", inc, "plain"), [=] { plain_unpack(kCount, y, a, inc); });
  }
}

void run_level(const qor::bench::Options& options) {
  add_type("s", qor_ark_kernel_sPackI_ttab[1], qor_ark_kernel_sUnpackI_ttab[1]);
  add_type("d", qor_ark_kernel_dPackI_ttab[1], qor_ark_kernel_dUnpackI_ttab[1]);
  add_type("c", qor_ark_kernel_cPackI_ttab[1], qor_ark_kernel_cUnpackI_ttab[1]);
  add_type("z", qor_ark_kernel_zPackI_ttab[1], qor_ark_kernel_zUnpackI_ttab[1]);
  LeastTimes times;
  qor::bench::run_registered(options.passed_on, times);
  for (const char* letter : {"s", "d", "c", "z"}) {
    for (const char* base : {"PackI", "UnpackI"}) {
      const std::string function = std::string(letter) + base;
      std::printf("| %s | %s |", function.c_str(), options.level.c_str());
      for (const int64_t inc : kIncrements) {
        const double ratio =
            times.of(name_of(function, inc, "plain")) / times.of(name_of(function, inc, "ours"));
        std::printf(" %s |", number(ratio, "%.2f").c_str());
      }
      std::printf("\n");
    }
  }
}

}  // namespace

int main(int count, char** words) {
  const qor::bench::Options options = qor::bench::parse(count, words);
  if (!options.level.empty()) {
    run_level(options);
    return 0;
  }
  std::string text = kHead;
  qor::bench::run_on_levels(options, [&](const std::string&, const auto& lines) {
    for (const std::string& line : lines) text.append(line).append("\n");
  });
  std::fputs(text.c_str(), stdout);
  if (!options.page.empty()) qor::tools::write_section(options.page, "Pack and unpack", text);
  return 0;
}
