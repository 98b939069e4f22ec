#include "disc/copying.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "data_set.h"
#include "disc/interruption.h"
#include "disc/readable_path.h"
#include "pgkit/long_values.h"
#include "stream.h"
#include "tags.h"
#include "uids.h"

namespace pgtool {

namespace {

constexpr size_t kCopiedBlock = size_t{1} << 20;

// Without a buffer of its own: blocks come as large as they are wanted.
Stream OpenStream(const std::string& path, const char* mode) {
    Stream stream(std::fopen(path.c_str(), mode));
    if (stream != nullptr) std::setvbuf(stream.get(), nullptr, _IONBF, 0);
    return stream;
}

CopyResult CannotRead(const std::string& reason) { return {reason, false}; }

CopyResult CannotWrite(const std::string& target) {
    return {target + ": writing failed: " + std::generic_category().message(errno), true};
}

int32_t ModeOf(const DiscInstance& instance, const PGX_Node& root) {
    if (instance.transfer == Transfer::Recoded) return PG_META | PG_EXPLICIT_VR | PG_LITTLE_ENDIAN;
    return static_cast<int32_t>((root.syntaxFlags & ~uint32_t{PG_META_IMPLICIT_VR}) | PG_META);
}

void GiveMeta(pgkit::item root) {
    if (root.contains(tags::kTransferSyntax)) return;
    root.remove({0x0002, 0x0001});  // which the library would add once more
    root.node()->AddPart10Elements(nullptr);
}

// Both ways to write a data set anew give it the meta information that it lacks.
CopyResult Save(const DiscInstance& instance, const std::string& target) {
    const ReadablePath readable(instance.path);
    std::string damage;
    auto opened = Open(readable.Path(), {kLoadedForSaving, 0, false, &damage});
    if (!opened) return CannotRead(opened.error().message);
    PGX_Node& root = *opened->node();
    GiveMeta(*opened);
    // Saving follows this rather than its mode: what is deflated would be deflated again.
    if (instance.transfer == Transfer::Recoded) {
        const auto isSet = opened->set_text(tags::kTransferSyntax, uids::kExplicitLittle);
        if (!isSet) return CannotRead(instance.path + ": " + isSet.error().message);
    }
    if (pgxMakeLongValuesUn(&root) == 0)
        return CannotRead(instance.path + ": a value cannot be read");
    const uint32_t result = root.SaveDataSetAsEx(target.c_str(), ModeOf(instance, root));
    if (result == 0) return {};
    const bool isTargetsFault = result == 1 || result == 3 || result == 7;
    return {(isTargetsFault ? target : instance.path) + ": " + DescribeSaveResult(result),
            isTargetsFault};
}

}  // namespace

Copier::Copier() : block_(kCopiedBlock) {}

CopyResult Copier::Transfer(const DiscInstance& instance, const std::string& target) {
    return instance.transfer == pgtool::Transfer::Copied ? Copy(instance, target)
                                                         : Save(instance, target);
}

CopyResult Copier::Copy(const DiscInstance& instance, const std::string& target) {
    const Stream from = OpenStream(instance.path, "rb");
    if (from == nullptr) return CannotRead(CannotOpen(instance.path));
    Stream to = OpenStream(target, "wb");
    if (to == nullptr) return CannotWrite(target);
    uint64_t written = 0;
    while (!Interruption::Came()) {
        const size_t count = std::fread(block_.data(), 1, block_.size(), from.get());
        if (std::fwrite(block_.data(), 1, count, to.get()) != count) return CannotWrite(target);
        written += count;
        if (count < block_.size()) break;
    }
    if (std::ferror(from.get()) != 0) return CannotRead(instance.path + ": reading failed");
    if (std::fclose(to.release()) != 0) return CannotWrite(target);
    const bool isWhole = instance.bytes == 0 || written == instance.bytes;
    if (isWhole || Interruption::Came()) return {};
    return CannotRead(instance.path + ": it changed while it was copied");
}

}  // namespace pgtool
