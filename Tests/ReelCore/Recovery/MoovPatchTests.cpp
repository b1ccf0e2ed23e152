#include "ReelCore/Recovery/MoovPatch.h"

#include "PatchedMovie.h"
#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Recovery/RecoveryError.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::bigEndian;
using TestSupport::box;
using TestSupport::childrenOf;
using TestSupport::moovBox;
using TestSupport::movieHeader;
using TestSupport::parsedMoov;
using TestSupport::staleDuration;
using TestSupport::stereoSound;
using TestSupport::textOf;
using TestSupport::TrackBoxes;
using TestSupport::TrackRecipe;

}  // namespace

TEST(MoovPatch, Durations_AreWrittenInEachClock) {
    PatchedMovie movie(moovBox({{.timescale = 24'000, .delta = 1001}, stereoSound}));

    const auto stats = movie.patched({std::vector<MdatIndex::VideoSample>(240, {0, 20}),
                                      {{20, 192'000}, {500'000, 192'002}},
                                      0});

    // 240 * 1001 units of 1/24000 s are 10.01 s; 96000 samples, whatever is left over, are 2 s.
    EXPECT_EQ(movie.of(0, {"mdia", "mdhd"}).substr(16, 4), words({240'240}));
    EXPECT_EQ(movie.of(0, {"tkhd"}).substr(20, 4), words({6006}));
    EXPECT_EQ(movie.of(1, {"mdia", "mdhd"}).substr(16, 4), words({96'000}));
    EXPECT_EQ(movie.of(1, {"tkhd"}).substr(20, 4), words({1200}));
    EXPECT_EQ(textOf(movie.moov->first({"mvhd"})->payload).substr(16, 4), words({6006}));
    EXPECT_EQ(stats, (MoovRebuilder::Stats{240, 2.0, 10.01}));
}

TEST(MoovPatch, SoundLongerThanPicture_IsTheMoviesDuration) {
    PatchedMovie movie(moovBox({{}, stereoSound}));

    movie.patched({{{0, 20}}, {{20, 384'000}}, 0});

    EXPECT_EQ(textOf(movie.moov->first({"mvhd"})->payload).substr(16, 4), words({1200}));
}

TEST(MoovPatch, DurationsInTheMoviesClock_AreCutToWholeUnits) {
    PatchedMovie movie(moovBox({{.timescale = 1001, .delta = 2}}));

    movie.patched(framesAlone(5));

    EXPECT_EQ(movie.of(0, {"tkhd"}).substr(20, 4), words({5}));  // 10 * 600 / 1001 = 5.99
}

TEST(MoovPatch, NothingButTheDurationChangesInAHeader) {
    PatchedMovie movie(moovBox({{}}));
    const std::string mvhd = textOf(movie.moov->first({"mvhd"})->payload);
    const std::string tkhd = movie.of(0, {"tkhd"});
    const std::string mdhd = movie.of(0, {"mdia", "mdhd"});

    movie.patched(framesAlone(25));

    const auto with = [](std::string bytes, std::size_t at, std::uint32_t number) {
        return bytes.replace(at, 4, bigEndian(number, 4));
    };
    EXPECT_EQ(textOf(movie.moov->first({"mvhd"})->payload), with(mvhd, 16, 600));
    EXPECT_EQ(movie.of(0, {"tkhd"}), with(tkhd, 20, 600));
    EXPECT_EQ(movie.of(0, {"mdia", "mdhd"}), with(mdhd, 16, 25));
}

TEST(MoovPatch, VersionOne_HasDurationsOf64Bits) {
    const TrackRecipe slow{.timescale = 1, .delta = 0x80000000, .version = 1};
    PatchedMovie movie(box("moov", movieHeader(1, 2) + TrackBoxes(slow).trak()));

    movie.patched(framesAlone(3));

    EXPECT_EQ(movie.of(0, {"mdia", "mdhd"}).substr(24, 8), words({1, 0x80000000}));
    EXPECT_EQ(movie.of(0, {"tkhd"}).substr(28, 8), words({3, 0}));
    EXPECT_EQ(textOf(movie.moov->first({"mvhd"})->payload).substr(24, 8), words({3, 0}));
}

TEST(MoovPatch, VersionZero_IsCappedAt32Bits) {
    PatchedMovie movie(moovBox({{.timescale = 1, .delta = 0x80000000}}));

    movie.patched(framesAlone(3));

    EXPECT_EQ(movie.of(0, {"mdia", "mdhd"}).substr(16, 4), words({0xFFFFFFFF}));
    EXPECT_EQ(movie.of(0, {"tkhd"}).substr(20, 4), words({0xFFFFFFFF}));
    EXPECT_EQ(textOf(movie.moov->first({"mvhd"})->payload).substr(16, 4), words({0xFFFFFFFF}));
}

TEST(MoovPatch, LargestDurationOfVersionZero_IsWrittenAsItIs) {
    PatchedMovie movie(moovBox({{.timescale = 1, .delta = 0xFFFFFFFE}}));

    movie.patched(framesAlone(1));

    EXPECT_EQ(movie.of(0, {"mdia", "mdhd"}).substr(16, 4), words({0xFFFFFFFE}));
}

TEST(MoovPatch, HeaderTooShortForItsDuration_StaysAsItIs) {
    TrackBoxes boxes;
    boxes.tkhd = box("tkhd", words({0, 1, 2, 3, 4}) + "123");
    PatchedMovie movie(box("moov", box("mvhd", words({0, 1, 2, 600}) + "123") + boxes.trak()));

    movie.patched(framesAlone(5));

    EXPECT_EQ(movie.of(0, {"tkhd"}), words({0, 1, 2, 3, 4}) + "123");
    EXPECT_EQ(textOf(movie.moov->first({"mvhd"})->payload), words({0, 1, 2, 600}) + "123");
}

TEST(MoovPatch, HeaderOfVersionOneCutInItsDuration_TakesTheHalfThatFits) {
    TrackBoxes boxes({.version = 1});
    boxes.tkhd =
        box("tkhd", bigEndian(1, 1) + std::string(27, 'x') + words({staleDuration}) + "12");
    PatchedMovie movie(box("moov", movieHeader(0, 600) + boxes.trak()));

    movie.patched(framesAlone(25));

    EXPECT_EQ(movie.of(0, {"tkhd"}).substr(28), words({0}) + "12");
}

TEST(MoovPatch, MovieTimescaleOfVersionOne_StandsBehindWideDates) {
    PatchedMovie movie(box("moov", movieHeader(1, 1000) + TrackBoxes().trak()));

    movie.patched(framesAlone(50));

    EXPECT_EQ(movie.of(0, {"tkhd"}).substr(20, 4), words({2000}));
}

TEST(MoovPatch, TimescalesOfZero_GiveDurationsOfZero) {
    PatchedMovie noMediaClock(moovBox({{.timescale = 0}, stereoSound}));
    PatchedMovie noMovieClock(box("moov", box("mvhd") + TrackBoxes().trak()));

    const auto stats = noMediaClock.patched({{{0, 20}}, {{20, 192'000}}, 0});
    noMovieClock.patched(framesAlone(25));

    EXPECT_EQ(stats, (MoovRebuilder::Stats{1, 1.0, 0.0}));
    EXPECT_EQ(noMediaClock.of(0, {"tkhd"}).substr(20, 4), words({0}));
    EXPECT_EQ(noMediaClock.of(0, {"mdia", "mdhd"}).substr(16, 4), words({1}));
    EXPECT_EQ(textOf(noMediaClock.moov->first({"mvhd"})->payload).substr(16, 4), words({600}));
    EXPECT_EQ(noMovieClock.of(0, {"tkhd"}).substr(20, 4), words({0}));
}

TEST(MoovPatch, SoundTimescaleOfZero_LeavesThePicturesDuration) {
    TrackRecipe noClock = stereoSound;
    noClock.timescale = 0;
    PatchedMovie movie(moovBox({{}, noClock}));

    const auto stats = movie.patched({{{0, 20}}, {{20, 384'000}}, 0});

    EXPECT_EQ(stats, (MoovRebuilder::Stats{1, 0.0, 0.04}));
    EXPECT_EQ(movie.of(1, {"mdia", "mdhd"}).substr(16, 4), words({96'000}));
    EXPECT_EQ(textOf(movie.moov->first({"mvhd"})->payload).substr(16, 4), words({24}));
}

TEST(MoovPatch, Movie_KeepsTheTwoTracksAloneAndNoUserData) {
    const std::string sound = TrackBoxes(stereoSound).trak();
    const auto moov =
        parsedMoov(box("moov", box("udta", box("name", "x")) + sound + movieHeader(0, 600) +
                                   box("meta", "1234") + TrackBoxes({.kind = "tmcd"}).trak() +
                                   box("iods") + TrackBoxes().trak() + box("udta") + sound));
    const auto all = describe(*moov);

    patch(*moov, {all.at(2), all.at(0)}, {{{0, 20}}, {{20, 4}}, 24}, 36);

    EXPECT_EQ(childrenOf(*moov), "mvhd iods trak trak");
    EXPECT_EQ(moov->all("trak").at(0), all[2].trak);
    EXPECT_EQ(moov->all("trak").at(1), all[0].trak);
}

TEST(MoovPatch, EditListsOfTheKeptTracks_AreGone) {
    TrackBoxes twice;
    twice.edts += twice.edts;
    PatchedMovie movie(
        box("moov", movieHeader(0, 600) + twice.trak() + TrackBoxes(stereoSound).trak()));

    movie.patched(framesAlone(1));

    for (const auto& trak : movie.moov->all("trak")) EXPECT_EQ(childrenOf(*trak), "tkhd mdia");
}

TEST(MoovPatch, TrackWithoutItsHeader_IsPatchedAllTheSame) {
    TrackBoxes headless;
    headless.tkhd = "";
    PatchedMovie movie(box("moov", movieHeader(0, 600) + headless.trak()));

    movie.patched(framesAlone(25));

    EXPECT_EQ(movie.of(0, {"mdia", "mdhd"}).substr(16, 4), words({25}));
}

TEST(MoovPatch, MovieWithoutHeader_IsRefused) {
    PatchedMovie movie(box("moov", TrackBoxes().trak()));

    try {
        movie.patched(framesAlone(1));
        FAIL() << "a movie without header was patched";
    } catch (const RecoveryError& error) {
        EXPECT_EQ(error.description(), "Reference clip unusable: reference moov has no mvhd");
    }
}

TEST(MoovPatch, TrackWithoutSampleTable_IsRefused) {
    PatchedMovie movie(moovBox({{}}));
    movie.tracks.video.trak->first({"mdia", "minf"})->removeAll({"stbl"});

    try {
        movie.patched(framesAlone(1));
        FAIL() << "a track without sample table was patched";
    } catch (const RecoveryError& error) {
        EXPECT_EQ(error.description(), "Reference clip unusable: track missing stbl");
    }
}

TEST(MoovPatch, ProductsThatOverflow_AreRefused) {
    const auto patchedWith = [](std::uint32_t movieTimescale) {
        PatchedMovie movie(
            box("moov", movieHeader(0, movieTimescale) +
                            TrackBoxes({.timescale = 1, .delta = 0xFFFFFFFF}).trak()));
        return movie.patched(framesAlone(3)).videoFrames;
    };

    EXPECT_EQ(patchedWith(0x2AAAAAAA), 3);
    EXPECT_THROW(static_cast<void>(patchedWith(0xFFFFFFFF)), OutOfRange);
}

TEST(MoovPatch, SoundOfMoreBytesThanCanBeCounted_IsRefused) {
    PatchedMovie movie(moovBox({{}, stereoSound}));

    EXPECT_THROW(movie.patched({{{0, 20}}, {{0, 0x7FFFFFFFFFFFFFFF}, {20, 1}}, 0}), OutOfRange);
}

}  // namespace ReelCore
