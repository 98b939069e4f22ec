// What is known about UIDs and modalities as text, for whoever copies it into a buffer,
// from the built-in tables and from the site's entries. The texts last as long as the module.
#pragma once

#include <optional>
#include <string_view>

namespace pgkit {

// What stands in the place of a text that there is not.
inline constexpr std::string_view kNoMnemonic = "XX";
inline constexpr std::string_view kNoModalityName = "<NULL modality>";
inline constexpr std::string_view kNoUidName = "<NULL uid>";

// The texts of pgGetSOPClassUIDToModality, pgGetModalityName and pgGetUIDName.
std::optional<std::string_view> MnemonicOf(std::string_view sopClassUid);
std::optional<std::string_view> ModalityNameOf(std::string_view modality);
std::optional<std::string_view> UidNameOf(std::string_view uid);

}  // namespace pgkit
