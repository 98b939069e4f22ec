// The built-in media application profiles: which kinds of files a medium may carry.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace pgkit {

// The distinct rule lists; profiles share them.
enum class RuleList : uint8_t {
    None,
    XaBcImage,
    Xa1kImage,
    Xa1kNonImage,
    UsSingleFrameImage,
    UsMultiFrameImage,
    UsPhotometric,
    CtMrImage,
    CtMrPhotometric,
    GeneralImage,
    GeneralNonImage,
    JpegImage,
    Jpeg2000Image,
    Mpeg2Image,
    DentalImage
};

struct ProfileRule {
    RuleList list;
    std::string_view match;     // a SOP class, or a photometric interpretation; "*" is any
    std::string_view modality;  // empty is any
    std::string_view transferSyntax;
};

struct Profile {
    std::string_view name;
    RuleList image;
    RuleList photometric;
    RuleList nonImage;
};

// All of them, in the order of the table.
std::span<const Profile> Profiles();

// Null when there is no profile of exactly this name.
const Profile* FindProfile(std::string_view name);

// The rules of a list in order; none for RuleList::None.
std::span<const ProfileRule> RulesOf(RuleList list);

}  // namespace pgkit
