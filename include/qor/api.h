/* What every public header needs: the mark of an exported name. */
#ifndef QOR_API_H
#define QOR_API_H

#ifndef QOR_API /* the export map is made of what carries the mark */
#define QOR_API __attribute__((visibility("default")))
#endif

/* Exported data: declared weak, so that a program reaches it where it lies in the library. Without
   that the linker gives a program copies of its own, one symbol each, and the array is torn. */
#define QOR_API_DATA QOR_API __attribute__((weak))

#endif
