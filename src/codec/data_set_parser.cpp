#include "codec/data_set_parser.h"

#include <algorithm>
#include <cstdio>

#include "base/text.h"
#include "codec/fragment_table.h"
#include "codec/part10_format.h"
#include "codec/pixel_items.h"
#include "dataset/node_memory.h"
#include "dictionary/tags.h"
#include "dictionary/un_sequence_switch.h"
#include "dictionary/vr_properties.h"
#include "pgkit/dictionary.h"

namespace pgkit {

namespace {

constexpr uint32_t kDelimiterSize = kItemHeaderSize;

// Values of private groups are loaded only below this limit. Few hosts ask for them, and there may
// be many or large ones; short numbers and codes are there at once all the same.
constexpr uint32_t kPrivateLoadLimit = 22;

// Private elements are looked up through the creators of their data set, one after the other. They
// are bounded so that a hostile file cannot make that costly; a LO has at most 64 characters.
constexpr size_t kMaxPrivateCreators = 39;
constexpr uint32_t kMaxCreatorLength = 64;

bool IsUsedUp(uint32_t declaredLength, uint32_t bytes) {
    return declaredLength != kUndefinedLength && bytes >= declaredLength;
}

}  // namespace

void DataSetParser::Meaning::MakeName(const char* format, unsigned number) {
    madeLength = static_cast<size_t>(std::snprintf(madeName, sizeof madeName, format, number));
}

DataSetParser::DataSetParser(StreamReader& reader, TreeBuilder& builder, Encoding encoding,
                             uint32_t maxLoadLength, uint32_t flags)
    : reader_(reader),
      builder_(builder),
      encoding_(encoding),
      maxLoadLength_(maxLoadLength),
      flags_(flags),
      decodesUnSequences_(DecodesUnSequences()) {}

inline bool DataSetParser::ReadHeader(const Level& level, TagHeader& header) {
    const uint64_t start = reader_.Position();
    if (ReadTagHeader(reader_, encoding_.byteOrder, level.implicitVr, header)) return true;
    NoteBadHeader(start, level.sequence);
    return false;
}

NodeTree DataSetParser::Parse() {
    NodeTree root(builder_.NewNode());
    levels_.clear();
    levels_.emplace_back().implicitVr = encoding_.implicitVr;
    OpenDataSet(levels_.back(), root.get(), kUndefinedLength);

    while (true) {
        Level& level = levels_.back();
        switch (level.next) {
            case Next::Element:
                if (IsUsedUp(level.dataSetLength, level.dataSetBytes) || !ReadElement())
                    CloseDataSet();
                break;
            case Next::Item:
                if (!OpenNextItem(level)) CloseSequence();
                break;
            case Next::Nothing:
                return root;
        }
    }
}

void DataSetParser::OpenDataSet(Level& level, PGX_Node* node, uint32_t declaredLength) {
    level.next = Next::Element;
    level.dataSet = node;
    level.elementLink = &node->first;
    level.dataSetBytes = 0;
    level.dataSetLength = declaredLength;
    level.bitsAllocated = 0;
    level.creators.clear();
}

void DataSetParser::CloseDataSet() {
    Level& level = levels_.back();
    level.sequenceBytes += level.dataSetBytes;
    level.dataSet = nullptr;
    level.next = level.sequence != nullptr ? Next::Item : Next::Nothing;
}

bool DataSetParser::OpenNextItem(Level& level) {
    if (IsUsedUp(level.sequence->length, level.sequenceBytes)) return false;
    // A header that is no item ends the sequence. Its bytes are neither given back nor counted.
    TagHeader header;
    if (!ReadHeader(level, header) || !header.IsItem()) return false;
    level.sequenceBytes += kItemHeaderSize;

    PGX_Node* item = builder_.NewNode();
    *level.itemLink = item;
    level.itemLink = &item->next;
    OpenDataSet(level, item, header.length);
    return true;
}

void DataSetParser::OpenSequence(PGX_Node* sequence, const Meaning& meaning) {
    const bool implicitVr = ItemsAreImplicit(levels_.back(), meaning);
    Level& level = levels_.emplace_back();
    level.sequence = sequence;
    level.itemLink = &sequence->first;
    level.implicitVr = implicitVr;
}

void DataSetParser::CloseSequence() {
    const Level& level = levels_.back();
    uint32_t bytes = level.sequenceBytes;
    if (level.sequence->length == kUndefinedLength) bytes += kDelimiterSize;
    // The sequence's own header counts by the VR mode of its items, whatever it was read in.
    bytes += HeaderSize(VR_SQ, !level.implicitVr);
    levels_.pop_back();
    levels_.back().dataSetBytes += bytes;
}

// The items of an UN element of undefined length are in implicit VR, since that is what its writer
// had, unless the caller asks to keep the surrounding mode or to look at the first item: where a VR
// must stand in explicit VR there are two letters.
bool DataSetParser::ItemsAreImplicit(const Level& parent, const Meaning& meaning) {
    if (!meaning.isUnSequence || (flags_ & PG_OPEN_UN_AS_STREAM) != 0) return parent.implicitVr;
    if ((flags_ & PG_OPEN_UN_BY_INSPECTION) == 0) return true;
    const uint8_t* bytes = reader_.Peek(14);
    if (bytes == nullptr) return true;
    const uint32_t itemLength = HostNumberAt<uint32_t>(bytes + 4);
    if (itemLength == 0 || itemLength == kUndefinedLength) return true;
    return VrFromCharacters(static_cast<char>(bytes[12]), static_cast<char>(bytes[13])) ==
           VR_Unknown;
}

// Reads one element and appends it to the current data set; a sequence becomes a level of its own.
// False at a delimiter and at a header that cannot be read.
bool DataSetParser::ReadElement() {
    Level& level = levels_.back();
    TagHeader header;
    if (!ReadHeader(level, header)) return false;
    if (header.IsItemDelimitation() || header.IsSequenceDelimitation()) {
        const bool isOutermost = level.sequence == nullptr;
        const uint64_t start = reader_.Position() - kDelimiterSize;
        if (isOutermost) NoteEnd({EndKind::Broken, start, header.Group(), header.Element()});
        level.dataSetBytes += kDelimiterSize;
        return false;
    }

    if (level.implicitVr)
        header.valueRep = pgFindValueRepresentation(header.Group(), header.Element());
    Meaning meaning;
    FindMeaning(header, level, meaning);

    if (meaning.valueRep == VR_SQ) {
        if (levels_.size() > kMaxSequenceNesting) {
            // What encloses it would go on within it.
            NoteEnd({EndKind::TooDeep, reader_.Position(), header.Group(), header.Element()});
            reader_.SeekToEnd();
            return false;
        }
        PGX_Node& sequence = *AppendElement(header, meaning);
        NoteElement(sequence);
        OpenSequence(&sequence, meaning);
        return true;
    }

    PGX_Node& element = *AppendElement(header, meaning);
    if (IsPixelData(header.Group(), header.Element()) && header.length == kUndefinedLength) {
        level.dataSetBytes += HeaderSize(VR_OB, !level.implicitVr);
        ReadFragments(element);
    } else {
        level.dataSetBytes += HeaderSize(header.valueRep, !level.implicitVr) + header.length;
        builder_.ReadValue(element, LoadLimit(element));
    }
    NoteElement(element);
    return true;
}

void DataSetParser::FindMeaning(const TagHeader& header, const Level& level,
                                Meaning& meaning) const {
    meaning.valueRep = header.valueRep;
    if (header.Element() == 0x0000) {
        meaning.valueRep = VR_UL;
        meaning.MakeName("GroupLength%04X", header.Group());
    } else if (IsPrivateCreator(header.Group(), header.Element())) {
        if (level.implicitVr) meaning.valueRep = VR_LO;
        const char* format =
            meaning.valueRep == VR_LO ? "PrivateCreator%02Xxx" : "BUGGYPrivateCreator%02Xxx";
        meaning.MakeName(format, header.Element());
    } else if (header.Group() == 0xFFFE) {
        return;
    } else if (level.implicitVr && header.valueRep == VR_Unknown) {
        if (header.length == kUndefinedLength) {
            meaning.valueRep = VR_SQ;
        } else {
            FindMeaningByCreator(header, level, meaning);
        }
    } else if (header.valueRep == VR_UN && decodesUnSequences_) {
        FindMeaningOfUn(header, level, meaning);
    }
}

void DataSetParser::FindMeaningOfUn(const TagHeader& header, const Level& level,
                                    Meaning& meaning) const {
    if (header.length == kUndefinedLength) {
        meaning.valueRep = VR_SQ;
        meaning.isUnSequence = true;
        return;
    }
    FindMeaningByCreator(header, level, meaning);
    if (meaning.valueRep == VR_Unknown) meaning.valueRep = VR_UN;
}

void DataSetParser::FindMeaningByCreator(const TagHeader& header, const Level& level,
                                         Meaning& meaning) const {
    const PrivateDictionaryEntry* entry =
        FindPrivateElement(header.Group(), header.Element(), level.creators);
    meaning.valueRep = entry != nullptr ? entry->valueRep : uint32_t{VR_Unknown};
    meaning.foundName = entry != nullptr ? std::string_view(entry->name) : unknownTagName;
}

PGX_Node* DataSetParser::AppendElement(const TagHeader& header, const Meaning& meaning) {
    Level& level = levels_.back();
    PGX_Node* node = builder_.NewElement(header, meaning.valueRep, encoding_.byteOrder);
    lastElement_ = node;
    *level.elementLink = node;
    level.elementLink = &node->next;
    const std::string_view name = meaning.Name();
    if (!name.empty()) node->tagName = builder_.NewTagName(name);
    return node;
}

// Encapsulated Pixel Data whose fragments cannot or shall not be indexed are taken to be the last
// element of the stream, unless the caller wants to go on behind them: without the table nobody
// knows where they end, but for who goes through the items.
void DataSetParser::ReadFragments(PGX_Node& pixelData) {
    pixelData.encapsulated = 1;
    if (builder_.KeepsEverything()) return LoadFragments(pixelData);
    const bool scan = (flags_ & PG_OPEN_SKIP_FRAGMENTS) == 0;
    const uint64_t start = reader_.Position();
    const FragmentTable table = BuildFragmentTable(reader_, pixelData, scan);
    if (table.result == FragmentTableResult::Built) {
        levels_.back().dataSetBytes += table.consumed;
        if (!table.hasDelimiter) NoteCutFragments(pixelData);
        return;
    }
    pixelData.fragments = NotIndexedMarker();
    if ((flags_ & PG_OPEN_PAST_PIXEL_DATA) != 0) {
        reader_.Seek(start);
        return PassFragments(pixelData, ReadPixelItems(reader_));
    }
    NoteEnd({EndKind::LeftAfterFragments, start, pixelData.group, pixelData.element});
    levels_.back().dataSetBytes += table.consumed;
    reader_.SeekToEnd();
}

// Behind fragments that end otherwise than by their delimiter nothing can be told from fragments,
// but where there was no table that they could contradict.
void DataSetParser::LoadFragments(PGX_Node& pixelData) {
    PGX_Node& dataSet = *levels_.back().dataSet;
    PassFragments(pixelData, pgkit::LoadFragments(reader_, dataSet, pixelData));
}

void DataSetParser::PassFragments(PGX_Node& pixelData, const PixelItems& items) {
    levels_.back().dataSetBytes += items.bytes;
    if (items.end == PixelItems::End::Delimiter) return;
    NoteCutFragments(pixelData);
    const bool isTolerable =
        items.end == PixelItems::End::OtherTag && items.offsets.empty() && !items.fragments.empty();
    if (isTolerable) return;
    NoteEnd({EndKind::Broken, items.endPosition, pixelData.group, pixelData.element});
    reader_.SeekToEnd();
}

void DataSetParser::NoteCutFragments(const PGX_Node& pixelData) {
    const bool isCut = reader_.Remaining() == 0;
    if (isCut) NoteEnd({EndKind::CutShort, reader_.Size(), pixelData.group, pixelData.element});
}

// Of private groups little is loaded, of others what the caller wants.
uint32_t DataSetParser::LoadLimit(const PGX_Node& element) const {
    return IsPrivateGroup(element.group) ? std::min(maxLoadLength_, kPrivateLoadLimit)
                                         : maxLoadLength_;
}

// ---- The end ------------------------------------------------------------------------------------

// What happens first is what makes the rest.
void DataSetParser::NoteEnd(const ParseEnd& end) {
    if (hasEnded_) return;
    hasEnded_ = true;
    end_ = end;
}

// A value that reaches beyond the end is found here, too: the reader is beyond the end with it.
void DataSetParser::NoteBadHeader(uint64_t start, const PGX_Node* sequence) {
    if (hasEnded_) return;
    const uint64_t size = reader_.Size();
    const bool isAtEnd = reader_.Position() >= size;
    const bool isComplete = start == size && sequence == nullptr;
    ParseEnd end{EndKind::Broken, start};
    if (isAtEnd) end = {isComplete ? EndKind::Complete : EndKind::CutShort, size};
    const PGX_Node* const concerned = start > size ? lastElement_ : sequence;
    if (concerned != nullptr) {
        end.group = concerned->group;
        end.element = concerned->element;
    }
    NoteEnd(end);
}

// Some elements tell how others of their data set are to be read.
void DataSetParser::NoteElement(PGX_Node& element) {
    Level& level = levels_.back();
    if (IsBitsAllocated(element.group, element.element)) {
        level.bitsAllocated = element.GetUSValue();
        if (element.value == nullptr) reader_.StreamMoved();
    } else if (IsPixelData(element.group, element.element)) {
        element.bitsAllocated = level.bitsAllocated;
    } else if (IsPrivateCreator(element.group, element.element)) {
        NotePrivateCreator(element, level);
    }
}

// The reader stands behind the value, which need not have been loaded.
void DataSetParser::NotePrivateCreator(const PGX_Node& element, Level& level) {
    if (element.valueRep != VR_LO || element.length > kMaxCreatorLength) return;
    if (level.creators.size() >= kMaxPrivateCreators) {
        hasIgnoredCreators_ = true;
        return;
    }
    char text[kMaxCreatorLength + 1] = {};
    const uint64_t end = reader_.Position();
    reader_.Seek(end - element.length);
    reader_.Read(reinterpret_cast<uint8_t*>(text), element.length);
    reader_.Seek(end);
    level.creators.push_back({ToUpper(TrimBlanks(text)), element.element});
}

}  // namespace pgkit
