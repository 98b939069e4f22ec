#include "api/shared_text.h"

#include "base/text.h"

namespace pgkit {

const char* ShareText(std::string_view text) {
    static char buffer[520];
    CopyToField(buffer, text);
    return buffer;
}

}  // namespace pgkit
