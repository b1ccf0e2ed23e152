#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/URL.h"

#include <optional>

namespace ReelCore {

/// A location that nothing stands at: `url` itself if it is free, otherwise the first free name in
/// the same folder among the stem, a blank and a number from 2 upward, with the old extension:
/// "clip.mov", "clip 2.mov", "clip 3.mov". Throws SystemError where a name can't be looked at, and
/// so might be taken. By the time that it is written to, somebody else may have taken the name: who
/// is to write there reserves it.
URL uniqueOutputURL(const URL& url);

/// The first free name, as above, taken by an empty file in the same step, so that no other run, of
/// this process or of any other, gets it too. Who writes the output opens that file and does not
/// replace it. At the end the file is removed if it is still this one and still empty: nobody is to
/// take it for a clip; also where the process comes to its own end before. One that anything was
/// written to stays.
class ReservedOutput {
public:
    /// Throws SystemError where no file can be made, as in a folder that is missing or read-only,
    /// and ECANCELED once the process is coming to its end.
    explicit ReservedOutput(const URL& wanted);
    ~ReservedOutput();
    ReservedOutput(const ReservedOutput&) = delete;
    ReservedOutput& operator=(const ReservedOutput&) = delete;

    const URL& url() const { return url_; }

private:
    URL url_;
    std::optional<File> file_;  ///< Open, so that its number stays its own.
    std::optional<FileIdentity> identity_;
};

}  // namespace ReelCore
