// Which elements of a data set are its File Meta Information when it is read from a Part 10 file:
// those of group 0002 that it begins with, as long as their numbers do not fall. An element of this
// group anywhere else is one like all others, in the encoding of the data set.
#pragma once

#include <cstdint>

#include "dictionary/tags.h"
#include "pgkit/node.h"

namespace pgkit {

class MetaRun {
  public:
    // Whether the next element of the data set belongs to it. Elements are passed from the first
    // on, in order.
    bool Takes(const PGX_Node& element) {
        // What is not written is not in the way.
        if (!IsElementTag(element.group, element.element)) return false;
        isOpen_ = isOpen_ && element.group == kMetaGroup && element.element >= last_;
        last_ = element.element;
        return isOpen_;
    }

  private:
    bool isOpen_ = true;
    uint16_t last_ = 0;
};

}  // namespace pgkit
