#include "ReelCore/CardFormat/CardFormatter.h"
#include "Support/Clip.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"
#include "Tour/Guide.h"
#include "Tour/SampleDay.h"
#include "keldo-app/Offload/OffloadDriver.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace fs = std::filesystem;
using keldo_app::OffloadViewModel;
using Tour::Guide;
using Tour::SampleDay;

namespace {

void requireFiles(const Guide& guide, const fs::path& folder, std::size_t count) {
    const auto tree = TestSupport::readTree(folder);
    guide.require(tree.size() == count,
                  fmt::format("{} files in {}", count, folder.filename().native()));
    for (const auto& [name, content] : tree) guide.require(!content.empty(), name);
}

void requireClip(const Guide& guide, const fs::path& clip) {
    const std::string seconds = TestSupport::probed(clip, "format=duration");
    guide.require(std::atof(seconds.c_str()) > 3,
                  fmt::format("{} to play (“{}”)", clip.filename().native(), seconds));
}

void plan(Guide& guide, const SampleDay& day) {
    guide.press("mode.Plan");
    guide.press("plan.cameras.stepper.more");
    guide.requireText("plan.cardsPerDay.value", "4   (8/day total)");
    guide.picture("plan");
    guide.driver.press("plan.production");
    guide.driver.type("Night Shift");
    guide.choose("plan.save", day / "Plan");
    guide.requireText("plan.reportStatus", "Saved to Plan.");
    requireFiles(guide, day / "Plan", 2);
    guide.press("plan.email");
    guide.waitForText("plan.reportStatus", "Opened in Mail — add recipients and send.",
                      "Saved to Plan.");
    guide.picture("plan-sent");
    const fs::path letter = guide.desktop.mails.at(0).attachment;
    fs::copy_file(letter, day / "Mail" / letter.filename());
    fs::remove_all(letter.parent_path());
}

/// The folder that the card was copied to on the first drive.
fs::path offload(Guide& guide, const SampleDay& day) {
    auto& driver = guide.driver;
    guide.press("mode.Offload");
    guide.picture("offload");
    guide.choose("offload.source.choose", day.card);
    WindowSupport::waitForStage(driver, OffloadViewModel::Stage::setup);
    guide.requireText("offload.fileCount", "10 files");
    guide.choose("offload.add", day / "SHUTTLE_01");
    guide.picture("offload-one-drive");
    guide.choose("offload.add", day / "RAID_MASTER");
    guide.picture("offload-two-drives");
    const std::string reel = WindowSupport::offloadOf(driver)->reelName().toStdString();
    guide.press("offload.start");
    driver.waitFor("a third to be done", [&] {
        const auto& progress = WindowSupport::offloadOf(driver)->progress();
        return (progress && progress->fractionComplete() > 0.3) ||
               WindowSupport::offloadOf(driver)->stage() == OffloadViewModel::Stage::finished;
    });
    if (driver.isShown("offload.running.cancel")) guide.picture("offload-running");
    WindowSupport::waitForStage(driver, OffloadViewModel::Stage::finished);
    guide.requireText("offload.verdict", "All Files Verified");
    guide.requireText("offload.reason", "All 10 files verified on 2 drives.");
    guide.choose("offload.save", day / "Reports");
    guide.waitForText("offload.reportStatus", "Saved 2 file(s) to Reports.");
    guide.picture("offload-verified");
    guide.press("offload.formatButton");
    driver.waitFor("the sheet", [&] {
        const QQuickItem* typed = driver.find("sheet.typed");
        return typed && typed->hasActiveFocus();
    });
    driver.type("erase");
    guide.requireText("sheet.typed", "erase");
    guide.require(!driver.isEnabled("sheet.erase"), "no erase for “erase”");
    guide.picture("offload-erase-locked");
    driver.key(Qt::Key_Escape);
    driver.waitFor("the sheet to close", [&] { return !driver.isShown("sheet.typed"); });
    guide.press("offload.new");
    WindowSupport::waitForStage(driver, OffloadViewModel::Stage::setup);
    return day / "SHUTTLE_01" / reel;
}

void recover(Guide& guide, const SampleDay& day, const fs::path& copy) {
    guide.press("mode.Recover");
    guide.picture("recover");
    guide.choose("recover.card.choose", copy);
    guide.press("recover.scan");
    guide.waitFor("recover.diagnosisCard");
    guide.choose("recover.places.output.choose", day / "Recovered");
    guide.show("recover.counts");
    guide.picture("recover-diagnosis");
    guide.requireText("recover.counts", "7 media files · 2 damaged · 5 healthy");
    guide.press("recover.repair");
    guide.waitFor("recover.outcomes.1");
    guide.waitFor("recover.repair");
    guide.show("recover.reveal");
    guide.picture("recover-repaired");
    requireFiles(guide, day / "Recovered", 2);
    for (const auto& made : fs::directory_iterator(day / "Recovered")) requireClip(guide, made);
}

void carve(Guide& guide, const SampleDay& day) {
    guide.press("recover.new");
    guide.choose("recover.image.choose", day.image);
    guide.press("recover.scanImage");
    guide.waitForText("recover.carve", "Carve 2 Items");
    guide.choose("recover.carvePlaces.output.choose", day / "Carved");
    guide.choose("recover.carvePlaces.reference.choose",
                 day.card / "XDROOT/Clip/A001C003_261121XK.MOV");
    guide.show("recover.carve");
    guide.picture("recover-image-scanned");
    guide.press("recover.carve");
    guide.waitFor("recover.carved.1");
    guide.waitFor("recover.carve");
    guide.show("recover.carved.1");
    guide.picture("recover-carved");
    const auto whole = TestSupport::readFile(day.card / "XDROOT/Clip/A001C001_261121XK.MOV");
    guide.require(TestSupport::readFile(day / "Carved" / "carved_001.mov") == whole,
                  "the carved clip to be the clip that was in the image, byte for byte");
    requireClip(guide, day / "Carved" / "carved_002_recovered.mov");
}

void sync(Guide& guide, const SampleDay& day, const fs::path& copy) {
    guide.press("mode.Sync");
    guide.choose("sync.media.choose", copy);
    guide.picture("sync");
    guide.press("sync.scan");
    guide.waitFor("sync.groupedCard");
    guide.picture("sync-groups");
    guide.requireText("sync.counts", "4 clips · 2 synced · 2 audio unmatched");
    guide.choose("sync.save", day / "Reports");
    guide.waitForText("sync.reportStatus", "Saved 2 file(s) to Reports.");
    guide.choose("sync.export", day / "Editorial");
    guide.waitForText("sync.exportStatus", "Exported FCPXML + ALE to Editorial.");
    requireFiles(guide, day / "Editorial", 2);
    guide.choose("sync.output.choose", day / "Synced");
    guide.press("sync.mux");
    guide.waitForText("sync.muxStatus", "Created 2 of 2 synced clips in Synced.");
    guide.show("sync.reveal");
    guide.picture("sync-muxed");
    for (const auto& made : fs::directory_iterator(day / "Synced")) requireClip(guide, made);
}

void transcode(Guide& guide, const SampleDay& day) {
    guide.press("mode.Transcode");
    guide.picture("transcode");
    guide.chooseFiles("transcode.add", {day / "Synced" / "A001C001_261121XK_synced.mov",
                                        day / "Synced" / "A001C002_261121XK_synced.mov"});
    guide.choose("transcode.output.choose", day / "Dailies");
    guide.press("transcode.applyLUT");
    guide.choose("transcode.lut.choose", day.look);
    guide.show("transcode.clipsCard");
    guide.picture("transcode-ready");
    guide.press("transcode.start");
    guide.driver.waitFor("progress or the end", [&] {
        return guide.driver.isShown("transcode.speed") ||
               guide.driver.isShown("transcode.doneCard");
    });
    if (guide.driver.isShown("transcode.speed")) guide.picture("transcode-running");
    guide.waitForText("transcode.doneCard", "Transcode Complete");
    guide.requireText("transcode.summary", "2 of 2 clips → ProRes 422 HQ");
    guide.choose("transcode.save", day / "Reports");
    guide.waitForText("transcode.reportStatus", "Saved 2 file(s) to Reports.");
    guide.picture("transcode-done");
    requireFiles(guide, day / "Dailies", 2);
    for (const auto& made : fs::directory_iterator(day / "Dailies")) requireClip(guide, made);
    requireFiles(guide, day / "Reports", 6);
}

/// Words are what a speech model makes of them: of each sentence, one that it always hears.
void requirePieces(const Guide& guide, const std::string& text,
                   const std::vector<std::string>& pieces) {
    std::size_t at = 0;
    for (const std::string& piece : pieces) {
        at = text.find(piece, at);
        guide.require(at != text.npos, fmt::format("“{}” in its place", piece));
    }
}

/// What LibreOffice makes of a document, where it is installed.
void requireReadable(const Guide& guide, const fs::path& document) {
    if (!TestSupport::hasTool("soffice") || !TestSupport::hasTool("pdftotext")) return;
    const fs::path profile = document.parent_path() / "profile";
    TestSupport::outputOf("soffice", {"-env:UserInstallation=file://" + profile.native(),
                                      "--headless", "--convert-to", "pdf", "--outdir",
                                      document.parent_path().native(), document.native()});
    fs::remove_all(profile);
    const fs::path pdf = fs::path(document).replace_extension(".pdf");
    requirePieces(
        guide, TestSupport::outputOf("pdftotext", {"-layout", pdf.native(), "-"}),
        {"Take 3", "generator", "Ann", "first shot", "Speaker 2", "battery", "Speaker 3"});
}

void transcript(Guide& guide, const SampleDay& day) {
    auto& driver = guide.driver;
    guide.press("mode.Transcript");
    if (driver.isShown("transcript.needs") || driver.isShown("transcript.diarization")) {
        guide.picture("transcript-needs");
        Guide::say("  the transcript is left out: Scripts/install-transcript sets up its tools");
        return;
    }
    guide.choose("transcript.input.choose", day.interview);
    guide.waitFor("transcript.startTC");
    guide.requireText("transcript.startTC", "Start TC 10:45:00:00");
    driver.focus("transcript.people");
    for (int people = 0; people < 3; ++people) driver.key(Qt::Key_Down);
    guide.choose("transcript.output.choose", day / "Transcripts");
    guide.show("transcript.clipCard");
    guide.picture("transcript-setup");
    guide.press("transcript.start");
    guide.waitFor("transcript.phase");
    guide.picture("transcript-running");
    guide.waitFor("transcript.ready");
    driver.waitFor("the result to be what is read out",
                   [&] { return driver.focused() == "transcript.ready"; });
    driver.press("transcript.name.0");
    driver.key(Qt::Key_A, Qt::ControlModifier);
    driver.type("Ann");
    guide.press("transcript.save");
    guide.waitForText("transcript.renameStatus", "Applied edits and re-saved the .docx.");
    guide.show("transcript.ready");
    guide.picture("transcript-ready");
    const fs::path document = day / "Transcripts" / "Interview_transcript.docx";
    requirePieces(guide,
                  TestSupport::outputOf("unzip", {"-p", document.native(), "word/document.xml"}),
                  {"Prod: NIGHT SHIFT", "Scene 12A", "Take 3", "10:45:0", "Ann", "generator",
                   "Speaker 2", "first shot", "Speaker 3", "battery"});
    requireReadable(guide, document);
}

/// Empties the folder of an earlier tour. Any other folder that holds something is refused.
void beginAfresh(const fs::path& folder) {
    const fs::path mark = folder / ".keldobay-tour";
    if (fs::exists(folder) && !fs::is_empty(folder) && !fs::exists(mark)) {
        throw std::runtime_error(folder.native() + " is not empty and not from an earlier tour");
    }
    fs::remove_all(folder);
    TestSupport::writeTree(folder, {{mark.filename(), "made by keldobay-tour, emptied by it\n"}});
}

void tour(const fs::path& folder) {
    beginAfresh(folder);
    Guide::say("make a sample day in " + folder.native());
    const SampleDay day(folder);
    Guide guide(folder / "screenshots");
    plan(guide, day);
    const fs::path copy = offload(guide, day);
    recover(guide, day, copy);
    carve(guide, day);
    sync(guide, day, copy);
    transcode(guide, day);
    transcript(guide, day);
    guide.require(guide.driver.warnings().isEmpty(), "no complaint from the toolkit");
    Guide::say("\nWhat was made:");
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        Guide::say(fmt::format("{:>10}  {}", entry.file_size(), entry.path().native()));
    }
}

}  // namespace

/// keldobay-tour FOLDER: takes a sample day through the real window without a display, and leaves
/// all it made in FOLDER, which must be empty, missing or from an earlier tour.
int main(int argc, char* argv[]) {
    WindowSupport::startOffscreen(argc, argv);
    if (argc != 2) {
        fmt::print(stderr, "usage: keldobay-tour FOLDER\n");
        return EXIT_FAILURE;
    }
    try {
        tour(fs::absolute(argv[1]));
    } catch (const std::exception& error) {
        fmt::print(stderr, "the tour failed: {}\n", error.what());
        std::_Exit(EXIT_FAILURE);
    }
    std::_Exit(EXIT_SUCCESS);
}
