#include "keldo-app/Plan/PlanViewModel.h"

#include "../ViewModelFixture.h"
#include "Support/EnvironmentVariable.h"

#include <algorithm>
#include <cmath>

using keldo_app::MailOutcome;
using keldo_app::PlanFacts;
using keldo_app::PlanViewModel;
using ReelCore::URL;

namespace {

class PlanViewModelTests : public testing::Test {
protected:
    PlanViewModelTests() { model_.desktop = &desktop_; }

    QMap<QString, QVariant>& stored() { return desktop_.stored.values; }
    /// What is said of a mail that is written now.
    QString statusOfEmail() {
        const QString before = model_.reportStatus();
        model_.emailReport();
        EXPECT_TRUE(QTest::qWaitFor([&] { return model_.reportStatus() != before; }, 10'000));
        return model_.reportStatus();
    }

    PlanFacts facts() const { return model_.property("facts").value<PlanFacts>(); }

    /// Stores what means nothing, and whether nothing is shown then and all is well after `mend`.
    void expectNothingShownUntil(const char* key, const QVariant& nonsense,
                                 const std::function<void()>& mend) {
        SCOPED_TRACE(std::string(key) + " " + nonsense.toString().toStdString());
        stored()[key] = nonsense;
        EXPECT_FALSE(facts().hasEstimate);
        EXPECT_FALSE(facts().hasCard);
        EXPECT_FALSE(model_.buildReport());
        mend();
        EXPECT_TRUE(facts().hasEstimate);
    }

    TestSupport::TemporaryFolder folder_;
    /// A letter's attachment is left there for the mail program.
    const TestSupport::EnvironmentVariable temporary_{"TMPDIR", folder_.path().native()};
    WindowSupport::FakeDesktop desktop_;
    PlanViewModel model_;
};

}  // namespace

TEST_F(PlanViewModelTests, FirstStart_HasTheDefaultsAndStoresNothing) {
    EXPECT_EQ(model_.codecID(), "xavci_4k");
    EXPECT_EQ(model_.resolutionID(), "uhd");
    EXPECT_EQ(model_.fps(), 23.976);
    EXPECT_EQ(model_.customMbps(), 100);
    EXPECT_EQ(model_.hoursPerDay(), 3);
    EXPECT_EQ(model_.cameras(), 1);
    EXPECT_EQ(model_.days(), 1);
    EXPECT_EQ(model_.copies(), 3);
    EXPECT_EQ(model_.audioChannels(), 0);
    EXPECT_EQ(model_.margin(), 15);
    EXPECT_EQ(model_.cardFamilyID(), "xqd");
    EXPECT_EQ(model_.cardGB(), 120);
    EXPECT_EQ(model_.customCardGB(), 120);
    EXPECT_EQ(model_.holdDays(), 2);
    EXPECT_EQ(model_.production(), "");
    EXPECT_EQ(model_.manualCards(), 0);
    EXPECT_EQ(facts().rate, "300 Mbps · 135.0 GB/hr per camera");
    EXPECT_TRUE(stored().isEmpty());
}

TEST_F(PlanViewModelTests, EachChange_IsStoredUnderItsKeyAtOnce) {
    model_.setCodecID("custom");
    model_.setResolutionID("hd");
    model_.setFps(25);
    model_.setCustomMbps(12.5);
    model_.setHoursPerDay(4.5);
    model_.setCameras(2);
    model_.setDays(10);
    model_.setCopies(4);
    model_.setAudioChannels(8);
    model_.setMargin(20);
    model_.setCardFamilyID("cfexpress_b");
    model_.setCardGB(0);
    model_.setCustomCardGB(333);
    model_.setHoldDays(3);
    model_.setProduction("Night Shift");
    model_.setManualCards(7);
    const QMap<QString, QVariant> expected{{"plan.codec", "custom"},
                                           {"plan.res", "hd"},
                                           {"plan.fps", 25.0},
                                           {"plan.bitrate", 12.5},
                                           {"plan.hours", 4.5},
                                           {"plan.cameras", qlonglong(2)},
                                           {"plan.days", qlonglong(10)},
                                           {"plan.copies", qlonglong(4)},
                                           {"plan.audio", qlonglong(8)},
                                           {"plan.margin", 20.0},
                                           {"plan.cardFamily", "cfexpress_b"},
                                           {"plan.cardGB", qlonglong(0)},
                                           {"plan.customCardGB", qlonglong(333)},
                                           {"plan.holdDays", qlonglong(3)},
                                           {"plan.production", "Night Shift"},
                                           {"plan.manualCards", qlonglong(7)}};
    EXPECT_EQ(stored(), expected);
}

TEST_F(PlanViewModelTests, Numbers_AreThoseOfAKnownShoot) {
    model_.setCameras(2);
    model_.setDays(5);
    const PlanFacts facts = this->facts();
    EXPECT_EQ(facts.perDay, "810 GB / day");
    EXPECT_EQ(facts.wholeShoot, "4.05 TB");
    EXPECT_EQ(facts.perCopy, "4.66 TB");
    EXPECT_EQ(facts.runtimePerCard, "≈ 51 min  (114 GB usable)");
    EXPECT_EQ(facts.cardsPerCameraPerDay, "4   (8/day total)");
    EXPECT_EQ(facts.cardsToOwn, "18   (16 in 2-day rotation + 2 spares)");
}

TEST_F(PlanViewModelTests, OneCamera_HasOneSpare) {
    EXPECT_EQ(facts().cardsToOwn, "5   (4 in 1-day rotation + 1 spare)");
}

TEST_F(PlanViewModelTests, HoldingLongerThanTheShoot_ShowsTheDaysOfTheShoot) {
    model_.setDays(3);
    model_.setHoldDays(9);
    EXPECT_TRUE(facts().cardsToOwn.contains("in 3-day rotation"));
}

TEST_F(PlanViewModelTests, TB_BeginsAtAThousandGB) {
    model_.setCodecID("custom");
    model_.setHoursPerDay(1);
    model_.setCustomMbps(1000 / 0.45);
    EXPECT_EQ(facts().wholeShoot, "1.00 TB");
    model_.setCustomMbps(999 / 0.45);
    EXPECT_EQ(facts().wholeShoot, "999 GB");
}

TEST_F(PlanViewModelTests, Custom_NeedsAValidResolutionStill) {
    model_.setCodecID("custom");
    EXPECT_FALSE(model_.property("usesResolution").toBool());
    EXPECT_TRUE(facts().hasEstimate);
    model_.setResolutionID("gone");
    EXPECT_FALSE(facts().hasEstimate);
}

TEST_F(PlanViewModelTests, OtherFamily_TakesItsFirstSizeUnlessTheCapacityIsCustom) {
    model_.setCardFamilyID("cfexpress_b");
    EXPECT_EQ(model_.cardGB(), 128);
    model_.setCardGB(0);
    model_.setCardFamilyID("xqd");
    EXPECT_EQ(model_.cardGB(), 0);
    model_.setCardGB(120);
    model_.setCardFamilyID("gone");
    EXPECT_EQ(model_.cardGB(), 0);
}

TEST_F(PlanViewModelTests, ManualCount_TakesTheCalculatedOneAndIsSaid) {
    model_.setManual(true);
    EXPECT_EQ(model_.manualCards(), 5);
    model_.setManualCards(9);
    EXPECT_EQ(facts().cardsToOwn, "9   (set manually — calc says 5)");
    model_.setManual(false);
    EXPECT_EQ(model_.manualCards(), 0);
}

TEST_F(PlanViewModelTests, CardsWithoutCapacity_Vanish) {
    model_.setCardGB(0);
    model_.setCustomCardGB(0);
    EXPECT_TRUE(facts().hasEstimate);
    EXPECT_FALSE(facts().hasCard);
    EXPECT_TRUE(model_.buildReport());
}

TEST_F(PlanViewModelTests, StoredValuesThatMeanNothing_ShowNothingUntilTheyAreMended) {
    expectNothingShownUntil("plan.codec", "betamax", [&] { model_.setCodecID("xavci_4k"); });
    expectNothingShownUntil("plan.codec", QStringList{"a", "b"},
                            [&] { model_.setCodecID("xavci_4k"); });
    expectNothingShownUntil("plan.res", "", [&] { model_.setResolutionID("uhd"); });
    expectNothingShownUntil("plan.fps", "fast", [&] { model_.setFps(24); });
    expectNothingShownUntil("plan.fps", "nan", [&] { model_.setFps(24); });
    expectNothingShownUntil("plan.fps", 0, [&] { model_.setFps(24); });
    expectNothingShownUntil("plan.hours", -1, [&] { model_.setHoursPerDay(3); });
    expectNothingShownUntil("plan.hours", "1e308", [&] { model_.setHoursPerDay(3); });
    expectNothingShownUntil("plan.cameras", -2, [&] { model_.setCameras(1); });
    expectNothingShownUntil("plan.cameras", "two", [&] { model_.setCameras(1); });
    expectNothingShownUntil("plan.cameras", 1.5, [&] { model_.setCameras(1); });
    expectNothingShownUntil("plan.days", "9223372036854775807", [&] { model_.setDays(1); });
    expectNothingShownUntil("plan.copies", 0, [&] { model_.setCopies(3); });
    expectNothingShownUntil("plan.audio", "inf", [&] { model_.setAudioChannels(0); });
    expectNothingShownUntil("plan.margin", "15 %", [&] { model_.setMargin(15); });
}

TEST_F(PlanViewModelTests, StoredCardValuesThatMeanNothing_ShowNoCards) {
    for (const char* key : {"plan.cardGB", "plan.holdDays"}) {
        stored()[key] = "many";
        EXPECT_TRUE(facts().hasEstimate) << key;
        EXPECT_FALSE(facts().hasCard) << key;
        stored().remove(key);
    }
    stored()["plan.manualCards"] = "many";
    EXPECT_TRUE(facts().cardsToOwn.startsWith("5   (4 in")) << "none is set";
    stored()["plan.cardGB"] = "many";
    model_.setCardFamilyID("cfexpress_b");
    EXPECT_EQ(model_.cardGB(), 128);
}

TEST_F(PlanViewModelTests, NumberThatIsNone_IsMendedByTheDefault) {
    model_.setDays(std::nan(""));
    EXPECT_EQ(model_.days(), 1);
    model_.setCameras(1e9);
    EXPECT_EQ(model_.cameras(), 1'000);
}

TEST_F(PlanViewModelTests, LargestNumbersAllowed_EndNothing) {
    model_.setCodecID("custom");
    model_.setCustomMbps(1'000'000);
    model_.setHoursPerDay(24);
    model_.setCameras(1'000);
    model_.setDays(10'000);
    model_.setCopies(100);
    model_.setAudioChannels(1'000);
    model_.setMargin(1'000);
    model_.setCardGB(0);
    model_.setCustomCardGB(1);
    model_.setHoldDays(10'000);
    model_.setManualCards(1e9);
    EXPECT_TRUE(facts().hasEstimate);
    EXPECT_TRUE(facts().hasCard);
}

TEST_F(PlanViewModelTests, Save_WritesBothAndShowsThePDF) {
    model_.setProduction("Night Shift");
    model_.setManual(true);
    model_.setManualCards(9);
    desktop_.answers = {folder_.path()};
    model_.saveReport();
    const auto name = QString::fromStdString(folder_.path().filename().native());
    EXPECT_EQ(desktop_.messages, QStringList("Save Storage Plan to…"));
    EXPECT_EQ(model_.reportStatus(), "Saved to " + name + ".");
    ASSERT_EQ(desktop_.revealed.size(), 1U);
    EXPECT_EQ(desktop_.revealed.front().extension(), ".pdf");
    const auto files = TestSupport::readTree(folder_.path());
    ASSERT_EQ(files.size(), 2U);
    const std::string csv = files.begin()->second;
    for (const auto& [file, content] : files) {
        if (!file.ends_with(".csv")) continue;
        EXPECT_NE(content.find("Night Shift"), std::string::npos);
        EXPECT_NE(content.find("9"), std::string::npos);
    }
}

TEST_F(PlanViewModelTests, Save_Dismissed_ChangesNothing) {
    model_.saveReport();
    EXPECT_EQ(model_.reportStatus(), "");
}

TEST_F(PlanViewModelTests, Save_WhereNothingCanBeWritten_SaysWhy) {
    TestSupport::writeFile(folder_.path() / "file", "");
    desktop_.answers = {folder_.path() / "file"};
    model_.saveReport();
    EXPECT_TRUE(model_.reportStatus().startsWith("Save failed: "));
    EXPECT_TRUE(desktop_.revealed.empty());
}

TEST_F(PlanViewModelTests, Email_HandsThePDFToTheMailProgramAndLeavesItThere) {
    EXPECT_EQ(statusOfEmail(), "Opened in Mail — add recipients and send.");
    model_.setProduction("Night Shift");
    model_.emailReport();
    ASSERT_EQ(desktop_.mails.size(), 2U);
    EXPECT_EQ(desktop_.mails[0].subject, "Storage Plan");
    EXPECT_EQ(desktop_.mails[1].subject, "Storage Plan — Night Shift");
    const URL pdf = desktop_.mails[0].attachment;
    EXPECT_TRUE(std::filesystem::exists(pdf));
    EXPECT_EQ(pdf.extension(), ".pdf");
    const std::string folder = pdf.parent_path().filename().native();
    EXPECT_TRUE(folder.starts_with("keldobay-plan-"));
    EXPECT_EQ(folder.size(), std::string("keldobay-plan-").size() + 36);
    EXPECT_EQ(TestSupport::readTree(pdf.parent_path()).size(), 1U);
}

TEST_F(PlanViewModelTests, Email_SaysWhyThereIsNone) {
    desktop_.mailOutcome = MailOutcome::noService;
    EXPECT_EQ(statusOfEmail(), "No email account configured in Mail.");
    desktop_.mailOutcome = MailOutcome::cannotAttach;
    EXPECT_EQ(statusOfEmail(), "Mail can't take the attachment — use Save and attach manually.");
    TestSupport::writeFile(folder_.path() / "file", "");
    const TestSupport::EnvironmentVariable variable("TMPDIR", (folder_.path() / "file").native());
    model_.emailReport();
    EXPECT_TRUE(model_.reportStatus().startsWith("Email failed: "));
}

TEST_F(PlanViewModelTests, WithoutAnEstimate_NeitherReportIsMade) {
    stored()["plan.codec"] = "betamax";
    model_.saveReport();
    model_.emailReport();
    EXPECT_TRUE(desktop_.messages.isEmpty());
    EXPECT_TRUE(desktop_.mails.empty());
    EXPECT_EQ(model_.reportStatus(), "");
}
