#include "ReelCore/Recovery/SampleTables.h"

#include "PatchedMovie.h"
#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Recovery/MdatHeader.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::box;
using TestSupport::childrenOf;
using TestSupport::moovBox;
using TestSupport::sampleDescription;
using TestSupport::stereoSound;
using TestSupport::textOf;

}  // namespace

TEST(SampleTables, VideoTables_HoldEveryFrame) {
    PatchedMovie movie(moovBox({{.timescale = 30'000, .delta = 1001}}));

    movie.patched({{{0, 100}, {140, 0xFFFFFFFF}, {0x100000000, 20}}, {}, 0x100000014});

    EXPECT_EQ(movie.table(0, "stts"), words({0, 1, 3, 1001}));
    EXPECT_EQ(movie.table(0, "stsc"), words({0, 1, 1, 1, 1}));
    EXPECT_EQ(movie.table(0, "stsz"), words({0, 0, 3, 100, 0xFFFFFFFF, 20}));
    EXPECT_EQ(movie.table(0, "co64"), words({0, 3, 0, 36, 0, 176, 1, 36}));
}

TEST(SampleTables, AudioTables_HoldEveryChunkAndRunsOfEqualOnes) {
    PatchedMovie movie(moovBox({{}, stereoSound}));

    movie.patched({{{0, 20}}, {{20, 40}, {90, 40}, {200, 8}, {300, 40}, {0x200000000, 40}}, 0});

    EXPECT_EQ(movie.table(1, "stts"), words({0, 1, 42, 1}));
    EXPECT_EQ(movie.table(1, "stsc"), words({0, 3, 1, 10, 1, 3, 2, 1, 4, 10, 1}));
    EXPECT_EQ(movie.table(1, "stsz"), words({0, 4, 42}));
    EXPECT_EQ(movie.table(1, "co64"), words({0, 5, 0, 56, 0, 126, 0, 236, 0, 336, 2, 36}));
}

TEST(SampleTables, AudioTrackWithoutChunks_HasEmptyTables) {
    PatchedMovie movie(moovBox({{}, stereoSound}));

    const auto stats = movie.patched(framesAlone(2));

    EXPECT_EQ(movie.table(1, "stts"), words({0, 1, 0, 1}));
    EXPECT_EQ(movie.table(1, "stsc"), words({0, 0}));
    EXPECT_EQ(movie.table(1, "stsz"), words({0, 4, 0}));
    EXPECT_EQ(movie.table(1, "co64"), words({0, 0}));
    EXPECT_EQ(stats.audioSeconds, 0.0);
}

TEST(SampleTables, SampleTable_KeepsItsDescriptionAndTakesFourTablesInOrder) {
    PatchedMovie movie(moovBox({{.format = "ap4h"}, stereoSound}));

    movie.patched({{{0, 20}}, {{20, 40}}, 60});

    for (const auto& trak : movie.moov->all("trak")) {
        const auto stbl = trak->first({"mdia", "minf", "stbl"});
        EXPECT_EQ(childrenOf(*stbl), "stsd stts stsc stsz co64");
    }
    EXPECT_EQ(box("stsd", movie.table(0, "stsd")), sampleDescription("ap4h"));
    EXPECT_EQ(box("stsd", movie.table(1, "stsd")), sampleDescription("sowt"));
}

TEST(SampleTables, NumbersBeyond32Bits_AreRefused) {
    PatchedMovie movie(moovBox({{}, stereoSound}));

    EXPECT_THROW(movie.patched({{{0, 0x100000000}}, {}, 0}), OutOfRange);
    EXPECT_THROW(movie.patched({{{0, -1}}, {}, 0}), OutOfRange);
    EXPECT_THROW(movie.patched({{{0, 20}}, {{20, 0x400000000}}, 0}), OutOfRange);
}

TEST(SampleTablesDeathTest, NegativeOffset_EndsTheProcess) {
    PatchedMovie movie(moovBox({{}}));

    EXPECT_DEATH(movie.patched({{{-37, 20}}, {}, 0}), "negative offset");
}

TEST(SampleTables, NumbersOf32Bits_AreTaken) {
    PatchedMovie movie(moovBox({{}, stereoSound}));

    movie.patched({{{0, 0xFFFFFFFF}}, {{20, 0x3FFFFFFFC}}, 0});

    EXPECT_EQ(movie.table(1, "stsz"), words({0, 4, 0xFFFFFFFF}));
}

TEST(SampleTables, OffsetThatOverflows_IsRefused) {
    PatchedMovie movie(moovBox({{}}));

    EXPECT_THROW(movie.patched({{{0x7FFFFFFFFFFFFFFF, 20}}, {}, 0}), OutOfRange);
}

TEST(MdatHeader, Size_IsAlwaysOf64BitsAndCountsTheHeader) {
    EXPECT_EQ(textOf(mdatHeader(20)), words({1}) + "mdat" + words({0, 36}));
    EXPECT_EQ(textOf(mdatHeader(0x1FFFFFFFF)), words({1}) + "mdat" + words({2, 15}));
}

}  // namespace ReelCore
