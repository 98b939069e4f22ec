#include "json/value_builder.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <new>
#include <optional>

#include "dictionary/vr_properties.h"
#include "json/number_text.h"
#include "pgkit/json.h"
#include "text/text_decoder.h"
#include "text/text_rules.h"

namespace pgkit {

namespace {

// The largest even length that is not the undefined one.
constexpr size_t kMaxLength = 0xFFFFFFFE;

bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

template <typename Float>
std::optional<Float> FloatOfName(std::string_view name) {
    if (name == "NaN") return std::numeric_limits<Float>::quiet_NaN();
    if (name == "inf") return std::numeric_limits<Float>::infinity();
    if (name == "-inf") return -std::numeric_limits<Float>::infinity();
    return std::nullopt;
}

template <typename Float>
std::optional<Float> FloatOfDigits(std::string_view digits) {
    Float number = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return parsed.ec == std::errc() ? std::optional(number) : std::nullopt;
}

std::optional<uint16_t> HalfTag(std::string_view digits) {
    uint16_t half = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), half, 16);
    const bool isOne = parsed.ec == std::errc() && parsed.ptr == digits.data() + digits.size();
    return isOne ? std::optional(half) : std::nullopt;
}

// What the text of one value is, or an error.
int32_t TextOf(const JsonValues::Value& value, uint32_t valueRep, const TextRules& rules,
               std::string& result) {
    result.clear();
    switch (value.kind) {
        case JsonKind::Null:
            return 0;
        case JsonKind::EmptyObject:
            return valueRep == VR_PN ? 0 : PGX_JSON_WRONG_TYPE;
        case JsonKind::Name:
            result = value.text;
            return valueRep == VR_PN ? 0 : PGX_JSON_WRONG_TYPE;
        case JsonKind::Item:
            return PGX_JSON_WRONG_TYPE;
        case JsonKind::String:
            result = value.text;
            if (valueRep == VR_PN) return PGX_JSON_WRONG_TYPE;
            if (!rules.usesCharacterSet && !IsAscii(result)) return PGX_JSON_BAD_TEXT;
            return !rules.delimiters.empty() && result.find('\\') != std::string::npos
                       ? PGX_JSON_BAD_TEXT
                       : 0;
        case JsonKind::Number:
            break;
    }
    if (valueRep == VR_IS) {
        const auto number = WholeNumber<int32_t>(value.text);
        if (!number) return PGX_JSON_OUT_OF_RANGE;
        result = NumberText::Of(*number).View();
        return 0;
    }
    if (valueRep != VR_DS) return PGX_JSON_WRONG_TYPE;
    const auto number = DecimalStringOf(value.text);
    if (!number) return PGX_JSON_OUT_OF_RANGE;
    result = number->View();
    return 0;
}

}  // namespace

bool IsInlineBinary(uint32_t valueRep) {
    return PropertiesOf(valueRep).kind == VrKind::Bytes || valueRep == VR_UN;
}

bool MayBeInlineBinary(uint32_t valueRep) {
    return IsInlineBinary(valueRep) || PropertiesOf(valueRep).kind >= VrKind::UInt16;
}

JsonFault ValueBuilder::Store(const JsonValues& values, PGX_Node& element, bool& needsUtf8) {
    bytes_.clear();
    if (values.Count() == 0) return {};
    const JsonFault fault = FindTextRules(element.valueRep) != nullptr
                                ? StoreTexts(values, element, needsUtf8)
                                : StoreNumbers(values, element);
    if (fault.error != 0) return fault;
    if (bytes_.size() > kMaxLength) return {PGX_JSON_TOO_LARGE, values[values.Count() - 1].offset};
    const auto length = static_cast<uint32_t>(bytes_.size());
    if (length != 0 && element.SetValue(bytes_.data(), length) == 0) throw std::bad_alloc();
    if (bytes_.capacity() > kKeptCapacity) std::string().swap(bytes_);
    return {};
}

