/* What every public header needs: the mark of an exported name. */
#ifndef QOR_API_H
#define QOR_API_H

#define QOR_API __attribute__((visibility("default")))

/* Exported data: callers reach it where it lies in the library, never through a copy of their own.
 */
#if defined(__has_attribute)
#if __has_attribute(nodirect_extern_access)
#define QOR_API_DATA QOR_API __attribute__((nodirect_extern_access))
#endif
#endif
#ifndef QOR_API_DATA
#define QOR_API_DATA QOR_API
#endif

#endif
