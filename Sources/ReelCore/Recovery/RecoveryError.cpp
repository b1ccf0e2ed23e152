#include "ReelCore/Recovery/RecoveryError.h"

namespace ReelCore {

std::string RecoveryErrorCases::NotFound::description() const {
    return "Not found: " + url.native();
}

std::string RecoveryErrorCases::ReferenceRequired::description() const {
    return "A healthy reference clip from the same camera is required: " + reason;
}

std::string RecoveryErrorCases::ReferenceUnusable::description() const {
    return "Reference clip unusable: " + reason;
}

std::string RecoveryErrorCases::IOFailed::description() const {
    return "I/O failed: " + reason;
}

std::string RecoveryErrorCases::Unsupported::description() const {
    return "Unsupported for native rebuild: " + reason;
}

std::string RecoveryErrorCases::NoRecoverableFrames::description() const {
    return "No recoverable media frames found in the damaged file.";
}

}  // namespace ReelCore
