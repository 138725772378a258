// A host that loads the library by name, uses it on several threads, unloads and reloads it, and
// ends while a thread is still inside a kernel. Arguments: the library's path.

#include <dlfcn.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

using Exp = void (*)(int, const double*, double*);

void check(bool good, const char* what) {
  if (good) return;
  std::fprintf(stderr, "unload: %s\n", what);
  std::_Exit(1);
}

Exp load(const char* path, void*& library) {
  library = dlopen(path, RTLD_NOW);
  check(library != nullptr, "the library does not load");
  const auto exp = reinterpret_cast<Exp>(dlsym(library, "_arkdExp"));
  check(exp != nullptr, "_arkdExp is missing");
  return exp;
}

void use(Exp exp) {
  const double x = 0.0;
  double y = 0.0;
  exp(1, &x, &y);
  check(y == 1.0, "a wrong value");
}

// A thread that used the library outlives it.
void unload_under_a_thread(const char* path) {
  void* library = nullptr;
  const Exp exp = load(path, library);
  std::atomic<int> stage{0};
  std::thread user([&] {
    use(exp);
    stage = 1;
    while (stage != 2) std::this_thread::yield();
  });
  while (stage != 1) std::this_thread::yield();
  use(exp);
  dlclose(library);
  check(dlopen(path, RTLD_NOW | RTLD_NOLOAD) == nullptr, "the library stays loaded");
  stage = 2;
  user.join();
}

// Leaves a thread at work; the process may now end.
[[maybe_unused]] void end_inside_a_kernel(const char* path) {
  void* library = nullptr;
  const Exp exp = load(path, library);
  static std::atomic<bool> running{false};
  std::thread([exp] {
    for (;;) {
      use(exp);
      running = true;
    }
  }).detach();
  while (!running) std::this_thread::yield();
}

}  // namespace

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define QOR_THREAD_SANITIZER 1  // ends with status 1 when a thread runs on at the end
#endif
#endif

// The leak sanitizer asks for this: libgomp, which the library's BLAS brings along, keeps a few
// bytes when it is unloaded.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libgomp.so\n"; }

int main(int argc, char** argv) {
  check(argc == 2, "one argument, the library's path, is wanted");
  for (int round = 0; round < 3; ++round) unload_under_a_thread(argv[1]);
#ifndef QOR_THREAD_SANITIZER
  end_inside_a_kernel(argv[1]);
#endif
  return 0;
}
