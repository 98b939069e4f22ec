// A data set that is being read from JSON, and the element of it that is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

#include "dataset/node_ptr.h"
#include "json/json_values.h"
#include "json/value_builder.h"
#include "pgkit/node.h"

namespace pgkit {

// The members of an element that have come.
struct JsonElement {
    bool isOpen = false;
    uint16_t group = 0;
    uint16_t element = 0;

    bool hasVr = false;
    uint32_t valueRep = 0;
    bool hasValues = false;
    JsonValues values;
    NodeTree items;  // of the values that are objects, empty ones included
    PGX_Node* lastItem = nullptr;
    size_t itemCount = 0;
    bool hasBinary = false;
    BinaryValue binary;
    bool hasUri = false;
    std::string uri;

    // Begins another one.
    void Open(uint16_t newGroup, uint16_t newElement);
    void AddItem(NodeTree item);
};

class OpenDataSet {
  public:
    // Begins a new data set. Throws std::bad_alloc, as everything here.
    void Begin();

    // Whether there was no element of this tag yet; notes it.
    bool NoteTag(uint16_t group, uint16_t element);

    // Adds an element, whose tag was noted.
    void Append(NodeTree node);

    // Whether its pixels are signed, as far as it has come.
    bool IsSigned() const;

    // A text of it, or of an item without a character set of its own, is more than ASCII.
    bool needsUtf8 = false;

    // Ends it: drops what no data set keeps of its JSON, puts it in order, and sets the character
    // set where texts need one. An item that has none of its own leaves that to what encloses it:
    // then needsUtf8 is still true.
    NodeTree End(bool isItem);

    JsonElement element;

  private:
    void RemoveDropped();
    void Sort();
    void SetCharacterSet(PGX_Node* own);
    void PassBitsAllocatedOn();

    NodeTree dataSet_;
    PGX_Node* last_ = nullptr;
    uint64_t lastKey_ = 0;  // one more than that of the last tag that was noted
    bool isOrdered_ = true;
    bool hasDropped_ = false;            // elements that do not stay, kept for finding them twice
    std::unordered_set<uint32_t> tags_;  // once they are not in order
};

}  // namespace pgkit
