#include "GalleryFixture.h"

namespace {

/// What keys, the wheel and the mouse do, and where the focus goes.
class KeyTests : public GalleryFixture {
protected:
    double scrolled(const char* view = "page.scroll") const {
        return property(view, "contentY").toDouble();
    }
};

}  // namespace

TEST_F(KeyTests, Tab_FollowsTheEye) {
    openGallery("Controls");
    driver_->focus("section");
    EXPECT_EQ(driver_->tabRound(), (QStringList{"head",
                                                "plain",
                                                "symbol",
                                                "prominent",
                                                "destructive",
                                                "icon",
                                                "long",
                                                "menu",
                                                "opener",
                                                "segments",
                                                "picker",
                                                "picker.stubborn",
                                                "toggle",
                                                "toggle.stubborn",
                                                "cameras.input",
                                                "hours.input",
                                                "rate.input",
                                                "field",
                                                "disclosure.button",
                                                "section"}));
}

TEST_F(KeyTests, Return_PressesTheButtonWithTheRing) {
    openGallery("Controls");
    for (const char* button : {"plain", "prominent", "icon", "head"}) {
        driver_->focus(button);
        driver_->key(Qt::Key_Return);
        EXPECT_EQ(last(), button);
        driver_->key(Qt::Key_Enter);
    }
    EXPECT_EQ(property("page", "returns").toInt(), 0);
}

TEST_F(KeyTests, Return_IsTheDefaultActionFromAnywhereElse) {
    openGallery("Controls");
    driver_->key(Qt::Key_Return);
    EXPECT_EQ(last(), "default 1");
    int returns = 1;
    for (const char* control :
         {"field", "rate.input", "cameras.input", "segments", "picker", "toggle"}) {
        driver_->focus(control);
        driver_->key(returns % 2 ? Qt::Key_Enter : Qt::Key_Return);
        EXPECT_EQ(property("page", "returns").toInt(), ++returns) << control;
    }
    EXPECT_TRUE(property("toggle", "on").toBool());
}

TEST_F(KeyTests, Return_AfterAClickOnAButton_IsTheDefaultAction) {
    openGallery("Controls");
    driver_->press("plain");
    EXPECT_EQ(last(), "plain");
    driver_->key(Qt::Key_Return);
    EXPECT_EQ(last(), "default 1");
}

TEST_F(KeyTests, Return_Held_DoesNothing) {
    openGallery("Controls");
    driver_->heldKey(Qt::Key_Return);
    driver_->focus("plain");
    driver_->heldKey(Qt::Key_Return);
    EXPECT_EQ(last(), "nothing yet");
}

TEST_F(KeyTests, Return_BehindASheet_DoesNothing) {
    openGallery("Controls");
    driver_->focus("opener");
    driver_->key(Qt::Key_Return);
    driver_->waitFor("the sheet", [&] { return driver_->isShown("sheet.text"); });
    driver_->key(Qt::Key_Return);
    EXPECT_EQ(property("page", "returns").toInt(), 0);
    driver_->focus("sheet.close");
    EXPECT_EQ(driver_->tabRound(), QStringList{"sheet.close"});
    driver_->key(Qt::Key_Return);
    driver_->waitFor("the sheet to close", [&] { return !driver_->isShown("sheet.text"); });
    EXPECT_EQ(driver_->focused(), "opener");
}

