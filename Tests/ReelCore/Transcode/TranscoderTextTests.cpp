#include "ReelCore/Transcode/Transcoder.h"

#include <limits>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using Arguments = std::vector<std::string>;

TranscodeProgress parsed(const std::map<std::string, std::string>& fields, double total = 10.0) {
    return Transcoder::parseProgress(fields, total);
}

TEST(TranscoderFilterQuote, PlainText_StandsBetweenQuotes) {
    EXPECT_EQ(Transcoder::filterQuote("/L/a.cube"), "'/L/a.cube'");
    EXPECT_EQ(Transcoder::filterQuote(""), "''");
    EXPECT_EQ(Transcoder::filterQuote("a:b,[c];d=e %é\n"), "'a:b,[c];d=e %é\n'");
}

TEST(TranscoderFilterQuote, Quote_IsEscapedByABackslash) {
    EXPECT_EQ(Transcoder::filterQuote("it's"), R"('it\'s')");
}

TEST(TranscoderFilterQuote, Backslash_IsDoubled) {
    EXPECT_EQ(Transcoder::filterQuote(R"(a\b)"), R"('a\\b')");
}

TEST(TranscoderFilterQuote, BackslashBeforeAQuote_IsDoubledFirst) {
    EXPECT_EQ(Transcoder::filterQuote(R"(\')"), R"('\\\'')");
}

TEST(TranscoderFilterChain, NeitherLUTNorSize_IsAbsent) {
    EXPECT_EQ(Transcoder::filterChain(std::nullopt, std::nullopt), std::nullopt);
}

TEST(TranscoderFilterChain, LUT_IsQuoted) {
    EXPECT_EQ(Transcoder::filterChain(LUT{"/L/it's.cube"}, std::nullopt),
              R"(lut3d=file='/L/it\'s.cube')");
}

TEST(TranscoderFilterChain, Size_IsASquareBox) {
    EXPECT_EQ(Transcoder::filterChain(std::nullopt, 1280),
              "scale=w=1280:h=1280:force_original_aspect_ratio=decrease"
              ":force_divisible_by=2:flags=lanczos");
}

TEST(TranscoderFilterChain, LargestSize_IsWrittenInFull) {
    const auto chain =
        Transcoder::filterChain(std::nullopt, std::numeric_limits<std::int64_t>::max());

    EXPECT_EQ(chain,
              "scale=w=9223372036854775807:h=9223372036854775807"
              ":force_original_aspect_ratio=decrease:force_divisible_by=2:flags=lanczos");
}

TEST(TranscoderFilterChain, LUT_StandsBeforeTheSize) {
    EXPECT_EQ(Transcoder::filterChain(LUT{"/L/a.cube"}, 2),
              "lut3d=file='/L/a.cube',scale=w=2:h=2:force_original_aspect_ratio=decrease"
              ":force_divisible_by=2:flags=lanczos");
}

TEST(TranscoderArguments, LUTAndSize_StandBetweenInputAndCodec) {
    const TranscodeRequest request{"/in/A.mov", "/out", TranscodePreset::proRes422,
                                   LUT{"/L/a.cube"}, 1920};

    EXPECT_EQ(
        Transcoder::arguments(request),
        (Arguments{"-y", "-i", "/in/A.mov", "-vf",
                   "lut3d=file='/L/a.cube',scale=w=1920:h=1920:"
                   "force_original_aspect_ratio=decrease:force_divisible_by=2:flags=lanczos",
                   "-c:v", "prores_ks", "-profile:v", "2", "-pix_fmt", "yuv422p10le", "-c:a",
                   "pcm_s16le", "-progress", "pipe:1", "-nostats", "-v", "error", "/out/A.mov"}));
}

TEST(TranscoderArguments, NeitherLUTNorSize_LeavesTheFilterOut) {
    const TranscodeRequest request{"/in/A.mov", "/out", TranscodePreset::h264Review, {}, {}};

    EXPECT_EQ(Transcoder::arguments(request),
              (Arguments{"-y",  "-i",      "/in/A.mov", "-c:v",      "libx264", "-crf",
                         "23",  "-preset", "medium",    "-pix_fmt",  "yuv420p", "-c:a",
                         "aac", "-b:a",    "192k",      "-progress", "pipe:1",  "-nostats",
                         "-v",  "error",   "/out/A.mp4"}));
}

TEST(TranscoderArguments, NoPixelFormat_LeavesTheOptionOut) {
    const TranscodePreset copy{"copy", "Copy", "Any", "mkv", {"-c", "copy"}, {}, std::nullopt};

    EXPECT_EQ(Transcoder::arguments({"/in/A.mov", "/out", copy, {}, {}}),
              (Arguments{"-y", "-i", "/in/A.mov", "-c", "copy", "-progress", "pipe:1", "-nostats",
                         "-v", "error", "/out/A.mkv"}));
}

