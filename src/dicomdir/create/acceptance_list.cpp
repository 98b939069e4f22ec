#include "dicomdir/create/acceptance_list.h"

#include <array>
#include <cstdio>
#include <iterator>

#include "base/firewall.h"
#include "base/paths.h"
#include "base/text.h"
#include "dicomdir/create/directory_file.h"
#include "dicomdir/object_list.h"
#include "pgkit/acceptance.h"
#include "pgkit/dicomdir_creation.h"
#include "pgkit/directory_records.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr uint32_t kNoAcceptanceCode = 0xFFFFFFFF;

// By acceptance code.
constexpr std::string_view kCodeTexts[] = {"Dicom file accepted",
                                           "Invalid filename for file",
                                           "File is not DICOM Part 10 compliant",
                                           "Cannot open file for reading as a dataset",
                                           "File is a DICOMDIR",
                                           "Profile restriction don't match file",
                                           "SOPInstanceUID already found and registered",
                                           "SOPInstanceUID attribute was not found",
                                           "SeriesInstanceUID attribute was not found",
                                           "StudyInstanceUID attribute was not found"};

// Empty for a number that is no code.
std::string_view TextOf(uint32_t code) {
    return code < std::size(kCodeTexts) ? kCodeTexts[code] : std::string_view();
}

std::string Header() {
    std::string text = ";*** DICOMDIR CODES SUMMARY ***\n;******************************\n";
    for (size_t code = 0; code < std::size(kCodeTexts); ++code) {
        text.append("; ").append(std::to_string(code));
        text.append("\t").append(kCodeTexts[code]).append("\n");
    }
    return text + "\n";
}

std::string Line(uint32_t code, std::string_view path) {
    return std::to_string(static_cast<int>(code)).append("\t").append(path).append("\n");
}

[[nodiscard]] bool WriteText(FILE* stream, std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() &&
           std::fflush(stream) == 0;
}

// At the end of a file whose lines end as those of the platform.
[[nodiscard]] bool AppendText(const std::string& path, std::string_view text) {
    const platform::FileHandle stream(platform::AppendText(path.c_str()));
    return stream != nullptr && WriteText(stream.get(), text);
}

[[nodiscard]] bool CopyBytes(FILE* from, FILE* to) {
    std::array<char, 4096> buffer;
    if (!platform::Seek(from, 0)) return false;
    for (;;) {
        const size_t size = std::fread(buffer.data(), 1, buffer.size(), from);
        if (std::fwrite(buffer.data(), 1, size, to) != size) return false;
        if (size < buffer.size()) return std::ferror(from) == 0 && std::fflush(to) == 0;
    }
}

// The lines of all leaves, in pieces: there may be millions.
[[nodiscard]] bool AppendLeaves(PGX_List& patients, PGX_List& rootLeaves, const std::string& path) {
    constexpr size_t kPiece = 65536;
    const platform::FileHandle stream(platform::AppendText(path.c_str()));
    bool isWritten = stream != nullptr;
    std::string lines;
    ForEachLeaf(patients, rootLeaves, [&](const PGX_DicomDirLeafNode& leaf) {
        lines += Line(PG_ACCEPTED, leaf.referencedFileId);
        if (!isWritten || lines.size() < kPiece) return;
        isWritten = WriteText(stream.get(), lines);
        lines.clear();
    });
    return isWritten && WriteText(stream.get(), lines);
}

char WithBackslash(char c) { return c == '/' ? '\\' : c; }

// Slashes and backslashes are alike.
bool StartsWithPath(std::string_view text, std::string_view path) {
    if (text.size() < path.size()) return false;
    for (size_t i = 0; i < path.size(); ++i) {
        if (WithBackslash(text[i]) != WithBackslash(path[i])) return false;
    }
    return true;
}

}  // namespace

AcceptanceList::~AcceptanceList() {
    Close();
    // Without memory for the names the list stays as it was started.
    Guarded([this] {
        if (former_.Exists()) static_cast<void>(former_.PutInPlace());
    });
}

void AcceptanceList::Start() {
    const std::string path = Path();
    if (!platform::CanBeReplaced(path.c_str())) return StartInPlace();
    platform::FileReplacement started;
    isSkipped_ = !KeepFormer() || !started.Create(path.c_str(), kDicomdirName) ||
                 !AppendText(started.Path(), Header()) ||
                 started.PutInPlace() != platform::FileReplacement::Outcome::InPlace;
    if (isSkipped_) former_.Discard();
}

bool AcceptanceList::KeepFormer() {
    const std::string path = Path();
    const platform::FileHandle file(platform::OpenForReading(path.c_str()));
    return file == nullptr ||
           (former_.Create(path.c_str(), kDicomdirName) && CopyBytes(file.get(), former_.Stream()));
}

// A device, for instance, has no content that could be lost.
void AcceptanceList::StartInPlace() {
    const platform::FileHandle stream(platform::CreateText(Path().c_str()));
    isSkipped_ = stream == nullptr || !WriteText(stream.get(), Header());
}

void AcceptanceList::Append(uint32_t code, std::string_view fullPath) {
    if (code == kNoAcceptanceCode || isSkipped_) return;
    const std::string line = Line(code, RelativePath(fullPath));
    if (lines_ == nullptr) lines_.reset(platform::AppendText(Path().c_str()));
    if (lines_ == nullptr) return;
    const uint64_t size = platform::StreamSize(lines_.get());
    // A broken line that cannot be cut off either stays where it is: no file is refused for it.
    if (!WriteText(lines_.get(), line)) static_cast<void>(platform::CutTo(lines_.get(), size));
    if (!staysOpen_) lines_ = nullptr;
}

void AcceptanceList::Close() {
    lines_ = nullptr;
    staysOpen_ = false;
}

void AcceptanceList::AppendAccepted(PGX_List& patients, PGX_List& rootLeaves) {
    if (isSkipped_) return;
    const std::string path = Path();
    if (!platform::CanBeReplaced(path.c_str())) {
        [[maybe_unused]] const bool isWritten = AppendLeaves(patients, rootLeaves, path);
        return;
    }
    platform::FileReplacement replacement;
    if (!replacement.Create(path.c_str(), kDicomdirName)) return;
    {
        // Both are closed before the file is put in place: an open one cannot be moved on Windows.
        const platform::FileHandle current(platform::OpenForReading(path.c_str()));
        const platform::FileHandle copy(platform::CreateBinary(replacement.Path().c_str()));
        if (copy == nullptr) return;
        if (current != nullptr && !CopyBytes(current.get(), copy.get())) return;
    }
    if (!AppendLeaves(patients, rootLeaves, replacement.Path())) return;
    [[maybe_unused]] const auto outcome = replacement.PutInPlace();
}

void AcceptanceList::Keep() { former_.Discard(); }

std::string_view AcceptanceList::RelativePath(std::string_view fullPath) const {
    if (!StartsWithPath(fullPath, folder_)) return fullPath;
    const std::string_view rest = fullPath.substr(folder_.size());
    return !rest.empty() && IsSeparator(rest.front()) ? rest.substr(1) : fullPath;
}

}  // namespace pgkit

size_t pgxAcceptanceText(uint32_t code, char* buffer, size_t size) {
    return pgkit::Guarded([=] { return pgkit::CopyBounded(buffer, size, pgkit::TextOf(code)); });
}
