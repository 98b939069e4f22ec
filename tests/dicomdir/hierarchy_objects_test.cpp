// The objects of a hierarchy as hosts see them: their fields, and what these are at first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "dicomdir/object_classes.h"

namespace {

using namespace pgkit_test::object_classes;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

// The fields of every class, in their order; those of leaves without the inherited ones.
auto Fields(const Patient& p) {
    return std::tie(p.record, p.clientData, p.patientId, p.patientsName, p.birthDate, p.sex,
                    p.specificCharacterSet, p.flags, p.clientFlags);
}

auto Fields(const Study& s) {
    return std::tie(s.record, s.clientData, s.studyInstanceUid, s.studyId, s.studyDate, s.studyTime,
                    s.accessionNumber, s.studyDescription, s.manufacturer,
                    s.referringPhysiciansName, s.modality, s.specificCharacterSet, s.flags,
                    s.clientFlags);
}

auto Fields(const Series& s) {
    return std::tie(s.record, s.clientData, s.seriesInstanceUid, s.seriesDescription,
                    s.seriesNumber, s.modality, s.institutionName, s.institutionAddress,
                    s.performingPhysiciansName, s.specificCharacterSet, s.icon, s.flags,
                    s.clientFlags);
}

auto Fields(const Leaf& l) {
    return std::tie(l.record, l.clientData, l.leafType, l.recordType, l.fullPath,
                    l.referencedFileId, l.instanceUid, l.sopClassUid, l.transferSyntaxUid,
                    l.instanceNumber, l.specificCharacterSet, l.referencedDataSetSize, l.flags,
                    l.clientFlags);
}

auto Fields(const Image& i) {
    return std::tie(i.rows, i.columns, i.numberOfFrames, i.photometricInterpretation, i.imageType,
                    i.calibrationImage, i.icon);
}

auto Fields(const Report& r) {
    return std::tie(r.completionFlag, r.verificationFlag, r.contentDate, r.contentTime,
                    r.verificationDateTime, r.conceptNameCodeSequence, r.contentSequence);
}

auto Fields(const KeyObject& k) {
    return std::tie(k.contentDate, k.contentTime, k.conceptNameCodeSequence, k.contentSequence);
}

auto Fields(const Presentation& p) {
    return std::tie(p.creationDate, p.creationTime, p.contentCreatorsName, p.contentLabel,
                    p.contentDescription, p.referencedSeriesSequence);
}

auto Fields(const Document& d) {
    return std::tie(d.contentDate, d.contentTime, d.documentTitle, d.mimeType,
                    d.conceptNameCodeSequence);
}

auto Fields(const Waveform& w) { return std::tie(w.contentDate, w.contentTime); }

auto Fields(const RawData& d) { return std::tie(d.contentDate, d.contentTime); }

template <typename... Field>
std::vector<size_t> Sizes(const std::tuple<Field&...>&) {
    return {sizeof(Field)...};
}

// Where the fields lie in their object. offsetof is not for polymorphic classes.
template <typename Object>
std::vector<ptrdiff_t> Places(const Object& object) {
    const char* const start = reinterpret_cast<const char*>(&object);
    const auto places = [start](const auto&... field) {
        return std::vector<ptrdiff_t>{reinterpret_cast<const char*>(&field) - start...};
    };
    return std::apply(places, Fields(object));
}

bool IsEmpty(const char* text) { return *text == '\0'; }
bool IsEmpty(const void* pointer) { return pointer == nullptr; }
bool IsEmpty(uint32_t number) { return number == 0; }
bool IsEmpty(int32_t number) { return number == 0; }

template <typename... Field>
std::vector<bool> EmptyOnes(const std::tuple<Field&...>& fields) {
    return std::apply([](const auto&... field) { return std::vector<bool>{IsEmpty(field)...}; },
                      fields);
}

PGX_List& Children(Patient& patient) { return patient.studies; }
PGX_List& Children(Study& study) { return study.series; }
PGX_List& Children(Series& series) { return series.leaves; }

// The names of the instances of the typed tests.
struct LevelNames {
    template <typename>
    static std::string GetName(int level) {
        constexpr const char* kNames[] = {"Patient", "Study", "Series"};
        return kNames[level];
    }
};

struct LeafNames {
    template <typename>
    static std::string GetName(int leaf) {
        constexpr const char* kNames[] = {"Leaf",         "Image",    "Report",   "KeyObject",
                                          "Presentation", "Document", "Waveform", "RawData"};
        return kNames[leaf];
    }
};

template <typename Class>
class UpperLevel : public testing::Test {};

using UpperLevels = testing::Types<Patient, Study, Series>;
TYPED_TEST_SUITE(UpperLevel, UpperLevels, LevelNames);

TYPED_TEST(UpperLevel, IsEmptyAtFirst) {
    TypeParam object;
    EXPECT_THAT(EmptyOnes(Fields(object)), Each(true));
    EXPECT_EQ(Children(object).GetCount(), 0);
}

TYPED_TEST(UpperLevel, CanBeUsedAsItsList) {
    TypeParam object;
    EXPECT_EQ(static_cast<void*>(&object), static_cast<void*>(&Children(object)));
}

TYPED_TEST(UpperLevel, IsNotCopiedByConstruction) {
    EXPECT_FALSE(std::is_copy_constructible_v<TypeParam>);
}

TYPED_TEST(UpperLevel, HasNoVirtualDestructor) {
    EXPECT_FALSE(std::has_virtual_destructor_v<TypeParam>);
}

template <typename Class>
class AnyLeaf : public testing::Test {};

using Leaves =
    testing::Types<Leaf, Image, Report, KeyObject, Presentation, Document, Waveform, RawData>;
TYPED_TEST_SUITE(AnyLeaf, Leaves, LeafNames);

TYPED_TEST(AnyLeaf, IsEmptyAtFirstApartFromItsType) {
    TypeParam object;
    Leaf& leaf = object;
    leaf.leafType = 0;
    EXPECT_THAT(EmptyOnes(Fields(leaf)), Each(true));
    EXPECT_THAT(EmptyOnes(Fields(object)), Each(true));
}

TYPED_TEST(AnyLeaf, HasAVirtualDestructor) {
    EXPECT_TRUE(std::has_virtual_destructor_v<TypeParam>);
}

TYPED_TEST(AnyLeaf, IsCopiedByConstructionAndAssignment) {
    EXPECT_TRUE(std::is_copy_constructible_v<TypeParam>);
    EXPECT_TRUE(std::is_copy_assignable_v<TypeParam>);
}

TEST(LeafType, IsThatOfTheClass) {
    EXPECT_EQ(Leaf().leafType, 0);
    EXPECT_EQ(Image().leafType, 1);
    EXPECT_EQ(Report().leafType, 2);
    EXPECT_EQ(KeyObject().leafType, 3);
    EXPECT_EQ(Presentation().leafType, 4);
    EXPECT_EQ(Waveform().leafType, 5);
    EXPECT_EQ(Document().leafType, 6);
    EXPECT_EQ(RawData().leafType, 7);
}

TEST(UpperLevelFields, HaveRoomForTheirKeys) {
    EXPECT_THAT(Sizes(Fields(Patient())), ElementsAre(8, 8, 65, 195, 9, 17, 272, 4, 4));
    EXPECT_THAT(Sizes(Fields(Study())),
                ElementsAre(8, 8, 65, 17, 9, 17, 17, 65, 65, 195, 17, 272, 4, 4));
    EXPECT_THAT(Sizes(Fields(Series())),
                ElementsAre(8, 8, 65, 65, 17, 17, 65, 1025, 195, 272, 8, 4, 4));
}

TEST(LeafFields, FollowTheVirtualTableInOrder) {
    const int shared[] = {8, 16, 24, 28, 45, 305, 565, 630, 695, 760, 764, 1036, 1040, 1044};
    EXPECT_THAT(Places(Leaf()), ElementsAreArray(shared));
}

TEST(LeafFields, OfASubclassFollowThoseOfTheLeaf) {
    EXPECT_THAT(Places(Image()), ElementsAre(1048, 1052, 1056, 1060, 1077, 1349, 1368));
    EXPECT_THAT(Places(Report()), ElementsAre(1048, 1065, 1082, 1091, 1108, 1136, 1144));
    EXPECT_THAT(Places(KeyObject()), ElementsAre(1048, 1057, 1080, 1088));
    EXPECT_THAT(Places(Presentation()), ElementsAre(1048, 1057, 1074, 1269, 1286, 1352));
    EXPECT_THAT(Places(Document()), ElementsAre(1048, 1057, 1074, 2099, 2168));
    EXPECT_THAT(Places(Waveform()), ElementsAre(1048, 1057));
    EXPECT_THAT(Places(RawData()), ElementsAre(1048, 1057));
}

TEST(LeafFields, InheritedByAnImageLieAsInALeaf) {
    Image image;
    EXPECT_EQ(static_cast<void*>(&image.record), reinterpret_cast<char*>(&image) + 8);
}

TEST(Leaves, CanBeToldApartByTheirRunTimeType) {
    const std::type_info& image = typeid(Image);
    Image object;
    Leaf& leaf = object;
    EXPECT_EQ(typeid(leaf), image);
    EXPECT_NE(dynamic_cast<Image*>(&leaf), nullptr);
    EXPECT_EQ(dynamic_cast<Report*>(&leaf), nullptr);
}

}  // namespace
