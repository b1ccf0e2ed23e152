#include "OffloadFixture.h"

#include <sys/stat.h>

using WindowSupport::OffloadFixture;

namespace {

/// A window at an open gate, with a script in the place of the erase tool.
class FormatSheetTests : public OffloadFixture {
protected:
    void SetUp() override {
        std::filesystem::remove(tool());
        setUpOffload();
        runToEnd();
    }
    void TearDown() override {
        OffloadFixture::TearDown();
        std::filesystem::remove(tool());
    }

    static ReelCore::URL tool() {
        const ReelCore::URL program = std::filesystem::read_symlink("/proc/self/exe");
        return program.parent_path().parent_path() / "libexec/keldobay/diskutil";
    }

    static void installTool(const std::string& script) {
        TestSupport::writeFile(tool(), "#!/bin/sh\n" + script);
        ::chmod(tool().c_str(), 0755);
    }

    void openSheet() {
        driver_->press("offload.formatButton");
        driver_->waitFor("the sheet", [&] {
            const QQuickItem* typed = driver_->find("sheet.typed");
            return typed && typed->hasActiveFocus();
        });
    }

    void eraseCard() {
        openSheet();
        driver_->type("ERASE");
        driver_->press("sheet.erase");
        driver_->waitFor("the erase", [&] { return driver_->isShown("offload.formatStatus"); });
    }
};

}  // namespace

TEST_F(FormatSheetTests, SaysWhatWillBeDone) {
    openSheet();
    EXPECT_EQ(driver_->text("sheet.heading"), "Erase the camera card?");
    EXPECT_EQ(driver_->text("sheet.text"),
              "This permanently erases the source card. Your footage is verified on 2 drives, so "
              "this is safe — but it cannot be undone.");
    EXPECT_EQ(driver_->text("sheet.command").toStdString(),
              "diskutil eraseVolume ExFAT 'A001' '" + card().native() + "'");
    EXPECT_FALSE(driver_->isEnabled("sheet.erase"));
    keepPictures("erase");
}

TEST_F(FormatSheetTests, OnlyTheExactWordUnlocksTheErase) {
    openSheet();
    driver_->type("erase");
    EXPECT_FALSE(driver_->isEnabled("sheet.erase"));
    for (int i = 0; i < 5; ++i) driver_->key(Qt::Key_Backspace);
    driver_->type("ERASE");
    EXPECT_TRUE(driver_->isEnabled("sheet.erase"));
    keepPictures("erase-unlocked");
    driver_->type(" ");
    EXPECT_FALSE(driver_->isEnabled("sheet.erase"));
}

TEST_F(FormatSheetTests, EscapeAndCancelCloseItAndForgetWhatWasTyped) {
    openSheet();
    driver_->type("ERASE");
    driver_->key(Qt::Key_Escape);
    driver_->waitFor("the sheet to close", [&] { return !driver_->isShown("sheet.typed"); });
    openSheet();
    EXPECT_EQ(driver_->text("sheet.typed"), "");
    driver_->press("sheet.cancel");
    driver_->waitFor("the sheet to close", [&] { return !driver_->isShown("sheet.typed"); });
    EXPECT_EQ(offload()->formatStatus(), "");
}

TEST_F(FormatSheetTests, ReturnDoesNotErase) {
    installTool("touch \"$4/erased\"\n");
    openSheet();
    driver_->type("ERASE");
    driver_->key(Qt::Key_Return);
    EXPECT_TRUE(driver_->isShown("sheet.typed"));
    EXPECT_FALSE(offload()->isFormatting());
}

TEST_F(FormatSheetTests, Erase_RunsTheToolAndSaysSo) {
    const ReelCore::URL record = folder_.path() / "arguments";
    installTool("for a in \"$@\"; do echo \"$a\"; done > '" + record.native() +
                "'\necho Finished erase\n");
    eraseCard();
    EXPECT_EQ(driver_->text("offload.formatStatus"), "✓ Card formatted as “A001”.\nFinished erase");
    EXPECT_EQ(TestSupport::readFile(record), "eraseVolume\nExFAT\nA001\n" + card().native() + "\n");
    EXPECT_FALSE(driver_->isShown("offload.formatButton"));
    keepPictures("erased");
}

