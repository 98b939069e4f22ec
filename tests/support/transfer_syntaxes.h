// The UIDs of the native transfer syntaxes.
#pragma once

namespace pgkit_test {

constexpr const char* kImplicitLittleUid = "1.2.840.10008.1.2";
constexpr const char* kExplicitLittleUid = "1.2.840.10008.1.2.1";
constexpr const char* kExplicitBigUid = "1.2.840.10008.1.2.2";

}  // namespace pgkit_test
