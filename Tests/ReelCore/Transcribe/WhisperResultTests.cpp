#include "ReelCore/Transcribe/TranscribeError.h"
#include "ReelCore/Transcribe/WhisperTranscriber.h"

#include <string>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using Lines = std::vector<WhisperTranscriber::TimedText>;

Lines parse(std::string_view text) {
    return WhisperTranscriber::parseSegments(std::as_bytes(std::span(text)));
}

/// The lines of a result that has one element, given without its braces.
Lines parseOne(const std::string& fields) {
    return parse(R"({"transcription":[{)" + fields + "}]}");
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) result += text;
    return result;
}

TEST(WhisperArguments, AreNineInOrder) {
    EXPECT_EQ(WhisperTranscriber::arguments("/m/ggml-base.en.bin", "/a b/spk.wav", "/a b/spk"),
              (std::vector<std::string>{"-m", "/m/ggml-base.en.bin", "-f", "/a b/spk.wav", "-l",
                                        "en", "-oj", "-of", "/a b/spk"}));
    EXPECT_EQ(WhisperTranscriber::arguments("/my.en/ggml-base.bin", "a", "b"),
              (std::vector<std::string>{"-m", "/my.en/ggml-base.bin", "-f", "a", "-l", "auto",
                                        "-oj", "-of", "b"}));
}

TEST(WhisperResult, RealOutput_GivesItsLines) {
    EXPECT_EQ(
        parse(R"({
	"params": {"model": "ggml-tiny.en.bin", "language": "en", "translate": false},
	"result": {"language": "en"},
	"transcription": [
		{
			"timestamps": {"from": "00:00:00,000", "to": "00:00:07,940"},
			"offsets": {"from": 0, "to": 7940},
			"text": " And so my fellow Americans ask not what your country can do for you"
		},
		{
			"timestamps": {"from": "00:00:07,940", "to": "00:00:10,760"},
			"offsets": {"from": 7940, "to": 10760},
			"text": " ask what you can do for your country."
		}
	]
})"),
        (Lines{{0.0, 7.94, "And so my fellow Americans ask not what your country can do for you"},
               {7.94, 10.76, "ask what you can do for your country."}}));
}

TEST(WhisperResult, EmptyList_IsNoFailure) {
    EXPECT_EQ(parse(R"({"transcription":[]})"), Lines{});
}

TEST(WhisperResult, LineWithoutAnEnd_HasNoLength) {
    EXPECT_EQ(parse(R"({"transcription":[{"offsets":{"from":1500},"text":"  hi\n"}]})"),
              (Lines{{1.5, 1.5, "hi"}}));
    EXPECT_EQ(parseOne(R"("offsets":{"from":1500,"to":"2000"},"text":"hi")"),
              (Lines{{1.5, 1.5, "hi"}}));
    EXPECT_EQ(parseOne(R"("offsets":{"from":1500,"to":null},"text":"hi")"),
              (Lines{{1.5, 1.5, "hi"}}));
}

TEST(WhisperResult, LineWithoutABeginning_BeginsAtZero) {
    for (const char* from : {"", R"("from":"1",)", R"("from":true,)", R"("from":[1],)"}) {
        EXPECT_EQ(parseOne(R"("offsets":{)" + std::string(from) + R"("to":2000},"text":"hi")"),
                  (Lines{{0.0, 2.0, "hi"}}))
            << from;
    }
}

TEST(WhisperResult, LineWithoutTimes_IsAtZero) {
    for (const char* offsets :
         {"", R"("offsets":null,)", R"("offsets":[1,2],)", R"("offsets":7,)", R"("offsets":{},)"}) {
        EXPECT_EQ(parseOne(std::string(offsets) + R"("text":"hi")"), (Lines{{0.0, 0.0, "hi"}}))
            << offsets;
    }
}

TEST(WhisperResult, TimesOfAnyNumber_AreTakenAsTheyStand) {
    EXPECT_EQ(parseOne(R"("offsets":{"from":-2.5e3,"to":0.5},"text":"hi")"),
              (Lines{{-2.5, 0.0005, "hi"}}));
    EXPECT_EQ(parseOne(R"("offsets":{"from":9000,"to":1000},"text":"hi")"),
              (Lines{{9.0, 1.0, "hi"}}));
    EXPECT_EQ(parseOne(R"("offsets":{"from":18446744073709551616000,"to":1e300},"text":"hi")"),
              (Lines{{18446744073709551616.0, 1e297, "hi"}}));
}

