// What a whole recording tells: the values, and where in the file they may stand.

#include "BWFFixture.h"
#include "Support/Snapshot.h"

#include <future>
#include <vector>

using namespace ReelCore;
using namespace TestSupport;

namespace {

constexpr std::uint64_t oneHour = 172800000;  // At 48 kHz.

}  // namespace

TEST_F(BWFTest, Read_Recording_TellsTimeLengthAndSlate) {
    const AudioClip clip =
        clipOf(broadcastWAV({.seconds = 2.5,
                             .timeReference = oneHour,
                             .iXML = "<BWFXML><SCENE>12A</SCENE><TAKE>3</TAKE><TAPE>R7</TAPE>"
                                     "<NOTE>plane</NOTE><TRACK><NAME>Boom</NAME></TRACK>"
                                     "<TRACK><NAME>Ada</NAME></TRACK></BWFXML>"}));

    EXPECT_EQ(clip.url, at("T001.WAV"));
    EXPECT_EQ(clip.name(), "T001.WAV");
    EXPECT_EQ(clip.startSeconds, 3600.0);
    EXPECT_EQ(clip.duration, 2.5);
    EXPECT_EQ(clip.endSeconds(), 3602.5);
    EXPECT_EQ(clip.sampleRate, 48000.0);
    EXPECT_EQ(clip.scene, "12A");
    EXPECT_EQ(clip.take, "3");
    EXPECT_EQ(clip.tape, "R7");
    EXPECT_EQ(clip.note, "plane");
    EXPECT_EQ(clip.trackNames, (std::vector<std::string>{"Boom", "Ada"}));
}

TEST_F(BWFTest, Read_WAVWithoutMetadata_StartsAtMidnightWithoutSlate) {
    const AudioClip clip = clipOf(broadcastWAV({.seconds = 1.5, .hasBroadcastExtension = false}));

    EXPECT_EQ(clip, bareClip(48000.0, 1.5));
}

TEST_F(BWFTest, Read_TimeReferenceAbove32Bits_IsReadWhole) {
    // 23:00:00 at 96 kHz.
    constexpr std::uint64_t reference = std::uint64_t{23} * 3600 * 96000;
    static_assert(reference > 0xFFFFFFFFU);

    const AudioClip clip = clipOf(broadcastWAV({.sampleRate = 96000, .timeReference = reference}));

    EXPECT_EQ(clip.startSeconds, 82800.0);
}

TEST_F(BWFTest, Read_LargestTimeReference_DividesInDouble) {
    const AudioClip clip = clipOf(broadcastWAV({.timeReference = 0xFFFFFFFFFFFFFFFFU}));

    EXPECT_EQ(clip.startSeconds, 18446744073709551616.0 / 48000.0);
}

TEST_F(BWFTest, Read_OddSampleRate_DividesInDouble) {
    const AudioClip clip = clipOf(
        broadcastWAV({.sampleRate = 47952, .seconds = 1.0, .timeReference = 47952 * 10 + 1}));

    EXPECT_EQ(clip.sampleRate, 47952.0);
    EXPECT_EQ(clip.startSeconds, 479521.0 / 47952.0);
    EXPECT_EQ(clip.duration, 1.0);
}

TEST_F(BWFTest, Read_SoundThatIsNoWholeNumberOfFrames_KeepsTheFraction) {
    const AudioClip clip = clipOfChunks(plainFormat() + riffChunk("data", std::string(100, 's')));

    EXPECT_EQ(clip.duration, 100.0 / 3.0 / 48000.0);
}

TEST_F(BWFTest, Read_WithoutFormat_TakesTheTimeAt48kHzAndNoLength) {
    const AudioClip clip =
        clipOfChunks(broadcastChunk(oneHour) + riffChunk("data", std::string(96, 's')));

    EXPECT_EQ(clip.sampleRate, 48000.0);
    EXPECT_EQ(clip.startSeconds, 3600.0);
    EXPECT_EQ(clip.duration, 0.0);
}

