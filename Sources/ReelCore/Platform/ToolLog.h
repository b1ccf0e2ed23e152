#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/TemporaryPath.h"
#include "ReelCore/Platform/ToolComplaints.h"

#include <string_view>

namespace ReelCore {

/// The file that one run of a tool writes its complaints to, where its other stream is the one that
/// is read, or none is: made empty in the temporary folder, with room for some complaints even if
/// the drive runs full, and removed at the end.
class ToolLog {
public:
    /// The file's name begins with `prefix`. Throws SystemError where it can't be made or has no
    /// room.
    explicit ToolLog(std::string_view prefix);

    const File& file() const { return file_; }

    /// What stands in the file, as far as it can be read.
    ToolComplaints complaints() const;

private:
    TemporaryPath path_;
    File file_;
};

}  // namespace ReelCore
