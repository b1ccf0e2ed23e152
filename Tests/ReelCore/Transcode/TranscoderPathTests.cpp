#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcode/TranscodeError.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "Support/Tool.h"
#include "TranscodeFixture.h"

#include <array>

namespace ReelCore {

namespace {

using TestSupport::readFile;
using TestSupport::writeFile;

struct Name {
    const char* kind;
    std::string text;
};

const std::array names{
    Name{"blanks", " a  b "},
    Name{"quotes", R"(it's "A")"},
    Name{"two quotes", "a'b'c"},
    Name{"colon", "a:b"},
    Name{"brackets", "a[0]{1}(2)"},
    Name{"backslash", R"(a\b\'c)"},
    Name{"comma", "a,b"},
    Name{"semicolon", "a;b"},
    Name{"equals sign", "a=b"},
    Name{"percent", "a%03d%%b"},
    Name{"line feed", "a\nb"},
    Name{"signs of a shell", "$HOME `a` * ? & | < > # ~ !"},
    Name{"non-ASCII", "Zähne 日本"},
    Name{"bytes that are not UTF-8", "a\xFF\xC3z"},
    Name{"leading dash", "-i"},
    Name{"protocol", "concat:x|y"},
    Name{"standard input", "pipe:0"},
    Name{"protocol with options", "subfile,,start,0,end,9,,:x"},
    Name{"longest", std::string(251, 'a')},
};

/// The working folder as long as the object lives.
class WorkingFolder {
public:
    explicit WorkingFolder(const URL& folder) : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    URL before_;
};

class TranscoderPath : public TranscodeFixture {
protected:
    /// A clip of five pictures under another name.
    URL clipNamed(const URL& url) const {
        static const std::string content = readFile(
            clip("original.mov", {.size = "64x64", .seconds = 0.2, .video = {"-c:v", "mjpeg"}}));
        writeFile(url, content);
        return url;
    }

    static bool isProRes(const URL& url) {
        return TestSupport::probed(url, "stream=codec_name", "v") == "prores";
    }
};

TEST_F(TranscoderPath, ClipsAndFolders_MayHaveAnyName) {
    for (const auto& [kind, text] : names) {
        const URL input = clipNamed(folder() / "in" / text / (text + ".mov"));
        const TranscodeRequest job{
            input, folder() / "out" / text, TranscodePreset::proResProxy, {}, {}};

        const auto result = Transcoder().run(job, ignoreProgress);

        EXPECT_EQ(result.outputURL.native(), (job.outputDirectory / (text + ".mov")).native())
            << kind;
        EXPECT_NEAR(result.durationSeconds, 0.2, 0.001) << kind;
        EXPECT_TRUE(isProRes(result.outputURL)) << kind;
    }
}

TEST_F(TranscoderPath, RelativePaths_MayHaveAnyName) {
    const WorkingFolder working(folder());
    for (const auto& [kind, text] : names) {
        clipNamed(folder() / (text + ".mov"));
        const TranscodeRequest job{
            text + ".mov", "out " + text.substr(0, 200), TranscodePreset::proResProxy, {}, {}};

        const auto result = Transcoder().run(job, ignoreProgress);

        EXPECT_EQ(result.outputURL.native(), job.outputURL().native()) << kind;
        EXPECT_TRUE(isProRes(folder() / result.outputURL)) << kind;
    }
}

TEST_F(TranscoderPath, RelativeFolderWithALeadingDash_IsNoOption) {
    const WorkingFolder working(folder());
    clipNamed(folder() / "-y/pipe:0");

    const auto result =
        Transcoder().run({"-y/pipe:0", "-i", TranscodePreset::proResProxy, {}, {}}, ignoreProgress);

    EXPECT_EQ(result.outputURL, "-i/pipe:0.mov");
    EXPECT_TRUE(isProRes(folder() / result.outputURL));
}

TEST_F(TranscoderPath, LUTs_MayHaveAnyNameAndAreLeftAsTheyAre) {
    const URL input = clipNamed(folder() / "A001.mov");
    const std::string table = flatCube("0 1 0");
    for (const auto& [kind, text] : names) {
        const LUT lut{folder() / "luts" / text / (text.substr(0, 250) + ".cube")};
        writeFile(lut.url, table);

        const auto result = Transcoder().run(
            {input, folder() / "out", TranscodePreset::proResProxy, lut, {}}, ignoreProgress);

        EXPECT_EQ(result.request.lut, lut) << kind;
        EXPECT_EQ(readFile(lut.url), table) << kind;
        EXPECT_EQ(leftBehind(), std::vector<std::string>{}) << kind;
        const std::string green = TestSupport::outputOf(
            "ffmpeg",
            {"-nostdin", "-v", "error", "-i", "file:" + result.outputURL.native(), "-frames:v", "1",
             "-vf", "scale=1:1", "-f", "rawvideo", "-pix_fmt", "rgb24", "-"});
        ASSERT_EQ(green.size(), 3U) << kind;
        EXPECT_LT(static_cast<unsigned char>(green[0]), 8) << kind;
        EXPECT_GT(static_cast<unsigned char>(green[1]), 247) << kind;
    }
}

TEST_F(TranscoderPath, RelativeLUT_IsFoundFromTheWorkingFolder) {
    const WorkingFolder working(folder());
    const URL input = clipNamed(folder() / "A001.mov");
    writeFile(folder() / "plain.cube", flatCube("0 1 0"));
    writeFile(folder() / "it's.cube", flatCube("0 1 0"));

    for (const char* name : {"plain.cube", "it's.cube"}) {
        EXPECT_NO_THROW(Transcoder().run(
            {input, "out", TranscodePreset::proResProxy, LUT{name}, std::nullopt}, ignoreProgress))
            << name;
    }
}

/// What ffmpeg makes of the filter text as it stands, without a link: the ground of the links.
TEST_F(TranscoderPath, FilterText_CarriesAllButQuotesAndColons) {
    const URL input = clipNamed(folder() / "A001.mov");
    std::string failed;
    for (const char c : std::string("':\\,[];= %\n\xE9")) {
        const LUT lut{folder() / ("a" + std::string(1, c) + "b.cube")};
        writeFile(lut.url, flatCube("0 1 0"));
        const auto outcome = TestSupport::runTool(
            "ffmpeg", {"-nostdin", "-v", "error", "-i", input.native(), "-vf",
                       Transcoder::filterChain(lut, std::nullopt).value(), "-f", "null", "-"});
        if (outcome.status != 0) failed += c;
    }

    EXPECT_EQ(failed, "':");
}

}  // namespace

}  // namespace ReelCore
