#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/TemporaryPath.h"
#include "ReelCore/Transcode/FFmpegComplaints.h"

namespace ReelCore {

/// The file that one run of ffmpeg writes its complaints to, where its other stream is the one that
/// is read: made empty in the temporary folder, with room for some complaints even if the drive
/// runs full, and removed at the end.
class FFmpegLog {
public:
    /// Throws SystemError where the file can't be made or has no room.
    FFmpegLog();

    const File& file() const { return file_; }

    /// What stands in the file, as far as it can be read.
    FFmpegComplaints complaints() const;

private:
    TemporaryPath path_;
    File file_;
};

}  // namespace ReelCore
