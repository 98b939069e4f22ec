// Makes the DICOMDIR of a directory of DICOM files and tells what became of each file.
//
//   make_disc DIRECTORY [PROFILE]
#include <pgkit/pgkit.h>

#include <cstdio>
#include <cstring>

namespace {

struct Counts {
    int accepted = 0;
    int refused = 0;
};

// Called for every file. Anything but 0 would end the scan.
int32_t CountFile(const PgDicomdirScanReason* reason) {
    auto* const counts = static_cast<Counts*>(reason->userData);
    const bool isAccepted = reason->acceptanceCode == PG_ACCEPTED;
    ++(isAccepted ? counts->accepted : counts->refused);
    std::printf("%s %s%s%s (%u)\n", isAccepted ? "added" : "refused", reason->subdirectory,
                *reason->subdirectory != 0 ? "\\" : "", reason->fileName,
                unsigned{reason->acceptanceCode});
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2 && argumentCount != 3) return 2;
    PgDicomdirOptions options = {};
    options.iconSize = 64;
    options.fillMissingKeys = 1;
    options.flags = PG_DICOMDIR_NO_LIST;
    std::strcpy(options.fileSetId, "EXAMPLE");

    Counts counts;
    const char* const profile = argumentCount == 3 ? arguments[2] : nullptr;
    const uint32_t result = pgCreateDicomdirEx(arguments[1], profile, &options, CountFile, &counts);
    if (result != 0) {
        std::fprintf(stderr, "Cannot write the DICOMDIR (%u)\n", unsigned{result});
        return 1;
    }
    std::printf("DICOMDIR of %d files, %d refused\n", counts.accepted, counts.refused);
    return 0;
}
