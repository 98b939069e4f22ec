// One element's value as a file of its own.
#include <memory>
#include <new>

#include "codec/value_writer.h"
#include "dataset/node_memory.h"
#include "dataset/value_source.h"
#include "pgkit/node.h"
#include "platform/file_handle.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// The stream of a value that has been loaded is still that of others.
std::optional<platform::FileIdentity> IdentityOfStream(const PGX_Node& node) {
    return node.file == nullptr ? std::nullopt : platform::IdentityOf(node.file);
}

// A new file, unless the path names the one that values come from: creating that would destroy
// them.
platform::FileHandle CreateBeside(const char* path,
                                  const std::optional<platform::FileIdentity>& source) {
    if (source && platform::IdentityOf(path) == source) return nullptr;
    return platform::FileHandle(platform::CreateBinary(path));
}

// Writing has no result of its own here.
template <typename Write>
int32_t WriteInto(platform::FileHandle file, Write&& write) {
    if (file == nullptr) return 0;
    StreamSink sink(file.get());
    OutputWriter out(sink);
    if (!out.HasBuffer()) return 0;
    static_cast<void>(write(out));
    static_cast<void>(out.Flush());
    return 1;
}

int32_t ExportFromMemory(const PGX_Node& node, const char* path) {
    return WriteInto(CreateBeside(path, IdentityOfStream(node)), [&](OutputWriter& out) {
        return WriteValue(node.value, node.valueRep, node.length, out, !IsHostOrder(node.endian));
    });
}

int32_t ExportFromStream(const PGX_Node& node, const char* path) {
    return WriteInto(CreateBeside(path, IdentityOfStream(node)), [&](OutputWriter& out) {
        if (node.fileOffset == kUnreadablePosition) return kWritten;
        const auto reader = std::make_unique<StreamReader>(node.file);
        reader->Seek(node.fileOffset);
        return CopyValue(reader.get(), node.valueRep, node.length, out, !IsHostOrder(node.endian));
    });
}

int32_t ExportContentFile(const char* contentFile, const char* path) {
    const platform::FileHandle source(platform::OpenForReading(contentFile));
    if (source == nullptr) return 0;
    const uint64_t size = platform::StreamSize(source.get());
    const auto identity = platform::IdentityOf(source.get());
    return WriteInto(CreateBeside(path, identity), [&](OutputWriter& out) {
        const auto reader = std::make_unique<StreamReader>(source.get());
        reader->Seek(0);
        return CopyValue(reader.get(), VR_OB, size, out, false);
    });
}

int32_t Export(const PGX_Node& node, const char* path) {
    switch (FindValueSource(node)) {
        case ValueSource::Memory:
            return ExportFromMemory(node, path);
        case ValueSource::File:
            return ExportFromStream(node, path);
        case ValueSource::ContentFile:
            return ExportContentFile(node.contentFile, path);
        case ValueSource::None:
            break;
    }
    return 1;
}

}  // namespace

}  // namespace pgkit

int32_t PGX_Node::GetFileContentValue(const char* path) {
    try {
        return pgkit::Export(*this, path);
    } catch (const std::bad_alloc&) {
        return 0;
    }
}
