#include "scratch_files.h"

#include "support/temp_dir.h"

namespace pgkit_fuzz {

namespace {

const pgkit_test::TempDir& Scratch() {
    static const pgkit_test::TempDir directory;
    return directory;
}

}  // namespace

std::string ScratchPath(const char* name) { return Scratch().Path(name); }

std::string WriteScratch(const char* name, std::span<const uint8_t> content) {
    return Scratch().Write(name, content);
}

}  // namespace pgkit_fuzz
