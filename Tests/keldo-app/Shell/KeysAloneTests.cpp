#include "../Transcript/TranscriptTools.h"
#include "ScreenFixture.h"
#include "Support/Clip.h"
#include "Support/ShootingDay.h"
#include "Window/AccessibleNode.h"

#include <string>
#include <vector>

using WindowSupport::AccessibleNode;

namespace {

/// The visible items that assistive tools are told of with that role and name, in reading order.
void findTold(QQuickItem& item, const std::string& role, const std::string& name,
              std::vector<QQuickItem*>& found) {
    if (!item.isVisible()) return;
    try {
        const auto node = AccessibleNode::of(item);
        if (node.role == role && node.name == name) found.push_back(&item);
    } catch (const std::runtime_error&) {
        // The tools are told nothing of it.
    }
    for (QQuickItem* child : item.childItems()) findTold(*child, role, name, found);
}

/// One whole job on each screen, by the keyboard alone and by what assistive tools are offered.
class KeysAloneTests : public WindowSupport::ScreenFixture {
protected:
    /// The arrows move the mode from Offload, where the window opens.
    void goToMode(Qt::Key arrow, int steps) {
        openWindow();
        tabTo("mode");
        for (int i = 0; i < steps; ++i) driver_->key(arrow);
    }

    std::string around() { return driver_->tabRound().join(" ").toStdString(); }

    void tabTo(const QString& name) {
        QStringList passed;
        while (passed.size() < 60) {
            driver_->key(Qt::Key_Tab);
            if (driver_->focused() == name) return;
            passed += driver_->focused();
        }
        throw std::runtime_error("Tab does not reach " + name.toStdString() + " but " +
                                 passed.join(" ").toStdString());
    }

    /// Opens a panel by Return on its button, and chooses there.
    void chooseByKeys(const QString& button, const ReelCore::URL& answer) {
        tabTo(button);
        desktop_.answers = {answer};
        driver_->key(Qt::Key_Return);
    }

