#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/run_pgtool.h"

namespace {

using pgkit_test::Finished;
using pgkit_test::Pgtool;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(PgtoolUid, StorageClassHasMnemonicAndCategories) {
    const Finished run = Pgtool({"uid", "1.2.840.10008.5.1.4.1.1.481.2"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out,
              "1.2.840.10008.5.1.4.1.1.481.2 RTDoseStorage RD storage radiotherapy rt-dose\n");
    EXPECT_THAT(run.err, IsEmpty());
}

TEST(PgtoolUid, TransferSyntaxHasANameOnly) {
    EXPECT_EQ(Pgtool({"uid", "1.2.840.10008.1.2.1"}).out,
              "1.2.840.10008.1.2.1 LittleEndianExplicit\n");
}

TEST(PgtoolUid, UnknownUidFailsAndTheOthersAreAnswered) {
    const Finished run = Pgtool({"uid", "1.2.3", "1.2.840.10008.1.2"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.out, "1.2.840.10008.1.2 LittleEndianImplicit\n");
    EXPECT_EQ(run.err, "pgtool uid: unknown: 1.2.3\n");
}

TEST(PgtoolModality, ExplainsUidsAndCodes) {
    const Finished run = Pgtool({"modality", "1.2.840.10008.5.1.4.1.1.2", "OP"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "1.2.840.10008.5.1.4.1.1.2 CT\nOP Opthtalmology\n");
}

TEST(PgtoolModality, CodesAreCaseSensitive) {
    const Finished run = Pgtool({"modality", "op"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "pgtool modality: unknown: op\n");
}

TEST(PgtoolModality, WithoutOperandsOrWithOptionsIsMisuse) {
    for (const char* command : {"uid", "modality"}) {
        EXPECT_EQ(Pgtool({command}).exitStatus, 2);
        const Finished run = Pgtool({command, "--all"});
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.err, HasSubstr(std::string("usage: pgtool ") + command));
    }
}

}  // namespace
