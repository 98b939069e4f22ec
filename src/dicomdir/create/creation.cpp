#include "dicomdir/create/creation.h"

#include <utility>

#include "dicomdir/create/directory_build.h"
#include "dicomdir/create/folder_scan.h"
#include "dicomdir/create/generated_values.h"

namespace pgkit {

namespace {

bool Has(const PgDicomdirOptions& options, PgDicomdirFlags flag) {
    return (options.flags & static_cast<uint32_t>(flag)) != 0;
}

// The field is as long as its text may be: the terminating zero may be missing.
std::string_view FileSetIdOf(const PgDicomdirOptions& options) {
    const std::string_view field(options.fileSetId, sizeof options.fileSetId);
    return field.substr(0, field.find('\0'));
}

}  // namespace

Creation::Creation(std::string folder, std::string_view profile, const PgDicomdirOptions* options,
                   PGX_List& patients)
    : folder_(std::move(folder)),
      options_(options != nullptr ? *options : PgDicomdirOptions{}),
      list_(folder_),
      patients_(patients) {
    builder_.emplace(patients_, std::string(profile), options_, List());
}

void Creation::StartList() {
    if (List() != nullptr) list_.Start();
}

void Creation::Scan(PgDicomdirScanCallback callback, void* userData) {
    if (callback == nullptr) list_.StayOpen();
    FolderScan(folder_, *builder_, callback, userData)
        .Run(!Has(options_, PG_DICOMDIR_NO_RECURSION));
    list_.Close();
    builder_.reset();
    if (options_.fillMissingKeys != 0) FillMissingKeys(patients_);
}

uint32_t Creation::Build() {
    builder_.reset();
    return BuildDirectoryFile(patients_, {.folder = folder_,
                                          .fileSetId = FileSetIdOf(options_),
                                          .wantsFileSizes = options_.storeFileSize != 0,
                                          .mayBeEmpty = !Has(options_, PG_DICOMDIR_NEVER_EMPTY),
                                          .list = List()});
}

AcceptanceList* Creation::List() { return Has(options_, PG_DICOMDIR_NO_LIST) ? nullptr : &list_; }

}  // namespace pgkit
