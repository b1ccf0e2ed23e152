#include "GalleryFixture.h"

#include <QGuiApplication>

namespace {

/// Where things are and how large, also on screens of a higher resolution.
class LayoutTests : public GalleryFixture {
protected:
    /// What stands out of the item on either side, anywhere below it.
    static QStringList widerThan(const QQuickItem& item) {
        QStringList out;
        standingOut(item, item, out);
        return out;
    }

    /// Pictures at the sizes that a window can have, named after the scale of the screen.
    void keepScaledPictures(const std::string& state) {
        const double scale = driver_->window().effectiveDevicePixelRatio();
        keepPictures(state + (scale == 1 ? "" : "-scale" + std::to_string(scale).substr(0, 3)));
    }

private:
    static void standingOut(const QQuickItem& item, const QQuickItem& around, QStringList& out) {
        if (!item.isVisible() || item.inherits("FocusRing")) return;
        const QRectF place = item.mapRectToItem(&around, QRectF(0, 0, item.width(), item.height()));
        if (place.left() < -0.5 || place.right() > around.width() + 0.5) {
            out += item.objectName() + " " + item.metaObject()->className();
        }
        for (const QQuickItem* child : item.childItems()) standingOut(*child, around, out);
    }
};

}  // namespace

TEST_F(LayoutTests, NothingStandsOutOfItsCard) {
    for (const char* section : {"Controls", "Rows", "Texts", "States"}) {
        openGallery(section);
        for (const int width : {940, 1600}) {
            driver_->resize(width, 680);
            EXPECT_EQ(widerThan(driver_->at("page")), QStringList()) << section << width;
        }
        keepScaledPictures(std::string("gallery-") + section);
        driver_.reset();
    }
}

TEST_F(LayoutTests, SymbolsAreAsLargeAsTheTheme_AtEveryScale) {
    openGallery("Rows");
    EXPECT_LE(driver_->at("files.head").height(), 24);
    EXPECT_EQ(driver_->at("file.0").height(), 36);
}

TEST_F(LayoutTests, PageIsNoWiderThanCanBeRead) {
    openGallery("Texts");
    driver_->resize(1600, 680);
    EXPECT_EQ(driver_->at("texts").width(), 1100);
    EXPECT_EQ(driver_->at("texts").mapToScene({}).x(), 250);
    driver_->resize(940, 680);
    EXPECT_EQ(driver_->at("texts").width(), 940 - 2 * 24);
}

TEST_F(LayoutTests, EveryComponentInAPlainColumn_HasAWidthAndAHeight) {
    openGallery("Bare");
    const auto items = driver_->at("bare.column").childItems();
    ASSERT_EQ(items.size(), 31);
    for (const QQuickItem* item : items) {
        EXPECT_GE(item->width(), 8) << item->objectName().toStdString();
        EXPECT_GE(item->height(), 8) << item->objectName().toStdString();
    }
    keepScaledPictures("gallery-Bare");
}

TEST_F(LayoutTests, LongLabels_AreCutInTheMiddleWithTheWholeInATooltip) {
    openGallery("Controls");
    driver_->hover("long");
    driver_->waitFor("the tooltip", [&] { return driver_->isShown("hint"); });
    EXPECT_EQ(driver_->text("hint"), driver_->text("long"));
    const QQuickItem& hint = driver_->at("hint");
    const QRectF place = hint.mapRectToScene(QRectF(0, 0, hint.width(), hint.height()));
    EXPECT_TRUE(QRectF(QPointF(), driver_->window().size()).contains(place));
}

TEST_F(LayoutTests, LongNames_AreCutAndLongValuesWrap) {
    openGallery("Rows");
    for (const char* cut :
         {"path.long.text", "file.long.title", "file.long.path", "status.long.title"}) {
        EXPECT_TRUE(property(cut, "truncated").toBool()) << cut;
    }
    EXPECT_FALSE(property("path.full.text", "truncated").toBool());
    EXPECT_GT(property("fact.long.value", "lineCount").toInt(), 1);
    EXPECT_GT(property("fact.long.label", "lineCount").toInt(), 1);
    EXPECT_GE(property("status.bad.detail", "lineCount").toInt(), 2);
}

TEST_F(LayoutTests, NamesOfOthers_TakeOneLineAndBeginAtTheLeft) {
    openGallery("Texts");
    const QQuickItem& plain = driver_->at("name.0.title");
    for (int i = 0; i < 9; ++i) {
        const QString name = "name." + QString::number(i);
        EXPECT_EQ(property(name + ".title", "lineCount").toInt(), 1) << i;
        EXPECT_EQ(driver_->at(name).height(), driver_->at("name.0").height()) << i;
        EXPECT_EQ(driver_->at(name + ".title").mapToScene({}).x(), plain.mapToScene({}).x()) << i;
        EXPECT_EQ(property(name + ".title", "effectiveHorizontalAlignment").toInt(), Qt::AlignLeft);
    }
}
