// pgkit: bytes from and to places that are no files, through functions of the caller.
//
// A function is called with the context that came with it, on the thread of the call that it was
// passed to, and never after that call has returned. It may throw nothing and must not use the tree
// that is being read or written. Null functions count as ones that fail at once.
#ifndef PGKIT_STREAMS_H
#define PGKIT_STREAMS_H

#include <stddef.h>

// What a read function returns when it cannot go on.
#define PGX_READ_FAILED ((size_t)-1)

// Puts at most size bytes, those that come next, into bytes and returns how many. 0 is the end: it
// is not called again. It may return fewer than there are. size is never 0.
typedef size_t (*PgxReadFunction)(void* context, void* bytes, size_t size);

// Takes size bytes, which come behind those of the call before, and returns how many it took: fewer
// than size is a failure, and it is not called again. size is never 0.
typedef size_t (*PgxWriteFunction)(void* context, const void* bytes, size_t size);

#endif