    QQuickItem& told(const std::string& role, const std::string& name, std::size_t which = 0) {
        std::vector<QQuickItem*> found;
        findTold(*driver_->window().contentItem(), role, name, found);
        if (which >= found.size()) throw std::runtime_error("no " + role + ": " + name);
        return *found[which];
    }
    void pressTold(const std::string& name, std::size_t which = 0) {
        AccessibleNode::act(told("Button", name, which), "Press");
    }
    void waitUntilTold(const std::string& role, const std::string& name) {
        driver_->waitFor(
            role + ": " + name,
            [&] {
                std::vector<QQuickItem*> found;
                findTold(*driver_->window().contentItem(), role, name, found);
                return !found.empty();
            },
            120'000);
    }

    void makeDamagedCard() {
        TestSupport::makeClip(madeFolder("card") / "GOOD.MOV", {.seconds = 0.2});
        const std::string whole = TestSupport::readFile(place("card/GOOD.MOV"));
        TestSupport::writeFile(place("card/LOST.MOV"), whole.substr(0, whole.rfind("moov") - 4));
        madeFolder("out");
    }
    void expectRepaired() {
        const auto made = TestSupport::readTree(place("out"));
        ASSERT_EQ(made.size(), 1U);
        EXPECT_EQ(
            TestSupport::probed(place("out") / made.begin()->first, "stream=codec_name", "v:0"),
            "prores");
    }
};

}  // namespace

TEST_F(KeysAloneTests, Plan) {
    goToMode(Qt::Key_Left, 1);
    tabTo("plan.codec.picker");
    driver_->key(Qt::Key_Down);
    EXPECT_NE(desktop_.stored.values.value("plan.codec"), QVariant());
    tabTo("plan.production");
    driver_->type("Night");
    EXPECT_EQ(desktop_.stored.values.value("plan.production"), "Night");
    chooseByKeys("plan.save", madeFolder("Reports"));
    EXPECT_EQ(driver_->text("plan.reportStatus"), "Saved to Reports.");
    EXPECT_EQ(TestSupport::readTree(place("Reports")).size(), 2U);
}

TEST_F(KeysAloneTests, Recover) {
    makeDamagedCard();
    goToMode(Qt::Key_Right, 4);
    EXPECT_EQ(around(), "recover.card.choose recover.imaging.button recover.image.choose mode");
    chooseByKeys("recover.card.choose", place("card"));
    driver_->key(Qt::Key_Tab);
    EXPECT_EQ(driver_->focused(), "recover.scan");
    tabTo("mode");
    driver_->key(Qt::Key_Return);
    waitUntilShown("recover.repairCard");
    EXPECT_EQ(around(),
              "recover.new recover.places.reference.choose recover.places.output.choose mode");
    chooseByKeys("recover.places.output.choose", place("out"));
    tabTo("mode");
    driver_->key(Qt::Key_Return);
    waitUntilShown("recover.outcomes.0");
    tabTo("recover.reveal");
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(desktop_.revealed, std::vector<ReelCore::URL>{place("out")});
    expectRepaired();
    tabTo("recover.new");
    driver_->key(Qt::Key_Return);
    EXPECT_TRUE(driver_->isShown("recover.setupCard"));
}

TEST_F(KeysAloneTests, Sync) {
    TestSupport::makeShortDay(madeFolder("Day1"));
    goToMode(Qt::Key_Right, 3);
    EXPECT_EQ(around(), "sync.media.choose mode");
    chooseByKeys("sync.media.choose", place("Day1"));
    tabTo("mode");
    driver_->key(Qt::Key_Return);
    waitUntilShown("sync.mux");
    EXPECT_EQ(around(), "sync.new sync.save sync.export sync.output.choose mode");
    chooseByKeys("sync.output.choose", madeFolder("Out"));
    tabTo("sync.mux");
    driver_->key(Qt::Key_Return);
    waitUntilShown("sync.muxStatus");
    EXPECT_EQ(driver_->text("sync.muxStatus"), "Created 1 of 1 synced clip in Out.");
    tabTo("sync.reveal");
    driver_->key(Qt::Key_Return);
    EXPECT_EQ(desktop_.revealed, std::vector<ReelCore::URL>{place("Out")});
}

TEST_F(KeysAloneTests, Transcode) {
    TestSupport::makeClip(place("a.mov"), {.seconds = 0.2});
    TestSupport::makeClip(place("b.mov"), {.seconds = 0.2});
    goToMode(Qt::Key_Right, 1);
    desktop_.filesAnswers = {{place("a.mov"), place("b.mov")}};
    tabTo("transcode.add");
    driver_->key(Qt::Key_Return);
    waitUntilShown("transcode.remove.1");
    tabTo("mode");
    EXPECT_EQ(around(),
              "transcode.remove.0 transcode.remove.1 transcode.add transcode.preset "
              "transcode.output.choose transcode.applyLUT transcode.size mode");
    tabTo("transcode.remove.0");
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(driver_->text("transcode.clip.0.title"), "b.mov");
    tabTo("transcode.preset");
    driver_->key(Qt::Key_Up);
    chooseByKeys("transcode.output.choose", madeFolder("out"));
    tabTo("mode");
    driver_->key(Qt::Key_Return);
    waitUntilShown("transcode.doneCard");
    EXPECT_FALSE(driver_->isShown("transcode.failures.0"));
    EXPECT_EQ(driver_->text("transcode.doneCard").toStdString(), "Transcode Complete");
    chooseByKeys("transcode.save", madeFolder("Reports"));
    waitUntilShown("transcode.reportStatus");
    driver_->waitFor("the report", [&] {
        return driver_->text("transcode.reportStatus") == "Saved 2 file(s) to Reports.";
    });
    tabTo("transcode.new");
    driver_->key(Qt::Key_Return);
    EXPECT_TRUE(driver_->isShown("transcode.start"));
}

TEST_F(KeysAloneTests, Transcript) {
    const WindowSupport::TranscriptTools tools;
    TestSupport::makeClip(place("a.mov"), {.seconds = 2});
    goToMode(Qt::Key_Right, 2);
    EXPECT_EQ(around(),
              "transcript.input.choose transcript.mode transcript.people transcript.readSlate "
              "transcript.hints transcript.model transcript.download transcript.modelsFolder "
              "transcript.output.choose mode");
    chooseByKeys("transcript.input.choose", place("a.mov"));
    tabTo("transcript.people");
    driver_->key(Qt::Key_Down);
    driver_->key(Qt::Key_Down);
    chooseByKeys("transcript.output.choose", madeFolder("out"));
    driver_->waitFor("the clip", [&] { return driver_->isEnabled("transcript.start"); });
    tabTo("transcript.start");
    driver_->key(Qt::Key_Return);
    waitUntilShown("transcript.ready");
    tabTo("transcript.name.0");
    driver_->key(Qt::Key_A, Qt::ControlModifier);
    driver_->type("Ann");
    tabTo("transcript.lineSpeaker.0");
    driver_->key(Qt::Key_Down);
    driver_->key(Qt::Key_Down);
    driver_->key(Qt::Key_Return);
    driver_->key(Qt::Key_Home);
    driver_->key(Qt::Key_Return);
    tabTo("transcript.save");
    driver_->key(Qt::Key_Return);
    driver_->waitFor("the save", [&] {
        return driver_->text("transcript.renameStatus") == "Applied edits and re-saved the .docx.";
    });
    const std::string xml = tools.documentXML(place("out/a_transcript.docx"));
    EXPECT_NE(xml.find("Ann"), std::string::npos);
    EXPECT_EQ(xml.find("Speaker 2"), std::string::npos) << "her line is Ann's now";
    tabTo("transcript.new");
    driver_->key(Qt::Key_Return);
    EXPECT_TRUE(driver_->isShown("transcript.start"));
}

TEST_F(KeysAloneTests, AssistiveToolsPlan) {
    openMode("Plan");
    desktop_.answers = {madeFolder("Reports")};
    pressTold("Save Report (PDF + CSV)…");
    waitUntilTold("StaticText", "Saved to Reports.");
}

TEST_F(KeysAloneTests, AssistiveToolsRecover) {
    makeDamagedCard();
    openMode("Recover");
    desktop_.answers = {place("card")};
    pressTold("Choose…");
    pressTold("Scan for Damage");
    waitUntilTold("Button", "Repair 1 Clip");
    desktop_.answers = {place("out")};
    pressTold("Choose…", 1);
    pressTold("Repair 1 Clip");
    waitUntilTold("Button", "Reveal in Finder");
    driver_->waitFor("the end", [&] { return driver_->isShown("recover.repair"); });
    expectRepaired();
}

TEST_F(KeysAloneTests, AssistiveToolsSync) {
    TestSupport::makeShortDay(madeFolder("Day1"));
    openMode("Sync");
    desktop_.answers = {place("Day1")};
    pressTold("Choose…");
    pressTold("Scan & Group");
    waitUntilTold("Button", "Create 1 Synced Clip");
    desktop_.answers = {madeFolder("Out")};
    pressTold("Choose…");
    pressTold("Create 1 Synced Clip");
    waitUntilTold("StaticText", "Created 1 of 1 synced clip in Out.");
}

TEST_F(KeysAloneTests, AssistiveToolsTranscode) {
    TestSupport::makeClip(place("a.mov"), {.seconds = 0.2});
    openMode("Transcode");
    desktop_.filesAnswers = {{place("a.mov")}};
    pressTold("Add Clips…");
    desktop_.answers = {madeFolder("out")};
    pressTold("Choose…");
    told("ComboBox", "Preset");
    pressTold("Transcode 1 clip");
    waitUntilTold("Button", "New Batch");
    pressTold("New Batch");
    waitUntilTold("Button", "Transcode 1 clip");
}

TEST_F(KeysAloneTests, AssistiveToolsTranscript) {
    const WindowSupport::TranscriptTools tools;
    TestSupport::makeClip(place("a.mov"), {.seconds = 2});
    openMode("Transcript");
    desktop_.answers = {place("a.mov"), madeFolder("out")};
    pressTold("Choose");
    waitUntilTold("StaticText", "2 ISO channels");
    pressTold("Choose", 1);
    AccessibleNode::act(told("RadioButton", "ISO channels"), "Press");
    AccessibleNode::act(told("CheckBox", "Ch 2"), "Press");
    told("EditableText", "Name of channel 1");
    pressTold("Create Transcript");
    waitUntilTold("Button", "Open .docx");
    EXPECT_EQ(told("ButtonMenu", "Speaker 1").objectName(), "transcript.lineSpeaker.0");
    pressTold("Update & Re-save .docx");
    waitUntilTold("StaticText", "Applied edits and re-saved the .docx.");
    pressTold("New Transcript");
    waitUntilTold("Button", "Create Transcript");
}
