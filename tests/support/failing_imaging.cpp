#include "support/failing_imaging.h"

#include <pgkit/imaging.h>

#include <string_view>
#include <utility>

#include "platform/loaded_module.h"

using pgkit::platform::ModuleFunction;

// The linker sends calls of a wrapped name to __wrap_name, and those of __real_name to the function
// itself.
#define REAL_NAME(mangled) __asm__("__real__ZN5pgkit8platform" mangled)
#define WRAPPED_NAME(mangled) __asm__("__wrap__ZN5pgkit8platform" mangled)

void* RealOpenModule(const char* name) REAL_NAME("10OpenModuleEPKc");
void RealCloseModule(void* module) REAL_NAME("11CloseModuleEPv");
ModuleFunction RealFindFunction(void* module, const char* name) REAL_NAME("12FindFunctionEPvPKc");

void* WrappedOpenModule(const char* name) WRAPPED_NAME("10OpenModuleEPKc");
void WrappedCloseModule(void* module) WRAPPED_NAME("11CloseModuleEPv");
ModuleFunction WrappedFindFunction(void* module, const char* name)
    WRAPPED_NAME("12FindFunctionEPvPKc");

#undef REAL_NAME
#undef WRAPPED_NAME

namespace {

bool isLinked = false;
// Its address stands for the linked code.
char linkedModule = 0;

template <typename Function>
std::pair<std::string_view, ModuleFunction> Named(const char* name, Function* function) {
    return {name, reinterpret_cast<ModuleFunction>(function)};
}

ModuleFunction FindLinked(std::string_view wanted) {
    for (const auto& [name, function] : {
             Named("vwImaAllocEmptyDicomImage", vwImaAllocEmptyDicomImage),
             Named("vwImaFreeDicomImage", vwImaFreeDicomImage),
             Named("vwImaLoadFrom", vwImaLoadFrom),
             Named("vwImaIsGrayscaleImage", vwImaIsGrayscaleImage),
             Named("vwImaGetNumber", vwImaGetNumber),
             Named("vwImaGetHDib", vwImaGetHDib),
             Named("vwDuplicateZoomDib", vwDuplicateZoomDib),
         }) {
        if (name == wanted) return function;
    }
    return nullptr;
}

}  // namespace

void* WrappedOpenModule(const char* name) {
    return isLinked ? &linkedModule : RealOpenModule(name);
}

void WrappedCloseModule(void* module) {
    if (module != &linkedModule) RealCloseModule(module);
}

ModuleFunction WrappedFindFunction(void* module, const char* name) {
    return module == &linkedModule ? FindLinked(name) : RealFindFunction(module, name);
}

namespace pgkit_test {

LinkedImaging::LinkedImaging() { isLinked = true; }

LinkedImaging::~LinkedImaging() { isLinked = false; }

}  // namespace pgkit_test
