// The UIDs that commands look at or write, by names.
#pragma once

namespace pgtool::uids {

inline constexpr const char* kMediaStorageDirectory = "1.2.840.10008.1.3.10";

// Transfer syntaxes.
inline constexpr const char* kImplicitLittle = "1.2.840.10008.1.2";
inline constexpr const char* kExplicitLittle = "1.2.840.10008.1.2.1";
inline constexpr const char* kDeflated = "1.2.840.10008.1.2.1.99";
inline constexpr const char* kExplicitBig = "1.2.840.10008.1.2.2";

}  // namespace pgtool::uids
