// Saving a tree as a file: a DICOM Part 10 file or a bare data set.
#include <new>
#include <utility>

#include "base/diagnostics.h"
#include "codec/save_target.h"
#include "codec/saving.h"
#include "dataset/node_memory.h"
#include "pgkit/node.h"

namespace pgkit {

namespace {

const char* PrintablePath(const char* path) { return path != nullptr ? path : ""; }

// The older form puts links even into a file that could not be written in full.
WriteResult SaveToFile(PGX_Node& root, const char* path, const SavePlan& plan) {
    SaveTarget target(path, root);
    platform::FileHandle file = target.Create();
    if (file == nullptr) return kCannotCreate;
    Saving saving(root, plan);
    StreamSink sink(file.get());
    WriteResult result = saving.Write(sink, Saving::Links::Later);
    result = CloseWritten(std::move(file), result);
    const bool isWorthPatching = result == kWritten || plan.isOldForm;
    if (isWorthPatching && saving.HasLinksLeft()) {
        const WriteResult patched = saving.Patch(target.OpenForUpdate());
        if (patched == kCannotReopen && plan.isOldForm) {
            PrintError("pgSaveDataSetAs : unable to reopen %s\n", PrintablePath(path));
        }
        if (result == kWritten) result = patched;
    }
    return result == kWritten ? target.PutInPlace() : result;
}

WriteResult Save(PGX_Node& root, const char* path, const SavePlan& plan) {
    const WriteResult result = SaveToFile(root, path, plan);
    if (result == kCannotCreate) {
        const char* const name = plan.isOldForm ? "pgSaveDataSetAs" : "pgSaveDataSetAsEx";
        PrintError("%s : unable to open %s\n", name, PrintablePath(path));
    }
    return result;
}

}  // namespace

}  // namespace pgkit

uint32_t PGX_Node::SaveDataSetAsEx(const char* path, int32_t mode) {
    try {
        return pgkit::Save(*this, path, {static_cast<uint32_t>(mode)});
    } catch (const std::bad_alloc&) {
        return pgkit::kOutOfMemory;
    }
}

void PGX_Node::SaveDataSetAs(const char* path, int32_t mode) { SaveDataSetAsEx(path, mode); }

// A bare data set in implicit VR big endian, whatever the tree holds.
void PGX_Node::SaveDataSetAs(int32_t undefinedLengths, const char* path) {
    const uint32_t mode = undefinedLengths != 0 ? uint32_t{PG_UNDEFINED_LENGTHS} : 0;
    try {
        static_cast<void>(pgkit::Save(*this, path, {mode, true}));
    } catch (const std::bad_alloc&) {
        // This form has no result to report it with.
    }
}
