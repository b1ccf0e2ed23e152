#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/TemporaryPath.h"

#include <string>

namespace ReelCore {

/// The file that one run of ffmpeg writes its complaints to: made empty in the temporary folder,
/// with room for some complaints even if the drive runs full, and removed at the end.
class FFmpegLog {
public:
    /// Throws SystemError where the file can't be made or has no room.
    FFmpegLog();

    const File& file() const { return file_; }

    /// The last 256 KiB; nothing where the file can't be read.
    std::string lastText() const;

    /// The last 8 lines that are not empty, of the last 256 KiB; nothing where the file can't be
    /// read. Bytes that are not UTF-8, as in a name, become U+FFFD.
    std::string tail() const;

    /// True if a drive failed or ran full. ffmpeg then ends what it has and, unless that fails at
    /// once, calls it a success.
    bool tellsOfFailedDrive() const;

private:
    TemporaryPath path_;
    File file_;
};

}  // namespace ReelCore