JsonFault ValueBuilder::StoreTexts(const JsonValues& values, PGX_Node& element, bool& needsUtf8) {
    const TextRules& rules = *FindTextRules(element.valueRep);
    if (rules.delimiters.empty() && values.Count() > 1) {
        return {PGX_JSON_BAD_TEXT, values[1].offset};
    }
    std::string text;
    for (size_t i = 0; i < values.Count(); ++i) {
        const JsonValues::Value value = values[i];
        const int32_t error = TextOf(value, element.valueRep, rules, text);
        if (error != 0) return {error, value.offset};
        if (i > 0) bytes_ += '\\';
        bytes_ += text;
    }
    needsUtf8 = needsUtf8 || (rules.usesCharacterSet && !IsPlainText(bytes_));
    return {};
}

JsonFault ValueBuilder::StoreNumbers(const JsonValues& values, PGX_Node& element) {
    for (size_t i = 0; i < values.Count(); ++i) {
        const JsonValues::Value value = values[i];
        const int32_t error = AppendNumber(value, element.valueRep);
        if (error != 0) return {error, value.offset};
    }
    return {};
}

template <typename Number>
void ValueBuilder::AppendBytes(Number number) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    bytes_.append(bytes, sizeof bytes);
}

int32_t ValueBuilder::AppendNumber(const JsonValues::Value& value, uint32_t valueRep) {
    const bool isString = value.kind == JsonKind::String;
    if (!isString && value.kind != JsonKind::Number) return PGX_JSON_WRONG_TYPE;
    const auto append = [this](const auto& number) -> int32_t {
        if (!number) return PGX_JSON_OUT_OF_RANGE;
        AppendBytes(*number);
        return 0;
    };
    const auto whole = [&]<typename Integer>(Integer) -> int32_t {
        return append(WholeNumber<Integer>(value.text));
    };
    const auto fraction = [&]<typename Float>(Float) -> int32_t {
        if (!isString) return append(FloatOfDigits<Float>(value.text));
        const auto named = FloatOfName<Float>(value.text);
        return named ? append(named) : PGX_JSON_WRONG_TYPE;
    };
    switch (PropertiesOf(valueRep).kind) {
        case VrKind::Float32:
            return fraction(float{});
        case VrKind::Float64:
            return fraction(double{});
        case VrKind::UInt64:
            return whole(uint64_t{});
        case VrKind::Int64:
            return whole(int64_t{});
        case VrKind::TagHalves: {
            if (!isString) return PGX_JSON_WRONG_TYPE;
            if (value.text.size() != 8) return PGX_JSON_BAD_TAG;
            const auto group = HalfTag(value.text.substr(0, 4));
            const auto element = HalfTag(value.text.substr(4));
            if (!group || !element) return PGX_JSON_BAD_TAG;
            AppendBytes(*group);
            AppendBytes(*element);
            return 0;
        }
        default:
            break;
    }
    if (isString) return PGX_JSON_WRONG_TYPE;
    switch (PropertiesOf(valueRep).kind) {
        case VrKind::UInt16:
            return whole(uint16_t{});
        case VrKind::Int16:
            return whole(int16_t{});
        case VrKind::UInt32:
            return whole(uint32_t{});
        case VrKind::Int32:
            return whole(int32_t{});
        default:
            return PGX_JSON_WRONG_TYPE;
    }
}

// ---- Base64 -------------------------------------------------------------------------------------

void BinaryValue::Clear() {
    decoder_ = Base64Decoder();
    bytes_.reset();
    size_ = capacity_ = 0;
}

int32_t BinaryValue::Append(std::string_view characters) {
    const size_t needed = size_ + Base64Decoder::RoomFor(characters.size());
    if (needed > capacity_) Resize(std::max(needed, capacity_ + capacity_ / 2));
    size_ += decoder_.Decode(characters, bytes_.get() + size_);
    if (decoder_.IsBroken()) return PGX_JSON_BAD_BASE64;
    return size_ > kMaxLength ? PGX_JSON_TOO_LARGE : 0;
}

void BinaryValue::Resize(size_t capacity) {
    auto* const grown = static_cast<uint8_t*>(std::realloc(bytes_.get(), capacity));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(bytes_.release());
    bytes_.reset(grown);
    capacity_ = capacity;
}

void BinaryValue::MoveTo(PGX_Node& element) {
    if (size_ == 0) return;
    const size_t even = size_ + (size_ & 1);
    if (even != capacity_) Resize(even);
    if (even != size_) bytes_.get()[size_] = 0;
    element.value = bytes_.release();
    element.length = static_cast<uint32_t>(even);
    Clear();
}

}  // namespace pgkit
