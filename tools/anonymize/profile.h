// The Basic Application Level Confidentiality Profile of PS3.15, edition 2024b: what becomes of
// each attribute.
#pragma once

#include <cstddef>
#include <string>

#include "pgkit/cpp/tag.hpp"

namespace pgtool {

constexpr const char* kProfileEdition = "2024b";

struct ProfileOptions {
    bool retainUids = false;
    bool retainDates = false;
    bool modifyDates = false;
    int days = 0;  // by which dates are moved
    bool retainDevice = false;
    bool retainInstitution = false;
    bool retainPatient = false;
    bool retainSafePrivate = false;
};

enum class Action {
    Keep,
    Remove,
    Empty,    // a value of no length
    Dummy,    // a value that tells nothing
    NewUid,   // of a sequence: that of the UIDs in it
    MoveDate  // by the days of the options
};

// What becomes of an attribute. Where the profile leaves the choice to the type of the attribute in
// its information object (X/Z/D), the last one is taken: that suits every type, and tells nothing
// either. "Clean" of an option needs somebody who reads the text: the attribute is treated as
// without the option.
Action ActionFor(pgkit::tag tag, const ProfileOptions& options);

// The attributes of the table; patterns for many tags count once.
size_t ProfileRowCount();

}  // namespace pgtool
