// The entry point of one target under libFuzzer; PGKIT_FUZZ_TARGET is its name.
#include <cstdio>
#include <cstdlib>

#include "targets.h"
#include "violation.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static constexpr const pgkit_fuzz::Target& kTarget = pgkit_fuzz::TargetNamed(PGKIT_FUZZ_TARGET);
    try {
        kTarget.run({data, size});
    } catch (const pgkit_fuzz::Violation& violation) {
        std::fprintf(stderr, "broken promise: %s\n", violation.what());
        std::abort();
    }
    return 0;
}
