/* Random number streams.

   A stream is one record that holds the identifier of a basic generator and that generator's whole
   state. Streams are made, copied, moved ahead, saved and loaded here; distributions.h turns their
   output into variates.

     StreamState *stream;
     uint32_t seed = 7;
     double r[100];
     if (__ostNewStreamEx(&stream, QOR_BRNG_MCG31M1, 1, &seed) == 0) {
       __ostdBRngMCG31M1(stream, 100, r, 0.0, 1.0);
     }
     __ostDeleteStream(&stream);

   Functions that return int32_t return a status unless told otherwise: 0 for success, else a
   negative QOR_STREAM_ number. A stream belongs to one thread at a time; different threads may use
   different streams without further care. Streams that were given are trusted: an argument that is
   no live stream is not detected. */
#ifndef QOR_STREAMS_H
#define QOR_STREAMS_H

#include <stdint.h>

#include "qor/api.h"
#include "qor/streams_registry.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Life of a stream ----------------------------------------------------------------------- */

/* Makes a stream of generator `id` from n initial values. -1000 leaves *stream alone, -4 sets it to
   null; any other failure is that of the generator, and the stream is there and must be deleted.
   Abstract streams have entries of their own, below. */
QOR_API int32_t __ostNewStreamEx(StreamState** stream, int32_t id, int32_t n,
                                 const uint32_t* params);

/* Makes a record whose generator state is not filled in yet. -1000 leaves *stream alone, -4 sets it
   to null. */
QOR_API int32_t __ostAllocateStream(StreamState** stream, const BrngProperties* table, int32_t id,
                                    int32_t row, int32_t sub);

/* Makes a copy with all chunks, those in reverse order. -1000 leaves *stream alone, -4 sets it to
   null, or, when it was a chunk that found no room, to a stream without chunks. */
QOR_API int32_t __ostCopyStream(StreamState** stream, const StreamState* source);

/* Copies the recurrence state (wordBytes * seedWords bytes of it) and replaces the chunks. What a
   leapfrog changed beyond the recurrence state, as a multiplier, stays that of the destination. The
   two streams must be of one generator, which is not tested. 0 or -4. */
QOR_API int32_t __ostCopyStreamState(StreamState* destination, const StreamState* source);

/* Frees the stream and its chunks and sets *stream to null. Always 0. */
QOR_API int32_t __ostDeleteStream(StreamState** stream);

/* The identifier. */
QOR_API int32_t __ostGetStreamStateBrng(const StreamState* stream);

/* The bytes of the stream's image, see below; -1102 when they are more than 2^31 - 1. */
QOR_API int32_t __ostGetStreamSize(const StreamState* stream);

/* ---- Skip-ahead and leapfrog ---------------------------------------------------------------- */

/* Lets the stream deliver every nstreams-th of its outputs, from offset k on. -1013 when nstreams
   is negative, -1002 when the generator does not offer it. */
QOR_API int32_t __ostLeapfrogStream(StreamState* stream, int32_t k, int32_t nstreams);

/* Moves the stream on by nskip outputs. -1003 when the generator does not offer it, -4. */
QOR_API int32_t __ostSkipAheadStream(StreamState* stream, uint64_t nskip);

/* The same with a count of n words, least significant first. -1004, -4. */
QOR_API int32_t __ostSkipAheadStreamEx(StreamState* stream, int32_t n, const uint64_t* nskip);

/* a^e mod m; 1 for e = 0. */
QOR_API uint32_t __ostiPowMod(uint32_t a, uint64_t e, uint32_t m);
QOR_API uint32_t __ostiPowMod2P31M1(uint32_t a, uint64_t e); /* m = 2^31 - 1 */
QOR_API uint64_t __ostiPowMod2P59(uint64_t a, uint64_t e);   /* m = 2^59 */

/* v = A^e v mod m, where A is the 3 by 3 companion matrix with rows (0, 1, 0), (0, 0, 1) and `row`.
   All values are residues below m. */
QOR_API void __ostiVect3PowMod(uint32_t* v, const uint32_t* row, uint32_t m, uint64_t e);

/* The same with an exponent of n words, least significant first. 0, or -4 with v unchanged. */
QOR_API int32_t __ostiVect3PowArrayMod(uint32_t* v, const uint32_t* row, uint32_t m, int32_t n,
                                       const uint64_t* nskip);

/* v = table[b] v for every set bit b of the n words of nskip, modulo 2^32 - 209 (M1) and 2^32 -
   22853 (M2). table[b] is a matrix of 9 words, by rows. */
QOR_API void __ostiVect3PowArrayMod_M1(uint32_t* v, int32_t n, const uint64_t* nskip,
                                       const uint32_t* table);
QOR_API void __ostiVect3PowArrayMod_M2(uint32_t* v, int32_t n, const uint64_t* nskip,
                                       const uint32_t* table);

