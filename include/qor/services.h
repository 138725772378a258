/* Services: what qor_ark_base asks of its host. libqor_core implements them; a host may bring a
   library of its own in its place, as long as these functions keep their meaning. */
#ifndef QOR_SERVICES_H
#define QOR_SERVICES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Memory.
   Returns a block of at least `size` bytes whose address is a multiple of `alignment` (a power of
   two), or null when there is none. A size of 0 gives a block of its own. Any thread. */
void* qor_serv_allocate(size_t size, size_t alignment);

/* Gives back a block of qor_serv_allocate; null does nothing. Any thread. */
void qor_serv_deallocate(void* block);

/* Copies `count` bytes. Returns 0; or 22 when a pointer is null, 34 when `count` exceeds
   `destination_size` (in both cases the destination, where there is one, is cleared and nothing is
   copied). A count of 0 copies nothing and returns 0. The ranges must not overlap. */
int qor_serv_memcpy_s(void* destination, size_t destination_size, const void* source, size_t count);

/* Locks. A lock is a 32-bit word, 0 when free and 1 when held; one thread holds it at a time, not
   recursively. A waiting thread spins for a while, then yields its processor. */
void qor_serv_lock(int32_t* word);
void qor_serv_unlock(int32_t* word);

/* Locks of the process, one word each for all copies of the library. Whoever forks holds them all
   meanwhile, taken in this order: the child finds them free, and what they guard whole. A thread
   that holds one of them takes later ones only. */
enum qor_serv_process_locks {
  QOR_SERV_SLOT_LOCK,
  QOR_SERV_HEAP_LOCK,
  QOR_SERV_ENVIRONMENT_LOCK,
  QOR_SERV_SHARED_DATA_LOCK,
  QOR_SERV_THREADS_LOCK, /* of the services themselves */
  QOR_SERV_PROCESS_LOCKS /* how many there are */
};
int32_t* qor_serv_process_lock(int number);

/* Blocks of threads.
   A heap holds zeroed blocks, all of which go when it is closed. A slot has a place for one of
   these blocks on every thread. A thread that ends gives the block in its place back to the heap,
   until the slot is closed, which empties all places; the heap is closed after its slots. Threads
   may end at any time, also while a slot is closed and whoever opened it is unloaded: these
   services stay loaded until the process ends. */
typedef struct qor_serv_heap qor_serv_heap;
qor_serv_heap* qor_serv_open_heap(void); /* null without memory, as the next */
void* qor_serv_heap_allocate(qor_serv_heap* heap, size_t size);
void qor_serv_heap_free(void* block);
void qor_serv_close_heap(qor_serv_heap* heap); /* null does nothing */

/* A slot is a key of pthread_getspecific, which has the address of the calling thread's place, or
   null while there is none. Setting a place makes it; 1, or 0 without memory or slot. */
typedef struct qor_serv_place {
  void* block;
} qor_serv_place;
#define QOR_SERV_NO_SLOT (~0u)
unsigned qor_serv_open_slot(void); /* QOR_SERV_NO_SLOT when there is no more */
int qor_serv_set_slot(unsigned slot, void* block);
void qor_serv_close_slot(unsigned slot); /* QOR_SERV_NO_SLOT does nothing */

/* Environment.
   Copies the value of the variable `name`, with its terminating zero, into `buffer` of `size` bytes
   and returns its length. Returns 0, with an empty buffer, when the variable is unset or its value
   does not fit. */
int qor_serv_getenv(const char* name, char* buffer, int size);

/* Messages.
   Prints the numbered message on standard error, one line, with `count` arguments behind, whose
   types the message fixes: 748 name and index; 749 to 754 name; 755 to 766 index and value; 773
   none (name: const char *, index: int, value: double). A `level` below 1 prints nothing. An
   unknown number prints itself, and its arguments are not looked at. */
void qor_serv_print(int level, int message, int count, ...);

/* Ends the process with the status, as exit() does. */
void qor_serv_exit(int status);

/* Returns 1 once the process has begun to end, when other threads may still be at work and nothing
   that they use may be freed; else 0. */
int qor_serv_process_ending(void);

/* Processor.
   Returns 1 when the processor (and the system's saving of its registers) has the feature, else 0:
   0 SSE2, 1 AES rounds, 2 AVX2 with FMA, 3 AVX-512 F, BW, CD, DQ and VL, 4 vector AES rounds,
   5 RDRAND. Any other number gives 0. */
int qor_serv_cpu_feature_test(int feature);

/* Tridiagonal systems, d for double and s for float. All arguments by address, counts 64-bit.
   The matrix of n rows has the sub-diagonal dl (n - 1 values), the diagonal d (n) and the
   super-diagonal du (n - 1). b holds nrhs right-hand sides, column after column at a distance of
   ldb values, at least n each; solutions take their place. Any thread. */

/* Factors the matrix in place into L U without pivoting: d and du become U, dl the multipliers of
   the unit L. *info is 0, or the number, from 1, of the first pivot that is zero. */
void ddttrfb_4dfl(const int64_t* n, double* dl, double* d, double* du, int64_t* info);
void sdttrfb_4dfl(const int64_t* n, float* dl, float* d, float* du, int64_t* info);

/* Solves with a factor. form is "N"; *info is 0, or -1 for another form. */
void ddttrsb_4dfl(const char* form, const int64_t* n, const int64_t* nrhs, const double* dl,
                  const double* d, const double* du, double* b, const int64_t* ldb, int64_t* info);
void sdttrsb_4dfl(const char* form, const int64_t* n, const int64_t* nrhs, const float* dl,
                  const float* d, const float* du, float* b, const int64_t* ldb, int64_t* info);

/* Factors and solves; *info as of the factorisation, and b is untouched when it is not 0. */
void ddtsvb_4dfl(const int64_t* n, const int64_t* nrhs, double* dl, double* d, double* du,
                 double* b, const int64_t* ldb, int64_t* info);
void sdtsvb_4dfl(const int64_t* n, const int64_t* nrhs, float* dl, float* d, float* du, float* b,
                 const int64_t* ldb, int64_t* info);

#ifdef __cplusplus
}
#endif

#endif
