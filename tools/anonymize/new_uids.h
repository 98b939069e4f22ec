// New UIDs in the place of those of data sets.
#pragma once

#include <string>

namespace pgtool {

// The same UID always becomes the same new one, as long as the key is the same; without the key
// nobody can tell which became which, nor try out whether one became another. Nothing has to be
// remembered for that: the new UID is made of a keyed digest of the old one.
class NewUids {
  public:
    // A new random key, for one run.
    NewUids();
    // The key in a file, one line of hexadecimal digits; a file that does not exist is made, with a
    // new key, for nobody but its user to read. Returns the reason why not, or an empty text.
    [[nodiscard]] std::string UseKeyFile(const std::string& path);

    // "2.25." and a decimal number of at most 39 digits, a UUID. UIDs of the standard itself
    // (1.2.840.10008), which name nothing of anybody's, and empty ones stay as they are.
    std::string Of(const std::string& uid) const;

  private:
    std::string key_;
};

}  // namespace pgtool
