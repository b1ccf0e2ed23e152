#include "OffloadFixture.h"

using WindowSupport::OffloadFixture;

namespace {
class SetupViewTests : public OffloadFixture {
protected:
    /// What stands out of the card on either side, anywhere below it.
    static QStringList widerThan(const QQuickItem& card) {
        QStringList out;
        standingOut(card, card, out);
        return out;
    }

private:
    static void standingOut(const QQuickItem& item, const QQuickItem& card, QStringList& out) {
        if (!item.isVisible()) return;
        const QRectF place = item.mapRectToItem(&card, QRectF(0, 0, item.width(), item.height()));
        if (place.left() < 0 || place.right() > card.width()) {
            out += item.objectName() + " " + item.metaObject()->className();
        }
        for (const QQuickItem* child : item.childItems()) standingOut(*child, card, out);
    }
};
}  // namespace

TEST_F(SetupViewTests, AtFirst_SaysWhatIsMissingAndCantStart) {
    openWindow();
    EXPECT_EQ(driver_->text("offload.source"), "No card selected");
    EXPECT_EQ(driver_->text("offload.nodrives"),
              "Add at least two drives for a safe, format-eligible offload.");
    EXPECT_EQ(driver_->find("offload.reel")->property("placeholderText"), "A001_2026-06-06");
    EXPECT_FALSE(driver_->isEnabled("offload.start"));
    EXPECT_FALSE(driver_->isShown("offload.warning"));
    EXPECT_FALSE(driver_->isShown("offload.scan"));
}

TEST_F(SetupViewTests, ChosenCard_IsSummedUp) {
    openWindow();
    chooseCard(card());
    EXPECT_EQ(driver_->text("offload.source").toStdString(), card().native());
    EXPECT_TRUE(driver_->isShown("offload.scan"));
    EXPECT_EQ(driver_->text("offload.camera"), "Sony");
    EXPECT_EQ(driver_->text("offload.fileCount"), "4 files");
    EXPECT_EQ(driver_->text("offload.total"), "537.1 KB");
    keepPictures("card-chosen");
}

TEST_F(SetupViewTests, WhileScanning_SaysSoAndCantStart) {
    openWindow();
    addDrive(drive("SHUTTLE_01"));
    int seen = 0;
    std::string picture;
    const auto look = [&] {
        if (offload()->stage() != Stage::scanning) return;
        ++seen;
        EXPECT_EQ(driver_->text("offload.scanning"), "Scanning…");
        EXPECT_FALSE(driver_->isEnabled("offload.start"));
        EXPECT_FALSE(driver_->isShown("offload.scan"));
        driver_->screenshot(ReelCore::URL(KELDO_SCREENSHOTS) / ("scanning-" + picture + ".png"));
    };
    QObject::connect(offload(), &keldo_app::OffloadViewModel::changed, offload(), look);
    for (const auto& [colors, width] : {std::pair("light-", 940), std::pair("dark-", 1600)}) {
        WindowSupport::setLook(width == 940 ? WindowSupport::Look::light
                                            : WindowSupport::Look::dark);
        driver_->resize(width, width == 940 ? 680 : 1000);
        picture = colors + std::to_string(width);
        chooseCard(card());
    }
    EXPECT_EQ(seen, 2);
}

TEST_F(SetupViewTests, Dismissed_ChangesNothing) {
    openWindow();
    driver_->press("offload.source.choose");
    driver_->press("offload.add");
    EXPECT_EQ(desktop_.messages, (QStringList{"Choose Camera Card / Source", "Add Backup Drive"}));
    EXPECT_EQ(driver_->text("offload.source"), "No card selected");
    EXPECT_TRUE(driver_->isShown("offload.nodrives"));
}

TEST_F(SetupViewTests, OneDrive_WarnsThatFormattingStaysLocked) {
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    EXPECT_EQ(driver_->text("offload.warning"),
              "One drive copies fine, but formatting stays locked until you add a second.");
    EXPECT_FALSE(driver_->isShown("offload.nodrives"));
    EXPECT_TRUE(driver_->isEnabled("offload.start"));
    keepPictures("one-drive");
}

TEST_F(SetupViewTests, Start_StandsAtTheTrailingEdgeWithAndWithoutTheWarning) {
    openWindow();
    const auto right = [&](const char* name) {
        const QQuickItem& item = driver_->at(name);
        return item.mapToScene(QPointF(item.width(), 0)).x();
    };
    EXPECT_EQ(right("offload.start"), right("offload.optionsCard"));
    addDrive(drive("SHUTTLE_01"));
    EXPECT_TRUE(driver_->isShown("offload.warning"));
    EXPECT_EQ(right("offload.start"), right("offload.optionsCard"));
}

