/* The installed library from C, by all of its headers: a kernel through its row, and what the
   machinery reports. */
#include <errno.h>
#include <math.h>
#include <qor/distributions.h>
#include <qor/fitting.h>
#include <qor/services.h>
#include <qor/statistics.h>
#include <qor/vector_math.h>

int main(void) {
  const double x[2] = {1000.0, 0.0};
  double y[2];
  errno = 0;
  qor_ark_kernel_dExp_ttab[1](2, x, y);
  return !(isinf(y[0]) && y[1] == 1.0 && _arkGetErrStatus() == QOR_ERROR_OVERFLOW &&
           errno == ERANGE);
}
