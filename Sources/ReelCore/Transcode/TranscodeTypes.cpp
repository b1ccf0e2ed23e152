#include "ReelCore/Transcode/TranscodeTypes.h"

namespace ReelCore {

URL TranscodeRequest::outputURL() const {
    return outputDirectory / (withoutSlashAtEnd(input).stem().native() + "." + preset.container);
}

}  // namespace ReelCore
