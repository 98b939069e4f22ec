// The exported functions that open files and streams, and the quick test for a Part 10 file.
#include "codec/open.h"

#include "base/diagnostics.h"
#include "base/firewall.h"
#include "codec/meta_group.h"
#include "codec/stream_reader.h"
#include "dataset/node_ptr.h"
#include "pgkit/dataset.h"
#include "pgkit/node.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// The tree owns its file from then on: the stream, or a temporary one, and the stream is closed;
// without a tree, also for want of memory, the stream stays where it is.
PGX_Node* ParseFile(StreamReader& reader, platform::FileHandle& stream, uint32_t maxLoadLength,
                    uint32_t flags) {
    return Guarded([&] {
        OpenedTree opened = OpenTree(reader, {.maxLoadLength = maxLoadLength, .flags = flags});
        return HandOver(opened, stream);
    });
}

// The stream is the caller's until the parse has ended one way or the other; when memory runs out
// it stays the caller's, open.
PGX_Node* OpenStream(FILE* stream, uint32_t maxLoadLength, uint32_t flags) {
    if (stream == nullptr) return nullptr;
    StreamReader reader(stream);
    OpenedTree opened = OpenTree(reader, {.maxLoadLength = maxLoadLength, .flags = flags});
    platform::FileHandle owned(stream);
    PGX_Node* const root = HandOver(opened, owned);
    if (owned == nullptr) reader.RestorePosition();
    return root;
}

int32_t IsDicomFile(const char* path) {
    const InputFile file = OpenToTest(path);
    if (file.stream == nullptr) return 0;
    StreamReader reader(file.stream.get(), file.size);
    return SkipPreamble(reader) ? 1 : 0;
}

}  // namespace

PGX_Node* HandOver(OpenedTree& opened, platform::FileHandle& stream) {
    if (opened.root == nullptr) return nullptr;
    platform::FileHandle& kept = opened.temporary != nullptr ? opened.temporary : stream;
    if (opened.root->file != nullptr) static_cast<void>(kept.release());
    return opened.root.release();
}

InputFile OpenInput(const char* path) {
    InputFile file;
    file.stream.reset(platform::OpenForReading(path, file.size));
    return file;
}

InputFile OpenToTest(const char* path) {
    InputFile file = OpenInput(path);
    if (file.stream == nullptr) {
        PrintError("pgIsDicomFile : unable to open %s\n", path == nullptr ? "" : path);
    }
    return file;
}

PGX_Node* OpenDataSet(InputFile file, uint32_t maxLoadLength, uint32_t flags) {
    if (file.stream == nullptr) return nullptr;
    StreamReader reader(file.stream.get(), file.size);
    return ParseFile(reader, file.stream, maxLoadLength, flags);
}

PGX_Node* OpenIfDicom(InputFile file, uint32_t maxLoadLength, uint32_t flags, bool& isDicom) {
    isDicom = false;
    if (file.stream == nullptr) return nullptr;
    StreamReader reader(file.stream.get(), file.size);
    isDicom = SkipPreamble(reader);
    if (!isDicom) return nullptr;
    reader.Seek(0);
    return ParseFile(reader, file.stream, maxLoadLength, flags);
}

}  // namespace pgkit

using pgkit::Guarded;

PGX_Node* pgOpenDataSetFile(const char* path, uint32_t maxLoadLength) {
    return pgOpenDataSetFileEx(path, maxLoadLength, 0);
}

PGX_Node* pgOpenDataSetFileEx(const char* path, uint32_t maxLoadLength, uint32_t flags) {
    return Guarded(
        [=] { return pgkit::OpenDataSet(pgkit::OpenInput(path), maxLoadLength, flags); });
}

PGX_Node* pgOpenDataSetFileHandle(FILE* stream, uint32_t maxLoadLength) {
    return pgOpenDataSetFileHandleEx(stream, maxLoadLength, 0);
}

PGX_Node* pgOpenDataSetFileHandleEx(FILE* stream, uint32_t maxLoadLength, uint32_t flags) {
    return Guarded([=] { return pgkit::OpenStream(stream, maxLoadLength, flags); });
}

int32_t pgIsDicomFile(const char* path) {
    return Guarded([=] { return pgkit::IsDicomFile(path); });
}
