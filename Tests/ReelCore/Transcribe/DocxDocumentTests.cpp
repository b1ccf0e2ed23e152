#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Transcribe/DocxTranscriptWriter.h"

#include <string>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

constexpr auto documentXML = DocxTranscriptWriter::documentXML;
constexpr auto slateLine = DocxTranscriptWriter::slateLine;

/// Everything before the heading, between the paragraphs and the rows, and behind these.
const std::string head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<w:document xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\">\n"
    "  <w:body>\n"
    "    ";
const std::string tableHead =
    "\n"
    "    <w:tbl>\n"
    "      <w:tblPr>\n"
    "        <w:tblW w:w=\"0\" w:type=\"auto\"/>\n"
    "        <w:tblBorders>\n"
    "          <w:top w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"CCCCCC\"/>\n"
    "          <w:left w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"CCCCCC\"/>\n"
    "          <w:bottom w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"CCCCCC\"/>\n"
    "          <w:right w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"CCCCCC\"/>\n"
    "          <w:insideH w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"CCCCCC\"/>\n"
    "          <w:insideV w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"CCCCCC\"/>\n"
    "        </w:tblBorders>\n"
    "      </w:tblPr>\n"
    "      <w:tblGrid><w:gridCol w:w=\"2600\"/><w:gridCol w:w=\"6400\"/></w:tblGrid>\n"
    "      "
    "<w:tr><w:tc><w:tcPr><w:tcW w:w=\"2600\" w:type=\"dxa\"/></w:tcPr><w:p><w:r><w:rPr><w:b/>"
    "</w:rPr><w:t xml:space=\"preserve\">TIMECODE / SPEAKER</w:t></w:r></w:p></w:tc>"
    "<w:tc><w:tcPr><w:tcW w:w=\"6400\" w:type=\"dxa\"/></w:tcPr><w:p><w:r><w:rPr><w:b/></w:rPr>"
    "<w:t xml:space=\"preserve\">DIALOGUE</w:t></w:r></w:p></w:tc></w:tr>";
const std::string tail =
    "\n"
    "    </w:tbl>\n"
    "  </w:body>\n"
    "</w:document>";

std::string bold(const std::string& text) {
    return "<w:p><w:r><w:rPr><w:b/></w:rPr><w:t xml:space=\"preserve\">" + text +
           "</w:t></w:r></w:p>";
}

std::string plain(const std::string& text) {
    return "<w:p><w:r><w:t xml:space=\"preserve\">" + text + "</w:t></w:r></w:p>";
}

std::string row(const std::string& left, const std::string& right) {
    return "<w:tr><w:tc><w:tcPr><w:tcW w:w=\"2600\" w:type=\"dxa\"/></w:tcPr>" + left +
           "</w:tc><w:tc><w:tcPr><w:tcW w:w=\"6400\" w:type=\"dxa\"/></w:tcPr>" + right +
           "</w:tc></w:tr>";
}

Transcript named(const std::string& name) {
    Transcript transcript;
    transcript.sourceName = name;
    return transcript;
}

/// The one row of a line of that speaker with that hint.
std::string rowWithHint(const AppearanceHint& hint) {
    Transcript transcript = named("A.mov");
    transcript.segments = {{"S", 0.0, 1.0, "x"}};
    transcript.appearances = {{"S", hint}};
    const std::string xml = documentXML(transcript);
    const std::size_t begin = xml.find(tableHead) + tableHead.size();
    return xml.substr(begin, xml.size() - tail.size() - begin);
}

TEST(DocxDocument, NoLines_HasTheHeaderRowAlone) {
    EXPECT_EQ(documentXML(named("A001C002.mov")),
              head + bold("A001C002.mov  ·  Start TC 00:00:00:00") + tableHead + tail);
}

