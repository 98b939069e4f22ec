// The private dictionary: elements of manufacturers' private groups, read from a text file.
#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pgkit {

struct PrivateDictionaryEntry {
    uint16_t group;
    uint16_t element;   // as the file has it: usually the low byte, the block is the creator's
    uint32_t valueRep;  // VR_Unknown when the file's text names none
    std::string name;
    std::string creator;  // trimmed, upper case
};

// A private creator element seen in a data set: it reserves the elements block00 to blockFF. Its
// group is not kept: within one data set a block is known by its number alone. So the trap is that
// creators of two odd groups may have the same block. The first of them that the dictionary knows
// in an element's group then answers for the element, even if it is the other group's.
struct PrivateCreator {
    std::string text;  // trimmed, upper case
    uint16_t block;
};

class PrivateDictionary {
  public:
    // The one dictionary of the library.
    static PrivateDictionary& Instance();

    // Replaces all entries by those of a file. False when there is no such path, or it is a folder.
    // There are no entries when it throws.
    [[nodiscard]] bool ReadFile(const char* path);
    void Clear();

    // The first entry with exactly these numbers, whoever its creator; null when there is none.
    const PrivateDictionaryEntry* FindExact(uint16_t group, uint16_t element) const;

    // The first entry of a creator's element; creator is trimmed and in upper case.
    const PrivateDictionaryEntry* FindByCreator(uint16_t group, uint16_t element,
                                                std::string_view creator) const;

  private:
    struct CreatorKey {
        uint32_t tag;
        std::string_view creator;
        bool operator==(const CreatorKey&) const = default;
    };
    struct CreatorKeyHash {
        size_t operator()(const CreatorKey& key) const;
    };

    [[nodiscard]] bool ReadLines(const char* path);
    void AddLine(const char* line);

    // In file order. A list never moves its entries, to which the indexes refer, and takes no
    // memory while it is empty: the module can be loaded without any.
    std::list<PrivateDictionaryEntry> entries_;
    std::unordered_map<uint32_t, const PrivateDictionaryEntry*> firstByTag_;
    std::unordered_map<CreatorKey, const PrivateDictionaryEntry*, CreatorKeyHash> firstByCreator_;
};

// The entry for an element of a private block: the first of the creators that reserved its block
// and has such an entry wins. Null when there is none, or the element is in no block.
const PrivateDictionaryEntry* FindPrivateElement(uint16_t group, uint16_t element,
                                                 const std::vector<PrivateCreator>& creators);

}  // namespace pgkit
