#include "json/open_data_set.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "dataset/find_element.h"
#include "dictionary/tags.h"
#include "json/written_elements.h"

namespace pgkit {

namespace {

constexpr std::string_view kUtf8Term = "ISO_IR 192";

uint32_t KeyOf(const PGX_Node* node) { return TagKey(node->group, node->element); }

}  // namespace

void JsonElement::Open(uint16_t newGroup, uint16_t newElement) {
    isOpen = true;
    group = newGroup;
    element = newElement;
    hasVr = hasValues = hasBinary = hasUri = false;
    values.Clear();
    items.reset();
    lastItem = nullptr;
    itemCount = 0;
    binary.Clear();
    uri.clear();
}

void JsonElement::AddItem(NodeTree item) {
    PGX_Node* const added = item.release();
    if (items == nullptr) {
        items.reset(added);
    } else {
        lastItem->next = added;
    }
    lastItem = added;
    ++itemCount;
}

void OpenDataSet::Begin() {
    dataSet_.reset(pgAllocateDataSetNode());
    if (dataSet_ == nullptr) throw std::bad_alloc();
    last_ = nullptr;
    lastKey_ = 0;
    isOrdered_ = true;
    hasDropped_ = false;
    needsUtf8 = false;
    tags_.clear();
    element.isOpen = false;
}

// As long as tags ascend nothing has to be remembered of them but the last.
bool OpenDataSet::NoteTag(uint16_t group, uint16_t tagElement) {
    const uint32_t key = TagKey(group, tagElement);
    const uint64_t place = uint64_t{key} + 1;
    if (place > lastKey_) {
        lastKey_ = place;
        return isOrdered_ || tags_.insert(key).second;
    }
    if (place == lastKey_) return false;
    if (isOrdered_) {
        for (const PGX_Node* node = dataSet_->first; node != nullptr; node = node->next)
            tags_.insert(KeyOf(node));
        isOrdered_ = false;
    }
    return tags_.insert(key).second;
}

void OpenDataSet::Append(NodeTree node) {
    PGX_Node* const added = node.release();
    hasDropped_ = hasDropped_ || !IsWrittenToJson(*added);
    (last_ == nullptr ? dataSet_->first : last_->next) = added;
    last_ = added;
}

bool OpenDataSet::IsSigned() const {
    PGX_Node* const representation = dataSet_->FindNode(0x0028, 0x0103);
    return representation != nullptr && representation->GetUSValue() == 1;
}

NodeTree OpenDataSet::End(bool isItem) {
    RemoveDropped();
    if (!isOrdered_) Sort();
    if (needsUtf8) {
        PGX_Node* const own = FindElement(*dataSet_, tags::kSpecificCharacterSet);
        if (own != nullptr || !isItem) {
            SetCharacterSet(own);
            needsUtf8 = false;
        }
    }
    PassBitsAllocatedOn();
    return std::move(dataSet_);
}

void OpenDataSet::RemoveDropped() {
    if (!hasDropped_) return;
    for (PGX_Node** link = &dataSet_->first; *link != nullptr;) {
        PGX_Node* const node = *link;
        if (IsWrittenToJson(*node)) {
            link = &node->next;
            continue;
        }
        *link = std::exchange(node->next, nullptr);
        pgFreeNodeHierarchy(node);
    }
}

void OpenDataSet::Sort() {
    std::vector<PGX_Node*> nodes;
    for (PGX_Node* node = dataSet_->first; node != nullptr; node = node->next)
        nodes.push_back(node);
    std::ranges::stable_sort(nodes, {}, KeyOf);
    PGX_Node** link = &dataSet_->first;
    for (PGX_Node* node : nodes) {
        *link = node;
        link = &node->next;
    }
    *link = nullptr;
}

void OpenDataSet::SetCharacterSet(PGX_Node* own) {
    NodeTree added;
    if (own == nullptr) {
        added.reset(new PGX_Node(NT_DataElement, ET_LittleEndian, tags::kSpecificCharacterSet.group,
                                 tags::kSpecificCharacterSet.element, VR_CS, 0));
        own = added.get();
    }
    own->valueRep = VR_CS;
    const auto size = static_cast<uint32_t>(kUtf8Term.size());
    if (own->SetValue(kUtf8Term.data(), size) == 0) throw std::bad_alloc();
    if (added != nullptr) dataSet_->InsertNode(added.release());
}

// As where elements are inserted one by one.
void OpenDataSet::PassBitsAllocatedOn() {
    PGX_Node* const bits = dataSet_->FindNode(0x0028, 0x0100);
    if (bits == nullptr) return;
    dataSet_->bitsAllocated = bits->GetUSValue();
    PGX_Node* const pixels = dataSet_->FindNode(0x7FE0, 0x0010);
    if (pixels != nullptr) pixels->bitsAllocated = dataSet_->bitsAllocated;
}

}  // namespace pgkit
