// Names of tags as texts.
#pragma once

#include <pgkit/dictionary.h>

#include <cstdint>
#include <string>

namespace pgkit_test {

// What pgGetTagPrintableName writes, "<Unknown Tag>" included.
inline std::string TagName(uint16_t group, uint16_t element) {
    char name[256];  // twice what is promised to be enough
    pgGetTagPrintableName(group, element, name);
    return name;
}

}  // namespace pgkit_test
