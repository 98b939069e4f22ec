#include "dicomdir/create/standard_leaves.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "dicomdir/create/generated_values.h"
#include "dicomdir/leaf_kinds.h"
#include "dicomdir/record_copy.h"
#include "dictionary/current_table.h"
#include "dictionary/vr_properties.h"
#include "pgkit/dataset.h"
#include "pgkit/value_representation.h"

namespace pgkit {

namespace {

// No VR of a text among the keys allows more.
constexpr uint32_t kLongestText = 1024;

// Hosts hold it as an object of a public class, and destroy it by that.
template <typename Object>
class KeyedLeaf final : public Object {
  public:
    explicit KeyedLeaf(NodeTree keys) : keys_(std::move(keys)) {
        this->record = keys_.get();
        this->flags |= PG_LEAF_OWNS_KEYS;
    }

  private:
    NodeTree keys_;
};

// Which of the public classes a leaf with keys of its own is of.
std::unique_ptr<Leaf> NewKeyedLeaf(PgLeafType type, NodeTree keys) {
    switch (type) {
        case PG_LEAF_PRESENTATION:
            return std::make_unique<KeyedLeaf<PGX_DicomDirPresentationNode>>(std::move(keys));
        case PG_LEAF_ENCAPSULATED_DOC:
            return std::make_unique<KeyedLeaf<PGX_DicomDirEncapsulatedDocNode>>(std::move(keys));
        default:
            return std::make_unique<KeyedLeaf<Leaf>>(std::move(keys));
    }
}

template <typename Keys>
bool Contains(const Keys& keys, Tag tag) {
    return std::ranges::any_of(keys, [tag](const auto& key) { return key.tag == tag; });
}

// A report tells by a field when it was verified, which its table reads from records alone.
bool IsField(const LeafKind& kind, Tag tag) {
    return Contains(kind.texts, tag) || Contains(kind.numbers, tag) ||
           Contains(kind.sequences, tag);
}

bool HasOwnKeys(const StandardKind& kind, const LeafKind& fields) {
    return !std::ranges::all_of(kind.keys,
                                [&](const StandardKey& key) { return IsField(fields, key.tag); });
}

// The tables of the current edition have all of them, whatever edition is in use.
uint32_t ValueRepresentationOf(Tag tag) {
    const auto known = FindCurrentElement(tag.group, tag.element);
    return known ? known->valueRep : static_cast<uint32_t>(VR_UN);
}

bool IsText(uint32_t vr) { return PropertiesOf(vr).kind == VrKind::Text; }
bool IsNumber(uint32_t vr) { return vr == VR_US || vr == VR_UL; }

// A text is one whatever VR the file says. Where it says none, the VR comes from the edition in
// use, which may not know the element: bytes of an unknown VR pass for a text.
NodeTree CopyKey(PGX_Node& dataSet, Tag tag) {
    PGX_Node* const element = FindElement(dataSet, tag);
    if (element == nullptr) return nullptr;
    const uint32_t vr = ValueRepresentationOf(tag);
    if (vr != VR_SQ && element->length > kLongestText) return nullptr;
    NodeTree copy = CopyForRecord(element);
    if (copy == nullptr || copy->valueRep == vr) return copy;
    if (!IsText(copy->valueRep) || !IsText(vr)) return nullptr;
    copy->valueRep = vr;
    return copy;
}

bool HasContent(const PGX_Node& element) {
    return element.valueRep == VR_SQ ? element.first != nullptr : element.length > 0;
}

// One that is there even without items, which a field cannot tell from none.
bool IsEmptySequence(PGX_Node& dataSet, const StandardKey& key) {
    if (key.type != KeyType::Type2 || ValueRepresentationOf(key.tag) != VR_SQ) return false;
    PGX_Node* const sequence = FindElement(dataSet, key.tag);
    return sequence == nullptr || sequence->first == nullptr;
}

NodeTree NewKey(Tag tag, std::string_view value) {
    NodeTree element(new PGX_Node(NT_DataElement, ET_LittleEndian, tag.group, tag.element,
                                  static_cast<uint8_t>(ValueRepresentationOf(tag)), 0));
    const bool isSet =
        value.empty() || element->SetValue(value.data(), static_cast<uint32_t>(value.size())) != 0;
    if (!isSet) throw std::bad_alloc();
    return element;
}

// What a key without a value has in the record; null for none.
NodeTree NewEmptyKey(const StandardKey& key) {
    return key.type == KeyType::Type1C ? nullptr : NewKey(key.tag, "");
}

void ReadKey(PGX_Node& dataSet, const StandardKey& key, PGX_Node& keys) {
    NodeTree copy = CopyKey(dataSet, key.tag);
    if (copy == nullptr || !HasContent(*copy)) copy = NewEmptyKey(key);
    if (copy != nullptr) keys.InsertNode(copy.release());
}

// Empty for what is not made up.
std::string MadeUp(const StandardKey& key) {
    switch (const uint32_t vr = ValueRepresentationOf(key.tag)) {
        case VR_DA:
            return CurrentDate();
        case VR_TM:
            return CurrentTime();
        case VR_DT:
            return CurrentDate() + CurrentTime();
        case VR_SQ:
            return "";
        default:
            return IsNumber(vr) ? std::string(vr == VR_US ? 2 : 4, '\0') : std::string(key.madeUp);
    }
}

void FillField(const StandardKey& key, const LeafKind& fields, Leaf& leaf) {
    for (const TextKey<Leaf>& text : fields.texts) {
        if (text.tag != key.tag) continue;
        const std::span<char> field = text.field(leaf);
        if (field[0] == '\0') CopyBounded(field.data(), field.size(), MadeUp(key));
    }
}

void FillElement(const StandardKey& key, PGX_Node& keys) {
    PGX_Node* const element = FindElement(keys, key.tag);
    if (element == nullptr || HasContent(*element)) return;
    const std::string value = MadeUp(key);
    if (value.empty()) return;
    if (element->SetValue(value.data(), static_cast<uint32_t>(value.size())) == 0) {
        throw std::bad_alloc();
    }
}

}  // namespace

std::unique_ptr<Leaf> NewStandardLeaf(PGX_Node& dataSet, const StandardKind& kind) {
    const LeafKind& fields = KindOfType(kind.leafType);
    std::unique_ptr<Leaf> leaf;
    if (HasOwnKeys(kind, fields)) {
        NodeTree keys(pgAllocateDataSetNode());
        if (keys == nullptr) throw std::bad_alloc();
        for (const StandardKey& key : kind.keys) {
            const bool isInField = IsField(fields, key.tag) && !IsEmptySequence(dataSet, key);
            if (!isInField) ReadKey(dataSet, key, *keys);
        }
        leaf = NewKeyedLeaf(kind.leafType, std::move(keys));
    } else {
        leaf = fields.make();
    }
    CopyToField(leaf->recordType, kind.recordType);
    return leaf;
}

void PutOwnKeys(PGX_Node& record, const Leaf& leaf) {
    if ((leaf.flags & PG_LEAF_OWNS_KEYS) == 0 || leaf.record == nullptr) return;
    for (PGX_Node* key = leaf.record->first; key != nullptr; key = key->next) {
        // A host may have filled the field.
        if (record.FindNode(key->group, key->element) != nullptr) continue;
        NodeTree copy = CopyForRecord(key);
        if (copy != nullptr) record.InsertNode(copy.release());
    }
}

void FillMissingKeys(Leaf& leaf) {
    const StandardKind* const kind = StandardKindOf(leaf.sopClassUid);
    if (kind == nullptr || kind->leafType != leaf.leafType) return;
    const LeafKind& fields = KindOf(leaf);
    const bool ownsKeys = (leaf.flags & PG_LEAF_OWNS_KEYS) != 0 && leaf.record != nullptr;
    for (const StandardKey& key : kind->keys) {
        if (key.type != KeyType::Type1) continue;
        FillField(key, fields, leaf);
        if (ownsKeys) FillElement(key, *leaf.record);
    }
}

}  // namespace pgkit
