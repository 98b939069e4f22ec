#include "api/shared_text.h"

#include "base/text.h"
#include "platform/thread_block.h"

namespace pgkit {

const char* ShareText(std::string_view text) noexcept {
    const auto buffer = static_cast<char*>(platform::ThreadBlock());
    if (buffer == nullptr) return kNoText;
    CopyBounded(buffer, platform::kThreadBlockSize, text);
    return buffer;
}

}  // namespace pgkit
