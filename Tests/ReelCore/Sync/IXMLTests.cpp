#include "ReelCore/Sync/BWFReader.h"

#include <chrono>

#include <gtest/gtest.h>

using namespace ReelCore;

namespace {

using IXML = BWFReader::IXML;

std::vector<std::string> tracksOf(std::string_view text) {
    return BWFReader::parseIXML(text).tracks;
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += piece;
    return text;
}

}  // namespace

TEST(IXML, Parse_EmptyText_HasNothing) {
    EXPECT_EQ(BWFReader::parseIXML(""), IXML{});
}

TEST(IXML, Parse_TextThatIsNoXML_HasNothing) {
    EXPECT_EQ(BWFReader::parseIXML("SCENE 12 TAKE 3"), IXML{});
}

TEST(IXML, Parse_WholeDocument_GivesFourTagsAndTheTracks) {
    const IXML slate = BWFReader::parseIXML(R"(<?xml version="1.0" encoding="UTF-8"?>
<BWFXML>
  <IXML_VERSION>1.61</IXML_VERSION>
  <SCENE>12A</SCENE>
  <TAKE>3</TAKE>
  <TAPE>ROLL 7</TAPE>
  <NOTE>plane overhead</NOTE>
  <TRACK_LIST>
    <TRACK_COUNT>2</TRACK_COUNT>
    <TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME></TRACK>
    <TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>Ada lav</NAME></TRACK>
  </TRACK_LIST>
</BWFXML>)");

    EXPECT_EQ(slate, (IXML{"12A", "3", "ROLL 7", "plane overhead", {"Boom", "Ada lav"}}));
}

TEST(IXML, Parse_LowerCaseTagWithBlanks_IsTrimmed) {
    EXPECT_EQ(BWFReader::parseIXML("<take>  12 </take>").take, "12");
}

TEST(IXML, Parse_MixedCase_OpeningAndClosingNeedNotAgree) {
    EXPECT_EQ(BWFReader::parseIXML("<Scene>1</sCENE>").scene, "1");
    EXPECT_EQ(tracksOf("<name>a</NAME><Name>b</nAmE>"), (std::vector<std::string>{"a", "b"}));
}

TEST(IXML, Parse_LongSAndKelvinSign_AreLettersOfTags) {
    EXPECT_EQ(BWFReader::parseIXML("<\u017FCENE>1</\u017Fcene>").scene, "1");
    EXPECT_EQ(BWFReader::parseIXML("<ta\u212Ae>2</TAKE>").take, "2");
    EXPECT_EQ(BWFReader::parseIXML("<\u212ACENE>1</SCENE>").scene, std::nullopt);
}

TEST(IXML, Parse_EmptyOrBlankElement_IsAbsent) {
    EXPECT_EQ(BWFReader::parseIXML("<NOTE></NOTE>").note, std::nullopt);
    EXPECT_EQ(BWFReader::parseIXML("<NOTE> \t\r\n </NOTE>").note, std::nullopt);
    EXPECT_EQ(BWFReader::parseIXML("<NOTE>\u00A0\u2003\u2028</NOTE>").note, std::nullopt);
}

TEST(IXML, Parse_FirstElementEmpty_ASecondIsNotTaken) {
    EXPECT_EQ(BWFReader::parseIXML("<TAPE> </TAPE><TAPE>7</TAPE>").tape, std::nullopt);
    EXPECT_EQ(BWFReader::parseIXML("<TAPE>6</TAPE><TAPE>7</TAPE>").tape, "6");
}

TEST(IXML, Parse_ThreeNamesOneBlank_GivesTwoTracksInOrder) {
    EXPECT_EQ(tracksOf("<NAME>Boom</NAME>\n<NAME>  </NAME>\n<NAME>Ada</NAME>"),
              (std::vector<std::string>{"Boom", "Ada"}));
}

TEST(IXML, Parse_NamesOutsideTheTrackList_AreTakenToo) {
    EXPECT_EQ(tracksOf("<NAME>a</NAME><USER><NAME>b</NAME></USER><NAME>a</NAME>"),
              (std::vector<std::string>{"a", "b", "a"}));
}

