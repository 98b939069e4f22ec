// Hierarchies of what a disk holds, without a DICOMDIR.
#include <new>

#include "dicomdir/create/disk_scan.h"
#include "dicomdir/create/own_patients.h"
#include "pgkit/dicomdir_creation.h"

int32_t pgBrowseDisk(const char* directory, const char* profile, const PgDicomdirOptions* options,
                     PGX_List* patients, PgDicomdirScanCallback callback, void* userData) {
    if (patients == nullptr) return 0;
    if (directory == nullptr) return patients->count;
    try {
        pgkit::DiskScan scan(directory, profile, options);
        scan.Run(*patients, callback, userData);
        scan.KeepList();
    } catch (const std::bad_alloc&) {
        return patients->count;
    }
    return patients->count;
}

PGX_List* pgBrowsePatientListEx(const char* directory, const char* profile,
                                const PgDicomdirOptions* options, PgDicomdirScanCallback callback,
                                void* userData) {
    if (directory == nullptr) return nullptr;
    try {
        pgkit::OwnPatients patients = pgkit::NewPatients();
        pgkit::DiskScan scan(directory, profile, options);
        scan.Run(*patients, callback, userData);
        scan.KeepList();
        return patients.release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
