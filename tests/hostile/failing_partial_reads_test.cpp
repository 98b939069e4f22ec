// Trees whose values are still in their file, with any call failing that fetches them.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "hostile/every_failure.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

// More than is copied or read at once.
constexpr size_t kLargeValue = 70000;

std::string Numbers(size_t count) {
    std::string numbers;
    for (size_t i = 0; i < count; ++i)
        numbers += static_cast<char>(i * 7 + i / 256);
    return numbers;
}

// Values of every kind: swapped in units of each size or not, stripped, converted, nested, large,
// in a sequence of VR UN, and in fragments without and with an offset table.
StreamBuilder FileOfValues(Order order) {
    StreamBuilder file(VrMode::Explicit, order);
    file.Part10(order == Order::Big ? "1.2.840.10008.1.2.2" : "1.2.840.10008.1.2.1");
    file.Element(0x0008, 0x0016, "UI", PaddedUid("1.2.840.10008.5.1.4.1.1.2"));
    file.Element(0x0008, 0x0018, "UI", PaddedUid("1." + std::string(300, '2')));
    file.Element(0x0009, 0x0010, "LO", "A MAKER OF MANY PRIVATE ELEMENTS");
    file.Element(0x0009, 0x1001, "UN", "abcd");
    file.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    file.Element(0x0018, 0x0050, "DS", std::string(200, ' ') + "0.25");
    file.ElementUS(0x0028, 0x0010, 0x0102).ElementUL(0x0028, 0x9001, 0x01020304);
    file.Element(0x0028, 0x0009, "AT", Numbers(8)).Element(0x0018, 0x602C, "FD", Numbers(16));
    file.Sequence(0x0040, 0xA730).Item().Sequence(0x0040, 0xA043).Item();
    file.Element(0x0008, 0x0104, "LO", std::string(300, 'm'));
    file.EndItem().EndSequence().EndItem().EndSequence();
    file.Header(0x0099, 0x1010, "UN", kUndefined).Mode(VrMode::Implicit).Item();
    file.Element(0x0010, 0x0020, "LO", "4711").EndItem().EndSequence().Mode(VrMode::Explicit);
    file.Header(0x5400, 0x1010, "OW", kLargeValue).Text(Numbers(kLargeValue));
    if (order == Order::Big) return file;
    file.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0).Item(4).Text("abcd");
    return file.Item(6).Text("efghij").EndSequence();
}

// Every element of a tree, also those within items.
std::vector<PGX_Node*> ElementsOf(PGX_Node& root) {
    std::vector<PGX_Node*> elements;
    std::vector<PGX_Node*> pending{&root};
    while (!pending.empty()) {
        PGX_Node* const node = pending.back();
        pending.pop_back();
        if (node->nodeType == NT_DataElement) elements.push_back(node);
        if (node->next != nullptr) pending.push_back(node->next);
        if (node->first != nullptr) pending.push_back(node->first);
    }
    return elements;
}

// What GetValue gives; nothing where it gives none, or where a misread length claims too much.
std::string ValueOf(PGX_Node& element) {
    if (element.length > kLargeValue) return {};
    std::string value(size_t{element.length} + 1, '\0');
    return element.GetValue(value.data()) == 1 ? value : std::string();
}

std::vector<std::string> ValuesOf(PGX_Node& root) {
    std::vector<std::string> values;
    for (PGX_Node* element : ElementsOf(root))
        values.push_back(ValueOf(*element));
    return values;
}

std::set<std::string> LinesOf(const Bytes& text) {
    std::istringstream stream(std::string(text.begin(), text.end()));
    std::set<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.insert(line);
    return lines;
}

class FailingPartialRead : public testing::TestWithParam<Order> {
  protected:
    // With few values loaded, or none.
    DataSet Open(uint32_t maxLoadLength, uint32_t flags = 0) const {
        return DataSet(pgOpenDataSetFileEx(path_.c_str(), maxLoadLength, flags));
    }

