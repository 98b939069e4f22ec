// Writes copies of all DICOM files of a folder, and of the folders in it, that no longer say whom
// they are about: IM00001.dcm, IM00002.dcm ...
//
//   anonymize_folder FOLDER NEW_FOLDER
//
// A demonstration, honest but short. It replaces every person's name, the patient's ID and all UIDs
// (the same one by the same new one in all files, so that they still belong together), empties or
// removes what is listed below, and removes all private elements, in sequences at every depth, too.
// It leaves dates, descriptions, comments that are not listed and the pixels, into which names may
// be burnt: what must not leave the house needs all of the profiles of DICOM PS3.15 and somebody
// who looks at the result.
#include <pgkit/data_set.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::array kEmptied = {
    pgkit::tag{0x0008, 0x0050},  // Accession Number
    pgkit::tag{0x0010, 0x0030},  // Patient's Birth Date
    pgkit::tag{0x0020, 0x0010},  // Study ID
};
constexpr std::array kRemoved = {
    pgkit::tag{0x0008, 0x0080},  // Institution Name
    pgkit::tag{0x0008, 0x0081},  // Institution Address
    pgkit::tag{0x0008, 0x0092},  // Referring Physician's Address
    pgkit::tag{0x0008, 0x0094},  // Referring Physician's Telephone Numbers
    pgkit::tag{0x0008, 0x1010},  // Station Name
    pgkit::tag{0x0010, 0x0032},  // Patient's Birth Time
    pgkit::tag{0x0010, 0x1000},  // Other Patient IDs
    pgkit::tag{0x0010, 0x1002},  // Other Patient IDs Sequence
    pgkit::tag{0x0010, 0x1040},  // Patient's Address
    pgkit::tag{0x0010, 0x2154},  // Patient's Telephone Numbers
    pgkit::tag{0x0010, 0x21F0},  // Patient's Religious Preference
    pgkit::tag{0x0010, 0x4000},  // Patient Comments
    pgkit::tag{0x0018, 0x1000},  // Device Serial Number
    pgkit::tag{0x0040, 0x0275},  // Request Attributes Sequence
};

// UIDs that say what something is, not which one it is.
constexpr std::array kKeptUids = {
    pgkit::tag{0x0002, 0x0002},  // Media Storage SOP Class UID
    pgkit::tag{0x0002, 0x0010},  // Transfer Syntax UID
    pgkit::tag{0x0002, 0x0012},  // Implementation Class UID
    pgkit::tag{0x0008, 0x0016},  // SOP Class UID
    pgkit::tag{0x0008, 0x010C},  // Coding Scheme UID
    pgkit::tag{0x0008, 0x1150},  // Referenced SOP Class UID
};

template <typename Tags>
bool Contains(const Tags& tags, pgkit::tag tag) {
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

// "2.25." and a random UUID (version 4) as one decimal number.
std::string NewUid() {
    static std::random_device random;
    std::array<std::uint32_t, 4> words;
    for (std::uint32_t& word : words)
        word = static_cast<std::uint32_t>(random());
    words[1] = (words[1] & 0xFFFF0FFF) | 0x00004000;
    words[2] = (words[2] & 0x3FFFFFFF) | 0x80000000;
    std::string digits;
    while (words != std::array<std::uint32_t, 4>{}) {
        std::uint64_t remainder = 0;
        for (std::uint32_t& word : words) {
            remainder = (remainder << 32) | word;
            word = static_cast<std::uint32_t>(remainder / 10);
            remainder %= 10;
        }
        digits += static_cast<char>('0' + remainder);
    }
    std::reverse(digits.begin(), digits.end());
    return "2.25." + digits;
}

// The new UIDs of one run, by the old ones.
class Uids {
  public:
    // Those that DICOM itself defines mean the same to all.
    std::string NewOf(const std::string& uid) {
        if (uid.empty() || uid.rfind("1.2.840.10008.", 0) == 0) return uid;
        const auto [entry, isNew] = uids_.try_emplace(uid);
        if (isNew) entry->second = NewUid();
        return entry->second;
    }

  private:
    std::map<std::string, std::string> uids_;
};

pgkit::result<void> ReplaceUids(pgkit::element& element, Uids& uids) {
    std::string all;
    for (const std::string& uid : element.texts())
        all += (all.empty() ? "" : "\\") + uids.NewOf(uid);
    return element.set_text(all);
}

pgkit::result<void> Anonymize(pgkit::data_set& image, Uids& uids) {
    pgkit::result<void> done;
    pgkit::walk(image, [&](pgkit::element& element) {
        const pgkit::tag tag = element.tag();
        if (tag.is_private() || Contains(kRemoved, tag)) return pgkit::visit::remove;
        if (Contains(kEmptied, tag)) {
            done &= element.set_text("");
        } else if (element.vr() == VR_PN && !element.empty()) {
            done &= element.set_text("ANONYMOUS");
        } else if (element.vr() == VR_UI && !Contains(kKeptUids, tag)) {
            done &= ReplaceUids(element, uids);
        }
        return pgkit::visit::go_on;
    });
    done &= image.set_text("PatientName", "ANONYMOUS");
    done &= image.set_text("PatientID", "ANONYMOUS");
    done &= image.set_text("PatientIdentityRemoved", "YES");
    done &= image.set_text("DeidentificationMethod", "pgkit example: anonymize_folder");
    return done;
}

// Files in the order of their paths: what the system gives depends on the system.
std::vector<std::string> FilesBelow(const fs::path& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder, error))
        if (entry.is_regular_file(error)) files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

std::string NewName(int number) {
    const std::string digits = std::to_string(number);
    return "IM" + std::string(digits.size() < 5 ? 5 - digits.size() : 0, '0') + digits + ".dcm";
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return 2;
    std::error_code error;
    fs::create_directories(arguments[2], error);
    Uids uids;
    int written = 0;
    int failed = 0;
    for (const std::string& path : FilesBelow(arguments[1])) {
        auto image = pgkit::data_set::open(path);
        // Nearly everything can be read as some data set; an image has an identity.
        if (!image || image->find("SOPInstanceUID").empty()) {
            std::printf("left out: %s\n", path.c_str());
            continue;
        }
        const std::string copy = (fs::path(arguments[2]) / NewName(written + failed + 1)).string();
        pgkit::result<void> done = Anonymize(*image, uids);
        if (done) done &= image->save(copy);
        ++(done ? written : failed);
        if (!done) std::fprintf(stderr, "%s: %s\n", path.c_str(), done.error().message.c_str());
    }
    std::printf("%d files written, %d failed\n", written, failed);
    return failed == 0 ? 0 : 1;
}