TEST_F(SetupViewTests, DrivesAreListedOnceInOrderAndCanBeRemoved) {
    openWindow();
    addDrive(drive("SHUTTLE_01"));
    addDrive(drive("RAID_MASTER"));
    addDrive(drive("SHUTTLE_01"));
    EXPECT_EQ(driver_->text("offload.drive.0"), "SHUTTLE_01");
    EXPECT_EQ(driver_->text("offload.drive.1"), "RAID_MASTER");
    EXPECT_FALSE(driver_->isShown("offload.drive.2"));
    EXPECT_FALSE(driver_->isShown("offload.warning"));
    driver_->press("offload.remove.0");
    EXPECT_EQ(driver_->text("offload.drive.0"), "RAID_MASTER");
    EXPECT_TRUE(driver_->isShown("offload.warning"));
}

TEST_F(SetupViewTests, TypedReelName_IsUsedAndOverwrittenByANewCard) {
    openWindow();
    chooseCard(card());
    driver_->press("offload.reel");
    driver_->key(Qt::Key_End);
    driver_->type("_B");
    EXPECT_TRUE(offload()->reelName().endsWith("_B"));
    chooseCard(drive("EMPTY"));
    EXPECT_TRUE(offload()->reelName().startsWith("EMPTY_"));
    EXPECT_EQ(driver_->text("offload.reel"), offload()->reelName());
}

TEST_F(SetupViewTests, ClearedReelName_CantStart) {
    setUpOffload();
    driver_->press("offload.reel");
    for (int i = 0; i < 4; ++i) driver_->key(Qt::Key_Backspace);
    EXPECT_EQ(driver_->text("offload.reel"), "");
    EXPECT_FALSE(driver_->isEnabled("offload.start"));
    driver_->type(" ");
    EXPECT_TRUE(driver_->isEnabled("offload.start"));
}

TEST_F(SetupViewTests, Checksum_IsChosenBySegments) {
    setUpOffload();
    driver_->press("offload.checksum.sha256");
    EXPECT_EQ(offload()->algorithm(), ReelCore::HashAlgorithm::sha256);
    keepPictures("ready");
    driver_->press("offload.checksum.md5");
    EXPECT_EQ(offload()->algorithm(), ReelCore::HashAlgorithm::md5);
}

TEST_F(SetupViewTests, ManyDrivesAndLongPaths_StayInTheirCardsAndScroll) {
    openWindow();
    const ReelCore::URL far = drive(std::string(120, 'x')) / std::string(120, 'y');
    std::filesystem::create_directories(far / "A001_C003");
    chooseCard(far / "A001_C003");
    const std::string longName = std::string(100, 'D') + "_" + std::string(100, 'E');
    for (int i = 0; i < 9; ++i) addDrive(far / (longName + std::to_string(i)));
    for (const int width : {940, 1600}) {
        driver_->resize(width, 680);
        for (const char* card :
             {"offload.sourceCard", "offload.drivesCard", "offload.optionsCard"}) {
            EXPECT_EQ(widerThan(*driver_->find(card)), QStringList());
        }
        for (const char* text :
             {"offload.source.text", "offload.drive.0.title", "offload.drive.8.path"}) {
            EXPECT_TRUE(driver_->find(text)->property("truncated").toBool()) << text;
            EXPECT_EQ(driver_->find(text)->property("elide").toInt(), Qt::ElideMiddle) << text;
        }
    }
    keepPictures("many-drives");
    driver_->press("offload.remove.8");
    EXPECT_EQ(offload()->destinations().size(), 8U);
}

TEST_F(SetupViewTests, TextThatIsCut_StandsWholeInATooltip) {
    openWindow();
    const ReelCore::URL far = drive(std::string(120, 'x')) / std::string(120, 'y');
    std::filesystem::create_directories(far / "A001_C003");
    chooseCard(far / "A001_C003");
    addDrive(far / std::string(200, 'D'));
    for (const char* name :
         {"offload.drive.0.path", "offload.drive.0.title", "offload.source.text"}) {
        driver_->hover(name);
        const QString whole = driver_->text(name);
        driver_->waitFor("the tooltip", [&] {
            return driver_->isShown("hint") && driver_->text("hint") == whole;
        });
        const QQuickItem* hint = driver_->find("hint");
        const QRectF place = hint->mapRectToScene(QRectF(0, 0, hint->width(), hint->height()));
        EXPECT_TRUE(QRectF(QPointF(), driver_->window().size()).contains(place));
    }
    EXPECT_EQ(driver_->text("hint").toStdString(), (far / "A001_C003").native());
    driver_->screenshot(ReelCore::URL(KELDO_SCREENSHOTS) / "tooltip-light-980.png");
}

TEST_F(SetupViewTests, TextThatIsWhole_HasNoTooltip) {
    openWindow();
    addDrive(drive("SHUTTLE_01"));
    driver_->hover("offload.drive.0.title");
    EXPECT_FALSE(driver_->find("offload.drive.0.title")->property("truncated").toBool());
    // The one that comes is the button's, later than any of the text would.
    driver_->hover("offload.remove.0");
    driver_->waitFor("a tooltip", [&] { return driver_->isShown("hint"); });
    EXPECT_EQ(driver_->text("hint"), "Remove SHUTTLE_01");
}