/* x^nskip mod p over GF(2), where p has the given exponents, in increasing order, `degree` last.
   out: `words` 64-bit words, at least degree bits, least significant first. 0 or -4. */
QOR_API int32_t __ostPolyRem(uint64_t nskip, int32_t degree, int32_t terms,
                             const int32_t* exponents, int32_t words, uint64_t* out);

/* Skip-ahead of a generator whose step F is linear over GF(2) and has the characteristic polynomial
   p: the state becomes (x^nskip mod p)(F) of itself. By Horner's scheme, or with a window of eight
   bits, which costs 136 records of memory and saves most of the additions. The operations are the
   generator's. N ring words: the polynomial gets as many 64-bit words. 0 or -4; a failure leaves
   what `prepare` did. */
typedef void (*qor_ring_zero)(StreamState* x);
typedef void (*qor_ring_add)(StreamState* x, const StreamState* y); /* x = x + y, aligned on x */
typedef void (*qor_ring_copy)(StreamState* x, const StreamState* y);
typedef void (*qor_ring_step)(StreamState* x);
typedef void (*qor_ring_finish)(StreamState* stream, const StreamState* x, int32_t remainder);
/* 0: the stream stands where it should; 1: *nskip steps are still to do. */
typedef int32_t (*qor_ring_prepare)(StreamState* stream, uint64_t* nskip, int32_t* remainder);

QOR_API int32_t __ost_SkipAheadHorner(StreamState* stream, qor_ring_zero zero, qor_ring_add add,
                                      qor_ring_copy copy, qor_ring_step step,
                                      qor_ring_finish finish, qor_ring_prepare prepare,
                                      uint64_t nskip, int32_t N, int32_t degree, int32_t stateBytes,
                                      int32_t terms, const int32_t* exponents);
QOR_API int32_t __ost_SkipAheadSWin(StreamState* stream, qor_ring_zero zero, qor_ring_add add,
                                    qor_ring_copy copy, qor_ring_step step, qor_ring_finish finish,
                                    qor_ring_prepare prepare, uint64_t nskip, int32_t N,
                                    int32_t degree, int32_t stateBytes, int32_t terms,
                                    const int32_t* exponents);

/* ---- Saving and loading --------------------------------------------------------------------- */

/* Images, in a file and in memory alike, are tied to little-endian byte order; docs/streams.md has
   the format. `name` has `length` bytes, or ends with a zero when length is negative. All four
   return 0 or one of -4, -1100 to -1110, -1130, -1200; a load that fails sets *stream to null. A
   loaded stream has its chunks in reverse order. A stream of more than 65,535 chunks has no image:
   saving it is -1102, and nothing is opened or written. */
QOR_API int32_t __ostSaveStreamF(const StreamState* stream, const char* name, int32_t length);
QOR_API int32_t __ostLoadStreamF(StreamState** stream, const char* name, int32_t length);

/* `memory` holds __ostGetStreamSize bytes at least; there is no test. 0, or -1102 as told. */
QOR_API int32_t __ostSaveStreamM(const StreamState* stream, void* memory);
/* The image's own sizes are all that is known of its length. */
QOR_API int32_t __ostLoadStreamM(StreamState** stream, const void* memory);

/* ---- Chunks and shared data ----------------------------------------------------------------- */

/* An identifier of shared data; all zero for none. */
typedef struct qor_shared_id {
  uint64_t time, number;
} qor_shared_id;

/* A block of data that hangs from a stream. */
typedef struct StreamChunk {
  int32_t id;
  uint32_t size; /* bytes of data */
  void* data;
  struct StreamChunk* next;
  qor_shared_id shared; /* all zero: the data is this chunk's own */
} StreamChunk;

/* Adds a chunk at the head of the list. `data`, a block of qor_serv_allocate, belongs to the stream
   from then on; with a shared identifier, the data that is registered under it is taken instead, if
   there is any, with its size, and `data` stays with the caller. 0, or -4 with everything as
   before. */
QOR_API int32_t __ostAddChunk(StreamState* stream, int32_t id, const qor_shared_id* shared,
                              void* data, uint32_t size);
/* The data of the chunk with this id that was added last, or null. */
QOR_API void* __ostSearchChunk(const StreamState* stream, int32_t id);
QOR_API int32_t __ostGetNumChunks(const StreamState* stream);
/* Always 0. */
QOR_API int32_t __ostDeleteChunks(StreamState* stream);
/* Always 0. The list then starts with the last chunk that stayed: of several, the others are cut
   off. For lists that keep one chunk at most. */
QOR_API int32_t __ostDeleteChunksById(StreamState* stream, int32_t id);
/* Adds copies of all chunks, which reverses their order. 0, or -4 with no chunk left at the
   destination. */
QOR_API int32_t __ostCopyChunks(StreamState* destination, const StreamState* source);