TEST(DocxDocument, Whole_IsAsPrescribedByteForByte) {
    Transcript transcript = named("A001C002.mov");
    transcript.startTimecode = Timecode(1, 0, 0, 0, FrameRate::fps25);
    transcript.slate.emplace();
    transcript.slate->scene = "12A";
    transcript.slate->take = "3";
    transcript.segments = {{"Speaker 1", 0.0, 1.0, "Hello there."},
                           {"♪ Music", 1.5, 2.0, "[MUSIC PLAYING]"},
                           {"Speaker 1", 61.02, 62.0, "Again."}};
    transcript.appearances = {{"Speaker 1", {"Speaker 1", "01:00:00:12", 2, 1, "blue"}}};

    EXPECT_EQ(
        documentXML(transcript),
        head + bold("A001C002.mov  ·  Start TC 01:00:00:00") +
            plain("Slate — Scene 12A  ·  Take 3") + tableHead +
            row(bold("01:00:00:00") + bold("Speaker 1") + plain("(person in blue (2 on camera))"),
                plain("Hello there.")) +
            row(bold("01:00:01:13") + bold("♪ Music"), plain("[MUSIC PLAYING]")) +
            row(bold("01:01:01:01") + bold("Speaker 1") + plain("(person in blue (2 on camera))"),
                plain("Again.")) +
            tail);
}

TEST(DocxDocument, Markup_IsEscapedInEveryText) {
    Transcript transcript = named("A&B.mov");
    transcript.slate.emplace();
    transcript.slate->scene = "<1>";
    transcript.segments = {{"A&B", 0.0, 1.0, "x < \"y\" > 'z' &amp;"}};
    transcript.appearances = {{"A&B", {"A&B", "", 1, 0, "\"blue\""}}};

    EXPECT_EQ(documentXML(transcript),
              head + bold("A&amp;B.mov  ·  Start TC 00:00:00:00") +
                  plain("Slate — Scene &lt;1&gt;") + tableHead +
                  row(bold("00:00:00:00") + bold("A&amp;B") + plain("(person in &quot;blue&quot;)"),
                      plain("x &lt; &quot;y&quot; &gt; 'z' &amp;amp;")) +
                  tail);
}

TEST(DocxDocument, WhatXMLCannotHold_IsReplacedInEveryText) {
    const std::string bad = "a\x01\xFF\uFFFE\uFFFF";
    const std::string good = "a\uFFFD\uFFFD\uFFFD\uFFFD";
    Transcript transcript = named(bad);
    transcript.slate.emplace();
    transcript.slate->date = bad;
    transcript.segments = {{bad, 0.0, 1.0, bad}};
    transcript.appearances = {{bad, {bad, "", 1, 0, bad}}};

    EXPECT_EQ(
        documentXML(transcript),
        head + bold(good + "  ·  Start TC 00:00:00:00") + plain("Slate — " + good) + tableHead +
            row(bold("00:00:00:00") + bold(good) + plain("(person in " + good + ")"), plain(good)) +
            tail);
}

TEST(DocxDocument, LineBreaksOfTheDialogue_StandAsTheyAre) {
    Transcript transcript = named("A.mov");
    transcript.segments = {{"", 0.0, 1.0, "one\n two\t"}};

    EXPECT_NE(
        documentXML(transcript).find(row(bold("00:00:00:00") + bold(""), plain("one\n two\t"))),
        std::string::npos);
}

TEST(DocxDocument, Timecodes_CountFromTheStartToTheNearestFrame) {
    Transcript transcript = named("A.mov");
    transcript.startTimecode = Timecode(9, 59, 59, 29, FrameRate::fps29_97df);
    transcript.frameRate = FrameRate::fps25;  // the clip's own, which the labels don't follow
    transcript.segments = {{"S", 0.0, 1.0, "a"}, {"S", 0.05005, 1.0, "b"}, {"S", 60.0, 61.0, "c"}};

    const std::string xml = documentXML(transcript);

    EXPECT_NE(xml.find("Start TC 09:59:59;29<"), std::string::npos);
    for (const char* label : {"09:59:59;29", "10:00:00;01", "10:00:59;27"}) {
        EXPECT_NE(xml.find(bold(label) + bold("S")), std::string::npos) << label;
    }
    for (const TranscriptSegment& segment : transcript.segments) {
        EXPECT_NE(xml.find(bold(transcript.timecode(segment).formatted())), std::string::npos);
    }
}