TEST_F(KeyTests, Page_ScrollsByItsKeysFromNoControl) {
    openGallery("Controls");
    driver_->press("section.Rows");
    driver_->at("page.rest").forceActiveFocus();
    driver_->key(Qt::Key_Space);
    const double page = scrolled();
    EXPECT_GT(page, 400);
    driver_->key(Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_EQ(scrolled(), 0);
    driver_->key(Qt::Key_PageDown);
    EXPECT_EQ(scrolled(), page);
    driver_->key(Qt::Key_End);
    EXPECT_TRUE(property("page.scroll", "atYEnd").toBool());
    driver_->key(Qt::Key_PageUp);
    EXPECT_FALSE(property("page.scroll", "atYEnd").toBool());
    driver_->key(Qt::Key_Home);
    EXPECT_EQ(scrolled(), 0);
}

TEST_F(KeyTests, Space_OnAControl_IsTheControls) {
    openGallery("Controls");
    driver_->focus("plain");
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(last(), "plain");
    EXPECT_EQ(scrolled(), 0);
    driver_->focus("segments");
    const double before = scrolled();
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(scrolled(), before);
    driver_->key(Qt::Key_PageDown);
    EXPECT_GT(scrolled(), before) << "the page keys scroll from a control too";
}

TEST_F(KeyTests, Page_FollowsTheFocusAndTheWheelButNoDrag) {
    openGallery("Controls");
    driver_->focus("disclosure.button");
    const double down = scrolled();
    EXPECT_GT(down, 100);
    driver_->focus("plain");
    EXPECT_LT(scrolled(), down);
    driver_->key(Qt::Key_Home);
    driver_->wheel("last", 2);
    EXPECT_EQ(scrolled(), 120);
    driver_->wheel("last", -9);
    EXPECT_EQ(scrolled(), 0);
    driver_->drag(QPoint(10, 600), QPoint(10, 100));
    EXPECT_EQ(scrolled(), 0);
}

TEST_F(KeyTests, Segments_MoveWithTheArrowsAndStopAtTheEnds) {
    openGallery("Controls");
    driver_->focus("segments");
    driver_->key(Qt::Key_Right);
    driver_->key(Qt::Key_Right);
    EXPECT_EQ(property("segments", "currentIndex").toInt(), 2);
    for (int i = 0; i < 3; ++i) driver_->key(Qt::Key_Left);
    EXPECT_EQ(property("segments", "currentIndex").toInt(), 0);
}

TEST_F(KeyTests, Picker_ClosedMovesWithTheArrows) {
    openGallery("Controls");
    driver_->focus("picker");
    driver_->key(Qt::Key_Down);
    EXPECT_EQ(driver_->text("picker"), "DNxHR HQ");
    for (int i = 0; i < 4; ++i) driver_->key(Qt::Key_Up);
    EXPECT_EQ(driver_->text("picker"), "ProRes 422 HQ");
}

TEST_F(KeyTests, Picker_OpenChoosesByKeysAndLetters) {
    openGallery("Controls");
    const auto open = [&] {
        driver_->focus("picker");
        driver_->key(Qt::Key_Space);
        driver_->waitFor("the list", [&] { return driver_->isShown("choice.0"); });
    };
    const auto closed = [&] {
        driver_->waitFor("the list to close", [&] { return !driver_->isShown("choice.0"); });
    };
    open();
    EXPECT_EQ(driver_->text("choice.heading.0"), "Resolve");
    EXPECT_FALSE(driver_->isShown("choice.heading.1"));
    EXPECT_EQ(driver_->text("choice.heading.2"), "Avid");
    driver_->key(Qt::Key_Down);
    driver_->key(Qt::Key_Return);
    closed();
    EXPECT_EQ(driver_->text("picker"), "DNxHR HQ");
    EXPECT_EQ(property("page", "returns").toInt(), 0) << "Return was the list's";
    open();
    driver_->key(Qt::Key_P);
    driver_->key(Qt::Key_Space);
    closed();
    EXPECT_EQ(driver_->text("picker"), "ProRes 422 HQ");
    open();
    driver_->key(Qt::Key_End);
    driver_->key(Qt::Key_Escape);
    closed();
    EXPECT_EQ(driver_->text("picker"), "ProRes 422 HQ");
    open();
    keepPictures("gallery-picker-open");
    driver_->press("choice.1");
    closed();
    EXPECT_EQ(driver_->text("picker"), "ProRes 422");
    EXPECT_EQ(driver_->focused(), "picker");
}

TEST_F(KeyTests, Menu_TellsWhichLineWasChosen) {
    openGallery("Controls");
    driver_->press("menu");
    driver_->waitFor("the list", [&] { return driver_->isShown("choice.2"); });
    keepPictures("gallery-menu-open");
    driver_->press("choice.2");
    driver_->waitFor("the list to close", [&] { return !driver_->isShown("choice.2"); });
    EXPECT_EQ(last(), "menu 2");
}

TEST_F(KeyTests, Toggle_ChangesWithSpaceAndStaysWhereItsOwnerSays) {
    openGallery("Controls");
    driver_->focus("toggle");
    driver_->key(Qt::Key_Space);
    EXPECT_FALSE(property("toggle", "on").toBool());
    driver_->press("toggle.stubborn");
    EXPECT_FALSE(property("toggle.stubborn", "on").toBool());
}

TEST_F(KeyTests, Stepper_StepsByButtonsAndArrowsWithinItsRange) {
    openGallery("Controls");
    driver_->press("cameras.more");
    EXPECT_EQ(driver_->text("cameras.input"), "4");
    driver_->focus("cameras.input");
    for (int i = 0; i < 9; ++i) driver_->key(Qt::Key_Up);
    EXPECT_EQ(driver_->text("cameras.input"), "8");
    EXPECT_FALSE(driver_->isEnabled("cameras.more"));
    for (int i = 0; i < 9; ++i) driver_->key(Qt::Key_Down);
    EXPECT_EQ(driver_->text("cameras.input"), "1");
    EXPECT_FALSE(driver_->isEnabled("cameras.less"));
    driver_->press("hours.less");
    EXPECT_EQ(driver_->text("hours.input"), "2.5");
}

TEST_F(KeyTests, Number_IsTypedAndToldAtOnce) {
    openGallery("Controls");
    driver_->press("rate.input");
    driver_->key(Qt::Key_A, Qt::ControlModifier);
    driver_->type("62.5");
    EXPECT_EQ(property("page", "rate").toDouble(), 62.5);
    EXPECT_EQ(driver_->text("rate.input"), "62.5");
    driver_->type("x,-");
    EXPECT_EQ(driver_->text("rate.input"), "62.5");
}

TEST_F(KeyTests, Number_OutOfRange_IsShownAsWrongAndForgotten) {
    openGallery("Controls");
    driver_->press("cameras.input");
    driver_->key(Qt::Key_A, Qt::ControlModifier);
    driver_->type("99");
    EXPECT_EQ(property("page", "count").toInt(), 3);
    EXPECT_FALSE(property("cameras.input", "isValid").toBool());
    driver_->key(Qt::Key_Tab);
    EXPECT_EQ(driver_->text("cameras.input"), "3");
    EXPECT_TRUE(property("cameras.input", "isValid").toBool());
    driver_->focus("cameras.input");
    driver_->key(Qt::Key_A, Qt::ControlModifier);
    driver_->key(Qt::Key_Backspace);
    driver_->key(Qt::Key_Tab);
    EXPECT_EQ(driver_->text("cameras.input"), "3");
}

TEST_F(KeyTests, Disclosure_OpensAndCloses) {
    openGallery("Controls");
    EXPECT_FALSE(driver_->isShown("disclosure.code"));
    driver_->focus("disclosure.button");
    driver_->key(Qt::Key_Space);
    EXPECT_TRUE(driver_->isShown("disclosure.code"));
    keepPictures("gallery-disclosure");
    driver_->key(Qt::Key_Return);
    EXPECT_FALSE(driver_->isShown("disclosure.code"));
}

TEST_F(KeyTests, List_BuildsOnlyWhatShowsAndScrollsByKeys) {
    openGallery("Rows");
    EXPECT_EQ(driver_->at("list").height(), 240);
    EXPECT_TRUE(driver_->isShown("line.0"));
    EXPECT_LT(driver_->at("list").findChildren<QQuickItem*>().size(), 5000);
    driver_->focus("list");
    driver_->key(Qt::Key_Down);
    EXPECT_GT(scrolled("list"), 0);
    driver_->key(Qt::Key_PageDown);
    driver_->key(Qt::Key_End);
    EXPECT_TRUE(property("list", "atYEnd").toBool());
    driver_->waitFor("the last row", [&] { return driver_->isShown("line.4999"); });
    driver_->key(Qt::Key_Home);
    EXPECT_EQ(scrolled("list"), 0);
}

TEST_F(KeyTests, List_PassesKeysAndTheWheelOnAtItsEnds) {
    openGallery("Rows");
    driver_->focus("list");
    const double page = scrolled();
    driver_->key(Qt::Key_PageUp);
    EXPECT_LT(scrolled(), page) << "the list is at its top: the page scrolls";
    driver_->wheel("list", 1);
    EXPECT_GT(scrolled("list"), 0);
    const double held = scrolled();
    driver_->wheel("list", -1);
    EXPECT_EQ(scrolled("list"), 0);
    EXPECT_EQ(scrolled(), held);
    driver_->wheel("list", -1);
    EXPECT_LT(scrolled(), held);
}

TEST_F(KeyTests, List_FollowsTheFocusThroughItsRows) {
    openGallery("Rows");
    driver_->focus("buttons");
    for (int i = 0; i < 40; ++i) {
        driver_->key(Qt::Key_Tab);
        ASSERT_EQ(driver_->focused(), "press." + QString::number(i));
        const QQuickItem& list = driver_->at("buttons");
        const QRectF place = driver_->window().activeFocusItem()->mapRectToItem(
            &list, QRectF(QPointF(), driver_->window().activeFocusItem()->size()));
        EXPECT_GE(place.top(), 0) << i;
        EXPECT_LE(place.bottom(), list.height()) << i;
    }
}

TEST_F(KeyTests, RemovedRow_LeavesTheRest) {
    openGallery("Rows");
    driver_->press("remove.1");
    EXPECT_EQ(driver_->text("file.1"), "A003.MXF");
    EXPECT_FALSE(driver_->isShown("file.2"));
}
