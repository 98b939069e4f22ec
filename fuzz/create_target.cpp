#include <pgkit/pgkit.h>

#include <cstring>
#include <string>

#include "input.h"
#include "support/temp_dir.h"
#include "targets.h"
#include "violation.h"

namespace pgkit_fuzz {

namespace {

constexpr const char* kProfiles[] = {"", "STD-GEN-CD", "STD-CTMR-CD", "STD-XABC-CD", "NO-SUCH"};

PgDicomdirOptions OptionsOf(Input& input) {
    PgDicomdirOptions options = {};
    const uint8_t bits = input.Byte();
    options.seriesIcons = bits & 1;
    options.storeFileSize = bits >> 1 & 1;
    options.fillMissingKeys = bits >> 2 & 1;
    if ((bits & 8) != 0) options.flags |= PG_DICOMDIR_SKIP_CHECKS;
    if ((bits & 16) != 0) options.flags |= PG_DICOMDIR_NO_LIST;
    if ((bits & 32) != 0) std::memset(options.fileSetId, 'F', sizeof options.fileSetId);
    return options;
}

}  // namespace

void Create(Bytes bytes) {
    Input input(bytes);
    const PgDicomdirOptions options = OptionsOf(input);
    const char* const profile = input.Pick(kProfiles);
    const pgkit_test::TempDir medium;
    medium.Write("IM1", input.Rest());
    medium.Write("IM2", input.Rest());  // the same instance twice
    const std::string directory = pgkit_test::LibraryPath(medium.Path(""));
    const uint32_t result =
        pgCreateDicomdirEx(directory.c_str(), profile, &options, nullptr, nullptr);
    Require(result == 0, "a DICOMDIR is written whatever the files are");

    PGX_DicomDir written;
    Require(written.OpenDicomDir((directory + "DICOMDIR").c_str(), 64) != 0 &&
                written.Browse(nullptr, nullptr) != nullptr,
            "and can be browsed");
}

}  // namespace pgkit_fuzz
