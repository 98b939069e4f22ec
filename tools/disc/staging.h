// The folder in which a disc grows, until it is complete.
#pragma once

#include <string>

namespace pgtool {

// A folder DIR that does not exist is made as a whole: the disc grows beside it, in a folder of its
// name with ".new" and a number behind it, which in the end gets the name. In a folder that exists,
// and is empty, the disc grows in the folder PGTOOL.NEW, whose content moves up in the end, the
// DICOMDIR last. Nothing that stands anywhere is ever replaced.
class Staging {
  public:
    explicit Staging(std::string directory);
    // Removes what is not in place.
    ~Staging();
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;

    // Why there can be no disc in that folder; empty when there can.
    std::string Complaint() const;

    // Makes the folder. Returns the reason why not, or an empty text.
    [[nodiscard]] std::string Begin();
    // Where to write.
    const std::string& Path() const { return path_; }
    // Once everything is written and closed: the same.
    [[nodiscard]] std::string PutInPlace();

  private:
    [[nodiscard]] std::string MoveUp();

    std::string directory_;
    std::string path_;
    bool isInside_ = false;
};

}  // namespace pgtool
