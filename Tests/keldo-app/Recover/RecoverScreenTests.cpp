#include "../../ReelCore/Recovery/MixedCard.h"
#include "Support/Clip.h"
#include "Window/WindowFixture.h"
#include "keldo-app/Recover/RecoverViewModel.h"

using keldo_app::RecoverViewModel;
using ReelCore::URL;
using TestSupport::readFile;
using WindowSupport::WindowFixture;

namespace {

class RecoverScreenTests : public WindowFixture {
protected:
    void openRecover() {
        openWindow();
        driver_->press("mode.Recover");
    }

    void choose(const char* button, const URL& answer) {
        desktop_.answers = {answer};
        driver_->press(button);
    }

    void scan(const URL& card) {
        openRecover();
        choose("recover.card.choose", card);
        driver_->press("recover.scan");
        driver_->waitFor("the results", [&] { return driver_->isShown("recover.diagnosisCard"); });
    }

    bool isNext(const char* button) const {
        return driver_->at(button).property("isNext").toBool();
    }

    URL place(const char* name) const { return folder_.path() / name; }

    URL madeFolder(const char* name) const {
        std::filesystem::create_directories(place(name));
        return place(name);
    }

    /// A healthy clip and one that lost its index.
    void makeCard() const {
        madeFolder("card");
        TestSupport::makeClip(place("card/GOOD.MOV"), {.seconds = 0.2});
        const std::string whole = readFile(place("card/GOOD.MOV"));
        TestSupport::writeFile(place("card/LOST.MOV"), whole.substr(0, whole.rfind("moov") - 4));
    }
};

}  // namespace

TEST_F(RecoverScreenTests, Setup_HasItsTextsAndTheImagingStepsWordForWord) {
    openRecover();
    EXPECT_EQ(driver_->text("recover.page.title"), "Damaged Card / Clips");
    EXPECT_EQ(driver_->text("recover.intro"),
              "Plug in the card (or pick a folder) and scan. Finds clips whose header never closed "
              "— camera lost power mid-take — plus truncated files and broken WAVs. Repairs are "
              "written elsewhere; the card is never touched.");
    EXPECT_EQ(driver_->text("recover.card.text"), "No card selected");
    EXPECT_EQ(driver_->text("recover.image.text"), "No image selected");
    EXPECT_EQ(driver_->text("recover.scan"), "Scan for Damage");
    EXPECT_FALSE(driver_->isEnabled("recover.scan"));
    EXPECT_EQ(driver_->text("recover.carveIntro"),
              "If the card no longer mounts — filesystem corrupted, or a previous \"repair\" "
              "scrambled the directory — the footage is usually still in the raw sectors. Image "
              "the card once, then carve clips straight out of the image. The card itself is "
              "never written to.");
    EXPECT_FALSE(driver_->isShown("recover.imagingText"));
    keepPictures("recover");
    driver_->press("recover.imaging.button");
    EXPECT_EQ(driver_->text("recover.imagingText"),
              "1.  diskutil list external   ← find the card's disk number BY SIZE (e.g. disk4)\n"
              "2.  If macOS offers to initialize or repair it: CANCEL.\n"
              "3.  sudo /opt/homebrew/bin/ddrescue -d -r3 /dev/rdisk4 ~/card.img ~/card.map\n"
              "4.  Pick ~/card.img below. If the card never appears in diskutil at all,\n"
              "    the controller is dead — that's professional (chip-off) recovery.");
    EXPECT_TRUE(driver_->text("recover.imagingHere").contains("lsblk"));
    EXPECT_TRUE(driver_->text("recover.imagingHere").contains("gddrescue"));
    keepPictures("recover-imaging");
}

TEST_F(RecoverScreenTests, DamagedCard_GoesFromTheScanToAClipThatPlays) {
    makeCard();
    scan(place("card"));
    EXPECT_EQ(driver_->text("recover.counts"), "2 media files · 1 damaged · 1 healthy");
    EXPECT_EQ(driver_->text("recover.places.reference.text"), "GOOD.MOV");
    EXPECT_EQ(driver_->text("recover.places.output.text"), "No output folder");
    EXPECT_EQ(driver_->text("recover.repair"), "Repair 1 Clip");
    EXPECT_FALSE(driver_->isEnabled("recover.repair"));
    EXPECT_EQ(driver_->text("recover.repairRow.needs"), "No output folder yet.");
    EXPECT_EQ(driver_->text("recover.places.outputNote"), "Folder for the recovered clips:");
    EXPECT_FALSE(driver_->isShown("recover.carveCard"));
    keepPictures("recover-results");
    choose("recover.places.output.choose", madeFolder("out"));
    EXPECT_EQ(driver_->text("recover.repairRow.needs"), "");
    EXPECT_TRUE(isNext("recover.repair"));
    driver_->press("recover.repair");
    driver_->waitFor("the outcome", [&] { return driver_->isShown("recover.outcomes.0"); });
    EXPECT_TRUE(driver_->text("recover.outcomes.0.title").startsWith("LOST.MOV ["));
    driver_->waitFor("the end", [&] { return driver_->isShown("recover.repair"); });
    EXPECT_FALSE(isNext("recover.repair")) << "Return would repair all of it once more";
    keepPictures("recover-recovered");
    const auto made = TestSupport::readTree(place("out"));
    ASSERT_EQ(made.size(), 1U);
    EXPECT_EQ(driver_->text("recover.outcomes.0.path").toStdString(), "→ " + made.begin()->first);
    EXPECT_EQ(TestSupport::probed(place("out") / made.begin()->first, "stream=codec_name", "v:0"),
              "prores");
    driver_->press("recover.reveal");
    EXPECT_EQ(desktop_.revealed, std::vector<URL>{place("out")});
    driver_->press("recover.new");
    EXPECT_TRUE(driver_->isShown("recover.setupCard"));
    EXPECT_EQ(driver_->text("recover.card.text"), "card");
}

