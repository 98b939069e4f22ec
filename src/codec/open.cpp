// The exported functions that open files and streams, and the quick test for a Part 10 file.
#include "codec/open.h"

#include <optional>

#include "base/diagnostics.h"
#include "base/firewall.h"
#include "codec/data_set_parser.h"
#include "codec/meta_group.h"
#include "codec/stream_reader.h"
#include "dataset/node_ptr.h"
#include "pgkit/dataset.h"
#include "pgkit/node.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr uint32_t kForceEncodingFlags = PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_IMPLICIT_VR |
                                         PG_OPEN_FORCE_LITTLE_ENDIAN | PG_OPEN_FORCE_BIG_ENDIAN;

uint32_t SyntaxFlagsOf(const StreamStart& start) {
    uint32_t flags = start.hasMeta ? uint32_t{PG_META} : 0;
    flags |= start.encoding.byteOrder == ByteOrder::Big ? PG_BIG_ENDIAN : PG_LITTLE_ENDIAN;
    flags |= start.encoding.implicitVr ? PG_IMPLICIT_VR : PG_EXPLICIT_VR;
    return flags;
}

// Null when the stream is no DICOM stream. Throws std::bad_alloc. Does not close the stream.
PGX_Node* ParseStream(StreamReader& reader, uint32_t maxLoadLength, uint32_t flags) {
    std::optional<StreamStart> start = ReadStreamStart(reader, flags);
    if (!start) return nullptr;
    DataSetParser parser(reader, start->encoding, maxLoadLength, flags & ~kForceEncodingFlags);
    NodeTree root = parser.Parse();
    if (start->lastMeta != nullptr) {
        start->lastMeta->next = root->first;
        root->first = start->metaElements.release();
    }
    root->syntaxFlags = SyntaxFlagsOf(*start);
    return root.release();
}

// The tree owns the stream from then on; without one, also for want of memory, it stays where it
// is.
PGX_Node* ParseFile(StreamReader& reader, platform::FileHandle& stream, uint32_t maxLoadLength,
                    uint32_t flags) {
    PGX_Node* root = Guarded([&] { return ParseStream(reader, maxLoadLength, flags); });
    if (root != nullptr) static_cast<void>(stream.release());
    return root;
}

// The stream is the caller's until the parse has ended one way or the other; when memory runs out
// it stays the caller's, open.
PGX_Node* OpenStream(FILE* stream, uint32_t maxLoadLength, uint32_t flags) {
    if (stream == nullptr) return nullptr;
    StreamReader reader(stream);
    PGX_Node* root = ParseStream(reader, maxLoadLength, flags);
    if (root != nullptr) {
        reader.RestorePosition();
    } else {
        std::fclose(stream);
    }
    return root;
}

int32_t IsDicomFile(const char* path) {
    const InputFile file = OpenToTest(path);
    if (file.stream == nullptr) return 0;
    StreamReader reader(file.stream.get(), file.size);
    return SkipPreamble(reader) ? 1 : 0;
}

}  // namespace

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
