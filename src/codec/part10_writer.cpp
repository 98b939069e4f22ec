// Saving a tree as a file: a DICOM Part 10 file or a bare data set.
#include <array>
#include <new>
#include <utility>

#include "base/diagnostics.h"
#include "codec/encoder.h"
#include "codec/lengths.h"
#include "codec/offset_patching.h"
#include "codec/part10_format.h"
#include "codec/save_target.h"
#include "codec/syntax_agreement.h"
#include "dataset/node_memory.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

bool WritePreamble(FILE* stream) {
    std::array<char, kPreambleSize + kPrefix.size()> preamble{};
    kPrefix.copy(preamble.data() + kPreambleSize, kPrefix.size());
    return std::fwrite(preamble.data(), 1, preamble.size(), stream) == preamble.size();
}

// Lengths first, group lengths from them, then the tree.
WriteResult WriteTree(PGX_Node& root, uint32_t lengthMode, uint32_t mode, FILE* stream,
                      PendingOffsets& offsets) {
    ComputeLengths(root, lengthMode);
    if (root.UpdateGroupLengths(lengthMode) == 0 && root.nodeType == NT_DataSet) {
        return kOutOfMemory;
    }
    StreamSink sink(stream);
    return EncodeNode(root, mode, sink, &offsets.Positions());
}

// The mode becomes the one that the transfer syntax asks for.
WriteResult WriteFile(PGX_Node& root, uint32_t& mode, FILE* stream, PendingOffsets& offsets) {
    if ((mode & kMetaModes) != 0 && !WritePreamble(stream)) {
        return kWriteFailed;
    }
    const WriteResult result = AgreeOnSyntax(root, mode);
    return result == kWritten ? WriteTree(root, mode, mode, stream, offsets) : result;
}

const char* PrintablePath(const char* path) { return path != nullptr ? path : ""; }

WriteResult CannotCreate(const char* path) {
    PrintError("pgSaveDataSetAsEx : unable to open %s\n", PrintablePath(path));
    return kCannotCreate;
}

WriteResult Save(PGX_Node& root, const char* path, uint32_t mode) {
    SaveTarget target(path, root);
    platform::FileHandle file = target.Create();
    if (file == nullptr) return CannotCreate(path);
    if (mode == 0 && root.syntaxFlags != kNoSyntaxFlags) mode = root.syntaxFlags;
    PendingOffsets offsets(root);
    WriteResult result = WriteFile(root, mode, file.get(), offsets);
    result = CloseWritten(std::move(file), result);
    const bool isLittle = (mode & PG_LITTLE_ENDIAN) != 0;
    if (result == kWritten) {
        result =
            offsets.Patch(target.OpenForUpdate(), isLittle ? ByteOrder::Little : ByteOrder::Big);
    }
    if (result == kWritten) result = target.PutInPlace();
    return result == kCannotCreate ? CannotCreate(path) : result;
}

// The older form writes a bare data set in implicit VR big endian, whatever the tree holds.
void SaveBare(PGX_Node& root, bool undefinedLengths, const char* path) {
    constexpr uint32_t kLengthMode = 0;
    const uint32_t mode = undefinedLengths ? uint32_t{PG_UNDEFINED_LENGTHS} : kLengthMode;
    SaveTarget target(path, root);
    platform::FileHandle file = target.Create();
    if (file == nullptr) {
        PrintError("pgSaveDataSetAs : unable to open %s\n", PrintablePath(path));
        return;
    }
    PendingOffsets offsets(root);
    WriteResult result = WriteTree(root, kLengthMode, mode, file.get(), offsets);
    result = CloseWritten(std::move(file), result);
    const WriteResult patched = offsets.Patch(target.OpenForUpdate(), kHostByteOrder);
    if (patched == kCannotReopen) {
        PrintError("pgSaveDataSetAs : unable to reopen %s\n", PrintablePath(path));
    }
    if (result == kWritten) result = patched;
    if (result == kWritten) result = target.PutInPlace();
    if (result == kCannotCreate) {
        PrintError("pgSaveDataSetAs : unable to open %s\n", PrintablePath(path));
    }
}

}  // namespace

}  // namespace pgkit

uint32_t PGX_Node::SaveDataSetAsEx(const char* path, int32_t mode) {
    try {
        return pgkit::Save(*this, path, static_cast<uint32_t>(mode));
    } catch (const std::bad_alloc&) {
        return pgkit::kOutOfMemory;
    }
}

void PGX_Node::SaveDataSetAs(const char* path, int32_t mode) { SaveDataSetAsEx(path, mode); }

void PGX_Node::SaveDataSetAs(int32_t undefinedLengths, const char* path) {
    try {
        pgkit::SaveBare(*this, undefinedLengths != 0, path);
    } catch (const std::bad_alloc&) {
        // This form has no result to report it with.
    }
}
