#pragma once

#include "ReelCore/Models/CameraFormat.h"
#include "ReelCore/Models/MediaFile.h"
#include "ReelCore/Platform/FolderWalk.h"
#include "ReelCore/Platform/HeldFolder.h"
#include "ReelCore/Platform/URL.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace ReelCore {

/// Finds out what a camera card holds.
struct SourceScanner {
    /// Names that no scan lists and no scan looks below, compared exactly.
    static constexpr std::array<std::string_view, 7> ignoredNames{".DS_Store",
                                                                  ".Spotlight-V100",
                                                                  ".Trashes",
                                                                  ".fseventsd",
                                                                  ".TemporaryItems",
                                                                  "System Volume Information",
                                                                  ".DocumentRevisions-V100"};

    static bool isIgnored(std::string_view name);

    struct ScanResult {
        /// The folder that was scanned, as it was given.
        URL root;
        /// Every file found, ascending by the code points of the canonically composed path.
        std::vector<MediaFile> files;
        CameraFormat cameraFormat = CameraFormat::generic;
        /// What was passed over: no file below these is in `files`.
        UnreadFolders unreadFolders = {};

        bool operator==(const ScanResult&) const = default;

        std::int64_t fileCount() const;

        /// The sum of the sizes in bytes; its overflow is a fatal fault.
        std::int64_t totalBytes() const;
    };

    /// Holds the folder at `root`, so that its card is not unmounted by mistake. Throws
    /// OffloadError::SourceNotFound if it is missing, no folder or can't be opened; SystemError if
    /// this process has no means left to open it.
    static HeldFolder hold(const URL& root);

    /// Walks `root` once and lists every regular file below it but those in `ignoredNames`. Links,
    /// pipes and devices are not listed; folders that can't be read are passed over and counted.
    /// Reads names and attributes only, never a file's content, and writes nothing.
    ///
    /// Throws OffloadError::SourceNotFound if `root` is missing, no folder or can't be opened, or
    /// is no longer there at the end; SystemError if the attributes of any entry can't be read, or
    /// if this process has no means left to read a folder; OutOfRange if the sizes have no sum.
    /// Blocks for the whole walk; any thread.
    static ScanResult scan(const URL& root);
};

}  // namespace ReelCore
