#include <dlfcn.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "platform/loaded_module.h"
#include "platform/platform.h"

namespace pgkit::platform {

namespace {

const char inThisModule = 0;

// Empty when it is not known.
char ownDirectory[PATH_MAX];

void* Load(const std::string& path) { return ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }

void* LoadFrom(std::string directory, const std::string& file) {
    std::replace(directory.begin(), directory.end(), '\\', '/');
    return directory.starts_with('/') ? Load(directory + "/" + file) : nullptr;
}

bool IsRelative(const Dl_serpath& entry) { return entry.dls_name[0] != '/'; }

// Whether the system looks in the current directory for a module of this library: relative and
// empty entries of LD_LIBRARY_PATH, and run paths, make it do so.
bool IsCurrentDirectorySearched() {
    Dl_info info;
    void* self = nullptr;
    Dl_serinfo size;
    if (::dladdr1(&inThisModule, &info, &self, RTLD_DL_LINKMAP) == 0 ||
        ::dlinfo(self, RTLD_DI_SERINFOSIZE, &size) != 0) {
        return true;
    }
    const auto room =
        std::make_unique<std::max_align_t[]>(size.dls_size / sizeof(std::max_align_t) + 1);
    auto* const paths = new (room.get()) Dl_serinfo(size);
    if (::dlinfo(self, RTLD_DI_SERINFO, paths) != 0) return true;
    const Dl_serpath* const first = paths->dls_serpath;
    return std::any_of(first, first + paths->dls_cnt, IsRelative);
}

void* LoadFromSystem(const std::string& file) {
    return IsCurrentDirectorySearched() ? nullptr : Load(file);
}

}  // namespace

void NoteOwnDirectory() {
    Dl_info info;
    if (::dladdr(&inThisModule, &info) == 0 || info.dli_fname == nullptr) return;
    const std::string path = info.dli_fname;
    const std::string directory = path.substr(0, path.rfind('/') + 1);
    if (::realpath(directory.c_str(), ownDirectory) == nullptr) ownDirectory[0] = '\0';
}

void* OpenModule(const char* name) {
    const std::string file = std::string(name) + ".so";
    void* module = LoadFrom(HostProgramDirectory(), file);
    if (module == nullptr) module = LoadFrom(ownDirectory, file);
    return module != nullptr ? module : LoadFromSystem(file);
}

void CloseModule(void* module) {
    if (module != nullptr) ::dlclose(module);
}

ModuleFunction FindFunction(void* module, const char* name) {
    if (module == nullptr) return nullptr;
    return reinterpret_cast<ModuleFunction>(::dlsym(module, name));
}

}  // namespace pgkit::platform
