#include "keldo-app/Shell/AppMode.h"

#include "ReelCore/Platform/Fatal.h"
#include "keldo-app/Support/Format.h"

#include <array>

namespace keldo_app {

std::string_view rawValue(AppMode mode) {
    switch (mode) {
        case AppMode::plan:
            return "Plan";
        case AppMode::offload:
            return "Offload";
        case AppMode::transcode:
            return "Transcode";
        case AppMode::transcript:
            return "Transcript";
        case AppMode::sync:
            return "Sync";
        case AppMode::recover:
            return "Recover";
    }
    ReelCore::fatal("no such mode");
}

QStringList AppModes::labels() const {
    return Format::rawValues<AppMode>();
}

QString AppModes::screen(const QString& label) const {
    return QStringLiteral("qrc:/qt/qml/Keldo/%1/%1Screen.qml").arg(label);
}

}  // namespace keldo_app

template <>
std::span<const keldo_app::AppMode> ReelCore::allCases<keldo_app::AppMode>() {
    using keldo_app::AppMode;
    static constexpr std::array cases{AppMode::plan,       AppMode::offload, AppMode::transcode,
                                      AppMode::transcript, AppMode::sync,    AppMode::recover};
    return cases;
}
