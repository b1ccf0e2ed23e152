#include "ReelCore/Transcribe/TranscribeError.h"

#include "ReelCore/Transcribe/TranscriptTypes.h"

#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;

TEST(TranscribeError, EachCase_HasItsText) {
    const std::vector<std::pair<TranscribeError::Any, std::string>> cases{
        {TranscribeError::InputNotFound{"/Cards/A 001/clip.mov"},
         "Input not found: /Cards/A 001/clip.mov"},
        {TranscribeError::ExtractionFailed{"no audio"}, "Audio extraction failed: no audio"},
        {TranscribeError::WhisperFailed{3, "one\ntwo"}, "whisper-cli failed (3):\none\ntwo"},
        {TranscribeError::ParseFailed{"not JSON"}, "Could not parse Whisper output: not JSON"},
        {TranscribeError::WhisperNotFound{},
         "whisper-cli not found. Install it (e.g. `brew install whisper-cpp`)."},
        {TranscribeError::ModelNotFound{},
         "No Whisper model found. Download one (e.g. ggml-base.en.bin) into ~/Library/Application "
         "Support/keldobay/models or set KELDO_WHISPER_MODEL."},
        {TranscribeError::FFmpegNotFound{}, "ffmpeg not found (needed to extract audio tracks)."},
        {TranscribeError::NoSpeakers{}, "Add at least one speaker track."},
        {TranscribeError::Cancelled{}, "Transcription cancelled."},
    };
    ASSERT_EQ(std::variant_size_v<TranscribeError::Any>, cases.size());

    for (const auto& [value, text] : cases) {
        const TranscribeError error(value);

        EXPECT_EQ(error.description(), text);
        EXPECT_STREQ(error.what(), text.c_str());
    }
}

TEST(TranscribeError, Cases_StandInTheirOrder) {
    using Expected = std::variant<TranscribeError::InputNotFound, TranscribeError::ExtractionFailed,
                                  TranscribeError::WhisperFailed, TranscribeError::ParseFailed,
                                  TranscribeError::WhisperNotFound, TranscribeError::ModelNotFound,
                                  TranscribeError::FFmpegNotFound, TranscribeError::NoSpeakers,
                                  TranscribeError::Cancelled>;

    EXPECT_TRUE((std::is_same_v<TranscribeError::Any, Expected>));
}

TEST(TranscribeError, NegativeStatus_StandsInDecimal) {
    EXPECT_EQ(TranscribeError(TranscribeError::WhisperFailed{-9, ""}).description(),
              "whisper-cli failed (-9):\n");
}

TEST(TranscribeError, Thrown_CanBeCaughtAsAnErrorAndAskedForItsCase) {
    try {
        throw TranscribeError(TranscribeError::WhisperFailed{7, "tail"});
    } catch (const Error& caught) {
        const auto* error = dynamic_cast<const TranscribeError*>(&caught);
        ASSERT_NE(error, nullptr);
        EXPECT_FALSE(error->is<TranscribeError::Cancelled>());
        ASSERT_TRUE(error->is<TranscribeError::WhisperFailed>());
        EXPECT_EQ(error->get<TranscribeError::WhisperFailed>()->status, 7);
        EXPECT_EQ(error->get<TranscribeError::WhisperFailed>()->tail, "tail");
    }
}

TEST(TranscriptSegment, Equality_LooksAtEachField) {
    const TranscriptSegment line{"Anna", 1.5, 2.5, "Hello."};

    EXPECT_EQ(line, (TranscriptSegment{"Anna", 1.5, 2.5, "Hello."}));
    EXPECT_NE(line, (TranscriptSegment{"Ben", 1.5, 2.5, "Hello."}));
    EXPECT_NE(line, (TranscriptSegment{"Anna", 1.0, 2.5, "Hello."}));
    EXPECT_NE(line, (TranscriptSegment{"Anna", 1.5, 2.0, "Hello."}));
    EXPECT_NE(line, (TranscriptSegment{"Anna", 1.5, 2.5, "Hello"}));
}

TEST(SpeakerTrack, Fields_AreNameChannelAndFile) {
    const SpeakerTrack channel{"Anna", 0, {}};
    const SpeakerTrack file{"Ben", {}, "/Sound/ben.wav"};

    EXPECT_EQ(channel.channelIndex, 0);
    EXPECT_EQ(file.fileURL, URL("/Sound/ben.wav"));
    EXPECT_FALSE(SpeakerTrack{}.channelIndex || SpeakerTrack{}.fileURL);
    EXPECT_NE(channel, (SpeakerTrack{"Anna", 1, {}}));
    EXPECT_NE(channel, (SpeakerTrack{"Anna", {}, {}}));
    EXPECT_NE(file, (SpeakerTrack{"Ben", {}, "/Sound/anna.wav"}));
}

}  // namespace
