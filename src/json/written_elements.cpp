#include "json/written_elements.h"

#include <algorithm>

#include "dictionary/tags.h"

namespace pgkit {

namespace {

uint32_t KeyOf(const PGX_Node& node) { return TagKey(node.group, node.element); }

}  // namespace

bool IsWrittenToJson(const PGX_Node& node) {
    return node.nodeType == NT_DataElement && node.element != 0 && node.group != kMetaGroup &&
           IsElementTag(node.group, node.element);
}

WrittenElements::WrittenElements(PGX_Node& dataSet) : next_(dataSet.first) {
    bool isAscending = true;
    uint32_t last = 0;
    for (PGX_Node* node = dataSet.first; node != nullptr; node = node->next) {
        if (!IsWrittenToJson(*node)) continue;
        isAscending = isAscending && KeyOf(*node) > last;
        last = KeyOf(*node);
        Note(*node);
    }
    if (!isAscending) Sort(dataSet);
}

PGX_Node* WrittenElements::Next() {
    if (isOrdered_) {
        if (ordered_.empty()) return nullptr;
        PGX_Node* const node = ordered_.back();
        ordered_.pop_back();
        return node;
    }
    while (next_ != nullptr && !IsWrittenToJson(*next_))
        next_ = next_->next;
    PGX_Node* const node = next_;
    if (node != nullptr) next_ = node->next;
    return node;
}

void WrittenElements::Note(PGX_Node& element) {
    switch (KeyOf(element)) {
        case TagKey(0x0008, 0x0005):
            if (characterSet_ == nullptr) characterSet_ = &element;
            return;
        case TagKey(0x0028, 0x0103):
            if (pixelRepresentation_ == nullptr) pixelRepresentation_ = &element;
            return;
        default:
            return;
    }
}

void WrittenElements::Sort(PGX_Node& dataSet) {
    for (PGX_Node* node = dataSet.first; node != nullptr; node = node->next) {
        if (IsWrittenToJson(*node)) ordered_.push_back(node);
    }
    std::ranges::stable_sort(ordered_, {}, [](const PGX_Node* node) { return KeyOf(*node); });
    const auto isRepeated = [](const PGX_Node* one, const PGX_Node* next) {
        return KeyOf(*one) == KeyOf(*next);
    };
    ordered_.erase(std::unique(ordered_.begin(), ordered_.end(), isRepeated), ordered_.end());
    std::ranges::reverse(ordered_);
    isOrdered_ = true;
}

}  // namespace pgkit
