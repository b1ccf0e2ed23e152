#include "../Transcript/TranscriptTools.h"
#include "ScreenFixture.h"
#include "Support/FakeTool.h"
#include "Support/RIFF.h"
#include "Window/LoopWatch.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

using WindowSupport::longestBlockOf;

namespace {

#if defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
constexpr qint64 longestBlock = 50;
#else
// A debug or sanitized build is that much slower, and only shows that nothing goes wrong.
constexpr qint64 longestBlock = 1'000;
#endif

struct Painted {
    QString name;
    QRectF place;
};

/// What is painted of every text at and below the item, as far as it is not clipped.
void collectTexts(const QQuickItem& item, QRectF visible, std::vector<Painted>& texts) {
    if (!item.isVisible()) return;
    const QRectF whole = item.mapRectToScene(QRectF(0, 0, item.width(), item.height()));
    if (item.clip()) visible &= whole;
    if (item.inherits("QQuickText") || item.inherits("QQuickTextEdit")) {
        const double width = std::max(item.width(), item.property("contentWidth").toDouble());
        const double height = std::max(item.height(), item.property("contentHeight").toDouble());
        const QRectF place = item.mapRectToScene(QRectF(0, 0, width, height)).intersected(visible);
        if (!place.isEmpty())
            texts.push_back(
                {item.objectName() + " “" + item.property("text").toString().left(40) + "”",
                 place});
    }
    for (const QQuickItem* child : item.childItems()) collectTexts(*child, visible, texts);
}

/// A name for the number: of 200 letters, from right to left, or with a line feed.
std::string oddName(int number) {
    const std::string end = "_" + std::to_string(number);
    switch (number % 3) {
        case 0:
            return std::string(200, 'A') + end;
        case 1:
            return "שחקן ראשון" + end;
        default:
            return "two\nlines" + end;
    }
}

/// How many clips the day in Sync has: KELDO_TEST_GROUPS, or few, since each is seven calls of a
/// tool.
int groups() {
    const char* wanted = std::getenv("KELDO_TEST_GROUPS");
    return wanted ? std::atoi(wanted) : 150;
}

class SizeTests : public WindowSupport::ScreenFixture {
protected:
    /// The pairs of texts of the page that are painted over each other.
    QStringList overlaps(const QString& page) const {
        std::vector<Painted> texts;
        const QQuickItem& item = driver_->at(page);
        collectTexts(item, QRectF(QPointF(), driver_->window().size()), texts);
        QStringList found;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            for (std::size_t j = i + 1; j < texts.size(); ++j) {
                const QRectF both = texts[i].place & texts[j].place;
                if (both.width() > 1 && both.height() > 1) {
                    found += texts[i].name + " and " + texts[j].name;
                }
            }
        }
        return found;
    }

    void expectNoOverlap(const QString& page) {
        for (const auto& [width, height] : {std::pair(940, 680), std::pair(1600, 1000)}) {
            driver_->resize(width, height);
            EXPECT_EQ(overlaps(page), QStringList()) << width;
        }
        driver_->resize(940, 680);
    }

    void scroll(const QString& list) {
        for (int i = 0; i < 20; ++i) {
            driver_->wheel(list, 3);
            QCoreApplication::processEvents();
        }
    }

    int count(const QString& list) const { return driver_->at(list).property("count").toInt(); }
};

}  // namespace

