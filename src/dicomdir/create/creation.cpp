#include "dicomdir/create/creation.h"

#include <utility>

#include "dicomdir/create/creation_flags.h"
#include "dicomdir/create/directory_build.h"
#include "dicomdir/create/folder_scan.h"
#include "dicomdir/create/generated_values.h"
#include "dicomdir/create/standard_leaves.h"
#include "dicomdir/object_list.h"

namespace pgkit {

namespace {

// The field is as long as its text may be: the terminating zero may be missing.
std::string_view FileSetIdOf(const PgDicomdirOptions& options) {
    const std::string_view field(options.fileSetId, sizeof options.fileSetId);
    return field.substr(0, field.find('\0'));
}

}  // namespace

Creation::Creation(std::string folder, std::string_view profile, const PgDicomdirOptions* options,
                   PGX_List& patients, CreationEnd end)
    : folder_(std::move(folder)),
      options_(options != nullptr ? *options : PgDicomdirOptions{}),
      list_(folder_),
      patients_(patients) {
    PGX_List* const rootLeaves = end == CreationEnd::DirectoryFile ? &rootLeaves_ : nullptr;
    builder_.emplace(patients_, std::string(profile), options_, List(), rootLeaves);
}

Creation::~Creation() { DestroyObjects<Leaf>(rootLeaves_); }

void Creation::StartList() {
    if (List() != nullptr) list_.Start();
}

void Creation::Scan(PgDicomdirScanCallback callback, void* userData) {
    if (callback == nullptr) list_.StayOpen();
    FolderScan(folder_, *builder_, callback, userData)
        .Run(!Has(options_, PG_DICOMDIR_NO_RECURSION));
    list_.Close();
    CloseBuilder();
    if (options_.fillMissingKeys == 0) return;
    FillMissingKeys(patients_);
    if (!Has(options_, PG_DICOMDIR_STANDARD_RECORDS)) return;
    ForEachLeaf(patients_, rootLeaves_, [](Leaf& leaf) { FillMissingKeys(leaf); });
}

uint32_t Creation::Build() {
    CloseBuilder();
    if (refused_ > 0 && Has(options_, PG_DICOMDIR_ALL_OR_NOTHING)) {
        list_.Keep();
        return PG_CREATION_FILES_REFUSED;
    }
    return BuildDirectoryFile(patients_, {.folder = folder_,
                                          .fileSetId = FileSetIdOf(options_),
                                          .rootLeaves = &rootLeaves_,
                                          .wantsFileSizes = options_.storeFileSize != 0,
                                          .mayBeEmpty = !Has(options_, PG_DICOMDIR_NEVER_EMPTY),
                                          .list = List()});
}

void Creation::CloseBuilder() {
    if (builder_) refused_ = builder_->CountRefused();
    builder_.reset();
}

AcceptanceList* Creation::List() { return Has(options_, PG_DICOMDIR_NO_LIST) ? nullptr : &list_; }

}  // namespace pgkit
