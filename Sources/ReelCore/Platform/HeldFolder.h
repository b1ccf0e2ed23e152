#pragma once

#include "ReelCore/Platform/URL.h"

namespace ReelCore {

/// Holds on to the folder that stands at a path, to notice when something else stands there, as
/// after its drive has gone. While it is held its drive can't be unmounted the ordinary way, and
/// the file system can't forget it: some number a forgotten folder anew, and it would then look
/// like another one. Movable; any thread.
class HeldFolder {
public:
    /// Throws SystemError if no folder that can be read stands at `path`.
    explicit HeldFolder(const URL& path);

    HeldFolder(HeldFolder&& other) noexcept;
    HeldFolder& operator=(HeldFolder&& other) noexcept;
    ~HeldFolder();

    /// True if the path still leads to this very folder.
    bool isStillThere() const;

    /// Makes everything that was written to the folder's file system durable, names and dates
    /// included. Throws SystemError if that fails, or if anything written there since the folder
    /// is held did not reach the device.
    void flushFileSystem() const;

private:
    URL path_;
    int descriptor_;
};

}  // namespace ReelCore
