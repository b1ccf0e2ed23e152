#include "OffloadFixture.h"

using WindowSupport::Look;
using WindowSupport::OffloadFixture;
using WindowSupport::Shown;

namespace {

/// The colours that mean something, as they are to be seen.
struct Colors {
    std::string primary;
    std::string secondary;
    std::string accent;
    std::string green;
    std::string orange;
    std::string red;
    std::string onFilled = "#ffffff";
};

const Colors light{"#1c1e22", "#5f6570", "#0b63d6", "#17803d", "#b45309", "#c62828"};
const Colors dark{"#eceef1", "#a3a8b0", "#5aa2ff", "#4cc38a", "#f0a04b", "#ff6b61"};

/// What every item shows, in both looks.
class LabelTests : public OffloadFixture {
protected:
    void inBothLooks(const std::function<void(const Colors&)>& check) {
        for (const Look look : {Look::light, Look::dark}) {
            SCOPED_TRACE(look == Look::dark ? "dark" : "light");
            WindowSupport::setLook(look);
            QCoreApplication::processEvents();
            check(look == Look::dark ? dark : light);
        }
        WindowSupport::setLook(Look::light);
    }

    /// Text and symbol, both in `color`.
    void expectShown(const char* name, const std::string& text, const std::string& symbol,
                     const std::string& color) const {
        const Shown expected{text, text.empty() ? "" : color, symbol, symbol.empty() ? "" : color};
        driver_->waitFor("the symbol of " + std::string(name),
                         [&] { return driver_->shown(name).symbol == symbol; });
        EXPECT_EQ(driver_->shown(name), expected) << name;
    }
};

}  // namespace

TEST_F(LabelTests, Header_NamesTheApplicationAndTheModesInOrder) {
    openWindow();
    inBothLooks([this](const Colors& colors) {
        expectShown("header.symbol", "", "externaldrive.fill.badge.checkmark", colors.accent);
        expectShown("header.title", "keldobay", "", colors.primary);
        expectShown("header.line", "DIT Offload & Dailies", "", colors.secondary);
    });
    EXPECT_EQ(driver_->find("mode")->width(), 560);
    double left = -1;
    for (const QString mode : {"Plan", "Offload", "Transcode", "Transcript", "Sync", "Recover"}) {
        const QQuickItem* segment = driver_->find("mode." + mode);
        ASSERT_TRUE(segment) << mode.toStdString();
        EXPECT_EQ(driver_->shown("mode." + mode).text, mode.toStdString());
        EXPECT_GT(segment->x(), left);
        left = segment->x();
    }
}

TEST_F(LabelTests, Setup_BeforeAnythingIsChosen) {
    openWindow();
    inBothLooks([this](const Colors& colors) {
        expectShown("offload.sourceCard.head", "Source", "sdcard", colors.accent);
        expectShown("offload.source.text", "No card selected", "", colors.secondary);
        expectShown("offload.source.choose", "Choose…", "", colors.primary);
        expectShown("offload.drivesCard.head", "Backup Drives", "externaldrive", colors.accent);
        expectShown("offload.nodrives",
                    "Add at least two drives for a safe, format-eligible offload.", "",
                    colors.secondary);
        expectShown("offload.add", "Add Drive…", "plus", colors.primary);
        expectShown("offload.optionsCard.head", "Options", "slider.horizontal.3", colors.accent);
        expectShown("offload.reelRow.label", "Reel name", "", colors.primary);
        expectShown("offload.checksumRow.label", "Checksum", "", colors.primary);
        expectShown("offload.start", "Start Offload", "play.fill", colors.secondary);
    });
    double left = -1;
    for (const QString algorithm : {"xxhash64", "md5", "sha256"}) {
        const QString name = "offload.checksum." + algorithm;
        EXPECT_EQ(driver_->shown(name).text, algorithm.toStdString());
        EXPECT_GT(driver_->find(name)->x(), left);
        left = driver_->find(name)->x();
    }
}

TEST_F(LabelTests, Setup_WithACardAndOneDrive) {
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    inBothLooks([this](const Colors& colors) {
        expectShown("offload.source.text", card().native(), "", colors.primary);
        expectShown("offload.camera", "Sony", "camera", colors.secondary);
        expectShown("offload.fileCount", "4 files", "doc.on.doc", colors.secondary);
        expectShown("offload.total", "537.1 KB", "scalemass", colors.secondary);
        expectShown("offload.drive.0.title", "SHUTTLE_01", "", colors.primary);
        expectShown("offload.drive.0.path", drive("SHUTTLE_01").native(), "", colors.secondary);
        EXPECT_EQ(driver_->shown("offload.drive.0").symbol, "externaldrive.fill");
        expectShown("offload.remove.0", "", "minus.circle.fill", colors.red);
        expectShown("offload.warning",
                    "One drive copies fine, but formatting stays locked until you add a second.",
                    "exclamationmark.triangle.fill", colors.orange);
        expectShown("offload.start", "Start Offload", "play.fill", colors.onFilled);
    });
}