TEST_F(SizeTests, TwoThousandClipsInRecover) {
    TestSupport::Recording recording;
    recording.seconds = 0.01;
    recording.hasBroadcastExtension = false;
    std::string neverClosed = TestSupport::broadcastWAV(recording);
    neverClosed.replace(4, 4, std::string(4, '\0'));
    for (int i = 0; i < 2'000; ++i) {
        TestSupport::writeFile(place("card/" + oddName(i) + ".WAV"),
                               i % 10 == 0 ? neverClosed : "RIFF");
    }
    openMode("Recover");
    choose("recover.card.choose", place("card"));
    const auto job = [&] {
        driver_->press("recover.scan");
        waitUntilShown("recover.report.0");
        scroll("recover.reports");
        choose("recover.places.output.choose", madeFolder("out"));
        driver_->press("recover.repair");
        driver_->waitFor(
            "the end", [&] { return driver_->isShown("recover.repair"); }, 120'000);
        scroll("recover.outcomes");
        driver_->press("recover.new");
    };
    EXPECT_LE(longestBlockOf(job, longestBlock), longestBlock);
    driver_->press("recover.scan");
    waitUntilShown("recover.report.0");
    EXPECT_EQ(count("recover.reports"), 2'000);
    EXPECT_FALSE(driver_->at("recover.report.0.label").property("truncated").toBool())
        << "the name is cut, and not what is wrong with the clip";
    expectNoOverlap("recover.page");
    keepPictures("recover-two-thousand");
    driver_->press("recover.repair");
    driver_->waitFor(
        "the end", [&] { return driver_->isShown("recover.repair"); }, 120'000);
    EXPECT_EQ(count("recover.outcomes"), 200);
    scroll("recover.outcomes");
    expectNoOverlap("recover.page");
    keepPictures("recover-two-hundred-repaired");
}

TEST_F(SizeTests, TenThousandFindingsInAnImage) {
    TestSupport::Recording recording;
    recording.seconds = 0.001;
    const std::string wave = TestSupport::broadcastWAV(recording);
    std::string image;
    for (int i = 0; i < 10'000; ++i) image += wave;
    TestSupport::writeFile(place("card.img"), image);
    openMode("Recover");
    choose("recover.image.choose", place("card.img"));
    const auto job = [&] {
        driver_->press("recover.scanImage");
        waitUntilShown("recover.finding.0");
        scroll("recover.findings");
    };
    EXPECT_LE(longestBlockOf(job, longestBlock), longestBlock);
    EXPECT_EQ(count("recover.findings"), 10'000);
    EXPECT_EQ(driver_->text("recover.carve"), "Carve 10000 Items");
    expectNoOverlap("recover.page");
    keepPictures("recover-ten-thousand");
}

TEST_F(SizeTests, ManyGroupsInSync) {
    for (int i = 0; i < groups(); ++i) {
        TestSupport::writeFile(place("Day1/" + oddName(i) + ".mov"), "00:00:10:00");
    }
    TestSupport::Recording recording;
    recording.seconds = 30;
    recording.bitsPerSample = 16;
    recording.iXML =
        "<BWFXML><SCENE>" + std::string(100, 'S') + "</SCENE><TAKE>3\n4</TAKE></BWFXML>";
    for (int i = 0; i < 3; ++i) {
        TestSupport::writeFile(place("Day1/" + oddName(i) + ".wav"),
                               TestSupport::broadcastWAV(recording));
    }
    recording.timeReference = 48'000U * 3'600U;
    for (int i = 3; i < 9; ++i) {
        TestSupport::writeFile(place("Day1/" + oddName(i) + ".wav"),
                               TestSupport::broadcastWAV(recording));
    }
    const TestSupport::FakeTool ffprobe("FFPROBE_PATH", R"(for file; do :; done
case "$*" in
*r_frame_rate*) echo 25/1;;
*stream_tags*) cat "$file";;
*format=duration*) echo 10.0;;
esac)");
    openMode("Sync");
    choose("sync.media.choose", place("Day1"));
    const auto job = [&] {
        driver_->press("sync.scan");
        waitUntilShown("sync.group.0", 120'000 + groups() * 100);
        scroll("sync.groups");
        driver_->press("sync.new");
    };
    EXPECT_LE(longestBlockOf(job, longestBlock), longestBlock);
    driver_->press("sync.scan");
    waitUntilShown("sync.group.0", 120'000 + groups() * 100);
    EXPECT_EQ(driver_->text("sync.counts"),
              QStringLiteral("%1 clips · %1 synced · 6 audio unmatched").arg(groups()));
    for (int i = 0; i < 40; ++i) driver_->wheel("sync.groups", 500);
    keepPictures("sync-many");
    expectNoOverlap("sync.page");
}

TEST_F(SizeTests, FiveHundredInputsInTranscodeThatFailWithEightLines) {
    std::vector<ReelCore::URL> clips;
    for (int i = 0; i < 500; ++i) {
        clips.push_back(place("clips/" + oddName(i) + ".mov"));
        TestSupport::writeFile(clips.back(), "picture");
    }
    const TestSupport::FakeTool ffprobe("FFPROBE_PATH", "echo 1");
    const TestSupport::FakeTool ffmpeg(
        "FFMPEG_PATH",
        "for line in 1 2 3 4 5 6 7 8; do echo \"line $line of what went wrong\" >&2; done; exit 1");
    openMode("Transcode");
    const auto job = [&] {
        addClips(clips);
        scroll("transcode.clips");
        choose("transcode.output.choose", madeFolder("out"));
        driver_->press("transcode.start");
        waitUntilShown("transcode.running.cancel");
        waitUntilShown("transcode.failures.0");
        scroll("transcode.failures");
        driver_->press("transcode.new");
    };
    EXPECT_LE(longestBlockOf(job, longestBlock), longestBlock);
    expectNoOverlap("transcode.page");
    keepPictures("transcode-five-hundred");
    driver_->press("transcode.start");
    waitUntilShown("transcode.running.cancel");
    expectNoOverlap("transcode.page");
    waitUntilShown("transcode.failures.0");
    EXPECT_EQ(count("transcode.failures"), 500);
    EXPECT_TRUE(driver_->text("transcode.failures.0.detail").endsWith("line 8 of what went wrong"));
    expectNoOverlap("transcode.page");
    keepPictures("transcode-eight-lines");
}

TEST_F(SizeTests, ThreeThousandLinesOfADozenSpeakersInTranscript) {
    std::string heard;
    std::string turns;
    for (int i = 0; i < 3'000; ++i) {
        const std::string text = i % 7 == 0 ? "A longer line that goes on and on. " : "A line. ";
        std::string whole;
        for (int n = 0; n < (i % 7 == 0 ? 8 : 1); ++n) whole += text;
        heard += (i == 0 ? "" : ",") +
                 WindowSupport::TranscriptTools::line(i * 1'000, i * 1'000 + 900, whole);
        turns +=
            std::to_string(i) + " " + std::to_string(i + 1) + " " + std::to_string(i % 12) + "\n";
    }
    WindowSupport::TranscriptTools tools;
    tools.hear(heard);
    tools.speakInTurns(turns);
    TestSupport::makeClip(place("clip.mov"), {.seconds = 0.2, .timecode = "01:00:00:00"});
    openMode("Transcript");
    choose("transcript.input.choose", place("clip.mov"));
    choose("transcript.output.choose", madeFolder("out"));
    driver_->focus("transcript.people");
    for (int i = 0; i < 12; ++i) driver_->key(Qt::Key_Down);
    for (const char* part : {"readSlate", "hints"}) {
        driver_->press(QStringLiteral("transcript.") + part);
    }
    driver_->waitFor("the clip", [&] { return driver_->isEnabled("transcript.start"); });
    const auto saved = [&] {
        return driver_->text("transcript.renameStatus") == "Applied edits and re-saved the .docx.";
    };
    const auto job = [&] {
        driver_->press("transcript.start");
        waitUntilShown("transcript.lineSpeaker.0");
        scroll("transcript.lines");
        driver_->focus("transcript.name.3");
        driver_->type(" Ann");
        EXPECT_EQ(driver_->focused(), "transcript.name.3") << "typing keeps the focus";
        driver_->press("transcript.save");
        driver_->waitFor("the save", saved);
        driver_->press("transcript.new");
    };
    EXPECT_LE(longestBlockOf(job, longestBlock), longestBlock);
    driver_->press("transcript.start");
    waitUntilShown("transcript.lineSpeaker.0");
    EXPECT_EQ(driver_->text("transcript.lineCount"), "3000 lines · start 01:00:00:00");
    EXPECT_EQ(count("transcript.lines"), 3'000);
    expectNoOverlap("transcript.page");
    keepPictures("transcript-three-thousand");
    driver_->press("transcript.lineSpeaker.1");
    waitUntilShown("choice.0");
    driver_->key(Qt::Key_End);
    driver_->key(Qt::Key_Return);
    EXPECT_EQ(driver_->text("transcript.lineSpeaker.1"), "♪ Music");
    scroll("transcript.lines");
    expectNoOverlap("transcript.page");
    keepPictures("transcript-three-thousand-below");
}
