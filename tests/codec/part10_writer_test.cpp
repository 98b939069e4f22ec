#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <filesystem>
#include <string>
#include <tuple>

#include "codec/encoded.h"
#include "support/captured.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/transfer_syntaxes.h"
#include "support/tree.h"
#include "support/write_results.h"

namespace {

using namespace pgkit_test;

constexpr const char* kImplicitLittleUid = "1.2.840.10008.1.2";
constexpr const char* kExplicitLittleUid = "1.2.840.10008.1.2.1";
constexpr const char* kExplicitBigUid = "1.2.840.10008.1.2.2";
constexpr const char* kJpegLosslessUid = "1.2.840.10008.1.2.4.70";

// ---- The transfer syntax and the mode ----------------------------------------------------------

struct Reconciled {
    std::string uid;
    bool explicitVr;
    bool littleEndian;
};

// What becomes of a transfer syntax that is written with a mode.
Reconciled Reconcile(std::string uid, uint32_t mode) {
    const bool little = (mode & PG_LITTLE_ENDIAN) != 0;
    const bool big = (mode & PG_BIG_ENDIAN) != 0;
    const bool explicitVr = (mode & PG_EXPLICIT_VR) != 0;
    const bool implicitVr = (mode & PG_IMPLICIT_VR) != 0;
    if (uid.empty()) return {uid, explicitVr || !implicitVr, little};
    if (uid == kJpegLosslessUid) return {uid, true, true};

    const bool takesLittle = !little && !big && uid != kExplicitBigUid;
    const bool takesExplicit = !explicitVr && !implicitVr && uid != kImplicitLittleUid;
    if (little && explicitVr) {
        uid = kExplicitLittleUid;
    } else if (little && implicitVr) {
        uid = kImplicitLittleUid;
    } else if (big && explicitVr) {
        uid = kExplicitBigUid;
    }
    return {uid, explicitVr || takesExplicit, little || takesLittle};
}

// The element that tells the byte order, and a sequence, which tells the mode of the lengths.
void AddBody(PGX_Node& root) {
    AddItem(*root.InsertNode(0x0008, 0x1140, nullptr, 0))->InsertNode(0x0020, 0x0013, "1 ", 2);
    const uint16_t rows = 0x0102;
    root.InsertNode(0x0028, 0x0010, &rows, 2);
}

StreamBuilder Body(const Reconciled& reconciled, bool undefinedLengths) {
    StreamBuilder body(reconciled.explicitVr ? VrMode::Explicit : VrMode::Implicit,
                       reconciled.littleEndian ? Order::Little : Order::Big);
    if (undefinedLengths) {
        body.Sequence(0x0008, 0x1140).Item().Element(0x0020, 0x0013, "IS", "1 ");
        body.EndItem().EndSequence();
    } else {
        body.Sequence(0x0008, 0x1140, 18).Item(10).Element(0x0020, 0x0013, "IS", "1 ");
    }
    return body.ElementUS(0x0028, 0x0010, 0x0102);
}

// Group 0002 with a version, whose header is a long one, and the UID. Its length counts explicit
// headers even when they are written as implicit ones.
Bytes MetaInformation(const Reconciled& reconciled, uint32_t mode) {
    const bool implicitVr = (mode & PG_META_IMPLICIT_VR) != 0;
    const bool countsExplicit = (mode & PG_META) != 0 || reconciled.explicitVr;
    StreamBuilder meta(implicitVr ? VrMode::Implicit : VrMode::Explicit);
    uint32_t length = 8 + 2 + (countsExplicit ? 4 : 0);
    const std::string uid = PaddedUid(reconciled.uid);
    if (!uid.empty()) length += 8 + static_cast<uint32_t>(uid.size());
    meta.ElementUL(0x0002, 0x0000, length);
    meta.Element(0x0002, 0x0001, "OB", std::string_view("\0\1", 2));
    if (!uid.empty()) meta.Element(0x0002, 0x0010, "UI", uid);
    return meta.Data();
}

Bytes ExpectedFile(const Reconciled& reconciled, uint32_t mode) {
    StreamBuilder file;
    if ((mode & (PG_META | PG_META_IMPLICIT_VR)) != 0) {
        file.Preamble().Append(MetaInformation(reconciled, mode));
    }
    return file.Append(Body(reconciled, (mode & PG_UNDEFINED_LENGTHS) != 0).Data()).Data();
}

class Reconciliation : public testing::TestWithParam<const char*> {
  protected:
    const TempDir directory_;
    const std::string path_ = directory_.Path("file.dcm");
};

TEST_P(Reconciliation, OfEveryModeShowsInTheElementAndInTheBytes) {
    for (uint32_t mode = 0; mode < 0x80; ++mode) {
        const std::string uid = GetParam();
        DataSet root(pgAllocateDataSetNode());
        root->InsertNode(0x0002, 0x0001, "\0\1", 2);
        if (!uid.empty()) {
            root->InsertNode(0x0002, 0x0010, uid.data(), static_cast<uint32_t>(uid.size()));
        }
        AddBody(*root);
        ASSERT_EQ(root->SaveDataSetAsEx(path_.c_str(), static_cast<int32_t>(mode)), 0u);

        const Reconciled expected = Reconcile(uid, mode);
        EXPECT_EQ(ReadFile(path_), ExpectedFile(expected, mode)) << mode;
        char text[65] = "";
        if (!uid.empty()) root->FindNode(0x0002, 0x0010)->GetStringValue(text, 64);
        EXPECT_EQ(text, expected.uid) << mode;
    }
}

INSTANTIATE_TEST_SUITE_P(Uids, Reconciliation,
                         testing::Values(kExplicitBigUid, kExplicitLittleUid, kImplicitLittleUid,
                                         kJpegLosslessUid, ""));

// ---- Single cases, spelt out -------------------------------------------------------------------

class Save : public testing::Test {
  protected:
    uint32_t SaveAs(uint32_t mode) {
        return root_->SaveDataSetAsEx(path_.c_str(), static_cast<int32_t>(mode));
    }

