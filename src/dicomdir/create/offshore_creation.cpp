// Creation file by file: the files may lie anywhere, and the caller says under which names the
// DICOMDIR refers to them.
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "codec/write_result.h"
#include "dicomdir/create/acceptance_list.h"
#include "dicomdir/create/creation_options.h"
#include "dicomdir/create/dicomdir_build.h"
#include "dicomdir/create/own_patients.h"
#include "dicomdir/create/record_builder.h"
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
        return BuildDicomdir(*patients_,
                             {directory_, FileSetIdOf(options_), options_.storeFileSize != 0,
                              MayBeEmpty(options_), List()});
    }

  private:
    AcceptanceList* List() { return WantsList(options_) ? &list_ : nullptr; }

    std::string directory_;
    PgDicomdirOptions options_;
    AcceptanceList list_;
    OwnPatients patients_;
    RecordBuilder builder_;
};

}  // namespace

}  // namespace pgkit

void* pgStartCreateOffshoreDicomdir(const char* directory, const char* /*profile*/,
                                    const PgDicomdirOptions* options) {
    if (directory == nullptr) return nullptr;
    try {
        const auto shortened = std::string_view(directory).substr(0, pgkit::kMaxDirectory);
        return new pgkit::OffshoreCreation(pgkit::WithoutTrailingBackslash(shortened),
                                           pgkit::OptionsOrDefault(options));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

uint32_t pgAddFileToOffshoreDicomdir(void* handle, const char* referencedName,
                                     const char* fullPath) {
    if (handle == nullptr) return pgkit::kNoCreation;
    if (referencedName == nullptr || fullPath == nullptr) return PG_INVALID_FILE_NAME;
    return static_cast<pgkit::OffshoreCreation*>(handle)->Add({referencedName, fullPath});
}

uint32_t pgEndCreateOffshoreDicomdir(void* handle) {
    if (handle == nullptr) return pgkit::kNoCreation;
    const std::unique_ptr<pgkit::OffshoreCreation> creation(
        static_cast<pgkit::OffshoreCreation*>(handle));
    try {
        return creation->Build();
    } catch (const std::bad_alloc&) {
        return pgkit::kOutOfMemory;
    }
}
