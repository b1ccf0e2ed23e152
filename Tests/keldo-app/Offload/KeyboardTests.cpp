#include "WindowFixture.h"

using WindowSupport::WindowFixture;

namespace {

class KeyboardTests : public WindowFixture {
protected:
    QString focused() const {
        QQuickItem* item = driver_->window().activeFocusItem();
        while (item && item->objectName().isEmpty()) item = item->parentItem();
        return item ? item->objectName() : QString();
    }

    /// The names that Tab reaches from the start, once around.
    QStringList tabRound() {
        QStringList names;
        for (int i = 0; i < 40; ++i) {
            driver_->key(Qt::Key_Tab);
            if (names.contains(focused())) break;
            names += focused();
        }
        return names;
    }
};

}  // namespace

TEST_F(KeyboardTests, TabReachesEveryControl) {
    setUpOffload();
    const QStringList names = tabRound();
    for (const QString name :
         {"mode", "offload.choose", "offload.remove.0", "offload.remove.1", "offload.add",
          "offload.reel", "offload.checksum", "offload.start"}) {
        EXPECT_TRUE(names.contains(name))
            << name.toStdString() << " of " << names.join(" ").toStdString();
    }
    keepPictures("focus");
}

TEST_F(KeyboardTests, Return_StartsTheOffloadFromTheReelField) {
    setUpOffload();
    driver_->press("offload.reel");
    driver_->key(Qt::Key_Return);
    driver_->waitForStage(Stage::finished);
    EXPECT_EQ(driver_->text("offload.verdict"), "All Files Verified");
}

TEST_F(KeyboardTests, Return_DoesNothingWhileNothingCanStart) {
    openWindow();
    driver_->key(Qt::Key_Return);
    EXPECT_EQ(driver_->offload()->stage(), Stage::setup);
}

TEST_F(KeyboardTests, SpacePressesTheFocusedButton) {
    openWindow();
    driver_->find("offload.add")->forceActiveFocus();
    desktop_.answers = {drive("SHUTTLE_01")};
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(driver_->text("offload.drive.0"), "SHUTTLE_01");
}

TEST_F(KeyboardTests, ArrowsMoveTheChecksumAndTheMode) {
    setUpOffload();
    driver_->find("offload.checksum")->forceActiveFocus();
    driver_->key(Qt::Key_Right);
    EXPECT_EQ(driver_->offload()->algorithm(), ReelCore::HashAlgorithm::md5);
    driver_->key(Qt::Key_Left);
    EXPECT_EQ(driver_->offload()->algorithm(), ReelCore::HashAlgorithm::xxhash64);
    driver_->key(Qt::Key_Left);
    EXPECT_EQ(driver_->offload()->algorithm(), ReelCore::HashAlgorithm::xxhash64);
    driver_->find("mode")->forceActiveFocus();
    driver_->key(Qt::Key_Right);
    EXPECT_EQ(driver_->text("later"), "Transcode is not in this version yet.");
}