TEST_F(LabelTests, Scanning) {
    openWindow();
    std::optional<Shown> shown;
    QObject::connect(offload(), &keldo_app::OffloadViewModel::changed, offload(), [&] {
        if (offload()->stage() == Stage::scanning) shown = driver_->shown("offload.scanning");
    });
    chooseCard(card());
    EXPECT_EQ(shown, (Shown{"Scanning…", light.secondary, "magnifyingglass", light.secondary}));
}

TEST_F(LabelTests, Running) {
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.delay = 2'000}));
    driver_->press("offload.start");
    driver_->waitFor("the first file", [&] { return driver_->isShown("offload.running.current"); });
    inBothLooks([this](const Colors& colors) {
        expectShown("offload.running.head", "Offloading", "arrow.triangle.2.circlepath",
                    colors.accent);
        expectShown("offload.running.phase", "Copying to all drives…", "", colors.primary);
        expectShown("offload.running.percent", "0%", "", colors.primary);
        expectShown("offload.running.current", "SOUND/T001.WAV", "", colors.secondary);
        expectShown("offload.files", "0/4 files", "doc.on.doc", colors.secondary);
        expectShown("offload.bytes", "0 B / 537.1 KB", "scalemass", colors.secondary);
        expectShown("offload.drives", "1 drives", "externaldrive", colors.secondary);
        expectShown("offload.running.cancel", "Cancel", "stop.fill", colors.onFilled);
    });
    driver_->press("offload.running.cancel");
    waitForStage(Stage::finished);
}

TEST_F(LabelTests, Verified_WithTheSheet) {
    setUpOffload();
    runToEnd();
    inBothLooks([this](const Colors& colors) {
        expectShown("offload.new", "New Offload", "arrow.counterclockwise", colors.primary);
        expectShown("offload.verdict.head", "All Files Verified", "checkmark.seal.fill",
                    colors.green);
        expectShown("offload.verdict.files", "4 files", "doc.on.doc", colors.secondary);
        expectShown("offload.verdict.total", "537.1 KB", "scalemass", colors.secondary);
        expectShown("offload.verdict.drives", "2 drives", "externaldrive", colors.secondary);
        expectShown("offload.verdict.algorithm", "xxhash64", "number", colors.secondary);
        expectShown("offload.save", "Save Report (PDF + CSV)…", "doc.text", colors.primary);
        expectShown("offload.format.head", "Format Card?", "trash", colors.accent);
        expectShown("offload.reason", "All 4 files verified on 2 drives.", "", colors.primary);
        expectShown("offload.formatButton", "Format Card…", "trash.fill", colors.onFilled);
    });
    driver_->press("offload.formatButton");
    driver_->waitFor("the sheet", [&] { return driver_->isShown("sheet.heading"); });
    inBothLooks([this](const Colors& colors) {
        expectShown("sheet.heading", "Erase the camera card?", "exclamationmark.triangle.fill",
                    colors.red);
        expectShown("sheet.word.type", "Type", "", colors.primary);
        expectShown("sheet.word.erase", "ERASE", "", colors.primary);
        expectShown("sheet.word.confirm", "to confirm", "", colors.primary);
        expectShown("sheet.cancel", "Cancel", "", colors.primary);
        expectShown("sheet.erase", "Erase Card", "", colors.secondary);
    });
    EXPECT_EQ(driver_->find("sheet.typed")->width(), 160);
}

TEST_F(LabelTests, Problems) {
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    addDrive(faultyDrive({.onlyFile = "A001C002.MXF", .flipBitAt = 1000}));
    runToEnd();
    inBothLooks([this](const Colors& colors) {
        expectShown("offload.verdict.head", "Verification Problems",
                    "exclamationmark.triangle.fill", colors.orange);
        expectShown("offload.failures.title", "Failed files:", "", colors.red);
        expectShown("offload.failures.0", "XDROOT/Clip/A001C002.MXF", "xmark.circle.fill",
                    colors.red);
        expectShown("offload.format.head", "Format Card?", "trash", colors.secondary);
        expectShown("offload.reason", "1 file(s) failed verification — DO NOT format.", "",
                    colors.secondary);
        expectShown("offload.locked", "Formatting locked — keep the card.", "lock.fill",
                    colors.secondary);
    });
}

TEST_F(LabelTests, Failed) {
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.writeError = 28, .failWriteAfter = 100'000}));
    runToEnd();
    inBothLooks([this](const Colors& colors) {
        expectShown("offload.failed.head", "Offload Failed", "xmark.octagon.fill", colors.red);
        EXPECT_EQ(driver_->shown("offload.failed.message").textColor, colors.red);
    });
    EXPECT_TRUE(driver_->find("offload.failed.message")->property("selectByMouse").toBool());
}
