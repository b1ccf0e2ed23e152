#pragma once

#include "Window/WindowDriver.h"
#include "keldo-app/Offload/OffloadViewModel.h"

#include <string>

namespace WindowSupport {

/// The Offload screen's view model; null while another mode shows.
inline keldo_app::OffloadViewModel* offloadOf(const WindowDriver& driver) {
    return driver.window().findChild<keldo_app::OffloadViewModel*>("offload");
}

/// Throws std::runtime_error if the screen does not come to the stage in time.
inline void waitForStage(const WindowDriver& driver, keldo_app::OffloadViewModel::Stage stage,
                         int milliseconds = 120'000) {
    driver.waitFor(
        "stage " + std::to_string(static_cast<int>(stage)),
        [&] { return offloadOf(driver) && offloadOf(driver)->stage() == stage; }, milliseconds);
    QCoreApplication::processEvents();
}

}  // namespace WindowSupport
