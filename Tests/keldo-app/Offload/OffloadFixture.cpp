#include "OffloadFixture.h"

namespace WindowSupport {

OffloadFixture::OffloadFixture() {
    TestSupport::writeTree(card(), {{"XDROOT/Clip/A001C001.MXF", TestSupport::noise(300'000)},
                                    {"XDROOT/Clip/A001C001.XML", "<Clip/>"},
                                    {"XDROOT/Clip/A001C002.MXF", TestSupport::noise(200'000, 2)},
                                    {"SOUND/T001.WAV", TestSupport::noise(50'000, 3)}});
    for (const char* name : {"SHUTTLE_01", "RAID_MASTER", "Reports", "EMPTY"}) {
        std::filesystem::create_directories(drive(name));
    }
}

void OffloadFixture::TearDown() {
    WindowFixture::TearDown();
    // Not before the window: a run may still write to it.
    faulty_.reset();
}

void OffloadFixture::chooseCard(const ReelCore::URL& source) {
    desktop_.answers = {source};
    driver_->press("offload.source.choose");
    waitForStage(Stage::setup);
}

void OffloadFixture::addDrive(const ReelCore::URL& drive) {
    desktop_.answers = {drive};
    driver_->press("offload.add");
}

void OffloadFixture::setUpOffload() {
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    addDrive(drive("RAID_MASTER"));
    offload()->setReelName("A001");
}

void OffloadFixture::runToEnd() {
    driver_->press("offload.start");
    waitForStage(Stage::finished);
}

void OffloadFixture::showResultWith(const std::vector<ReelCore::DestinationState>& states) {
    auto result = std::make_shared<ReelCore::OffloadResult>(*offload()->result());
    result->destinationStates = states;
    offload()->apply(keldo_app::OffloadEvent{keldo_app::OffloadEvent::Finished{std::move(result)}});
}

ReelCore::URL OffloadFixture::faultyDrive(const TestSupport::FaultyFileSystem::Faults& faults) {
    const ReelCore::URL backing = folder_.path() / "backing";
    const ReelCore::URL mountPoint = folder_.path() / "FAULTY";
    std::filesystem::create_directories(backing);
    std::filesystem::create_directories(mountPoint);
    faulty_ = std::make_unique<TestSupport::FaultyFileSystem>(backing, mountPoint, faults);
    return mountPoint;
}

}  // namespace WindowSupport
