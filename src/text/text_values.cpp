// The functions of text.h.
#include "pgkit/text.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"
#include "dataset/find_element.h"
#include "dataset/value_source.h"
#include "dictionary/tags.h"
#include "pgkit/node.h"
#include "text/text_decoder.h"
#include "text/text_encoder.h"

namespace pgkit {

namespace {

constexpr uint32_t kMaxValueLength = 0xFFFFFFFE;

// Values that are still in their file take no memory of the heap when they are short.
constexpr size_t kShortValue = 1024;

std::string_view AsText(const uint8_t* bytes, size_t length) {
    return {reinterpret_cast<const char*>(bytes), length};
}

// The bytes of a value, in place where they are in memory.
class ValueBytes {
  public:
    // At most so many bytes. Throws std::bad_alloc.
    ValueBytes(const PGX_Node& node, size_t maxLength) {
        const size_t length = std::min<size_t>(AvailableLength(node), maxLength);
        if (node.value != nullptr) {
            text_ = AsText(node.value, length);
            return;
        }
        uint8_t* bytes = short_.data();
        if (length > short_.size()) {
            long_ = std::make_unique_for_overwrite<uint8_t[]>(length);
            bytes = long_.get();
        }
        text_ = AsText(bytes, FetchValue(node, 0, bytes, length));
    }
    std::string_view Text() const { return text_; }

  private:
    std::array<uint8_t, kShortValue> short_;
    std::unique_ptr<uint8_t[]> long_;
    std::string_view text_;
};

bool IsElement(const PGX_Node& node) { return node.nodeType == NT_DataElement; }

// What the argument of the functions on elements stands for; empty for null.
std::string CharacterSetOf(PGX_Node* characterSet) {
    if (characterSet != nullptr && !IsElement(*characterSet)) {
        characterSet = FindElement(*characterSet, tags::kSpecificCharacterSet);
    }
    if (characterSet == nullptr || !HasValue(*characterSet)) return std::string();
    return std::string(ValueBytes(*characterSet, kMaxCharacterSetText).Text());
}

int64_t Length(size_t length) { return static_cast<int64_t>(length); }

void ClearText(char* buffer, size_t size) {
    if (buffer != nullptr && size != 0) buffer[0] = '\0';
}

int64_t DecodeTo(char* buffer, size_t size, std::string_view attribute, uint32_t valueRep,
                 std::string_view text, CutEnd cutEnd) {
    Utf8Output output(buffer, size);
    const TextRules* const rules = FindTextRules(valueRep);
    if (rules == nullptr) return PGX_TEXT_NOT_A_TEXT;
    DecodeText(attribute, *rules, WithoutPadding(text), cutEnd, output);
    return Length(output.Needed());
}

// Appends the value to result; 0 or an error.
int64_t Encode(std::string_view attribute, uint32_t valueRep, std::string_view utf8,
               std::string& result) {
    const TextRules* const rules = FindTextRules(valueRep);
    if (rules == nullptr) return PGX_TEXT_NOT_A_TEXT;
    switch (EncodeText(attribute, *rules, utf8, result)) {
        case EncodeResult::NotExpressible:
            return PGX_TEXT_NOT_EXPRESSIBLE;
        case EncodeResult::InvalidUtf8:
            return PGX_TEXT_INVALID_UTF8;
        case EncodeResult::Done:
            break;
    }
    return 0;
}

int64_t CopyTo(char* buffer, size_t size, std::string_view text) {
    if (buffer != nullptr && size != 0) buffer[text.copy(buffer, size - 1)] = '\0';
    return Length(text.size());
}

int64_t EncodeTo(char* buffer, size_t size, std::string_view attribute, uint32_t valueRep,
                 std::string_view utf8) {
    if (FindTextRules(valueRep) != nullptr && IsPlainText(utf8)) return CopyTo(buffer, size, utf8);
    std::string encoded;
    const int64_t error = Encode(attribute, valueRep, utf8, encoded);
    return error != 0 ? error : CopyTo(buffer, size, encoded);
}

int64_t GetValue(PGX_Node* characterSet, const PGX_Node& element, char* buffer, size_t size) {
    if (FindTextRules(element.valueRep) == nullptr || !IsElement(element)) {
        return PGX_TEXT_NOT_A_TEXT;
    }
    if (!HasValue(element)) return PGX_TEXT_NO_VALUE;
    const ValueBytes value(element, kMaxValueLength);
    // Looked for only when the text depends on it.
    const std::string attribute =
        IsPlainText(value.Text()) ? std::string() : CharacterSetOf(characterSet);
    return DecodeTo(buffer, size, attribute, element.valueRep, value.Text(), CutEnd::Replace);
}

int64_t Store(PGX_Node& element, std::string_view value) {
    if (value.size() > kMaxValueLength) return PGX_TEXT_TOO_LONG;
    const bool isStored = element.SetValue(value.data(), static_cast<uint32_t>(value.size())) == 1;
    if (!isStored) return PGX_TEXT_NO_MEMORY;
    return Length(value.size());
}

int64_t SetValue(PGX_Node* characterSet, PGX_Node& element, std::string_view utf8) {
    if (FindTextRules(element.valueRep) == nullptr || !IsElement(element)) {
        return PGX_TEXT_NOT_A_TEXT;
    }
    if (IsPlainText(utf8)) return Store(element, utf8);
    std::string encoded;
    const int64_t error = Encode(CharacterSetOf(characterSet), element.valueRep, utf8, encoded);
    return error != 0 ? error : Store(element, encoded);
}

std::string_view TextOrEmpty(const void* bytes, size_t length) {
    return {static_cast<const char*>(bytes), bytes == nullptr ? 0 : length};
}

int64_t Decode(const char* attribute, uint32_t valueRep, std::string_view bytes, CutEnd cutEnd,
               char* buffer, size_t size) {
    return DecodeTo(buffer, size, OrEmpty(attribute), valueRep, bytes, cutEnd);
}

int64_t Encode(const char* attribute, uint32_t valueRep, std::string_view utf8, char* buffer,
               size_t size) {
    ClearText(buffer, size);
    return EncodeTo(buffer, size, OrEmpty(attribute), valueRep, utf8);
}

int64_t DecodeField(const char* attribute, uint32_t valueRep, const char* field, char* buffer,
                    size_t size) {
    ClearText(buffer, size);
    if (field == nullptr) return PGX_TEXT_NO_VALUE;
    return Decode(attribute, valueRep, field, CutEnd::Drop, buffer, size);
}

PGX_Node* FindCharacterSet(PGX_Node* dataSet, PGX_Node* inherited) {
    if (dataSet == nullptr) return inherited;
    PGX_Node* const own = FindElement(*dataSet, tags::kSpecificCharacterSet);
    return own != nullptr ? own : inherited;
}

int64_t GetElement(PGX_Node* characterSet, PGX_Node* element, char* buffer, size_t size) {
    ClearText(buffer, size);
    if (element == nullptr) return PGX_TEXT_NO_VALUE;
    return GetValue(characterSet, *element, buffer, size);
}

int64_t SetElement(PGX_Node* characterSet, PGX_Node* element, std::string_view utf8) {
    if (element == nullptr) return PGX_TEXT_NO_VALUE;
    return SetValue(characterSet, *element, utf8);
}

constexpr int64_t kNoMemory = PGX_TEXT_NO_MEMORY;

}  // namespace

}  // namespace pgkit

