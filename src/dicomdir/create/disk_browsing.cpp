// Hierarchies of what a disk holds, without a DICOMDIR.
#include "base/firewall.h"
#include "dicomdir/create/disk_scan.h"
#include "dicomdir/create/own_patients.h"
#include "pgkit/dicomdir_creation.h"

using pgkit::Guarded;

namespace {

// What the scan has found before it fails counts.
int32_t AddFrom(const char* directory, const char* profile, const PgDicomdirOptions* options,
                PGX_List& patients, PgDicomdirScanCallback callback, void* userData) {
    Guarded([&] {
        if (directory == nullptr) return;
        pgkit::DiskScan scan(directory, profile, options);
        scan.Run(patients, callback, userData);
        scan.KeepList();
    });
    return patients.count;
}

PGX_List* NewListOf(const char* directory, const char* profile, const PgDicomdirOptions* options,
                    PgDicomdirScanCallback callback, void* userData) {
    if (directory == nullptr) return nullptr;
    pgkit::OwnPatients patients = pgkit::NewPatients();
    pgkit::DiskScan scan(directory, profile, options);
    scan.Run(*patients, callback, userData);
    scan.KeepList();
    return patients.release();
}

}  // namespace

int32_t pgBrowseDisk(const char* directory, const char* profile, const PgDicomdirOptions* options,
                     PGX_List* patients, PgDicomdirScanCallback callback, void* userData) {
    return Guarded([=] {
        if (patients == nullptr) return 0;
        return AddFrom(directory, profile, options, *patients, callback, userData);
    });
}

PGX_List* pgBrowsePatientListEx(const char* directory, const char* profile,
                                const PgDicomdirOptions* options, PgDicomdirScanCallback callback,
                                void* userData) {
    return Guarded([=] { return NewListOf(directory, profile, options, callback, userData); });
}
