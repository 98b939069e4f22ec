#include "pgkit/version.h"

#include <algorithm>
#include <cstring>

#include "base/firewall.h"
#include "base/identity.h"

namespace {

int32_t CopyVersion(char* buffer, int32_t size) {
    constexpr int32_t length = sizeof pgkit::kVersionText - 1;
    if (buffer != nullptr && size > 0) {
        const size_t room = static_cast<size_t>(size);
        const size_t copied = std::min(room, sizeof pgkit::kVersionText);
        std::memcpy(buffer, pgkit::kVersionText, copied);
        std::memset(buffer + copied, 0, room - copied);
    }
    return length;
}

}  // namespace

int32_t pgGetVersionString(char* buffer, int32_t size) {
    return pgkit::Guarded([=] { return CopyVersion(buffer, size); });
}

float pgGetVersionFloat() {
    return pgkit::Guarded([] { return pgkit::kVersionNumber; });
}