TEST_F(BWFTest, Read_FormatBehindTheTimeAndTheSound_StillCounts) {
    Recording recording;
    recording.sampleRate = 96000;

    const AudioClip clip =
        clipOfChunks(riffChunk("data", std::string(96, 's')) + broadcastChunk(oneHour) +
                     riffChunk("fmt ", formatPayload(recording)));

    EXPECT_EQ(clip.startSeconds, 1800.0);
    EXPECT_EQ(clip.duration, 32.0 / 96000.0);
}

TEST_F(BWFTest, Read_IXMLBeforeOrBehindTheSound_IsFound) {
    const std::string slate = riffChunk("iXML", "<SCENE>5</SCENE>");
    const std::string sound = riffChunk("data", std::string(9000, 's'));

    EXPECT_EQ(clipOfChunks(plainFormat() + slate + sound).scene, "5");
    EXPECT_EQ(clipOfChunks(plainFormat() + sound + slate).scene, "5");
}

TEST_F(BWFTest, Read_IXMLLongerThanOnePiece_IsReadWhole) {
    const std::string slate = "<NOTE>" + std::string(100'000, 'n') + "</NOTE>";

    const AudioClip clip = clipOfChunks(riffChunk("iXML", slate) + broadcastChunk(oneHour));

    EXPECT_EQ(clip.note, std::string(100'000, 'n'));
    EXPECT_EQ(clip.startSeconds, 3600.0);
}

TEST_F(BWFTest, Read_IXMLOfAboutOnePiece_IsReadWhole) {
    for (std::size_t size = 4080; size <= 4110; ++size) {
        const std::string note(size - std::string_view("<NOTE></NOTE>").size(), 'n');
        const std::string slate = riffChunk("iXML", "<NOTE>" + note + "</NOTE>");

        EXPECT_EQ(clipOfChunks(slate + plainFormat()).note, note) << size;
        EXPECT_EQ(clipOfChunks(riffChunk("data", std::string(9000, 's')) + slate).note, note)
            << size;
    }
}

TEST_F(BWFTest, Read_IdOfTheSlate_IsKnownInTwoSpellingsOnly) {
    for (const std::string id : {"iXML", "ixml"}) {
        EXPECT_EQ(clipOfChunks(riffChunk(id, "<TAKE>1</TAKE>")).take, "1") << id;
    }
    for (const std::string id : {"IXML", "iXml", "Ixml", "iXMl"}) {
        EXPECT_EQ(clipOfChunks(riffChunk(id, "<TAKE>1</TAKE>")).take, std::nullopt) << id;
    }
}

TEST_F(BWFTest, Read_OtherIds_AreComparedExactly) {
    const AudioClip clip = clipOfChunks(riffChunk("FMT ", formatPayload({.sampleRate = 96000})) +
                                        riffChunk("fmt_", formatPayload({.sampleRate = 96000})) +
                                        riffChunk("BEXT", broadcastPayload(oneHour)) +
                                        plainFormat() + riffChunk("DATA", std::string(96, 's')));

    EXPECT_EQ(clip, bareClip(48000.0));
}

TEST_F(BWFTest, Read_OddChunks_AreFollowedByAPadByte) {
    const std::string oddFormat = riffChunk("fmt ", formatPayload({}) + "x");
    const std::string oddBroadcast = riffChunk("bext", broadcastPayload(oneHour) + "x");
    const std::string oddSlate = riffChunk("iXML", "<SCENE>55</SCENE>");
    ASSERT_EQ(oddSlate.size() % 2, 0U);
    ASSERT_EQ(std::string_view("<SCENE>55</SCENE>").size() % 2, 1U);

    const AudioClip clip =
        clipOfChunks(riffChunk("junk", "odd") + oddFormat + oddBroadcast + oddSlate +
                     riffChunk("data", std::string(33, 's')) + riffChunk("fact", "x"));
    const AudioClip behind = clipOfChunks(oddSlate + riffChunk("junk", "odd") + oddFormat +
                                          riffChunk("data", "odd") + oddBroadcast);

    EXPECT_EQ(clip.sampleRate, 48000.0);
    EXPECT_EQ(clip.startSeconds, 3600.0);
    EXPECT_EQ(clip.duration, 33.0 / 3.0 / 48000.0);
    EXPECT_EQ(clip.scene, "55");
    EXPECT_EQ(behind.startSeconds, 3600.0);
    EXPECT_EQ(behind.duration, 1.0 / 48000.0);
    EXPECT_EQ(behind.scene, "55");
}

TEST_F(BWFTest, Read_RepeatedChunks_TheLaterWins) {
    const AudioClip clip =
        clipOfChunks(riffChunk("fmt ", formatPayload({.sampleRate = 96000})) + broadcastChunk(1) +
                     riffChunk("iXML", "<SCENE>1</SCENE><TAKE>1</TAKE>") +
                     riffChunk("data", "123") + plainFormat() + broadcastChunk(oneHour) +
                     riffChunk("ixml", "<SCENE>2</SCENE>") + riffChunk("data", "123456"));

    EXPECT_EQ(clip.sampleRate, 48000.0);
    EXPECT_EQ(clip.startSeconds, 3600.0);
    EXPECT_EQ(clip.duration, 2.0 / 48000.0);
    EXPECT_EQ(clip.scene, "2");
    EXPECT_EQ(clip.take, std::nullopt) << "the first text is gone as a whole";
}

TEST_F(BWFTest, Read_EmptyIXMLBehindAFilledOne_LeavesNoSlate) {
    EXPECT_EQ(clipOfChunks(riffChunk("iXML", "<SCENE>1</SCENE>") + riffChunk("iXML", "")).scene,
              std::nullopt);
}

TEST_F(BWFTest, Read_ShortBroadcastExtensionBehindAWholeOne_KeepsTheTime) {
    const AudioClip clip =
        clipOfChunks(broadcastChunk(oneHour) + riffChunk("bext", std::string(345, '\x01')));

    EXPECT_EQ(clip.startSeconds, 3600.0);
}

TEST_F(BWFTest, Read_IXMLThatIsNoUTF8_IsMendedAndRead) {
    const AudioClip clip =
        clipOfChunks(riffChunk("iXML", "\xFF<SCENE>caf\xE9</SCENE>\xC3<TAKE>\xC3\xA9</TAKE>"));

    EXPECT_EQ(clip.scene, "caf\uFFFD");
    EXPECT_EQ(clip.take, "\u00E9");
}

TEST_F(BWFTest, Read_RIFFSize_IsOfNoAccount) {
    const std::string whole = broadcastWAV({.seconds = 0.5, .timeReference = oneHour});
    for (const std::uint32_t size : {0U, 4U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        std::string bytes = whole;
        bytes.replace(4, 4, littleEndian(size, 4));

        const AudioClip clip = clipOf(bytes);

        EXPECT_EQ(clip.startSeconds, 3600.0) << size;
        EXPECT_EQ(clip.duration, 0.5) << size;
    }
}

TEST_F(BWFTest, Read_Recording_LeavesTheFileAsItWas) {
    writeFile(at("T001.WAV"), broadcastWAV({.iXML = "<SCENE>5</SCENE>"}));
    ageAccessDates(at(""));
    const Snapshot before = snapshotOf(at(""));

    BWFReader::read(at("T001.WAV"));

    EXPECT_EQ(snapshotOf(at("")), before);
    readFile(at("T001.WAV"));
    EXPECT_NE(snapshotOf(at("")), before) << "a plain read leaves no trace here either";
}

TEST_F(BWFTest, Read_SeveralAtOnce_EachTellsItsOwn) {
    constexpr int count = 8;
    for (int i = 0; i < count; ++i) {
        writeFile(at(std::to_string(i)),
                  broadcastWAV({.iXML = "<SCENE>" + std::to_string(i) + "</SCENE>"}));
    }

    std::vector<std::future<AudioClip>> clips;
    for (int i = 0; i < count; ++i) {
        clips.push_back(std::async(std::launch::async, BWFReader::read, at(std::to_string(i))));
    }

    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(clips[static_cast<std::size_t>(i)].get().scene, std::to_string(i));
    }
}
