// Which elements of a data set are part of its JSON, and in which order.
#pragma once

#include <vector>

#include "pgkit/node.h"

namespace pgkit {

// Whether this is an element that JSON has: no group length, no File Meta Information, nothing that
// would read as an item.
bool IsWrittenToJson(const PGX_Node& node);

// The elements of a data set, or item, one after the other: in ascending order of their tags, of
// equal ones the first. Throws std::bad_alloc for those that are not in order anyway.
class WrittenElements {
  public:
    explicit WrittenElements(PGX_Node& dataSet);

    // Null at the end.
    PGX_Node* Next();

    // Null without one.
    PGX_Node* CharacterSet() const { return characterSet_; }
    PGX_Node* PixelRepresentation() const { return pixelRepresentation_; }

  private:
    void Note(PGX_Node& element);
    void Sort(PGX_Node& dataSet);

    PGX_Node* next_;                  // while they are in order
    std::vector<PGX_Node*> ordered_;  // else the rest of them, backwards
    bool isOrdered_ = false;
    PGX_Node* characterSet_ = nullptr;
    PGX_Node* pixelRepresentation_ = nullptr;
};

}  // namespace pgkit
