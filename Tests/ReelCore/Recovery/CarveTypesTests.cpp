#include "ReelCore/Recovery/CarveTypes.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;

TEST(FindingKind, RawValues_AreTheTextsForPeopleInOrder) {
    std::vector<std::string> texts;
    for (const FindingKind kind : allCases<FindingKind>()) texts.emplace_back(rawValue(kind));

    EXPECT_EQ(texts, (std::vector<std::string>{"QuickTime/MP4", "MXF (Sony XAVC etc.)",
                                               "headerless ProRes run", "RIFF/WAVE audio"}));
}

TEST(FindingKind, RawValue_LeadsBackToItsCase) {
    EXPECT_EQ(fromRawValue<FindingKind>("QuickTime/MP4"), FindingKind::movie);
    EXPECT_EQ(fromRawValue<FindingKind>("MXF (Sony XAVC etc.)"), FindingKind::mxf);
    EXPECT_EQ(fromRawValue<FindingKind>("headerless ProRes run"), FindingKind::orphanProRes);
    EXPECT_EQ(fromRawValue<FindingKind>("RIFF/WAVE audio"), FindingKind::wave);
    EXPECT_EQ(fromRawValue<FindingKind>("movie"), std::nullopt);
}

TEST(FindingKind, OutputExtension_IsThatOfTheKind) {
    EXPECT_EQ(outputExtension(FindingKind::movie), "mov");
    EXPECT_EQ(outputExtension(FindingKind::mxf), "mxf");
    EXPECT_EQ(outputExtension(FindingKind::orphanProRes), "mov");
    EXPECT_EQ(outputExtension(FindingKind::wave), "wav");
}

TEST(Finding, Label_OfACompleteOneTellsKindPlaceAndSize) {
    const Finding finding{FindingKind::movie, 1'572'864, 10'485'760, true};

    EXPECT_EQ(finding.label(), "QuickTime/MP4 @ 1.5 MB into image (10.0 MB)");
}

TEST(Finding, Label_OfAnIncompleteOneSaysSo) {
    const Finding finding{FindingKind::orphanProRes, 0, 1, false};

    EXPECT_EQ(finding.label(), "headerless ProRes run @ 0.0 MB into image (0.0 MB) — incomplete");
}

TEST(Finding, Label_RoundsToTheNearestTenthAndAHalfToTheEvenOne) {
    const Finding finding{FindingKind::mxf, 262'144, 786'432, true};

    EXPECT_EQ(finding.label(), "MXF (Sony XAVC etc.) @ 0.2 MB into image (0.8 MB)");
}

TEST(Finding, Label_OfALargeCardHasNoSeparators) {
    const Finding finding{FindingKind::wave, std::int64_t{1'900'000'000'000}, 3'000'000'000, true};

    EXPECT_EQ(finding.label(), "RIFF/WAVE audio @ 1811981.2 MB into image (2861.0 MB)");
}

TEST(Finding, Equality_LooksAtEveryField) {
    const Finding finding{FindingKind::wave, 1, 2, true};

    EXPECT_EQ(finding, (Finding{FindingKind::wave, 1, 2, true}));
    EXPECT_NE(finding, (Finding{FindingKind::mxf, 1, 2, true}));
    EXPECT_NE(finding, (Finding{FindingKind::wave, 0, 2, true}));
    EXPECT_NE(finding, (Finding{FindingKind::wave, 1, 0, true}));
    EXPECT_NE(finding, (Finding{FindingKind::wave, 1, 2, false}));
}

TEST(CarveProgress, Fraction_IsThePartScanned) {
    EXPECT_EQ((CarveProgress{25, 100, 0}.fraction()), 0.25);
    EXPECT_EQ((CarveProgress{100, 100, 7}.fraction()), 1.0);
    EXPECT_EQ((CarveProgress{1, 1, 0}.fraction()), 1.0);
}

TEST(CarveProgress, Fraction_OfNothingIsZero) {
    EXPECT_EQ((CarveProgress{0, 0, 0}.fraction()), 0.0);
    EXPECT_EQ((CarveProgress{5, 0, 0}.fraction()), 0.0);
    EXPECT_EQ((CarveProgress{5, -1, 0}.fraction()), 0.0);
}

}  // namespace
