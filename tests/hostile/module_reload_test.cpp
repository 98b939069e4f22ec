// The module as a plug-in: loaded and unloaded by a host again and again.
#include <gtest/gtest.h>
#include <pgkit/dictionary.h>

#include "hostile/every_failure.h"
#include "platform/loaded_module.h"
#include "support/host_system.h"

namespace {

namespace platform = pgkit::platform;

// The file is named as its system wants it.
void* LoadLibrary() {
    void* const module = platform::OpenModule("libpgkit");
    return module != nullptr ? module : platform::OpenModule("pgkit");
}

// Windows takes twenty times as long for it.
TEST(ModuleReload, ManyTimesLeavesItUsable) {
    constexpr int kTimes = pgkit_test::kIsWindows ? 200 : 1000;
    for (int i = 0; i < kTimes; ++i) {
        void* const module = LoadLibrary();
        ASSERT_NE(module, nullptr) << i;
        const auto find = reinterpret_cast<decltype(&pgFindValueRepresentation)>(
            platform::FindFunction(module, "pgFindValueRepresentation"));
        ASSERT_NE(find, nullptr) << i;
        ASSERT_EQ(find(0x0010, 0x0010), pgFindValueRepresentation(0x0010, 0x0010)) << i;
        platform::CloseModule(module);
    }
}

// Where the system lets a program replace operator new for the modules that it loads. Such a module
// used to end the program when it was loaded.
TEST(ModuleReload, WithoutMemoryDoesNotEndTheHost) {
    pgkit_test::SweepFailures<pgkit_test::FailingNew>([](auto&& whileFailing) {
        void* module = nullptr;
        whileFailing([&] { module = LoadLibrary(); });
        platform::CloseModule(module);
    });
}

}  // namespace
