// Accessors: DICOMDIR files.
#include <memory>

#include "api/handle_access.h"
#include "pgkit/accessors.h"

using pgkit::CallOn;
using pgkit::Guarded;

PGX_DicomDir* pgKitOpenDicomDir(const char* path, uint32_t maxLoadLength) {
    return Guarded([=] {
        auto directory = std::make_unique<PGX_DicomDir>();
        directory->OpenDicomDir(path, maxLoadLength);
        return directory->IsDicomDir() == 1 ? directory.release() : nullptr;
    });
}

void pgKitCloseDicomDir(PGX_DicomDir* directory) {
    Guarded([=] { delete directory; });
}

int32_t pgKitIsDicomDir(PGX_DicomDir* directory) {
    return CallOn(directory, &PGX_DicomDir::IsDicomDir);
}

PGX_List* pgKitDirBrowse(PGX_DicomDir* directory, PGX_DicomDirCallback callback, void* userData) {
    return CallOn(directory, &PGX_DicomDir::Browse, callback, userData);
}

PGX_List* pgKitDirGetPatientList(PGX_DicomDir* directory) {
    return CallOn(directory, &PGX_DicomDir::GetPatientList);
}
