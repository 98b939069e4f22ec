// Creation in one call: a directory is scanned, and gets its DICOMDIR.
#include <new>

#include "codec/write_result.h"
#include "dicomdir/create/creation_options.h"
#include "dicomdir/create/dicomdir_build.h"
#include "dicomdir/create/dicomdir_file.h"
#include "dicomdir/create/disk_scan.h"
#include "dicomdir/create/own_patients.h"
#include "pgkit/dicomdir_creation.h"

uint32_t pgCreateDicomdir(const char* directory, const char* profile,
                          PgDicomdirScanCallback callback, void* userData) {
    return pgCreateDicomdirEx(directory, profile, nullptr, callback, userData);
}

uint32_t pgCreateDicomdirEx(const char* directory, const char* profile,
                            const PgDicomdirOptions* options, PgDicomdirScanCallback callback,
                            void* userData) {
    if (directory == nullptr) return pgkit::kCannotCreate;
    try {
        pgkit::DicomdirFile(pgkit::WithoutTrailingBackslash(directory)).RemoveStrays();
        pgkit::DiskScan scan(directory, profile, options);
        const pgkit::OwnPatients patients = pgkit::NewPatients();
        scan.Run(*patients, callback, userData);
        return pgkit::BuildDicomdir(
            *patients,
            {scan.Directory(), pgkit::FileSetIdOf(scan.Options()),
             scan.Options().storeFileSize != 0, pgkit::MayBeEmpty(scan.Options()), scan.List()});
    } catch (const std::bad_alloc&) {
        return pgkit::kOutOfMemory;
    }
}