    void SetTransferSyntax(std::string_view uid) {
        root_->InsertNode(0x0002, 0x0010, uid.data(), static_cast<uint32_t>(uid.size()));
    }

    DataSet root_{pgAllocateDataSetNode()};
    TempDir directory_;
    const std::string path_ = directory_.Path("file.dcm");
};

TEST_F(Save, WritesPreamblePrefixMetaGroupAndDataSet) {
    SetTransferSyntax(kExplicitBigUid);
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(SaveAs(kPart10Explicit), 0u);
    EXPECT_EQ(ReadFile(path_), StreamBuilder()
                                   .Zeros(128)
                                   .Text("DICM")
                                   .ElementUL(0x0002, 0x0000, 28)
                                   .Element(0x0002, 0x0010, "UI", PaddedUid(kExplicitLittleUid))
                                   .Element(0x0010, 0x0010, "PN", "DOE^JOHN")
                                   .Data());
}

TEST_F(Save, LeavesACompressedSyntaxExplicitLittleEndian) {
    SetTransferSyntax(kJpegLosslessUid);
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(SaveAs(kPart10Implicit), 0u);
    EXPECT_EQ(ReadFile(path_), StreamBuilder()
                                   .Preamble()
                                   .ElementUL(0x0002, 0x0000, 30)
                                   .Element(0x0002, 0x0010, "UI", PaddedUid(kJpegLosslessUid))
                                   .Element(0x0010, 0x0010, "PN", "DOE^JOHN")
                                   .Data());
}

TEST_F(Save, WithoutTransferSyntaxAndByteOrderIsBigEndianBehindItsMetaGroup) {
    root_->InsertNode(0x0002, 0x0001, "\0\1", 2);
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(SaveAs(PG_META), 0u);
    EXPECT_EQ(ReadFile(path_), StreamBuilder()
                                   .Preamble()
                                   .ElementUL(0x0002, 0x0000, 14)
                                   .Element(0x0002, 0x0001, "OB", std::string_view("\0\1", 2))
                                   .Append(StreamBuilder(VrMode::Explicit, Order::Big)
                                               .Element(0x0010, 0x0010, "PN", "DOE^JOHN")
                                               .Data())
                                   .Data());
}

TEST_F(Save, InModeZeroKeepsTheEncodingOfATreeThatWasRead) {
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    for (const auto& [flags, vr, order] :
         {std::tuple(kExplicitLittle, VrMode::Explicit, Order::Little),
          std::tuple(kImplicitLittle, VrMode::Implicit, Order::Little),
          std::tuple(kExplicitBig, VrMode::Explicit, Order::Big)}) {
        root_->syntaxFlags = flags;
        EXPECT_EQ(SaveAs(0), 0u);
        EXPECT_EQ(ReadFile(path_),
                  StreamBuilder(vr, order).Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data());
        root_->syntaxFlags = flags | PG_META;
        EXPECT_EQ(SaveAs(0), 0u);
        EXPECT_EQ(
            ReadFile(path_),
            StreamBuilder(vr, order).Preamble().Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data());
    }
}

TEST_F(Save, InModeZeroWritesATreeBuiltInMemoryExplicitBigEndian) {
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(SaveAs(0), 0u);
    EXPECT_EQ(ReadFile(path_), StreamBuilder(VrMode::Explicit, Order::Big)
                                   .Element(0x0010, 0x0010, "PN", "DOE^JOHN")
                                   .Data());
}

TEST_F(Save, UpdatesGroupLengthsThatExist) {
    root_->InsertNode(0x0010, 0x0000, nullptr, 0);
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(SaveAs(kExplicitLittle), 0u);
    EXPECT_EQ(ReadFile(path_), StreamBuilder()
                                   .ElementUL(0x0010, 0x0000, 16)
                                   .Element(0x0010, 0x0010, "PN", "DOE^JOHN")
                                   .Data());
}

TEST_F(Save, CountsTheUidOnlyUpToItsEnd) {
    SetTransferSyntax(std::string_view("1.2.840.10008.1.2\0junk", 22));
    EXPECT_EQ(SaveAs(PG_META | PG_LITTLE_ENDIAN), 0u);
    EXPECT_EQ(root_->FindNode(0x0002, 0x0010)->length, 22u);
    EXPECT_EQ(SaveAs(kPart10Explicit), 0u);
    EXPECT_EQ(root_->FindNode(0x0002, 0x0010)->length, 20u);
}

TEST_F(Save, OfAnEmptyDataSetIsAnEmptyFile) {
    EXPECT_EQ(SaveAs(kExplicitLittle), 0u);
    EXPECT_TRUE(ReadFile(path_).empty());
    EXPECT_EQ(SaveAs(kPart10Explicit), 0u);
    EXPECT_EQ(ReadFile(path_), StreamBuilder().Preamble().Data());
}

TEST_F(Save, ReplacesWhatTheFileHeld) {
    directory_.Write("file.dcm", std::string(1000, 'x'));
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    EXPECT_EQ(SaveAs(kExplicitLittle), 0u);
    EXPECT_EQ(ReadFile(path_).size(), 16u);
}

TEST_F(Save, OfAnElementWritesIt) {
    PGX_Node* element = root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    const Printed printed = CapturePrinted(
        [&] { EXPECT_EQ(element->SaveDataSetAsEx(path_.c_str(), kExplicitLittle), 0u); });
    EXPECT_EQ(printed.out,
              "pgComputeLengths: can only work with NT_DataSet type\n"
              "AddGroupLengths: can only work with NT_DataSet type\n");
    EXPECT_EQ(ReadFile(path_), StreamBuilder().Element(0x0010, 0x0010, "PN", "DOE^JOHN").Data());
}

// ---- Failures ----------------------------------------------------------------------------------

TEST_F(Save, ReportsAFileThatCannotBeCreated) {
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    const std::string nowhere = (std::filesystem::path(path_) / "file").string();
    const Printed printed = CapturePrinted([&] {
        EXPECT_EQ(root_->SaveDataSetAsEx(nowhere.c_str(), kExplicitLittle), kCannotCreate);
    });
    EXPECT_EQ(printed.err, "pgSaveDataSetAsEx : unable to open " + nowhere + "\n");
    EXPECT_EQ(printed.out, "");
}

TEST_F(Save, ReportsAFileWithoutName) {
    const Printed printed = CapturePrinted(
        [&] { EXPECT_EQ(root_->SaveDataSetAsEx(nullptr, kExplicitLittle), kCannotCreate); });
    EXPECT_EQ(printed.err, "pgSaveDataSetAsEx : unable to open \n");
}

TEST_F(Save, LeavesAPartialFileWhereTheEncoderFails) {
    root_->InsertNode(0x0008, 0x0060, "CT", 2);
    NewElement(*root_, 0x0009, 0x1001, VR_LO, std::string(65536, 'x'));
    const Printed printed =
        CapturePrinted([&] { EXPECT_EQ(SaveAs(kExplicitLittle), kValueTooLong); });
    EXPECT_EQ(printed.err + printed.out, "");
    EXPECT_EQ(ReadFile(path_).size(), 16u);
}

TEST_F(Save, ReportsAValueThatCannotBeRead) {
    const Stream source = OpenStream(directory_.Write("source", "abc"), "rb");
    SetSource(*root_->InsertNode(0x0010, 0x0010, nullptr, 0), source.get(), 1, 100);
    EXPECT_EQ(SaveAs(kExplicitLittle), kReadFailed);
}

TEST_F(Save, MayWriteToADevice) {
    const char* device = std::filesystem::exists("/dev/null") ? "/dev/null" : "NUL";
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    const Printed printed = CapturePrinted([&] {
        EXPECT_EQ(root_->SaveDataSetAsEx(device, kExplicitLittle), 0u);
        root_->SaveDataSetAs(0, device);
    });
    EXPECT_EQ(printed.err + printed.out, "");
}

TEST_F(Save, HasAFormWithoutResult) {
    root_->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    root_->SaveDataSetAs(path_.c_str(), kExplicitLittle);
    EXPECT_EQ(ReadFile(path_).size(), 16u);
    const Printed printed = CapturePrinted([&] { root_->SaveDataSetAs("", kExplicitLittle); });
    EXPECT_EQ(printed.err, "pgSaveDataSetAsEx : unable to open \n");
}

// ---- The older form ----------------------------------------------------------------------------

class OlderSave : public Save {
  protected:
    void SetUp() override {
        SetTransferSyntax(kExplicitLittleUid);
        AddBody(*root_);
        root_->syntaxFlags = kPart10Explicit;
    }
};

TEST_F(OlderSave, WritesABareImplicitBigEndianDataSet) {
    root_->SaveDataSetAs(0, path_.c_str());
    EXPECT_EQ(ReadFile(path_), Body({"", false, false}, false).Data());
    EXPECT_EQ(root_->FindNode(0x0002, 0x0000)->GetULValue(), 28u);
}

TEST_F(OlderSave, WritesDelimitersWhenAskedFor) {
    root_->SaveDataSetAs(1, path_.c_str());
    EXPECT_EQ(ReadFile(path_), Body({"", false, false}, true).Data());
    root_->SaveDataSetAs(-7, path_.c_str());
    EXPECT_EQ(ReadFile(path_), Body({"", false, false}, true).Data());
}

TEST_F(OlderSave, ReportsAFileThatCannotBeCreated) {
    const std::string nowhere = (std::filesystem::path(path_) / "file").string();
    const Printed printed = CapturePrinted([&] { root_->SaveDataSetAs(0, nowhere.c_str()); });
    EXPECT_EQ(printed.err, "pgSaveDataSetAs : unable to open " + nowhere + "\n");
}

}  // namespace
