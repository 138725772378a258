/* Random number streams: statuses, the head of a record, and the registry of generators. streams.h
   has this with the rest. */
#ifndef QOR_STREAMS_REGISTRY_H
#define QOR_STREAMS_REGISTRY_H

#include <stdint.h>

#include "qor/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Statuses ------------------------------------------------------------------------------- */

enum {
  QOR_STREAM_OK = 0,
  QOR_STREAM_BAD_METHOD = -2,       /* initStream: a method other than 0 to 3 */
  QOR_STREAM_BAD_ARGUMENTS = -3,    /* abstract streams: no ring, no callback, empty interval */
  QOR_STREAM_NO_MEMORY = -4,        /* an allocation failed, or the registry is full */
  QOR_STREAM_NULL_POINTER = -5,     /* a registered row lacks a function; a ring without buffer */
  QOR_STREAM_BAD_GENERATOR = -1000, /* no generator has this identifier */
  QOR_STREAM_NO_LEAPFROG = -1002,   /* the generator does not offer it */
  QOR_STREAM_NO_SKIP_AHEAD = -1003, /* likewise */
  QOR_STREAM_NO_SKIP_AHEAD_EX = -1004, /* likewise */
  QOR_STREAM_BAD_STATE_BYTES = -1008,  /* registration: stateBytes negative */
  QOR_STREAM_BAD_WORD_BYTES = -1009,   /* registration: wordBytes none of 4, 8, 16 */
  QOR_STREAM_BAD_SEED_WORDS = -1010,   /* registration: seedWords below 1 */
  QOR_STREAM_BAD_WORD_BITS = -1011,    /* registration: wordBits below 1 */
  QOR_STREAM_SEQUENCE_ENDS = -1012,    /* quasi-random: the index would pass 2^32 - 1 */
  QOR_STREAM_BAD_STRIDE = -1013,       /* leapfrog: nstreams negative */
  QOR_STREAM_NO_FULL_WORDS = -1014,    /* UniformBits32, 64: the words have too few bits */
  QOR_STREAM_FILE_CLOSE = -1100,       /* closing the file failed */
  QOR_STREAM_FILE_OPEN = -1101,        /* opening the file failed */
  QOR_STREAM_FILE_WRITE = -1102,       /* a write failed */
  QOR_STREAM_FILE_READ = -1103,        /* the image ends early, or has chunks of an unknown form */
  QOR_STREAM_BAD_FILE = -1110,         /* no stream image, or one of another size */
  QOR_STREAM_CALLBACK_COUNT = -1120,   /* abstract: the callback's count is negative or too large */
  QOR_STREAM_CALLBACK_EMPTY = -1121,   /* abstract: the callback gave nothing */
  QOR_STREAM_WRONG_TYPE = -1122,       /* abstract: an output function of another type */
  QOR_STREAM_NO_RDRAND = -1130,        /* the processor lacks RDRAND */
  QOR_STREAM_RDRAND_FAILED = -1131,    /* RDRAND failed past the retry limit */
  QOR_STREAM_NO_AES = -1140,           /* the processor lacks the AES rounds */
  QOR_STREAM_BAD_IMAGE = -1200,        /* -1110 of an image in memory */
  QOR_STREAM_NO_SHARED_ENTRY = -3000,  /* shared data: no such entry, or a null identifier */
  QOR_STREAM_SHARED_TABLE_FULL = -3001 /* shared data: all 128 entries are in use */
};

/* ---- Record and registry -------------------------------------------------------------------- */

/* The head of a record; the generator's state follows. The head of the chunk list is kept in 64
   bits whatever the width of a pointer, sign-extended; 0 when there are none. */
typedef struct StreamState {
  int32_t brng; /* the identifier, exactly as given at creation */
  uint8_t tagA; /* 1 */
  uint8_t tagB; /* 0 */
  uint16_t tagC;
  int64_t chunks;
} StreamState;

/* Identifiers: row r of __RegBrngsNew is (r + 1) * 0x100000 plus the number of a member, for the
   families. Below 0x100000 the numbers of __RegBrngs hold: 0 to 3 as the first four here, 4 to 276
   the 273 members of WH, 277 SOBOL, 278 NIEDERR. */