TEST(DocxDocument, HalfAFrame_IsRoundedAwayFromZero) {
    Transcript transcript = named("A.mov");
    transcript.startTimecode = Timecode(100, FrameRate::fps25);
    transcript.segments = {{"S", 0.02, 1.0, "a"}, {"S", -0.02, 1.0, "b"}};

    const std::string xml = documentXML(transcript);

    EXPECT_NE(xml.find("00:00:04:01"), std::string::npos);
    EXPECT_NE(xml.find("00:00:03:24"), std::string::npos);
}

TEST(DocxDocument, LineBeyondAllCounting_FailsAndDoesNotEndTheProcess) {
    Transcript transcript = named("A.mov");
    transcript.segments = {{"S", 1e300, 1.0, "a"}};

    EXPECT_THROW(documentXML(transcript), OutOfRange);
}

TEST(DocxDocument, SlateWithoutAnyField_IsLeftOut) {
    Transcript transcript = named("A.mov");
    transcript.slate.emplace();
    transcript.slate->rawLines = {"SCENE"};

    EXPECT_EQ(documentXML(transcript), documentXML(named("A.mov")));
}

TEST(DocxDocument, SlateWithTheTakeAlone) {
    Transcript transcript = named("A.mov");
    transcript.slate.emplace();
    transcript.slate->take = "3";

    EXPECT_NE(documentXML(transcript).find("</w:p>" + plain("Slate — Take 3") + tableHead),
              std::string::npos);
}

TEST(DocxDocument, SlateLine_HasTheKnownFieldsInOrder) {
    SlateInfo slate{.production = "DAWN",
                    .roll = "A004",
                    .scene = "12A",
                    .take = "3",
                    .director = "JANE ROE",
                    .camera = "B",
                    .date = "2025-11-21",
                    .fps = "25",
                    .rawLines = {}};
    EXPECT_EQ(slateLine(slate),
              "Prod: DAWN  ·  Scene 12A  ·  Take 3  ·  Roll A004  ·  Dir: JANE ROE  ·  Cam: B  ·  "
              "25 fps  ·  2025-11-21");

    slate.scene.reset();
    slate.fps.reset();
    EXPECT_EQ(slateLine(slate),
              "Prod: DAWN  ·  Take 3  ·  Roll A004  ·  Dir: JANE ROE  ·  Cam: B  ·  2025-11-21");
    EXPECT_EQ(slateLine({}), "");
}

TEST(DocxDocument, Hints_ShowWhereTheyTellOfAPersonOrAColour) {
    const std::string without = row(bold("00:00:00:00") + bold("S"), plain("x"));
    const auto with = [](const std::string& note) {
        return row(bold("00:00:00:00") + bold("S") + plain(note), plain("x"));
    };
    EXPECT_EQ(rowWithHint({"S", "", 0, 0, std::nullopt}), without);
    EXPECT_EQ(rowWithHint({"S", "", 0, 2, std::nullopt}), without);
    EXPECT_EQ(rowWithHint({"S", "", 1, 0, std::nullopt}), with("(person on camera)"));
    EXPECT_EQ(rowWithHint({"S", "", 0, 1, "red"}), with("(person in red)"));
    EXPECT_EQ(rowWithHint({"S", "", 0, 0, "red"}), with("(no person on camera at this moment)"));
}

TEST(DocxDocument, HintsOfOthers_DoNotShow) {
    Transcript transcript = named("A.mov");
    transcript.segments = {{"S", 0.0, 1.0, "x"}};
    transcript.appearances = {{"T", {"S", "", 1, 0, "red"}}};

    EXPECT_EQ(documentXML(transcript).find("person"), std::string::npos);
}

}  // namespace

}  // namespace ReelCore
