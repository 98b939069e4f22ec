// What conversions allocate, and what happens when there is nothing left.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>

#include "hostile/every_failure.h"
#include "support/nodes.h"
#include "support/tree.h"
#include "text/converted.h"

namespace {

using namespace pgkit_test;

TEST(TextMemory, PlainTextTakesNone) {
    const Tree element = NewElement(0x0010, 0x0010, VR_PN, "DOE^JOHN");
    char read[32];
    char written[32];
    int64_t lengths[3];
    {
        const FailingNew failing(0);
        lengths[0] = pgxTextToUtf8("ISO_IR 100", VR_PN, "DOE^JOHN", 8, read, sizeof read);
        lengths[1] =
            pgxTextFromUtf8("\\ISO 2022 IR 87", VR_PN, "DOE^JOHN", 8, written, sizeof written);
        lengths[2] = pgxGetUtf8Value(nullptr, element.get(), read, sizeof read);
        EXPECT_FALSE(failing.HasFailed());
    }
    EXPECT_EQ(lengths[0], 8);
    EXPECT_EQ(lengths[1], 8);
    EXPECT_EQ(lengths[2], 8);
    EXPECT_STREQ(read, "DOE^JOHN");
    EXPECT_STREQ(written, "DOE^JOHN");
}

TEST(TextMemory, ThatRunsOutIsAResult) {
    StreamBuilder stream;
    const std::string longName = "\273" + std::string(3000, 'x');
    stream.Element(0x0008, 0x0005, "CS", "ISO_IR 144                      ");
    stream.Element(0x0010, 0x0010, "PN", longName);
    const size_t calls = SweepFailures<FailingNew>([&](auto&& whileFailing) {
        const OpenedStream opened(stream, 0);
        PGX_Node* const name = Child(opened.Root(), 0x0010, 0x0010);
        char buffer[8] = "";
        int64_t length = 0;
        whileFailing([&] { length = pgxGetUtf8Value(opened.Root(), name, buffer, sizeof buffer); });
        if (length == PGX_TEXT_NO_MEMORY) {
            EXPECT_STREQ(buffer, "");
        } else {
            EXPECT_EQ(length, 3002);
        }
    });
    EXPECT_GE(calls, 2u);
}

TEST(TextMemory, ThatRunsOutInWritingLeavesTheValue) {
    const Tree characterSet = NewElement(0x0008, 0x0005, VR_CS, "ISO_IR 144");
    const std::string utf8 = "Л" + std::string(3000, 'x');
    size_t refused = 0;
    SweepFailures<FailingNew>([&](auto&& whileFailing) {
        const Tree name = NewElement(0x0010, 0x0010, VR_PN, "DOE^");
        int64_t length = 0;
        whileFailing([&] {
            length = pgxSetUtf8Value(characterSet.get(), name.get(), utf8.data(), utf8.size());
        });
        if (length == PGX_TEXT_NO_MEMORY && name->value != nullptr) {
            ++refused;
            EXPECT_EQ(TextOf(name.get()), "DOE^");
        }
        EXPECT_TRUE(length < 0 || length == 3001);
    });
    EXPECT_GE(refused, 1u);
}

}  // namespace
