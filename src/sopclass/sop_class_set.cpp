#include "sopclass/sop_class_set.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <rapidxml/rapidxml.hpp>
#include <utility>

#include "base/diagnostics.h"
#include "platform/file_handle.h"
#include "platform/platform.h"
#include "sopclass/xml_nesting.h"

namespace pgkit {

namespace {

using XmlNode = rapidxml::xml_node<>;
using XmlDocument = rapidxml::xml_document<>;

// The parser takes up to 24 bytes of memory for a byte of text, and stack for a level of elements.
// The list itself needs 150 bytes for an entry and three levels.
constexpr size_t kMaxFileSize = size_t{16} << 20;
constexpr size_t kMaxDepth = 100;

// Comments, document types and instructions are read although nothing is taken from them: an
// instruction without a name is an error then. The parser's own trimming of white space is not
// used: on text that begins with a blank given as a character reference it trims more than there
// is.
constexpr int kParseFlags = rapidxml::parse_comment_nodes | rapidxml::parse_doctype_node |
                            rapidxml::parse_pi_nodes | rapidxml::parse_validate_closing_tags;

constexpr const char kEntryName[] = "SOPClass";

enum class FileState { Missing, Unreadable, Read, TooLarge };

// Line ends read as a single line feed on every platform, as XML wants it. Only regular files
// count: opening a pipe would wait for its writer.
FileState ReadWhole(const char* path, std::string& text) {
    const std::optional<uint64_t> size = platform::FileSize(path);
    if (!size) return FileState::Missing;
    if (*size > kMaxFileSize) return FileState::TooLarge;
    const platform::FileHandle file(platform::OpenForReading(path));
    if (!file) return FileState::Unreadable;
    text.resize(static_cast<size_t>(*size));
    if (std::fread(text.data(), 1, text.size(), file.get()) != text.size()) {
        return FileState::Unreadable;
    }
    auto end = text.begin();
    for (auto next = text.begin(); next != text.end(); ++next) {
        if (*next != '\r' || next + 1 == text.end() || next[1] != '\n') *end++ = *next;
    }
    text.erase(end, text.end());
    return FileState::Read;
}

void PrintParseError(const char* what) {
    PrintOut("SOPClassSet::load : xml parse error %s\n", what);
}

// A parsed file. Its nodes point into its text. Too large for a small stack.
class XmlFile {
  public:
    // False for a file that cannot be read or is beyond the limits. A missing file is an empty
    // document; of a broken one the document holds what precedes the outermost element with an
    // error.
    bool Read(const char* path) {
        const FileState state = ReadWhole(path, text_);
        if (state == FileState::Missing) return true;
        if (state == FileState::Unreadable) return false;
        if (state == FileState::TooLarge) {
            PrintParseError("file too large");
            return false;
        }
        if (!IsNestedAtMost(text_.c_str(), kMaxDepth)) {
            PrintParseError("elements nested too deeply");
            return false;
        }
        try {
            document_.parse<kParseFlags>(text_.data());
        } catch (const rapidxml::parse_error& error) {
            PrintParseError(error.what());
        }
        return true;
    }

    XmlDocument& Document() { return document_; }

  private:
    std::string text_;
    XmlDocument document_;
};

// The first element of this name from here on; instructions have names too, and do not count.
const XmlNode* ElementFrom(const XmlNode* node, std::string_view name) {
    while (node != nullptr && (node->type() != rapidxml::node_element ||
                               std::string_view(node->name(), node->name_size()) != name)) {
        node = node->next_sibling();
    }
    return node;
}

// Null when an element on the way to the list is missing.
const XmlNode* FindList(const XmlDocument& document, std::string_view rootName) {
    const std::string path = std::string(rootName) + ".SOPClassList";
    const XmlNode* element = &document;
    for (size_t start = 0; element != nullptr && start < path.size();) {
        const size_t point = std::min(path.find('.', start), path.size());
        const std::string_view name = std::string_view(path).substr(start, point - start);
        if (!name.empty()) element = ElementFrom(element->first_node(), name);
        start = point + 1;
    }
    return element;
}

std::string TextOf(const XmlNode& element) {
    constexpr std::string_view kWhiteSpace = " \t\r\n";
    const std::string_view text = element.value();
    const size_t first = text.find_first_not_of(kWhiteSpace);
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1));
}

std::string AttributeOf(const XmlNode& element, const char* name) {
    const rapidxml::xml_attribute<>* attribute = element.first_attribute(name);
    return attribute == nullptr ? std::string() : attribute->value();
}

SOPClass ReadEntry(const XmlNode& element) {
    return {TextOf(element), AttributeOf(element, "name"), AttributeOf(element, "service"),
            AttributeOf(element, "object"), AttributeOf(element, "mnemonic")};
}

}  // namespace

bool SOPClass::IsValid() const {
    return !uid.empty() && !service.empty() && (service != "STORE" || !mnemonic.empty());
}

SOPClassSet& SOPClassSet::Instance() {
    static SOPClassSet instance;
    return instance;
}

void SOPClassSet::ReadFile(const char* path, std::string_view rootName) {
    Clear();
    const auto file = std::make_unique<XmlFile>();
    if (!file->Read(path)) return;
    const XmlNode* list = FindList(file->Document(), rootName);
    if (list == nullptr) return;
    for (const XmlNode* entry = ElementFrom(list->first_node(), kEntryName); entry != nullptr;
         entry = ElementFrom(entry->next_sibling(), kEntryName)) {
        static_cast<void>(Insert(ReadEntry(*entry)));  // the first one of a UID counts
    }
}

bool SOPClassSet::Insert(SOPClass sopClass) {
    if (!sopClass.IsValid()) return false;
    const auto [entry, isNew] = entries_.try_emplace(sopClass.uid);
    if (isNew) entry->second = std::move(sopClass);
    return isNew;
}

const SOPClass* SOPClassSet::Find(std::string_view uid) const {
    const auto found = entries_.find(uid);
    return found == entries_.end() ? nullptr : &found->second;
}

}  // namespace pgkit
