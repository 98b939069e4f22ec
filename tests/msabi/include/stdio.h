// What the public headers and the host need of this header of the C library.
#pragma once

#if defined(_WIN32)
typedef struct _iobuf FILE;
#else
typedef struct _IO_FILE FILE;
#endif
