#include "platform/path_encoding.h"

#include "pgkit/paths.h"

using pgkit::platform::pathsAreUtf8;

int32_t pgxGetPathEncoding() { return pathsAreUtf8 ? PGX_PATHS_UTF8 : PGX_PATHS_SYSTEM; }

int32_t pgxSetPathEncoding(int32_t encoding) {
    if (encoding != PGX_PATHS_SYSTEM && encoding != PGX_PATHS_UTF8) return pgxGetPathEncoding();
    return pathsAreUtf8.exchange(encoding == PGX_PATHS_UTF8) ? PGX_PATHS_UTF8 : PGX_PATHS_SYSTEM;
}
