#include "ReelCore/Offload/OffloadError.h"

namespace ReelCore {

std::string OffloadErrorCases::SourceNotFound::description() const {
    return "Source not found or not a directory: " + source.native();
}

std::string OffloadErrorCases::DestinationNotWritable::description() const {
    return "Destination is not writable: " + destination.native();
}

std::string OffloadErrorCases::ReadFailed::description() const {
    return "Failed reading " + fileName + ": " + underlying;
}

std::string OffloadErrorCases::WriteFailed::description() const {
    return "Failed writing to " + target.native() + ": " + underlying;
}

std::string OffloadErrorCases::NoDestinations::description() const {
    return "At least one destination is required.";
}

std::string OffloadErrorCases::Cancelled::description() const {
    return "Offload cancelled.";
}

}  // namespace ReelCore
