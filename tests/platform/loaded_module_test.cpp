#include "platform/loaded_module.h"

#include <gtest/gtest.h>

namespace {

namespace platform = pgkit::platform;

TEST(LoadedModule, IsNullWhenThereIsNone) {
    EXPECT_EQ(platform::OpenModule("pgkit_no_such_module"), nullptr);
    EXPECT_EQ(platform::FindFunction(nullptr, "vwImaLoadFrom"), nullptr);
    platform::CloseModule(nullptr);
}

TEST(LoadedModule, HasTheFunctionsThatItExports) {
    void* const module = platform::OpenModule("pgview32");
    if (module == nullptr) GTEST_SKIP() << "built without the imaging module";
    EXPECT_NE(platform::FindFunction(module, "vwImaLoadFrom"), nullptr);
    EXPECT_EQ(platform::FindFunction(module, "vwNoSuchFunction"), nullptr);
    platform::CloseModule(module);
}

}  // namespace
