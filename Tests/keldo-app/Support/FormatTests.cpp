#include "keldo-app/Support/Format.h"

#include <QDate>

#include <gtest/gtest.h>

using keldo_app::Format;

TEST(Format, Bytes_ScaleBy1024WithOneDecimalAboveBytes) {
    EXPECT_EQ(Format::bytes(0), "0 B");
    EXPECT_EQ(Format::bytes(1023), "1023 B");
    EXPECT_EQ(Format::bytes(1024), "1.0 KB");
    EXPECT_EQ(Format::bytes(1536), "1.5 KB");
    EXPECT_EQ(Format::bytes(1024 * 1024), "1.0 MB");
    EXPECT_EQ(Format::bytes(256'000'000'000), "238.4 GB");
    EXPECT_EQ(Format::bytes(1'099'511'627'776), "1.0 TB");
}

TEST(Format, Bytes_BeyondTerabytesStayTerabytes) {
    EXPECT_EQ(Format::bytes(1'099'511'627'776 * 2048), "2048.0 TB");
}

TEST(Format, Bytes_NegativeValuesStayInBytes) {
    EXPECT_EQ(Format::bytes(-5'000'000), "-5000000 B");
}

TEST(Format, Count_HasAnSUnlessItIsOne) {
    EXPECT_EQ(Format::count(0, "clip"), "0 clips");
    EXPECT_EQ(Format::count(1, "Synced Clip"), "1 Synced Clip");
    EXPECT_EQ(Format::count(2, "more take"), "2 more takes");
}

TEST(Format, Percent_IsCutToWhole) {
    EXPECT_EQ(Format::percent(0), "0%");
    EXPECT_EQ(Format::percent(-0.001), "0%");
    EXPECT_EQ(Format::percent(0.479), "47%");
    EXPECT_EQ(Format::percent(0.9999), "99%");
    EXPECT_EQ(Format::percent(1), "100%");
}

TEST(Format, DefaultReel_IsTheFoldersNameAndToday) {
    const QString today = QDate::currentDate().toString("yyyy-MM-dd");
    EXPECT_EQ(Format::defaultReel("/media/dit/A001_C003"), "A001_C003_" + today);
    EXPECT_EQ(Format::defaultReel("/media/dit/A001_C003/"), "A001_C003_" + today);
    EXPECT_EQ(Format::defaultReel("/"), "/_" + today);
}

TEST(Format, Path_ShowsWhatIsNoTextAsReplacementCharacter) {
    EXPECT_EQ(Format::path("/media/A\xFF"), QStringLiteral("/media/A\uFFFD"));
}
