/* What every public header needs: the mark of an exported name. */
#ifndef QOR_API_H
#define QOR_API_H

#define QOR_API __attribute__((visibility("default")))

/* Exported data: declared weak, so that a program reaches it where it lies in the library. Without
   that the linker gives a program copies of its own, one symbol each, and the array is torn. */
#define QOR_API_DATA QOR_API __attribute__((weak))

#endif
