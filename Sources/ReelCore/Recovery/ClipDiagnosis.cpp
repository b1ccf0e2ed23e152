#include "ReelCore/Recovery/ClipDiagnosis.h"

namespace ReelCore {

namespace {

struct Label {
    std::string operator()(const ClipDiagnosis::MissingIndex&) const {
        return "Missing index (header never closed)";
    }
    std::string operator()(const ClipDiagnosis::Truncated&) const { return "Truncated"; }
    std::string operator()(const ClipDiagnosis::StaleWAVSizes&) const { return "WAV sizes stale"; }
    std::string operator()(const ClipDiagnosis::Unreadable& clip) const {
        return "Unreadable — " + clip.reason;
    }
    std::string operator()(const ClipDiagnosis::Healthy&) const { return "Healthy"; }
};

}  // namespace

std::string ClipDiagnosis::label() const {
    return std::visit(Label(), value);
}

}  // namespace ReelCore
