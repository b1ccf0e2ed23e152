#include "ReelCore/Recovery/TrackInfo.h"

#include "ReferenceMovie.h"
#include "Support/Boxes.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::bigEndian;
using TestSupport::box;
using TestSupport::parsedMoov;
using TestSupport::TrackBoxes;

std::vector<TrackInfo> describeTracks(const std::string& boxes) {
    return describe(*parsedMoov(box("moov", boxes)));
}

TrackInfo infoOf(const TrackBoxes& boxes) {
    const auto tracks = describeTracks(boxes.trak());
    return tracks.size() == 1 ? tracks.front() : TrackInfo{};
}

/// A payload of `size` zeros but for a number at `offset`, as much of it as fits.
std::string payloadWith(std::size_t size, std::size_t offset, std::uint32_t number) {
    std::string bytes(offset, '\0');
    bytes += bigEndian(number, 4);
    bytes.resize(size);
    return bytes;
}

}  // namespace

TEST(TrackInfo, VideoTrack_IsReadFromItsBoxes) {
    const TrackInfo info =
        infoOf(TrackBoxes({.format = "apcn", .timescale = 30'000, .delta = 1001}));

    EXPECT_EQ(info.kind, "vide");
    EXPECT_EQ(info.format, "apcn");
    EXPECT_EQ(info.mdhdTimescale, 30'000U);
    EXPECT_EQ(info.sttsDelta, 1001U);
    EXPECT_EQ(info.bytesPerFrame, 0);
}

TEST(TrackInfo, SoundTrack_TellsBytesOfASample) {
    const TrackInfo info = infoOf(TrackBoxes(
        {.kind = "soun", .format = "in24", .timescale = 48'000, .delta = 1, .sampleSize = 6}));

    EXPECT_EQ(info.kind, "soun");
    EXPECT_EQ(info.format, "in24");
    EXPECT_EQ(info.mdhdTimescale, 48'000U);
    EXPECT_EQ(info.bytesPerFrame, 6);
}

TEST(TrackInfo, Tracks_ComeInTheirOrderAndAreTheNodesThemselves) {
    const auto moov = parsedMoov(
        TestSupport::moovBox({{.kind = "tmcd", .format = "tmcd"}, {}, {.kind = "soun"}}));

    const auto tracks = describe(*moov);

    ASSERT_EQ(tracks.size(), 3U);
    EXPECT_EQ(tracks[0].kind, "tmcd");
    EXPECT_EQ(tracks[1].kind, "vide");
    EXPECT_EQ(tracks[2].kind, "soun");
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(tracks[i].trak, moov->all("trak")[i]);
}

TEST(TrackInfo, TrackWithoutANeededBox_IsPassedOver) {
    for (auto member : {&TrackBoxes::hdlr, &TrackBoxes::mdhd, &TrackBoxes::stsd}) {
        TrackBoxes incomplete;
        incomplete.*member = "";

        const auto tracks =
            describeTracks(incomplete.trak() + TrackBoxes({.format = "apco"}).trak());

        ASSERT_EQ(tracks.size(), 1U);
        EXPECT_EQ(tracks.front().format, "apco");
    }
}

TEST(TrackInfo, TrackWithoutSampleTables_IsPassedOver) {
    const TrackBoxes boxes;
    const std::string noTables = box("trak", box("mdia", boxes.mdhd + boxes.hdlr + box("minf")));
    const std::string noMedia = box("trak", boxes.tkhd);

    EXPECT_TRUE(describeTracks(noTables + noMedia).empty());
}

TEST(TrackInfo, SampleDescriptionOutsideTheTables_DoesNotCount) {
    const TrackBoxes boxes;
    const std::string elsewhere = box(
        "trak",
        box("mdia", boxes.mdhd + boxes.hdlr + box("minf", boxes.stsd + box("stbl", boxes.stts))));

    EXPECT_TRUE(describeTracks(elsewhere).empty());
}

TEST(TrackInfo, TrackBelowAnotherBox_IsNotListed) {
    EXPECT_TRUE(describeTracks(box("udta", TrackBoxes().trak())).empty());
}

TEST(TrackInfo, MediaHeader_IsReadByItsVersion) {
    const auto timescaleOf = [](int version, std::size_t size) {
        std::string payload = payloadWith(size, version == 1 ? 20 : 12, 90'000);
        if (!payload.empty()) payload[0] = static_cast<char>(version);
        TrackBoxes boxes;
        boxes.mdhd = box("mdhd", payload);
        return infoOf(boxes).mdhdTimescale;
    };

    EXPECT_EQ(timescaleOf(0, 16), 90'000U);
    EXPECT_EQ(timescaleOf(0, 15), 0U);
    EXPECT_EQ(timescaleOf(2, 16), 90'000U);
    EXPECT_EQ(timescaleOf(1, 24), 90'000U);
    EXPECT_EQ(timescaleOf(1, 23), 0U);
    EXPECT_EQ(timescaleOf(0, 0), 0U);
}

TEST(TrackInfo, TextsInShortPayloads_AreEmpty) {
    TrackBoxes whole;
    whole.hdlr = box("hdlr", "12345678soun");
    whole.stsd = box("stsd", "123456789012sowt");
    TrackBoxes cut;
    cut.hdlr = box("hdlr", "12345678sou");
    cut.stsd = box("stsd", "123456789012sow");

    EXPECT_EQ(infoOf(whole).kind, "soun");
    EXPECT_EQ(infoOf(whole).format, "sowt");
    EXPECT_EQ(infoOf(cut).kind, "");
    EXPECT_EQ(infoOf(cut).format, "");
}

TEST(TrackInfo, TextsThatAreNotASCII_AreEmpty) {
    TrackBoxes boxes;
    boxes.hdlr = box("hdlr", "12345678vid\xFF");
    boxes.stsd = box("stsd", "123456789012\x80pch");

    EXPECT_EQ(infoOf(boxes).kind, "");
    EXPECT_EQ(infoOf(boxes).format, "");
    EXPECT_EQ(infoOf(boxes).mdhdTimescale, 25U);
}

TEST(TrackInfo, Delta_IsTheFirstEntrysAndNeverBelowOne) {
    const auto deltaOf = [](const std::string& stts) {
        TrackBoxes boxes;
        boxes.stts = stts;
        return infoOf(boxes).sttsDelta;
    };

    EXPECT_EQ(deltaOf(box("stts", payloadWith(16, 12, 512) + bigEndian(1, 4) + bigEndian(9, 4))),
              512U);
    EXPECT_EQ(deltaOf(box("stts", payloadWith(15, 12, 0x01020304))), 1U);
    EXPECT_EQ(deltaOf(box("stts", payloadWith(16, 12, 0))), 1U);
    EXPECT_EQ(deltaOf(""), 1U);
}

TEST(TrackInfo, BytesOfASample_AreZeroWithoutAConstantSize) {
    const auto bytesOf = [](const std::string& stsz) {
        TrackBoxes boxes;
        boxes.stsz = stsz;
        return infoOf(boxes).bytesPerFrame;
    };

    EXPECT_EQ(bytesOf(box("stsz", payloadWith(8, 4, 24))), 24);
    EXPECT_EQ(bytesOf(box("stsz", payloadWith(8, 4, 0xFFFFFFFF))), 0xFFFFFFFF);
    EXPECT_EQ(bytesOf(box("stsz", payloadWith(7, 4, 0x01020304))), 0);
    EXPECT_EQ(bytesOf(""), 0);
}

}  // namespace ReelCore
