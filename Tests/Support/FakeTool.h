#pragma once

#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"

#include <string>
#include <vector>

namespace TestSupport {

/// A shell script in the place of ffmpeg or ffprobe: it notes down the arguments of each call, and
/// then does what the test says. The environment points at it as long as the object lives.
class FakeTool {
public:
    /// `variable` is the one that names the tool's path, such as "FFMPEG_PATH". `script` sees the
    /// call's arguments; without one the tool says nothing and succeeds.
    explicit FakeTool(const std::string& variable, const std::string& script = {});

    const ReelCore::URL& path() const { return path_; }

    /// The arguments of each call so far, without the tool's own name, in the order of the calls.
    std::vector<std::vector<std::string>> calls() const;

private:
    TemporaryFolder folder_;
    ReelCore::URL path_;
    ReelCore::URL log_;
    EnvironmentVariable variable_;
};

}  // namespace TestSupport
