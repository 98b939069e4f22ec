#include "support/tree_comparison.h"

#include <vector>

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
    // What saving sets is not compared: the meta group of the output and group lengths.
    static PGX_Node* Next(PGX_Node* element) {
        while (element != nullptr && (element->group == 0x0002 || element->element == 0)) {
            element = element->next;
        }
        return element;
    }

    std::string OfElements(PGX_Node* a, PGX_Node* b) {
        const std::string both = Describe(a).substr(0, 60) + " and " + Describe(b).substr(0, 60);
        if (a->group != b->group || a->element != b->element) return "tags: " + both;
        if (a->encapsulated != b->encapsulated) return "encapsulation: " + both;
        if (a->encapsulated != 0) return OfFragments(a, b);
        if (vrsWritten_ && !SameVr(a->valueRep, b->valueRep)) return "VRs: " + both;
        if (a->valueRep == VR_SQ) return b->valueRep == VR_SQ ? OfItems(a, b) : OfUnknown(b);
        return ValueOf(a) == ValueOf(b) ? "" : "values: " + both;
    }

    // The VRs that a header cannot show read as those it shows for them.
    static bool SameVr(uint32_t a, uint32_t b) {
        if (a == VR_USSS) return b == VR_US;
        if (a == VR_OWOB) return b == VR_OW;
        if (a == VR_Unknown) return b == VR_UN;
        return a == b;
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
        const std::vector<Bytes> fragments = Fragments(a);
        if (Indexed(a)) return fragments == Fragments(b) ? "" : "fragments";
        return Indexed(b) && b->fragmentCount > 0 ? "" : "no fragments";
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

    bool vrsWritten_;
};

}  // namespace

std::string FirstDifference(PGX_Node& original, PGX_Node& reread) {
    return Comparison((reread.syntaxFlags & PG_EXPLICIT_VR) != 0).OfDataSets(&original, &reread);
}

}  // namespace pgkit_test
