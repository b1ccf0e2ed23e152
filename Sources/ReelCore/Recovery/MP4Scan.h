#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ReelCore {

/// A box at the top level of a QuickTime or MP4 file (ISO/IEC 14496-12), as its header tells.
/// Offsets and sizes are bytes.
struct TopLevelBox {
    std::string type;                  ///< Four ASCII characters, not always printable ones.
    std::int64_t offset = 0;           ///< Of the header in the file.
    std::int64_t headerSize = 0;       ///< 16 where the size is written with 64 bits, else 8.
    std::int64_t declaredPayload = 0;  ///< Behind the header; may reach beyond the file's end.
    bool extendsToEOF = false;         ///< Its size is written as 0: it ends with the file.

    bool operator==(const TopLevelBox&) const = default;

    std::int64_t payloadOffset() const { return offset + headerSize; }
};

/// Goes over the top level of a file and reads nothing but box headers, small ones together,
/// whatever the size of the media. Any thread.
struct MP4Scan {
    struct TopLevel {
        std::vector<TopLevelBox> boxes;  ///< In file order.
        std::int64_t fileSize = 0;

        /// The first box of a type; null where there is none.
        const TopLevelBox* first(std::string_view type) const;
    };

    /// Ends at the first thing that can be no box: damage is no failure. Throws
    /// RecoveryError::NotFound where the file can't be opened, SystemError where it can't be read.
    static TopLevel topLevel(const URL& url);

    /// The same without keeping the boxes, of which a damaged file may hold millions: gives each to
    /// `visit`, in file order, and returns the file's size.
    static std::int64_t walk(const URL& url, const std::function<void(const TopLevelBox&)>& visit);
};

}  // namespace ReelCore
