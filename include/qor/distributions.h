/* Distributions: variates from a random number stream (streams.h).

   Every entry takes a method word, the stream, the count n and the array r that it fills, then the
   distribution's parameters. The low part of the method word is the number of the method, from 0;
   bit 30 asks for results that stay within the distribution's support against rounding, where an
   entry says so. Streams and parameters are trusted.

   The result is the stream's status: 0 or a warning above it, or the first negative one, which ends
   the work: blocks finished before stay in r, the rest of r is undefined. An entry uses its stack
   and the stream; a stream belongs to one thread at a time.

     int32_t dice[100];
     _ostiRngUniform(0, stream, 100, dice, 1, 7);                                                */
#ifndef QOR_DISTRIBUTIONS_H
#define QOR_DISTRIBUTIONS_H

#include <stdint.h>

#include "qor/api.h"
#include "qor/streams.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The accuracy flag of a method word. */
enum { QOR_RNG_ACCURATE = 0x40000000 };

/* ---- Uniform family ------------------------------------------------------------------------- */

/* n reals between a and b, one step of the stream each. Rounding may give b itself; with the
   accuracy flag nothing lies outside a to b. */
QOR_API int32_t _ostsRngUniform(int32_t method, StreamState* stream, int32_t n, float* r, float a,
                                float b);
QOR_API int32_t _ostdRngUniform(int32_t method, StreamState* stream, int32_t n, double* r, double a,
                                double b);

/* n integers from a to b - 1, one double each; rounding gives neither b nor a - 1. Any method
   word. */
QOR_API int32_t _ostiRngUniform(int32_t method, StreamState* stream, int32_t n, int32_t* r,
                                int32_t a, int32_t b);

/* n words of the generator as they are, of its row's wordBytes each. Any method word. */
QOR_API int32_t _ostiRngUniformBits(int32_t method, StreamState* stream, int32_t n, void* r);

/* n words all of whose bits are uniform, from generators that can give them: MCG59 and those with
   32 bits a word and no lattice in it. -1014, and nothing touched, from all others. Any method
   word. A 64-bit word is two of 32 bits, the first one low. */
QOR_API int32_t _ostiRngUniformBits32(int32_t method, StreamState* stream, int32_t n, uint32_t* r);
QOR_API int32_t _ostiRngUniformBits64(int32_t method, StreamState* stream, int32_t n, uint64_t* r);

/* n times 1, with probability p, or 0; p is at least 0 and is rounded to single, and 1 gives ones
   only. One single each. Any method word. */
QOR_API int32_t _ostiRngBernoulli(int32_t method, StreamState* stream, int32_t n, int32_t* r,
                                  double p);

#ifdef __cplusplus
}
#endif

#endif
