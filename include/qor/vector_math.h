/* Vector mathematics: elementwise functions over float and double vectors.

   Every function f of the list in vector_math_rows.h (and its strided mate fI) has
     _ark<f>, _ark<f>_HA            the high accuracy kernel (below 1 ulp)
     _ark<f>_21, _50 (s c, d z)     the low accuracy kernel (below 4 ulp)
     _ark<f>_11, _26 (s c, d z)     the enhanced performance kernel (half the digits)
     qor_ark_kernel_<f>_ttab        the three kernels, in the order LA, HA, EP
     qor_ark_kernel_<f>_ctab        a cost figure for each, in the same order

   An entry's name fixes its kernel. A caller that wants the accuracy of the thread's mode calls
   qor_ark_kernel_<f>_ttab[qor_ark_kernel_GetTTableIndex()].

   n elements are read from a (and b) and as many written to y (and z); n = 0 does nothing and n
   below 0 is not supported. In a strided function element i stands at i * inc; an increment counts
   elements and may be 0 or negative. y may be a or b; partial overlap is not supported. Elements
   that have no plain result get the IEEE value, and a report through the thread's error machinery
   (below); a bad element never stops a vector. All entries may run on any number of threads.

     double x[3] = {0.5, 1.0, 2.0}, y[3];
     _arkdExp(3, x, y);                                                                          */
#ifndef QOR_VECTOR_MATH_H
#define QOR_VECTOR_MATH_H

#include <stdint.h>

#include "qor/api.h"
#include "qor/vector_math_rows.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct {
  float re, im;
} qor_complex_float;

typedef struct {
  double re, im;
} qor_complex_double;

/* ---- Mode word ------------------------------------------------------------------------------ */

/* Fields of the 32-bit mode word of a thread. */
enum {
  QOR_MODE_ACCURACY = 0xF, /* 1 LA, 2 HA, 3 EP */
  QOR_MODE_LA = 0x1,
  QOR_MODE_HA = 0x2,
  QOR_MODE_EP = 0x3,
  QOR_MODE_CONSISTENCY = 0x30, /* carried along; from the environment only */
  QOR_MODE_ERRORS = 0xFF00,
  QOR_MODE_ERRORS_IGNORE = 0x100,    /* alone: set the status, do nothing else */
  QOR_MODE_ERRORS_ERRNO = 0x200,     /* set errno */
  QOR_MODE_ERRORS_STDERR = 0x400,    /* print on standard error */
  QOR_MODE_ERRORS_EXCEPT = 0x800,    /* raise the x87 condition; with its trap bit, trap */
  QOR_MODE_ERRORS_CALLBACK = 0x1000, /* call the thread's callback */
  QOR_MODE_ERRORS_NOERR = 0x2000,    /* alone: not even the status */
  QOR_MODE_ERRORS_DEFAULT = 0x1A00,
  QOR_MODE_ERRORS_PRINTING = 0x2F00, /* any of these runs the report */
  QOR_MODE_RESERVED = 0x30000,
  QOR_MODE_DENORMALS = 0x3C0000,
  QOR_MODE_FLUSH_DENORMALS = 0x280000, /* inside kernels: flush to zero, denormals are zero */
  QOR_MODE_KEEP_DENORMALS = 0x140000,
  QOR_MODE_TRAPS = 0xF000000,
  QOR_MODE_TRAP_INVALID = 0x1000000,
  QOR_MODE_TRAP_DIVBYZERO = 0x2000000,
  QOR_MODE_TRAP_OVERFLOW = 0x4000000,
  QOR_MODE_TRAP_UNDERFLOW = 0x8000000,
  QOR_MODE_DEFAULT = 0x1A02
};

/* The mode word of the calling thread. A thread's first use takes it from the environment variable
   QOR_ARK_MODE, tokens separated by commas, as "ARK_LA,ARK_ERRMODE_IGNORE"; unset or not
   understood, it is 0x1A02. */
QOR_API uint32_t _arkGetMode(void);
QOR_API uint32_t qor_ark_kernel_GetMode(void);

/* Replaces the fields of the calling thread's word that are not zero in newMode, each whole, and
   returns the word as it was. Bits 4 to 7 of newMode are ignored. */
QOR_API uint32_t _arkSetMode(uint32_t newMode);
QOR_API uint32_t qor_ark_kernel_SetMode(uint32_t newMode);

