/* The default team of threads: a ThreadHook on OpenMP, for callers that have none of their own. */
#ifndef QOR_TEAM_H
#define QOR_TEAM_H

#include "qor/api.h"
#include "qor/thread_hook.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The hook, never null; it lives as long as the program. Slot 4 answers what omp_get_max_threads
   does, so that OMP_NUM_THREADS and omp_set_num_threads rule. Inside a parallel region where
   OpenMP does not nest, a team is the calling thread alone, which does all items or members. */
QOR_API const ThreadHook* qor_team_openmp(void);

#ifdef __cplusplus
}
#endif

#endif