TEST_F(FormatSheetTests, WhileTheEraseRuns_SaysSoAndKeepsTheScreen) {
    // Waits for the file to go; with the test's folder it goes in any case.
    const ReelCore::URL hold = folder_.path() / "hold";
    TestSupport::writeFile(hold, "");
    installTool("while [ -e '" + hold.native() + "' ]; do sleep 0.02; done\necho Finished erase\n");
    openSheet();
    driver_->type("ERASE");
    driver_->press("sheet.erase");
    driver_->waitFor("the sheet to close", [&] { return !driver_->isShown("sheet.heading"); });
    EXPECT_TRUE(offload()->isFormatting());
    EXPECT_EQ(driver_->shown("offload.erasing").text, "Erasing…");
    EXPECT_FALSE(driver_->isShown("offload.formatButton"));
    EXPECT_FALSE(driver_->isShown("offload.formatStatus"));
    EXPECT_FALSE(driver_->isEnabled("offload.new"));
    offload()->reset();
    EXPECT_EQ(offload()->stage(), Stage::finished);
    EXPECT_TRUE(offload()->gate()->eligible);
    keepPictures("erasing");

    std::filesystem::remove(hold);
    driver_->waitFor("the erase", [&] { return driver_->isShown("offload.formatStatus"); });
    EXPECT_FALSE(offload()->isFormatting());
    EXPECT_FALSE(driver_->isShown("offload.erasing"));
    EXPECT_TRUE(driver_->isEnabled("offload.new"));
    EXPECT_FALSE(driver_->isShown("offload.formatButton"));
}

TEST_F(FormatSheetTests, ASecondEraseWhileOneRuns_DoesNothing) {
    const ReelCore::URL hold = folder_.path() / "hold";
    const ReelCore::URL record = folder_.path() / "runs";
    TestSupport::writeFile(hold, "");
    installTool("echo run >> '" + record.native() + "'\nwhile [ -e '" + hold.native() +
                "' ]; do sleep 0.02; done\n");
    offload()->formatCard();
    offload()->formatCard();
    driver_->waitFor("the tool", [&] { return std::filesystem::exists(record); });
    std::filesystem::remove(hold);
    driver_->waitFor("the erase", [&] { return driver_->isShown("offload.formatStatus"); });
    EXPECT_EQ(TestSupport::readFile(record), "run\n");
}

TEST_F(FormatSheetTests, TheOutcomeIsInTheColourOfItsMeaning) {
    installTool("echo Finished erase\n");
    eraseCard();
    EXPECT_EQ(driver_->shown("offload.formatStatus").textColor,
              driver_->themeColor("proved").name().toStdString());
    driver_->press("offload.new");
    runToEnd();
    installTool("exit 3\n");
    eraseCard();
    EXPECT_EQ(driver_->shown("offload.formatStatus").textColor,
              driver_->themeColor("danger").name().toStdString());
}

TEST_F(FormatSheetTests, EraseThatFails_SaysWhyAndIsNotOfferedAgain) {
    installTool("echo The volume is busy.\nexit 3\n");
    eraseCard();
    EXPECT_EQ(driver_->text("offload.formatStatus"), "✗ diskutil failed (3): The volume is busy.");
    EXPECT_FALSE(driver_->isShown("offload.formatButton"));
    keepPictures("erase-failed");
    driver_->press("offload.new");
    EXPECT_EQ(offload()->formatStatus(), "");
}

TEST_F(FormatSheetTests, EraseOfACardThatHasChanged_IsRefusedBeforeTheToolRuns) {
    const ReelCore::URL record = folder_.path() / "ran";
    installTool("touch '" + record.native() + "'\n");
    TestSupport::writeFile(card() / "XDROOT/Clip/A001C003.MXF", "a take of just now");
    eraseCard();
    EXPECT_EQ(driver_->text("offload.formatStatus"),
              "✗ The files on the card are not the ones that were verified. Nothing was erased.");
    EXPECT_FALSE(std::filesystem::exists(record));
}
