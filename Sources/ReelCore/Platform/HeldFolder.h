#pragma once

#include "ReelCore/Platform/Date.h"
#include "ReelCore/Platform/FileStamp.h"
#include "ReelCore/Platform/URL.h"

#include <optional>

namespace ReelCore {

enum class MissingFolders { refuse, make };
enum class FolderLock { alone, shared };

/// An open folder: what is opened or made through it lies in this very folder, whatever is mounted
/// or put at its path meanwhile. While it is held its drive can't be unmounted the ordinary way,
/// and the file system can't forget it: some number a forgotten folder anew, and it would then look
/// like another one. Movable; any thread. All failures are SystemErrors.
class HeldFolder {
public:
    /// Throws if no folder that can be read stands at `path`. Links are followed.
    explicit HeldFolder(const URL& path);

    /// The folder at `way`, a relative path, below this one. Every part of it must be a folder
    /// itself: a link is refused (ENOTDIR), wherever it leads. An empty way leads to this folder.
    HeldFolder below(const URL& way, MissingFolders missing) const;

    HeldFolder(HeldFolder&& other) noexcept;
    HeldFolder& operator=(HeldFolder&& other) noexcept;
    ~HeldFolder();

    int descriptor() const { return descriptor_; }
    const FileIdentity& identity() const { return identity_; }

    /// True if the path still leads to this very folder.
    bool isStillThere() const;

    /// What an entry of the folder is; links are not followed. Absent if there is none; throws if
    /// it can't be looked at.
    struct Entry {
        FileIdentity identity;
        std::optional<Date> born;  ///< Where the file system notes it.
    };
    std::optional<Entry> find(const URL& name) const;

    /// Sets the modification date of an entry to the nanosecond, and leaves the access date.
    void setModificationDate(const URL& name, Date date) const;

    /// Keeps the folder for one user, or for those who share it: false if another holder, in this
    /// process or elsewhere, has it in a way that does not go with that. The kernel lets go of it
    /// with this object or with the process, however that ends. True as well where the file system
    /// knows no such locks.
    bool lock(FolderLock lock) const;

    /// Makes everything that was written to the folder's file system durable, names and dates
    /// included. Throws if that fails, or if anything written there since the last call, or since
    /// the folder is held, did not reach the device. The first call may also tell of what was lost
    /// before, if nobody has asked yet.
    void flushFileSystem() const;

private:
    HeldFolder(URL path, int descriptor);

    URL path_;
    int descriptor_;
    FileIdentity identity_;
};

}  // namespace ReelCore
