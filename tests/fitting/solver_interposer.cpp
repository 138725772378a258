#include "tests/fitting/solver_interposer.h"

#include <dlfcn.h>

#include "qor/services.h"

namespace qor::test {
namespace {

constexpr int kNever = -1;
int calls_to_failure = kNever;

// The routine of the library behind this program, unless this call is to fail.
template <class... Arguments>
void pass_on(const char* name, int64_t* info, Arguments... arguments) {
  if (calls_to_failure >= 0 && calls_to_failure-- == 0) {
    *info = 1;
    return;
  }
  reinterpret_cast<void (*)(Arguments..., int64_t*)>(dlsym(RTLD_NEXT, name))(arguments..., info);
}

}  // namespace

FailingSolver::FailingSolver(int failing) { calls_to_failure = failing; }
FailingSolver::~FailingSolver() { calls_to_failure = kNever; }

}  // namespace qor::test

#pragma GCC visibility push(default)
using qor::test::pass_on;

void ddttrfb_4dfl(const int64_t* n, double* dl, double* d, double* du, int64_t* info) {
  pass_on("ddttrfb_4dfl", info, n, dl, d, du);
}
void ddttrsb_4dfl(const char* form, const int64_t* n, const int64_t* nrhs, const double* dl,
                  const double* d, const double* du, double* b, const int64_t* ldb, int64_t* info) {
  pass_on("ddttrsb_4dfl", info, form, n, nrhs, dl, d, du, b, ldb);
}
void ddtsvb_4dfl(const int64_t* n, const int64_t* nrhs, double* dl, double* d, double* du,
                 double* b, const int64_t* ldb, int64_t* info) {
  pass_on("ddtsvb_4dfl", info, n, nrhs, dl, d, du, b, ldb);
}
void sdttrfb_4dfl(const int64_t* n, float* dl, float* d, float* du, int64_t* info) {
  pass_on("sdttrfb_4dfl", info, n, dl, d, du);
}
void sdttrsb_4dfl(const char* form, const int64_t* n, const int64_t* nrhs, const float* dl,
                  const float* d, const float* du, float* b, const int64_t* ldb, int64_t* info) {
  pass_on("sdttrsb_4dfl", info, form, n, nrhs, dl, d, du, b, ldb);
}
void sdtsvb_4dfl(const int64_t* n, const int64_t* nrhs, float* dl, float* d, float* du, float* b,
                 const int64_t* ldb, int64_t* info) {
  pass_on("sdtsvb_4dfl", info, n, nrhs, dl, d, du, b, ldb);
}

#pragma GCC visibility pop
