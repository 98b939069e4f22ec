#include "json/data_set_writer.h"

#include <string>

#include "dataset/find_element.h"
#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "dictionary/tags.h"
#include "dictionary/vr_properties.h"
#include "json/bulk_uri.h"
#include "json/element_path.h"

namespace pgkit {

namespace {

bool IsCharacterSet(const PGX_Node& node) {
    return Tag{node.group, node.element} == tags::kSpecificCharacterSet;
}

// The element that a data set has, or that is given itself; null for null.
PGX_Node* FindCharacterSet(PGX_Node* node) {
    if (node == nullptr || node->nodeType == NT_DataElement) return node;
    return FindElement(*node, tags::kSpecificCharacterSet);
}

// The first item of a list of siblings.
PGX_Node* FirstItem(PGX_Node* node) {
    while (node != nullptr && node->nodeType != NT_DataSet)
        node = node->next;
    return node;
}

bool IsSigned(PGX_Node* pixelRepresentation) {
    return pixelRepresentation != nullptr && pixelRepresentation->GetUSValue() == 1;
}

}  // namespace

DataSetWriter::DataSetWriter(JsonOutput& output, const PgxJsonWriteOptions& options)
    : output_(output), options_(options), values_(output) {}

int32_t DataSetWriter::Write(PGX_Node& dataSet) {
    OpenDataSet(dataSet);
    while (!levels_.empty() && !output_.HasFailed()) {
        Level& level = levels_.back();
        PGX_Node* const element = level.elements.Next();
        if (element == nullptr) {
            CloseDataSet();
            continue;
        }
        const int32_t error = WriteElement(level, *element);
        if (error != 0) return error;
    }
    return 0;
}

// The outermost one gets a character set where it needs one; items have that of what encloses them.
void DataSetWriter::OpenDataSet(PGX_Node& dataSet) {
    output_.StartObject();
    WrittenElements elements(dataSet);
    PGX_Node* characterSet = elements.CharacterSet();
    bool isSigned = IsSigned(elements.PixelRepresentation());
    bool lacksCharacterSet = false;
    if (levels_.empty()) {
        lacksCharacterSet = characterSet == nullptr && NeedsCharacterSet(dataSet);
        if (characterSet == nullptr) characterSet = FindCharacterSet(options_.characterSet);
    } else {
        if (characterSet == nullptr) characterSet = levels_.back().characterSet;
        if (elements.PixelRepresentation() == nullptr) isSigned = levels_.back().isSigned;
    }
    levels_.push_back({std::move(elements), characterSet, isSigned, lacksCharacterSet});
}

void DataSetWriter::CloseDataSet() {
    if (levels_.back().lacksCharacterSet) WriteCharacterSet();
    output_.EndObject();
    levels_.pop_back();
    if (levels_.empty()) return;
    Level& level = levels_.back();
    level.item = FirstItem(level.item->next);
    ++level.itemIndex;
    if (level.item != nullptr) return OpenDataSet(*level.item);
    output_.EndArray();
    output_.EndObject();
}

void DataSetWriter::BeginElement(uint16_t group, uint16_t element, const char* valueRep) {
    const TagDigits digits = DigitsOfTag(group, element);
    output_.StartElement({digits.text, sizeof digits.text}, valueRep);
}

void DataSetWriter::WriteCharacterSet() {
    BeginElement(tags::kSpecificCharacterSet.group, tags::kSpecificCharacterSet.element, "CS");
    output_.StartValues();
    output_.String("ISO_IR 192");
    output_.EndArray();
    output_.EndObject();
}

int32_t DataSetWriter::WriteElement(Level& level, PGX_Node& element) {
    constexpr uint32_t kCharacterSetKey =
        TagKey(tags::kSpecificCharacterSet.group, tags::kSpecificCharacterSet.element);
    if (level.lacksCharacterSet && TagKey(element.group, element.element) > kCharacterSetKey) {
        WriteCharacterSet();
        level.lacksCharacterSet = false;
    }
    if (IsCharacterSet(element)) {
        WriteCharacterSet();
        return 0;
    }
    level.element = &element;
    const uint32_t valueRep = JsonVrOf(element, level.isSigned);
    BeginElement(element.group, element.element, PropertiesOf(valueRep).name);
    if (valueRep == VR_SQ) {
        OpenSequence(level, element);
        return 0;
    }
    const int32_t error = WriteContent(level, element, valueRep);
    output_.EndObject();
    return error;
}

void DataSetWriter::OpenSequence(Level& level, PGX_Node& sequence) {
    level.item = FirstItem(sequence.first);
    level.itemIndex = 0;
    if (level.item == nullptr) {
        output_.EndObject();
        return;
    }
    output_.StartValues();
    OpenDataSet(*level.item);
}

int32_t DataSetWriter::WriteContent(const Level& level, PGX_Node& element, uint32_t valueRep) {
    const bool isEncapsulated = element.encapsulated != 0;
    const bool isBulk = isEncapsulated || (element.length > options_.bulkLimit &&
                                           HasValue(element) && MayBeBulk(valueRep));
    if (isBulk) {
        const BytesInFile bytes = isEncapsulated ? FindFragments(element) : FindBytes(element);
        if (isEncapsulated || bytes.length > options_.bulkLimit) {
            const std::string uri =
                MakeBulkUri(options_, element, options_.uri == nullptr ? "" : Path(), bytes);
            if (!uri.empty()) {
                output_.Key("BulkDataURI");
                output_.String(uri);
                return 0;
            }
        }
        if (isEncapsulated) return PGX_JSON_NO_URI;
    }
    const bool isElsewhere = element.value == nullptr && element.file != nullptr &&
                             element.fileOffset == kUnreadablePosition;
    if (isElsewhere && element.length != 0 && element.length != kUndefinedLength) {
        return PGX_JSON_UNREADABLE;
    }
    values_.WriteValue(element, valueRep, level.characterSet);
    return 0;
}

// Texts of items that have a character set of their own, or inherit one from such an item, say
// nothing about the outermost data set.
bool DataSetWriter::NeedsCharacterSet(PGX_Node& dataSet) {
    struct Search {
        ElementWriter& values;
        bool found = false;

        WalkStep Enter(PGX_Node& node, size_t depth) {
            if (node.nodeType == NT_DataSet) {
                const bool hasOwn =
                    depth > 0 && FindElement(node, tags::kSpecificCharacterSet) != nullptr;
                return hasOwn ? WalkStep::SkipChildren : WalkStep::Continue;
            }
            found = IsWrittenToJson(node) && values.NeedsCharacterSet(node, node.valueRep);
            if (found) return WalkStep::Unwind;
            const bool isRead = IsWrittenToJson(node) && node.valueRep == VR_SQ;
            return isRead ? WalkStep::Continue : WalkStep::SkipChildren;
        }
        WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }
    };
    Search search{values_};
    WalkTree(dataSet, search);
    return search.found;
}

std::string DataSetWriter::Path() const {
    std::string path;
    for (const Level& level : levels_) {
        if (!path.empty()) path += '.';
        AppendTagToPath(path, level.element->group, level.element->element);
        if (&level != &levels_.back()) AppendIndexToPath(path, level.itemIndex);
    }
    return path;
}

}  // namespace pgkit