TEST_F(RecoverScreenTests, EveryKindOfDamage_IsShownWithItsSign) {
    const ReelCore::MixedCard card(place("card"));
    scan(card.path);
    const auto& first = card.clips.front();
    EXPECT_EQ(driver_->text("recover.report.0.title").toStdString(),
              first.path.substr(first.path.rfind('/') + 1));
    EXPECT_EQ(driver_->text("recover.report.0.label").toStdString(), first.diagnosis.label());
    keepPictures("recover-mixed");
    choose("recover.places.output.choose", madeFolder("out"));
    driver_->press("recover.repair");
    driver_->waitFor(
        "the end",
        [&] {
            return driver_->isShown("recover.outcomes.0") && driver_->isShown("recover.repair");
        },
        120'000);
    keepPictures("recover-mixed-recovered");
}

TEST_F(RecoverScreenTests, NoHealthyClip_ShowsTheWarning) {
    makeCard();
    std::filesystem::remove(place("card/GOOD.MOV"));
    scan(place("card"));
    EXPECT_EQ(driver_->text("recover.places.reference.text"),
              "None — auto-picks the largest healthy clip");
    const auto topOf = [&](const char* name) { return driver_->at(name).mapToScene({0, 0}).y(); };
    driver_->waitFor("the warning between the two", [&] {
        const double warning = topOf("recover.places.needsReference");
        return topOf("recover.places.reference.text") < warning &&
               warning < topOf("recover.places.output.text");
    });
    keepPictures("recover-needs-reference");
}

TEST_F(RecoverScreenTests, Image_IsCarvedToTheSameBytes) {
    TestSupport::makeClip(place("one.mov"), {.seconds = 0.2});
    TestSupport::writeFile(place("card.img"),
                           TestSupport::noise(1 << 20) + readFile(place("one.mov")));
    openRecover();
    EXPECT_TRUE(isNext("recover.scan"));
    EXPECT_FALSE(isNext("recover.scanImage"));
    choose("recover.image.choose", place("card.img"));
    EXPECT_FALSE(isNext("recover.scan")) << "one thing is to be done next";
    EXPECT_TRUE(isNext("recover.scanImage"));
    driver_->press("recover.scanImage");
    driver_->waitFor("a finding", [&] { return driver_->isShown("recover.finding.0"); });
    EXPECT_EQ(driver_->text("recover.carve"), "Carve 1 Item");
    EXPECT_TRUE(isNext("recover.carve"));
    EXPECT_FALSE(isNext("recover.scan") || isNext("recover.scanImage"));
    EXPECT_EQ(driver_->text("recover.carveRow.needs"), "No output folder yet.");
    choose("recover.carvePlaces.output.choose", madeFolder("out"));
    EXPECT_EQ(driver_->text("recover.carveRow.needs"), "");
    keepPictures("recover-found");
    driver_->press("recover.carve");
    driver_->waitFor("the outcome", [&] { return driver_->isShown("recover.carved.0"); });
    driver_->waitFor("the end", [&] { return driver_->isShown("recover.carve"); });
    EXPECT_FALSE(driver_->isEnabled("recover.carve"));
    EXPECT_EQ(driver_->text("recover.carveRow.needs"),
              "All is carved. To carve again, scan the image again.");
    EXPECT_EQ(driver_->text("recover.carved.0.title"), "card.img [carve]");
    EXPECT_EQ(driver_->text("recover.carved.0.path"), "→ carved_001.mov");
    driver_->press("recover.carvedReveal");
    EXPECT_EQ(desktop_.revealed, std::vector<URL>{place("out")});
    EXPECT_EQ(readFile(place("out/carved_001.mov")), readFile(place("one.mov")));
    keepPictures("recover-carved");
}

TEST_F(RecoverScreenTests, ImageOfNothing_SaysSo) {
    TestSupport::writeFile(place("card.img"), TestSupport::noise(1 << 20));
    openRecover();
    choose("recover.image.choose", place("card.img"));
    driver_->press("recover.scanImage");
    driver_->waitFor("the end", [&] { return driver_->isShown("recover.nothingFound"); });
    EXPECT_EQ(driver_->text("recover.nothingFound"), "No media signatures found in the image.");
}
