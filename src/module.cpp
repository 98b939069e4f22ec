// What happens when the module is loaded and unloaded.
//
// The library-wide objects are constructed here, in this file's order, and nowhere else: first the
// private dictionary, then the SOP classes that a site adds, each read from a file beside the host
// program. A missing or broken file is never an error; nothing may stop the module from loading.

#include <string>

#include "dictionary/private_dictionary.h"
#include "platform/platform.h"
#include "sopclass/sop_class_set.h"

namespace pgkit {

namespace {

// The directory of the host program, with its trailing backslash.
std::string HostDirectory() {
    const std::string program = platform::HostProgramPath();
    const size_t backslash = program.rfind('\\');
    return backslash == std::string::npos ? "C:\\" : program.substr(0, backslash + 1);
}

class PrivateDictionaryLoad {
  public:
    PrivateDictionaryLoad() noexcept {
        try {
            PrivateDictionary::Instance().LoadFile((HostDirectory() + "privdict.dic").c_str());
        } catch (...) {
            PrivateDictionary::Instance().Clear();
        }
    }
};

class SOPClassSetLoad {
  public:
    SOPClassSetLoad() noexcept {
        try {
            SOPClassSet::Instance().load((HostDirectory() + "halvorix.xml").c_str(), "properties");
        } catch (...) {
            SOPClassSet::Instance().Clear();
        }
    }
};

const PrivateDictionaryLoad privateDictionaryLoad;
const SOPClassSetLoad sopClassSetLoad;

}  // namespace

}  // namespace pgkit
