/* What every public header needs: the mark of an exported name.
   Exported data carries it too. A program that is not compiled with -fPIC may get its own copy of
   exported data from the linker; the library then works with that copy. */
#ifndef QOR_API_H
#define QOR_API_H

#define QOR_API __attribute__((visibility("default")))

#endif
