#include "support/failing_imaging.h"

#include <pgkit/imaging.h>

#include <string_view>
#include <utility>

#include "platform/loaded_module.h"
#include "support/forwarded_platform.h"

using pgkit::platform::ModuleFunction;

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

namespace pgkit::platform {

void* OpenModule(const char* name) { return isLinked ? &linkedModule : SystemOpenModule(name); }

void CloseModule(void* module) {
    if (module != &linkedModule) SystemCloseModule(module);
}

ModuleFunction FindFunction(void* module, const char* name) {
    return module == &linkedModule ? FindLinked(name) : SystemFindFunction(module, name);
}

}  // namespace pgkit::platform

namespace pgkit_test {

LinkedImaging::LinkedImaging() { isLinked = true; }

LinkedImaging::~LinkedImaging() { isLinked = false; }

}  // namespace pgkit_test
