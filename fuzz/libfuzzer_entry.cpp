// The entry point of one target under libFuzzer; PGKIT_FUZZ_TARGET is its name.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "targets.h"
#include "violation.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    for (const pgkit_fuzz::Target& target : pgkit_fuzz::kTargets) {
        if (std::strcmp(target.name, PGKIT_FUZZ_TARGET) != 0) continue;
        try {
            target.run({data, size});
        } catch (const pgkit_fuzz::Violation& violation) {
            std::fprintf(stderr, "broken promise: %s\n", violation.what());
            std::abort();
        }
    }
    return 0;
}