/* An entry of the table of shared read-only data. The table is locked in each of these functions;
   an entry's address holds good while the caller owns a reference and nobody else lets one go. */
typedef struct qor_shared_entry {
  qor_shared_id id;
  uint32_t references; /* chunks that hold the data */
  void* data;
  int64_t size; /* bytes of data, or QOR_SHARED_SIZE_UNKNOWN */
} qor_shared_entry;
#define QOR_SHARED_SIZE_UNKNOWN (-1)

QOR_API int32_t __ostFindGlobRODataTableEntry(qor_shared_entry** entry, const qor_shared_id* id);
/* An entry with one reference, whose data has a size that is not known: chunks that hold it keep
   the size they were added with. -3001, with *entry left alone, when 128 are in use. */
QOR_API int32_t __ostCreateGlobRODataTableEntry(qor_shared_entry** entry, const qor_shared_id* id,
                                                void* data);
/* Lets the chunk hold the data of the entry `id`, with its size, if it is known; nothing when there
   is none. Always 0. */
QOR_API int32_t __ostRegisterGlobRODataReference(StreamChunk* chunk, const qor_shared_id* id);
/* Takes a reference from the entry `id`; at 0 the data is freed and the entry goes. Always 0. */
QOR_API int32_t __ostUnregisterGlobRODataReference(const qor_shared_id* id);
/* An identifier that no entry has: a time stamp and x, sign-extended. Always 0. */
QOR_API int32_t __ostGenerateNewGlobalRODataTableEntryId(qor_shared_id* id, int32_t x);

/* ---- Abstract streams ----------------------------------------------------------------------- */

/* An abstract stream reads numbers from a ring of n elements that the caller owns. When they run
   out, the callback is asked for more: it puts between *wanted and *room elements into the ring
   from element *position on, going round at *n, and returns how many; fewer than *wanted makes it
   be called again. It runs on the caller's thread, inside the output function. The last element
   type is that of the ring: uint32_t, double or float. */
typedef int32_t (*qor_ring_refill_i)(StreamState* stream, int32_t* n, uint32_t* buffer,
                                     int32_t* wanted, int32_t* room, int32_t* position);
typedef int32_t (*qor_ring_refill_d)(StreamState* stream, int32_t* n, double* buffer,
                                     int32_t* wanted, int32_t* room, int32_t* position);
typedef int32_t (*qor_ring_refill_s)(StreamState* stream, int32_t* n, float* buffer,
                                     int32_t* wanted, int32_t* room, int32_t* position);

/* The ring's reals lie between A and B; output is mapped from there. -3 when n is 0, a pointer is
   null or A is at or above B; -4. */
QOR_API int32_t __ostiNewAbstractStream(StreamState** stream, int32_t n, uint32_t* buffer,
                                        qor_ring_refill_i callback);
QOR_API int32_t __ostdNewAbstractStream(StreamState** stream, int32_t n, double* buffer, double A,
                                        double B, qor_ring_refill_d callback);
QOR_API int32_t __ostsNewAbstractStream(StreamState** stream, int32_t n, float* buffer, float A,
                                        float B, qor_ring_refill_s callback);

/* ---- Generators ----------------------------------------------------------------------------- */

/* clang-format off */
#define QOR_BRNG_INIT(name) \
  QOR_API int32_t __ostBRng##name##InitStream(int32_t method, StreamState *stream, int32_t n, \
                                              const void *params);
#define QOR_BRNG_OUTPUTS(name) \
  QOR_API int32_t __ostsBRng##name(StreamState *stream, int32_t n, float *r, float a, float b); \
  QOR_API int32_t __ostdBRng##name(StreamState *stream, int32_t n, double *r, double a, double b); \
  QOR_API int32_t __ostiBRng##name(StreamState *stream, int32_t n, void *r);
#define QOR_BRNG(name) QOR_BRNG_INIT(name) QOR_BRNG_OUTPUTS(name)
/* clang-format on */

QOR_BRNG(MCG31M1)
QOR_BRNG(R250)
QOR_BRNG(MRG32K3A)
QOR_BRNG(MCG59)
QOR_BRNG(WH) /* a word is four uint32_t */

/* Of the nine output functions of the abstract generators six are of another type than the ring:
   they return -1122 and touch nothing. */
QOR_BRNG(iAbstract)
QOR_BRNG(dAbstract)
QOR_BRNG(sAbstract)

#undef QOR_BRNG
#undef QOR_BRNG_INIT
#undef QOR_BRNG_OUTPUTS

/* ---- Processor ------------------------------------------------------------------------------ */

/* 1 when the processor has SSE2 and the AES rounds, RDRAND, the vector AES rounds; else 0. */
QOR_API int32_t __ostCPUisAES(void);
QOR_API int32_t __ostCPUisRDRAND(void);
QOR_API int32_t __ostCPUisVAES(void);

#ifdef __cplusplus
}
#endif

#endif
