// The fuzz targets. Each takes any bytes, uses the library with them as a host would, and throws a
// Violation when a promise does not hold. What the bytes are is said with each.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

namespace pgkit_fuzz {

using Bytes = std::span<const uint8_t>;

struct Target {
    std::string_view name;
    void (*run)(Bytes input);
};

// A data set file, open flags and load limit: every getter, the dump, the copy.
void Read(Bytes input);
// A data set file and a write mode: saved, read again and saved again, nothing changes.
void RoundTrip(Bytes input);
// A data set file, a write mode and whether it is edited: saved over itself, twice. It reads back
// equal, and the tree keeps its values.
void SaveOver(Bytes input);
// A data set file and a series of edits; what comes of them is dumped and saved, and reads back
// equal.
void Edit(Bytes input);

// A DICOMDIR: browsed, objects removed, what is left written as a DICOMDIR again.
void Browse(Bytes input);
// A file on a medium that is to have a DICOMDIR, with options and profiles, also as the elements of
// a kind that has keys of its own. What was written can be browsed and changed.
void Create(Bytes input);
// A DICOMDIR that is to be changed: a study is removed, a file added. What comes of it can be
// changed again.
void Update(Bytes input);
// A file, or what is in the sequences of one, beside good files on a medium, or a DICOMDIR that one
// joins: whatever is written, a browse finds all that was accepted, once and as what it was, and
// the good files have the records that they have alone.
void Medium(Bytes input);
// An image whose icon becomes a bitmap and an item again, or what an imaging module hands out.
void Icon(Bytes input);
// A private dictionary file and a tag to be looked up in it.
void PrivateDictionaryFile(Bytes input);
// An XML file of SOP classes: loaded, saved and loaded again, nothing changes.
void SOPClassFile(Bytes input);
// A data set file, used through the flat functions alone.
void Accessors(Bytes input);
// A data set, or what is deflated already: read as a deflated file, saved and read again.
void Deflate(Bytes input);
// A data set file: the pieces of its frames, in the file and in memory.
void Frames(Bytes input);
// A data set file, from the file, from memory and through a function of the host; saved to all of
// these. All are the same.
void Elsewhere(Bytes input);
// A text value, or UTF-8, and a character set: read and written both ways.
void Text(Bytes input);
// A data set file that becomes JSON, or JSON, as it comes or a rich one that is changed in places,
// that becomes a tree: what was written reads the same.
void Json(Bytes input);

inline constexpr Target kTargets[] = {
    {"read", Read},
    {"round_trip", RoundTrip},
    {"save_over", SaveOver},
    {"edit", Edit},
    {"browse", Browse},
    {"create", Create},
    {"update", Update},
    {"medium", Medium},
    {"icon", Icon},
    {"private_dictionary", PrivateDictionaryFile},
    {"sop_classes", SOPClassFile},
    {"accessors", Accessors},
    {"text", Text},
    {"deflate", Deflate},
    {"frames", Frames},
    {"elsewhere", Elsewhere},
    {"json", Json},
};

// Null when there is no such target.
constexpr const Target* FindTarget(std::string_view name) {
    const Target* const found = std::ranges::find(kTargets, name, &Target::name);
    return found == std::ranges::end(kTargets) ? nullptr : found;
}

// Does not compile when there is no such target.
consteval const Target& TargetNamed(std::string_view name) { return *FindTarget(name); }

}  // namespace pgkit_fuzz
