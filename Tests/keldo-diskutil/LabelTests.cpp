#include "keldo-diskutil/Label.h"

#include <gtest/gtest.h>

namespace keldo_diskutil {

namespace {

constexpr auto exFAT = TargetFileSystem::exFAT;
constexpr auto fat32 = TargetFileSystem::fat32;

TEST(Label, ElevenUnits_StandAsTheyAre) {
    EXPECT_EQ(labelFor("A001_C003_1", exFAT), "A001_C003_1");
    EXPECT_EQ(labelFor("A001_C003_1", fat32), "A001_C003_1");
}

TEST(Label, TwelveUnits_LoseTheLast) {
    EXPECT_EQ(labelFor("A001_C003_12", exFAT), "A001_C003_1");
    EXPECT_EQ(labelFor("A001_C003_12", fat32), "A001_C003_1");
}

TEST(Label, BlanksAtTheEnds_GoAlsoWhereTheCutMakesThem) {
    EXPECT_EQ(labelFor("  A001  ", exFAT), "A001");
    EXPECT_EQ(labelFor("  ABCDEFGHIJKL", fat32), "ABCDEFGHIJK");
    EXPECT_EQ(labelFor("ABCDEFGHIJ KLM", exFAT), "ABCDEFGHIJ");
}

TEST(Label, NothingOrBlanks_IsNoLabel) {
    EXPECT_EQ(labelFor("", exFAT), "");
    EXPECT_EQ(labelFor("   ", fat32), "");
}

TEST(Label, CharacterBeyondTheBasicPlane_TakesTwoUnitsOnExFAT) {
    EXPECT_EQ(labelFor("𝄞𝄞𝄞𝄞𝄞a", exFAT), "𝄞𝄞𝄞𝄞𝄞a");
    EXPECT_EQ(labelFor("𝄞𝄞𝄞𝄞𝄞𝄞", exFAT), "𝄞𝄞𝄞𝄞𝄞");
}

TEST(Label, Cut_NeverSplitsACharacter) {
    // "e" with an accent of its own is one character of two units.
    EXPECT_EQ(labelFor("ABCDEFGHIJe\u0301", exFAT), "ABCDEFGHIJ");
    EXPECT_EQ(labelFor("ABCDEFGHIe\u0301", exFAT), "ABCDEFGHIe\u0301");
    // A family of four is eleven units: it fits alone, and not behind a letter.
    EXPECT_EQ(labelFor("👨‍👩‍👧‍👦", exFAT), "👨‍👩‍👧‍👦");
    EXPECT_EQ(labelFor("A👨‍👩‍👧‍👦B", exFAT), "A");
}

TEST(Label, ForbiddenCharacters_BecomeUnderscores) {
    EXPECT_EQ(labelFor("\"*/:<>?\\|", exFAT), "_________");
    EXPECT_EQ(labelFor("\"*/:<>?\\|", fat32), "_________");
    EXPECT_EQ(labelFor("a\tb\x01"
                       "c\x7F",
                       exFAT),
              "a_b_c_");
    EXPECT_EQ(labelFor("+,.;=[]", exFAT), "+,.;=[]");
    EXPECT_EQ(labelFor("+,.;=[]", fat32), "_______");
}

TEST(Label, BytesThatAreNotUTF8_BecomeUnderscores) {
    EXPECT_EQ(labelFor("A\xFF", exFAT), "A_");
    EXPECT_EQ(labelFor("A\xFF", fat32), "A_");
}

TEST(Label, FAT_IsCapitalsAndASCII) {
    EXPECT_EQ(labelFor("a001 Zoë", fat32), "A001 ZO_");
    EXPECT_EQ(labelFor("👨‍👩‍👧‍👦e\u0301x", fat32), "__X");
}

TEST(PlainLabel, EveryCharacterBeyondASCII_BecomesOneUnderscore) {
    EXPECT_EQ(plainLabel("Zoe\u0308 👨‍👩‍👧‍👦1"), "Zo_ _1");
    EXPECT_EQ(plainLabel("A001"), "A001");
}

}  // namespace

}  // namespace keldo_diskutil
