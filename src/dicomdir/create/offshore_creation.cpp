// Creation file by file: the files may lie anywhere, and the caller says under which names the
// DICOMDIR refers to them.
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "base/firewall.h"
#include "codec/write_result.h"
#include "dicomdir/create/acceptance_list.h"
#include "dicomdir/create/creation_options.h"
#include "dicomdir/create/directory_build.h"
#include "dicomdir/create/hierarchy_builder.h"
#include "dicomdir/create/own_patients.h"
#include "pgkit/dicomdir_creation.h"

namespace pgkit {

namespace {

constexpr size_t kMaxDirectory = 511;
constexpr uint32_t kNoCreation = 0xFFFFFFFF;

// Files are not held against any profile.
constexpr const char* kNoProfile = "";

// What a handle stands for. The builder's indexes live as long.
class OffshoreCreation {
  public:
    OffshoreCreation(std::string directory, const PgDicomdirOptions& options)
        : directory_(std::move(directory)),
          options_(options),
          list_(directory_),
          patients_(NewPatients()),
          builder_(*patients_, kNoProfile, options_, List()) {
        if (WantsList(options_)) list_.Start();
    }

    uint32_t Add(const FileToAdd& file) { return builder_.Add(file).code; }

    uint32_t Build() {
        return BuildDirectoryFile(*patients_,
                                  {directory_, FileSetIdOf(options_), options_.storeFileSize != 0,
                                   MayBeEmpty(options_), List()});
    }

  private:
    AcceptanceList* List() { return WantsList(options_) ? &list_ : nullptr; }

    std::string directory_;
    PgDicomdirOptions options_;
    AcceptanceList list_;
    OwnPatients patients_;
    HierarchyBuilder builder_;
};

using CreationOwner = std::unique_ptr<OffshoreCreation>;

OffshoreCreation* Start(const char* directory, const PgDicomdirOptions* options) {
    if (directory == nullptr) return nullptr;
    const auto shortened = std::string_view(directory).substr(0, kMaxDirectory);
    return new OffshoreCreation(WithoutTrailingBackslash(shortened), OptionsOrDefault(options));
}

uint32_t Add(OffshoreCreation* creation, const char* referencedName, const char* fullPath) {
    if (creation == nullptr) return kNoCreation;
    if (referencedName == nullptr || fullPath == nullptr) return PG_INVALID_FILE_NAME;
    return creation->Add({referencedName, fullPath});
}

uint32_t End(CreationOwner creation) {
    return creation == nullptr ? kNoCreation : creation->Build();
}

OffshoreCreation* CreationOf(void* handle) { return static_cast<OffshoreCreation*>(handle); }

}  // namespace

}  // namespace pgkit

using pgkit::CreationOf;
using pgkit::Guarded;

void* pgStartCreateOffshoreDicomdir(const char* directory, const char* /*profile*/,
                                    const PgDicomdirOptions* options) {
    return Guarded([=] { return pgkit::Start(directory, options); });
}

uint32_t pgAddFileToOffshoreDicomdir(void* handle, const char* referencedName,
                                     const char* fullPath) {
    return Guarded([=] { return pgkit::Add(CreationOf(handle), referencedName, fullPath); },
                   PG_NOT_A_DATA_SET);
}

uint32_t pgEndCreateOffshoreDicomdir(void* handle) {
    return Guarded([=] { return pgkit::End(pgkit::CreationOwner(CreationOf(handle))); },
                   pgkit::kOutOfMemory);
}
