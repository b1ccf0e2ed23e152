#pragma once

#include "ReelCore/Hashing/HashAlgorithm.h"
#include "ReelCore/Models/CameraFormat.h"
#include "ReelCore/Models/MediaFile.h"
#include "ReelCore/Platform/CompactURL.h"
#include "ReelCore/Platform/Date.h"
#include "ReelCore/Platform/FileStamp.h"
#include "ReelCore/Platform/FolderWalk.h"
#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ReelCore {

/// What is to be copied, where to, and how it is to be proved.
struct OffloadRequest {
    URL source;                     ///< The card, a folder.
    std::vector<URL> destinations;  ///< Destination folders, in the user's order.
    HashAlgorithm algorithm = HashAlgorithm::xxhash64;
    std::string reelName;  ///< Name of the folder made on every destination.

    bool operator==(const OffloadRequest&) const = default;
};

/// The outcome of one file on one destination.
struct DestinationResult {
    CompactURL destination;                   ///< As the request has it.
    CompactURL writtenURL;                    ///< The file as written.
    std::optional<std::string> readBackHash;  ///< Absent if the read-back failed.
    bool matches = false;              ///< True only if the read-back hash equals the source's.
    std::optional<std::string> error;  ///< Why the read-back failed; otherwise absent.
    /// The copy as it stood when it matched; otherwise absent.
    std::optional<FileStamp> proved = {};

    bool operator==(const DestinationResult&) const = default;
};

/// The outcome of one file.
struct FileVerification {
    MediaFile file;
    std::string sourceHash;                       ///< Taken during the copy pass.
    std::vector<DestinationResult> destinations;  ///< One a destination, in request order.

    bool operator==(const FileVerification&) const = default;

    /// True if there are destinations and the copy on every one of them matches.
    bool verified() const;
};

/// What a run has to say of one destination beside its files.
struct DestinationState {
    /// What became of the hash list. `cardHasItsName`: the card brought a file of that name, and
    /// its proved copy was kept instead. `notWritten`: there is none, whole or in part.
    enum class HashList { written, cardHasItsName, notWritten };

    /// False if this process could not see to it that the read-back met the device: the drive is
    /// served by a program over a block device whose cached pages it may not let go of.
    bool readPastTheCache = true;
    HashList hashList = HashList::notWritten;

    bool operator==(const DestinationState&) const = default;
};

/// The outcome of a run that came to its end.
struct OffloadResult {
    OffloadRequest request;
    CameraFormat cameraFormat = CameraFormat::generic;
    std::vector<FileVerification> files;  ///< In scan order.
    Date startedAt;                       ///< Taken before the scan.
    Date finishedAt;                      ///< Taken after the last read-back.

    /// One a destination, in request order.
    std::vector<DestinationState> destinationStates = {};
    /// What the scan of the card passed over.
    UnreadFolders unreadFolders = {};

    bool operator==(const OffloadResult&) const = default;

    /// The files that are not verified, in order.
    std::vector<FileVerification> failures() const;

    /// True if there are files and every one is verified: an empty card proves nothing.
    bool allVerified() const;

    /// The sum of the file sizes in bytes; its overflow is a fatal fault.
    std::int64_t totalBytes() const;
};

/// Where a run stands. Counts and bytes are those of files finished on all destinations.
struct OffloadProgress {
    enum class Phase { scanning, copying, verifying, writingReport, done };

    Phase phase = Phase::scanning;
    std::optional<std::string> currentFile;  ///< Path below the source.
    std::int64_t filesCompleted = 0;
    std::int64_t totalFiles = 0;
    std::int64_t bytesCompleted = 0;
    std::int64_t totalBytes = 0;

    bool operator==(const OffloadProgress&) const = default;

    /// From 0.0 to 1.0; 0.0 where there are no bytes to copy.
    double fractionComplete() const;
};

std::string_view rawValue(OffloadProgress::Phase phase);

template <>
std::span<const OffloadProgress::Phase> allCases<OffloadProgress::Phase>();

}  // namespace ReelCore
