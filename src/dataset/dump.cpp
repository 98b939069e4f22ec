// The text dump of a node and everything below it.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "base/byte_order.h"
#include "base/text.h"
#include "dataset/node_memory.h"
#include "dataset/text_output.h"
#include "dataset/tree_walk.h"
#include "dataset/value_source.h"
#include "dictionary/vr_properties.h"
#include "pgkit/node.h"
#include "platform/file_handle.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr std::string_view kIndent = " | ";
constexpr size_t kMaxPrintedNumbers = 20;
constexpr size_t kTagNameSize = 128;
constexpr size_t kTextPiece = 0x10000;

bool IsPrintedAsBinary(uint32_t vr) { return PropertiesOf(vr).kind == VrKind::Bytes; }

// Numbers that count as text, those of VR US or SS, give the same text on every machine. It ends
// with a unit of zeros at the latest; what the length claims behind it is not touched.
void MakeLittleEndian(uint8_t* zeros, size_t length, size_t unit) {
    if (IsHostOrder(ET_LittleEndian)) return;
    for (; length >= unit; zeros += unit, length -= unit) {
        if (std::all_of(zeros, zeros + unit, [](uint8_t byte) { return byte == 0; })) return;
        SwapUnits(zeros, unit, unit);
    }
}

// The value up to its first NUL. A text that needs no conversion is read piece by piece, so that
// little of a large binary value is read for the few bytes that count as text.
std::string_view ReadText(const PGX_Node& node, uint8_t* zeros) {
    const char* text = reinterpret_cast<const char*>(zeros);
    if (!HasValue(node)) return {};
    const size_t unit = SwapUnit(node.valueRep);
    if (node.valueRep == VR_UI || unit != 1) {
        ReadValueIntoZeros(node, zeros);
        MakeLittleEndian(zeros, node.length, unit);
        return text;
    }
    size_t size = 0;
    for (;;) {
        const size_t fetched = FetchValue(node, size, zeros + size, kTextPiece);
        const void* end = std::memchr(zeros + size, '\0', fetched);
        size += fetched;
        if (end != nullptr) return text;
        if (fetched < kTextPiece) return {text, size};
    }
}

class Dumper {
  public:
    Dumper(FILE* stream, std::string_view prefix)
        : output_(stream), prefix_(prefix), baseSize_(prefix.size()) {}

    WalkStep Enter(PGX_Node& node, size_t depth) {
        Indent(depth);
        if (node.nodeType == NT_DataSet) {
            Line("DATASET\n");
            return WalkStep::Continue;
        }
        const bool isPrinted = Element(node);
        if (depth == 0) isStartPrinted_ = isPrinted;
        return isPrinted && node.valueRep == VR_SQ ? WalkStep::Continue : WalkStep::SkipChildren;
    }

    WalkStep Leave(PGX_Node& node, size_t depth) {
        if (node.nodeType == NT_DataSet) {
            Indent(depth);
            Line("END-OF-DATASET\n");
        }
        return WalkStep::Continue;
    }

    bool IsStartPrinted() const { return isStartPrinted_; }

  private:
    void Indent(size_t depth) {
        const size_t size = baseSize_ + depth * kIndent.size();
        while (prefix_.size() < size)
            prefix_ += kIndent;
        prefix_.resize(size);
    }

    void Line(std::string_view text) {
        output_.Text(prefix_);
        output_.Text(text);
    }

    bool Element(PGX_Node& node) {
        ValueBuffer buffer;
        if (!IsPrintedAsBinary(node.valueRep)) {
            buffer = AllocateFor(node);
            if (buffer == nullptr) return false;
        }
        Head(node);
        Value(node, buffer.get());
        return true;
    }

    // The whole length, which may be no more than a claim, is asked for but not touched.
    ValueBuffer AllocateFor(const PGX_Node& node) {
        const size_t size = node.length == kUndefinedLength ? 1 : size_t{node.length} + 2;
        ValueBuffer buffer(NewValueBuffer(size));
        if (buffer == nullptr) {
            output_.Text(">>>>> OUT-OF-MEMORY !!! (can't allocated ");
            output_.Number(node.length + 2);
            output_.Text(" bytes to dump object)\n");
        }
        return buffer;
    }