TEST(WhisperResult, LineWithoutText_IsLeftOut) {
    for (const char* text :
         {"", R"("text":"",)", R"("text":" \t\r\n ",)", R"("text":5,)", R"("text":null,)",
          R"("text":["hi"],)", "\"text\":\"\u00A0\u2003\","}) {
        EXPECT_EQ(parseOne(std::string(text) + R"("offsets":{"from":0,"to":1})"), Lines{}) << text;
    }
}

TEST(WhisperResult, White_IsTakenFromTheEndsAndStaysWithin) {
    EXPECT_EQ(parseOne(R"("text":"\u00a0 \r\n a \n b\u2003")"), (Lines{{0.0, 0.0, "a \n b"}}));
}

TEST(WhisperResult, NoListOfObjects_IsNoResult) {
    for (const char* text :
         {R"({"transcription":{}})", R"({"result":[]})", "{}", "[]", "null", "7",
          R"("transcription")", R"([{"transcription":[]}])", R"({"transcription":null})",
          R"({"transcription":"a"})", R"({"transcription":[{"text":"a"},"b"]})",
          R"({"transcription":[[]]})", R"({"Transcription":[]})"}) {
        try {
            parse(text);
            ADD_FAILURE() << text;
        } catch (const TranscribeError& error) {
            EXPECT_TRUE(error.is<TranscribeError::ParseFailed>());
            EXPECT_EQ(error.description(),
                      "Could not parse Whisper output: missing 'transcription' array");
        }
    }
}

TEST(WhisperResult, NoJSON_IsTheParsersOwnError) {
    for (const char* text : {"", " ", "{", "[1,]", "{\"transcription\":[{\"text\":\"cut o",
                             "{\"transcription\":[]} more", "{'transcription':[]}", "NaN",
                             "{\"transcription\":[],\"a\":nan}", "{\"a\":1e999}", "\"\\ud800\"",
                             "{\"a\":01}", "\xFF\xFE{"}) {
        try {
            parse(text);
            ADD_FAILURE() << text;
        } catch (const TranscribeError& error) {
            ADD_FAILURE() << text << ": " << error.description();
        } catch (const Error& error) {
            EXPECT_NE(error.description().find("json.exception"), std::string::npos) << text;
        }
    }
}

TEST(WhisperResult, ControlCharacters_AreBlanks) {
    const auto lines =
        parse("{\"model\":\"a\tb\",\n\t\"transcription\":[{\"text\":\"a\x07 b\nc\"}]}");

    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].text, "a  b c");
}

TEST(WhisperResult, MalformedBytes_AreReplacedAndLoseNothingElse) {
    EXPECT_EQ(parse("{\"transcription\":[{\"text\":\"caf\xC3\"},{\"text\":\"\xA9!\"}]}"),
              (Lines{{0.0, 0.0, "caf\uFFFD"}, {0.0, 0.0, "\uFFFD!"}}));
}

TEST(WhisperResult, EscapesAndOtherScripts_AreText) {
    EXPECT_EQ(parseOne(R"("text":"\"caf\u00e9\" \ud83c\udfac \\ / 日本\u0000")"),
              (Lines{{0.0, 0.0, std::string("\"café\" 🎬 \\ / 日本\0", 24)}}));
}

TEST(WhisperResult, ByteOrderMark_IsPassedOver) {
    EXPECT_EQ(parse("\xEF\xBB\xBF{\"transcription\":[{\"text\":\"a\"}]}"),
              (Lines{{0.0, 0.0, "a"}}));
}

TEST(WhisperResult, KeyGivenTwice_TheLastCounts) {
    EXPECT_EQ(parse(R"({"transcription":[{"text":"a"}],"transcription":[{"text":"b"}]})"),
              (Lines{{0.0, 0.0, "b"}}));
}

TEST(WhisperResult, HugeNesting_NeedsNoStackAndHidesNothing) {
    constexpr std::size_t depth = 1'000'000;
    for (const auto& [open, close] : {std::pair("[", "]"), std::pair("{\"a\":", "}")}) {
        const std::string deep = repeated(open, depth) + "1" + repeated(close, depth);
        EXPECT_EQ(parse(R"({"deep":)" + deep + R"(,"transcription":[{"tokens":)" + deep +
                        R"(,"text":"a","offsets":{"from":)" + deep + R"(,"to":1000}}]})"),
                  (Lines{{0.0, 1.0, "a"}}));
        EXPECT_THROW(parse(repeated(open, depth)), Error);
    }
}

}  // namespace

}  // namespace ReelCore
