// Runs inputs through a target without a fuzzer: pgkit_replay TARGET FILE|DIRECTORY...
#include <cstdio>
#include <filesystem>
#include <string>

#include "support/temp_dir.h"
#include "targets.h"
#include "violation.h"

namespace {

namespace fs = std::filesystem;
using pgkit_fuzz::Target;

bool Replay(const Target& target, const fs::path& path) {
    try {
        const pgkit_test::Bytes input = pgkit_test::ReadFile(path.string());
        target.run(input);
        return true;
    } catch (const pgkit_fuzz::Violation& violation) {
        std::printf("%s: broken promise: %s\n", path.string().c_str(), violation.what());
        return false;
    }
}

int ReplayAll(const Target& target, const fs::path& path) {
    if (!fs::is_directory(path)) return Replay(target, path) ? 0 : 1;
    int failures = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path))
        if (entry.is_regular_file() && !Replay(target, entry.path())) ++failures;
    return failures;
}

}  // namespace

int main(int argc, char** argv) {
    const Target* const target = argc > 2 ? pgkit_fuzz::FindTarget(argv[1]) : nullptr;
    if (target == nullptr) {
        std::fputs("usage: pgkit_replay TARGET FILE|DIRECTORY...\n", stderr);
        return 2;
    }
    int failures = 0;
    for (int i = 2; i < argc; ++i)
        failures += ReplayAll(*target, argv[i]);
    return failures == 0 ? 0 : 1;
}
