// Creation in one call: a directory is scanned, and gets its DICOMDIR.
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "codec/write_result.h"
#include "dicomdir/create/dicomdir_build.h"
#include "dicomdir/create/directory_scan.h"
#include "dicomdir/create/missing_keys.h"
#include "dicomdir/create/record_builder.h"
#include "frame/text.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/patient_list.h"

namespace pgkit {

namespace {

// A hierarchy that ends with its scope.
struct OwnPatients {
    PGX_List list;

    OwnPatients() = default;
    ~OwnPatients() { pgEmptyPatientList(&list); }
    OwnPatients(const OwnPatients&) = delete;
    OwnPatients& operator=(const OwnPatients&) = delete;
};

std::string WithoutTrailingBackslash(std::string_view directory) {
    if (directory.ends_with('\\')) directory.remove_suffix(1);
    return std::string(directory);
}

std::string_view FileSetIdOf(const PgDicomdirOptions& options) {
    const auto* end =
        static_cast<const char*>(std::memchr(options.fileSetId, '\0', sizeof options.fileSetId));
    const size_t length =
        end == nullptr ? sizeof options.fileSetId : static_cast<size_t>(end - options.fileSetId);
    return {options.fileSetId, length};
}

struct ScanRequest {
    std::string directory;
    std::string profile;
    PgDicomdirOptions options;
    PgDicomdirScanCallback callback;
    void* userData;
};

void Scan(const ScanRequest& request, PGX_List& patients, AcceptanceList* list) {
    if (list != nullptr) list->Start();
    RecordBuilder builder(patients, request.profile, request.options, list);
    DirectoryScan(request.directory, builder, request.callback, request.userData)
        .Run((request.options.flags & PG_DICOMDIR_NO_RECURSION) == 0);
    if (request.options.fillMissingKeys != 0) FillMissingKeys(patients);
}

uint32_t Create(const ScanRequest& request) {
    AcceptanceList listFile(request.directory);
    const bool wantsList = (request.options.flags & PG_DICOMDIR_NO_LIST) == 0;
    AcceptanceList* const list = wantsList ? &listFile : nullptr;
    OwnPatients patients;
    Scan(request, patients.list, list);
    return BuildDicomdir(patients.list, {request.directory, FileSetIdOf(request.options),
                                         request.options.storeFileSize != 0, list});
}

}  // namespace

}  // namespace pgkit

uint32_t pgCreateDicomdir(const char* directory, const char* profile,
                          PgDicomdirScanCallback callback, void* userData) {
    return pgCreateDicomdirEx(directory, profile, nullptr, callback, userData);
}

uint32_t pgCreateDicomdirEx(const char* directory, const char* profile,
                            const PgDicomdirOptions* options, PgDicomdirScanCallback callback,
                            void* userData) {
    if (directory == nullptr) return pgkit::kCannotCreate;
    try {
        return pgkit::Create(
            {pgkit::WithoutTrailingBackslash(directory), std::string(pgkit::OrEmpty(profile)),
             options != nullptr ? *options : PgDicomdirOptions{}, callback, userData});
    } catch (const std::bad_alloc&) {
        return pgkit::kOutOfMemory;
    }
}
