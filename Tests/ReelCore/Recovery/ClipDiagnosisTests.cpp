#include "ReelCore/Recovery/ClipDoctor.h"
#include "ReelCore/Recovery/RecoveryTypes.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <type_traits>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

const ClipDiagnosis missingIndex{ClipDiagnosis::MissingIndex{7}};
const ClipDiagnosis truncated{ClipDiagnosis::Truncated{9, 5}};
const ClipDiagnosis stale{ClipDiagnosis::StaleWAVSizes{0, 12}};
const ClipDiagnosis unreadable{ClipDiagnosis::Unreadable{"empty file"}};
const ClipDiagnosis healthy{ClipDiagnosis::Healthy{}};

TEST(ClipDiagnosis, Labels_AreTextsForPeople) {
    EXPECT_EQ(missingIndex.label(), "Missing index (header never closed)");
    EXPECT_EQ(truncated.label(), "Truncated");
    EXPECT_EQ(stale.label(), "WAV sizes stale");
    EXPECT_EQ(unreadable.label(), "Unreadable — empty file");
    EXPECT_EQ(healthy.label(), "Healthy");
}

TEST(ClipDiagnosis, UnreadableWithoutAReason_EndsBehindTheDash) {
    EXPECT_EQ(ClipDiagnosis{ClipDiagnosis::Unreadable{}}.label(), "Unreadable — ");
}

TEST(ClipDiagnosis, OnlyHealthy_IsHealthy) {
    EXPECT_TRUE(healthy.isHealthy());
    for (const auto& one : {missingIndex, truncated, stale, unreadable}) {
        EXPECT_FALSE(one.isHealthy()) << one.label();
    }
}

TEST(ClipDiagnosis, Damage_IsRepairableUnlessUnreadable) {
    for (const auto& one : {missingIndex, truncated, stale}) {
        EXPECT_TRUE(one.isRepairable()) << one.label();
    }
    EXPECT_FALSE(unreadable.isRepairable());
    EXPECT_FALSE(healthy.isRepairable());
}

TEST(ClipDiagnosis, Cases_StandInTheirOrder) {
    const std::array all{missingIndex, truncated, stale, unreadable, healthy};

    EXPECT_EQ(std::variant_size_v<ClipDiagnosis::Any>, all.size());
    for (std::size_t i = 0; i < all.size(); ++i) EXPECT_EQ(all[i].value.index(), i);
}

TEST(ClipDiagnosis, Equality_IsOfCaseAndPayloads) {
    EXPECT_EQ(truncated, (ClipDiagnosis{ClipDiagnosis::Truncated{9, 5}}));
    EXPECT_NE(truncated, (ClipDiagnosis{ClipDiagnosis::Truncated{9, 6}}));
    EXPECT_NE(truncated, (ClipDiagnosis{ClipDiagnosis::Truncated{8, 5}}));
    EXPECT_NE(truncated, (ClipDiagnosis{ClipDiagnosis::StaleWAVSizes{9, 5}}));
    EXPECT_NE(stale, (ClipDiagnosis{ClipDiagnosis::StaleWAVSizes{0, 13}}));
    EXPECT_NE(missingIndex, (ClipDiagnosis{ClipDiagnosis::MissingIndex{8}}));
    EXPECT_NE(unreadable, (ClipDiagnosis{ClipDiagnosis::Unreadable{"mdat empty"}}));
    EXPECT_EQ(healthy, ClipDiagnosis{ClipDiagnosis::Healthy{}});
}

TEST(ClipReport, Name_IsTheLastPartOfThePath) {
    EXPECT_EQ((ClipReport{"/card/DCIM/A001.MOV", 3, healthy}.name()), "A001.MOV");
    EXPECT_EQ((ClipReport{"A001.MOV", 3, healthy}.name()), "A001.MOV");
    EXPECT_EQ((ClipReport{"/card/line\nfeed\xFF.mov", 3, healthy}.name()), "line\nfeed\xFF.mov");
}

TEST(RecoveryScan, DamagedAndHealthy_KeepTheOrderAndLeaveUnreadableOut) {
    const ClipReport one{"/1.mov", 1, truncated};
    const ClipReport two{"/2.mov", 1, healthy};
    const ClipReport three{"/3.wav", 1, unreadable};
    const ClipReport four{"/4.wav", 1, stale};
    const ClipReport five{"/5.mov", 1, missingIndex};
    const ClipReport six{"/6.mov", 1, healthy};
    const RecoveryScan scan{{six, five, four, three, two, one}};

    EXPECT_EQ(scan.damaged(), (std::vector{five, four, one}));
    EXPECT_EQ(scan.healthy(), (std::vector{six, two}));
    EXPECT_EQ(scan.reports.size(), 6U);
}

TEST(RecoveryScan, Empty_HasNeitherDamagedNorHealthy) {
    EXPECT_TRUE(RecoveryScan().damaged().empty());
    EXPECT_TRUE(RecoveryScan().healthy().empty());
}

TEST(ClipDoctor, Extensions_AreThese) {
    using Names = std::vector<std::string_view>;
    const auto namesOf = [](const auto& set) { return Names(set.begin(), set.end()); };

    EXPECT_EQ(namesOf(ClipDoctor::movieExtensions), (Names{"mov", "mp4", "m4v"}));
    EXPECT_EQ(namesOf(ClipDoctor::waveExtensions), (Names{"wav", "bwf"}));
    EXPECT_EQ(namesOf(ClipDoctor::mxfExtensions), (Names{"mxf"}));
}

}  // namespace

}  // namespace ReelCore
