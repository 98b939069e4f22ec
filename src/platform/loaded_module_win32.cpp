#include <windows.h>

#include <string>

#include "platform/loaded_module.h"
#include "platform/wide_path_win32.h"

namespace pgkit::platform {

namespace {

// Damaged modules, and those for other processors, would otherwise be shown to the user.
class WithoutErrorBoxes {
  public:
    WithoutErrorBoxes() { SetThreadErrorMode(SEM_FAILCRITICALERRORS, &before_); }
    ~WithoutErrorBoxes() { SetThreadErrorMode(before_, nullptr); }
    WithoutErrorBoxes(const WithoutErrorBoxes&) = delete;
    WithoutErrorBoxes& operator=(const WithoutErrorBoxes&) = delete;

  private:
    DWORD before_ = 0;
};

// The directory of this library, with the backslash at its end; empty when it is not known.
std::wstring OwnDirectory() {
    static const char inThisModule = 0;
    HMODULE module = nullptr;
    constexpr DWORD kSize = 1024;
    wchar_t path[kSize];
    constexpr DWORD kByAddress =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    const auto* address = reinterpret_cast<const wchar_t*>(&inThisModule);
    if (!GetModuleHandleExW(kByAddress, address, &module)) return std::wstring();
    const DWORD length = GetModuleFileNameW(module, path, kSize);
    if (length >= kSize) return std::wstring();
    const std::wstring own(path, length);
    return own.substr(0, own.rfind(L'\\') + 1);
}

HMODULE LoadBesideThis(const std::wstring& file) {
    const std::wstring directory = OwnDirectory();
    if (directory.empty()) return nullptr;
    return LoadLibraryExW((directory + file).c_str(), nullptr,
                          LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

}  // namespace

// The system knows every module by its full path.
void NoteOwnDirectory() {}

void* OpenModule(const char* name) {
    const WithoutErrorBoxes quiet;
    const std::wstring file = std::wstring(WidePath(name)) + L".dll";
    const HMODULE module = LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    return module != nullptr ? module : LoadBesideThis(file);
}

void CloseModule(void* module) {
    if (module != nullptr) FreeLibrary(static_cast<HMODULE>(module));
}

ModuleFunction FindFunction(void* module, const char* name) {
    if (module == nullptr) return nullptr;
    return reinterpret_cast<ModuleFunction>(GetProcAddress(static_cast<HMODULE>(module), name));
}

}  // namespace pgkit::platform