    void Head(PGX_Node& node) {
        char name[kTagNameSize];
        node.GetTagName(name);
        Line("(");
        output_.Hex(node.group);
        output_.Text(",");
        output_.Hex(node.element);
        output_.Text(") : ");
        output_.Padded(PropertiesOf(node.valueRep).name, 4);
        output_.Text(" Len: ");
        if (node.length == kUndefinedLength) {
            output_.Padded("-1", 6);
        } else {
            output_.PaddedNumber(node.length, 6);
        }
        output_.Text(" ");
        output_.Padded(name, 30);
        output_.Text(" Value: [");
    }

    void Value(const PGX_Node& node, uint8_t* zeros) {
        const auto integer = [this](auto number) { output_.Number(number); };
        const auto halfTag = [this](uint16_t number) {
            output_.Text("0x");
            output_.Hex(number);
        };
        switch (PropertiesOf(node.valueRep).kind) {
            case VrKind::UInt32:  // signed, as ever
            case VrKind::Int32:
                return Integers<int32_t>(node, zeros, integer);
            case VrKind::UInt16:
                return Integers<uint16_t>(node, zeros, integer);
            case VrKind::Int16:
                return Integers<int16_t>(node, zeros, integer);
            case VrKind::TagHalves:
                return Integers<uint16_t>(node, zeros, halfTag);
            case VrKind::Float32:
                return Floats<float>(node, zeros);
            case VrKind::Float64:
                return Floats<double>(node, zeros);
            case VrKind::Int64:
                return Integers<int64_t>(node, zeros, integer);
            case VrKind::UInt64:
                return Integers<uint64_t>(node, zeros, integer);
            default:
                return NoNumber(node, zeros);
        }
    }

    void NoNumber(const PGX_Node& node, uint8_t* zeros) {
        if (IsPrintedAsBinary(node.valueRep)) {
            output_.Text(node.encapsulated != 0 ? "Encoded " : "");
            output_.Text("OW/OB/OF Binary data");
        } else if (node.valueRep == VR_SQ) {
            output_.Text("SEQUENCE");
        } else {
            output_.Text(ReadText(node, zeros));
        }
        output_.Text("]\n");
    }

    template <typename Number, typename Print>
    void Integers(const PGX_Node& node, uint8_t* zeros, Print print) {
        const size_t left = Numbers<Number>(node, zeros, print, print);
        output_.Text(left > 0 ? "...]\n" : "]\n");
    }

    template <typename Number>
    void Floats(const PGX_Node& node, uint8_t* zeros) {
        Numbers<Number>(
            node, zeros, [this](Number number) { output_.Fixed(number, 10, 3); },
            [this](Number number) { output_.Fixed(number, 0, 6); });
        output_.Text("]\n");
    }

    // A lone number has a form of its own. Returns how many numbers there are beyond those printed.
    template <typename Number, typename PrintLone, typename Print>
    size_t Numbers(const PGX_Node& node, uint8_t* zeros, PrintLone printLone, Print print) {
        const size_t count = node.length == kUndefinedLength ? 0 : node.length / sizeof(Number);
        const size_t printed = std::min(count, kMaxPrintedNumbers);
        ReadValuePrefix(node, zeros, printed * sizeof(Number));
        for (size_t i = 0; i < printed; ++i) {
            const Number number = HostNumberAt<Number>(zeros + i * sizeof(Number));
            if (count == 1) {
                printLone(number);
            } else {
                print(number);
                output_.Text(" ");
            }
        }
        return count - printed;
    }

    TextOutput output_;
    std::string prefix_;
    size_t baseSize_;
    bool isStartPrinted_ = true;
};

}  // namespace

}  // namespace pgkit

int32_t PGX_Node::Dump(FILE* stream, const char* prefix) {
    if (stream == nullptr) return 0;
    pgkit::Dumper dumper(stream, pgkit::OrEmpty(prefix));
    pgkit::WalkTree(*this, dumper);
    return dumper.IsStartPrinted() ? 1 : 0;
}

int32_t PGX_Node::Dump(const char* path) {
    const pgkit::platform::FileHandle stream(pgkit::platform::CreateText(path));
    if (stream == nullptr) return 0;
    Dump(stream.get(), "");
    return 1;
}
