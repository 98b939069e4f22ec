// Instances come from their sources to the medium.
#pragma once

#include <string>
#include <vector>

#include "disc/catalogue.h"

namespace pgtool {

struct CopyResult {
    std::string complaint;        // empty when all went well
    bool isTargetsFault = false;  // nothing else can be written either
};

class Copier {
  public:
    Copier();

    // target must not exist, and its folder must. An interruption ends it, with a part written.
    [[nodiscard]] CopyResult Transfer(const DiscInstance& instance, const std::string& target);

  private:
    [[nodiscard]] CopyResult Copy(const DiscInstance& instance, const std::string& target);

    std::vector<char> block_;
};

}  // namespace pgtool
