#include "dicomdir/create/disk_scan.h"

#include "base/text.h"
#include "dicomdir/create/creation_options.h"
#include "dicomdir/create/folder_scan.h"
#include "dicomdir/create/hierarchy_builder.h"
#include "dicomdir/create/missing_keys.h"

namespace pgkit {

DiskScan::DiskScan(const char* directory, const char* profile, const PgDicomdirOptions* options)
    : directory_(WithoutTrailingBackslash(directory)),
      profile_(OrEmpty(profile)),
      options_(OptionsOrDefault(options)),
      list_(directory_) {}

void DiskScan::Run(PGX_List& patients, PgDicomdirScanCallback callback, void* userData) {
    if (WantsList(options_)) list_.Start();
    HierarchyBuilder builder(patients, profile_, options_, List());
    FolderScan(directory_, builder, callback, userData)
        .Run((options_.flags & PG_DICOMDIR_NO_RECURSION) == 0);
    if (options_.fillMissingKeys != 0) FillMissingKeys(patients);
}

AcceptanceList* DiskScan::List() { return WantsList(options_) ? &list_ : nullptr; }

}  // namespace pgkit
