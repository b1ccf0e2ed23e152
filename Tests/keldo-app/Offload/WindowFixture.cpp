#include "WindowFixture.h"

namespace WindowSupport {

WindowFixture::WindowFixture() {
    TestSupport::writeTree(card(), {{"XDROOT/Clip/A001C001.MXF", TestSupport::noise(300'000)},
                                    {"XDROOT/Clip/A001C001.XML", "<Clip/>"},
                                    {"XDROOT/Clip/A001C002.MXF", TestSupport::noise(200'000, 2)},
                                    {"SOUND/T001.WAV", TestSupport::noise(50'000, 3)}});
    for (const char* name : {"SHUTTLE_01", "RAID_MASTER", "Reports", "EMPTY"}) {
        std::filesystem::create_directories(drive(name));
    }
}

void WindowFixture::TearDown() {
    if (!driver_) return;
    EXPECT_TRUE(driver_->warnings().isEmpty()) << driver_->warnings().join("\n").toStdString();
    if (HasFailure()) {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        driver_->screenshot(ReelCore::URL(KELDO_SCREENSHOTS) / "failed" /
                            (std::string(info->name()) + ".png"));
    }
    // The faulty drive must outlive a run that may still write to it.
    driver_.reset();
    setLook(Look::light);
}

void WindowFixture::openWindow() {
    driver_ = std::make_unique<WindowDriver>(desktop_);
}

void WindowFixture::chooseCard(const ReelCore::URL& source) {
    desktop_.answers = {source};
    driver_->press("offload.choose");
    driver_->waitForStage(Stage::setup);
}

void WindowFixture::addDrive(const ReelCore::URL& drive) {
    desktop_.answers = {drive};
    driver_->press("offload.add");
}

void WindowFixture::setUpOffload() {
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    addDrive(drive("RAID_MASTER"));
    driver_->offload()->setReelName("A001");
}

void WindowFixture::runToEnd() {
    driver_->press("offload.start");
    driver_->waitForStage(Stage::finished);
}

void WindowFixture::showResultWith(const std::vector<ReelCore::DestinationState>& states) {
    auto result = std::make_shared<ReelCore::OffloadResult>(*driver_->offload()->result());
    result->destinationStates = states;
    driver_->offload()->apply(
        keldo_app::OffloadEvent{keldo_app::OffloadEvent::Finished{std::move(result)}});
}

ReelCore::URL WindowFixture::faultyDrive(const TestSupport::FaultyFileSystem::Faults& faults) {
    const ReelCore::URL backing = folder_.path() / "backing";
    const ReelCore::URL mountPoint = folder_.path() / "FAULTY";
    std::filesystem::create_directories(backing);
    std::filesystem::create_directories(mountPoint);
    faulty_ = std::make_unique<TestSupport::FaultyFileSystem>(backing, mountPoint, faults);
    return mountPoint;
}

void WindowFixture::keepPictures(const std::string& state) {
    for (const Look look : {Look::light, Look::dark}) {
        setLook(look);
        for (const auto& [width, height] : {std::pair(940, 680), std::pair(1600, 1000)}) {
            driver_->resize(width, height);
            QCoreApplication::processEvents();
            const std::string name = state + (look == Look::dark ? "-dark-" : "-light-") +
                                     std::to_string(width) + ".png";
            driver_->screenshot(ReelCore::URL(KELDO_SCREENSHOTS) / name);
        }
    }
    setLook(Look::light);
    driver_->resize(940, 680);
}

}  // namespace WindowSupport
