// SOP classes that a site adds to the built-in tables, read from an XML file beside the host
// program.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace pgkit {

struct SOPClass {
    std::string uid;
    std::string name;
    std::string service;   // "STORE" marks a storage class
    std::string object;    // the directory record category: "IMAGE", "REPORT", "RTDOSE" ...
    std::string mnemonic;  // of the modality; storage classes need one

    bool IsValid() const;
    bool operator==(const SOPClass&) const = default;
};

class SOPClassSet {
  public:
    using Entries = std::map<std::string, SOPClass, std::less<>>;

    // The one set of the library.
    static SOPClassSet& Instance();

    // Replaces all entries by those of the file's element rootName.SOPClassList. A missing file has
    // none and prints nothing, a broken one is reported on the standard output.
    void ReadFile(const char* path, std::string_view rootName);

    void Clear() { entries_.clear(); }

    // False, with nothing changed, for an invalid class or a UID that the set has already.
    [[nodiscard]] bool Insert(SOPClass sopClass);

    // Null when the set has no such UID.
    const SOPClass* Find(std::string_view uid) const;

    // In ascending byte order of the UIDs.
    const Entries& GetEntries() const { return entries_; }

  private:
    Entries entries_;
};

}  // namespace pgkit
