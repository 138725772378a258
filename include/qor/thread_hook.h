/* ThreadHook: how a caller lends threads to the library.

   The library starts no threads. Entries that can use several take the address of a ThreadHook, a
   table of five functions, as their last argument; null means the calling thread alone. Results do
   not depend on which hook is given beyond what an entry documents.

   All counts and indices are 64-bit signed. A context is passed through untouched. Slots 0 to 2
   return when all their calls have returned; calls may come from any thread, in any order. */
#ifndef QOR_THREAD_HOOK_H
#define QOR_THREAD_HOOK_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* One item of work. thread_index, from 0 to threads - 1, is not shared by calls that overlap. */
typedef void (*qor_item_routine)(int64_t item, int64_t thread_index, int64_t threads,
                                 void* context);

/* One member of a team; `word` is free for the hook's own use and not read by the library. */
typedef void (*qor_team_routine)(int64_t thread_index, int64_t word, int64_t threads,
                                 void* context);

typedef struct ThreadHook {
  /* 0: calls routine for each item from 0 to items - 1, on up to `threads` threads; 0 leaves their
     number to the hook. */
  void (*run_items)(int64_t items, int64_t threads, void* context, qor_item_routine routine);
  /* 1: as slot 0. */
  void (*run_more_items)(int64_t items, int64_t threads, void* context, qor_item_routine routine);
  /* 2: calls routine once for each thread index from 0 to threads - 1. */
  void (*run_team)(int64_t threads, void* context, qor_team_routine routine);
  /* 3: unused, may be null. */
  void (*unused)(void);
  /* 4: returns the number of threads available, at least 1. */
  int64_t (*thread_count)(void);
} ThreadHook;

#ifdef __cplusplus
}
#endif

#endif
