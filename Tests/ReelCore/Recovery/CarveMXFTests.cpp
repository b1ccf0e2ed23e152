#include "CarveImage.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "Support/KLV.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using Findings = std::vector<Finding>;

Finding mxf(std::int64_t offset, std::size_t length, bool complete) {
    return {FindingKind::mxf, offset, static_cast<std::int64_t>(length), complete};
}

std::string headerPartition() {
    return triplet(partitionKey(2), garbage(88));
}

std::string essence(std::size_t size = 1000) {
    return triplet(essenceKey(), garbage(size));
}

TEST(CarveMXF, ClipWithAFooter_IsComplete) {
    const std::string clip = mxfClip(garbage(5000));

    EXPECT_EQ(CarveImage(garbage(77) + clip + garbage(100)).scan(),
              (Findings{mxf(77, clip.size(), true)}));
}

TEST(CarveMXF, ClipWithoutAFooter_IsIncomplete) {
    const std::string clip = headerPartition() + essence() + essence();

    EXPECT_EQ(CarveImage(clip + garbage(100)).scan(), (Findings{mxf(0, clip.size(), false)}));
}

TEST(CarveMXF, WhatStandsBehindTheFooterInTheChain_BelongsToTheClip) {
    const std::string clip = mxfClip(garbage(500)) + essence();

    EXPECT_EQ(CarveImage(clip + garbage(100)).scan(), (Findings{mxf(0, clip.size(), true)}));
}

TEST(CarveMXF, FewerThanThreeTriplets_AreNoFinding) {
    EXPECT_EQ(CarveImage(headerPartition() + garbage(100)).scan(), Findings());
    EXPECT_EQ(CarveImage(headerPartition() + essence() + garbage(100)).scan(), Findings());
    EXPECT_EQ(CarveImage(headerPartition() + triplet(partitionKey(4), garbage(88))).scan(),
              Findings());
}

TEST(CarveMXF, ThreeTriplets_AreAFinding) {
    const std::string clip = headerPartition() + essence() + essence();

    EXPECT_EQ(CarveImage(clip).scan(), (Findings{mxf(0, clip.size(), false)}));
}

TEST(CarveMXF, TwoClipsBackToBack_AreTwoFindings) {
    const std::string first = mxfClip(garbage(3000));
    const std::string second = mxfClip(garbage(4000));

    EXPECT_EQ(CarveImage(first + second).scan(),
              (Findings{mxf(0, first.size(), true), mxf(std::ssize(first), second.size(), true)}));
}

TEST(CarveMXF, BodyAndFooterPartitions_BeginNoClip) {
    const std::string chain = essence() + essence() + essence();

    EXPECT_EQ(CarveImage(triplet(partitionKey(3), garbage(88)) + chain).scan(), Findings());
    EXPECT_EQ(CarveImage(triplet(partitionKey(4), garbage(88)) + chain).scan(), Findings());
}

TEST(CarveMXF, TripletCutOffByTheImagesEnd_IsLeftOut) {
    const std::string whole = headerPartition() + essence() + essence();
    const std::string cut = essence().substr(0, 900);

    EXPECT_EQ(CarveImage(whole + cut).scan(), (Findings{mxf(0, whole.size(), false)}));
}

TEST(CarveMXF, ThirdTripletCutOffByTheImagesEnd_LeavesNoFinding) {
    const std::string clip = headerPartition() + essence() + essence();

    EXPECT_EQ(CarveImage(clip.substr(0, clip.size() - 1)).scan(), Findings());
}

TEST(CarveMXF, HeaderPartitionInsideEssence_IsNoSecondFinding) {
    const std::string clip = mxfClip(garbage(100) + mxfClip(garbage(50)) + garbage(100));

    EXPECT_EQ(CarveImage(clip).scan(), (Findings{mxf(0, clip.size(), true)}));
}

TEST(CarveMXF, Walk_BeginsWhereItIsTold) {
    const std::string clip = mxfClip(garbage(500));
    const CarveImage image(garbage(5) + clip);
    const File file = image.open();
    CarveGround ground(file, image.size(), [] { return false; });

    EXPECT_EQ(walkMXF(ground, 5), mxf(5, clip.size(), true));
    EXPECT_EQ(walkMXF(ground, 4), std::nullopt);
    EXPECT_EQ(walkMXF(ground, image.size()), std::nullopt);
}

}  // namespace