using pgkit::Guarded;
using pgkit::TextOrEmpty;

int64_t pgxTextToUtf8(const char* specificCharacterSet, uint32_t valueRep, const void* bytes,
                      size_t length, char* buffer, size_t size) {
    return Guarded(
        [=] {
            return pgkit::Decode(specificCharacterSet, valueRep, TextOrEmpty(bytes, length),
                                 pgkit::CutEnd::Replace, buffer, size);
        },
        pgkit::kNoMemory);
}

int64_t pgxTextFromUtf8(const char* specificCharacterSet, uint32_t valueRep, const char* utf8,
                        size_t length, char* buffer, size_t size) {
    return Guarded(
        [=] {
            return pgkit::Encode(specificCharacterSet, valueRep, TextOrEmpty(utf8, length), buffer,
                                 size);
        },
        pgkit::kNoMemory);
}

int64_t pgxFieldToUtf8(const char* specificCharacterSet, uint32_t valueRep, const char* field,
                       char* buffer, size_t size) {
    return Guarded(
        [=] { return pgkit::DecodeField(specificCharacterSet, valueRep, field, buffer, size); },
        pgkit::kNoMemory);
}

PGX_Node* pgxFindCharacterSet(PGX_Node* dataSet, PGX_Node* inherited) {
    return Guarded([=] { return pgkit::FindCharacterSet(dataSet, inherited); });
}

int64_t pgxGetUtf8Value(PGX_Node* characterSet, PGX_Node* element, char* buffer, size_t size) {
    return Guarded([=] { return pgkit::GetElement(characterSet, element, buffer, size); },
                   pgkit::kNoMemory);
}

int64_t pgxSetUtf8Value(PGX_Node* characterSet, PGX_Node* element, const char* utf8,
                        size_t length) {
    return Guarded(
        [=] { return pgkit::SetElement(characterSet, element, TextOrEmpty(utf8, length)); },
        pgkit::kNoMemory);
}
