#include "json/element_writer.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

#include "base/byte_order.h"
#include "base/utf8.h"
#include "dictionary/vr_properties.h"
#include "json/ambiguous_vr.h"
#include "json/base64.h"
#include "json/element_path.h"
#include "json/number_text.h"
#include "text/text_rules.h"

namespace pgkit {

namespace {

// As much text as is converted at a time, and what that can become.
constexpr size_t kTextPiece = 0x2000;
constexpr size_t kDecodedPiece = 3 * kTextPiece + 1;

// As many bytes as fit what the output gives room for.
constexpr size_t kBinaryPiece = JsonOutput::kMaxReserved / 4 * 3 / 24 * 24;

ByteOrder OrderOf(const PGX_Node& node) {
    return node.endian == ET_BigEndian ? ByteOrder::Big : ByteOrder::Little;
}

std::string_view AsText(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Without blanks and NULs at the end. Of a long value only the end is read for that.
size_t LengthWithoutPadding(const ValuePieces& pieces) {
    for (size_t end = pieces.Size(); end > 0;) {
        const size_t begin = end > kTextPiece ? end - kTextPiece : 0;
        const std::string_view piece = AsText(pieces.At(begin, end - begin));
        const size_t length = WithoutPadding(piece).size();
        if (length > 0) return begin + length;
        end = begin;
    }
    return 0;
}

bool IsUtf8(const ValuePieces& pieces, size_t offset, size_t length) {
    while (offset < length) {
        const std::string_view piece =
            AsText(pieces.At(offset, std::min(kTextPiece, length - offset)));
        if (piece.empty()) return true;
        const bool isLast = offset + piece.size() == length;
        size_t taken = 0;
        while (taken < piece.size()) {
            const Utf8Character next = FirstUtf8Character(piece.substr(taken));
            if (next.isCutShort && !isLast) break;
            if (!next.isValid) return false;
            taken += next.size;
        }
        offset += taken;
    }
    return true;
}

std::string AttributeOf(PGX_Node* characterSet) {
    if (characterSet == nullptr) return std::string();
    uint8_t bytes[kMaxCharacterSetText];
    const ValuePieces pieces(*characterSet, bytes);
    return std::string(AsText(pieces.At(0, sizeof bytes)));
}

template <size_t Size>
struct BitsOf;
template <>
struct BitsOf<2> {
    using Type = uint16_t;
};
template <>
struct BitsOf<4> {
    using Type = uint32_t;
};
template <>
struct BitsOf<8> {
    using Type = uint64_t;
};

template <typename Number>
Number AnyNumberAt(const uint8_t* bytes, ByteOrder order) {
    return std::bit_cast<Number>(NumberAt<typename BitsOf<sizeof(Number)>::Type>(bytes, order));
}

// What no JSON number can be.
template <typename Float>
std::string_view NameOfNoNumber(Float number) {
    if (std::isnan(number)) return "NaN";
    if (std::isinf(number)) return number < 0 ? "-inf" : "inf";
    return {};
}

// Whether every reader has the number, also one that knows doubles only.
template <typename Integer>
bool IsExactInJson(Integer number) {
    constexpr int64_t kLargest = int64_t{1} << 53;
    return std::cmp_less_equal(number, kLargest) && std::cmp_greater_equal(number, -kLargest);
}

}  // namespace

uint32_t JsonVrOf(const PGX_Node& element, bool isSigned) {
    switch (element.valueRep) {
        case VR_USSS:
            return isSigned ? VR_SS : VR_US;
        case VR_OWOB:
            return element.encapsulated != 0 ? uint32_t{VR_OB} : OwOrOb(element.group);
        default:
            return element.valueRep < VrCount() ? element.valueRep : uint32_t{VR_UN};
    }
}

bool MayBeBulk(uint32_t valueRep) {
    switch (valueRep) {
        case VR_DS:
        case VR_IS:
        case VR_LT:
        case VR_ST:
        case VR_UC:
        case VR_UT:
        case VR_UN:
            return true;
        case VR_AT:
            return false;
        default:
            return PropertiesOf(valueRep).kind >= VrKind::UInt16 ||
                   PropertiesOf(valueRep).kind == VrKind::Bytes;
    }
}

ElementWriter::ElementWriter(JsonOutput& output) : output_(output), texts_(output) {}

ValuePieces ElementWriter::PiecesOf(const PGX_Node& element) {
    if (piece_ == nullptr && element.value == nullptr) NewPiece();
    return {element, piece_.get()};
}

void ElementWriter::NewPiece() { piece_ = std::make_unique_for_overwrite<uint8_t[]>(kValuePiece); }

void ElementWriter::WriteValue(const PGX_Node& element, uint32_t valueRep, PGX_Node* characterSet) {
    if (element.length == 0 || !HasValue(element)) return;
    if (FindTextRules(valueRep) != nullptr) {
        WriteText(element, valueRep, characterSet);
    } else if (PropertiesOf(valueRep).kind == VrKind::Bytes || valueRep == VR_UN) {
        WriteBinary(element, valueRep);
    } else {
        WriteNumbers(element, valueRep);
    }
}

// ---- Texts --------------------------------------------------------------------------------------

bool ElementWriter::NeedsCharacterSet(const PGX_Node& element, uint32_t valueRep) {
    const TextRules* const rules = FindTextRules(valueRep);
    if (rules == nullptr || !rules->usesCharacterSet || !HasValue(element)) return false;
    const ValuePieces pieces = PiecesOf(element);
    for (size_t offset = 0; offset < pieces.Size();) {
        const auto piece = pieces.At(offset, kValuePiece);
        if (!IsPlainText(AsText(piece))) return true;
        if (piece.empty()) return false;
        offset += piece.size();
    }
    return false;
}

// What a text begins with is the same in every set as long as it is plain.
void ElementWriter::WriteText(const PGX_Node& element, uint32_t valueRep, PGX_Node* characterSet) {
    const ValuePieces pieces = PiecesOf(element);
    const size_t length = LengthWithoutPadding(pieces);
    if (length == 0) return;
    texts_.Begin(valueRep);
    for (size_t offset = 0; offset < length && !output_.HasFailed();) {
        const std::string_view piece =
            AsText(pieces.At(offset, std::min(kTextPiece, length - offset)));
        if (piece.empty()) break;
        if (!IsPlainText(piece)) {
            DecodeText(pieces, offset, length, *FindTextRules(valueRep), characterSet);
            break;
        }
        texts_.Put(piece);
        offset += piece.size();
    }
    texts_.End();
}

void ElementWriter::DecodeText(const ValuePieces& pieces, size_t offset, size_t length,
                               const TextRules& rules, PGX_Node* characterSet) {
    TextDecoder& decoder = DecoderFor(characterSet);
    if (utf8_ == nullptr) utf8_ = std::make_unique_for_overwrite<char[]>(kDecodedPiece);
    decoder.Begin(rules, CutEnd::Replace,
                  decoder.DependsOnUtf8(rules) && IsUtf8(pieces, offset, length));
    while (offset < length && !output_.HasFailed()) {
        const std::string_view piece =
            AsText(pieces.At(offset, std::min(kTextPiece, length - offset)));
        const bool isLast = offset + piece.size() == length;
        Utf8Output utf8(utf8_.get(), kDecodedPiece);
        const size_t taken = decoder.Decode(piece, isLast, utf8);
        if (taken == 0) return;  // the file has become shorter
        texts_.Put({utf8_.get(), utf8.Needed()});
        offset += taken;
    }
}

TextDecoder& ElementWriter::DecoderFor(PGX_Node* characterSet) {
    if (!decoder_ || decodersSet_ != characterSet) {
        decoder_.emplace(AttributeOf(characterSet));
        decodersSet_ = characterSet;
    }
    return *decoder_;
}

// ---- Bytes --------------------------------------------------------------------------------------

void ElementWriter::WriteBinary(const PGX_Node& element, uint32_t valueRep) {
    const ValuePieces pieces = PiecesOf(element);
    if (pieces.Size() == 0) return;
    const size_t unit = OrderOf(element) == ByteOrder::Big ? SwapUnit(valueRep) : 1;
    if (unit > 1 && piece_ == nullptr) NewPiece();
    output_.Key("InlineBinary");
    output_.BeginString();
    for (size_t offset = 0; offset < pieces.Size() && !output_.HasFailed();) {
        auto bytes = pieces.At(offset, kBinaryPiece);
        if (bytes.empty()) break;
        offset += bytes.size();
        if (unit > 1) {
            if (bytes.data() != piece_.get()) {
                std::memcpy(piece_.get(), bytes.data(), bytes.size());
                bytes = {piece_.get(), bytes.size()};
            }
            SwapUnits(piece_.get(), bytes.size(), unit);
        }
        EncodeBase64(bytes.data(), bytes.size(), output_.Reserve(Base64Size(bytes.size())));
        output_.Commit(Base64Size(bytes.size()));
    }
    output_.EndString();
}

// ---- Numbers ------------------------------------------------------------------------------------

template <typename Number, typename Write>
void ElementWriter::WriteNumbers(const PGX_Node& element, Write write) {
    const ValuePieces pieces = PiecesOf(element);
    if (pieces.Size() < sizeof(Number)) return;
    const ByteOrder order = OrderOf(element);
    output_.StartValues();
    for (size_t offset = 0; offset < pieces.Size() && !output_.HasFailed();) {
        const auto bytes = pieces.At(offset, kValuePiece);
        if (bytes.size() < sizeof(Number)) break;
        for (size_t i = 0; i + sizeof(Number) <= bytes.size(); i += sizeof(Number))
            write(bytes.data() + i, order);
        offset += bytes.size();
    }
    output_.EndArray();
}

void ElementWriter::WriteNumbers(const PGX_Node& element, uint32_t valueRep) {
    switch (PropertiesOf(valueRep).kind) {
        case VrKind::UInt16:
            return WriteIntegers<uint16_t>(element);
        case VrKind::Int16:
            return WriteIntegers<int16_t>(element);
        case VrKind::UInt32:
            return WriteIntegers<uint32_t>(element);
        case VrKind::Int32:
            return WriteIntegers<int32_t>(element);
        case VrKind::UInt64:
            return WriteIntegers<uint64_t>(element);
        case VrKind::Int64:
            return WriteIntegers<int64_t>(element);
        case VrKind::Float32:
            return WriteFloats<float>(element);
        case VrKind::Float64:
            return WriteFloats<double>(element);
        case VrKind::TagHalves:
            return WriteTags(element);
        default:
            return;
    }
}

template <typename Integer>
void ElementWriter::WriteIntegers(const PGX_Node& element) {
    WriteNumbers<Integer>(element, [this](const uint8_t* bytes, ByteOrder order) {
        const auto number = AnyNumberAt<Integer>(bytes, order);
        const NumberText digits = NumberText::Of(number);
        if (IsExactInJson(number)) return output_.Number(digits.View());
        output_.String(digits.View());
    });
}

template <typename Float>
void ElementWriter::WriteFloats(const PGX_Node& element) {
    WriteNumbers<Float>(element, [this](const uint8_t* bytes, ByteOrder order) {
        const auto number = AnyNumberAt<Float>(bytes, order);
        const std::string_view name = NameOfNoNumber(number);
        if (!name.empty()) return output_.String(name);
        output_.Number(NumberText::Of(static_cast<double>(number)).View());
    });
}

void ElementWriter::WriteTags(const PGX_Node& element) {
    WriteNumbers<uint32_t>(element, [this](const uint8_t* bytes, ByteOrder order) {
        const TagDigits tag =
            DigitsOfTag(NumberAt<uint16_t>(bytes, order), NumberAt<uint16_t>(bytes + 2, order));
        output_.String({tag.text, sizeof tag.text});
    });
}

}  // namespace pgkit
