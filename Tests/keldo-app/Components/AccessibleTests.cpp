#include "GalleryFixture.h"

using WindowSupport::AccessibleNode;

namespace {

/// What assistive tools are told, and what they can do.
class AccessibleTests : public GalleryFixture {
protected:
    void expectNode(const char* item, const std::string& role, const std::string& name) const {
        const AccessibleNode node = driver_->accessible(item);
        EXPECT_EQ(node.role, role) << item;
        EXPECT_EQ(node.name, name) << item;
    }
};

}  // namespace

TEST_F(AccessibleTests, ControlsHaveRolesAndNames) {
    openGallery("Controls");
    expectNode("plain", "Button", "Plain");
    expectNode("icon", "Button", "Remove it");
    expectNode("menu", "ButtonMenu", "Download more…");
    expectNode("segments", "Grouping", "Segments");
    expectNode("segments.Two", "RadioButton", "Two");
    expectNode("picker", "ComboBox", "Preset");
    expectNode("toggle", "CheckBox", "Read the slate");
    expectNode("cameras.input", "EditableText", "Cameras");
    expectNode("rate.input", "EditableText", "Bitrate");
    expectNode("field", "EditableText", "Name");
    expectNode("disclosure.button", "Button", "How to image the card (one-time, in Terminal)");
    expectNode("cameras.more", "Button", "More: Cameras");
    expectNode("buttons", "Grouping", "Buttons");
}

TEST_F(AccessibleTests, EveryControlThatTabReaches_HasARoleANameAndCanBeFocused) {
    openGallery("Controls");
    for (const QString& name : driver_->tabRound()) {
        const AccessibleNode node = driver_->accessible(name);
        EXPECT_FALSE(node.name.empty()) << name.toStdString();
        EXPECT_NE(node.role, "NoRole") << name.toStdString();
        EXPECT_TRUE(node.isFocusable) << name.toStdString();
    }
}

TEST_F(AccessibleTests, StatesAreTold) {
    openGallery("Controls");
    EXPECT_TRUE(driver_->accessible("segments.Two").isChecked);
    EXPECT_FALSE(driver_->accessible("segments.One").isChecked);
    EXPECT_TRUE(driver_->accessible("toggle").isChecked);
    EXPECT_FALSE(driver_->accessible("toggle.stubborn").isChecked);
    EXPECT_EQ(driver_->accessible("plain.off").description, "not available");
    EXPECT_EQ(driver_->accessible("plain").description, "");
    EXPECT_EQ(driver_->accessible("picker").description, "ProRes 422");
    EXPECT_EQ(driver_->accessible("disclosure.button").description, "closed");
    EXPECT_EQ(driver_->accessible("cameras.input").value, "3");
    driver_->focus("field");
    driver_->type("A001");
    EXPECT_EQ(driver_->accessible("field").value, "A001");
    EXPECT_TRUE(driver_->accessible("field").isFocused);
}

TEST_F(AccessibleTests, ProgressIsToldInPercent) {
    openGallery("States");
    expectNode("running.progress", "ProgressBar", "Verifying checksums…");
    EXPECT_EQ(driver_->accessible("running.progress").description, "41%");
    EXPECT_EQ(driver_->accessible("begun.progress").description, "0%");
    EXPECT_EQ(driver_->accessible("done.progress").description, "100%");
    expectNode("busy", "Animation", "Scanning…");
    expectNode("failure.message", "StaticText",
               "Failed writing to /media/SHUTTLE_01: No space left on device");
}

TEST_F(AccessibleTests, Press_WorksOnceOnEveryKindOfButton) {
    openGallery("Controls");
    for (const char* button : {"plain", "prominent", "icon", "head"}) {
        driver_->accessiblePress(button);
        EXPECT_EQ(last(), button);
    }
    driver_->accessiblePress("segments.Three");
    EXPECT_EQ(property("segments", "currentIndex").toInt(), 2);
    driver_->accessiblePress("toggle");
    EXPECT_FALSE(property("toggle", "on").toBool());
    driver_->accessiblePress("toggle");
    EXPECT_TRUE(property("toggle", "on").toBool());
    driver_->accessiblePress("disclosure.button");
    EXPECT_TRUE(driver_->isShown("disclosure.code"));
    EXPECT_EQ(driver_->accessible("disclosure.button").description, "open");
    AccessibleNode::act(driver_->at("cameras.input"), "Increase");
    EXPECT_EQ(driver_->text("cameras.input"), "4");
    AccessibleNode::act(driver_->at("cameras.input"), "Decrease");
    EXPECT_EQ(driver_->text("cameras.input"), "3");
    driver_->accessiblePress("plain.off");
    EXPECT_EQ(last(), "head");
}

TEST_F(AccessibleTests, Press_OpensAListAndChoosesFromIt) {
    openGallery("Controls");
    for (const char* opener : {"picker", "menu"}) {
        driver_->accessiblePress(opener);
        driver_->waitFor("the list", [&] { return driver_->isShown("choice.2"); });
        expectNode("choice.2", "MenuItem", driver_->text("choice.2").toStdString());
        driver_->accessiblePress("choice.2");
        driver_->waitFor("the list to close", [&] { return !driver_->isShown("choice.2"); });
    }
    EXPECT_EQ(driver_->text("picker"), "DNxHR HQ");
    EXPECT_EQ(last(), "menu 2");
}

TEST_F(AccessibleTests, SheetIsADialogWithItsName) {
    openGallery("Controls");
    driver_->accessiblePress("opener");
    driver_->waitFor("the sheet", [&] { return driver_->isShown("sheet.text"); });
    expectNode("sheet", "Dialog", "Really?");
    keepPictures("gallery-sheet");
}

TEST_F(AccessibleTests, ListsAreListsAndRowsAreRead) {
    openGallery("Rows");
    expectNode("list", "List", "Thousands");
    const QStringList tree = AccessibleNode::tree(driver_->at("list.short"));
    EXPECT_EQ(tree, (QStringList{"List: Short", "StaticText: one", "StaticText: two"}));
    expectNode("path.empty.text", "StaticText", "No card selected");
    expectNode("path.empty.choose", "Button", "Choose…");
}

TEST_F(AccessibleTests, ACardIsReadInItsOrderAndNothingTwice) {
    openGallery("Texts");
    const QStringList tree = AccessibleNode::tree(driver_->at("texts"));
    EXPECT_EQ(tree.mid(0, 2), (QStringList{"Grouping: Texts", "StaticText: Texts"}));
    EXPECT_EQ(tree.filter("The first thing to know.").size(), 1);
    EXPECT_EQ(tree.filter("Formatting locked").size(), 1);
}
