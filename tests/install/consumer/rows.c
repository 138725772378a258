/* Every row and entry of the list through the one public header: slots hold kernels, the four names
   run the slots that they name, and what the machinery reports arrives. */
#include <errno.h>
#include <math.h>
#include <qor/vector_math.h>
#include <stdio.h>

static int failures = 0;

static void check(int condition, const char* what) {
  if (!condition) {
    printf("failed: %s\n", what);
    ++failures;
  }
}

/* Two addresses, hidden from a compiler that knows that two functions never share one. */
static int same(void (*volatile a)(void), void (*volatile b)(void)) { return a == b; }

#define CHECK_ROW(f)                                                                  \
  for (int slot = 0; slot < 3; ++slot) {                                              \
    check(qor_ark_kernel_##f##_ttab[slot] != 0, "a kernel in every slot of " #f);     \
    check(qor_ark_kernel_##f##_ctab[slot] > 0, "a cost figure in every slot of " #f); \
  }                                                                                   \
  check(same((void (*)(void))_ark##f, (void (*)(void))_ark##f##_HA),                  \
        "one address for " #f " and " #f "_HA");
#define CHECK_s(f) \
  CHECK_ROW(f)     \
  check(!same((void (*)(void))_ark##f##_21, (void (*)(void))_ark##f##_11), "stubs of " #f);
#define CHECK_d(f) \
  CHECK_ROW(f)     \
  check(!same((void (*)(void))_ark##f##_50, (void (*)(void))_ark##f##_26), "stubs of " #f);
#define CHECK_c(f) CHECK_s(f)
#define CHECK_z(f) CHECK_d(f)
#define CHECK_FUNCTION(t, name, ...) CHECK_##t(t##name) CHECK_##t(t##name##I)
#define CHECK_PACK(t, name, ...) CHECK_##t(t##name)

static void check_rows(void) {
  QOR_FUNCTION_ROWS(CHECK_FUNCTION)
  QOR_PACK_ROWS(CHECK_PACK)
}

static int32_t patched_count;
static void patch(int32_t n, const double* a, double* y) {
  patched_count = n;
  y[0] = -a[0];
}

/* A row is writable data, and what stands there is what its stub runs at the next call. */
static void check_patching(void) {
  double x = 1.0, y = 0.0;
  void (*kernel)(int32_t, const double*, double*) = qor_ark_kernel_dExp_ttab[1];
  qor_ark_kernel_dExp_ttab[1] = patch;
  _arkdExp(1, &x, &y);
  check(patched_count == 1 && y == -1.0, "a patched slot takes effect");
  qor_ark_kernel_dExp_ttab[1] = kernel;
  _arkdExp(1, &x, &y);
  check(fabs(y - 2.718281828459045) < 1e-15, "the kernel is back");
}

static void check_report(void) {
  double x[2] = {1000.0, 0.0}, y[2];
  errno = 0;
  _arkClearErrStatus();
  _arkdExp(2, x, y);
  check(isinf(y[0]) && y[1] == 1.0, "values around an overflow");
  check(_arkGetErrStatus() == QOR_ERROR_OVERFLOW && errno == ERANGE, "status and errno");
}

int main(void) {
  check_rows();
  check_patching();
  check_report();
  return failures != 0;
}
