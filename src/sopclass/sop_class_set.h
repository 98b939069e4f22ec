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

    // Replaces all entries by those of the file's element rootName.SOPClassList. A missing file
    // gives none and prints nothing, a broken one is reported on the standard output.
    void load(const char* path, std::string_view rootName);

    // Replaces the SOPClass elements of the file's element rootName.SOPClassList, which is made
    // when it is missing, by the entries. All other elements, attributes, comments and instructions
    // stay. False when the file cannot be read or is beyond the limits of load, and left alone, or
    // cannot be written.
    bool save(const char* path, std::string_view rootName) const;

    void Clear() { entries_.clear(); }

    // False, with nothing changed, for an invalid class or a UID that the set has already.
    bool Insert(SOPClass sopClass);

    // Null when the set has no such UID.
    const SOPClass* Find(std::string_view uid) const;

    // In ascending byte order of the UIDs.
    const Entries& GetEntries() const { return entries_; }

  private:
    Entries entries_;
};

}  // namespace pgkit
