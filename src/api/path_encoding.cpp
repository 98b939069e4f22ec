#include "platform/path_encoding.h"

#include "base/firewall.h"
#include "pgkit/paths.h"

using pgkit::platform::pathsAreUtf8;

namespace {

int32_t Current() { return pathsAreUtf8 ? PGX_PATHS_UTF8 : PGX_PATHS_SYSTEM; }

int32_t Replace(int32_t encoding) {
    if (encoding != PGX_PATHS_SYSTEM && encoding != PGX_PATHS_UTF8) return Current();
    return pathsAreUtf8.exchange(encoding == PGX_PATHS_UTF8) ? PGX_PATHS_UTF8 : PGX_PATHS_SYSTEM;
}

}  // namespace

int32_t pgxGetPathEncoding() { return pgkit::Guarded(Current); }

int32_t pgxSetPathEncoding(int32_t encoding) {
    return pgkit::Guarded([=] { return Replace(encoding); });
}
