// Creation in one call: a directory is scanned, and gets its DICOMDIR.
#include "base/firewall.h"
#include "codec/write_result.h"
#include "dicomdir/create/creation_options.h"
#include "dicomdir/create/directory_build.h"
#include "dicomdir/create/directory_file.h"
#include "dicomdir/create/disk_scan.h"
#include "dicomdir/create/own_patients.h"
#include "pgkit/dicomdir_creation.h"

namespace pgkit {

namespace {

uint32_t Create(const char* directory, const char* profile, const PgDicomdirOptions* options,
                PgDicomdirScanCallback callback, void* userData) {
    if (directory == nullptr) return kCannotCreate;
    DirectoryFile(WithoutTrailingBackslash(directory)).RemoveStrays();
    DiskScan scan(directory, profile, options);
    const OwnPatients patients = NewPatients();
    scan.Run(*patients, callback, userData);
    return BuildDirectoryFile(
        *patients, {scan.Directory(), FileSetIdOf(scan.Options()),
                    scan.Options().storeFileSize != 0, MayBeEmpty(scan.Options()), scan.List()});
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
    return pgkit::Guarded(
        [=] { return pgkit::Create(directory, profile, options, callback, userData); },
        pgkit::kOutOfMemory);
}
