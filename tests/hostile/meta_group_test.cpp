// File Meta Information that lies about itself.
#include "hostile/hostile_file.h"

namespace {

using namespace pgkit_test;

constexpr const char* kName = "(0010,0010)PN:8]";

StreamBuilder WithGroupLength(uint32_t length) {
    StreamBuilder stream;
    stream.Preamble().ElementUL(0x0002, 0x0000, length);
    stream.MetaElement(0x0010, "UI", PaddedUid("1.2.840.10008.1.2.1"));
    return stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
}

TEST(HostileMetaGroup, LengthIsNotBelieved) {
    for (const uint32_t length : {0u, 1u, 28u, 0x7FFFFFFFu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        EXPECT_EQ(UseBytes(WithGroupLength(length)),
                  "[(0002,0000)UL:4 (0002,0010)UI:20 " + std::string(kName));
    }
}

TEST(HostileMetaGroup, WithoutEndIsNoDataSet) {
    StreamBuilder stream;
    stream.Preamble();
    for (int i = 0; i < 100000; ++i)
        stream.MetaElement(0x0012, "UI", "1.22");
    EXPECT_EQ(UseBytes(stream), "null");
}

TEST(HostileMetaGroup, ValueOfFourGibibytesIsNoDataSet) {
    for (const uint32_t length : {0x7FFFFFFFu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        StreamBuilder stream;
        stream.Preamble().Header(0x0002, 0x0001, "OB", length).Text("ab");
        EXPECT_EQ(UseBytes(stream), "null");
    }
}

TEST(HostileMetaGroup, TransferSyntaxOf65535BytesIsAnyOther) {
    StreamBuilder stream;
    stream.Preamble().MetaElement(0x0010, "UI", std::string(65535, '1'));
    stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(UseBytes(stream), "[(0002,0010)UI:65535 " + std::string(kName));
}

TEST(HostileMetaGroup, TransferSyntaxMayHoldAnything) {
    for (const std::string& uid :
         {std::string(64, '\0'), std::string(64, ' '), std::string(64, '\xFF'),
          std::string("1.2.840.10008.1.2.1\x01")}) {
        StreamBuilder stream;
        stream.Preamble().MetaElement(0x0010, "UI", uid);
        stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
        EXPECT_TRUE(UseBytes(stream).ends_with(kName)) << uid;
    }
}

TEST(HostileMetaGroup, TagOfAllOnesIsNoDataSet) {
    StreamBuilder stream;
    stream.Preamble().MetaElement(0x0010, "UI", PaddedUid("1.2.840.10008.1.2.1"));
    stream.Append(Bytes(16, 0xFF));
    EXPECT_EQ(UseBytes(stream), "null");
}

TEST(HostileMetaGroup, MayHaveSequencesThatAreNotDescendedInto) {
    StreamBuilder stream;
    stream.Preamble().Header(0x0002, 0x0100, "SQ", 8).Item(0);
    stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(UseBytes(stream), "[(0002,0100)SQ:8{} " + std::string(kName));
}

}  // namespace
