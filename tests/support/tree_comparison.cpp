#include "support/tree_comparison.h"

#include <utility>
#include <vector>

#include "support/host_order.h"
#include "support/temp_dir.h"
#include "support/tree.h"

namespace pgkit_test {

namespace {

class Comparison {
  public:
    // Without VRs in the second file, those that its reader does not know have got lost.
    explicit Comparison(bool vrsWritten) : vrsWritten_(vrsWritten) {}

    std::string OfDataSets(const PGX_Node* a, const PGX_Node* b) {
        PGX_Node* x = Next(a->first);
        PGX_Node* y = Next(b->first);
        for (; x != nullptr && y != nullptr; x = Next(x->next), y = Next(y->next)) {
            const std::string difference = OfElements(x, y);
            if (!difference.empty()) return difference;
        }
        return x == y ? "" : "more elements than the other from " + Describe(x ? x : y);
    }

  private:
    // What saving sets is not compared: the meta group of the output and group lengths. Nor is what
    // it leaves out, because readers would not take it for an element.
    static PGX_Node* Next(PGX_Node* element) {
        while (element != nullptr && !IsCompared(*element))
            element = element->next;
        return element;
    }

    static bool IsCompared(const PGX_Node& element) {
        const bool isNone = element.group == 0xFFFF && element.element == 0xFFFF;
        return element.group != 0x0002 && element.element != 0 && element.group != 0xFFFE &&
               !isNone;
    }

    std::string OfElements(PGX_Node* a, PGX_Node* b) {
        const std::string both = Describe(a).substr(0, 60) + " and " + Describe(b).substr(0, 60);
        if (a->group != b->group || a->element != b->element) return "tags: " + both;
        if (a->encapsulated != b->encapsulated) return "encapsulation: " + both;
        if (a->encapsulated != 0) return OfFragments(a, b);
        if (vrsWritten_ && !SameVr(a->valueRep, b->valueRep)) return "VRs: " + both;
        if (a->valueRep == VR_SQ) return b->valueRep == VR_SQ ? OfItems(a, b) : OfUnknown(b);
        return InOrderOfFiles(a) == InOrderOfFiles(b) ? "" : "values: " + both;
    }

    // The VRs that a header cannot show read as those it shows for them.
    static bool SameVr(uint32_t a, uint32_t b) {
        if (a == b) return true;
        if (a == VR_USSS) return b == VR_US;
        if (a == VR_OWOB) return b == VR_OW;
        if (a == VR_Unknown) return b == VR_UN;
        return false;
    }

    static size_t WordSize(uint32_t vr) {
        switch (vr) {
            case VR_FD:
            case VR_OD:
            case VR_OV:
            case VR_SV:
            case VR_UV:
                return 8;
            case VR_FL:
            case VR_OF:
            case VR_OL:
            case VR_SL:
            case VR_UL:
                return 4;
            case VR_AT:
            case VR_OW:
            case VR_OWOB:
            case VR_SS:
            case VR_US:
            case VR_USSS:
                return 2;
            default:
                return 1;
        }
    }

    // What is bytes in one file may be words in the other, and words are in the machine's order.
    static Bytes InOrderOfFiles(PGX_Node* element) {
        return InHostOrder(ValueOf(element), WordSize(element->valueRep));
    }

    std::string OfItems(const PGX_Node* a, const PGX_Node* b) {
        const PGX_Node* x = a->first;
        const PGX_Node* y = b->first;
        for (; x != nullptr && y != nullptr; x = x->next, y = y->next) {
            const std::string difference = OfDataSets(x, y);
            if (!difference.empty()) return difference;
        }
        return x == y ? "" : "number of items in " + Describe(a).substr(0, 60);
    }

    // A private sequence of defined length reads as bytes where its VR is not written.
    std::string OfUnknown(const PGX_Node* b) const {
        const bool lost = !vrsWritten_ && pgFindValueRepresentation(b->group, b->element) != VR_SQ;
        return lost ? "" : "no sequence: " + Describe(b);
    }

    static std::string OfFragments(PGX_Node* a, PGX_Node* b) {
        if (Indexed(a)) return Fragments(a) == Fragments(b) ? "" : "fragments";
        return Items(a) == Items(b) ? "" : "items of Pixel Data";
    }

    static bool IsItem(const uint8_t* header) {
        return header[0] == 0xFE && header[1] == 0xFF && header[2] == 0x00 && header[3] == 0xE0;
    }

    // What stands in the file, the offset table first; one that is not there in full is empty.
    static std::vector<Bytes> Items(PGX_Node* pixelData) {
        std::vector<Bytes> items;
        PGX_Node reader;
        reader.file = pixelData->file;
        uint8_t header[8];
        for (uint32_t at = pixelData->fileOffset;
             reader.GetFileData(header, at, sizeof header) != 0 && IsItem(header);) {
            const uint32_t length = header[4] | header[5] << 8 | header[6] << 16 |
                                    static_cast<uint32_t>(header[7]) << 24;
            at += sizeof header;
            // A length may be a mere claim.
            if (length > kLongestItem) break;
            Bytes item(length);
            if (reader.GetFileData(item.data(), at, length) == 0) break;
            items.push_back(item);
            at += length;
        }
        if (items.empty()) items.emplace_back();
        return items;
    }

    static bool Indexed(const PGX_Node* pixelData) {
        return pixelData->fragments != reinterpret_cast<FragmentEntry*>(uintptr_t{1});
    }

    static std::vector<Bytes> Fragments(PGX_Node* pixelData) {
        std::vector<Bytes> fragments;
        uint32_t length = 0;
        uint32_t offset = 0;
        PGX_Node reader;
        reader.file = pixelData->file;
        for (uint32_t i = 0; pixelData->GetEncodedPixelInfo(i, &length, &offset) != 0; ++i) {
            fragments.emplace_back(length);
            if (const uint8_t* const bytes = pixelData->fragments[i].bytes; bytes != nullptr) {
                fragments.back().assign(bytes, bytes + length);
                continue;
            }
            if (reader.GetFileData(fragments.back().data(), offset, length) == 0) break;
        }
        return fragments;
    }

    static Bytes ValueOf(PGX_Node* element) {
        Bytes value(size_t{element->length} + 1);
        // 0 is the answer for undefined lengths, and then on both sides.
        if (element->GetValue(value.data()) == 0) value.clear();
        return value;
    }

    static constexpr uint32_t kLongestItem = 1 << 24;

    bool vrsWritten_;
};

}  // namespace

std::string FirstDifference(PGX_Node& original, PGX_Node& reread) {
    return Comparison((reread.syntaxFlags & PG_EXPLICIT_VR) != 0).OfDataSets(&original, &reread);
}

}  // namespace pgkit_test
