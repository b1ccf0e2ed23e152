#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <optional>
#include <string>

namespace TestSupport {

/// A drive that fails or lies: a mount (FUSE) that passes a backing folder through, but for the
/// faults asked for. What really was written can be looked at in the backing folder.
///
/// Mounted by the constructor (throws std::runtime_error), unmounted by the destructor, also after
/// the server has vanished.
class FaultyFileSystem {
public:
    struct Faults {
        /// Only the file of this name has the faults that concern one file; empty for all.
        std::string onlyFile = {};

        int writeError = 5;                            ///< An `errno`, EIO unless said otherwise.
        std::optional<std::int64_t> failWriteAt = {};  ///< Byte of a file.
        std::optional<std::int64_t> failWriteAfter = {};  ///< Bytes written in total.

        int readError = 5;                            ///< An `errno`, EIO unless said otherwise.
        std::optional<std::int64_t> failReadAt = {};  ///< Byte of a file.
        bool failOpenForReading = false;              ///< EIO.
        std::optional<std::int64_t> flipBitAt = {};   ///< Byte of a file whose bit 0 reads wrong.

        std::optional<std::int64_t> vanishAfterWriting = {};  ///< Bytes in total; the server exits.
        std::optional<std::int64_t> vanishAfterReading = {};  ///< Bytes in total; the server exits.

        std::int64_t delay = 0;  ///< Milliseconds that each read and write takes.

        bool refuseDirectReads = false;  ///< EINVAL for what is read with O_DIRECT.
        bool keepCache = false;          ///< The kernel keeps pages from one open to the next.

        /// Listings don't tell files from folders, as those of some file systems don't.
        bool hideTypes = false;

        /// Names differ by more than the case of letters; the backing folder holds lower case.
        bool ignoreCase = false;

        std::string failAttributesOf = {};  ///< A name whose attributes can't be read; EIO.
        std::string failListingOf = {};     ///< The name of a folder that can't be opened; EACCES.
        std::string breakListingOf = {};    ///< The name of a folder that opens but can't be read.
        int listingError = 5;               ///< An `errno` for that, EIO unless said otherwise.
        std::optional<std::int64_t> listedBeforeThat =
            {};                              ///< Entries; none unless said otherwise.
        std::string vanishAtListingOf = {};  ///< The name of a folder; the server exits.

        bool failFlush = false;  ///< Of one file; EIO.
        bool failDates = false;  ///< EPERM for who sets the date of a file.

        int folderFlushError = 0;  ///< An `errno` for who asks that a folder's names be durable.

        /// Writes stay in memory until a file is flushed or closed, so that they fail that late.
        bool writeLate = false;
    };

    FaultyFileSystem(const ReelCore::URL& backing, const ReelCore::URL& mountPoint,
                     const Faults& faults);
    ~FaultyFileSystem();

    FaultyFileSystem(const FaultyFileSystem&) = delete;
    FaultyFileSystem& operator=(const FaultyFileSystem&) = delete;

    /// The mount point.
    const ReelCore::URL& path() const { return mountPoint_; }

    /// True where this machine lets this user mount FUSE file systems.
    static bool isAvailable();

private:
    ReelCore::URL mountPoint_;
};

}  // namespace TestSupport
