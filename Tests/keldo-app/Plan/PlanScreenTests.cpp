#include "Support/EnvironmentVariable.h"
#include "Window/WindowFixture.h"

using WindowSupport::AccessibleNode;
using WindowSupport::WindowFixture;

namespace {

class PlanScreenTests : public WindowFixture {
protected:
    void openPlan() {
        openWindow();
        driver_->press("mode.Plan");
    }

    QVariant stored(const char* key) const { return desktop_.stored.values.value(key); }

    void replace(const QString& field, const QString& text) {
        driver_->press(field);
        driver_->key(Qt::Key_A, Qt::ControlModifier);
        driver_->type(text);
    }

    /// A letter's attachment is left there for the mail program.
    const TestSupport::EnvironmentVariable temporary_{"TMPDIR", folder_.path().native()};
};

}  // namespace

TEST_F(PlanScreenTests, FirstStart_ShowsEveryCardInOrderWithItsTexts) {
    openPlan();
    double top = -1;
    for (const auto& [card, title] : {std::pair("plan.formatCard", "Camera Format"),
                                      {"plan.shootCard", "Shooting Plan"},
                                      {"plan.cardsCard", "Camera Cards"},
                                      {"plan.safetyCard", "Safety"},
                                      {"plan.needCard", "You Need"},
                                      {"plan.sendCard", "Send to Production"}}) {
        EXPECT_EQ(driver_->text(card), title);
        EXPECT_GT(driver_->at(card).y(), top) << card;
        top = driver_->at(card).y();
    }
    EXPECT_EQ(driver_->text("plan.rate"), "300 Mbps · 135.0 GB/hr per camera");
    EXPECT_EQ(driver_->text("plan.holdDays.label"),
              "Days cards are held before wiping (until backups verified)");
    EXPECT_EQ(driver_->text("plan.safetyNote"),
              "Standard DIT practice is 3 copies on separate drives. Margin keeps drives from "
              "running full.");
    EXPECT_EQ(driver_->text("plan.sendNote"),
              "The PDF shows the full derivation — rates, hours, copies, hold policy — so "
              "production and post have the why on record, not just the number.");
    EXPECT_FALSE(driver_->isShown("plan.bitrate"));
    EXPECT_FALSE(driver_->isShown("plan.manualCards"));
    EXPECT_FALSE(driver_->isShown("plan.nothing"));
    keepPictures("plan");
}

TEST_F(PlanScreenTests, Steppers_StoreAtOnceAndTheNumbersFollow) {
    openPlan();
    driver_->press("plan.cameras.stepper.more");
    EXPECT_EQ(stored("plan.cameras"), 2);
    EXPECT_EQ(driver_->text("plan.cardsPerDay.value"), "4   (8/day total)");
    driver_->press("plan.hours.stepper.less");
    EXPECT_EQ(stored("plan.hours"), 2.5);
    driver_->press("plan.margin.stepper.more");
    EXPECT_EQ(stored("plan.margin"), 20.0);
    replace("plan.days.stepper.input", "12");
    EXPECT_EQ(stored("plan.days"), 12);
}

TEST_F(PlanScreenTests, CustomCodec_HidesTheResolutionAndAsksForTheBitrate) {
    desktop_.stored.values["plan.codec"] = "custom";
    openPlan();
    EXPECT_FALSE(driver_->isShown("plan.resolution"));
    EXPECT_EQ(driver_->text("plan.bitrateNote"), "Mbps — from the camera's spec sheet");
    replace("plan.bitrate.input", "250");
    EXPECT_EQ(stored("plan.bitrate"), 250.0);
    EXPECT_TRUE(driver_->text("plan.rate").startsWith("250 Mbps"));
}

TEST_F(PlanScreenTests, Pickers_ChooseByKeys) {
    openPlan();
    driver_->focus("plan.fps.picker");
    driver_->key(Qt::Key_Down);
    EXPECT_EQ(stored("plan.fps"), 24.0);
    EXPECT_EQ(driver_->accessible("plan.fps.picker").role, "ComboBox");
    driver_->focus("plan.cardGB.picker");
    for (int i = 0; i < 9; ++i) driver_->key(Qt::Key_Down);
    EXPECT_EQ(stored("plan.cardGB"), 0);
    EXPECT_TRUE(driver_->isShown("plan.customCardGB"));
}

TEST_F(PlanScreenTests, ManualCount_ShowsItsStepper) {
    openPlan();
    driver_->press("plan.manual");
    EXPECT_EQ(stored("plan.manualCards"), 5);
    driver_->press("plan.manualCards.stepper.more");
    EXPECT_EQ(driver_->text("plan.cardsToOwn.value"), "6   (set manually — calc says 5)");
}

TEST_F(PlanScreenTests, StoredNonsense_ShowsNothingAndCanBeMendedHere) {
    desktop_.stored.values["plan.cameras"] = "two";
    openPlan();
    EXPECT_TRUE(driver_->isShown("plan.nothing"));
    EXPECT_FALSE(driver_->isShown("plan.rate"));
    EXPECT_FALSE(driver_->isEnabled("plan.save"));
    keepPictures("plan-nothing");
    driver_->press("plan.cameras.stepper.more");
    EXPECT_EQ(stored("plan.cameras"), 1);
    EXPECT_TRUE(driver_->isShown("plan.rate"));
}

TEST_F(PlanScreenTests, SaveAndEmail_SayWhatBecameOfThem) {
    openPlan();
    replace("plan.production", "Nacht");
    EXPECT_EQ(stored("plan.production"), "Nacht");
    desktop_.answers = {folder_.path()};
    driver_->press("plan.save");
    EXPECT_TRUE(driver_->text("plan.reportStatus").startsWith("Saved to "));
    driver_->press("plan.email");
    driver_->waitFor("the mail", [&] {
        return driver_->text("plan.reportStatus") == "Opened in Mail — add recipients and send.";
    });
    EXPECT_EQ(desktop_.mails.at(0).subject, "Storage Plan — Nacht");
    EXPECT_EQ(desktop_.mails.at(0).attachment.parent_path().parent_path(), folder_.path());
    keepPictures("plan-sent");
}
