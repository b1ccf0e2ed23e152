#include "Tour/SampleCard.h"
#include "Window/FakeDesktop.h"
#include "Window/WindowDriver.h"
#include "keldo-app/Offload/OffloadDriver.h"

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include <fmt/format.h>

namespace fs = std::filesystem;
using keldo_app::OffloadViewModel;
using WindowSupport::WindowDriver;

namespace {

/// Says each step, does it, and keeps a picture of what the window showed afterwards.
class Guide {
public:
    Guide(WindowDriver& driver, const fs::path& pictures) : driver_(driver), pictures_(pictures) {}

    void press(const std::string& name, const std::string& label) {
        say(fmt::format("press “{}”", label));
        driver_.press(QString::fromStdString(name));
    }

    void picture(const std::string& name) {
        const fs::path path = pictures_ / fmt::format("{}-{}.png", ++count_, name);
        driver_.screenshot(path);
        say("     screenshot " + path.native());
    }

    static void say(const std::string& line) {
        fmt::print("{}\n", line);
        std::fflush(stdout);
    }

private:
    WindowDriver& driver_;
    fs::path pictures_;
    int count_ = 0;
};

void require(bool holds, const std::string& what) {
    if (!holds) throw std::runtime_error("the tour expected " + what);
    Guide::say("  ok " + what);
}

void offload(WindowDriver& driver, Guide& guide, const fs::path& folder) {
    guide.picture("start");
    guide.press("offload.source.choose", "Choose…");
    WindowSupport::waitForStage(driver, OffloadViewModel::Stage::setup);
    guide.picture("card-chosen");
    guide.press("offload.add", "Add Drive…");
    guide.picture("one-drive");
    guide.press("offload.add", "Add Drive…");
    guide.picture("two-drives");

    // A picture of the run itself, once a third is done.
    guide.press("offload.start", "Start Offload");
    driver.waitFor("a third to be done", [&] {
        const auto& progress = WindowSupport::offloadOf(driver)->progress();
        return (progress && progress->fractionComplete() > 0.3) ||
               WindowSupport::offloadOf(driver)->stage() == OffloadViewModel::Stage::finished;
    });
    if (driver.isShown("offload.running.cancel")) guide.picture("running");
    WindowSupport::waitForStage(driver, OffloadViewModel::Stage::finished);
    guide.picture("finished");
    require(driver.text("offload.verdict") == "All Files Verified", "“All Files Verified”");
    require(WindowSupport::offloadOf(driver)->gate()->eligible, "an open gate");
    Guide::say("     " + driver.text("offload.reason").toStdString());

    guide.press("offload.save", "Save Report (PDF + CSV)…");
    driver.waitFor("the report", [&] { return !driver.text("offload.reportStatus").isEmpty(); });
    guide.picture("report-saved");
    require(driver.text("offload.reportStatus") == "Saved 2 file(s) to Reports.",
            "two report files");

    guide.press("offload.formatButton", "Format Card…");
    driver.waitFor("the sheet", [&] {
        const QQuickItem* typed = driver.find("sheet.typed");
        return typed && typed->hasActiveFocus();
    });
    driver.type("erase");
    require(driver.text("sheet.typed") == "erase", "“erase” to be typed");
    require(!driver.isEnabled("sheet.erase"), "no erase for “erase”");
    guide.picture("erase-locked");
    driver.key(Qt::Key_Escape);
    driver.waitFor("the sheet to close", [&] { return !driver.isShown("sheet.typed"); });
    guide.press("offload.new", "New Offload");
    WindowSupport::waitForStage(driver, OffloadViewModel::Stage::setup);
    guide.picture("new-offload");
    Guide::say("\nWhat was made:");
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            Guide::say(fmt::format("{:>10}  {}", entry.file_size(), entry.path().native()));
        }
    }
}

/// Empties the folder of an earlier tour. Any other folder that holds something is refused.
void beginAfresh(const fs::path& folder) {
    const fs::path mark = folder / ".keldobay-tour";
    if (fs::exists(folder) && !fs::is_empty(folder) && !fs::exists(mark)) {
        throw std::runtime_error(folder.native() + " is not empty and not from an earlier tour");
    }
    fs::remove_all(folder);
    fs::create_directories(folder);
    std::ofstream(mark) << "made by keldobay-tour, and emptied by it\n";
}

void tour(const fs::path& folder) {
    beginAfresh(folder);
    const fs::path card = folder / "A001_C003";
    Guide::say("make a sample card at " + card.native());
    Tour::makeSampleCard(card);
    WindowSupport::FakeDesktop desktop;
    for (const char* name : {"SHUTTLE_01", "RAID_MASTER", "Reports"}) {
        fs::create_directories(folder / name);
    }
    desktop.answers = {card, folder / "SHUTTLE_01", folder / "RAID_MASTER", folder / "Reports"};
    WindowDriver driver(WindowSupport::application(desktop));
    Guide guide(driver, folder / "screenshots");
    offload(driver, guide, folder);
    require(driver.warnings().isEmpty(), "no complaint from the toolkit");
    Guide::say("All Files Verified; the gate is open.");
}

}  // namespace

/// keldobay-tour FOLDER: offloads a sample card through the real window without a display, and
/// leaves all it made in FOLDER, which must be empty, missing or from an earlier tour.
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
    std::fflush(stdout);
    std::_Exit(EXIT_SUCCESS);
}