/* The slot of a mode's accuracy: 0 LA, 1 HA, 2 EP (any other field gives another number: the
   caller checks). The second form takes the mode and ignores its first argument. */
QOR_API int32_t qor_ark_kernel_GetTTableIndex(void);
QOR_API int32_t qor_ark_kernel_GetTTableIndexM(uint32_t ignored, uint32_t mode);

/* Always 2. */
QOR_API int32_t dll_cpu_version(void);

/* The rows are weak to a program (see api.h), which alone would not make a linker keep the library
   for a program that uses nothing but rows. */
__asm__(".globl dll_cpu_version");

/* ---- Errors --------------------------------------------------------------------------------- */

enum {
  QOR_ERROR_NONE = 0,
  QOR_ERROR_DOMAIN = 1,      /* errno 33: the result is not defined for this argument */
  QOR_ERROR_SINGULARITY = 2, /* errno 34: the function has a pole here */
  QOR_ERROR_OVERFLOW = 3,    /* errno 34 */
  QOR_ERROR_UNDERFLOW = 4,   /* errno 34: the result is denormal or zero */
  QOR_ERROR_ARGUMENT_INDEXED = -1,
  QOR_ERROR_ARGUMENT = -2
};

/* What an error callback receives. Values of float functions are widened. The imaginary fields are
   those of complex functions. A function with one input (or result) shows it twice. */
typedef struct {
  int32_t code;
  int32_t index; /* of the element, in the vector or, see below, the whole vector */
  double arg1, arg2;
  double result1, result2; /* the callback may change them; of one result, result1 counts */
  char funcName[64];
  int32_t funcNameLength;
  int32_t gap;
  double arg1Im, arg2Im;
  double result1Im, result2Im;
} ErrorContext;

/* Called on the kernel's thread, inside its loop. Returning 0 writes the results of the context to
   the output and lets the other actions of the mode follow; any other value ends the report. */
typedef int32_t (*qor_error_callback)(ErrorContext* context);

/* The calling thread's status: the last code reported, until it is cleared. Set and clear return
   the status as it was. */
QOR_API int32_t _arkGetErrStatus(void);
QOR_API int32_t qor_ark_kernel_GetErrStatus(void);
QOR_API int32_t _arkSetErrStatus(int32_t status);
QOR_API int32_t qor_ark_kernel_SetErrStatus(int32_t status);
QOR_API int32_t _arkClearErrStatus(void);
QOR_API int32_t qor_ark_kernel_ClearErrStatus(void);

/* The calling thread's callback, null when there is none. Set and clear return the callback as it
   was, and set or clear the mode's callback bit (the bit stays when it is the only error bit). */
QOR_API qor_error_callback _arkGetErrorCallBack(void);
QOR_API qor_error_callback qor_ark_kernel_GetErrorCallBack(void);
QOR_API qor_error_callback _arkSetErrorCallBack(qor_error_callback callback);
QOR_API qor_error_callback qor_ark_kernel_SetErrorCallBack(qor_error_callback callback);
QOR_API qor_error_callback _arkClearErrorCallBack(void);
QOR_API qor_error_callback qor_ark_kernel_ClearErrorCallBack(void);

/* Where the whole input vector starts, for a caller that runs a kernel on a piece of it: reported
   indices then count from there. Returns its argument. Until its first use on a thread the value
   is indeterminate to this interface. */
QOR_API const void* _arkSetInterfInputVectorPointer(const void* pointer);
QOR_API const void* qor_ark_kernel_SetInterfInputVectorPointer(const void* pointer);

/* ---- Argument lists ------------------------------------------------------------------------- */

#define QOR_ELEMENT_s float
#define QOR_ELEMENT_d double
#define QOR_ELEMENT_c qor_complex_float
#define QOR_ELEMENT_z qor_complex_double
#define QOR_REAL_s float
#define QOR_REAL_d double
#define QOR_REAL_c float
#define QOR_REAL_z double

