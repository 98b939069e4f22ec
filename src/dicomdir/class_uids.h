// SOP classes that the records of a DICOMDIR treat in a way of their own.
#pragma once

#include <string_view>

namespace pgkit {

inline constexpr std::string_view kMediaStorageDirectory = "1.2.840.10008.1.3.10";
inline constexpr std::string_view kRawDataStorage = "1.2.840.10008.5.1.4.1.1.66";

}  // namespace pgkit
