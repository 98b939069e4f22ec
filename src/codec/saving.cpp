#include "codec/saving.h"

#include <array>
#include <utility>

#include "codec/deflating_sink.h"
#include "codec/encoder.h"
#include "codec/lengths.h"
#include "codec/part10_format.h"
#include "codec/syntax_agreement.h"
#include "codec/transfer_syntax.h"
#include "dataset/node_memory.h"

namespace pgkit {

namespace {

bool WritePreamble(ByteSink& sink) {
    std::array<uint8_t, kPreambleSize + kPrefix.size()> preamble{};
    kPrefix.copy(reinterpret_cast<char*>(preamble.data()) + kPreambleSize, kPrefix.size());
    return sink.Write(preamble.data(), preamble.size());
}

}  // namespace

// Lengths, and group lengths from them, in the mode that the transfer syntax asks for.
WriteResult Saving::Prepare() {
    if (!plan_.isOldForm) {
        const WriteResult result = AgreeOnSyntax(root_, plan_.mode, isDeflated_);
        if (result != kWritten) return result;
    }
    const uint32_t lengthMode = plan_.isOldForm ? 0 : plan_.mode;
    ComputeLengths(root_, lengthMode);
    const bool hasLengths =
        root_.UpdateGroupLengths(lengthMode) != 0 || root_.nodeType != NT_DataSet;
    return hasLengths ? kWritten : kOutOfMemory;
}

ByteOrder Saving::LinkOrder() const {
    if (plan_.isOldForm) return kHostByteOrder;
    return EncodingOfMode(plan_.mode).byteOrder;
}

WriteResult Saving::Encode(ByteSink& sink, WrittenPositions* positions, DeflatingSink* deflating) {
    return EncodeNode(root_, plan_.mode, sink, {positions, deflating, true});
}

WriteResult Saving::Write(ByteSink& sink, Links links) {
    if (!plan_.isOldForm) {
        const bool isAsRead = plan_.mode == 0 && root_.syntaxFlags != kNoSyntaxFlags;
        if (isAsRead) plan_.mode = root_.syntaxFlags;
        if ((plan_.mode & kMetaModes) != 0 && !WritePreamble(sink)) return kWriteFailed;
    }
    WriteResult result = Prepare();
    if (result != kWritten) return result;
    // In deflated bytes nothing can be replaced.
    hasLinksLeft_ = links == Links::Later && !isDeflated_;
    std::vector<BytePatch> patches;
    if (!hasLinksLeft_ && !offsets_.Empty()) {
        result = FindLinks(sink.Position().value_or(0), patches);
        if (result != kWritten) return result;
    }
    if (isDeflated_) return WriteDeflated(sink, std::move(patches));
    if (patches.empty()) return Encode(sink, &offsets_.Positions());
    PatchingSink patched(sink, std::move(patches));
    return Encode(patched);
}

WriteResult Saving::FindLinks(uint64_t position, std::vector<BytePatch>& patches) {
    BufferSink nowhere({}, position);
    const WriteResult result = Encode(nowhere, &offsets_.Positions());
    return result == kWritten ? offsets_.Collect(LinkOrder(), patches) : result;
}

WriteResult Saving::WriteDeflated(ByteSink& sink, std::vector<BytePatch> patches) {
    DeflatingSink deflating(sink);
    PatchingSink patched(deflating, std::move(patches));
    const WriteResult result = Encode(patched, nullptr, &deflating);
    if (result != kWritten) return result;
    return deflating.Finish() ? kWritten : kWriteFailed;
}

WriteResult Saving::Patch(platform::FileHandle file) {
    return offsets_.Patch(std::move(file), LinkOrder());
}

}  // namespace pgkit
