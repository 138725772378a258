/* The default team of threads, as a program finds it beside the library; with all headers, as C. */
#include <qor/distributions.h>
#include <qor/fitting.h>
#include <qor/services.h>
#include <qor/statistics.h>
#include <qor/team.h>
#include <qor/vector_math.h>
#include <stdio.h>

static void mark(int64_t item, int64_t thread_index, int64_t threads, void* marks) {
  ((char*)marks)[item] = (char)('0' + (thread_index < threads));
}

int main(void) {
  char marks[] = "00000";
  qor_team_openmp()->run_items(5, 2, marks, mark);
  return puts(marks) < 0;
}