TEST(IXML, Parse_ContentOverSeveralLines_IsKeptAndTrimmedAtBothEnds) {
    EXPECT_EQ(BWFReader::parseIXML("<NOTE>\r\n\tone\n two\u0085\n</NOTE>").note, "one\n two");
}

TEST(IXML, Parse_MarkupInside_StandsAsItIs) {
    EXPECT_EQ(BWFReader::parseIXML("<NOTE>a &amp; <b>b</b> <![CDATA[c]]></NOTE>").note,
              "a &amp; <b>b</b> <![CDATA[c]]>");
}

TEST(IXML, Parse_ElementWithinItself_EndsAtTheNearestClosingTag) {
    EXPECT_EQ(BWFReader::parseIXML("<NOTE>a<NOTE>b</NOTE>c</NOTE>").note, "a<NOTE>b");
    EXPECT_EQ(tracksOf("<NAME>a<NAME>b</NAME>c</NAME><NAME>d</NAME>"),
              (std::vector<std::string>{"a<NAME>b", "d"}));
}

TEST(IXML, Parse_ClosingTagInFront_IsPassedOver) {
    EXPECT_EQ(BWFReader::parseIXML("</TAKE>1<TAKE>2</TAKE>").take, "2");
}

TEST(IXML, Parse_ElementNeverClosed_IsAbsentAndHidesNoOther) {
    const IXML slate = BWFReader::parseIXML("<SCENE>12<TAKE>3</TAKE><NAME>a</NAME><NAME>b");

    EXPECT_EQ(slate, (IXML{{}, "3", {}, {}, {"a"}}));
}

TEST(IXML, Parse_TagThatIsNotExact_IsNoElement) {
    EXPECT_EQ(BWFReader::parseIXML("<SCENE id='1'>1</SCENE>").scene, std::nullopt);
    EXPECT_EQ(BWFReader::parseIXML("<x:SCENE>1</x:SCENE>").scene, std::nullopt);
    EXPECT_EQ(BWFReader::parseIXML("< SCENE>1</SCENE>").scene, std::nullopt);
    EXPECT_EQ(BWFReader::parseIXML("<SCENE>1</SCENE >").scene, std::nullopt);
    EXPECT_EQ(BWFReader::parseIXML("<SCENE/>1</SCENE>").scene, std::nullopt);
    EXPECT_EQ(BWFReader::parseIXML("<SCENES>1</SCENES>").scene, std::nullopt);
}

TEST(IXML, Parse_TextBeyondASCII_IsKept) {
    EXPECT_EQ(BWFReader::parseIXML("\uFEFF<SCENE>\U0001F3AC caf\u00E9</SCENE>").scene,
              "\U0001F3AC caf\u00E9");
}

TEST(IXML, Parse_BytesThatAreNoUTF8_AreMended) {
    EXPECT_EQ(BWFReader::parseIXML("\x80<SCENE>a\xFF\xE2\x82z</SCENE>").scene, "a\uFFFD\uFFFDz");
    EXPECT_EQ(BWFReader::parseIXML("<SCENE>1</SCENE>\xF0\x9F").scene, "1");
}

TEST(IXML, Parse_ZeroBytesWithin_AreText) {
    using namespace std::string_literals;
    EXPECT_EQ(BWFReader::parseIXML("\0<SCENE>1\0002</SCENE>\0\0"s).scene, "1\0002"s);
}

// Time that grows with the square of the length would take hours here.
TEST(IXML, Parse_LongHostileTexts_EndSoon) {
    constexpr std::size_t count = 200'000;
    const auto start = std::chrono::steady_clock::now();

    EXPECT_EQ(BWFReader::parseIXML(repeated("<SCENE>", count)), IXML{});
    EXPECT_TRUE(tracksOf(repeated("<NAME>", count)).empty());
    EXPECT_TRUE(tracksOf(repeated("</NAME>", count)).empty());
    EXPECT_TRUE(tracksOf("<NAME>" + std::string(8 * count, ' ')).empty());
    EXPECT_EQ(BWFReader::parseIXML("<NOTE>" + std::string(8 * count, ' ') + "</NOTE>"), IXML{});
    EXPECT_EQ(tracksOf(repeated("<NAME>a</NAME>", count)).size(), count);

    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}
