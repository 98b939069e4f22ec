// The flat functions of creation: of a folder, with or without a directory file in the end, of
// files that come one by one, and of one file.
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "base/firewall.h"
#include "base/paths.h"
#include "base/text.h"
#include "codec/write_result.h"
#include "dicomdir/create/creation.h"
#include "dicomdir/create/directory_file.h"
#include "pgkit/dicomdir_creation.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// ---- Scans --------------------------------------------------------------------------------------

uint32_t Create(const char* folder, const char* profile, const PgDicomdirOptions* options,
                PgDicomdirScanCallback callback, void* userData) {
    if (folder == nullptr) return kCannotCreate;
    const std::string medium = WithoutTrailingSeparator(folder);
    DirectoryFile(medium).RemoveStrays();
    const OwnPatients patients = NewPatients();
    Creation creation(medium, OrEmpty(profile), options, *patients, CreationEnd::DirectoryFile);
    creation.StartList();
    creation.Scan(callback, userData);
    return creation.Build();
}

void Scan(const char* folder, const char* profile, const PgDicomdirOptions* options,
          PGX_List& patients, PgDicomdirScanCallback callback, void* userData) {
    Creation creation(WithoutTrailingSeparator(folder), OrEmpty(profile), options, patients,
                      CreationEnd::Hierarchy);
    creation.StartList();
    creation.Scan(callback, userData);
    creation.KeepList();
}

// What the scan has found before it fails counts.
int32_t AddFrom(const char* folder, const char* profile, const PgDicomdirOptions* options,
                PGX_List* patients, PgDicomdirScanCallback callback, void* userData) {
    if (patients == nullptr) return 0;
    Guarded([&] {
        if (folder != nullptr) Scan(folder, profile, options, *patients, callback, userData);
    });
    return patients->count;
}

PGX_List* NewListOf(const char* folder, const char* profile, const PgDicomdirOptions* options,
                    PgDicomdirScanCallback callback, void* userData) {
    if (folder == nullptr) return nullptr;
    OwnPatients patients = NewPatients();
    Scan(folder, profile, options, *patients, callback, userData);
    return patients.release();
}

// ---- One file -----------------------------------------------------------------------------------

// A character as paths compare: separators are alike, and letters of either kind where the system
// takes them for the same.
char Folded(char c) {
    if (IsSeparator(c)) return '\\';
    return platform::PathsIgnoreCase() ? ToUpper(c) : c;
}

// What follows the folder and a separator, with backslashes; empty for a path that is not in it.
std::string PathBelow(std::string_view folder, std::string_view path) {
    const bool isBelow = path.size() > folder.size() && IsSeparator(path[folder.size()]) &&
                         std::ranges::equal(folder, path.substr(0, folder.size()),
                                            [](char a, char b) { return Folded(a) == Folded(b); });
    if (!isBelow) return "";
    std::string name(path.substr(folder.size() + 1));
    std::ranges::replace(name, '/', '\\');
    // A second separator in front of a bare name does not count.
    return name.rfind('\\') == 0 ? name.substr(1) : name;
}

uint32_t AddFile(PGX_List* patients, const char* directory, const char* path, const char* profile,
                 const PgDicomdirOptions* options) {
    if (patients == nullptr || directory == nullptr || path == nullptr) {
        return PG_INVALID_FILE_NAME;
    }
    const std::string medium = WithoutTrailingSeparator(directory);
    const std::string name = PathBelow(medium, path);
    if (name.empty()) return PG_INVALID_FILE_NAME;
    const std::string fullPath = medium + "\\" + name;
    return Creation(medium, OrEmpty(profile), options, *patients, CreationEnd::Hierarchy)
        .Add({name.c_str(), fullPath.c_str()});
}

// ---- Files that may lie anywhere ----------------------------------------------------------------

constexpr size_t kMaxFolder = 511;
constexpr uint32_t kNoCreation = 0xFFFFFFFF;

// What a handle stands for. Files are not held against any profile.
struct OffshoreCreation {
    OwnPatients patients = NewPatients();
    Creation creation;

    OffshoreCreation(std::string folder, const PgDicomdirOptions* options)
        : creation(std::move(folder), "", options, *patients, CreationEnd::DirectoryFile) {
        creation.StartList();
    }
};
using OwnOffshoreCreation = std::unique_ptr<OffshoreCreation>;

OffshoreCreation* Start(const char* folder, const PgDicomdirOptions* options) {
    if (folder == nullptr) return nullptr;
    const auto shortened = std::string_view(folder).substr(0, kMaxFolder);
    return new OffshoreCreation(WithoutTrailingSeparator(shortened), options);
}

uint32_t Add(OffshoreCreation* offshore, const char* referencedName, const char* fullPath) {
    if (offshore == nullptr) return kNoCreation;
    if (referencedName == nullptr || fullPath == nullptr) return PG_INVALID_FILE_NAME;
    return offshore->creation.Add({referencedName, fullPath});
}

uint32_t End(OwnOffshoreCreation offshore) {
    return offshore == nullptr ? kNoCreation : offshore->creation.Build();
}

OffshoreCreation* OffshoreCreationOf(void* handle) {
    return static_cast<OffshoreCreation*>(handle);
}

}  // namespace

}  // namespace pgkit

using pgkit::Guarded;
using pgkit::OffshoreCreationOf;

uint32_t pgCreateDicomdir(const char* directory, const char* profile,
                          PgDicomdirScanCallback callback, void* userData) {
    return pgCreateDicomdirEx(directory, profile, nullptr, callback, userData);
}

uint32_t pgCreateDicomdirEx(const char* directory, const char* profile,
                            const PgDicomdirOptions* options, PgDicomdirScanCallback callback,
                            void* userData) {
    return Guarded([=] { return pgkit::Create(directory, profile, options, callback, userData); },
                   pgkit::kOutOfMemory);
}

int32_t pgBrowseDisk(const char* directory, const char* profile, const PgDicomdirOptions* options,
                     PGX_List* patients, PgDicomdirScanCallback callback, void* userData) {
    return Guarded(
        [=] { return pgkit::AddFrom(directory, profile, options, patients, callback, userData); });
}

PGX_List* pgBrowsePatientListEx(const char* directory, const char* profile,
                                const PgDicomdirOptions* options, PgDicomdirScanCallback callback,
                                void* userData) {
    return Guarded(
        [=] { return pgkit::NewListOf(directory, profile, options, callback, userData); });
}

uint32_t pgAddFile(PGX_List* patients, const char* directory, const char* fullPath,
                   const char* profile, const PgDicomdirOptions* options) {
    return Guarded([=] { return pgkit::AddFile(patients, directory, fullPath, profile, options); },
                   PG_NOT_A_DATA_SET);
}

void* pgStartCreateOffshoreDicomdir(const char* directory, const char* /*profile*/,
                                    const PgDicomdirOptions* options) {
    return Guarded([=] { return pgkit::Start(directory, options); });
}

uint32_t pgAddFileToOffshoreDicomdir(void* handle, const char* referencedName,
                                     const char* fullPath) {
    return Guarded([=] { return pgkit::Add(OffshoreCreationOf(handle), referencedName, fullPath); },
                   PG_NOT_A_DATA_SET);
}

uint32_t pgEndCreateOffshoreDicomdir(void* handle) {
    return Guarded(
        [=] { return pgkit::End(pgkit::OwnOffshoreCreation(OffshoreCreationOf(handle))); },
        pgkit::kOutOfMemory);
}
