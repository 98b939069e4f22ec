// One file of every kind that a directory of today's standard has records for, with the keys of its
// record, and some of SOP classes that are images there.
#pragma once

#include <string>
#include <vector>

#include "support/instance_file.h"

namespace pgkit_test {

struct KindOfFile {
    const char* recordType;
    std::string sopClass;
    bool isAtRoot;  // belongs to no patient: neither study nor series
    // The keys beside those of every leaf, as "3004,000A=PLAN 3006,0002=..."; sequences by their
    // number of items.
    std::string keys;
    InstanceFile file;
};

// Instance UIDs are 1.2.3.4.1 and so on, all in one series.
std::vector<KindOfFile> EveryKindOfFile();

// The same SOP class and identifiers, and nothing else that would be a key.
InstanceFile WithoutKeys(const KindOfFile& kind);

}  // namespace pgkit_test
