#include "ReelCore/Platform/Text.h"

#include "Support/FolderTree.h"

#include <algorithm>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;

const std::string replacement = "\uFFFD";
const std::string family = "👨‍👩‍👧";  // Three people, joined.
const std::string flag = "🇨🇭";                    // Two regional indicators.
const std::string composedE = "\u00E9";           // é
const std::string decomposedE = "e\u0301";        // e and a combining acute
const std::string hebrew = "\u05E9\u05DC\u05D5\u05DD";

TEST(TextWellFormed, GoodText_StaysAsItIs) {
    for (const std::string& text :
         {std::string(), std::string("A001_C001.mov"), family, hebrew, decomposedE,
          std::string("\0\x01\x7F", 3), std::string("\uFFFD\uFFFF\U0010FFFF")}) {
        EXPECT_TRUE(Text::isWellFormed(text));
        EXPECT_EQ(Text::wellFormed(text), text);
    }
}

TEST(TextWellFormed, EachMaximalMalformedRun_BecomesOneReplacement) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"\xFF", replacement},
        {"a\x80z", "a" + replacement + "z"},
        {"\xC3", replacement},      // Cut in the middle.
        {"\xE2\x82", replacement},  // Cut, but a proper beginning.
        {"\xE2\x82z", replacement + "z"},
        {"\xC0\xAF", replacement + replacement},                    // Overlong slash.
        {"\xED\xA0\x80", replacement + replacement + replacement},  // A surrogate.
        {"\xF4\x90\x80\x80", replacement + replacement + replacement + replacement},
        {"\xF0\x9F\x8E", replacement},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_FALSE(Text::isWellFormed(bytes)) << testing::PrintToString(bytes);
        EXPECT_EQ(Text::wellFormed(bytes), text) << testing::PrintToString(bytes);
    }
}

TEST(TextWellFormed, AnyBytes_BecomeWellFormedOnce) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        const std::string once = Text::wellFormed(TestSupport::noise(300, seed));

        EXPECT_TRUE(Text::isWellFormed(once));
        EXPECT_EQ(Text::wellFormed(once), once);
    }
}

TEST(TextWellFormedXML, CharactersWithoutAWayToBeWritten_BecomeReplacements) {
    for (int control = 0; control < 0x20; ++control) {
        const std::string text = std::string("a") + static_cast<char>(control) + "b";
        const bool allowed = control == '\t' || control == '\n' || control == '\r';
        EXPECT_EQ(Text::wellFormedXML(text), allowed ? text : "a" + replacement + "b") << control;
    }
    EXPECT_EQ(Text::wellFormedXML("\uFFFE\uFFFF"), replacement + replacement);
    EXPECT_EQ(Text::wellFormedXML("caf\xE9"), "caf" + replacement);
}

TEST(TextWellFormedXML, EverythingElse_StaysIncludingMarkup) {
    const std::string text = "<a & \"b\">\x7F\u0080\uFFFD\U0001F3AC\U0010FFFF" + hebrew;

    EXPECT_EQ(Text::wellFormedXML(text), text);
}

TEST(TextEscapedXML, MarkupBecomesReferencesAndWhatXMLCannotHoldIsReplaced) {
    EXPECT_EQ(Text::escapedXML("<a & \"b\"> 'c' &amp;\tcaf\xE9\x07"),
              "&lt;a &amp; &quot;b&quot;&gt; 'c' &amp;amp;\tcaf" + replacement + replacement);
}

TEST(TextCharacterCount, CountsWhatAPersonSeesAsOne) {
    EXPECT_EQ(Text::characterCount(""), 0);
    EXPECT_EQ(Text::characterCount("A001"), 4);
    EXPECT_EQ(Text::characterCount(composedE), 1);
    EXPECT_EQ(Text::characterCount(decomposedE), 1);
    EXPECT_EQ(Text::characterCount(family), 1);
    EXPECT_EQ(Text::characterCount(flag + flag), 2);
    EXPECT_EQ(Text::characterCount(hebrew), 4);
    EXPECT_EQ(Text::characterCount("a\nb"), 3);
    EXPECT_EQ(Text::characterCount("a\r\nb"), 3);  // The two are one line end.
    EXPECT_EQ(Text::characterCount("a\rb"), 3);
}

