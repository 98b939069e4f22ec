// Included before all others by C++ sources for Windows with the universal C runtime. The compiler's
// C++ library was built for the old runtime, where the state of a conversion is an int; that type is
// a part of its streams and paths. So it stays one for C++, and conversions with a state, for which
// the universal runtime has a larger type, take that: nobody passes them the small one by mistake.
#ifdef __cplusplus
#include <cstddef>
#define mbstate_t universal_mbstate_t
#include <wchar.h>
#undef mbstate_t
typedef int mbstate_t;
#endif
