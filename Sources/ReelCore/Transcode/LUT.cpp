#include "ReelCore/Transcode/LUT.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Transcode/TranscodeError.h"

namespace ReelCore {

std::string LUT::name() const {
    return withoutSlashAtEnd(url).stem().native();
}

void LUT::validate() const {
    if (!FileSystem::leadsSomewhere(url) || FileSystem::isPipeOrDevice(url)) {
        throw TranscodeError(TranscodeError::LUTNotFound{url});
    }
    const std::string extension = lowerCasedExtension(url);
    if (extension == "cube" || extension == "3dl") return;
    throw TranscodeError(TranscodeError::UnsupportedLUT{extension});
}

}  // namespace ReelCore