TEST(TextCharacterCount, MalformedBytes_CountOnceAMaximalRun) {
    EXPECT_EQ(Text::characterCount("a\xFF\xFEz"), 4);
    EXPECT_EQ(Text::characterCount("a\xE2\x82z"), 3);
}

TEST(TextPrefix, CutsBetweenCharactersOnly) {
    const std::string text = "a" + family + decomposedE + "z";

    EXPECT_EQ(Text::prefix(text, 0), "");
    EXPECT_EQ(Text::prefix(text, 1), "a");
    EXPECT_EQ(Text::prefix(text, 2), "a" + family);
    EXPECT_EQ(Text::prefix(text, 3), "a" + family + decomposedE);
    EXPECT_EQ(Text::prefix(text, 4), text);
    EXPECT_EQ(Text::prefix(text, 5), text);
    EXPECT_EQ(Text::prefix("", 3), "");
}

TEST(TextPrefix, NegativeCount_GivesNothing) {
    EXPECT_EQ(Text::prefix("abc", -1), "");
}

TEST(TextPrefix, OfMalformedBytes_IsWellFormed) {
    EXPECT_EQ(Text::prefix("\xFF\xFEz", 2), replacement + replacement);
}

TEST(TextSuffix, CutsBetweenCharactersOnly) {
    const std::string text = "a" + family + decomposedE + "z";

    EXPECT_EQ(Text::suffix(text, 0), "");
    EXPECT_EQ(Text::suffix(text, 1), "z");
    EXPECT_EQ(Text::suffix(text, 2), decomposedE + "z");
    EXPECT_EQ(Text::suffix(text, 3), family + decomposedE + "z");
    EXPECT_EQ(Text::suffix(text, 4), text);
    EXPECT_EQ(Text::suffix(text, 5), text);
    EXPECT_EQ(Text::suffix("a\r\nb", 2), "\r\nb");
    EXPECT_EQ(Text::suffix("", 3), "");
}

TEST(TextSuffix, NegativeCount_GivesNothing) {
    EXPECT_EQ(Text::suffix("abc", -1), "");
    EXPECT_EQ(Text::suffix("abc", std::numeric_limits<std::int64_t>::min()), "");
}

TEST(TextSuffix, OfMalformedBytes_IsWellFormed) {
    EXPECT_EQ(Text::suffix("z\xFF\xFE", 2), replacement + replacement);
}

TEST(TextIsLeftToRight, NoPartMayTurnTheOrder) {
    for (const std::string& text : {std::string(), std::string("A001.mov"), composedE, family,
                                    std::string("日本語"), std::string("a\xFF")}) {
        EXPECT_TRUE(Text::isLeftToRight(text)) << text;
    }
    for (const std::string& text : {hebrew, "a " + hebrew, std::string("\u0627\u0644"),
                                    std::string("a\u202Eb"), std::string("a\u200F")}) {
        EXPECT_FALSE(Text::isLeftToRight(text)) << text;
    }
}

TEST(TextOrderingKey, OrdersByCodePointsNotByLanguageOrNumber) {
    const std::vector<std::string> ordered{"010", "09",      "A",      "B",      "Z",         "a",
                                           "b",   composedE, "\u05D0", "\uFF5E", "\U0001F3AC"};
    std::vector<std::string> shuffled(ordered.rbegin(), ordered.rend());

    std::ranges::sort(shuffled, {}, Text::orderingKey);

    EXPECT_EQ(shuffled, ordered);
}

