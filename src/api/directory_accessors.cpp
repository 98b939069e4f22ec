// Accessors: DICOMDIR files.
#include <memory>
#include <new>

#include "api/handle_access.h"
#include "pgkit/accessors.h"

using pgkit::CallOn;

PGX_DicomDir* pgKitOpenDicomDir(const char* path, uint32_t maxLoadLength) {
    try {
        auto directory = std::make_unique<PGX_DicomDir>();
        directory->OpenDicomDir(path, maxLoadLength);
        return directory->IsDicomDir() == 1 ? directory.release() : nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void pgKitCloseDicomDir(PGX_DicomDir* directory) { delete directory; }

int32_t pgKitIsDicomDir(PGX_DicomDir* directory) {
    return CallOn(directory, &PGX_DicomDir::IsDicomDir);
}

PGX_List* pgKitDirBrowse(PGX_DicomDir* directory, PGX_DicomDirCallback callback, void* userData) {
    return CallOn(directory, &PGX_DicomDir::Browse, callback, userData);
}

PGX_List* pgKitDirGetPatientList(PGX_DicomDir* directory) {
    return CallOn(directory, &PGX_DicomDir::GetPatientList);
}
