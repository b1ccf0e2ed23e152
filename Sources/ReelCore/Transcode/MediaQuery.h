#pragma once

#include "ReelCore/Platform/URL.h"

#include <string>
#include <vector>

namespace ReelCore {

/// The path as ffmpeg and ffprobe take it for a file and nothing else: absolute, so that neither a
/// dash nor the name of a protocol stands in front. Throws SystemError (EINVAL) for a pipe or a
/// device, which a tool might wait for without end.
std::string toolPath(const URL& url);

/// What ffprobe prints on a file for `arguments`, which its path follows, without white space at
/// both ends; each line once, since of a transport stream it tells again for each program that a
/// stream is in. Empty if it is not UTF-8, and for a pipe or a device, which is not asked. How
/// ffprobe ended is not asked: on a file that it can't read it prints nothing. Waits for it; throws
/// SystemError if it can't be started.
std::string answerOf(const URL& ffprobe, std::vector<std::string> arguments, const URL& file);

}  // namespace ReelCore
