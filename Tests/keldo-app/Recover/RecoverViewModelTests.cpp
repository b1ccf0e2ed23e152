#include "keldo-app/Recover/RecoverViewModel.h"

#include "../../ReelCore/Recovery/MixedCard.h"
#include "../ViewModelFixture.h"
#include "Support/Boxes.h"
#include "Support/Clip.h"

#include <algorithm>

using keldo_app::InUse;
using keldo_app::RecoverViewModel;
using ReelCore::ClipDiagnosis;
using ReelCore::MixedCard;
using ReelCore::URL;
using TestSupport::makeClip;
using TestSupport::readFile;
using CarveStage = RecoverViewModel::CarveStage;

namespace {

class RecoverViewModelTests : public ViewModelFixture<RecoverViewModel> {
protected:
    void scan(const URL& folder) {
        choose(&RecoverViewModel::chooseCard, folder);
        model_.runScan();
        EXPECT_EQ(model_.stage(), Stage::scanning);
        ASSERT_TRUE(waitForStage(Stage::results));
    }

    void chooseOutput() { choose(&RecoverViewModel::chooseOutput, madeFolder("out")); }

    /// An image with two movies and, between them, what is no media.
    URL image() {
        makeClip(place("one.mov"), {.seconds = 0.2});
        makeClip(place("two.mov"), {.seconds = 0.3});
        const std::string gap = TestSupport::noise(1 << 20);
        TestSupport::writeFile(place("card.img"),
                               gap + readFile(place("one.mov")) + gap + readFile(place("two.mov")));
        return place("card.img");
    }

    void scanImage(const URL& image) {
        choose(&RecoverViewModel::chooseImage, image);
        model_.scanImage();
        EXPECT_EQ(model_.carveStage(), CarveStage::scanning);
        ASSERT_TRUE(waitForCarveStage(CarveStage::found));
    }

    bool waitForCarveStage(CarveStage stage) const {
        return waitFor([&] { return model_.carveStage() == stage; });
    }

    qsizetype count(const char* rows) const {
        return model_.property(rows).value<keldo_app::RowModel*>()->count();
    }