    // Sweeps an operation on a tree that is opened anew each time.
    template <typename Failing, typename Operation>
    size_t SweepOnTree(Operation operation) const {
        size_t calls = 0;
        for (const uint32_t maxLoadLength : {0u, 9u}) {
            calls += SweepFailures<Failing>([&](auto&& whileFailing) {
                const DataSet root = Open(maxLoadLength);
                ASSERT_NE(root, nullptr);
                operation(*root, whileFailing);
                // Saving may put the length of the meta group in front.
                EXPECT_TRUE(Tags(root.get()).ends_with(tags_)) << Tags(root.get());
            });
        }
        return calls;
    }
    template <typename Operation>
    void SweepMemoryAndFiles(size_t leastCalls, Operation operation) const {
        EXPECT_GE(SweepOnTree<FailingNew>(operation), leastCalls);
        EXPECT_GE(SweepOnTree<FailingFiles>(operation), leastCalls);
    }

    TempDir directory_;
    std::string path_ = directory_.Write("file", FileOfValues(GetParam()).Data());
    std::string output_ = directory_.Path("output");
    std::string description_ = Describe(Open(0).get());
    std::string tags_ = Tags(Open(0).get());
    std::vector<std::string> values_ = ValuesOf(*Open(0));
};

INSTANTIATE_TEST_SUITE_P(ByteOrders, FailingPartialRead, testing::Values(Order::Little, Order::Big),
                         [](const auto& order) {
                             return order.param == Order::Big ? "Big" : "Little";
                         });

// A tree is whole, or ends where it could not be read any further.
TEST_P(FailingPartialRead, IsATreeOrNoneWithEveryFlag) {
    for (const uint32_t flags :
         {uint32_t{0}, uint32_t{PG_OPEN_SKIP_FRAGMENTS}, uint32_t{PG_OPEN_FORCE_EXPLICIT_VR},
          uint32_t{PG_OPEN_SKIP_FRAGMENTS | PG_OPEN_UN_AS_STREAM},
          uint32_t{PG_OPEN_UN_BY_INSPECTION}}) {
        const std::string whole = Describe(Open(9, flags).get());
        const auto open = [&](bool mayBreakOff) {
            return [&, mayBreakOff](auto&& whileFailing) {
                DataSet root;
                whileFailing([&] { root = Open(9, flags); });
                if (root == nullptr) return;
                ValuesOf(*root);
                if (!mayBreakOff) {
                    EXPECT_EQ(Describe(root.get()), whole);
                }
            };
        };
        EXPECT_GE(SweepFailures<FailingNew>(open(false)), 20u) << flags;
        EXPECT_GE(SweepFailures<FailingFiles>(open(true)), 2u) << flags;
    }
}

// The stream of a host is the tree's, closed, or, when memory ran out, the host's.
TEST_P(FailingPartialRead, LeavesTheStreamOfTheHostInGoodHands) {
    const auto open = [&](bool isHostsWithoutTree) {
        return [&, isHostsWithoutTree](auto&& whileFailing) {
            FILE* const stream = std::fopen(path_.c_str(), "rb");
            ASSERT_NE(stream, nullptr);
            DataSet root;
            whileFailing(
                [&] { root.reset(pgOpenDataSetFileHandleEx(stream, 0, PG_OPEN_SKIP_FRAGMENTS)); });
            if (root == nullptr && isHostsWithoutTree) std::fclose(stream);
        };
    };
    EXPECT_GE(SweepFailures<FailingNew>(open(true)), 20u);
    EXPECT_GE(SweepFailures<FailingFiles>(open(false)), 3u);
}

TEST_P(FailingPartialRead, IndexesFragmentsLaterOrNot) {
    if (GetParam() == Order::Big) GTEST_SKIP() << "fragments are little endian";
    const auto index = [&](auto&& whileFailing) {
        const DataSet root = Open(0, PG_OPEN_SKIP_FRAGMENTS);
        ASSERT_NE(root, nullptr);
        PGX_Node* const pixelData = Child(root.get(), 0x7FE0, 0x0010);
        uint32_t consumed = 0;
        int32_t isIndexed = -1;
        whileFailing(
            [&] { isIndexed = root->LoadEncodedPixelTable(root->file, pixelData, 1, &consumed); });
        uint32_t length = 0;
        uint32_t offset = 0;
        if (isIndexed == 1) {
            EXPECT_EQ(pixelData->GetEncodedPixelInfo(0, &length, &offset), 1);
            EXPECT_EQ(length, 4u);
        }
    };
    EXPECT_GE(SweepFailures<FailingNew>(index), 1u);
    EXPECT_GE(SweepFailures<FailingFiles>(index), 2u);
}

