// A host program: prints what the module answers for each UID of its command line, one line each:
// the result and text of the modality and name lookups, and the categories that hold.
#include <cstdio>

#include "pgkit/sopclass.h"

namespace {

struct Category {
    const char* name;
    bool (*holds)(const char* uid);
};

constexpr Category kCategories[] = {
    {"image", pgIsImageSOPClass},
    {"report", pgIsReportSOPClass},
    {"waveform", pgIsWaveformSOPClass},
    {"keyobject", pgIsKeyObjectSOPClass},
    {"presentation", pgIsPresentationSOPClass},
    {"rtdose", pgIsRTDoseSOPClass},
    {"rtstruct", pgIsRTStructureSetSOPClass},
    {"rtplan", pgIsRTPlanSOPClass},
    {"radiotherapy", pgIsRadiotherapySOPClass},
    {"storage", pgIsStorageSOPClass},
};

// The lookups copy texts of the configuration file without a bound.
char text[1 << 16];

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const int modality = pgGetSOPClassUIDToModality(argv[i], text);
        std::printf("%s: %d \"%s\"", argv[i], modality, text);
        const int name = pgGetUIDName(argv[i], text);
        std::printf(" %d \"%s\"", name, text);
        for (const Category& category : kCategories) {
            if (category.holds(argv[i])) std::printf(" %s", category.name);
        }
        std::printf("\n");
    }
    return 0;
}
