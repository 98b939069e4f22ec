// Streams beyond 4 GiB, where positions no longer fit the 32 bits of a node. The files are sparse:
// they hold a few bytes around the boundary.
#include <gtest/gtest.h>

#include <string>

#include "codec/encoded.h"
#include "platform/platform.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
namespace platform = pgkit::platform;

constexpr uint64_t kFourGiB = 0x1'0000'0000;

class LargeStream : public testing::Test {
  protected:
    // A file that holds these bytes at a position, and nothing before.
    Stream FileWith(const Bytes& bytes, uint64_t position) {
        const std::string path = directory_.Path("large");
        {
            const Stream stream = OpenStream(path, "wb");
            EXPECT_TRUE(platform::Seek(stream.get(), position));
            EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), stream.get()), bytes.size());
        }
        return OpenStream(path, "rb");
    }

    DataSet root_{pgAllocateDataSetNode()};
    TempDir directory_;
};

TEST_F(LargeStream, ValueAcrossFourGiBIsCopiedWhole) {
    const Bytes value(64, 'v');
    const Stream source = FileWith(value, kFourGiB - 32);
    SetSource(*NewElement(*root_, 0x0009, 0x1001, VR_OB, ""), source.get(),
              static_cast<uint32_t>(kFourGiB - 32), 64);
    const Encoded encoded = Encode(*root_, kExplicitLittle);
    EXPECT_EQ(encoded.result, 0u);
    EXPECT_EQ(encoded.bytes, StreamBuilder().Header(0x0009, 0x1001, "OB", 64).Append(value).Data());
}

TEST_F(LargeStream, FragmentsAcrossFourGiBAreCopiedWhole) {
    const StreamBuilder fragments =
        StreamBuilder().Item(0).Item(40).Zeros(40).Item(4).Text("abcd").EndSequence();
    const Stream source = FileWith(fragments.Data(), kFourGiB - 32);
    PGX_Node* pixelData = root_->InsertEncodedPixelDataNode(0);
    pixelData->fragments = reinterpret_cast<FragmentEntry*>(uintptr_t{1});
    pixelData->file = source.get();
    pixelData->fileOffset = static_cast<uint32_t>(kFourGiB - 32);
    const Encoded encoded = Encode(*root_, kExplicitLittle);
    EXPECT_EQ(encoded.result, 0u);
    EXPECT_EQ(
        encoded.bytes,
        StreamBuilder().Header(0x7FE0, 0x0010, "OB", kUndefined).Append(fragments.Data()).Data());
}

TEST_F(LargeStream, IsWrittenToWhereItStandsAndMarksThePositions) {
    PGX_Node* name = root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    const std::string path = directory_.Path("large");
    {
        const Stream output = OpenStream(path, "wb");
        ASSERT_TRUE(platform::Seek(output.get(), kFourGiB + 5));
        EXPECT_EQ(root_->WriteNodeEx(output.get(), kExplicitLittle), 0u);
        EXPECT_EQ(platform::Tell(output.get()), kFourGiB + 5 + 16);
    }
    EXPECT_EQ(name->fileOffset, 0xFFFFFFFFu);
    const Stream written = OpenStream(path, "rb");
    ASSERT_TRUE(platform::Seek(written.get(), kFourGiB + 5));
    Bytes bytes(16);
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), written.get()), bytes.size());
    EXPECT_EQ(bytes, StreamBuilder().Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data());
}

TEST_F(LargeStream, OffsetIsPatchedJustBelowFourGiB) {
    const Stream empty = FileWith(Bytes(16), kFourGiB - 16);
    const uint32_t none = 0;
    PGX_Node* offset = root_->InsertNode(0x0004, 0x1200, &none, 4);
    PGX_Node target;
    target.fileOffset = 0x20;
    offset->offsetPending = 1;
    offset->offsetTarget = &target;
    offset->fileOffset = static_cast<uint32_t>(kFourGiB - 12);
    const Stream file = OpenStream(directory_.Path("large"), "r+b");
    EXPECT_EQ(root_->WriteNodeOffsetEx(file.get()), 0u);
    uint32_t written = 0;  // in the byte order of the machine
    ASSERT_TRUE(platform::Seek(file.get(), kFourGiB - 4));
    EXPECT_EQ(std::fread(&written, 1, sizeof written, file.get()), sizeof written);
    EXPECT_EQ(written, 0x18u);
}

}  // namespace
