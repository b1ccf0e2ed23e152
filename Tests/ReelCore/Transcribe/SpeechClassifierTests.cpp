#include "ReelCore/Transcribe/SpeechClassifier.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

constexpr auto nonSpeechSpeaker = SpeechClassifier::nonSpeechSpeaker;

TEST(SpeechClassifier, Labels) {
    EXPECT_EQ(SpeechClassifier::musicLabel, "♪ Music");
    EXPECT_EQ(SpeechClassifier::soundLabel, "Sound");
    EXPECT_EQ(SpeechClassifier::nonSpeechLabels.size(), 2U);
    EXPECT_TRUE(SpeechClassifier::isNonSpeech("♪ Music"));
    EXPECT_TRUE(SpeechClassifier::isNonSpeech("Sound"));
    EXPECT_FALSE(SpeechClassifier::isNonSpeech("Speaker 1"));
    EXPECT_FALSE(SpeechClassifier::isNonSpeech("sound"));
    EXPECT_FALSE(SpeechClassifier::isNonSpeech(""));
}

TEST(SpeechClassifier, Notes_AreMusicBracketsOrNot) {
    for (const char* text : {"♪ la la la", "la 🎵", "🎶", "(♪)", "well ♪ well"}) {
        EXPECT_EQ(nonSpeechSpeaker(text), "♪ Music") << text;
    }
}

TEST(SpeechClassifier, CuesThatTellOfMusic_AreMusic) {
    for (const char* text :
         {"[MUSIC PLAYING]", "(guitar strumming)", "(Singing)", "[a song]", "(PIANO)",
          "[instrumental]", "(melody)", "(drums)", " \n(music)\t", "[MusicAl]"}) {
        EXPECT_EQ(nonSpeechSpeaker(text), "♪ Music") << text;
    }
}

TEST(SpeechClassifier, OtherCues_AreSound) {
    for (const char* text :
         {"(door slams)", "[BLANK_AUDIO]", "(bells chiming)", "()", "[]", "\u00A0[wind]\r\n"}) {
        EXPECT_EQ(nonSpeechSpeaker(text), "Sound") << text;
    }
}

TEST(SpeechClassifier, Speech_HasNoLabel) {
    for (const char* text :
         {"", "  \n", "hello", "(laughs) yes", "(laughs]", "[laughs)", "well (laughs)", "(", "]",
          "play the music", "*music*", "{music}", "caf\xE9"}) {
        EXPECT_EQ(nonSpeechSpeaker(text), std::nullopt) << text;
    }
}

TEST(SpeechClassifier, Relabel_ChangesTheSpeakerOfCuesAndNothingElse) {
    const std::vector<TranscriptSegment> lines{{"JANE", 0.0, 1.0, "Hello."},
                                               {"JANE", 1.0, 2.0, "[MUSIC PLAYING]"},
                                               {"JOHN", 1.5, 2.5, "(door slams)"},
                                               {"JOHN", 3.0, 2.0, ""}};

    EXPECT_EQ(SpeechClassifier::relabel(lines),
              (std::vector<TranscriptSegment>{{"JANE", 0.0, 1.0, "Hello."},
                                              {"♪ Music", 1.0, 2.0, "[MUSIC PLAYING]"},
                                              {"Sound", 1.5, 2.5, "(door slams)"},
                                              {"JOHN", 3.0, 2.0, ""}}));
    EXPECT_TRUE(SpeechClassifier::relabel({}).empty());
}

}  // namespace

}  // namespace ReelCore
