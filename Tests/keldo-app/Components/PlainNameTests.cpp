#include "keldo-app/Components/PlainName.h"

#include <gtest/gtest.h>

using keldo_app::PlainName;

TEST(PlainName, OrdinaryNamesStayAsTheyAre) {
    for (const char* name : {"", "A001C001.MXF", "/media/dit/A 001", "Grüße 日本 €", "😀.mov"}) {
        EXPECT_EQ(PlainName::oneLine(name), QString(name));
    }
}

TEST(PlainName, ControlCharactersBecomeTheirPictures) {
    EXPECT_EQ(PlainName::oneLine("a\nb\rc\td"), "a␊b␍c␉d");
    EXPECT_EQ(PlainName::oneLine(QString(QChar(0))), "␀");
    EXPECT_EQ(PlainName::oneLine("\x1f\x7f"), "␟␡");
    EXPECT_EQ(PlainName::oneLine(QString(QChar(0x85))), "[U+0085]");
    EXPECT_EQ(PlainName::oneLine(QString("a") + QChar(0x2028) + QChar(0x2029)),
              "a[U+2028][U+2029]");
}

TEST(PlainName, MarksThatSteerTheDirectionAreShown) {
    for (const char16_t mark : u"\u200e\u200f\u061c\u202a\u202e\u2066\u2069") {
        if (mark == 0) continue;
        const QString line = PlainName::oneLine(QString("a") + QChar(mark) + "b");
        EXPECT_EQ(line, QStringLiteral("a[U+%1]b")
                            .arg(uint(mark), 4, 16, QLatin1Char('0'))
                            .toUpper()
                            .replace("A[", "a[")
                            .replace("]B", "]b"));
    }
}

TEST(PlainName, JoinersOfLettersStay) {
    const QString name = QString("\u0646\u0645") + QChar(0x200C) + "\u0647";
    EXPECT_TRUE(PlainName::oneLine(name).contains(name));
}

TEST(PlainName, LettersFromTheRightStayInTheirPartOfThePath) {
    const QString start(QChar(0x200E));
    const QString open(QChar(0x2068));
    const QString close(QChar(0x2069));
    EXPECT_EQ(PlainName::oneLine("/שלום/عربي/A1"), start + "/" + open + "שלום" + close + "/" +
                                                       open + "عربي" + close + "/" + open + "A1" +
                                                       close);
}