// No getter gives anything but the value, a part of it with zeros behind, or nothing.
TEST_P(FailingPartialRead, ReadsValuesWithZerosWhereNothingWasRead) {
    SweepMemoryAndFiles(1, [&](PGX_Node& root, auto&& whileFailing) {
        const std::vector<PGX_Node*> elements = ElementsOf(root);
        std::vector<std::string> texts(elements.size(), std::string(400, '?'));
        whileFailing([&] {
            for (size_t i = 0; i < elements.size(); ++i)
                elements[i]->GetStringValue(texts[i].data(), 399);
        });
        for (size_t i = 0; i < elements.size(); ++i) {
            const std::string text = texts[i].c_str();
            const bool wasReached = texts[i] != std::string(400, '?');
            const bool isValue = values_[i].starts_with(text) || ValueOf(*elements[i]) == "";
            EXPECT_TRUE(!wasReached || isValue) << i << ' ' << text;
        }
    });
}

TEST_P(FailingPartialRead, ReadsNumbersOrZeros) {
    SweepMemoryAndFiles(1, [&](PGX_Node& root, auto&& whileFailing) {
        uint16_t rows = 0;
        uint32_t size = 0;
        double thickness = 0;
        uint8_t pixels[4] = {};
        whileFailing([&] {
            rows = root.FindNode(0x0028, 0x0010)->GetUSValue();
            size = root.FindNode(0x0028, 0x9001)->GetULValue();
            root.FindNode(0x5400, 0x1010)->GetPixelData(5, 4, pixels);
            thickness = root.FindNode(0x0018, 0x0050)->GetDSDoubleValue();
        });
        EXPECT_TRUE(rows == 0x0102 || rows == 0) << rows;
        EXPECT_TRUE(size == 0x01020304 || size == 0) << size;
        EXPECT_TRUE(thickness == 0.25 || thickness == 0) << thickness;
    });
}

// Without memory the export fails; what could not be read or written is missing at the end.
TEST_P(FailingPartialRead, ExportsEveryValueOrItsBeginning) {
    for (size_t i = 0; i < values_.size(); ++i) {
        ASSERT_EQ(ElementsOf(*Open(0))[i]->GetFileContentValue(output_.c_str()), 1);
        const Bytes whole = std::filesystem::exists(output_) ? ReadFile(output_) : Bytes();
        SweepMemoryAndFiles(0, [&](PGX_Node& root, auto&& whileFailing) {
            std::filesystem::remove(output_);
            PGX_Node* const element = ElementsOf(root)[i];
            int32_t isExported = 0;
            whileFailing([&] { isExported = element->GetFileContentValue(output_.c_str()); });
            EXPECT_TRUE(isExported == 0 || isExported == 1) << i;
            if (!std::filesystem::exists(output_)) return;
            const Bytes written = ReadFile(output_);
            ASSERT_LE(written.size(), whole.size()) << i;
            EXPECT_TRUE(std::equal(written.begin(), written.end(), whole.begin())) << i;
        });
        std::filesystem::remove(output_);
    }
}

TEST_P(FailingPartialRead, TakesValuesOfContentFilesOrNot) {
    const std::string content = directory_.Write("content", std::string(kLargeValue, 'c'));
    const auto take = [&](auto&& whileFailing) {
        PGX_Node element(NT_DataElement, ET_LittleEndian, 0x0009, 0x1002, VR_OB, 0);
        whileFailing([&] {
            if (element.SetFileContentValue(content.c_str()) == 0) return;
            element.GetUSValue();
            element.GetFileContentValue(output_.c_str());
        });
        EXPECT_TRUE(element.length == 0 || element.length == kLargeValue) << element.length;
    };
    EXPECT_GE(SweepFailures<FailingNew>(take), 2u);
    EXPECT_GE(SweepFailures<FailingFiles>(take), 5u);
}

