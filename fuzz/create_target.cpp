#include <pgkit/pgkit.h>

#include <cstring>
#include <string>

#include "input.h"
#include "support/instance_file.h"
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
    if ((bits & 64) != 0) options.flags |= PG_DICOMDIR_STANDARD_RECORDS;
    if ((bits & 128) != 0) options.flags |= PG_DICOMDIR_STRICT_NAMES;
    if ((bits & 32) != 0) std::memset(options.fileSetId, 'F', sizeof options.fileSetId);
    return options;
}

void RequireBrowsable(const std::string& directory) {
    PGX_DicomDir written;
    Require(written.OpenDicomDir((directory + "DICOMDIR").c_str(), 64) != 0 &&
                written.Browse(nullptr, nullptr) != nullptr,
            "and can be browsed");
}

constexpr const char* kStandardClasses[] = {
    "1.2.840.10008.5.1.4.1.1.481.2",  // RT DOSE
    "1.2.840.10008.5.1.4.1.1.4.2",    // SPECTROSCOPY
    "1.2.840.10008.5.1.4.1.1.11.4",   // PRESENTATION
    "1.2.840.10008.5.1.4.1.1.104.2",  // ENCAP DOC
    "1.2.840.10008.5.1.4.1.1.67",     // VALUE MAP
    "1.2.840.10008.5.1.4.38.1",       // HANGING PROTOCOL
    "1.2.840.10008.5.1.4.44.1",       // IMPLANT ASSY
};

// The elements of the input as an instance of a kind that has keys of its own.
pgkit_test::Bytes InstanceOf(const char* sopClass, Bytes elements) {
    pgkit_test::Bytes file = pgkit_test::InstanceFile().SopClass(sopClass).Data();
    file.insert(file.end(), elements.begin(), elements.end());
    return file;
}

}  // namespace

void Create(Bytes bytes) {
    Input input(bytes);
    const PgDicomdirOptions options = OptionsOf(input);
    const char* const profile = input.Pick(kProfiles);
    const char* const sopClass = input.Pick(kStandardClasses);
    const pgkit_test::TempDir medium;
    medium.Write("IM1", input.Rest());
    medium.Write("IM2", input.Rest());  // the same instance twice
    medium.Write("IM3", InstanceOf(sopClass, input.Rest()));
    const std::string directory = pgkit_test::LibraryPath(medium.Path(""));
    const uint32_t result =
        pgCreateDicomdirEx(directory.c_str(), profile, &options, nullptr, nullptr);
    Require(result == 0, "a DICOMDIR is written whatever the files are");

    RequireBrowsable(directory);

    void* const update = pgxStartDicomdirUpdate(directory.c_str(), profile, &options, nullptr);
    Require(update != nullptr, "a DICOMDIR that was written can be changed");
    pgxUpdateAddFile(update, "IM3", (directory + "IM3").c_str());
    pgxUpdateRemoveStudy(update, "1.2.3");
    Require(pgxEndDicomdirUpdate(update) == 0, "and written again");
    RequireBrowsable(directory);
}

// What is no sound DICOMDIR is left alone, anything else becomes another one.
void Update(Bytes bytes) {
    Input input(bytes);
    const PgDicomdirOptions options = OptionsOf(input);
    const std::string study = input.Byte() % 2 == 0 ? "1.2.3" : input.Text(8);
    const pgkit_test::TempDir medium;
    medium.Write("DICOMDIR", input.Rest());
    medium.Write("NEW", pgkit_test::InstanceFile().Instance("1.2.3.4.99").Data());
    const std::string directory = pgkit_test::LibraryPath(medium.Path(""));
    int32_t problem = -1;
    void* const update = pgxStartDicomdirUpdate(directory.c_str(), "", &options, &problem);
    Require((update == nullptr) == (problem != PGX_UPDATE_STARTED), "there is a problem or none");
    if (update == nullptr) return;
    pgxUpdateRemoveStudy(update, study.c_str());
    const uint32_t code = pgxUpdateAddFile(update, "NEW", (directory + "NEW").c_str());
    const uint32_t result = pgxEndDicomdirUpdate(update);
    Require(result != 0 || code == PG_ACCEPTED || code == PG_INSTANCE_KNOWN,
            "a good file is accepted, or listed");
    if (result != 0) return;
    void* const again = pgxStartDicomdirUpdate(directory.c_str(), "", &options, &problem);
    Require(again != nullptr, "what was changed can be changed again");
    Require(pgxUpdateAddFile(again, "NEW", (directory + "NEW").c_str()) == PG_INSTANCE_KNOWN,
            "and lists the file that was added");
    pgxCancelDicomdirUpdate(again);
}

}  // namespace pgkit_fuzz
