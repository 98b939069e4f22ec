// What happens when the module is loaded and unloaded.
//
// The library-wide objects are constructed here, in this file's order, and nowhere else: first the
// private dictionary, then the SOP classes that a site adds, each read from a file beside the host
// program. A missing or broken file is never an error; nothing may stop the module from loading.
// Before them, the module notes where it lies.

#include <optional>
#include <string>

#include "dictionary/private_dictionary.h"
#include "platform/loaded_module.h"
#include "platform/platform.h"
#include "sopclass/sop_class_set.h"

namespace pgkit {

namespace {

// None when there is no folder to look in.
std::optional<std::string> PathBesideHost(const char* file) {
    const std::string directory = platform::HostProgramDirectory();
    if (directory.empty()) return std::nullopt;
    return directory + file;
}

class OwnDirectoryNote {
  public:
    OwnDirectoryNote() noexcept {
        try {
            platform::NoteOwnDirectory();
        } catch (...) {
            // Then nothing is looked for beside the module.
        }
    }
};

class PrivateDictionaryReading {
  public:
    PrivateDictionaryReading() noexcept {
        try {
            PrivateDictionary& dictionary = PrivateDictionary::Instance();
            const auto path = PathBesideHost("privdict.dic");
            if (path) static_cast<void>(dictionary.ReadFile(path->c_str()));  // few hosts have one
        } catch (...) {
            PrivateDictionary::Instance().Clear();
        }
    }
};

class SOPClassSetReading {
  public:
    SOPClassSetReading() noexcept {
        try {
            SOPClassSet& classes = SOPClassSet::Instance();
            const auto path = PathBesideHost("halvorix.xml");
            if (path) classes.ReadFile(path->c_str(), "properties");
        } catch (...) {
            SOPClassSet::Instance().Clear();
        }
    }
};

const OwnDirectoryNote ownDirectoryNote;
const PrivateDictionaryReading privateDictionaryReading;
const SOPClassSetReading sopClassSetReading;

}  // namespace

}  // namespace pgkit
