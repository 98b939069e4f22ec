#include "pgkit/version.h"

#include <cstring>

#include "base/firewall.h"

namespace {

// The letter "o" in the year is part of the text that hosts compare.
constexpr char kVersionText[] = "2.86e 24-mar-2o15";
constexpr float kVersionNumber = 2.865f;

int32_t CopyVersion(char* buffer, int32_t size) {
    constexpr int32_t length = sizeof kVersionText - 1;
    if (buffer != nullptr && size > 0) {
        const size_t room = static_cast<size_t>(size);
        const size_t copied = room < sizeof kVersionText ? room : sizeof kVersionText;
        std::memcpy(buffer, kVersionText, copied);
        std::memset(buffer + copied, 0, room - copied);
    }
    return length;
}

}  // namespace

int32_t pgGetVersionString(char* buffer, int32_t size) {
    return pgkit::Guarded([=] { return CopyVersion(buffer, size); });
}

float pgGetVersionFloat() {
    return pgkit::Guarded([] { return kVersionNumber; });
}
