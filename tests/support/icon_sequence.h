// The value of an Icon Image Sequence (0088,0200): one item, 2 by 1 pixels of 8 bits a sample.
#pragma once

#include <string>
#include <string_view>

#include "support/stream_builder.h"

namespace pgkit_test {

inline std::string IconSequence(std::string_view photometricInterpretation,
                                std::string_view pixels) {
    StreamBuilder icon;
    icon.Element(0x0028, 0x0004, "CS", photometricInterpretation)
        .ElementUS(0x0028, 0x0010, 1)
        .ElementUS(0x0028, 0x0011, 2)
        .ElementUS(0x0028, 0x0100, 8)
        .ElementUS(0x0028, 0x0102, 7)
        .Element(0x7FE0, 0x0010, "OB", pixels);
    return OneItem(icon);
}

}  // namespace pgkit_test
