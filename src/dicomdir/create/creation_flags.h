// What the options of a creation ask for.
#pragma once

#include <cstdint>

#include "pgkit/dicomdir_creation.h"

namespace pgkit {

inline bool Has(const PgDicomdirOptions& options, PgDicomdirFlags flag) {
    return (options.flags & static_cast<uint32_t>(flag)) != 0;
}

}  // namespace pgkit
