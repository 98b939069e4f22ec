#include "dicomdir/create/directory_file.h"

#include "base/diagnostics.h"
#include "base/paths.h"
#include "codec/write_result.h"
#include "platform/platform.h"
#include "platform/replacement_name.h"

namespace pgkit {

namespace {

constexpr int32_t kWriteMode = PG_LITTLE_ENDIAN | PG_EXPLICIT_VR | PG_META;

}  // namespace

std::string WithoutTrailingSeparator(std::string_view folder) {
    if (!folder.empty() && IsSeparator(folder.back())) folder.remove_suffix(1);
    return std::string(folder);
}

bool IsReplacementOfDicomdir(std::string_view name) {
    return platform::IsReplacementName(name, kDicomdirName);
}

DirectoryFile::DirectoryFile(const std::string& folder) : path_(folder + "\\" + kDicomdirName) {}

void DirectoryFile::RemoveStrays() {
    if (hasNoStrays_ || !platform::FileSize(path_.c_str())) return;
    platform::RemoveStrayReplacements(path_.c_str());
    hasNoStrays_ = true;
}

// What is no regular file, a device for instance, is written where it is: there is nothing to lose.
bool DirectoryFile::Create() {
    if (!platform::CanBeReplaced(path_.c_str())) return true;
    if (replacement_.Create(path_.c_str())) return true;
    PrintError("pgSaveDataSetAsEx : unable to open %s\n", path_.c_str());
    return false;
}

uint32_t DirectoryFile::Save(PGX_Node& root) {
    if (!replacement_.Exists()) return root.SaveDataSetAsEx(path_.c_str(), kWriteMode);
    const uint32_t result = root.SaveDataSetAsEx(replacement_.Path().c_str(), kWriteMode);
    if (result != kWritten) return result;
    switch (replacement_.PutInPlace()) {
        case platform::FileReplacement::Outcome::InPlace:
            return kWritten;
        case platform::FileReplacement::Outcome::NotOnDisk:
            return kWriteFailed;
        default:
            PrintError("pgSaveDataSetAsEx : unable to open %s\n", path_.c_str());
            return kCannotCreate;
    }
}

}  // namespace pgkit
