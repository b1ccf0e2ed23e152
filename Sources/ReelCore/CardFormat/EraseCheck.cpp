#include "ReelCore/CardFormat/EraseCheck.h"

#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "ReelCore/Platform/FileSystem.h"

#include <algorithm>
#include <system_error>
#include <vector>

namespace ReelCore {

namespace {

bool holdsWhatWasProved(const OffloadResult& result) {
    const auto scan = SourceScanner::scan(result.request.source);
    return std::ranges::equal(scan.files, result.files, {}, {}, &FileVerification::file);
}

bool stands(const DestinationResult& copy, std::int64_t size) {
    std::error_code failure;
    const auto found = std::filesystem::file_size(copy.writtenURL, failure);
    return !failure && static_cast<std::int64_t>(found) == size;
}

std::optional<std::string> objectionToCopies(const FileVerification& one) {
    std::vector<FileIdentity> places;
    for (const DestinationResult& copy : one.destinations) {
        const auto place = FileSystem::identity(copy.writtenURL);
        if (!place || !stands(copy, one.file.size)) {
            return "A verified copy is no longer there: " + copy.writtenURL.native();
        }
        if (std::ranges::find(places, *place) != places.end()) {
            return "Two of the drives are one and the same folder, so there is only one copy.";
        }
        places.push_back(*place);
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> EraseCheck::objection(const OffloadResult& result) {
    if (!holdsWhatWasProved(result)) {
        return "The files on the card are not the ones that were verified.";
    }
    for (const FileVerification& one : result.files) {
        if (auto objection = objectionToCopies(one)) return objection;
    }
    return std::nullopt;
}

}  // namespace ReelCore
