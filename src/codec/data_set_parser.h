// Decodes a data set, with its nested sequences, from a stream into a tree of nodes.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/byte_order.h"
#include "codec/parse_end.h"
#include "codec/pixel_items.h"
#include "codec/stream_reader.h"
#include "codec/tag_header.h"
#include "codec/transfer_syntax.h"
#include "codec/tree_builder.h"
#include "dataset/node_ptr.h"
#include "dictionary/private_dictionary.h"

namespace pgkit {

// Sequences may be nested this deep. What lies deeper ends its data set like a header that cannot
// be read. Deep files are damaged or hostile ones, and every level costs a line prefix in a dump.
constexpr size_t kMaxSequenceNesting = 2048;

class DataSetParser {
  public:
    // flags are PgOpenFlags, of which the four that force an encoding mean nothing here.
    DataSetParser(StreamReader& reader, TreeBuilder& builder, Encoding encoding,
                  uint32_t maxLoadLength, uint32_t flags);

    // Reads the data set at the reader's position up to a delimiter or a header that cannot be
    // read. Throws std::bad_alloc.
    NodeTree Parse();

    // Where that was, or where the first thing happened that makes the tree less than the stream.
    const ParseEnd& End() const { return end_; }
    // Whether there were more private creators than are looked up.
    bool HasIgnoredCreators() const { return hasIgnoredCreators_; }

  private:
    // What comes next on a level.
    enum class Next {
        Element,
        Item,
        Nothing  // behind the top data set
    };

    // A sequence that is being read and, most of the time, its current item. The bottom level is
    // the top data set, which has no sequence. Byte counts follow the declared lengths, not the
    // stream, and wrap as these do: they decide where containers of defined length end.
    struct Level {
        Next next = Next::Item;
        PGX_Node* sequence = nullptr;
        PGX_Node** itemLink = nullptr;  // where the next item is linked
        uint32_t sequenceBytes = 0;
        bool implicitVr = false;  // of the items

        PGX_Node* dataSet = nullptr;       // the item, as long as its elements are read
        PGX_Node** elementLink = nullptr;  // where the next element is linked
        uint32_t dataSetBytes = 0;
        uint32_t dataSetLength = 0;  // as declared
        uint32_t bitsAllocated = 0;
        std::vector<PrivateCreator> creators;
    };

    // What is made of a header's tag and VR before its node is built.
    struct Meaning {
        uint32_t valueRep;
        bool isUnSequence = false;  // an UN element of undefined length, read as a sequence
        // For tagName: one that was made for this element, or one of the dictionary's; or none.
        size_t madeLength = 0;
        char madeName[32];
        std::string_view foundName;

        std::string_view Name() const {
            return madeLength != 0 ? std::string_view(madeName, madeLength) : foundName;
        }
        void MakeName(const char* format, unsigned number);
    };

    void OpenDataSet(Level& level, PGX_Node* node, uint32_t declaredLength);
    bool OpenNextItem(Level& level);
    void CloseDataSet();
    void CloseSequence();

    bool ReadElement();
    void FindMeaning(const TagHeader& header, const Level& level, Meaning& meaning) const;
    void FindMeaningOfUn(const TagHeader& header, const Level& level, Meaning& meaning) const;
    void FindMeaningByCreator(const TagHeader& header, const Level& level, Meaning& meaning) const;
    PGX_Node* AppendElement(const TagHeader& header, const Meaning& meaning);
    void OpenSequence(PGX_Node* sequence, const Meaning& meaning);
    bool ItemsAreImplicit(const Level& parent, const Meaning& meaning);
    void ReadFragments(PGX_Node& pixelData);
    void LoadFragments(PGX_Node& pixelData);
    void PassFragments(PGX_Node& pixelData, const PixelItems& items);
    void NoteCutFragments(const PGX_Node& pixelData);
    uint32_t LoadLimit(const PGX_Node& element) const;
    void NoteElement(PGX_Node& element);
    void NotePrivateCreator(const PGX_Node& element, Level& level);

    bool ReadHeader(const Level& level, TagHeader& header);
    void NoteEnd(const ParseEnd& end);
    void NoteBadHeader(uint64_t start, const PGX_Node* sequence);

    StreamReader& reader_;
    TreeBuilder& builder_;
    const Encoding encoding_;
    const uint32_t maxLoadLength_;
    const uint32_t flags_;
    const bool decodesUnSequences_;  // a parse goes by the switch as it finds it
    std::vector<Level> levels_;
    const PGX_Node* lastElement_ = nullptr;
    ParseEnd end_;
    bool hasEnded_ = false;  // end_ is known
    bool hasIgnoredCreators_ = false;
};

}  // namespace pgkit
