// The image of a medium: a file to be burnt.
#pragma once

#include <string>

#include "disc/readme.h"

namespace pgtool {

class DiscImage {
  public:
    // Looks for a program that makes images.
    DiscImage();

    // Why no image can be made; empty when there is a program for it.
    std::string Complaint() const;

    // Makes the image of a folder: ISO 9660 level 1, without extensions. What is there under its
    // name is replaced in the end. Returns the reason why not, or an empty text.
    [[nodiscard]] std::string Make(const std::string& folder, const std::string& fileSetId,
                                   const std::string& image) const;

    // "D.iso" or, of several media, "D0002.iso".
    static std::string NameOf(const std::string& image, MediumNumber medium);

  private:
    std::string program_;
    bool isXorriso_ = false;
};

}  // namespace pgtool