    /// A movie whose index was never written.
    void writeMovieWithoutIndex(const URL& path) const {
        TestSupport::writeFile(path, TestSupport::fileTypeBox() +
                                         TestSupport::boxHeader("mdat", 0) +
                                         TestSupport::proResFrame(5'000));
    }
};

}  // namespace

TEST_F(RecoverViewModelTests, Start_HasNothingChosenAndCanDoNothing) {
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_EQ(model_.carveStage(), CarveStage::idle);
    EXPECT_FALSE(model_.cardDir() || model_.outputDir() || model_.reference() || model_.imageURL());
    EXPECT_FALSE(model_.scan());
    EXPECT_EQ(model_.repairDone(), 0);
    EXPECT_EQ(model_.carveProgress(), 0);
    EXPECT_FALSE(model_.canScan() || model_.needsReference() || model_.canRepair() ||
                 model_.canCarve());
    model_.runScan();
    model_.runRepair();
    model_.scanImage();
    model_.extractAll();
    model_.reveal();
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_EQ(model_.carveStage(), CarveStage::idle);
    EXPECT_TRUE(desktop_.revealed.empty());
}

TEST_F(RecoverViewModelTests, Panels_HaveTheirPromptsAndDismissedKeepWhatWasChosen) {
    choose(&RecoverViewModel::chooseCard, place("card"));
    choose(&RecoverViewModel::chooseReference, place("good.mov"));
    choose(&RecoverViewModel::chooseOutput, place("out"));
    choose(&RecoverViewModel::chooseImage, place("card.img"));
    EXPECT_EQ(desktop_.messages,
              (QStringList{"Choose the card or folder to scan",
                           "Pick a HEALTHY clip from the same camera/settings",
                           "Choose where to write recovered clips",
                           "Choose the raw card image (.img / .dmg made with ddrescue)"}));
    model_.chooseCard();
    model_.chooseReference();
    model_.chooseOutput();
    model_.chooseImage();
    EXPECT_EQ(model_.cardDir(), place("card"));
    EXPECT_EQ(model_.reference(), place("good.mov"));
    EXPECT_EQ(model_.outputDir(), place("out"));
    EXPECT_EQ(model_.imageURL(), place("card.img"));
}

TEST_F(RecoverViewModelTests, Scan_PublishesEveryDiagnosisInOrder) {
    const MixedCard card(place("card"));
    scan(card.path);
    ASSERT_EQ(model_.scan()->reports.size(), card.clips.size());
    ASSERT_EQ(count("reports"), std::ssize(card.clips));
    for (std::size_t i = 0; i < card.clips.size(); ++i) {
        EXPECT_EQ(model_.scan()->reports[i].diagnosis, card.clips[i].diagnosis) << i;
    }
    const auto damaged = std::ranges::count_if(
        card.clips, [](const auto& clip) { return clip.diagnosis.isRepairable(); });
    EXPECT_EQ(model_.property("damagedCount"), static_cast<int>(damaged));
}

TEST_F(RecoverViewModelTests, Scan_TakesTheLargestHealthyMovieAsReferenceInPlaceOfTheUsers) {
    madeFolder("card");
    makeClip(place("card/SHORT.MOV"), {.seconds = 0.2});
    makeClip(place("card/LONG.MOV"), {.seconds = 0.6});
    choose(&RecoverViewModel::chooseReference, place("mine.mov"));
    scan(place("card"));
    EXPECT_EQ(model_.reference(), place("card/LONG.MOV"));
}

TEST_F(RecoverViewModelTests, HealthyMXFAlone_IsNoReferenceAndTheWarningShows) {
    madeFolder("card");
    makeClip(place("card/GOOD.MXF"), {.seconds = 0.2, .video = {"-c:v", "mpeg2video"}});
    writeMovieWithoutIndex(place("card/LOST.MOV"));
    scan(place("card"));
    EXPECT_EQ(model_.property("healthyCount"), 1);
    EXPECT_FALSE(model_.reference());
    EXPECT_TRUE(model_.needsReference());
    choose(&RecoverViewModel::chooseReference, place("good.mov"));
    EXPECT_FALSE(model_.needsReference());
}

TEST_F(RecoverViewModelTests, NothingDamaged_CanNotBeRepaired) {
    madeFolder("card");
    makeClip(place("card/GOOD.MOV"), {.seconds = 0.2});
    scan(place("card"));
    chooseOutput();
    EXPECT_FALSE(model_.canRepair());
    model_.runRepair();
    EXPECT_EQ(model_.stage(), Stage::results);
}

TEST_F(RecoverViewModelTests, Repair_GoesThroughTheDamagedClipsInOrder) {
    const MixedCard card(place("card"));
    scan(card.path);
    choose(&RecoverViewModel::chooseReference, card.reference);
    EXPECT_FALSE(model_.canRepair()) << "no output folder yet";
    chooseOutput();
    ASSERT_TRUE(model_.canRepair());
    model_.runRepair();
    EXPECT_EQ(model_.stage(), Stage::repairing);
    EXPECT_FALSE(model_.canScan());
    ASSERT_TRUE(waitForStage(Stage::results));
    std::vector<std::string> methods;
    for (const auto& clip : card.clips) {
        if (clip.diagnosis.isRepairable()) methods.push_back(clip.method);
    }
    std::vector<std::string> got;
    for (const auto& outcome : model_.outcomes()) got.push_back(outcome.method);
    EXPECT_EQ(got, methods);
    EXPECT_EQ(model_.repairDone(), std::ssize(methods));
    EXPECT_EQ(count("outcomes"), std::ssize(methods));
    EXPECT_EQ(count("reports"), std::ssize(card.clips)) << "still as before the repair";
    model_.reveal();
    EXPECT_EQ(desktop_.revealed, std::vector<URL>{place("out")});
}

TEST_F(RecoverViewModelTests, RepairTwice_KeepsBothResults) {
    madeFolder("card");
    makeClip(place("card/GOOD.MOV"), {.seconds = 0.2});
    const std::string whole = readFile(place("card/GOOD.MOV"));
    TestSupport::writeFile(place("card/LOST.MOV"), whole.substr(0, whole.rfind("moov") - 4));
    scan(place("card"));
    chooseOutput();
    model_.runRepair();
    ASSERT_TRUE(waitForStage(Stage::results));
    ASSERT_TRUE(model_.outcomes().front().succeeded) << model_.outcomes().front().detail;
    const auto first = model_.outcomes().front().output;
    model_.runRepair();
    ASSERT_TRUE(waitForStage(Stage::results));
    ASSERT_EQ(model_.outcomes().size(), 1U);
    EXPECT_NE(model_.outcomes().front().output, first);
    EXPECT_EQ(TestSupport::readTree(place("out")).size(), 2U);
}

TEST_F(RecoverViewModelTests, ResetDuringARepair_LeavesItGoingUnseen) {
    const MixedCard card(place("card"));
    scan(card.path);
    choose(&RecoverViewModel::chooseReference, card.reference);
    chooseOutput();
    model_.runRepair();
    model_.reset();
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_FALSE(model_.scan());
    EXPECT_FALSE(model_.reference());
    EXPECT_EQ(model_.cardDir(), card.path);
    EXPECT_EQ(model_.outputDir(), place("out"));
    const auto written = std::ranges::count_if(card.clips, [](const auto& clip) {
        return clip.diagnosis.isRepairable() && !clip.output.empty();
    });
    const InUse::Use erase{card.path, InUse::Purpose::erasing};
    EXPECT_NE(InUse::shared().objection(erase), "") << "the card is being read";

    scan(card.path);
    choose(&RecoverViewModel::chooseReference, card.reference);
    model_.runRepair();
    ASSERT_TRUE(waitForStage(Stage::results));
    ASSERT_TRUE(waitFor([&] { return InUse::shared().objection(erase).isEmpty(); }));
    EXPECT_EQ(std::ssize(TestSupport::readTree(place("out"))), 2 * written);
    const auto damaged = std::ranges::count_if(
        card.clips, [](const auto& clip) { return clip.diagnosis.isRepairable(); });
    EXPECT_EQ(std::ssize(model_.outcomes()), damaged) << "those of the first go nowhere";
}

TEST_F(RecoverViewModelTests, CardUnderErase_IsNotScanned) {
    choose(&RecoverViewModel::chooseCard, madeFolder("card"));
    auto erase = InUse::shared().take({{place("card"), InUse::Purpose::erasing}});
    EXPECT_FALSE(model_.canScan());
    EXPECT_EQ(model_.scanObjection(), "“card” is being erased. Wait until that has ended.");
    erase.reset();
    EXPECT_TRUE(model_.canScan());
}

TEST_F(RecoverViewModelTests, Image_IsScannedAndCarvedBackToTheSameBytes) {
    const URL image = this->image();
    scanImage(image);
    ASSERT_EQ(model_.carveFindings().size(), 2U);
    EXPECT_EQ(count("findings"), 2);
    EXPECT_GT(model_.carveProgress(), 0);
    EXPECT_FALSE(model_.canCarve()) << "no output folder yet";
    chooseOutput();
    ASSERT_TRUE(model_.canCarve());
    model_.extractAll();
    EXPECT_EQ(model_.carveStage(), CarveStage::extracting);
    ASSERT_TRUE(waitForCarveStage(CarveStage::done));
    EXPECT_EQ(count("carveOutcomes"), 2);
    EXPECT_EQ(readFile(place("out/carved_001.mov")), readFile(place("one.mov")));
    EXPECT_EQ(readFile(place("out/carved_002.mov")), readFile(place("two.mov")));
    EXPECT_FALSE(model_.canCarve());
    model_.scanImage();
    EXPECT_EQ(model_.carveProgress(), 0);
    EXPECT_EQ(count("carveOutcomes"), 0);
    ASSERT_TRUE(waitForCarveStage(CarveStage::found));
}

TEST_F(RecoverViewModelTests, ImageThatCanNotBeRead_LooksLikeOneWithoutFindingsAndSaysWhy) {
    scanImage(place("missing.img"));
    EXPECT_TRUE(model_.carveFindings().empty());
    EXPECT_NE(model_.carveTrouble(), "");
}

TEST_F(RecoverViewModelTests, AnotherImage_ClearsWhatWasFound) {
    scanImage(image());
    choose(&RecoverViewModel::chooseImage, place("other.img"));
    EXPECT_EQ(model_.carveStage(), CarveStage::idle);
    EXPECT_EQ(count("findings"), 0);
    EXPECT_TRUE(model_.carveFindings().empty());
}

TEST_F(RecoverViewModelTests, CarveThatNobodySees_KeepsItsFilesToItself) {
    chooseOutput();
    scanImage(image());
    auto unseen = InUse::shared().take({{place("out/carved_001"), InUse::Purpose::writing}});
    EXPECT_FALSE(model_.canCarve());
    EXPECT_NE(model_.carveObjection(), "");
    model_.extractAll();
    EXPECT_EQ(model_.carveStage(), CarveStage::found);
    unseen.reset();
    EXPECT_TRUE(model_.canCarve());
}