TEST(TranscoderArguments, Output_StandsInForTheRequests) {
    const TranscodeRequest request{"/in/A.mov", "/out", TranscodePreset::proRes422, {}, {}};

    EXPECT_EQ(Transcoder::arguments(request, URL("/else/A 2.mov")).back(), "/else/A 2.mov");
}

TEST(TranscoderArguments, Paths_AreOneArgumentEachByteForByte) {
    const TranscodeRequest request{
        "/in/a 'b'\n\xFF.mov", "/o ut", TranscodePreset::proRes422, {}, {}};
    const Arguments arguments = Transcoder::arguments(request);

    EXPECT_EQ(arguments[2], "/in/a 'b'\n\xFF.mov");
    EXPECT_EQ(arguments.back(), "/o ut/a 'b'\n\xFF.mov");
}

TEST(TranscoderParseProgress, FullReport_FillsEveryField) {
    EXPECT_EQ(parsed({{"out_time_us", "2500000"}, {"fps", "48.5"}, {"speed", "2.13x"}}),
              (TranscodeProgress{0.25, 2.5, 10.0, 48.5, "2.13x"}));
}

TEST(TranscoderParseProgress, EmptyReport_IsAtTheBeginning) {
    EXPECT_EQ(parsed({}), (TranscodeProgress{0.0, 0.0, 10.0, std::nullopt, std::nullopt}));
}

TEST(TranscoderParseProgress, OlderKey_CountsMicrosecondsAsWell) {
    EXPECT_EQ(parsed({{"out_time_ms", "2500000"}}).currentSeconds, 2.5);
}

TEST(TranscoderParseProgress, BothKeys_TheMicrosecondsStand) {
    EXPECT_EQ(parsed({{"out_time_us", "1000000"}, {"out_time_ms", "2000000"}}).currentSeconds, 1.0);
    EXPECT_EQ(parsed({{"out_time_us", "N/A"}, {"out_time_ms", "2000000"}}).currentSeconds, 0.0);
}

TEST(TranscoderParseProgress, TimeThatIsNoNumber_IsZero) {
    for (const char* time : {"N/A", "", "12x", "1 2", " 1", "inf", "-inf", "nan", "1e400"}) {
        const TranscodeProgress progress = parsed({{"out_time_us", time}, {"fps", "25"}});
        EXPECT_EQ(progress.currentSeconds, 0.0) << time;
        EXPECT_EQ(progress.fractionComplete, 0.0) << time;
        EXPECT_EQ(progress.fps, 25.0) << time;
    }
}

TEST(TranscoderParseProgress, TimePastTheEnd_StaysAtOne) {
    const TranscodeProgress progress = parsed({{"out_time_us", "10040000"}});

    EXPECT_EQ(progress.fractionComplete, 1.0);
    EXPECT_EQ(progress.currentSeconds, 10.04);
}

TEST(TranscoderParseProgress, UnknownLength_StaysAtZero) {
    EXPECT_EQ(parsed({{"out_time_us", "5000000"}}, 0.0),
              (TranscodeProgress{0.0, 5.0, 0.0, std::nullopt, std::nullopt}));
    EXPECT_EQ(parsed({{"out_time_us", "5000000"}}, -1.0).fractionComplete, 0.0);
}

TEST(TranscoderParseProgress, RateThatIsNoNumber_IsAbsent) {
    EXPECT_EQ(parsed({{"fps", "N/A"}}).fps, std::nullopt);
    EXPECT_EQ(parsed({{"fps", ""}}).fps, std::nullopt);
    EXPECT_EQ(parsed({{"fps", "inf"}}).fps, std::nullopt);
    EXPECT_EQ(parsed({{"fps", "nan"}}).fps, std::nullopt);
    EXPECT_EQ(parsed({{"fps", "0.00"}}).fps, 0.0);
}

TEST(TranscoderParseProgress, UnknownSpeed_IsAbsentAndTheRestStands) {
    EXPECT_EQ(parsed({{"out_time_us", "5000000"}, {"fps", "25"}, {"speed", "N/A"}}),
              (TranscodeProgress{0.5, 5.0, 10.0, 25.0, std::nullopt}));
}

TEST(TranscoderParseProgress, Speed_StandsAsItIs) {
    EXPECT_EQ(parsed({{"speed", "1.2e+03x"}}).speed, "1.2e+03x");
    EXPECT_EQ(parsed({{"speed", ""}}).speed, "");
}

}  // namespace

}  // namespace ReelCore