enum {
  QOR_BRNG_MCG31M1 = 0x100000,
  QOR_BRNG_R250 = 0x200000,
  QOR_BRNG_MRG32K3A = 0x300000,
  QOR_BRNG_MCG59 = 0x400000,
  QOR_BRNG_WH = 0x500000, /* + member, 0 to 272 */
  QOR_BRNG_SOBOL = 0x600000,
  QOR_BRNG_NIEDERR = 0x700000,
  QOR_BRNG_MT19937 = 0x800000,
  QOR_BRNG_MT2203 = 0x900000, /* + member, 0 to 6023 */
  QOR_BRNG_IABSTRACT = 0xA00000,
  QOR_BRNG_DABSTRACT = 0xB00000,
  QOR_BRNG_SABSTRACT = 0xC00000,
  QOR_BRNG_SFMT19937 = 0xD00000,
  QOR_BRNG_TRNG = 0xE00000,
  QOR_BRNG_ARS5 = 0xF00000,
  QOR_BRNG_PHILOX4X32X10 = 0x1000000
};

/* What initStream does, by its method; any other gives -2, one that is not offered its refusal.
     QOR_BRNG_CREATE         fills the state from n initial values, params: const uint32_t[n]
     QOR_BRNG_LEAPFROG       keeps every n-th output from offset k on, params: const int32_t *k
     QOR_BRNG_SKIP_AHEAD     params: const uint64_t *nskip; n is 2
     QOR_BRNG_SKIP_AHEAD_EX  params: const uint64_t[n], least significant word first */
enum {
  QOR_BRNG_CREATE = 0,
  QOR_BRNG_LEAPFROG = 1,
  QOR_BRNG_SKIP_AHEAD = 2,
  QOR_BRNG_SKIP_AHEAD_EX = 3
};
typedef int32_t (*qor_init_stream)(int32_t method, StreamState* stream, int32_t n,
                                   const void* params);

/* Output functions. They write n reals in the interval from a to b, or n words of wordBytes bytes,
   to r and move the state on by as many. n is at least 1 (0 writes nothing here). How a sequence is
   cut into calls does not change it. */
typedef int32_t (*qor_s_brng)(StreamState* stream, int32_t n, float* r, float a, float b);
typedef int32_t (*qor_d_brng)(StreamState* stream, int32_t n, double* r, double a, double b);
typedef int32_t (*qor_i_brng)(StreamState* stream, int32_t n, void* r);

/* A row of the registry. */
typedef struct BrngProperties {
  int32_t stateBytes; /* of the whole record, the 16 bytes of StreamState included */
  int32_t seedWords;  /* words of wordBytes bytes that make up the recurrence state */
  int32_t zeroFlag;   /* kept for the caller; the library does not read it */
  int32_t wordBytes;  /* of an output word: 4, 8 or 16 */
  int32_t wordBits;   /* significant bits of a word */
  qor_init_stream initStream;
  qor_s_brng sBRng;
  qor_d_brng dBRng;
  qor_i_brng iBRng;
} BrngProperties;

enum { QOR_BRNG_ROWS = 512 };
extern QOR_API_DATA BrngProperties __RegBrngs[QOR_BRNG_ROWS];    /* the first numbering, frozen */
extern QOR_API_DATA BrngProperties __RegBrngsNew[QOR_BRNG_ROWS]; /* 16 rows, then registered ones */

/* Returns the base of the table that holds `id`, its row and its number within a family. Validates
   nothing. */
QOR_API BrngProperties* __ostGetBrngBaseOffset(int32_t id, int32_t* row, int32_t* sub);

/* 0 or -1000. For __RegBrngs any row below 281 will do, as it always has; 279 and 280 are empty and
   streams of them are refused at creation. */
QOR_API int32_t __ostIsBrngValid(const BrngProperties* table, int32_t row, int32_t sub);

/* Copies the row of `id` out; -1000 leaves the output alone. */
QOR_API int32_t __ostGetBrngProperties(int32_t id, BrngProperties* properties);

/* The number of rows in use in __RegBrngsNew. */
QOR_API int32_t __ostGetNumRegBrngs(void);

/* Adds a generator to __RegBrngsNew. Returns its identifier (positive), or -1008, -1009, -1010,
   -1011, -5 for the first field found wrong, -4 when all 512 rows are in use. Not to be called
   while another thread uses this function or looks rows up. */
QOR_API int32_t __ostRegisterBrng(const BrngProperties* properties);

#ifdef __cplusplus
}
#endif

#endif
