// The order of patient names. The expected ranks were taken from the Windows comparison function,
// in the code page 1252; they hold on every platform.
#include <gtest/gtest.h>
#include <pgkit/dataset.h>

#include <cstddef>
#include <string>

namespace {

constexpr int kRankOfByte[256] = {
    0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,   // 00
    0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,   // 10
    0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,   // 20
    1,  5,  7,  9,  11, 12, 13, 14, 15, 16, 0,  0,  0,  0,  0,  0,   // 30
    0,  17, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33,  // 40
    36, 37, 38, 39, 41, 44, 45, 46, 47, 48, 49, 0,  0,  0,  0,  0,   // 50
    0,  17, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33,  // 60
    36, 37, 38, 39, 41, 44, 45, 46, 47, 48, 49, 0,  0,  0,  0,  0,   // 70
    0,  0,  0,  24, 0,  0,  0,  0,  0,  0,  39, 0,  35, 0,  49, 0,   // 80
    0,  0,  0,  0,  0,  0,  0,  0,  0,  43, 39, 0,  35, 0,  49, 48,  // 90
    0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  18, 0,  0,  0,  0,  0,   // A0
    0,  0,  8,  10, 0,  0,  0,  0,  0,  6,  34, 0,  2,  3,  4,  0,   // B0
    17, 17, 17, 17, 17, 17, 19, 21, 23, 23, 23, 23, 27, 27, 27, 27,  // C0
    22, 32, 33, 33, 33, 33, 33, 0,  33, 44, 44, 44, 44, 48, 42, 40,  // D0
    17, 17, 17, 17, 17, 17, 19, 21, 23, 23, 23, 23, 27, 27, 27, 27,  // E0
    22, 32, 33, 33, 33, 33, 33, 0,  33, 44, 44, 44, 44, 48, 42, 48,  // F0
};

struct RankedName {
    int rank;
    const char* name;
};

// In ascending order; names of one rank are equal.
constexpr RankedName kNames[] = {
    {0, ""},
    {0, "^"},
    {0, "^^^^"},
    {0, "="},
    {0, "-"},
    {0, "'"},
    {0, "."},
    {0, "  ^  "},
    {0, "\x09"},
    {1, "0"},
    {2, "00"},
    {3, "007"},
    {4, "\xBC"},
    {5, "\xBD"},
    {6, "1"},
    {7, "\xB9"},
    {8, "10"},
    {9, "1A"},
    {10, "1Patient"},
    {11, "2"},
    {12, "\xB2"},
    {13, "9"},
    {14, "A"},
    {15, "\xAA"},
    {16, "A1"},
    {17, "A2"},
    {18, "A\xB2"},
    {19, "A3"},
    {20, "\xC6sir"},
    {20, "AESIR"},
    {20, "\xE6sir"},
    {21, "Aesir^Odin"},
    {22, "\xC5ngstr\xF6m"},
    {22, "Angstrom"},
    {23, "ANGSTROM^A"},
    {24, "Celik"},
    {24,
     "\xC7"
     "elik"},
    {25, "D"},
    {26,
     "\xD0"
     "avid"},
    {26, "David"},
    {27, "de la Cruz"},
    {27, "Delacruz"},
    {27, "DE LA CRUZ"},
    {27, "De^La^Cruz"},
    {28, "Do"},
    {29, "DOE"},
    {29, "doe"},
    {29,
     "\xA0"
     "Doe"},
    {29, "(Doe)"},
    {29, "\"Doe\""},
    {29, "Doe\x80"},
    {29, "[Doe]{}"},
    {29, "Doe+"},
    {30, "Doe@home"},
    {31, "Doe^J"},
    {32, "Doe^Jane"},
    {33, "Doe^John"},
    {33, "DOE JOHN"},
    {33, "Doe-John"},
    {33, "Doe'John"},
    {33, "DoeJohn"},
    {33, "doe=john"},
    {33, "Doe, John"},
    {34, "Doe^John^A"},
    {35, "Doe^John^^^Dr."},
    {35, "DOE^JOHN^^DR"},
    {36, "Doer"},
    {37, "Doe&Son"},
    {38, "Mueller^Hans"},
    {39, "M\xFCller^Hans"},
    {39, "MULLER HANS"},
    {39, "M\xDCLLER^HANS"},
    {39, "Mu\xA8ller^Hans"},
    {40, "Muller^Hans-Peter"},
    {41,
     "\xD1u\xF1"
     "ez"},
    {41, "Nunez"},
    {42, "o"},
    {43, "\xBA"},
    {44, "\x9Cuvre"},
    {44, "Oeuvre"},
    {45, "O'Neill"},
    {45, "ONeill"},
    {45, "O\x92Neill"},
    {46, "O'NEILL^TED"},
    {47, "\xD8rsted"},
    {47, "Orsted"},
    {48, "OZ"},
    {49, "Patient"},
    {50, "Patient_01"},
    {50, "Patient01"},
    {51, "Patient 1"},
    {51, "Patient^1"},
    {51, "PATIENT#1"},
    {52, "Patient 10"},
    {53, "Patient1A"},
    {54, "Patient 2"},
    {55, "PatientA"},
    {56, "\x8Akoda"},
    {56, "SKODA"},
    {57, "Smith^Anna"},
    {58, "SMITH^ANNE"},
    {59, "Smithe"},
    {60, "Smith Jones"},
    {61, "Smith-Jones^Anna"},
    {62, "Smyth"},
    {63, "Strase"},
    {64, "Stra\xDF"},
    {64, "Strass"},
    {65,
     "Stra\xDF"
     "e"},
    {65, "STRASSE"},
    {66, "Straze"},
    {67, "T"},
    {68, "\xDEor"},
    {68, "Thor"},
    {69, "TM"},
    {70, "T\x99"},
    {71, "TZ"},
    {72, "U"},
    {73, "\xFF"},
    {73, "Y"},
    {74, "Yamada^Tarou=\x1B$B;3ED\x1B(B^"},
    {75, "\xDDves"},
    {76, "\x9Ei\x9Eka"},
    {76, "Zizka"},
    {77, "Zz"},
    {78, "zzz"},
};

int32_t Compare(const std::string& a, const std::string& b) {
    return pgComparePatientNames(a.c_str(), b.c_str(), 0);
}

int32_t OrderOf(int a, int b) { return a == b ? 0 : (a < b ? -1 : 1); }

TEST(PatientNames, SingleCharactersSortByTheirRank) {
    for (size_t a = 0; a < 256; ++a) {
        for (size_t b = 0; b < 256; ++b) {
            EXPECT_EQ(
                Compare(std::string(1, static_cast<char>(a)), std::string(1, static_cast<char>(b))),
                OrderOf(kRankOfByte[a], kRankOfByte[b]))
                << a << ' ' << b;
        }
    }
}

// The weights of single characters decide the order of longer texts one after the other.
TEST(PatientNames, CharactersSortByTheirRankBehindEqualBeginnings) {
    for (size_t a = 0; a < 256; ++a) {
        for (size_t b = 0; b < 256; ++b) {
            EXPECT_EQ(Compare("M-\xFCller^" + std::string(1, static_cast<char>(a)),
                              "MULLER^=" + std::string(1, static_cast<char>(b))),
                      OrderOf(kRankOfByte[a], kRankOfByte[b]))
                << a << ' ' << b;
        }
    }
}

TEST(PatientNames, NamesSortByTheirRank) {
    for (const RankedName& a : kNames) {
        for (const RankedName& b : kNames) {
            EXPECT_EQ(Compare(a.name, b.name), OrderOf(a.rank, b.rank))
                << a.name << " against " << b.name;
        }
    }
}

TEST(PatientNames, CaseAndBlanksAroundDoNotMatter) {
    EXPECT_EQ(Compare("  DOE^JOHN ", "doe^john"), 0);
    EXPECT_EQ(Compare("doe^john", "     DOE^JOHN"), 0);
    EXPECT_EQ(Compare("   ", ""), 0);
}

TEST(PatientNames, SeparatorsDoNotMatter) {
    EXPECT_EQ(Compare("Doe^John", "Doe-John"), 0);
    EXPECT_EQ(Compare("Doe^John", "DoeJohn"), 0);
    EXPECT_EQ(Compare("Doe^John^^^", "Doe^John"), 0);
}

TEST(PatientNames, BeginningOfANameSortsBeforeIt) {
    EXPECT_EQ(Compare("Doe", "Doe^John"), -1);
    EXPECT_EQ(Compare("Doe^John", "Doe"), 1);
}

TEST(PatientNames, RaisedCharactersMatterOnlyWhenNothingElseDiffers) {
    EXPECT_EQ(Compare("A2", "A\xB2"), -1);
    EXPECT_EQ(Compare("A\xB2"
                      "A",
                      "A2B"),
              -1);
    EXPECT_EQ(Compare("A\xB2"
                      "B",
                      "A2A"),
              1);
    EXPECT_EQ(Compare("2\xB2",
                      "\xB2"
                      "2"),
              -1);
}

TEST(PatientNames, NullCountsAsEmpty) {
    EXPECT_EQ(pgComparePatientNames(nullptr, nullptr, 0), 0);
    EXPECT_EQ(pgComparePatientNames(nullptr, "", 0), 0);
    EXPECT_EQ(pgComparePatientNames(nullptr, "A", 0), -1);
    EXPECT_EQ(pgComparePatientNames("A", nullptr, 0), 1);
}

TEST(PatientNames, ThirdArgumentIsNotUsed) {
    for (const int32_t unused : {-1, 0, 1, INT32_MAX}) {
        EXPECT_EQ(pgComparePatientNames("a", "A", unused), 0);
        EXPECT_EQ(pgComparePatientNames("a", "B", unused), -1);
    }
}

TEST(PatientNames, LongNamesAreComparedToTheirEnd) {
    const std::string name(100'000, 'x');
    EXPECT_EQ(Compare(name + "a", name + "A"), 0);
    EXPECT_EQ(Compare(name + "a", name + "b"), -1);
    EXPECT_EQ(Compare(std::string(100'000, ' ') + "a", "a"), 0);
}

}  // namespace