// A result of 0 means that everything is there.
TEST_P(FailingPartialRead, IsSavedWholeOrReported) {
    for (const int32_t mode :
         {kAsRead, kPart10Explicit, kPart10Explicit | PG_UNDEFINED_LENGTHS,
          PG_META_IMPLICIT_VR | kExplicitLittle, kPart10Implicit, kImplicitLittle, kPart10Big}) {
        ASSERT_EQ(Open(0)->SaveDataSetAsEx(output_.c_str(), mode), 0u) << mode;
        const Bytes whole = ReadFile(output_);
        SweepMemoryAndFiles(5, [&](PGX_Node& root, auto&& whileFailing) {
            uint32_t result = 5;
            whileFailing([&] { result = root.SaveDataSetAsEx(output_.c_str(), mode); });
            EXPECT_LE(result, 7u);
            if (result == 0) {
                EXPECT_TRUE(ReadFile(output_) == whole) << mode;
            }
        });
    }
}

TEST_P(FailingPartialRead, IsWrittenWholeToAStreamOrReported) {
    const auto write = [&](PGX_Node& root, auto&& whileFailing) {
        FILE* const stream = std::fopen(output_.c_str(), "wb");
        EXPECT_NE(stream, nullptr);
        uint32_t result = 5;
        whileFailing([&] { result = root.WriteNodeEx(stream, kImplicitLittle); });
        std::fclose(stream);
        return result;
    };
    ASSERT_EQ(write(*Open(0), [](auto&& operation) { operation(); }), 0u);
    const Bytes whole = ReadFile(output_);
    SweepMemoryAndFiles(1, [&](PGX_Node& root, auto&& whileFailing) {
        if (write(root, whileFailing) == 0) {
            EXPECT_TRUE(ReadFile(output_) == whole);
        }
    });
}

// A dump that comes to its end has every element, or says that there was no memory for it.
TEST_P(FailingPartialRead, IsDumpedInWholeLines) {
    ASSERT_EQ(Open(0)->Dump(output_.c_str()), 1);
    const std::set<std::string> whole = LinesOf(ReadFile(output_));
    const auto dump = [&](PGX_Node& root, auto&& whileFailing) {
        int32_t isDumped = 0;
        whileFailing([&] { isDumped = root.Dump(output_.c_str()); });
        return isDumped == 1;
    };
    EXPECT_GE(SweepOnTree<FailingFiles>(dump), 5u);
    const auto dumpWholeLines = [&](PGX_Node& root, auto&& whileFailing) {
        if (!dump(root, whileFailing)) return;
        for (const std::string& line : LinesOf(ReadFile(output_))) {
            EXPECT_TRUE(whole.contains(line) || line.starts_with(">>>>> OUT-OF-MEMORY")) << line;
        }
    };
    EXPECT_GE(SweepOnTree<FailingNew>(dumpWholeLines), 5u);
}

// A copy has every element, with its value or with zeros.
TEST_P(FailingPartialRead, IsCopiedWholeOrNotAtAll) {
    const auto copy = [&](const std::vector<std::string>& values) {
        return [&](PGX_Node& root, auto&& whileFailing) {
            PGX_Node* copied = nullptr;
            whileFailing([&] { copied = root.DuplicateNode(0); });
            if (copied == nullptr) return;
            EXPECT_EQ(Describe(copied), description_);
            EXPECT_TRUE(values.empty() || ValuesOf(*copied) == values);
            pgFreeNodeHierarchy(copied);
        };
    };
    PGX_Node* const whole = Open(0)->DuplicateNode(0);
    EXPECT_GE(SweepOnTree<FailingNew>(copy(ValuesOf(*whole))), 20u);
    EXPECT_GE(SweepOnTree<FailingFiles>(copy({})), 20u);
    pgFreeNodeHierarchy(whole);
}

}  // namespace
