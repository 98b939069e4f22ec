// The functions of open_report.h that save to places that are no files.
#include <span>

#include "base/firewall.h"
#include "codec/saving.h"
#include "pgkit/node.h"
#include "pgkit/open_report.h"

namespace pgkit {

namespace {

constexpr uint32_t kNoNode = 0xFFFFFFFF;

WriteResult SaveToSink(PGX_Node& root, int32_t mode, ByteSink& sink) {
    return Saving(root, {static_cast<uint32_t>(mode)}).Write(sink, Saving::Links::Now);
}

uint32_t SaveTo(PGX_Node* root, int32_t mode, PgxWriteFunction write, void* context) {
    if (root == nullptr) return kNoNode;
    FunctionSink sink(write, context);
    return SaveToSink(*root, mode, sink);
}

int64_t SaveToMemory(PGX_Node* root, int32_t mode, uint8_t* buffer, size_t size) {
    if (root == nullptr) return -1;
    BufferSink sink({buffer, buffer == nullptr ? 0 : size});
    const WriteResult result = SaveToSink(*root, mode, sink);
    if (result != kWritten) return -int64_t{result};
    return static_cast<int64_t>(*sink.Position());
}

}  // namespace

}  // namespace pgkit

using pgkit::Guarded;

uint32_t pgxSaveTo(PGX_Node* root, int32_t mode, PgxWriteFunction write, void* context) {
    return Guarded([=] { return pgkit::SaveTo(root, mode, write, context); }, pgkit::kOutOfMemory);
}

int64_t pgxSaveToMemory(PGX_Node* root, int32_t mode, void* buffer, size_t size) {
    return Guarded(
        [=] { return pgkit::SaveToMemory(root, mode, static_cast<uint8_t*>(buffer), size); },
        -int64_t{pgkit::kOutOfMemory});
}
