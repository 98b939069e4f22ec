// De-identifies data sets.
#pragma once

#include <string>
#include <vector>

#include "anonymize/new_uids.h"
#include "anonymize/profile.h"
#include "pgkit/data_set.hpp"

namespace pgtool {

class Anonymizer {
  public:
    Anonymizer(const ProfileOptions& options, const NewUids& uids)
        : options_(options), uids_(uids) {}

    // Applies the profile to all elements, those of items included, and marks the data set as
    // de-identified. Public elements that no table knows are removed, as private ones are, and
    // group lengths, which would no longer be right.
    void Apply(pgkit::data_set& root) const;

  private:
    // Returns the items that are left in an item, which are to be treated next.
    struct Pending {
        pgkit::item item;
        bool isDummy;  // nothing in it is to be kept
    };
    void ApplyToItem(const Pending& pending, std::vector<Pending>& next) const;
    pgkit::visit ApplyToElement(const Pending& pending, pgkit::element& element,
                                const std::vector<pgkit::tag>& safe) const;
    void Mark(pgkit::data_set& root) const;

    const ProfileOptions options_;
    const NewUids& uids_;
};

// What a person should look at before the file is given away: texts burnt into pixels, recognizable
// faces, documents. Asked before the profile is applied.
std::vector<std::string> Warnings(const pgkit::data_set& root);

}  // namespace pgtool
