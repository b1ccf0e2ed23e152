#pragma once

#include "ReelCore/Platform/URL.h"

namespace ReelCore {

/// Lets ffmpeg write the streams of a damaged clip into a new container, as they are and as far as
/// it can read them. Throws TranscribeError::FFmpegNotFound, RecoveryError::IOFailed with the last
/// four lines of what ffmpeg said, also where a drive failed it or nothing but a container came
/// out; SystemError where it can't be started.
void remux(const URL& source, const URL& output);

}  // namespace ReelCore
