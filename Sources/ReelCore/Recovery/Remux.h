#pragma once

#include "ReelCore/Platform/URL.h"

namespace ReelCore {

/// Lets ffmpeg write the streams of a damaged clip into a new container, as they are and as far as
/// it can read them. It is done if each kind of stream that the clip's index promises, picture and
/// sound, is in the output and its first frame decodes; without ffprobe, if there is anything in
/// the output.
///
/// Throws TranscribeError::FFmpegNotFound; RecoveryError::IOFailed with the last four lines of what
/// ffmpeg said, also where a drive failed it, or with the kind that does not play, and then what
/// there is stays; SystemError where ffmpeg can't be started.
void remux(const URL& source, const URL& output);

}  // namespace ReelCore
