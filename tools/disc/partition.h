// Which instances come to which medium.
#pragma once

#include <cstdint>
#include <vector>

#include "disc/catalogue.h"
#include "disc/request.h"

namespace pgtool {

struct MediumPlan {
    std::vector<size_t> instances;  // of the catalogue, in its order
    uint64_t cost = 0;              // bytes that it takes on the medium, never fewer than it will
};

struct Partition {
    std::vector<MediumPlan> media;
    std::vector<size_t> tooLarge;  // instances that fit no medium
};

// Without a size all instances are on one medium. With one, each study comes to the first medium
// that has room for it; one that is larger than a medium is divided by its series, and a series
// that is larger by its instances.
Partition Divide(const Catalogue& catalogue, const DiscRequest& request);

}  // namespace pgtool
