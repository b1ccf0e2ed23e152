#pragma once

#include <string>
#include <string_view>

namespace ReelCore {

/// What one run of a tool says on its standard error, taken in as it comes. A damaged clip can make
/// ffmpeg complain for hours: every line is looked at, and only the last 256 KiB are held.
class ToolComplaints {
public:
    /// The next bytes, cut anywhere.
    void take(std::string_view bytes);

    /// The last 256 KiB, from the beginning of a character.
    std::string lastText() const;

    /// The last 8 lines that are not empty, of the last 256 KiB. Bytes that are not UTF-8, as in a
    /// name, become U+FFFD.
    std::string tail() const;

    /// True if ffmpeg says that a drive failed or ran full. It then ends what it has and, unless
    /// that fails at once, calls it a success.
    bool tellOfFailedDrive() const;

private:
    std::string last_;
    std::string line_;
    bool driveHasFailed_ = false;
};

}  // namespace ReelCore
