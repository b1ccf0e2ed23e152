#include "ReelCore/Planning/StorageCalculator.h"

#include <string>
#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using CardType = StorageCalculator::CardType;
using Codec = StorageCalculator::Codec;
using Resolution = StorageCalculator::Resolution;
using Scaled = StorageCalculator::RateModel::Scaled;
using Tiered = StorageCalculator::RateModel::Tiered;
using Custom = StorageCalculator::RateModel::Custom;

/// Read before `main`, maybe also before the library's own constants are there.
const auto resolutionsAtStart = Resolution::all();

/// Compares record by record, so that a failure names the one that differs.
template <class Record>
void expectTable(std::span<const Record> table, const std::vector<Record>& expected) {
    ASSERT_EQ(table.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(table[i].id, expected[i].id);
        EXPECT_EQ(table[i].name, expected[i].name);
        EXPECT_TRUE(table[i] == expected[i]) << expected[i].id;
    }
}

TEST(StorageTables, Resolutions_AreFourFromTheSmallestUp) {
    expectTable(Resolution::all(), {{"hd", "HD 1920×1080", 1920, 1080},
                                    {"uhd", "UHD 3840×2160", 3840, 2160},
                                    {"4kdci", "4K DCI 4096×2160", 4096, 2160},
                                    {"8k", "8K 7680×4320", 7680, 4320}});
}

TEST(StorageTables, ResolutionsReadBeforeMain_AreWhole) {
    expectTable(resolutionsAtStart, {{"hd", "HD 1920×1080", 1920, 1080},
                                     {"uhd", "UHD 3840×2160", 3840, 2160},
                                     {"4kdci", "4K DCI 4096×2160", 4096, 2160},
                                     {"8k", "8K 7680×4320", 7680, 4320}});
}

TEST(StorageTables, ResolutionConstants_AreThoseOfTheTable) {
    EXPECT_EQ(Resolution::hd, Resolution::all()[0]);
    EXPECT_EQ(Resolution::uhd, Resolution::all()[1]);
    EXPECT_EQ(Resolution::dci4k, Resolution::all()[2]);
    EXPECT_EQ(Resolution::uhd8k, Resolution::all()[3]);
}

TEST(StorageTables, Resolution_IsComparedFieldByField) {
    const Resolution hd = Resolution::hd;

    EXPECT_NE(hd, (Resolution{"hd2", hd.name, hd.width, hd.height}));
    EXPECT_NE(hd, (Resolution{hd.id, "HD", hd.width, hd.height}));
    EXPECT_NE(hd, (Resolution{hd.id, hd.name, 1921, hd.height}));
    EXPECT_NE(hd, (Resolution{hd.id, hd.name, hd.width, 1081}));
}

TEST(StorageTables, Resolution_CanBeKeptInAHashedSet) {
    const std::unordered_set<Resolution> two{Resolution::hd, Resolution::uhd, Resolution::hd};

    EXPECT_EQ(two.size(), 2U);
    EXPECT_TRUE(two.contains(Resolution::uhd));
    EXPECT_FALSE(two.contains(Resolution::uhd8k));
}

TEST(StorageTables, Codecs_StandInTheOrderOfThePicker) {
    expectTable(StorageCalculator::codecs(),
                {{"prores_proxy", "ProRes 422 Proxy", {Scaled{36}}, true, ""},
                 {"prores_lt", "ProRes 422 LT", {Scaled{82}}, true, ""},
                 {"prores_422", "ProRes 422", {Scaled{117}}, true, ""},
                 {"prores_hq", "ProRes 422 HQ", {Scaled{176}}, true, ""},
                 {"prores_4444", "ProRes 4444", {Scaled{264}}, true, ""},
                 {"dnxhr_lb", "DNxHR LB", {Scaled{36}}, true, "approx"},
                 {"dnxhr_sq", "DNxHR SQ", {Scaled{115}}, true, "approx"},
                 {"dnxhr_hq", "DNxHR HQ", {Scaled{175}}, true, "approx"},
                 {"xavci_4k",
                  "XAVC-I 4K (FX9/FX6)",
                  {Tiered{300, 600}},
                  false,
                  "Class 300; 600 Mbps at 50/59.94p"},
                 {"xavci_hd", "XAVC-I HD", {Tiered{111, 222}}, false, ""},
                 {"xavcl_4k", "XAVC-L 4K", {Tiered{100, 150}}, false, ""},
                 {"custom",
                  "Custom bitrate…",
                  {Custom{100}},
                  false,
                  "enter the camera-spec Mbps (H.264/HEVC/RAW)"}});
}

TEST(StorageTables, CardTypes_StandInTheOrderOfThePicker) {
    expectTable(StorageCalculator::cardTypes(),
                {{"cfexpress_a", "CFexpress Type A", {80, 160, 320, 640, 960}},
                 {"cfexpress_b", "CFexpress Type B", {128, 256, 512, 1024, 2048}},
                 {"xqd", "XQD", {64, 120, 160, 240, 512}},
                 {"sxs", "SxS", {32, 64, 128, 256}},
                 {"axs", "AXS", {256, 512, 1024}},
                 {"sd", "SD (UHS-II)", {64, 128, 256, 512, 1024}},
                 {"microsd", "microSD", {64, 128, 256, 512, 1024}}});
}

TEST(StorageTables, DriveSizesAndTheUsableShareOfACard) {
    const auto sizes = StorageCalculator::driveSizesTB();

    EXPECT_EQ(std::vector(sizes.begin(), sizes.end()),
              (std::vector<std::int64_t>{1, 2, 4, 5, 8, 12, 16, 20, 24}));
    EXPECT_EQ(StorageCalculator::cardUsableFactor, 0.95);
}

TEST(StorageTables, Codec_IsFoundByItsExactID) {
    for (const Codec& one : StorageCalculator::codecs()) {
        EXPECT_TRUE(StorageCalculator::codec(one.id) == one) << one.id;
    }
    EXPECT_FALSE(StorageCalculator::codec("ProRes 422"));
    EXPECT_FALSE(StorageCalculator::codec("PRORES_422"));
    EXPECT_FALSE(StorageCalculator::codec("prores"));
    EXPECT_FALSE(StorageCalculator::codec(""));
}

TEST(StorageTables, Resolution_IsFoundByItsExactID) {
    for (const Resolution& one : Resolution::all()) {
        EXPECT_TRUE(StorageCalculator::resolution(one.id) == one) << one.id;
    }
    EXPECT_FALSE(StorageCalculator::resolution("HD"));
    EXPECT_FALSE(StorageCalculator::resolution("8"));
    EXPECT_FALSE(StorageCalculator::resolution(""));
}

TEST(StorageTables, CardType_IsFoundByItsExactID) {
    for (const CardType& one : StorageCalculator::cardTypes()) {
        EXPECT_TRUE(StorageCalculator::cardType(one.id) == one) << one.id;
    }
    EXPECT_FALSE(StorageCalculator::cardType("XQD"));
    EXPECT_FALSE(StorageCalculator::cardType("cfexpress"));
    EXPECT_FALSE(StorageCalculator::cardType(""));
}

}  // namespace