/* clang-format off */
#define QOR_PARAMETERS_unary(E, R)           (int32_t n, const E *a, E *y)
#define QOR_PARAMETERS_unary_I(E, R)         (int32_t n, const E *a, int32_t inca, E *y, int32_t incy)
#define QOR_PARAMETERS_real_to_complex(E, R)   (int32_t n, const R *a, E *y)
#define QOR_PARAMETERS_real_to_complex_I(E, R) (int32_t n, const R *a, int32_t inca, E *y, int32_t incy)
#define QOR_PARAMETERS_complex_to_real(E, R)   (int32_t n, const E *a, R *y)
#define QOR_PARAMETERS_complex_to_real_I(E, R) (int32_t n, const E *a, int32_t inca, R *y, int32_t incy)
#define QOR_PARAMETERS_binary(E, R)          (int32_t n, const E *a, const E *b, E *y)
#define QOR_PARAMETERS_binary_I(E, R)        (int32_t n, const E *a, int32_t inca, const E *b, int32_t incb, E *y, int32_t incy)
#define QOR_PARAMETERS_scalar_exponent(E, R)   (int32_t n, const E *a, E b, E *y)
#define QOR_PARAMETERS_scalar_exponent_I(E, R) (int32_t n, const E *a, int32_t inca, E b, E *y, int32_t incy)
#define QOR_PARAMETERS_two_outputs(E, R)     (int32_t n, const E *a, E *y, E *z)
#define QOR_PARAMETERS_two_outputs_I(E, R)   (int32_t n, const E *a, int32_t inca, E *y, int32_t incy, E *z, int32_t incz)
#define QOR_PARAMETERS_linear_fraction(E, R) \
  (int32_t n, const E *a, const E *b, E aScale, E aShift, E bScale, E bShift, E *y)
#define QOR_PARAMETERS_linear_fraction_I(E, R) \
  (int32_t n, const E *a, int32_t inca, const E *b, int32_t incb, E aScale, E aShift, E bScale, E bShift, E *y, int32_t incy)

/* The pack family. Through a row, flag 1 means 32-bit counts, increments, masks and indices, any
   other value 64-bit ones; the _ark entries work with 32 bits and ignore what the caller passes. */
#define QOR_PARAMETERS_pack_increment(E)   (int64_t n, const E *a, int64_t inca, E *y, int32_t flag)
#define QOR_PARAMETERS_pack_mask(E)        (int64_t n, const E *a, const void *ma, E *y, int32_t flag)
#define QOR_PARAMETERS_pack_index(E)       (int64_t n, const E *a, const void *ia, E *y, int32_t flag)
#define QOR_PARAMETERS_unpack_increment(E) (int64_t n, const E *a, E *y, int64_t incy, int32_t flag)
#define QOR_PARAMETERS_unpack_mask(E)      (int64_t n, const E *a, E *y, const void *my, int32_t flag)
#define QOR_PARAMETERS_unpack_index(E)     (int64_t n, const E *a, E *y, const void *iy, int32_t flag)

/* ---- Entries and rows ----------------------------------------------------------------------- */

#define QOR_ENTRIES_s(f, P) QOR_API void _ark##f P, _ark##f##_HA P, _ark##f##_21 P, _ark##f##_11 P;
#define QOR_ENTRIES_d(f, P) QOR_API void _ark##f P, _ark##f##_HA P, _ark##f##_50 P, _ark##f##_26 P;
#define QOR_ENTRIES_c(f, P) QOR_ENTRIES_s(f, P)
#define QOR_ENTRIES_z(f, P) QOR_ENTRIES_d(f, P)
#define QOR_ROW(t, f, P) \
  extern QOR_API_DATA __attribute__((aligned(sizeof(void *)))) void (*qor_ark_kernel_##f##_ttab[3]) P; \
  extern QOR_API_DATA float qor_ark_kernel_##f##_ctab[3]; \
  QOR_ENTRIES_##t(f, P)
/* clang-format on */

#define QOR_FUNCTION(t, name, shape, ...) \
  QOR_ROW(t, t##name, QOR_PARAMETERS_##shape(QOR_ELEMENT_##t, QOR_REAL_##t))
#define QOR_STRIDED(t, name, shape, ...) \
  QOR_ROW(t, t##name##I, QOR_PARAMETERS_##shape##_I(QOR_ELEMENT_##t, QOR_REAL_##t))
#define QOR_PACK(t, name, shape, ...) QOR_ROW(t, t##name, QOR_PARAMETERS_##shape(QOR_ELEMENT_##t))
QOR_FUNCTION_ROWS(QOR_FUNCTION)
QOR_PACK_ROWS(QOR_PACK)
QOR_FUNCTION_ROWS(QOR_STRIDED)
#undef QOR_FUNCTION
#undef QOR_STRIDED
#undef QOR_PACK

#ifdef __cplusplus
}
#endif

#endif
