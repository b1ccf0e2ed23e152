#include "ReelCore/Models/CameraFormat.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using Names = std::vector<std::string>;

TEST(CameraFormat, RawValues_AreTheNamesOnPaper) {
    EXPECT_EQ(rawValue(CameraFormat::red), "RED");
    EXPECT_EQ(rawValue(CameraFormat::arri), "ARRI");
    EXPECT_EQ(rawValue(CameraFormat::sony), "Sony");
    EXPECT_EQ(rawValue(CameraFormat::blackmagic), "Blackmagic");
    EXPECT_EQ(rawValue(CameraFormat::canon), "Canon");
    EXPECT_EQ(rawValue(CameraFormat::panasonic), "Panasonic");
    EXPECT_EQ(rawValue(CameraFormat::generic), "Generic");
}

TEST(CameraFormat, AllCases_StandInOrder) {
    const auto cases = allCases<CameraFormat>();

    EXPECT_EQ(std::vector(cases.begin(), cases.end()),
              (std::vector{CameraFormat::red, CameraFormat::arri, CameraFormat::sony,
                           CameraFormat::blackmagic, CameraFormat::canon, CameraFormat::panasonic,
                           CameraFormat::generic}));
}

TEST(CameraFormat, FromRawValue_TakesExactTextsOnly) {
    for (const CameraFormat one : allCases<CameraFormat>()) {
        EXPECT_EQ(fromRawValue<CameraFormat>(rawValue(one)), one);
    }
    EXPECT_EQ(fromRawValue<CameraFormat>("sony"), std::nullopt);
    EXPECT_EQ(fromRawValue<CameraFormat>(""), std::nullopt);
}

struct Card {
    Names names;
    CameraFormat format;
};

/// One card for each rule, with nothing on it but what the rule asks for, in the rules' order.
const std::vector<Card> cardsByRule{
    {{"A001_C001.RDC"}, CameraFormat::red},
    {{"RDC"}, CameraFormat::red},
    {{"AVID_MEDIAFILES"}, CameraFormat::arri},
    {{"A001C001.ARI"}, CameraFormat::arri},
    {{"PRIVATE", "AVF_INFO"}, CameraFormat::sony},
    {{"XDROOT"}, CameraFormat::sony},
    {{"CLIP", "SUB"}, CameraFormat::sony},
    {{"DCIM", "CLIPS001"}, CameraFormat::blackmagic},
    {{"CONTENTS", "AVCHD"}, CameraFormat::panasonic},
    {{"DCIM", "MISC"}, CameraFormat::canon},
};

Names withLetters(Names names, int (*change)(int)) {
    for (std::string& name : names) {
        std::ranges::transform(name, name.begin(), [&](char c) {
            return static_cast<char>(change(static_cast<unsigned char>(c)));
        });
    }
    return names;
}

TEST(Detect, EachRule_HoldsInEitherCaseOfLettersAndAnyOrderOfNames) {
    for (const Card& card : cardsByRule) {
        Names reversed(card.names.rbegin(), card.names.rend());
        EXPECT_EQ(detect(card.names), card.format) << card.names.front();
        EXPECT_EQ(detect(reversed), card.format) << card.names.front();
        EXPECT_EQ(detect(withLetters(card.names, std::tolower)), card.format) << card.names.front();
    }
    EXPECT_EQ(detect({"a001_c001.rDc"}), CameraFormat::red);
    EXPECT_EQ(detect({"Clip", "sUB"}), CameraFormat::sony);
}

TEST(Detect, CardThatSatisfiesTwoRules_FollowsTheEarlier) {
    for (std::size_t first = 0; first < cardsByRule.size(); ++first) {
        for (std::size_t second = first + 1; second < cardsByRule.size(); ++second) {
            Names both = cardsByRule[second].names;
            both.insert(both.end(), cardsByRule[first].names.begin(),
                        cardsByRule[first].names.end());
            EXPECT_EQ(detect(both), cardsByRule[first].format)
                << cardsByRule[first].names.front() << " and " << cardsByRule[second].names.front();
        }
    }
}

TEST(Detect, HalfOfARule_IsGeneric) {
    for (const Card& card : cardsByRule) {
        if (card.names.size() < 2) continue;
        for (const std::string& name : card.names) {
            EXPECT_EQ(detect({name}), CameraFormat::generic) << name;
        }
    }
}

TEST(Detect, NoNames_AreGeneric) {
    EXPECT_EQ(detect({}), CameraFormat::generic);
}

TEST(Detect, NamesThatOnlyLookAlike_AreGeneric) {
    const std::vector<Names> cards{{"A001.RDC.bak"},
                                   {"A001RDC"},
                                   {"XRDC"},
                                   {"RDC2"},
                                   {"A001ARI"},
                                   {"A001.ARIX"},
                                   {"ARI"},
                                   {"XDROOT2"},
                                   {"CLIPS", "SUB"},
                                   {"DCIM", "MISC1"},
                                   {"DCIM", "CLIPS002"},
                                   {"CONTENT", "AVCHD"},
                                   {"AVID MEDIAFILES"},
                                   {""}};
    for (const Names& names : cards) {
        EXPECT_EQ(detect(names), CameraFormat::generic) << names.front();
    }
}

TEST(Detect, EndingAlone_IsAName) {
    EXPECT_EQ(detect({".RDC"}), CameraFormat::red);
    EXPECT_EQ(detect({".ari"}), CameraFormat::arri);
}

TEST(Detect, CanonAndBlackmagic_AreToldApartByTheClipFolder) {
    EXPECT_EQ(detect({"DCIM", "MISC"}), CameraFormat::canon);
    EXPECT_EQ(detect({"DCIM", "MISC", "CLIPS001"}), CameraFormat::blackmagic);
}

TEST(Detect, NamesThatAreNotText_DoNotDisturb) {
    EXPECT_EQ(detect({"\xFF\xFE", "dcim", "caf\xC3", "misc"}), CameraFormat::canon);
    EXPECT_EQ(detect({"\xFF.rdc"}), CameraFormat::red);
}

}  // namespace
