// A host that loads the library by name, uses it on several threads, unloads and reloads it while
// threads end and the process forks, and ends while a thread is still inside a kernel. Arguments:
// the library's path, and how often it is unloaded under threads that end.

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

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

// The library goes while the last of the threads that used it end, a few more of them each time.
void unload_while_threads_end(const char* path, int rounds) {
  constexpr int kThreads = 8;
  for (int round = 0; round < rounds; ++round) {
    void* library = nullptr;
    const Exp exp = load(path, library);
    std::atomic<int> used{0};
    std::atomic<bool> end{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&, i] {
        use(exp);
        ++used;
        while (i < round % kThreads && !end) std::this_thread::yield();
      });
    }
    while (used != kThreads) std::this_thread::yield();
    end = true;
    dlclose(library);
    for (std::thread& thread : threads) thread.join();
  }
}

// Loads and unloads while another thread forks.
void unload_while_forking(const char* path, int rounds) {
  std::atomic<bool> stop{false};
  std::thread forking([&] {
    while (!stop) {
      const pid_t child = fork();
      if (child == 0) _exit(0);
      int status = -1;
      check(waitpid(child, &status, 0) == child && status == 0, "a child does not end well");
    }
  });
  for (int round = 0; round < rounds; ++round) {
    void* library = nullptr;
    use(load(path, library));
    dlclose(library);
  }
  stop = true;
  forking.join();
}

// The threads that BLAS starts outlive the call, and the library.
[[maybe_unused]] void unload_after_blas(const char* path) {
  using Gemm = void (*)(const char*, const char*, const int*, const int*, const int*, const double*,
                        const double*, const int*, const double*, const int*, const double*,
                        double*, const int*, size_t, size_t);
  void* library = nullptr;
  load(path, library);
  const auto gemm = reinterpret_cast<Gemm>(dlsym(library, "dgemm_"));
  check(gemm != nullptr, "dgemm_ is missing");
  const auto multiply = [gemm] {
    const int n = 400;
    const double one = 1.0, zero = 0.0;
    const std::vector<double> a(size_t{n} * n, 1.0);
    std::vector<double> c(a.size());
    gemm("N", "N", &n, &n, &n, &one, a.data(), &n, a.data(), &n, &zero, c.data(), &n, 1, 1);
    check(c.back() == n, "a wrong product");
  };
  std::thread([&] {
    multiply();
    dlclose(library);
  }).join();
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

int main(int argc, char** argv) {
  check(argc == 2 || argc == 3, "the library's path is wanted, and a number of rounds is taken");
  const int rounds = argc == 3 ? std::atoi(argv[2]) : 200;
  for (int round = 0; round < 3; ++round) unload_under_a_thread(argv[1]);
  unload_while_threads_end(argv[1], rounds);
  unload_while_forking(argv[1], 20);
#ifndef QOR_THREAD_SANITIZER
  for (int round = 0; round < 10; ++round) unload_after_blas(argv[1]);
  end_inside_a_kernel(argv[1]);
#endif
  return 0;
}
