#include <dlfcn.h>

#include <string>

#include "platform/loaded_module.h"
#include "platform/platform.h"

namespace pgkit::platform {

namespace {

// With the separator at its end; empty for a path without a directory.
std::string DirectoryOf(const std::string& path) {
    return path.substr(0, path.find_last_of("/\\") + 1);
}

std::string OwnPath() {
    static const char inThisModule = 0;
    Dl_info info;
    const bool isKnown = ::dladdr(&inThisModule, &info) != 0 && info.dli_fname != nullptr;
    return isKnown ? info.dli_fname : "";
}

void* LoadFrom(std::string directory, const std::string& file) {
    if (directory.empty()) return nullptr;
    for (char& c : directory) {
        if (c == '\\') c = '/';
    }
    return ::dlopen((directory + file).c_str(), RTLD_NOW | RTLD_LOCAL);
}

}  // namespace

void* OpenModule(const char* name) {
    const std::string file = std::string(name) + ".so";
    void* module = LoadFrom(HostProgramDirectory(), file);
    if (module == nullptr) module = LoadFrom(DirectoryOf(OwnPath()), file);
    return module != nullptr ? module : ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void CloseModule(void* module) {
    if (module != nullptr) ::dlclose(module);
}

ModuleFunction FindFunction(void* module, const char* name) {
    if (module == nullptr) return nullptr;
    return reinterpret_cast<ModuleFunction>(::dlsym(module, name));
}

}  // namespace pgkit::platform