TEST(TextTrimmed, WhiteSpaceAndLineEnds_GoAtBothEndsAlone) {
    EXPECT_EQ(Text::trimmed(" \t\v\f\r\n a  b\n c\u0085\u00A0"), "a  b\n c");
    EXPECT_EQ(Text::trimmed("\u2028\u3000" + flag + " " + family + "\u2003"), flag + " " + family);
    EXPECT_EQ(Text::trimmed("a"), "a");
}

TEST(TextTrimmed, NothingElse_LeavesNothing) {
    EXPECT_EQ(Text::trimmed(""), "");
    EXPECT_EQ(Text::trimmed(" "), "");
    EXPECT_EQ(Text::trimmed("\u3000\n\u1680"), "");
}

TEST(TextTrimmed, WhatOnlyLooksBlank_Stays) {
    const std::string joiner = "\u200B";
    EXPECT_EQ(Text::trimmed(" " + joiner + " "), joiner);
    EXPECT_EQ(Text::trimmed(std::string("\0 ", 2)), std::string("\0", 1));
}

TEST(TextTrimmed, MalformedBytes_BecomeReplacements) {
    EXPECT_EQ(Text::trimmed(" \xFF \xE2\x80"), replacement + " " + replacement);
}

TEST(TextTrimmedOnLine, BlanksAndTabsGo_LineEndsStay) {
    EXPECT_EQ(Text::trimmedOnLine(" \t\u00A0\u3000a  b\t \u2003"), "a  b");
    EXPECT_EQ(Text::trimmedOnLine(" \n a \r\n"), "\n a \r\n");
    EXPECT_EQ(Text::trimmedOnLine(" \v "), "\v");
    EXPECT_EQ(Text::trimmedOnLine(" \t "), "");
    EXPECT_EQ(Text::trimmedOnLine(" \xFF "), replacement);
}

TEST(TextOrderingKey, CanonicalEquivalents_HaveTheSameKey) {
    EXPECT_EQ(Text::orderingKey(composedE), Text::orderingKey(decomposedE));
    EXPECT_EQ(Text::orderingKey("\u212B"), Text::orderingKey("A\u030A"));  // Angstrom, A with ring.
    // Compatibility forms are other texts.
    EXPECT_NE(Text::orderingKey("\uFB01"), Text::orderingKey("fi"));
}

TEST(TextOrderingKey, DecomposedName_StandsWhereItsComposedFormDoes) {
    // In bytes "e" with an accent would come before "f"; composed it comes behind "z".
    EXPECT_GT(Text::orderingKey(decomposedE), Text::orderingKey("f"));
    EXPECT_GT(Text::orderingKey(decomposedE), Text::orderingKey("z"));
}

TEST(TextOrderingKey, MalformedBytes_OrderAsReplacements) {
    EXPECT_EQ(Text::orderingKey("a\xFF"), "a" + replacement);
}

TEST(TextUpperCased, FollowsNoParticularLanguage) {
    EXPECT_EQ(Text::upperCased("dcim_iI"), "DCIM_II");
    EXPECT_EQ(Text::upperCased("é"), "É");
    EXPECT_EQ(Text::upperCased("straße"), "STRASSE");
    EXPECT_EQ(Text::upperCased("a\xFF"), "A" + replacement);
    EXPECT_EQ(Text::upperCased(""), "");
}

TEST(TextLowerCased, FollowsNoParticularLanguage) {
    EXPECT_EQ(Text::lowerCased("DCIM_iI"), "dcim_ii");
    EXPECT_EQ(Text::lowerCased("\u00C9"), composedE);
    EXPECT_EQ(Text::lowerCased("\u03A3\u0391\u03A3"), "\u03C3\u03B1\u03C2") << "a final sigma";
    EXPECT_EQ(Text::lowerCased("A\xFF"), "a" + replacement);
    EXPECT_EQ(Text::lowerCased(""), "");
}

}  // namespace
